// The module as an automation server: its class factory, its registration, and the entry points that the system calls.
#include <stdexcept>
#include <string>

#include "hosts/com/com_functions.h"
#include "hosts/com/identity.h"
#include "hosts/com/registrar.h"
#include "hosts/com/this_module.h"

#define NORVANE_WIDE_(text) L##text
#define NORVANE_WIDE(text) NORVANE_WIDE_(text)

namespace norvane::com {
namespace {

// Resources with the registry scripts.
constexpr int appid_script = 101;
constexpr int class_script = 103;

class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IClassFactory*>(this);
    return S_OK;
  }
  // A static object: whoever holds it holds the module.
  ULONG STDMETHODCALLTYPE AddRef() override {
    module_lock();
    return 2;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    module_unlock();
    return 1;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    CCOMFunctions* made = nullptr;
    HRESULT result = CCOMFunctions::Create(made);
    if (FAILED(result)) return result;
    result = made->QueryInterface(iid, object);
    made->Release();
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lock ? module_lock() : module_unlock();
    return S_OK;
  }
};

ClassFactory class_factory;

// The module of the library: its identifiers and how it registers.
class CNorvaneXLLModule {
 public:
  // Throws rather than register a module without a path.
  explicit CNorvaneXLLModule(bool per_user) : path_(module_path()), per_user_(per_user) {
    if (path_.empty()) throw std::runtime_error("the module's path cannot be had");
    registrar_.Replace(L"APPID", L"{" NORVANE_WIDE(NORVANE_APPID) L"}");
    registrar_.Replace(L"MODULE", path_);
  }

  HRESULT Register() {
    HRESULT result = RunScript(appid_script, true);
    if (SUCCEEDED(result)) result = RunScript(class_script, true);
    if (SUCCEEDED(result)) result = RegisterTypes();
    return result;
  }

  // Goes on after a failure, so that as little as possible stays behind.
  HRESULT Unregister() {
    HRESULT result = UnregisterTypes();
    for (int script : {class_script, appid_script}) {
      const HRESULT next = RunScript(script, false);
      if (SUCCEEDED(result)) result = next;
    }
    return result;
  }

 private:
  HRESULT RunScript(int id, bool install) {
    HRSRC found = FindResourceW(this_module(), MAKEINTRESOURCEW(id), L"REGISTRY");
    HGLOBAL loaded = found != nullptr ? LoadResource(this_module(), found) : nullptr;
    const auto* bytes = loaded != nullptr ? static_cast<const char*>(LockResource(loaded)) : nullptr;
    if (bytes == nullptr) return HRESULT_FROM_WIN32(GetLastError());
    return registrar_.Run(std::wstring(bytes, bytes + SizeofResource(this_module(), found)), install);
  }

  // A routine of the OLE library that older systems do not have.
  template <class Routine>
  static Routine Optional(const char* name) {
    return reinterpret_cast<Routine>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), name)));
  }

  HRESULT RegisterTypes() {
    ITypeLib* library = nullptr;
    HRESULT result = load_type_library(&library);
    if (FAILED(result)) return result;
    using Routine = HRESULT(WINAPI*)(ITypeLib*, OLECHAR*, OLECHAR*);
    const auto for_user = per_user_ ? Optional<Routine>("RegisterTypeLibForUser") : nullptr;
    result = for_user != nullptr ? for_user(library, path_.data(), nullptr)
                                 : RegisterTypeLib(library, path_.data(), nullptr);
    library->Release();
    return result;
  }

  // Removing what is already gone is no failure, whatever the system says to that.
  HRESULT UnregisterTypes() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, L"TypeLib\\{" NORVANE_WIDE(NORVANE_LIBID) L"}\\1.0", 0, KEY_READ, &key) !=
        ERROR_SUCCESS)
      return S_OK;
    RegCloseKey(key);
    using Routine = HRESULT(WINAPI*)(REFGUID, WORD, WORD, LCID, SYSKIND);
    const auto for_user = per_user_ ? Optional<Routine>("UnRegisterTypeLibForUser") : nullptr;
    return for_user != nullptr ? for_user(LIBID_Norvane, 1, 0, 0, SYS_WIN64)
                               : UnRegisterTypeLib(LIBID_Norvane, 1, 0, 0, SYS_WIN64);
  }

  std::wstring path_;
  Registrar registrar_;
  bool per_user_;
};

// The registration of a process that has redirected its HKEY_CLASSES_ROOT is for its user alone. The root
// opened without a name is the root itself, unless it is redirected.
bool classes_root_redirected() {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, nullptr, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  const bool redirected = key != HKEY_CLASSES_ROOT;
  if (redirected) RegCloseKey(key);
  return redirected;
}

// Points HKEY_CLASSES_ROOT of this process at the user's classes while it lives.
class UserClasses {
 public:
  UserClasses() {
    HKEY classes = nullptr;
    result_ = RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                              &classes, nullptr);
    if (result_ != ERROR_SUCCESS) return;
    result_ = RegOverridePredefKey(HKEY_CLASSES_ROOT, classes);
    RegCloseKey(classes);
  }
  ~UserClasses() {
    if (result_ == ERROR_SUCCESS) RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
  }
  UserClasses(const UserClasses&) = delete;
  UserClasses& operator=(const UserClasses&) = delete;
  HRESULT result() const { return HRESULT_FROM_WIN32(static_cast<DWORD>(result_)); }

 private:
  LSTATUS result_;
};

// Texts of the registry are those of the system's language, whatever the thread's is.
class SystemLocale {
 public:
  SystemLocale() : before_(GetThreadLocale()) { SetThreadLocale(LOCALE_SYSTEM_DEFAULT); }
  ~SystemLocale() { SetThreadLocale(before_); }
  SystemLocale(const SystemLocale&) = delete;
  SystemLocale& operator=(const SystemLocale&) = delete;

 private:
  LCID before_;
};

HRESULT change_registration(bool install, bool per_user) noexcept {
  try {
    const SystemLocale locale;
    CNorvaneXLLModule module(per_user || classes_root_redirected());
    return install ? module.Register() : module.Unregister();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

HRESULT change_user_registration(bool install) noexcept {
  const UserClasses classes;
  return SUCCEEDED(classes.result()) ? change_registration(install, true) : classes.result();
}

}  // namespace

}  // namespace norvane::com

using norvane::com::change_registration;
using norvane::com::change_user_registration;

// Definitions of the entry points that the system's headers declare.

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (clsid != CLSID_Functions) return CLASS_E_CLASSNOTAVAILABLE;
  return norvane::com::class_factory.QueryInterface(iid, object);
}

STDAPI DllCanUnloadNow() { return norvane::com::module_locked() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return change_registration(true, false); }

STDAPI DllUnregisterServer() { return change_registration(false, false); }

// `regsvr32 /n /i:user` registers for the user alone, `regsvr32 /n /i` for the machine.
STDAPI DllInstall(BOOL install, PCWSTR command) {
  if (command == nullptr || *command == L'\0') return change_registration(install != FALSE, false);
  if (lstrcmpiW(command, L"user") == 0) return change_user_registration(install != FALSE);
  return E_INVALIDARG;
}
