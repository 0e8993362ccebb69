// A module that carries the C++ runtime in itself has to take that runtime's memory along when it is unloaded.
#pragma once

#if defined(NORVANE_OWN_RUNTIME)
// Of libstdc++, not in its headers: frees the 72 KiB that it sets aside for exceptions when there is no memory left.
namespace __gnu_cxx {
void __freeres();
}
#endif

namespace norvane::host {

// The last thing before the module goes. Nothing for a module that shares the runtime with its process.
inline void release_runtime() noexcept {
#if defined(NORVANE_OWN_RUNTIME)
  __gnu_cxx::__freeres();
#endif
}

}  // namespace norvane::host
