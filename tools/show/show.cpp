#include "show/show.hpp"

#include <zacert.h>

#include "base/failure.hpp"
#include "base/utf8.hpp"
#include "base/wording.hpp"
#include "objects/input.hpp"
#include "objects/ocsp.hpp"
#include "objects/pkcs7.hpp"
#include "show/output.hpp"

#include <iostream>

namespace tool {

namespace {

class Show {
  public:
    Show(Format format, ObjectKind wanted) : output_(format, std::cout), wanted_(wanted) {}

    void file(const std::string &path) {
        try {
            const std::vector<Candidate> candidates = objects_in(read_file(path, noun(wanted_)));
            for (size_t i = 0; i < candidates.size(); ++i) {
                const std::string place =
                    candidates.size() == 1 ? "" : "block " + std::to_string(i + 1) + ": ";
                candidate(path, i + 1, place, candidates[i]);
            }
        } catch (const Failure &failure) {
            report(path, failure.what());
        }
    }

    // Whether everything was shown.
    bool finish() {
        output_.finish(num_failed_);
        if (!std::cout) {
            report("standard output", "expected to write all of it");
        }
        return num_failed_ == 0;
    }

  private:
    void candidate(const std::string &path, size_t index, const std::string &place,
                   const Candidate &candidate) {
        if (!candidate.problem.empty()) {
            report(path, place + candidate.problem);
            return;
        }
        if (wanted_ != ObjectKind::unknown && candidate.kind != wanted_) {
            report(path, place + "expected " + std::string(noun(wanted_)) +
                             (candidate.kind == ObjectKind::unknown
                                  ? ""
                                  : ", found " + std::string(noun(candidate.kind))));
            return;
        }
        try {
            decode_and_add(path, index, candidate);
        } catch (const LibraryError &error) {
            report(path,
                   place + "expected " + std::string(noun(candidate.kind)) + ": " + error.what());
        } catch (const Failure &failure) {
            report(path, place + failure.what());
        }
    }

    void decode_and_add(const std::string &path, size_t index, const Candidate &candidate) {
        switch (candidate.kind) {
            case ObjectKind::certificate:
                add(path, index, read_certificate(candidate.der));
                break;
            case ObjectKind::crl:
                add(path, index, read_crl(candidate.der));
                break;
            case ObjectKind::request:
                add(path, index, read_request(candidate.der));
                break;
            case ObjectKind::message:
                add(path, index, read_message(candidate.der));
                break;
            case ObjectKind::ocsp_request:
                add(path, index, read_ocsp_request(candidate.der));
                break;
            case ObjectKind::ocsp_response:
                add(path, index, read_ocsp_response(candidate.der));
                break;
            case ObjectKind::pkcs12:
                throw Failure(pkcs12_instead_of(noun(ObjectKind::unknown)));
            case ObjectKind::unknown:
                throw LibraryError(ZACERT_GeneralErr);
        }
    }

    template <class Object>
    void add(const std::string &path, size_t index, Object object) {
        object.file = path;
        object.index = index;
        output_.add(object);
    }

    void report(const std::string &path, const std::string &problem) {
        ++num_failed_;
        std::cerr << "zacert: " << file_label(path) << ": " << printable(problem) << '\n';
    }

    Output output_;
    ObjectKind wanted_;
    size_t num_failed_ = 0;
};

}  // namespace

const std::map<std::string, Format> &formats() {
    static const std::map<std::string, Format> kFormats = {
        {"text", Format::text}, {"json", Format::json}, {"table", Format::table}};
    return kFormats;
}

bool show(const std::vector<std::string> &files, Format format, ObjectKind wanted) {
    Show command(format, wanted);
    for (const std::string &path : files) {
        command.file(path);
    }
    return command.finish();
}

}  // namespace tool
