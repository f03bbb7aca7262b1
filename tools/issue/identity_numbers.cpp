#include "issue/identity_numbers.hpp"

#include "base/der.hpp"
#include "base/failure.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace tool {

namespace {

// The three papers of a person share one extension.
enum class Paper { resident_card, officer_card, passport, none };

struct Kind {
    std::string_view name;
    Paper paper;
    ZA_GbType type;
};

constexpr auto kKinds = std::to_array<Kind>({
    {"resident-card", Paper::resident_card, ZA_GB_IDENTITY},
    {"officer-card", Paper::officer_card, ZA_GB_IDENTITY},
    {"passport", Paper::passport, ZA_GB_IDENTITY},
    {"insurance", Paper::none, ZA_GB_INSURANCE},
    {"business-registration", Paper::none, ZA_GB_BUSINESS_REGISTRATION},
    {"organization-code", Paper::none, ZA_GB_ORGANIZATION_CODE},
    {"taxation", Paper::none, ZA_GB_TAXATION},
});

struct Identity {
    const Kind &kind;
    Octets number;
};

Octets octets_of_number(const Kind &kind, const std::string &text) {
    if (kind.paper == Paper::officer_card) {
        return fetched([&](uint8_t *out, uint32_t *length) {
            return ZI_UTF8String2Chinese(reinterpret_cast<const uint8_t *>(text.data()),
                                         static_cast<int32_t>(text.size()), out, length);
        });
    }
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               std::string_view(" '()+,-./:=?").find(c) != std::string_view::npos;
    });
    if (!plain) {
        throw Failure("expected letters and digits as the number of " + std::string(kind.name));
    }
    return {text.begin(), text.end()};
}

Identity parse(const std::string &text) {
    constexpr size_t kMaxNumber = 512;
    const size_t equals = std::min(text.find('='), text.size());
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind &row) {
        return row.name == std::string_view(text).substr(0, equals);
    });
    if (kind == kKinds.end() || equals + 1 >= text.size()) {
        throw Failure("expected KIND=NUMBER with one of " + identity_kinds() + "; found " + text);
    }
    Octets number = octets_of_number(*kind, text.substr(equals + 1));
    if (number.size() > kMaxNumber) {
        throw Failure("expected a number of at most 512 octets for " + std::string(kind->name));
    }
    return {*kind, std::move(number)};
}

void set_paper(const Identity &identity, ZA_GBPRIV_IDENTIFY &record) {
    const auto fill = [&](uint32_t &flag, uint8_t *field, int32_t &length) {
        if (flag != 0) {
            throw Failure("expected one number of " + std::string(identity.kind.name));
        }
        flag = 1;
        std::copy(identity.number.begin(), identity.number.end(), field);
        length = static_cast<int32_t>(identity.number.size());
    };
    switch (identity.kind.paper) {
        case Paper::resident_card:
            fill(record.residenterCardFlag, record.residenterCardNumber,
                 record.residenterCardNumberLen);
            break;
        case Paper::officer_card:
            fill(record.militaryOfficerCardFlag, record.militaryOfficerCardNumber,
                 record.militaryOfficerCardNumberLen);
            break;
        case Paper::passport:
            fill(record.passportFlag, record.passportNumber, record.passportNumberLen);
            break;
        case Paper::none:
            break;
    }
}

}  // namespace

std::string identity_kinds() {
    std::string text;
    for (const Kind &kind : kKinds) {
        text += (text.empty() ? "" : ", ") + std::string(kind.name);
    }
    return text;
}

void set_identities(const std::vector<std::string> &identities, CertificateWriter &writer) {
    ZA_GBPRIV_IDENTIFY papers{};
    std::vector<ZA_GbType> used;
    for (const std::string &text : identities) {
        const Identity identity = parse(text);
        if (identity.kind.paper != Paper::none) {
            set_paper(identity, papers);
            continue;
        }
        if (std::find(used.begin(), used.end(), identity.kind.type) != used.end()) {
            throw Failure("expected one number of " + std::string(identity.kind.name));
        }
        used.push_back(identity.kind.type);
        writer.add_identity(identity.kind.type, identity.number.data(), identity.number.size());
    }
    if ((papers.residenterCardFlag | papers.militaryOfficerCardFlag | papers.passportFlag) != 0) {
        writer.add_identity(ZA_GB_IDENTITY, &papers, sizeof papers);
    }
}

}  // namespace tool
