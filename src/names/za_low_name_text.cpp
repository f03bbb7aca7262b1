#include "names/za_low_name.hpp"
#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

struct TextKey {
    uint32_t kind;
    std::string_view key;
};

// In the order of the text.
constexpr std::array<TextKey, 10> kTextKeys{{
    {kCountry, "C="},
    {kOrganization, "O="},
    {kOrganizationalUnit, "OU="},
    {kCommonName, "CN="},
    {kEmail, "E="},
    {kState, "S="},
    {kLocality, "L="},
    {kPostalAddress, "PA="},
    {kPostalCode, "PC="},
    {kTelephone, "Phone="},
}};

bool has_key(uint32_t kind) {
    return std::any_of(kTextKeys.begin(), kTextKeys.end(),
                       [kind](const TextKey &row) { return row.kind == kind; });
}

// Text that is counted in a first run and written in a second.
class DnText {
  public:
    explicit DnText(uint8_t *to) : to_(to) {}

    void add(Bytes octets) {
        if (to_ != nullptr) {
            to_ = put(to_, octets);
        }
        size_ += octets.size();
    }
    void add(std::string_view text) { add(bytes_of(text)); }
    void begin_component() { add(size_ == 0 ? "" : ","); }
    size_t size() const { return size_; }

  private:
    uint8_t *to_;
    size_t size_ = 0;
};

Status add_other(const ZI_NameEntry &entry, DnText &out) {
    Octets dotted;
    ZA_PASS(oid_to_text(bytes_of(entry.attrOid), dotted));
    out.begin_component();
    out.add("OID.");
    out.add(dotted.bytes());
    out.add("=");
    out.add(bytes_of(entry.attrValue));
    return Status::ok;
}

// Two names are compared by their texts, so that no attribute may be left out.
Status add_components(const ZI_NameEntry *first, DnText &out) {
    for (const TextKey &row : kTextKeys) {
        for (const ZI_NameEntry *entry = first; entry != nullptr; entry = entry->nextEntry) {
            if (entry->attrKind == row.kind) {
                out.begin_component();
                out.add(row.key);
                out.add(bytes_of(entry->attrValue));
            }
        }
    }
    for (const ZI_NameEntry *entry = first; entry != nullptr; entry = entry->nextEntry) {
        if (!has_key(entry->attrKind)) {
            ZA_PASS(add_other(*entry, out));
        }
    }
    return Status::ok;
}

}  // namespace

Status get_dn(const ZI_NameEntry *first, Octets &out) {
    DnText count(nullptr);
    ZA_PASS(add_components(first, count));
    Octets text;
    ZA_PASS(text.allocate(count.size()));
    DnText written(text.data());
    ZA_PASS(add_components(first, written));
    out.swap(text);
    return Status::ok;
}

}  // namespace za::names

using za::Status;

uint32_t ZI_GetDN(const ZI_NameEntry *first, char *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(outLen));
        za::Octets text;
        ZA_PASS(za::names::get_dn(first, text));
        za::hand_out(text.bytes(), reinterpret_cast<uint8_t *>(out), outLen);
        return Status::ok;
    });
}
