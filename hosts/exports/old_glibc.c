/* Lets the shared object load with older versions of glibc than it was built with.
 *
 * The compiler's static libraries ask for what this system's glibc offers, some of it only a few years old. Here the
 * newer names are answered by older ones, so that nothing newer than glibc 2.17 is asked for. */
#define _GNU_SOURCE
#include <features.h>

#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 34)
#include <dlfcn.h>
#include <link.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/types.h> /* the types of pthread.h, whose prototypes would not be those of what stands here */

#define HIDDEN __attribute__((visibility("hidden")))

#if defined(__x86_64__)
#define FIRST_VERSION "GLIBC_2.2.5"
#elif defined(__aarch64__)
#define FIRST_VERSION "GLIBC_2.17"
#else
#error "the first version of glibc of this processor is not known here"
#endif

/* glibc 2.34 moved these from libpthread and gave them a new version; the old ones are there still. */
#define MOVED(name, parameters, arguments)                    \
  int old_##name parameters;                                  \
  __asm__(".symver old_" #name ", " #name "@" FIRST_VERSION); \
  HIDDEN int name parameters { return old_##name arguments; }

MOVED(pthread_key_create, (pthread_key_t * key, void (*destroy)(void*)), (key, destroy))
MOVED(pthread_key_delete, (pthread_key_t key), (key))
MOVED(pthread_setspecific, (pthread_key_t key, const void* value), (key, value))
MOVED(pthread_once, (pthread_once_t * once, void (*routine)(void)), (once, routine))
MOVED(pthread_rwlock_rdlock, (pthread_rwlock_t * lock), (lock))
MOVED(pthread_rwlock_wrlock, (pthread_rwlock_t * lock), (lock))
MOVED(pthread_rwlock_unlock, (pthread_rwlock_t * lock), (lock))

void* old_pthread_getspecific(pthread_key_t key);
__asm__(".symver old_pthread_getspecific, pthread_getspecific@" FIRST_VERSION);
HIDDEN void* pthread_getspecific(pthread_key_t key) { return old_pthread_getspecific(key); }

/* By this name the compiler's library only asks whether there are threads. */
HIDDEN int __pthread_key_create(pthread_key_t* key, void (*destroy)(void*)) {
  return old_pthread_key_create(key, destroy);
}

/* New in 2.32: whether a count may be changed without a lock. It never may. */
HIDDEN char __libc_single_threaded = 0;

/* New in 2.35: the unwinder asks where the frames of an address are described. */
struct search {
  uintptr_t address;
  struct dl_find_object* found;
};

static int is_there(struct dl_phdr_info* info, size_t size, void* data) {
  (void)size;
  struct search* search = data;
  uintptr_t low = UINTPTR_MAX, high = 0;
  void* frames = NULL;
  int inside = 0;
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)* header = &info->dlpi_phdr[i];
    const uintptr_t from = info->dlpi_addr + header->p_vaddr;
    if (header->p_type == PT_GNU_EH_FRAME) frames = (void*)from;
    if (header->p_type != PT_LOAD) continue;
    const uintptr_t to = from + header->p_memsz;
    if (from < low) low = from;
    if (to > high) high = to;
    inside |= search->address >= from && search->address < to;
  }
  if (!inside || frames == NULL) return 0;
  search->found->dlfo_map_start = (void*)low;
  search->found->dlfo_map_end = (void*)high;
  search->found->dlfo_eh_frame = frames;
  return 1;
}

HIDDEN int _dl_find_object(void* address, struct dl_find_object* found) {
  struct search search = {(uintptr_t)address, found};
  return dl_iterate_phdr(is_there, &search) == 1 ? 0 : -1;
}
#endif
