#include "pfx/pfx_input.hpp"

#include <zacert.h>

#include "base/elements.hpp"
#include "base/failure.hpp"
#include "base/pem.hpp"
#include "base/wording.hpp"
#include "objects/input.hpp"

#include <algorithm>
#include <iostream>

namespace tool {

namespace {

constexpr const char *kNoun = "a PKCS#12 file";
constexpr const char *kWrong = "the password is wrong, or the file was changed";

Failure about(const std::string &path, const std::string &text) {
    return Failure(file_label(path) + ": " + text);
}

Failure expected(const std::string &path, const std::string &problem) {
    return about(path, "expected " + std::string(kNoun) + ": " + problem);
}

// certtool writes PEM unless it is told otherwise.
Octets der_in(Octets file) {
    for (PemBlock &block : pem_blocks(text_of(file))) {
        if (block.label == "PKCS12" && block.problem.empty()) {
            return std::move(block.octets);
        }
    }
    return file;
}

Octets load(const std::string &path) {
    Octets der;
    try {
        der = der_in(read_file(path, kNoun));
    } catch (const Failure &failure) {
        throw about(path, failure.what());
    }
    if (der.empty()) {
        throw expected(path, "the file is empty");
    }
    const std::optional<Header> header = header_of(der);
    if (header && header->content_length != der.size() - header->length) {
        throw expected(path, LibraryError(ZACERT_LengthNotEqualErr).what());
    }
    return der;
}

Pfx look_into(const std::string &path, View der) {
    try {
        Pfx pfx = read_pfx(der, nullptr);
        pfx.file = path;
        return pfx;
    } catch (const LibraryError &error) {
        throw expected(path, error.what());
    } catch (const Failure &failure) {
        throw about(path, failure.what());
    }
}

Secret password_of(const PfxInput &input) {
    std::optional<Secret> given = given_password(input.password, Empty::allowed);
    Secret password =
        given ? std::move(*given)
              : asked_password("Password of " + file_label(input.path) + ": ", Ask::once);
    warn_of_octets(password);
    return password;
}

std::string cannot_be_read(const Pfx &pfx) {
    return "cannot be read here: " + unknown_algorithms(pfx) +
           "; \"openssl pkcs12 -export -legacy\" makes one that can";
}

bool has_closed_key(const std::vector<PfxBag> &bags) {
    return std::any_of(bags.begin(), bags.end(), [](const PfxBag &bag) {
        return (bag.is_key() && bag.content.size() == 0) || has_closed_key(bag.bags);
    });
}

// Behind the MAC.
void open_containers(View der, const Secret &password, OpenedPfx &out) {
    try {
        out.pfx.containers = read_pfx(der, &password).containers;
    } catch (const LibraryError &error) {
        out.problem = out.pfx.mac
                          ? std::string("expected keys and certificates inside: ") + error.what()
                          : kWrong;
        return;
    }
    const bool closed =
        std::any_of(out.pfx.containers.begin(), out.pfx.containers.end(),
                    [](const PfxContainer &container) { return has_closed_key(container.bags); });
    if (!unknown_algorithms(out.pfx).empty()) {
        out.problem = cannot_be_read(out.pfx);
    } else if (closed) {
        out.problem = out.pfx.mac ? "the password does not open the key" : kWrong;
    }
}

void judge_and_open(View der, const Secret &password, OpenedPfx &out) {
    constexpr uint32_t kRight = 200;
    if (out.pfx.mac) {
        out.pfx.verdict = mac_verdict(der, *out.pfx.mac, password);
        if (out.pfx.verdict != kRight) {
            out.problem = std::string(kWrong) + " (" + std::to_string(*out.pfx.verdict) + ")";
            return;
        }
    }
    open_containers(der, password, out);
}

}  // namespace

void add_pfx_input(Arguments &command, PfxInput &input) {
    add_password_options(command, input.password, "asked for where it is not given",
                         {"", "the password"});
    command.add_flag("--no-mac", input.no_mac,
                     "take a file without a MAC, of which nobody can tell whether it was changed");
    command.add_option("FILE", input.path, "DER, or PEM as certtool writes it; - is standard input")
        .required();
}

Pfx look_into_pfx(const PfxInput &input) {
    return look_into(input.path, load(input.path));
}

OpenedPfx open_pfx(const PfxInput &input) {
    const Octets der = load(input.path);
    OpenedPfx opened{look_into(input.path, der), {}};
    const std::optional<PfxMac> &mac = opened.pfx.mac;
    if (mac && !mac->is_known()) {
        opened.problem = cannot_be_read(opened.pfx);
        return opened;
    }
    if (!mac && !input.no_mac) {
        opened.problem = "expected a MAC, there is none; --no-mac takes the file all the same";
        return opened;
    }
    const Secret password = password_of(input);
    try {
        judge_and_open(der, password, opened);
    } catch (const Failure &failure) {
        opened.problem = failure.what();
    }
    return opened;
}

void warn_of_octets(const Secret &password) {
    const View octets = password.view();
    if (std::any_of(octets.begin(), octets.end(), [](uint8_t octet) { return octet >= 0x80; })) {
        std::cerr
            << "zacert: the password is not ASCII and is taken octet by octet; other programs "
               "convert it\n";
    }
}

}  // namespace tool
