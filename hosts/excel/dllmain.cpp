// Loading and unloading of the module, and the end of threads. Nothing here may load libraries, wait for threads or
// call the host: on Windows this runs under the loader's lock. Building the catalogues takes memory only.
#include "hosts/excel/excel_context.h"
#include "hosts/module/module.h"
#include "hosts/module/own_runtime.h"

#if defined(_WIN32)

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* reserved) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      norvane::host::set_context_factory(norvane::excel::make_context);
      // Without a thread slot or the catalogues nothing here could answer: the load is refused.
      return norvane::host::attach() && norvane::host::module() != nullptr ? TRUE : FALSE;
    case DLL_THREAD_DETACH: norvane::host::thread_ended(); break;
    case DLL_PROCESS_DETACH:
      // A non-null last argument: the process ends, its other threads are gone and may have left locks behind.
      if (reserved == nullptr) {
        norvane::host::detach();
        norvane::host::release_runtime();
      }
      break;
    default: break;
  }
  return TRUE;
}

#else

namespace {

__attribute__((constructor)) void loaded() {
  norvane::host::set_context_factory(norvane::excel::make_context);
  norvane::host::attach();
}

__attribute__((destructor)) void unloaded() {
  norvane::host::detach();
  norvane::host::release_runtime();
}

}  // namespace

#endif
