#include "cert/za_cert_private.hpp"

#include "asn1/za_asn2_writer.hpp"
#include "cert/za_cert_context.hpp"
#include "names/za_low_charset.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {
namespace {

Status check(void *ctx, const PrivateArguments &arguments) {
    ZA_PASS(trace.need(ctx));
    if (arguments.oid_len <= 0 || arguments.value_len <= 0) {
        return trace.fail(Status::length, "------>ZACert_SetCertAttributePrivate  Err");
    }
    return trace.need(arguments.oid, arguments.value);
}

Bytes oid_of(const PrivateArguments &arguments) {
    return {arguments.oid, static_cast<size_t>(arguments.oid_len)};
}

Bytes value_of(const PrivateArguments &arguments) {
    return {arguments.value, static_cast<size_t>(arguments.value_len)};
}

Status add_private(Certificate &cert, const PrivateArguments &arguments, Bytes der) {
    PrivateExtension extension;
    ZA_PASS(extension.oid.assign(oid_of(arguments)));
    ZA_PASS(extension.value.assign(der));
    extension.critical = static_cast<uint8_t>(arguments.critical);
    ZA_PASS(cert.private_extensions.append(trace, std::move(extension)));
    cert.extensions_changed = true;
    return Status::ok;
}

// The value as an element of the string type asked for; any other type is an OCTET STRING.
Status encode_value(Bytes value, uint32_t type, Chain &out) {
    if (type == asn1::kPrintableString) {
        ZA_TRY(ZAsn1_WritePrintableString, asn1::write_printable_string(value, 0, out));
    } else if (type == asn1::kUtf8String) {
        Octets utf8;
        ZA_TRY(ZI_Chinese2UTF8String, names::chinese_to_utf8(value, utf8));
        ZA_TRY(ZAsn1_WriteUTF8String, asn1::write_utf8_string(utf8.bytes(), out));
    } else {
        ZA_TRY(ZAsn1_WriteOctetString, asn1::write_octet_string(value, out));
    }
    return Status::ok;
}

}  // namespace

Status set_private(void *ctx, const PrivateArguments &arguments) {
    ZA_PASS(check(ctx, arguments));
    return add_private(*static_cast<Certificate *>(ctx), arguments, value_of(arguments));
}

}  // namespace za::cert

using za::Status;
using za::cert::Certificate;
using za::cert::PrivateArguments;

uint32_t ZACert_SetCertAttributePrivate(void *ctx, const uint8_t *oid, int32_t oidLen,
                                        uint32_t critical, const uint8_t *value, int32_t valueLen) {
    return trace.exported([&] {
        return za::cert::set_private(ctx, {oid, oidLen, critical, value, valueLen});
    });
}

uint32_t ZACert_SetCertAttributePrivate_ForValue(void *ctx, const uint8_t *oid, int32_t oidLen,
                                                 uint32_t critical, const uint8_t *value,
                                                 int32_t valueLen, uint32_t valueType) {
    return trace.exported([&] {
        constexpr int32_t kMostUtf8Source = 2048;
        const PrivateArguments arguments{oid, oidLen, critical, value, valueLen};
        ZA_PASS(za::cert::check(ctx, arguments));
        if (valueType == za::asn1::kUtf8String && valueLen > kMostUtf8Source) {
            // Callers have always been told that this went well.
            trace.note("------>certAttributeValueLen>2048 ");
            return Status::ok;
        }
        za::Chain element;
        ZA_PASS(za::cert::encode_value(za::cert::value_of(arguments), valueType, element));
        return za::cert::add_private(*static_cast<Certificate *>(ctx), arguments,
                                     za::bytes_of(*element.head()));
    });
}

uint32_t ZACert_GetCertAttributePrivate(void *ctx, uint32_t *index, uint8_t *oid, uint32_t *oidLen,
                                        uint32_t *critical, uint8_t *value, uint32_t *valueLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, index));
        const auto &list = static_cast<Certificate *>(ctx)->private_extensions;
        const za::cert::PrivateExtension *extension = list.item(*index);
        if (extension == nullptr) {
            *index = za::to_u32(list.size());
            return Status::ok;
        }
        ZA_PASS(trace.need(oidLen, critical, valueLen));
        za::hand_out(extension->oid.bytes(), oid, oidLen);
        za::hand_out(extension->value.bytes(), value, valueLen);
        *critical = extension->critical;
        return Status::ok;
    });
}
