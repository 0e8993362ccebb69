// Loading and unloading of the shared object: the contexts of its threads go with it.
#include "hosts/module/module.h"
#include "hosts/module/own_runtime.h"

namespace {

__attribute__((constructor)) void loaded() { norvane::host::attach(); }

__attribute__((destructor)) void unloaded() {
  norvane::host::detach();
  norvane::host::release_runtime();
}

}  // namespace
