// What certificates must agree in before a signature is checked.
#pragma once

#include "cert/za_cert_context.hpp"

namespace za::verify {

// 116: the texts of the two names differ.
Status check_names(const cert::Name &subject, const cert::Name &issuer);

// How much of the user certificate's validity counts.
enum class Validity { beginning, whole };

// 117. Times are compared as unsigned, so that those from 2038-01-19 on come last.
Status check_validity(const cert::Certificate &ca, const cert::Certificate &user, Validity validity,
                      uint32_t now);

}  // namespace za::verify
