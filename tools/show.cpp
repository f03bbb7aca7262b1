#include "show.hpp"

#include "certificate.hpp"
#include "failure.hpp"
#include "input.hpp"
#include "json.hpp"
#include "table.hpp"
#include "text.hpp"
#include "utf8.hpp"
#include "wording.hpp"

#include <iostream>

namespace tool {

namespace {

class Show {
public:
    explicit Show(Format format) : format_(format) {}

    void file(const std::string &path) {
        try {
            const std::vector<Candidate> candidates = certificates_in(read_file(path));
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
        if (format_ == Format::json) {
            std::cout << json_text(json_) << '\n';
        } else if (format_ == Format::table) {
            table_.print(std::cout, num_failed_);
        }
        std::cout.flush();
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
        try {
            Certificate certificate = read_certificate(candidate.der);
            certificate.file = path;
            certificate.index = index;
            render(certificate);
        } catch (const LibraryError &error) {
            report(path, place + "expected a certificate: " + error.what());
        }
    }

    void render(const Certificate &certificate) {
        switch (format_) {
            case Format::text:
                std::cout << (num_shown_++ == 0 ? "" : "\n") << certificate_text(certificate);
                break;
            case Format::json:
                json_.push_back(certificate_json(certificate));
                break;
            case Format::table:
                table_.add(certificate);
                break;
        }
    }

    void report(const std::string &path, const std::string &problem) {
        ++num_failed_;
        std::cerr << "zacert: " << file_label(path) << ": " << printable(problem) << '\n';
    }

    Format format_;
    Json json_ = Json::array();
    Table table_;
    size_t num_shown_ = 0;
    size_t num_failed_ = 0;
};

}  // namespace

bool show(const std::vector<std::string> &files, Format format) {
    Show command(format);
    for (const std::string &path : files) {
        command.file(path);
    }
    return command.finish();
}

}  // namespace tool
