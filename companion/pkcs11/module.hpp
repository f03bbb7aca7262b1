// PKCS#11 modules: shared libraries that are loaded once and initialized once, however many
// sessions there are.
#pragma once

#include <zacert/base.h>

#include "secret.hpp"

#include <memory>
#include <optional>
#include <p11-kit/pkcs11.h>
#include <string>
#include <vector>

namespace zacert_pkcs11 {

struct Module;

// What PKCS#11 answered. Anything but CKR_OK is kept for zacert_pkcs11_token_result.
bool accepted(CK_RV result);
CK_RV last_refusal();

struct ReleaseModule {
    void operator()(Module *module) const;
};
using ModuleHandle = std::unique_ptr<Module, ReleaseModule>;

// The module at `path`, or one the loader finds by that name; initialized. 126: no such module.
uint32_t load_module(const std::string &path, ModuleHandle &out);

CK_FUNCTION_LIST &functions(Module &module);

// A session with a token, open until it goes.
class Session {
  public:
    Session() = default;
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;
    ~Session();

    uint32_t open(ModuleHandle module, CK_SLOT_ID slot);
    CK_FUNCTION_LIST &p11() const { return functions(*module_); }
    CK_SESSION_HANDLE handle() const { return handle_; }
    CK_SLOT_ID slot() const { return slot_; }

    // No PIN is for the token's own key pad.
    CK_RV log_in(CK_USER_TYPE user, std::optional<Secret> &pin) const;

    uint32_t list_mechanisms(std::vector<CK_MECHANISM_TYPE> &out) const;

    // The objects, at most two, with these attributes; enough to tell one from several.
    uint32_t find(std::vector<CK_ATTRIBUTE> attributes, std::vector<CK_OBJECT_HANDLE> &out) const;

    // The value of an attribute; false when the object has none or keeps it to itself.
    bool read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, std::vector<uint8_t> &out) const;
    // The same for a number or a boolean.
    template <class Number>
    bool read_number(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, Number &out) const {
        CK_ATTRIBUTE attribute{type, &out, sizeof out};
        return p11().C_GetAttributeValue(handle_, object, &attribute, 1) == CKR_OK &&
               attribute.ulValueLen == sizeof out;
    }

  private:
    ModuleHandle module_;
    CK_SESSION_HANDLE handle_ = CK_INVALID_HANDLE;
    CK_SLOT_ID slot_ = 0;
};

}  // namespace zacert_pkcs11
