#include "cert/za_cert_parts.hpp"

namespace za::cert {

void Time::set(int32_t utc) {
    *this = {};
    is_utc_ = true;
    seconds_ = utc;
}

void Time::decoded(const asn1::TimeFields &fields, bool is_utc) {
    is_utc_ = is_utc;
    is_decoded_ = true;
    fields_ = fields;
}

Status Time::seconds(int32_t &out) const {
    if (is_decoded_) {
        return asn1::to_seconds(fields_, out);
    }
    out = seconds_;
    return Status::ok;
}

Status Time::utc(int32_t &out) const {
    if (!is_utc_) {
        out = 0;
        return Status::ok;
    }
    return seconds(out);
}

Status Kept::keep(const TraceSource &trace, Bytes octets, Bytes &out) {
    Octets copy;
    ZA_PASS(copy.assign(octets));
    ZA_PASS(blocks_.append(trace, std::move(copy)));
    out = blocks_.back().bytes();
    return Status::ok;
}

}  // namespace za::cert
