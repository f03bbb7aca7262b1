#include "base/context.hpp"

#include "base/der.hpp"

namespace tool {

Octets Context::octets(ZA_CertAttribute type) const {
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZACert_GetCertAttributeChar(context_.get(), type, out, length);
    });
}

uint32_t Context::number(ZA_CertAttribute type) const {
    uint32_t value = 0;
    check(ZACert_GetCertAttributeInt(context_.get(), type, &value));
    return value;
}

std::vector<RawExtension> Context::private_extensions() const {
    uint32_t count = 0;  // index 0 asks for the number of extensions
    uint32_t oid_len = 0;
    uint32_t critical = 0;
    uint32_t value_len = 0;
    check(ZACert_GetCertAttributePrivate(context_.get(), &count, nullptr, &oid_len, &critical,
                                         nullptr, &value_len));
    std::vector<RawExtension> extensions;
    for (uint32_t index = 1; index <= count; ++index) {
        extensions.push_back(private_extension(index));
    }
    return extensions;
}

RawExtension Context::private_extension(uint32_t index) const {
    uint32_t oid_len = 0;
    uint32_t critical = 0;
    uint32_t value_len = 0;
    const auto get = [&](uint8_t *oid, uint8_t *value) {
        check(ZACert_GetCertAttributePrivate(context_.get(), &index, oid, &oid_len, &critical,
                                             value, &value_len));
    };
    get(nullptr, nullptr);
    Octets oid(oid_len);
    Octets value(value_len);
    get(oid.data(), value.data());
    return {object_id_text(oid), critical != 0, std::move(value)};
}

}  // namespace tool
