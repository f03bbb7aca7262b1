#include "issue/alternative_names.hpp"

#include <zacert.h>

#include "base/arguments.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <array>

namespace tool {

namespace {

Octets ascii(const std::string &text, const std::string &what) {
    const bool plain =
        std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
    if (text.empty() || !plain) {
        throw Failure("expected ASCII text without blanks as " + what + ", found " + text);
    }
    return {text.begin(), text.end()};
}

Octets address(const std::string &text) {
    std::array<uint8_t, 16> octets{};
    if (inet_pton(AF_INET, text.c_str(), octets.data()) == 1) {
        return {octets.begin(), octets.begin() + 4};
    }
    if (inet_pton(AF_INET6, text.c_str(), octets.data()) == 1) {
        return {octets.begin(), octets.end()};
    }
    throw Failure("expected an IPv4 or IPv6 address, found " + text);
}

}  // namespace

void add_name_options(Arguments &command, NameOptions &options) {
    const auto add = [&](const char *name, std::vector<std::string> &values, const char *text) {
        command.add_repeatable(name, values, text).heading("Alternative names");
    };
    add("--dns", options.dns, "host name; repeatable, as the next three are");
    add("--email", options.email, "e-mail address");
    add("--ip", options.ip, "IPv4 or IPv6 address");
    add("--uri", options.uri, "URI");
}

Octets general_names(const NameOptions &options) {
    // GeneralName ::= CHOICE { rfc822Name [1] IA5String, dNSName [2] IA5String,
    //     uniformResourceIdentifier [6] IA5String, iPAddress [7] OCTET STRING, ... }
    Octets names;
    const auto append = [&](unsigned choice, const Octets &value) {
        const Octets name = der(primitive(choice), {value});
        names.insert(names.end(), name.begin(), name.end());
    };
    for (const std::string &name : options.dns) {
        append(2, ascii(name, "a host name"));
    }
    for (const std::string &mail : options.email) {
        append(1, ascii(mail, "an e-mail address"));
    }
    for (const std::string &ip : options.ip) {
        append(7, address(ip));
    }
    for (const std::string &uri : options.uri) {
        append(6, ascii(uri, "a URI"));
    }
    return names.empty() ? Octets() : der(ZA_DER_ID_SEQUENCE, {names});
}

}  // namespace tool
