// The module as an automation server: what keeps it loaded, where it is, and its type library.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

namespace norvane::com {

// Objects, references to the class factory and the locks that clients ask for.
void module_lock() noexcept;
void module_unlock() noexcept;

// Full path of this module; empty when it cannot be had.
std::wstring module_path();

// The type library in this module's resources; nothing needs to be registered.
HRESULT load_type_library(ITypeLib** library) noexcept;

}  // namespace norvane::com
