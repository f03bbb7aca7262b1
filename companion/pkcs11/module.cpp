#include "module.hpp"

#include <dlfcn.h>
#include <mutex>

namespace zacert_pkcs11 {

struct Module {
    void *library = nullptr;
    CK_FUNCTION_LIST *functions = nullptr;
    bool initialized_here = false;
    size_t users = 0;
    Module *next = nullptr;
};

namespace {

// One lock for loading and unloading: a module is initialized for the whole process, so that its
// last user must not finalize it beside a new one.
std::mutex modules_lock;
Module *modules = nullptr;

thread_local CK_RV refusal = CKR_OK;

struct CloseLibrary {
    void operator()(void *library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, CloseLibrary>;

Module *loaded(const void *library) {
    for (Module *module = modules; module != nullptr; module = module->next) {
        if (module->library == library) {
            return module;
        }
    }
    return nullptr;
}

bool initialize(Module &module) {
    CK_C_INITIALIZE_ARGS arguments{};
    arguments.flags = CKF_OS_LOCKING_OK;
    const CK_RV result = module.functions->C_Initialize(&arguments);
    module.initialized_here = result == CKR_OK;
    return result == CKR_CRYPTOKI_ALREADY_INITIALIZED || accepted(result);
}

}  // namespace

bool accepted(CK_RV result) {
    if (result != CKR_OK) {
        refusal = result;
    }
    return result == CKR_OK;
}

CK_RV last_refusal() {
    return refusal;
}

CK_FUNCTION_LIST &functions(Module &module) {
    return *module.functions;
}

uint32_t load_module(const std::string &path, ModuleHandle &out) {
    const std::lock_guard lock(modules_lock);
    Library library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library) {
        return ZACERT_CryptErr;
    }
    // The loader counts as well: the second handle of a library is given back here.
    if (Module *const known = loaded(library.get())) {
        ++known->users;
        out.reset(known);
        return 0;
    }
    const auto get_functions =
        reinterpret_cast<CK_C_GetFunctionList>(dlsym(library.get(), "C_GetFunctionList"));
    auto module = std::make_unique<Module>();
    if (get_functions == nullptr || !accepted(get_functions(&module->functions)) ||
        module->functions == nullptr || !initialize(*module)) {
        return ZACERT_CryptErr;
    }
    module->library = library.release();
    module->users = 1;
    module->next = modules;
    modules = module.get();
    out.reset(module.release());
    return 0;
}

void ReleaseModule::operator()(Module *module) const {
    const std::lock_guard lock(modules_lock);
    if (--module->users > 0) {
        return;
    }
    Module **place = &modules;
    while (*place != module) {
        place = &(*place)->next;
    }
    *place = module->next;
    if (module->initialized_here) {
        module->functions->C_Finalize(nullptr);
    }
    dlclose(module->library);
    delete module;
}

Session::~Session() {
    if (handle_ != CK_INVALID_HANDLE) {
        p11().C_CloseSession(handle_);
    }
}

uint32_t Session::open(ModuleHandle module, CK_SLOT_ID slot) {
    module_ = std::move(module);
    slot_ = slot;
    CK_SESSION_HANDLE handle = CK_INVALID_HANDLE;
    if (!accepted(p11().C_OpenSession(slot, CKF_SERIAL_SESSION, nullptr, nullptr, &handle))) {
        return ZACERT_CryptErr;
    }
    handle_ = handle;
    return 0;
}

CK_RV Session::log_in(CK_USER_TYPE user, std::optional<Secret> &pin) const {
    return p11().C_Login(handle_, user, pin ? pin->data() : nullptr, pin ? pin->size() : 0);
}

uint32_t Session::list_mechanisms(std::vector<CK_MECHANISM_TYPE> &out) const {
    CK_ULONG count = 0;
    if (!accepted(p11().C_GetMechanismList(slot_, nullptr, &count))) {
        return ZACERT_CryptErr;
    }
    out.resize(count);
    if (!accepted(p11().C_GetMechanismList(slot_, out.data(), &count))) {
        return ZACERT_CryptErr;
    }
    out.resize(std::min<size_t>(count, out.size()));
    return 0;
}

uint32_t Session::find(std::vector<CK_ATTRIBUTE> attributes,
                       std::vector<CK_OBJECT_HANDLE> &out) const {
    out.resize(2);
    CK_ULONG count = 0;
    if (!accepted(p11().C_FindObjectsInit(handle_, attributes.data(), attributes.size()))) {
        return ZACERT_CryptErr;
    }
    const bool found = accepted(p11().C_FindObjects(handle_, out.data(), out.size(), &count));
    p11().C_FindObjectsFinal(handle_);
    if (!found) {
        return ZACERT_CryptErr;
    }
    out.resize(std::min<size_t>(count, out.size()));
    return 0;
}

bool Session::read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type,
                   std::vector<uint8_t> &out) const {
    constexpr CK_ULONG kMost = 1 << 20;
    CK_ATTRIBUTE attribute{type, nullptr, 0};
    if (p11().C_GetAttributeValue(handle_, object, &attribute, 1) != CKR_OK ||
        attribute.ulValueLen == 0 || attribute.ulValueLen > kMost) {
        return false;
    }
    out.resize(attribute.ulValueLen);
    attribute.pValue = out.data();
    if (p11().C_GetAttributeValue(handle_, object, &attribute, 1) != CKR_OK ||
        attribute.ulValueLen > out.size()) {
        return false;
    }
    out.resize(attribute.ulValueLen);
    return true;
}

}  // namespace zacert_pkcs11
