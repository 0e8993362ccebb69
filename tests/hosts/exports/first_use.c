/* The first calls of a process: while memory runs out sooner or later, and by several threads at
 * once. Each trial is a process of its own. */
#define _GNU_SOURCE
#include <math.h>
#include <norvane.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#define THREADS 8
#define PLENTY 1000000000L
#define OWN __attribute__((visibility("default"))) /* before that of the C library */

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

/* Allocations that succeed from now on. */
static long left = PLENTY;
static int granted(void) { return __atomic_sub_fetch(&left, 1, __ATOMIC_RELAXED) >= 0; }

OWN void* malloc(size_t size) { return granted() ? __libc_malloc(size) : NULL; }
OWN void* calloc(size_t count, size_t size) { return granted() ? __libc_calloc(count, size) : NULL; }
OWN void* realloc(void* memory, size_t size) { return granted() ? __libc_realloc(memory, size) : NULL; }
OWN void* aligned_alloc(size_t alignment, size_t size) { return granted() ? __libc_memalign(alignment, size) : NULL; }

static const double gas[22] = {0.965, 0.003, 0.006, 0.018, 0.0045, 0,      0,     0,
                               0,     0,     0.001, 0.001, 0.0005, 0.0003, 0.0007};

/* Whether the library does `task` rightly; `may_refuse`: refusing it for want of memory is right too. */
static int done(int task, int may_refuse) {
  double z = 0, density = 0, molar = 0, mass = 0, value = 1.0;
  uint32_t status, range;
  const char* message = NULL;
  switch (task) {
    case 0:
      status = Norvane_AGA8_M(60.0, 6.85, gas, 22, 1, 1, &z, &density, &molar, &mass, &range);
      return status == 0 ? fabs(z - 0.861993) < 1e-6 : may_refuse && status == NORVANE_NOT_RUN;
    case 1:
      status = Norvane_AGA10_M(60.0, 6.85, gas, 22, 1, &value, &range);
      return status == 0 ? value > 350 && value < 450 : may_refuse && status == NORVANE_NOT_RUN;
    default:
      status = norvane_convert("m", "mm", &value, 1, &message);
      return status == 0 ? value == 1000.0 : may_refuse;
  }
}

static int with_memory_for(long allocations) {
  int task, right = 1;
  left = allocations;
  for (task = 0; task < 3; ++task) right &= done(task, 1);
  norvane_last_message();
  norvane_identity();
  if (left >= 0) return right ? 2 : 0;
  left = PLENTY;
  for (task = 0; task < 3; ++task) right &= done(task, 0);
  return right && strstr(norvane_identity(), "MATCH") == NULL;
}

static pthread_barrier_t barrier;
static void* thread(void* number) {
  const int first = *(int*)number;
  int task, right = 1;
  pthread_barrier_wait(&barrier);
  for (task = 0; task < 3; ++task) right &= done((first + task) % 3, 0);
  return right ? number : NULL;
}

static int together(void) {
  pthread_t threads[THREADS];
  int numbers[THREADS], i, right = 1;
  void* answer;
  pthread_barrier_init(&barrier, NULL, THREADS);
  for (i = 0; i < THREADS; ++i) {
    numbers[i] = i;
    if (pthread_create(&threads[i], NULL, thread, &numbers[i]) != 0) return 0;
  }
  for (i = 0; i < THREADS; ++i) right &= pthread_join(threads[i], &answer) == 0 && answer != NULL;
  return right;
}

/* What the trial answers in a process of its own; 0 when it crashes. */
static int trial(long allocations) {
  int status = 0;
  const pid_t child = fork();
  if (child == 0) {
    alarm(20); /* one that hangs is killed */
    _exit(allocations >= 0 ? with_memory_for(allocations) : together());
  }
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : 0;
}

int main(void) {
  long allocations;
  int i, answer = 1;
  for (allocations = 0; answer == 1; allocations += allocations < 200 ? 1 : 43) answer = trial(allocations);
  if (answer != 2) {
    printf("wrong with memory for fewer than %ld allocations\n", allocations);
    return 1;
  }
  for (i = 0; i < 20; ++i)
    if (trial(-1) != 1) return puts("wrong when threads call at once"), 1;
  return 0;
}
