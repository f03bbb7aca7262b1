#include "base/der.hpp"
#include "base/elements.hpp"
#include "objects/extension_values.hpp"

#include <array>

namespace tool {

namespace {

struct Paper {
    std::string_view title;
    std::string_view member;
    std::string_view string_type;
};

// By the number of the context tag.
constexpr auto kPapers = std::to_array<Paper>({
    {"Resident identity card number", "resident_identity_card", "PrintableString"},
    {"Military officer card number", "military_officer_card", "UTF8String"},
    {"Passport number", "passport", "PrintableString"},
});

}  // namespace

ExtensionValue read_identity_numbers(View octets) {
    // SET { residentIdentityCardNumber [0] IMPLICIT PrintableString OPTIONAL,
    //     militaryOfficerCardNumber [1] IMPLICIT UTF8String OPTIONAL,
    //     passportNumber [2] IMPLICIT PrintableString OPTIONAL }
    IdentityNumbers value;
    for (Elements elements(only_element(octets, ZA_DER_ID_SET).content); !elements.at_end();) {
        const Element element = elements.next();
        const size_t number = element.identifier ^ primitive(0);
        if (number >= kPapers.size()) {
            throw LibraryError(ZACERT_TagErr);
        }
        const Paper &paper = kPapers[number];
        value.numbers.push_back({std::string(paper.title),
                                 std::string(paper.member),
                                 {text_of(element.content), std::string(paper.string_type), true}});
    }
    return value;
}

}  // namespace tool
