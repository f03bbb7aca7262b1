#include <zacert/pkcs11.h>

#include "key.hpp"
#include "token.hpp"

#include <cstring>
#include <new>
#include <openssl/err.h>

namespace {

using namespace zacert_pkcs11;

constexpr uint32_t kTag = 0x5A50314B;

// The frame of every function: libcrypto's queue of errors stays as the caller had it, and missing
// memory becomes a code.
template <class Body>
uint32_t exported(const Body &body) noexcept {
    ERR_set_mark();
    uint32_t code = ZACERT_MemoryErr;
    try {
        code = body();
    } catch (...) {
        code = ZACERT_MemoryErr;
    }
    ERR_pop_to_mark();
    return code;
}

bool read_record(const void *octets, zacert_pkcs11_key &out) {
    std::memcpy(&out, octets, sizeof out);
    return out.tag == kTag && out.session != nullptr;
}

uint32_t hand_out(Bytes octets, uint8_t *out, uint32_t *out_len) {
    if (out != nullptr && *out_len < octets.size()) {
        return ZACERT_LengthErr;
    }
    *out_len = static_cast<uint32_t>(octets.size());
    if (out != nullptr) {
        std::ranges::copy(octets, out);
    }
    return 0;
}

// The caller's PIN, or else the URI's; none leaves `out` empty.
uint32_t choose_pin(const uint8_t *pin, uint32_t pin_len, const Uri &uri,
                    std::optional<Secret> &out) {
    bool found = pin != nullptr;
    out.emplace();
    uint32_t code = 0;
    if (found) {
        code = out->assign({pin, pin_len}) ? 0 : uint32_t{ZACERT_LengthErr};
    } else {
        code = pin_of(uri, *out, found);
    }
    if (!found) {
        out.reset();
    }
    return code;
}

uint32_t open_key(const Uri &uri, int32_t digest, zacert_pkcs11_session &out) {
    if (const uint32_t code = open_session(uri, out.token)) {
        return code;
    }
    if (const uint32_t code = log_in(out.token, out.pin)) {
        return code;
    }
    CK_OBJECT_HANDLE object = CK_INVALID_HANDLE;
    if (const uint32_t code = find_key(out.token, uri, object)) {
        return code;
    }
    if (const uint32_t code = describe(out.token, object, out.key)) {
        return code;
    }
    CK_BBOOL asks = CK_FALSE;
    out.asks_each_time =
        out.token.read_number(object, CKA_ALWAYS_AUTHENTICATE, asks) && asks != CK_FALSE;
    if (!out.asks_each_time) {
        out.pin.reset();
    }
    Method method;
    return choose_method(out.key, digest, method);
}

// The token's signature of what was prepared: RSA as it stands, two halves otherwise.
uint32_t token_sign(zacert_pkcs11_session &session, CK_MECHANISM_TYPE type,
                    std::vector<uint8_t> &in, std::vector<uint8_t> &out) {
    CK_FUNCTION_LIST &p11 = session.token.p11();
    const CK_SESSION_HANDLE handle = session.token.handle();
    CK_MECHANISM mechanism{type, nullptr, 0};
    if (!accepted(p11.C_SignInit(handle, &mechanism, session.key.object))) {
        return ZACERT_CryptErr;
    }
    const bool admitted = !session.asks_each_time ||
                          accepted(session.token.log_in(CKU_CONTEXT_SPECIFIC, session.pin));
    out.resize(session.key.rsa ? session.key.most : 2 * session.key.coordinate);
    CK_ULONG len = out.size();
    // After a refused PIN this call ends the operation, which would be in the way of the next one.
    const CK_RV result = p11.C_Sign(handle, in.data(), in.size(), out.data(), &len);
    if (!admitted) {
        return ZACERT_PrivateKeyErr;
    }
    return accepted(result) && len == out.size() ? 0 : uint32_t{ZACERT_CryptErr};
}

uint32_t sign(zacert_pkcs11_session &session, int32_t digest, Bytes in, std::vector<uint8_t> &out) {
    const std::lock_guard lock(session.turn);
    Method method;
    if (const uint32_t code = choose_method(session.key, digest, method)) {
        return code;
    }
    std::vector<uint8_t> prepared;
    if (const uint32_t code = prepare(session.key, method, in, prepared)) {
        return code;
    }
    std::vector<uint8_t> raw;
    if (const uint32_t code = token_sign(session, method.mechanism, prepared, raw)) {
        return code;
    }
    if (session.key.rsa) {
        out = std::move(raw);
        return 0;
    }
    return to_der(raw, out);
}

}  // namespace

uint32_t zacert_pkcs11_open(const char *uri, const uint8_t *pin, uint32_t pinLen, int32_t digest,
                            zacert_pkcs11_key *out) {
    if (uri == nullptr || out == nullptr) {
        return ZACERT_GeneralErr;
    }
    return exported([&]() -> uint32_t {
        Uri parsed;
        if (const uint32_t code = parse(uri, parsed)) {
            return code;
        }
        auto session = std::make_unique<zacert_pkcs11_session>();
        if (const uint32_t code = choose_pin(pin, pinLen, parsed, session->pin)) {
            return code;
        }
        if (const uint32_t code = open_key(parsed, digest, *session)) {
            return code;
        }
        *out = {kTag, digest, session.release()};
        return 0;
    });
}

uint32_t zacert_pkcs11_close(zacert_pkcs11_key *key) {
    if (key == nullptr || key->session == nullptr) {
        return 0;
    }
    if (key->tag != kTag) {
        return ZACERT_TypeErr;
    }
    delete key->session;
    *key = {};
    return 0;
}

int32_t zacert_pkcs11_sign(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                           void *context) {
    if (outLen == nullptr || (context == nullptr && out != nullptr) ||
        (out != nullptr && in == nullptr && inLen > 0)) {
        return ZACERT_GeneralErr;
    }
    if (context == nullptr) {
        *outLen = ZACERT_PKCS11_QUERY_LEN;
        return 0;
    }
    zacert_pkcs11_key key;
    if (!read_record(context, key)) {
        return ZACERT_TypeErr;
    }
    if (out == nullptr) {
        *outLen = static_cast<uint32_t>(key.session->key.most);
        return 0;
    }
    if (*outLen < key.session->key.most) {
        return ZACERT_LengthErr;
    }
    const uint32_t code = exported([&] {
        std::vector<uint8_t> signature;
        const uint32_t result = sign(*key.session, key.digest, {in, inLen}, signature);
        return result != 0 ? result : hand_out(signature, out, outLen);
    });
    return static_cast<int32_t>(code);
}

uint32_t zacert_pkcs11_public_key(const zacert_pkcs11_key *key, uint8_t *out, uint32_t *outLen) {
    if (key == nullptr || outLen == nullptr) {
        return ZACERT_GeneralErr;
    }
    zacert_pkcs11_key record;
    if (!read_record(key, record)) {
        return ZACERT_TypeErr;
    }
    return exported([&] {
        const std::lock_guard lock(record.session->turn);
        std::vector<uint8_t> spki;
        const uint32_t code = read_public_key(record.session->token, record.session->key, spki);
        return code != 0 ? code : hand_out(spki, out, outLen);
    });
}

uint32_t zacert_pkcs11_token_result(void) {
    return static_cast<uint32_t>(last_refusal());
}
