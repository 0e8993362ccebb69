// Names that leave the module: on Windows the list of exports (.def) says which, elsewhere their visibility.
#pragma once

#if defined(_WIN32)
#define NORVANE_EXPORT extern "C"
#else
#define NORVANE_EXPORT extern "C" __attribute__((visibility("default")))
#endif
