// The components of a distinguished name as one line of text, and back.
#include <zacert.h>

#include "runtime/bytes.hpp"
#include "text/za_pem.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string_view>

namespace za::text {
namespace {

constexpr size_t kMostText = 1024;

// In the order of the arguments.
enum Component : size_t {
    kCountry,
    kOrganization,
    kUnit,
    kCommonName,
    kEmail,
    kState,
    kLocality,
    kPostalAddress,
    kPostalCode,
    kTelephone,
    kIdentityCard,
    kComponents
};

constexpr size_t kLimited = kIdentityCard;  // the components that the limit of a text counts

constexpr std::array<std::string_view, kComponents> kKeys{
    ",C=", ",O=", ",OU=", ",CN=", ",E=", ",S=", ",L=", ",PA=", ",PC=", ",Phone=", ",IDCard=",
};

constexpr std::array kGeneralFirst{
    kCountry, kOrganization, kUnit,          kCommonName, kEmail,
    kState,   kLocality,     kPostalAddress, kPostalCode, kTelephone,
};

constexpr std::array kSpecificFirst{
    kEmail,   kCommonName,    kUnit,       kOrganization, kLocality,     kState,
    kCountry, kPostalAddress, kPostalCode, kTelephone,    kIdentityCard,
};

// ---- Writing

using Values = std::array<Bytes, kComponents>;

Bytes value_of(const char *text, int32_t len) {
    return text == nullptr || len <= 0 ? Bytes{}
                                       : bytes_of(std::string_view(text, static_cast<size_t>(len)));
}

bool too_long(const Values &values) {
    uint64_t size = 0;
    for (const Bytes value : std::span(values).first<kLimited>()) {
        size += value.size();
    }
    return size > kMostText;
}

uint64_t size_of_text(const Values &values, std::span<const Component> order) {
    uint64_t size = 0;
    for (const Component component : order) {
        if (!values[component].empty()) {
            size += kKeys[component].size() + values[component].size();
        }
    }
    return size == 0 ? 0 : size - 1;
}

void put_text(char *out, const Values &values, std::span<const Component> order) {
    auto *to = reinterpret_cast<uint8_t *>(out);
    size_t commas_left_out = 1;
    for (const Component component : order) {
        if (!values[component].empty()) {
            to = put(to, bytes_of(kKeys[component].substr(commas_left_out)));
            to = put(to, values[component]);
            commas_left_out = 0;
        }
    }
}

int32_t generate(const Values &values, std::span<const Component> order, char *out,
                 int32_t *out_len) {
    if (too_long(values)) {
        return kFailure;
    }
    const uint64_t size = size_of_text(values, order);
    if (size > std::numeric_limits<int32_t>::max()) {
        return kFailure;
    }
    if (out != nullptr) {
        put_text(out, values, order);
    }
    if (out_len != nullptr) {
        *out_len = static_cast<int32_t>(size);
    }
    return 0;
}

// ---- Reading

// Where a value ends, and which of several counts.
struct Rule {
    std::span<const std::string_view> ends;
    bool first_counts = false;
};

constexpr std::array<std::string_view, 1> kComma{","};
constexpr std::array<std::string_view, 6> kEndsOfOrganization{
    ",E=", ",CN=", ",OU=", ",L=", ",S=", ",C="};
constexpr std::array<std::string_view, 6> kEndsOfUnit{",E=", ",CN=", ",O=", ",L=", ",S=", ",C="};
constexpr std::array<std::string_view, 6> kEndsOfCommonName{
    ",E=", ",OU=", ",O=", ",L=", ",S=", ",C="};

using Rules = std::array<Rule, kComponents>;

constexpr Rules kOneOfEach = [] {
    Rules rules{};
    rules.fill({kComma});
    return rules;
}();

// The unit runs on over further units, so that the text of several stays together.
constexpr Rules kSeveralUnits = [] {
    Rules rules = kOneOfEach;
    rules[kOrganization] = {kEndsOfOrganization};
    rules[kUnit] = {kEndsOfUnit, true};
    rules[kCommonName] = {kEndsOfCommonName};
    return rules;
}();

struct Output {
    char *text;
    int32_t *len;
};

void set_length(const Output &output, size_t len) {
    if (output.len != nullptr) {
        *output.len = static_cast<int32_t>(len);
    }
}

// A copy between two commas, so that the first key is like the others and every value has an end;
// the outputs may then overlap the text.
class Line {
  public:
    explicit Line(Bytes text) : size_(text.size() + 2) {
        area_[0] = ',';
        *put(area_.data() + 1, text) = ',';
    }

    std::string_view text() const { return text_of({area_.data(), size_}); }

  private:
    std::array<uint8_t, kMostText + 2> area_;
    size_t size_;
};

std::string_view value_at(std::string_view line, size_t at, const Rule &rule) {
    size_t end = line.size() - 1;
    for (const std::string_view stop : rule.ends) {
        end = std::min(end, line.find(stop, at));
    }
    return line.substr(at, end - at);
}

using Found = std::array<std::string_view, kComponents>;  // without data: not there

void find_values_at(std::string_view line, size_t at, const Rules &rules, Found &found) {
    for (size_t i = 0; i < kComponents; ++i) {
        const bool settled = rules[i].first_counts && found[i].data() != nullptr;
        if (!settled && line.substr(at).starts_with(kKeys[i])) {
            found[i] = value_at(line, at + kKeys[i].size(), rules[i]);
        }
    }
}

int32_t parse(std::span<const Output> outputs, const Rules &rules, const char *text,
              int32_t text_len) {
    for (const Output &output : outputs) {
        set_length(output, 0);
    }
    const Bytes given = value_of(text, text_len);
    if (given.size() > kMostText) {
        return kFailure;
    }
    const Line line(given);
    Found found{};
    // Keys are looked for inside values too.
    for (size_t at = 0; at < line.text().size(); ++at) {
        find_values_at(line.text(), at, rules, found);
    }
    for (size_t i = 0; i < outputs.size(); ++i) {
        set_length(outputs[i], found[i].size());
        if (outputs[i].text != nullptr) {
            put(reinterpret_cast<uint8_t *>(outputs[i].text), bytes_of(found[i]));
        }
    }
    return 0;
}

}  // namespace
}  // namespace za::text

using za::text::Output;
using za::text::value_of;
using za::text::Values;

int32_t ZA_GenerateDN(const char *country, int32_t countryLen, const char *organization,
                      int32_t organizationLen, const char *unit, int32_t unitLen,
                      const char *commonName, int32_t commonNameLen, const char *email,
                      int32_t emailLen, const char *state, int32_t stateLen, const char *locality,
                      int32_t localityLen, const char *postalAddress, int32_t postalAddressLen,
                      const char *postalCode, int32_t postalCodeLen, const char *phone,
                      int32_t phoneLen, char *out, int32_t *outLen) {
    const Values values{
        value_of(country, countryLen),
        value_of(organization, organizationLen),
        value_of(unit, unitLen),
        value_of(commonName, commonNameLen),
        value_of(email, emailLen),
        value_of(state, stateLen),
        value_of(locality, localityLen),
        value_of(postalAddress, postalAddressLen),
        value_of(postalCode, postalCodeLen),
        value_of(phone, phoneLen),
    };
    return za::text::generate(values, za::text::kGeneralFirst, out, outLen);
}

int32_t ZA_GenerateDN_ForMultOu(const char *country, int32_t countryLen, const char *organization,
                                int32_t organizationLen, const char *unit, int32_t unitLen,
                                const char *commonName, int32_t commonNameLen, const char *email,
                                int32_t emailLen, const char *state, int32_t stateLen,
                                const char *locality, int32_t localityLen,
                                const char *postalAddress, int32_t postalAddressLen,
                                const char *postalCode, int32_t postalCodeLen, const char *phone,
                                int32_t phoneLen, const char *idCard, int32_t idCardLen, char *out,
                                int32_t *outLen) {
    const Values values{
        value_of(country, countryLen),
        value_of(organization, organizationLen),
        value_of(unit, unitLen),
        value_of(commonName, commonNameLen),
        value_of(email, emailLen),
        value_of(state, stateLen),
        value_of(locality, localityLen),
        value_of(postalAddress, postalAddressLen),
        value_of(postalCode, postalCodeLen),
        value_of(phone, phoneLen),
        value_of(idCard, idCardLen),
    };
    return za::text::generate(values, za::text::kSpecificFirst, out, outLen);
}

int32_t ZA_ParseDN(char *country, int32_t *countryLen, char *organization, int32_t *organizationLen,
                   char *unit, int32_t *unitLen, char *commonName, int32_t *commonNameLen,
                   char *email, int32_t *emailLen, char *state, int32_t *stateLen, char *locality,
                   int32_t *localityLen, char *postalAddress, int32_t *postalAddressLen,
                   char *postalCode, int32_t *postalCodeLen, char *phone, int32_t *phoneLen,
                   const char *text, int32_t textLen) {
    const std::array outputs{
        Output{country, countryLen},
        Output{organization, organizationLen},
        Output{unit, unitLen},
        Output{commonName, commonNameLen},
        Output{email, emailLen},
        Output{state, stateLen},
        Output{locality, localityLen},
        Output{postalAddress, postalAddressLen},
        Output{postalCode, postalCodeLen},
        Output{phone, phoneLen},
    };
    return za::text::parse(outputs, za::text::kOneOfEach, text, textLen);
}

int32_t ZA_ParseDN_ForMultOu(char *country, int32_t *countryLen, char *organization,
                             int32_t *organizationLen, char *unit, int32_t *unitLen,
                             char *commonName, int32_t *commonNameLen, char *email,
                             int32_t *emailLen, char *state, int32_t *stateLen, char *locality,
                             int32_t *localityLen, char *postalAddress, int32_t *postalAddressLen,
                             char *postalCode, int32_t *postalCodeLen, char *phone,
                             int32_t *phoneLen, char *idCard, int32_t *idCardLen, const char *text,
                             int32_t textLen) {
    const std::array outputs{
        Output{country, countryLen},
        Output{organization, organizationLen},
        Output{unit, unitLen},
        Output{commonName, commonNameLen},
        Output{email, emailLen},
        Output{state, stateLen},
        Output{locality, localityLen},
        Output{postalAddress, postalAddressLen},
        Output{postalCode, postalCodeLen},
        Output{phone, phoneLen},
        Output{idCard, idCardLen},
    };
    return za::text::parse(outputs, za::text::kSeveralUnits, text, textLen);
}
