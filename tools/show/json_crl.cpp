#include "show/json.hpp"

namespace tool {

Json crl_json(const Crl &crl) {
    Json json{{"file", file_json(crl.file)},
              {"index", crl.index},
              {"kind", "crl"},
              {"version", crl.version},
              {"signature_algorithm", identifier_json(crl.signature_algorithm)},
              {"issuer", name_json(crl.issuer)},
              {"this_update", instant_json(crl.this_update)}};
    if (crl.next_update) {
        json["next_update"] = instant_json(*crl.next_update);
    }
    json["extensions"] = extensions_json(crl.extensions);
    json["num_revoked"] = crl.num_revoked;
    return json;
}

Json entry_json(const RevokedEntry &entry) {
    Json json{{"serial", entry.serial.hex()}, {"revocation_date", instant_json(entry.date)}};
    if (!entry.reason.empty()) {
        json["reason"] = entry.reason;
    }
    if (!entry.extensions.empty()) {
        json["extensions"] = extensions_json(entry.extensions);
    }
    return json;
}

}  // namespace tool
