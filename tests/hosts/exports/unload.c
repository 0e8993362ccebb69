/* A program that loads the library, calculates on several threads, and unloads it while they still run: their
 * contexts leave with the library, and their ends must not look for it. A program that loads and unloads it all day, or
 * starts threads all day: nothing stays behind. And one whose memory ends while the library sets itself up.
 *   exports_unload LIBRARY [step]    every step-th request for memory of a first call is refused (97; by hand: 1) */
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#define THREADS 4

typedef uint32_t (*aga5_function)(const double*, uint32_t, double, double*, double*);

static pthread_barrier_t called, unloaded;
static aga5_function aga5;
static int wrong[THREADS];

static void* work(void* argument) {
  const double gas[22] = {0.95, 0.05};
  double mass = 0, volume = 0;
  *(int*)argument = aga5(gas, 22, 0.6, &mass, &volume) != 0 || !(mass > 0);
  pthread_barrier_wait(&called);
  pthread_barrier_wait(&unloaded);
  return NULL;
}

static int one_call(const char* path) {
  const double gas[22] = {0.95, 0.05};
  double mass = 0, volume = 0;
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) return 0;
  *(void**)&aga5 = dlsym(library, "Norvane_AGA5_C");
  return aga5 != NULL && aga5(gas, 22, 0.6, &mass, &volume) == 0 && dlclose(library) == 0;
}

/* Bytes in use after a thousand cycles more; the first three thousand let the loader of the C library settle its own. */
static long lost_bytes(const char* path) {
  size_t before = 0;
  int i;
  for (i = 0; i < 4000; ++i) {
    if (i == 3000) before = mallinfo2().uordblks;
    if (!one_call(path)) return -1;
  }
  return (long)mallinfo2().uordblks - (long)before;
}

/* The library's requests come here: this program's malloc goes before the C library's. */
extern void* __libc_malloc(size_t size);
static long requests, refused; /* counted, and the number of the one that finds no memory; 0: none */
void* malloc(size_t size) { return refused > 0 && ++requests == refused ? NULL : __libc_malloc(size); }

/* A first call of every new library of which one request for memory is refused, then another with all of them. The
 * number of refusals, or -1. */
static long refuse_memory(const char* path, long step) {
  const double gas[22] = {0.95, 0.05};
  long n, tried = 0;
  for (n = 1;; n += n < 200 ? 1 : step) {
    double mass = 0, volume = 0, again = 0;
    uint32_t status;
    const char* (*message)(void);
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) return -1;
    *(void**)&aga5 = dlsym(library, "Norvane_AGA5_C");
    *(void**)&message = dlsym(library, "norvane_last_message");
    requests = 0;
    refused = n;
    status = aga5(gas, 22, 0.6, &mass, &volume);
    if (status != 0 && (status != 0xFFFFFFFFu || message()[0] == 0)) return -1;
    if (requests < n) return dlclose(library) == 0 ? tried : -1;
    refused = 0;
    if (aga5(gas, 22, 0.6, &again, &volume) != 0 || !(again > 0) || (status == 0 && mass != again)) {
      printf("request %ld: status %u, %.17g, then %.17g\n", n, (unsigned)status, mass, again);
      return -1;
    }
    dlclose(library);
    ++tried;
  }
}

/* Bytes in use after three times a thousand threads, each with a call of its own. */
static long lost_by_threads(const char* path) {
  size_t before = 0;
  int i, k;
  pthread_t threads[THREADS];
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) return -1;
  *(void**)&aga5 = dlsym(library, "Norvane_AGA5_C");
  pthread_barrier_init(&called, NULL, THREADS);
  pthread_barrier_init(&unloaded, NULL, THREADS);
  for (i = 0; i < 3000 + THREADS; i += THREADS) {
    if (i == THREADS) before = mallinfo2().uordblks;
    for (k = 0; k < THREADS; ++k) pthread_create(&threads[k], NULL, work, &wrong[k]);
    for (k = 0; k < THREADS; ++k) pthread_join(threads[k], NULL);
  }
  i = (int)((long)mallinfo2().uordblks - (long)before);
  return dlclose(library) == 0 ? i : -1;
}

int main(int count, char** arguments) {
  int round;
  long lost, tried;
  if (count < 2) return 2;
  for (round = 0; round < 3; ++round) {
    pthread_t threads[THREADS];
    int i;
    void* library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
      puts(dlerror());
      return 1;
    }
    *(void**)&aga5 = dlsym(library, "Norvane_AGA5_C");
    if (aga5 == NULL) return 1;
    pthread_barrier_init(&called, NULL, THREADS + 1);
    pthread_barrier_init(&unloaded, NULL, THREADS + 1);
    for (i = 0; i < THREADS; ++i) pthread_create(&threads[i], NULL, work, &wrong[i]);
    pthread_barrier_wait(&called);
    dlclose(library);
    library = dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD);
    if (library != NULL) {
      puts("the library is still loaded");
      return 1;
    }
    pthread_barrier_wait(&unloaded);
    for (i = 0; i < THREADS; ++i) {
      pthread_join(threads[i], NULL);
      if (wrong[i]) return 1;
    }
  }
  lost = lost_bytes(arguments[1]);
  printf("%ld bytes lost\n", lost);
  if (lost < 0 || lost > 1024) return 1;
  lost = lost_by_threads(arguments[1]);
  printf("%ld bytes lost by threads\n", lost);
  if (lost < 0 || lost > 1 << 20) return 1;
  tried = refuse_memory(arguments[1], count > 2 ? atol(arguments[2]) : 97);
  printf("%ld refusals of memory\n", tried);
  if (tried < 20) return 1;
  puts("complete");
  return 0;
}
