#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "issue/private_key.hpp"
#include "objects/oid_names.hpp"
#include "objects/pkcs7.hpp"
#include "objects/signed_object.hpp"
#include "objects/subject_key.hpp"
#include "pfx/pfx_command.hpp"
#include "pfx/pfx_input.hpp"

#include <algorithm>
#include <span>
#include <tuple>

namespace tool {

namespace {

struct Options {
    PfxInput input;
    std::string key;
    std::string certificates;
    std::string certificate;
    std::string chain;
    bool force = false;
};

struct Contents {
    std::vector<EvpKey> keys;
    std::vector<View> certificates;
};

Failure about(const Options &options, const std::string &text) {
    return Failure(file_label(options.input.path) + ": " + text);
}

Failure unreadable(const Options &options, const std::string &problem) {
    return about(options, "expected keys and certificates inside: " + problem);
}

void collect(const Options &options, const std::vector<PfxBag> &bags, Contents &out) {
    for (const PfxBag &bag : bags) {
        if (!bag.problem.empty() && !bag.is(pfx::kCrl) && !bag.is(pfx::kSecret)) {
            throw unreadable(options, bag.problem);
        }
        if (bag.is_key()) {
            out.keys.push_back(key_in(bag));
            if (out.keys.back() == nullptr) {
                throw about(options, "expected a private key that libcrypto reads");
            }
        } else if (bag.content_type.oid == pfx::kX509Certificate) {
            certificate_brief(bag.content.view());
            out.certificates.push_back(bag.content.view());
        }
        collect(options, bag.bags, out);
    }
}

Contents contents_of(const Options &options, const Pfx &pfx) {
    Contents contents;
    for (const PfxContainer &container : pfx.containers) {
        if (!container.opened) {
            throw unreadable(options, "a password does not open " + label(container.type));
        }
        collect(options, container.bags, contents);
    }
    return contents;
}

Secret keys_in_pem(const Options &options, const Contents &contents) {
    if (contents.keys.empty()) {
        throw about(options, "expected a private key, there is none in the file");
    }
    std::vector<Secret> blocks;
    size_t size = 0;
    for (const EvpKey &key : contents.keys) {
        blocks.push_back(pem_of_key(*key, nullptr));
        size += blocks.back().size();
    }
    Secret text(size);
    uint8_t *at = text.data();
    for (const Secret &block : blocks) {
        at = std::copy_n(block.view().begin(), block.size(), at);
    }
    return text;
}

// For a path that is asked for.
Octets in_pem(const Options &options, const std::string &path, std::span<const View> certificates,
              const std::string &wanted) {
    if (!path.empty() && certificates.empty()) {
        throw about(options, "expected " + wanted + ", there is none in the file");
    }
    Octets text;
    for (const View certificate : certificates) {
        const Octets block = pem(certificate, "CERTIFICATE");
        text.insert(text.end(), block.begin(), block.end());
    }
    return text;
}

// Moves the certificate of the key to the front.
void pair(const Options &options, Contents &contents) {
    if (contents.keys.size() != 1) {
        throw about(options,
                    "expected one private key, to tell its certificate from the others; "
                    "see --certs-out");
    }
    const SubjectKey key = subject_key(public_key_of(*contents.keys.front()));
    const auto own =
        std::find_if(contents.certificates.begin(), contents.certificates.end(),
                     [&](View der) { return subject_key(certificate_parts(der).key) == key; });
    if (own == contents.certificates.end()) {
        throw about(options,
                    "expected a certificate of the private key, there is none in the file");
    }
    std::rotate(contents.certificates.begin(), own, own + 1);
}

void write_asked(const std::string &path, View octets, mode_t mode, Existing existing) {
    if (!path.empty()) {
        write_file(path, octets, mode, existing);
    }
}

// All that is to be written is there before the first file is.
void write(const Options &options, Contents contents) {
    constexpr mode_t kOwnerAlone = 0600;
    constexpr mode_t kMode = 0666;
    const size_t num_own = options.certificate.empty() && options.chain.empty() ? 0 : 1;
    const Secret keys = options.key.empty() ? Secret() : keys_in_pem(options, contents);
    if (num_own != 0) {
        pair(options, contents);
    }
    const std::span<const View> all = contents.certificates;
    const Octets certificates = in_pem(options, options.certificates, all, "a certificate");
    const Octets own = in_pem(options, {}, all.first(num_own), {});
    const Octets chain =
        in_pem(options, options.chain, all.subspan(num_own), "a further certificate");
    write_asked(options.key, keys.view(), kOwnerAlone,
                options.force ? Existing::replaced : Existing::kept);
    write_asked(options.certificates, certificates, kMode, Existing::replaced);
    write_asked(options.certificate, own, kMode, Existing::replaced);
    write_asked(options.chain, chain, kMode, Existing::replaced);
}

bool run(const Options &options) {
    const OpenedPfx opened = open_pfx(options.input);
    if (!opened.problem.empty()) {
        throw about(options, opened.problem);
    }
    try {
        write(options, contents_of(options, opened.pfx));
    } catch (const LibraryError &error) {
        throw unreadable(options, error.what());
    }
    return true;
}

}  // namespace

void add_pfx_open(Arguments &pfx) {
    Arguments command = pfx.add_command(
        "open", "Write key and certificates of a PKCS#12 file as PEM, once its MAC is right.");
    const auto options = std::make_shared<Options>();
    Arguments group = command.add_group("Outputs", "one or more", 1, 4);
    group
        .add_option("--key-out", options->key,
                    "where to write the private key: PKCS#8, not encrypted, mode 0600")
        .type_name("FILE");
    Option all =
        group.add_option("--certs-out", options->certificates, "the certificates, in their order")
            .type_name("FILE");
    for (auto [name, place, text] :
         {std::tuple("--cert-out", &options->certificate, "the certificate of the key"),
          std::tuple("--chain-out", &options->chain, "the certificates besides it")}) {
        group.add_option(name, *place, text).type_name("FILE").excludes(all);
    }
    command.add_flag("--force", options->force, "replace a key file that is there");
    add_pfx_input(command, options->input);
    command.footer(
        "- is standard output.\n"
        "Examples:\n  zacert pfx open --key-out server.key --certs-out server.pem server.p12\n"
        "  zacert pfx open --cert-out server.pem --chain-out ca.pem --password-file pass "
        "server.p12");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
