#include "issue/profile.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace tool {

namespace {

// Bits of the first octet of KeyUsage.
constexpr uint8_t kDigitalSignature = 0x80;
constexpr uint8_t kNonRepudiation = 0x40;
constexpr uint8_t kKeyEncipherment = 0x20;
constexpr uint8_t kKeyAgreement = 0x08;
constexpr uint8_t kKeyCertSign = 0x04;
constexpr uint8_t kCrlSign = 0x02;

struct Profile {
    std::string_view name;
    uint8_t usage;
    bool takes_keys;   // others encrypt keys with it, or agree upon one
    uint32_t purpose;  // bit of attribute 129
    std::string_view purpose_id;
};

constexpr auto kProfiles = std::to_array<Profile>({
    {"ca", kKeyCertSign | kCrlSign, false, 0, {}},
    {"server", kDigitalSignature, true, 0x40, {}},
    {"client", kDigitalSignature, false, 0x80, {}},
    {"email", kDigitalSignature | kNonRepudiation, true, 0x200, {}},
    {"ocsp", kDigitalSignature, false, 0, "1.3.6.1.5.5.7.3.9"},
});

const Profile &profile_of(const std::string &name) {
    return *std::find_if(kProfiles.begin(), kProfiles.end(),
                         [&](const Profile &row) { return row.name == name; });
}

void set_purpose(const Profile &profile, CertificateWriter &writer) {
    if (profile.purpose != 0) {
        std::array<uint8_t, 4> bits{};
        for (size_t i = 0; i < bits.size(); ++i) {
            bits[i] = static_cast<uint8_t>(profile.purpose >> (8 * i));
        }
        writer.set(CERTEX_EXTKEY_USAGE, bits);
    }
    if (!profile.purpose_id.empty()) {
        writer.set(CERTEX_EXTKEY_USAGE_OID_DEFINE,
                   View(reinterpret_cast<const uint8_t *>(profile.purpose_id.data()),
                        profile.purpose_id.size()));
    }
}

}  // namespace

std::vector<std::string> profile_names() {
    std::vector<std::string> names;
    for (const Profile &profile : kProfiles) {
        names.emplace_back(profile.name);
    }
    return names;
}

bool is_ca_profile(const std::string &name) {
    return name == "ca";
}

void set_profile(const std::string &name, KeyKind key, std::optional<uint8_t> path_length,
                 CertificateWriter &writer) {
    const Profile &profile = profile_of(name);
    const uint8_t taking = key == KeyKind::rsa ? kKeyEncipherment : kKeyAgreement;
    // Those who are no CA get no basic constraints: the library writes their FALSE out, which DER
    // forbids and strict readers refuse.
    if (is_ca_profile(name)) {
        writer.set_octet(CERTEX_AUTHORITY, 1);
        if (path_length) {
            writer.set_octet(CERTEX_PATHLENCONSTRAINT, *path_length);
        }
    }
    writer.set_octet(CERTEX_KEYUSAGE,
                     static_cast<uint8_t>(profile.usage | (profile.takes_keys ? taking : 0)));
    set_purpose(profile, writer);
    if (name == "ocsp") {
        // ocspNoCheck (RFC 6960, 4.2.2.2.1): nobody asks a responder about its own certificate.
        const std::array<uint8_t, 2> null = {ZA_DER_ID_NULL, 0};
        writer.add_extension("1.3.6.1.5.5.7.48.1.5", null);
    }
}

}  // namespace tool
