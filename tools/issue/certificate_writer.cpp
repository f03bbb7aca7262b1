#include "issue/certificate_writer.hpp"

#include "base/der.hpp"
#include "base/der_writer.hpp"

namespace tool {

CertificateWriter::CertificateWriter() {
    void *context = nullptr;
    check(ZACert_CreateCertEncodeCtx(&context));
    context_.reset(context);
}

CertificateWriter::CertificateWriter(View ca) {
    void *context = nullptr;
    check(ZACert_CreateCertEncodeCtx_Ex(&context, ca.data(), static_cast<uint32_t>(ca.size())));
    context_.reset(context);
}

void CertificateWriter::set(int32_t type, View value) {
    check(ZACert_SetCertAttributeChar(context_.get(), type, value.data(),
                                      static_cast<int32_t>(value.size())));
}

void CertificateWriter::set_number(int32_t type, int32_t value) {
    check(ZACert_SetCertAttributeInt(context_.get(), type, value));
}

void CertificateWriter::add_extension(const std::string &oid, View value) {
    const Octets id = object_id_octets(oid);
    check(ZACert_SetCertAttributePrivate(context_.get(), id.data(), static_cast<int32_t>(id.size()),
                                         0, value.data(), static_cast<int32_t>(value.size())));
}

void CertificateWriter::add_identity(ZA_GbType type, const void *value, size_t size) {
    check(ZACert_SetCertPrivate_GB(context_.get(), type, value, static_cast<uint32_t>(size), 0));
}

Octets CertificateWriter::encoded(Signer &signer) {
    check(ZACert_SetCertSignFunc(context_.get(), signer.function, signer.context.data(),
                                 signer.context_length()));
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZACert_EncodeCert(context_.get(), out, length);
    });
}

}  // namespace tool
