#include "pkcs7/za_pkcs7_attribute_list.hpp"

#include "pkcs7/za_pkcs7_content_info.hpp"
#include "pkcs7/za_pkcs7_part.hpp"

#include <cstddef>
#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_other", {za::pkcs7::kArrow}};

}  // namespace

// Programs are linked against this layout.
static_assert(sizeof(void *) != 8 ||
              (sizeof(ZA_PKCS7_Attribute) == 96 && offsetof(ZA_PKCS7_Attribute, attrType) == 8 &&
               offsetof(ZA_PKCS7_Attribute, attrValue) == 48 &&
               offsetof(ZA_PKCS7_Attribute, attrCount) == 88));

namespace za::pkcs7 {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

// Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET }
void write_attribute(Bytes type, Bytes values, Builder &out) {
    out.sequence([&] {
        out.object_id(type);
        out.element(ZA_DER_ID_SET, values);
    });
}

// All that stands in the SET is the value, so that an attribute with several is written again as it
// came, and signatures over it stay good.
Status read_attribute(const Element &in, Attribute &out) {
    Children fields;
    Children values;
    Element type;
    Element set;
    Bytes oid;
    asn1::Content content;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_OBJECTID, type));
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(type, oid));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SET, set));
    ZA_TRY(ZAsn1_ReadSet, asn1::read_set(set, values));
    ZA_TRY(ZAsn1_Low_ReadTagAndLength, asn1::read_tag_and_length(set, content));
    if (!fields.empty()) {
        return trace.fail(Status::type);
    }
    out.type.refer(oid);
    out.value.refer(content.octets);
    return Status::ok;
}

}  // namespace

void write_attributes(const List<Attribute> &list, const Replacement *replacement, Builder &out) {
    for (const Attribute &attribute : list) {
        const bool replaced =
            replacement != nullptr && equal(attribute.type.bytes(), replacement->type);
        write_attribute(attribute.type.bytes(),
                        replaced ? replacement->value : attribute.value.bytes(), out);
        replacement = replaced ? nullptr : replacement;
    }
    if (replacement != nullptr) {
        write_attribute(replacement->type, replacement->value, out);
    }
}

Status read_attributes(Children attributes, AttributeList &out) {
    for (Element in; attributes.next(in);) {
        Attribute attribute;
        ZA_PASS(read_attribute(in, attribute));
        ZA_PASS(out.list.append(trace, std::move(attribute)));
    }
    out.present = true;
    return Status::ok;
}

const Attribute *find_attribute(const AttributeList &attributes, Bytes type) {
    const Attribute *found = nullptr;
    for (const Attribute &attribute : attributes.list) {
        if (equal(attribute.type.bytes(), type)) {
            if (found != nullptr) {
                return nullptr;
            }
            found = &attribute;
        }
    }
    return found;
}

namespace {

// Attributes as the interface hands them out, each in a block of its own, as are its octets.
class CallerAttributes {
  public:
    CallerAttributes() = default;
    CallerAttributes(const CallerAttributes &) = delete;
    CallerAttributes &operator=(const CallerAttributes &) = delete;
    ~CallerAttributes() {
        while (first_ != nullptr) {
            ZAPR_Free(first_->attrType.data);
            ZAPR_Free(first_->attrValue.data);
            ZAPR_Free(std::exchange(first_, first_->next));
        }
    }

    Status copy(const List<Attribute> &list) {
        constexpr uint32_t kValueType = 52;
        ZA_PKCS7_Attribute **end = &first_;
        for (const Attribute &from : list) {
            Octets block;
            ZA_PASS(block.allocate(sizeof(ZA_PKCS7_Attribute)));
            auto *const to = reinterpret_cast<ZA_PKCS7_Attribute *>(block.release());
            *end = to;
            end = &to->next;
            ZA_PASS(copy_octets(from.type.bytes(), asn1::kObjectId, to->attrType));
            ZA_PASS(copy_octets(from.value.bytes(), kValueType, to->attrValue));
        }
        if (first_ != nullptr) {
            first_->attrCount = to_u32(list.size());
        }
        return Status::ok;
    }

    // Only in the last statement before success.
    ZA_PKCS7_Attribute *release() { return std::exchange(first_, nullptr); }

  private:
    static Status copy_octets(Bytes from, uint32_t type, Anybuf &to) {
        Octets octets;
        ZA_PASS(octets.assign(from));
        to.dataType = type;
        to.dataLen = to_u32(octets.size());
        to.data = octets.release();
        return Status::ok;
    }

    ZA_PKCS7_Attribute *first_ = nullptr;
};

Status encode_attributes(const ZA_PKCS7_Attribute *first, Anybuf **out) {
    return asn1::hand_out_built(out, [&](Builder &built) {
        built.wrapped(ZA_DER_ID_SET, [&] {
            for (const auto *entry = first; entry != nullptr; entry = entry->next) {
                write_attribute(bytes_of(entry->attrType), bytes_of(entry->attrValue), built);
            }
        });
        return Status::ok;
    });
}

Status decode_attributes(const Anybuf &set, ZA_PKCS7_Attribute **out) {
    Children elements;
    AttributeList attributes;
    CallerAttributes made;
    // Whatever the record says of its type, the octets tell it.
    ZA_TRY(ZAsn1_ReadSet, asn1::read_set(Element(bytes_of(set)), elements));
    ZA_PASS(read_attributes(elements, attributes));
    ZA_PASS(made.copy(attributes.list));
    *out = made.release();
    return Status::ok;
}

}  // namespace
}  // namespace za::pkcs7

uint32_t ZI_PKCS7_EncodeAttributes(ZA_PKCS7_Attribute *list, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(list, out));
        return za::pkcs7::encode_attributes(list, out);
    });
}

uint32_t ZI_PKCS7_DecodeAttributes(Anybuf *set, ZA_PKCS7_Attribute **list) {
    return trace.exported([&] {
        ZA_PASS(trace.need(set, list));
        return za::pkcs7::decode_attributes(*set, list);
    });
}
