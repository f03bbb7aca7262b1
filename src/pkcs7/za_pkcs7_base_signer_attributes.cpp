// One row per attribute.
#include "pkcs7/za_pkcs7_base_signer.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {
namespace {

using Row = AttributeRow<SignerInfo>;

template <auto Which>
Field &field_of(SignerInfo &signer) {
    if constexpr (requires { signer.fields.*Which; }) {
        return signer.fields.*Which;
    } else {
        return signer.fields.who.*Which;
    }
}

template <auto Which>
Status set_field(SignerInfo &signer, const Row &, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    ZA_PASS(field_of<Which>(signer).assign(value));
    mark_set(signer);
    return Status::ok;
}

template <auto Which>
Status get_field(SignerInfo &signer, const Row &, Bytes &out) {
    out = field_of<Which>(signer).bytes();
    return Status::ok;
}

// No octets clear it: detached signatures have none.
Status set_content(SignerInfo &signer, const Row &, Bytes value) {
    return put_content(signer, value);
}

Status add_entry(SignerInfo &signer, const Row &row, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    ZA_PASS(add_issuer_entry(signer.fields.who, row.kind, value));
    mark_set(signer);
    return Status::ok;
}

Status get_entry(SignerInfo &signer, const Row &row, Bytes &out) {
    out = names::first_of_kind(signer.fields.who.entries, row.kind);
    return Status::ok;
}

#define ROW(identifier, ...)                                    \
    Row {                                                       \
        identifier, ZA_ATTRIBUTE_TEXTS(identifier), __VA_ARGS__ \
    }
#define FIELD(identifier, which) ROW(identifier, set_field<which>, get_field<which>)
#define ENTRY(identifier, kind) ROW(identifier, add_entry, get_entry, kind)

constexpr std::array kRows{
    FIELD(PKCS7_SIGNER_DN, &IssuerAndSerial::issuer),
    ENTRY(PKCS7_ISSUER_COUNTRY, names::kCountry),
    ENTRY(PKCS7_ISSUER_STATEORPROVINCE, names::kState),
    ENTRY(PKCS7_ISSUER_LOCALITY, names::kLocality),
    ENTRY(PKCS7_ISSUER_ORGANIZATION, names::kOrganization),
    ENTRY(PKCS7_ISSUER_ORGANIZATIONALUNIT, names::kOrganizationalUnit),
    ENTRY(PKCS7_ISSUER_COMMONNAME, names::kCommonName),
    ENTRY(PKCS7_ISSUER_EMAIL, names::kEmail),
    ENTRY(PKCS7_ISSUER_POSTALADDRESS, names::kPostalAddress),
    FIELD(PKCS7_SIGNER_SERIAL, &IssuerAndSerial::serial),
    FIELD(PKCS7_SIGNER_DIGEST_ALGO, &SignerFields::digest_algorithm),
    FIELD(PKCS7_SIGNER_DIGEST_ENC_ALG, &SignerFields::encryption_algorithm),
    ROW(PKCS7_SIGNER_SIGNATURE, nullptr, get_field<&SignerFields::signature>),
    ROW(PKCS7_SIGNER_CONTENTTYPE, set_field<&SignerFields::content_type>),
    ROW(PKCS7_SIGNER_CONTENT, set_content),
};

#undef ENTRY
#undef FIELD
#undef ROW

constexpr AttributeTable<SignerInfo> kAttributes{
    kRows, AttributeRefusal{.set = "------>Set ZA_PKCS7_AttributeNotSupportErr",
                            .get = "------>Get ZA_PKCS7_AttributeNotSupportErr"}};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<SignerInfo> &signer_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7
