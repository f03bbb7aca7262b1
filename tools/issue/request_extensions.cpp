#include "issue/request_extensions.hpp"

#include "base/context.hpp"
#include "base/der.hpp"
#include "objects/extensions.hpp"
#include "objects/loading.hpp"

namespace tool {

namespace {

using RequestContext =
    Decoded<ZACert_CreateCsrDecodeCtx, ZACert_DecodeCsr, ZACert_DestroyCsrDecodeCtx>;

struct RawAttribute {
    std::string oid;
    Octets value;  // the content of an OCTET STRING, or a whole element
};

uint32_t number_of_attributes(const RequestContext &context) {
    uint32_t count = 0;  // index 0 asks for the number
    uint32_t oid_len = 0;
    uint32_t value_len = 0;
    check(ZACert_GetCsrAttributePrivate(context.get(), &count, nullptr, &oid_len, nullptr,
                                        &value_len));
    return count;
}

RawAttribute attribute(const RequestContext &context, uint32_t index) {
    uint32_t oid_len = 0;
    uint32_t value_len = 0;
    const auto get = [&](uint8_t *oid, uint8_t *value) {
        check(
            ZACert_GetCsrAttributePrivate(context.get(), &index, oid, &oid_len, value, &value_len));
    };
    get(nullptr, nullptr);
    Octets oid(oid_len);
    Octets value(value_len);
    get(oid.data(), value.data());
    return {object_id_text(oid), std::move(value)};
}

}  // namespace

Octets requested_names(View request) {
    const RequestContext context(request);
    const uint32_t count = number_of_attributes(context);
    for (uint32_t index = 1; index <= count; ++index) {
        const RawAttribute found = attribute(context, index);
        if (found.oid != "1.2.840.113549.1.9.14") {
            continue;
        }
        const std::vector<Extension> extensions = read_extensions(found.value);
        const Extension *names = find_extension(extensions, "2.5.29.17");
        if (names != nullptr && !names->decoded()) {
            throw Failure("the alternative names of the request cannot be read");
        }
        return names == nullptr ? Octets() : names->octets;
    }
    return {};
}

}  // namespace tool
