#include "pkcs12/za_pkcs12_part.hpp"

namespace za::pkcs12 {

Status add_item(const TraceSource &trace, List<Secret> &list, Bytes value) {
    Secret item;
    ZA_PASS(item.assign(value));
    return list.append(trace, std::move(item));
}

Status add_attribute(const TraceSource &trace, Attributes &list, Bytes type, Bytes values) {
    Attribute attribute;
    ZA_PASS(attribute.type.assign(type));
    ZA_PASS(attribute.values.assign(values));
    return list.append(trace, std::move(attribute));
}

Status hand_out_attribute(const TraceSource &trace, const Attributes &list, uint32_t number,
                          const AttributePlace &out) {
    ZA_PASS(trace.need(out.type_len, out.values_len));
    const Attribute *attribute = list.item(number);
    if (attribute == nullptr) {
        return trace.fail(Status::invalid_item);
    }
    hand_out(attribute->type.bytes(), out.type, out.type_len);
    hand_out(attribute->values.bytes(), out.values, out.values_len);
    return Status::ok;
}

}  // namespace za::pkcs12
