#include "names/za_low_general_name.hpp"
#include "runtime/trace.hpp"

#include <algorithm>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

// Programs are linked against this layout.
static_assert(sizeof(void *) != 8 ||
              (sizeof(ZI_GeneralName) == 240 && offsetof(ZI_GeneralName, otherNameValue) == 32 &&
               offsetof(ZI_GeneralName, directoryName) == 152));

namespace za::names {
namespace {

struct StringForm {
    uint32_t choice;
    Bytes GeneralNames::*view;
    Anybuf ZI_GeneralName::*record;
    const char *read_failed;
    const char *copy_failed;
};

constexpr std::array<StringForm, 4> kStringForms{{
    {kRfc822Name, &GeneralNames::rfc822_name, &ZI_GeneralName::rfc822Name,
     "------>Decode Rfc822Name err.", "------>Rfc822Name ZI_CopyAnybuf"},
    {kDnsName, &GeneralNames::dns_name, &ZI_GeneralName::dNSName, "------>Decode dNSName err.",
     "------>dNSName ZI_CopyAnybuf"},
    {kUri, &GeneralNames::uri, &ZI_GeneralName::uniformResourceIdentifier,
     "------>Decode uniformResourceIdentifier err.",
     "------>uniformResourceIdentifier ZI_CopyAnybuf"},
    {kIpAddress, &GeneralNames::ip_address, &ZI_GeneralName::iPAddress,
     "------>Decode iPAddress err.", "------>iPAddress ZI_CopyAnybuf"},
}};

const StringForm *string_form(uint32_t choice) {
    for (const StringForm &form : kStringForms) {
        if (form.choice == choice) {
            return &form;
        }
    }
    return nullptr;
}

// directoryName [4] Name, tagged explicitly because Name is a CHOICE
Status decode_directory(const asn1::Element &in, NameList &out) {
    asn1::Element name;
    uint32_t tag = 0;
    ZA_TRY(ZAsn1_ReadExplicit, asn1::read_explicit(in, name, tag));
    ZA_TRY(ZI_DecodeIssuerSubject, decode_issuer_subject(name, out));
    return Status::ok;
}

// The number alone decides what a child is; its class and the forms without a row are not looked
// at.
Status decode_child(const asn1::Element &child, GeneralNames &out, bool &found) {
    const uint32_t choice = child.octets.front() & 0x1Fu;
    const StringForm *form = string_form(choice);
    if ((form == nullptr && choice != kDirectoryName) || out.present[choice] != 0) {
        return Status::ok;
    }
    if (form != nullptr) {
        asn1::Content content;
        ZA_TRY_AS(form->read_failed, asn1::read_string(child, content));
        out.*form->view = content.octets;
    } else {
        ZA_PASS(decode_directory(child, out.directory));
    }
    out.present[choice] = 1;
    found = true;
    return Status::ok;
}

}  // namespace

Status decode_general_names(const asn1::Element &in, GeneralNames &out, bool &found) {
    // GeneralNames ::= SEQUENCE OF
    asn1::Children children;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, children));
    GeneralNames names;
    names.present = out.present;
    bool any = false;
    for (asn1::Element child; children.next(child);) {
        ZA_PASS(decode_child(child, names, any));
    }
    found = any;
    out = std::move(names);
    return Status::ok;
}

namespace {

// Copies of what was found, kept until all of them exist.
class Copies {
  public:
    Status make(const GeneralNames &names) {
        for (size_t i = 0; i < kStringForms.size(); ++i) {
            ZA_TRY_AS(kStringForms[i].copy_failed, octets_[i].assign(names.*kStringForms[i].view));
        }
        ZA_TRY(ZI_CopyAnybuf, directory_.copy(names.directory));
        return Status::ok;
    }

    // What a field held before is the caller's: a form whose flag is not set may hold anything.
    void hand_over(const GeneralNames &names, ZI_GeneralName &out) {
        for (size_t i = 0; i < kStringForms.size(); ++i) {
            if (is_new(kStringForms[i].choice, names, out)) {
                Anybuf &record = out.*kStringForms[i].record;
                record = {};
                record.dataLen = to_u32(octets_[i].size());
                record.data = octets_[i].release();
                record.dataType = asn1::primitive(kStringForms[i].choice);
            }
        }
        if (is_new(kDirectoryName, names, out)) {
            out.directoryName.first = directory_.release();
        }
        std::copy(names.present.begin(), names.present.end(), out.present);
    }

  private:
    static bool is_new(uint32_t choice, const GeneralNames &names, const ZI_GeneralName &out) {
        return names.present[choice] != 0 && out.present[choice] == 0;
    }

    std::array<Octets, kStringForms.size()> octets_;
    CallerEntries directory_;
};

}  // namespace
}  // namespace za::names

using za::Status;

uint32_t ZI_DecodeGeneralNameS(const Anybuf *in, ZI_GeneralName *record, uint32_t *found) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, record, found));
        *found = 0;
        za::names::GeneralNames names;
        std::copy(std::begin(record->present), std::end(record->present), names.present.begin());
        bool any = false;
        ZA_PASS(za::names::decode_general_names(za::asn1::Element(*in), names, any));
        za::names::Copies copies;
        ZA_PASS(copies.make(names));
        copies.hand_over(names, *record);
        *found = any ? 1 : 0;
        return Status::ok;
    });
}

uint32_t ZI_DecodeGeneralName(const Anybuf *, ZI_GeneralName *) {
    return trace.exported([] { return Status::ok; });
}
