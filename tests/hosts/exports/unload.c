/* A program that loads the library, calculates on several threads, and unloads it while they still run: their
 * contexts leave with the library, and their ends must not look for it. And a program that loads and unloads it
 * all day: nothing stays behind. */
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>

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

int main(int count, char** arguments) {
  int round;
  long lost;
  if (count != 2) return 2;
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
  puts("complete");
  return 0;
}
