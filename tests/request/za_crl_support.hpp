// CRL contexts in tests.
#pragma once

#include "request/za_crl_context.hpp"
#include "support/bytes.hpp"

#include <gtest/gtest.h>
#include <string>

namespace za::test {

struct CrlHandle {
    mutable request::Crl crl;

    operator void *() const { return &crl; }
    uint32_t set(int32_t id, const Octets &value) const {
        return ZACert_SetCrlAttributeChar(&crl, id, value.data(), int32_t(value.size()));
    }
    uint32_t set_int(int32_t id, int32_t value) const {
        return ZACert_SetCrlAttributeInt(&crl, id, value);
    }
    Octets get(int32_t id) const {
        return two_calls([&](uint8_t *out, uint32_t *len) {
            return ZACert_GetCrlAttributeChar(&crl, id, out, len);
        });
    }
    std::string hex(int32_t id) const { return to_hex(get(id)); }
    std::string number(int32_t id) const {
        uint32_t value = 7;
        EXPECT_EQ(ZACert_GetCrlAttributeInt(&crl, id, &value), 0u);
        return std::to_string(value);
    }
    // Expects the buffer it gives untouched.
    bool move() const {
        uint8_t octet = 0xA5;
        uint32_t len = 7;
        EXPECT_EQ(ZACert_GetCrlAttributeChar(&crl, CRL_CERT_NEXT, &octet, &len), 0u);
        EXPECT_EQ(octet, 0xA5);
        return len == 1;
    }
    uint32_t decode(const Octets &der) const {
        return ZACert_DecodeCrl(&crl, der.data(), uint32_t(der.size()));
    }
    Octets encode(uint32_t *status = nullptr) const {
        return two_calls(
            [&](uint8_t *out, uint32_t *len) { return ZACert_EncodeCrl(&crl, out, len); }, status);
    }
    // "[serial date reason]" of the current entry and of all behind it.
    std::string entries() const {
        std::string all;
        for (bool more = !get(CRL_CERT_SERIALNUMBER).empty(); more; more = move()) {
            all += "[" + hex(CRL_CERT_SERIALNUMBER) + " " + number(CRL_REVOCATIONDATE) + " " +
                   hex(CRLEX_CRLREASON) + "]";
        }
        return all;
    }
};

}  // namespace za::test
