// Certificate contexts in tests, and certificates put together from the parts of real ones.
#pragma once

#include "cert/za_cert_context.hpp"
#include "support/bytes.hpp"
#include "support/rows.hpp"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace za::test {

inline constexpr const char *kCertificates[] = {
    "rsa_all",  "rsa_v1",      "rsa_bmp", "rsa_t61", "rsa_purposes",
    "ec_named", "ec_explicit", "ec_p384", "sm2",     "ed25519"};

inline Octets certificate(const std::string &name) {
    return read_file(ZACERT_TEST_DATA "/certs/" + name + ".der");
}

using Lines = std::vector<std::string>;  // of a trace

// Text between quotes, or hex.
inline Octets value_of(std::string_view cell) {
    return cell.starts_with('"') ? Octets(cell.begin() + 1, cell.end() - 1) : from_hex(cell);
}

inline std::string plain_hex(std::span<const uint8_t> octets) {
    std::string hex = to_hex(octets);
    std::erase(hex, ' ');
    return hex;
}

class Context {
  public:
    Context() { EXPECT_EQ(ZACert_CreateCertEncodeCtx(&handle_), 0u); }
    explicit Context(void *taken) : handle_(taken) {}
    ~Context() { EXPECT_EQ(ZACert_DestroyCertEncodeCtx(handle_), 0u); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    operator void *() const { return handle_; }
    cert::Certificate *operator->() const { return &**this; }
    cert::Certificate &operator*() const { return *static_cast<cert::Certificate *>(handle_); }

    uint32_t decode(const Octets &der) const {
        return ZACert_DecodeCert(handle_, der.data(), static_cast<uint32_t>(der.size()));
    }
    uint32_t set(int32_t id, const Octets &value) const {
        return ZACert_SetCertAttributeChar(handle_, id, value.data(),
                                           static_cast<int32_t>(value.size()));
    }
    Octets get(int32_t id, uint32_t *status = nullptr) const {
        return two_calls(
            [&](uint8_t *out, uint32_t *len) {
                return ZACert_GetCertAttributeChar(handle_, id, out, len);
            },
            status);
    }
    std::string hex(int32_t id) const { return to_hex(get(id)); }
    uint32_t number(int32_t id) const {
        uint32_t value = 0;
        EXPECT_EQ(ZACert_GetCertAttributeInt(handle_, id, &value), 0u);
        return value;
    }

  private:
    void *handle_ = nullptr;
};

// What a context holds beside its attributes of octets.
inline std::string seen(const Context &context, const std::string &name) {
    const auto state = [](const cert::ExtensionState &extension) {
        return std::to_string(extension.critical) + (extension.set ? " set" : "") +
               (extension.decoded ? " read" : "");
    };
    const auto hex = [](const Field &field) { return plain_hex(field.bytes()); };
    const auto access = [](const cert::AccessDescription &in) {
        return (in.method == cert::AccessMethod::ocsp ? "ocsp " : "issuers ") +
               std::string(text_of(in.uri.bytes()));
    };
    const auto other = [&](const cert::PrivateExtension &in) {
        return hex(in.oid) + " " + std::to_string(in.critical) + " " + hex(in.value);
    };
    const auto each = [](const auto &list, const auto &text) {
        std::string all;
        for (const auto &item : list) {
            all += text(item) + ";";
        }
        return all;
    };
    const auto entries = [](const names::NameList &list) {
        std::string all;
        for (auto *entry = list.first(); entry != nullptr; entry = entry->nextEntry) {
            all += std::to_string(entry->attrKind) + " " + plain_hex(bytes_of(entry->attrOid)) +
                   " " + std::to_string(entry->attrValue.dataType) + " " +
                   plain_hex(bytes_of(entry->attrValue)) + ";";
        }
        return all;
    };
    // The form that other functions of the library take keys of 256 bits in.
    ZACERT_EccPubKey point{};
    if (const Octets key = context.get(CERT_SUBJECTPUBLICKEYINFO); key.size() == 287) {
        uint32_t len = 0;
        EXPECT_EQ(ZACERT_DecodeEccPubKey(key.data(), 287, &point, &len), 0u);
    }
    const cert::Certificate &in = *context;
    const std::map<std::string, std::string> all{
        {"AKI", state(in.authority_key_identifier.state)},
        {"SKI", state(in.subject_key_identifier.state)},
        {"KU", state(in.key_usage.state)},
        {"EKU", state(in.extended_key_usage.state)},
        {"CP", state(in.policies.state)},
        {"SAN", state(in.subject_alternative_name.state)},
        {"IAN", state(in.issuer_alternative_name.state)},
        {"BC", state(in.basic_constraints.state)},
        {"CDP", state(in.distribution_points.state)},
        {"AIA", state(in.information_access.state)},
        {"issuer names", entries(in.issuer.entries)},
        {"subject names", entries(in.subject.entries)},
        {"SAN names", entries(in.subject_alternative_name.directory)},
        {"IAN names", entries(in.issuer_alternative_name.directory)},
        {"AKI names", entries(in.authority_key_identifier.issuer)},
        {"AKI serial", hex(in.authority_key_identifier.serial)},
        {"other name", hex(in.subject_alternative_name.other_name_type) + " " +
                           hex(in.subject_alternative_name.other_name_value) + " " +
                           std::to_string(in.subject_alternative_name.other_name_tag)},
        {"purposes", each(in.extended_key_usage.purposes, hex)},
        {"policy", hex(in.policies.policy)},
        {"cps", each(in.policies.cps_uris, hex)},
        {"uris", each(in.distribution_points.uris, hex)},
        {"accesses", each(in.information_access.descriptions, access)},
        {"private", each(in.private_extensions, other)},
        {"changed", std::to_string(in.extensions_changed)},
        {"present", std::to_string(in.extensions_present)},
        {"has version", std::to_string(in.has_version)},
        {"authority set", std::to_string(in.basic_constraints.authority_set)},
        {"unused bits", std::to_string(in.key_usage.unused_bits)},
        {"kind", std::to_string(in.key.kind)},
        {"raw bits", std::to_string(in.key.raw_bits.bytes().size())},
        {"point", plain_hex(point.x) + plain_hex(point.y)},
        {"version", std::to_string(context.number(CERT_VERSION))},
        {"from", std::to_string(context.number(CERT_VALIDFROM))},
        {"to", std::to_string(context.number(CERT_VALIDTO))}};
    return all.at(name);
}

// "IDENTIFIER=OCTETS" or "WHAT=TEXT".
inline void expect_seen(const Context &cert, const std::string &check) {
    const size_t equals = check.find('=');
    const std::string name = check.substr(0, equals);
    const std::string value = check.substr(equals + 1);
    if (std::isdigit(name[0]) != 0) {
        EXPECT_EQ(cert.hex(std::stoi(name)), to_hex(value_of(value))) << name;
    } else {
        EXPECT_EQ(seen(cert, name), value) << name;
    }
}

inline Octets join(const std::vector<Octets> &parts) {
    Octets whole;
    for (const Octets &part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

inline Octets tlv(uint8_t identifier, const Octets &content) {
    const auto low = static_cast<uint8_t>(content.size());
    const auto high = static_cast<uint8_t>(content.size() >> 8);
    return join(
        {content.size() < 0x80 ? Octets{identifier, low} : Octets{identifier, 0x82, high, low},
         content});
}

inline std::vector<Octets> children(const Octets &element) {
    std::vector<Octets> parts;
    asn1::Header header;
    EXPECT_EQ(asn1::read_header(element, header), Status::ok);
    for (size_t at = header.size(); at < element.size(); at += header.total) {
        const Bytes rest = Bytes(element).subspan(at);
        EXPECT_EQ(asn1::read_header(rest, header), Status::ok);
        parts.emplace_back(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(header.total));
    }
    return parts;
}

// A real certificate in pieces that can be changed, left out and added to.
struct Parts {
    enum { kKey = 6, kExtensions };  // places of fields from version 2 on

    std::vector<Octets> tbs;
    std::vector<Octets> behind;
    std::vector<Octets> extensions;

    explicit Parts(const std::string &name) {
        behind = children(certificate(name));
        tbs = children(behind.front());
        behind.erase(behind.begin());
        if (tbs.size() > kExtensions) {
            extensions = children(children(tbs.back()).front());
            tbs.pop_back();
        }
    }
    Octets tbs_der() const {
        std::vector<Octets> fields = tbs;
        if (!extensions.empty()) {
            fields.push_back(tlv(0xA3, tlv(0x30, join(extensions))));
        }
        return tlv(0x30, join(fields));
    }
    Octets der() const { return tlv(0x30, join({tbs_der(), join(behind)})); }
};

}  // namespace za::test
