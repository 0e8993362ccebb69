// The module as its own objects see it: what keeps it loaded, where it is, and its type library.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

namespace norvane::com {

// Objects, references to the class factory and the locks that clients ask for keep the module loaded.
void module_lock() noexcept;
void module_unlock() noexcept;
bool module_locked() noexcept;

HMODULE this_module() noexcept;

// Full path of this module; empty when it cannot be had.
std::wstring module_path();

// The type library in this module's resources; nothing needs to be registered.
HRESULT load_type_library(ITypeLib** library) noexcept;

}  // namespace norvane::com
