#include "ocsp/za_ocsp_standard.hpp"

namespace za::ocsp {

Status join(Bytes before, Bytes more, Octets &out) {
    Octets both;
    ZA_PASS(both.allocate(before.size() + more.size()));
    put(put(both.data(), before), more);
    out = std::move(both);
    return Status::ok;
}

}  // namespace za::ocsp
