#include "show/json.hpp"

namespace tool {

namespace {

Json attribute_json(const RequestAttribute &attribute) {
    Json json = identifier_json(attribute.type);
    if (attribute.has_extensions) {
        json["extensions"] = extensions_json(attribute.extensions);
        return json;
    }
    if (!attribute.problem.empty()) {
        json["problem"] = attribute.problem;
    }
    json["values"] = Json::array();
    for (const Text &value : attribute.values) {
        json["values"].push_back(text_json(value));
    }
    return json;
}

}  // namespace

Json request_json(const Request &request) {
    Json json{{"file", file_json(request.file)},
              {"index", request.index},
              {"kind", "request"},
              {"version", request.version},
              {"signature_algorithm", identifier_json(request.signature_algorithm)},
              {"subject", name_json(request.subject)},
              {"public_key", key_json(request.key)},
              {"attributes", Json::array()}};
    for (const RequestAttribute &attribute : request.attributes) {
        json["attributes"].push_back(attribute_json(attribute));
    }
    return json;
}

}  // namespace tool
