#include "token.hpp"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zacert_pkcs11 {
namespace {

// Where a URI names no module: p11-kit's, which asks every module of the system's configuration.
constexpr const char *kSystemModules = "p11-kit-proxy.so";

// PKCS#11 pads its texts with blanks, which a URI leaves out.
template <size_t Size>
bool fits(const Text &wanted, const unsigned char (&padded)[Size]) {
    if (!wanted) {
        return true;
    }
    const std::string_view text(reinterpret_cast<const char *>(padded), Size);
    return text.substr(0, text.find_last_not_of(' ') + 1) == *wanted;
}

bool fits(const Text &wanted, const CK_VERSION &version) {
    const std::string major = std::to_string(version.major);
    return !wanted || *wanted == major || *wanted == major + "." + std::to_string(version.minor);
}

bool fits(const Text &wanted, CK_SLOT_ID slot) {
    return !wanted || *wanted == std::to_string(slot);
}

bool fits(const Uri &uri, const CK_INFO &library) {
    return fits(uri.library_manufacturer, library.manufacturerID) &&
           fits(uri.library_description, library.libraryDescription) &&
           fits(uri.library_version, library.libraryVersion);
}

bool fits(const Uri &uri, CK_SLOT_ID number, const CK_SLOT_INFO &slot, const CK_TOKEN_INFO &token) {
    return fits(uri.slot_id, number) && fits(uri.slot_manufacturer, slot.manufacturerID) &&
           fits(uri.slot_description, slot.slotDescription) && fits(uri.token, token.label) &&
           fits(uri.manufacturer, token.manufacturerID) && fits(uri.serial, token.serialNumber) &&
           fits(uri.model, token.model);
}

// The slots with a token in them. One that comes while they are counted waits for the next call.
uint32_t list_slots(CK_FUNCTION_LIST &p11, std::vector<CK_SLOT_ID> &out) {
    CK_ULONG count = 0;
    if (!accepted(p11.C_GetSlotList(CK_TRUE, nullptr, &count))) {
        return ZACERT_CryptErr;
    }
    out.resize(count);
    if (!accepted(p11.C_GetSlotList(CK_TRUE, out.data(), &count))) {
        return ZACERT_CryptErr;
    }
    out.resize(std::min<size_t>(count, out.size()));
    return 0;
}

// A token that cannot be asked, such as one pulled out meanwhile, does not fit.
bool slot_fits(CK_FUNCTION_LIST &p11, CK_SLOT_ID number, const Uri &uri) {
    CK_SLOT_INFO slot{};
    CK_TOKEN_INFO token{};
    return p11.C_GetSlotInfo(number, &slot) == CKR_OK &&
           p11.C_GetTokenInfo(number, &token) == CKR_OK &&
           (token.flags & CKF_TOKEN_INITIALIZED) != 0 && fits(uri, number, slot, token);
}

uint32_t find_slot(CK_FUNCTION_LIST &p11, const Uri &uri, CK_SLOT_ID &out) {
    CK_INFO library{};
    if (!accepted(p11.C_GetInfo(&library))) {
        return ZACERT_CryptErr;
    }
    if (!fits(uri, library)) {
        return ZACERT_ItemMissingErr;
    }
    std::vector<CK_SLOT_ID> slots;
    if (const uint32_t code = list_slots(p11, slots)) {
        return code;
    }
    std::erase_if(slots, [&](CK_SLOT_ID slot) { return !slot_fits(p11, slot, uri); });
    if (slots.size() != 1) {
        return slots.empty() ? ZACERT_ItemMissingErr : ZACERT_InvalidItem;
    }
    out = slots.front();
    return 0;
}

// The file's name of a pin-source; empty for a source of another kind.
std::string_view file_of(std::string_view source) {
    constexpr std::string_view kScheme = "file:";
    if (source.starts_with(kScheme)) {
        source.remove_prefix(kScheme.size());
        if (source.starts_with("//")) {
            source.remove_prefix(2);
        }
    }
    return source.starts_with('/') ? source : std::string_view();
}

struct File {
    int descriptor;

    explicit File(const std::string &path) : descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File() {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
};

// Octet by octet into the secret, so that no buffer keeps any.
uint32_t read_pin(const std::string &path, Secret &out) {
    const File file(path);
    for (;;) {
        uint8_t octet = 0;
        const ssize_t got = read(file.descriptor, &octet, 1);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return ZACERT_PrivateKeyErr;
        }
        if (got == 0) {
            out.cut_line_end();
            return 0;
        }
        const bool room = out.push_back(octet);
        OPENSSL_cleanse(&octet, sizeof octet);
        if (!room) {
            return ZACERT_LengthErr;
        }
    }
}

void add_text(std::vector<CK_ATTRIBUTE> &attributes, CK_ATTRIBUTE_TYPE type, const Text &text) {
    if (text) {
        attributes.push_back({type, const_cast<char *>(text->data()), text->size()});
    }
}

}  // namespace

uint32_t open_session(const Uri &uri, Session &out) {
    const std::string path = uri.module_path.value_or(kSystemModules);
    if (path.empty() || path.find('\0') != path.npos) {
        return ZACERT_GeneralErr;
    }
    ModuleHandle module;
    if (const uint32_t code = load_module(path, module)) {
        return code;
    }
    CK_SLOT_ID slot = 0;
    if (const uint32_t code = find_slot(functions(*module), uri, slot)) {
        return code;
    }
    return out.open(std::move(module), slot);
}

uint32_t log_in(const Session &session, std::optional<Secret> &pin) {
    CK_TOKEN_INFO token{};
    if (!accepted(session.p11().C_GetTokenInfo(session.slot(), &token))) {
        return ZACERT_CryptErr;
    }
    if ((token.flags & CKF_LOGIN_REQUIRED) == 0) {
        return 0;
    }
    if (!pin && (token.flags & CKF_PROTECTED_AUTHENTICATION_PATH) == 0) {
        return ZACERT_PrivateKeyErr;
    }
    const CK_RV result = session.log_in(CKU_USER, pin);
    const bool done = result == CKR_USER_ALREADY_LOGGED_IN || accepted(result);
    return done ? 0 : uint32_t{ZACERT_PrivateKeyErr};
}

uint32_t pin_of(const Uri &uri, Secret &out, bool &found) {
    found = uri.pin_value || uri.pin_source;
    if (uri.pin_value) {
        out.assign(uri.pin_value->bytes());
    }
    if (!uri.pin_source) {
        return 0;
    }
    const std::string path(file_of(*uri.pin_source));
    return path.empty() ? uint32_t{ZACERT_PrivateKeyErr} : read_pin(path, out);
}

uint32_t find_key(const Session &session, const Uri &uri, CK_OBJECT_HANDLE &out) {
    CK_OBJECT_CLASS kind = CKO_PRIVATE_KEY;
    std::vector<CK_ATTRIBUTE> attributes{{CKA_CLASS, &kind, sizeof kind}};
    add_text(attributes, CKA_LABEL, uri.object);
    add_text(attributes, CKA_ID, uri.id);
    std::vector<CK_OBJECT_HANDLE> found;
    if (const uint32_t code = session.find(attributes, found)) {
        return code;
    }
    if (found.size() != 1) {
        return found.empty() ? ZACERT_ItemMissingErr : ZACERT_InvalidItem;
    }
    out = found.front();
    return 0;
}

}  // namespace zacert_pkcs11
