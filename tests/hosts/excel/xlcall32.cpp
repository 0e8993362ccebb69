// The stand-in's XLCall32.DLL: the older dialect's entry, passed on to the program.
#include <windows.h>

extern "C" __declspec(dllexport) int Excel4v(int function, void* result, int count, void** args) {
  using Entry = int (*)(int, int, void**, void*);
  const auto entry =
      reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), "MdCallBack")));
  constexpr int failed = 32;
  return entry != nullptr ? entry(function, count, args, result) : failed;
}
