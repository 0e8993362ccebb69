// Preloaded into a program: from the request number REFUSE_FROM on, operator new finds no memory.
#include <dlfcn.h>
#include <stdatomic.h>
#include <stdlib.h>

extern void* __libc_malloc(size_t size);

void* malloc(size_t size) {
  static atomic_long count;
  static atomic_long limit = -1;
  if (limit < 0) {
    const char* text = getenv("REFUSE_FROM");
    limit = text == NULL ? 0 : atol(text);
  }
  return limit != 0 && atomic_fetch_add(&count, 1) + 1 >= limit ? NULL : __libc_malloc(size);
}
