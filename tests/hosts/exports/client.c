/* A native caller in C: published values, refused arguments, hostile counts, and calls from several threads.
 */
#include <math.h>
#include <norvane.h>
#include <stdio.h>
#include <string.h>

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#endif

static int failures = 0;

#define CHECK(condition)                                             \
  do {                                                               \
    if (!(condition)) {                                              \
      printf("%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                    \
    }                                                                \
  } while (0)

/* ISO 6976 mixture of eight components in the order of norvane.h; its superior calorific value by the 1995
 * edition at 15 / 15 / 15 degC with tabulated molar masses is 38.95947337829 MJ/m3. */
static const double gas[22] = {0.9247, 0.0175, 0.0068, 0.035, 0.0098, 0, 0, 0, 0, 0, 0.0034, 0.0022, 0, 0.0006};
static const double published = 38.95947337829;

struct result {
  double number[11];
  uint32_t range;
};

static uint32_t calorific(const double* list, uint32_t count, struct result* r) {
  double* n = r->number;
  return Norvane_ISO6976_1995_M(list, count, 1, 2, 1, n, n + 1, n + 2, n + 3, n + 4, n + 5, n + 6, n + 7, n + 8,
                                n + 9, n + 10, &r->range);
}

static int untouched(const struct result* r) {
  int i;
  for (i = 0; i < 11; ++i)
    if (r->number[i] != -7.0) return 0;
  return r->range == 77;
}

static void spoil(struct result* r) {
  int i;
  for (i = 0; i < 11; ++i) r->number[i] = -7.0;
  r->range = 77;
}

static void check_published_value(void) {
  struct result r;
  CHECK(strchr(norvane_version(), '.') != NULL);
  CHECK(strcmp(norvane_kernel(), "x86-64") == 0 || strcmp(norvane_kernel(), "arm64") == 0 ||
        strncmp(norvane_kernel(), "avx", 3) == 0);
  CHECK(calorific(gas, 22, &r) == 0);
  CHECK(fabs(r.number[0] - published) < 1e-9 * published);
  CHECK(r.range == 0);
  /* Lists of other components may be left out. */
  {
    double* n = r.number;
    CHECK(Norvane_ISO6976ex_1995_M(gas, 22, NULL, 0, n, 0, NULL, 9, NULL, 0, NULL, 0, 1, 2, 1, n, n + 1, n + 2, n + 3,
                                   n + 4, n + 5, n + 6, n + 7, n + 8, n + 9, n + 10, &r.range) == 0);
    CHECK(r.number[0] > 38);
  }
}

static void check_refusals(void) {
  struct result r;
  double calorific_mass = -7.0;
  double bad[22];
  spoil(&r);
  CHECK(calorific(NULL, 22, &r) == NORVANE_NOT_RUN);
  CHECK(calorific(NULL, 0xFFFFFFFFu, &r) == NORVANE_NOT_RUN);
  CHECK(calorific(gas, 0, &r) == NORVANE_NOT_RUN);
  CHECK(calorific(gas, 5, &r) == NORVANE_NOT_RUN);
  CHECK(calorific(gas, 0xFFFFFFFFu, &r) == NORVANE_NOT_RUN);
  CHECK(untouched(&r));
  CHECK(Norvane_AGA5_C(gas, 22, 0.6, NULL, &calorific_mass) == NORVANE_NOT_RUN);
  CHECK(Norvane_AGA5_C(gas, 22, 0.6, &calorific_mass, NULL) == NORVANE_NOT_RUN);
  CHECK(Norvane_AGA5_C(gas, 22, 1.5, &calorific_mass, &calorific_mass) == NORVANE_NOT_RUN); /* beyond its range */
  CHECK(strcmp(norvane_last_message(), "AGA5_C: [3] specific gravity (1.5) should be lower or equal than: 1") == 0);
  CHECK(calorific_mass == -7.0);
  CHECK(Norvane_AGA5_C(gas, 22, 0.6, NULL, &calorific_mass) == NORVANE_NOT_RUN);
  CHECK(strstr(norvane_last_message(), "AGA5_C: output 1") != NULL);
  CHECK(calorific(NULL, 22, &r) == NORVANE_NOT_RUN && strstr(norvane_last_message(), "[2] composition") != NULL);
  CHECK(calorific(gas, 22, &r) == 0 && norvane_last_message()[0] == 0);
  spoil(&r);
  CHECK(strcmp(norvane_status_text("AGA8_M", 0, 4), "composition error") == 0);
  CHECK(strcmp(norvane_status_text("AGA8_M", 5, 2), "component out of range") == 0);
  CHECK(norvane_status_text("AGA8_M", 6, 0)[0] == 0 && norvane_status_text("No", 0, 0)[0] == 0);
  CHECK(norvane_status_text(NULL, 0, 0)[0] == 0 && norvane_status_text("AGA8_M", 0, 77)[0] == 0);
  /* Found by the function itself: a status of its own, and the outputs it did not write are 0. */
  memcpy(bad, gas, sizeof bad);
  bad[3] = -0.1;
  CHECK(calorific(bad, 22, &r) != 0 && r.number[0] == 0.0);
  CHECK(strcmp(norvane_status_text("ISO6976_1995_M", 0, calorific(bad, 22, &r)), "calculation error") == 0);
  CHECK(strncmp(norvane_last_message(), "ISO6976_1995_M: ", 16) == 0);
  bad[3] = NAN;
  CHECK(calorific(bad, 22, &r) != 0 || r.number[0] - r.number[0] == 0.0);
}

/* Rows of a batch are single calls: by the function's own export and by its name, with rows that are refused. */
static void check_batches(void) {
  enum { ROWS = 600 };
  static double pressure[ROWS], z[ROWS], density[ROWS], range[ROWS];
  static uint32_t status[ROWS];
  const double temperature = 6.85, edition = 2.0;
  norvane_column in[5] = {{NULL, 1, 1, 0}, {NULL, 0, 1, 0}, {NULL, 0, 22, 1}, {NULL, 0, 0, 0}, {NULL, 0, 1, 0}};
  double* const out[5] = {z, density, NULL, NULL, range};
  size_t failed = 0;
  int i;
  in[0].values = pressure;
  in[1].values = &temperature;
  in[2].values = gas;
  in[4].values = &edition;
  for (i = 0; i < ROWS; ++i) pressure[i] = i % 7 == 6 ? NAN : 0.5 * i;
  for (i = 0; i < 2; ++i) {
    int row;
    memset(status, 77, sizeof status);
    failed = i == 0 ? Norvane_AGA8_M_Batch(ROWS, in, 5, out, 5, status)
                    : norvane_batch("aga8_m", ROWS, in, 5, out, 5, status);
    for (row = 0; row < ROWS; ++row) {
      double one[4] = {0, 0, 0, 0};
      uint32_t one_range = 0;
      const uint32_t one_status =
          Norvane_AGA8_M(pressure[row], 6.85, gas, 22, 1, 2, one, one + 1, one + 2, one + 3, &one_range);
      CHECK(status[row] == one_status);
      if (one_status != 0) {
        CHECK(z[row] != z[row] && density[row] != density[row] && range[row] != range[row]); /* NaN */
        --failed;
      } else {
        CHECK(memcmp(&z[row], one, sizeof *one) == 0 && memcmp(&density[row], one + 1, sizeof *one) == 0);
        CHECK(range[row] == one_range);
      }
    }
    CHECK(failed == 0 && norvane_last_message()[0] == 0);
  }
  CHECK(norvane_batch("AGA8_X", ROWS, in, 5, out, 5, status) == NORVANE_BATCH_REFUSED);
  CHECK(strcmp(norvane_last_message(), "there is no such function") == 0);
  CHECK(norvane_batch(NULL, ROWS, in, 5, out, 5, status) == NORVANE_BATCH_REFUSED);
  in[2].cells = 21;
  CHECK(Norvane_AGA8_M_Batch(ROWS, in, 5, out, 5, status) == NORVANE_BATCH_REFUSED);
  CHECK(strcmp(norvane_last_message(), "AGA8_M: [4] composition needs a list of 22 numbers") == 0);
  CHECK(Norvane_AGA8_M_Batch(ROWS, in, 4, out, 5, status) == NORVANE_BATCH_REFUSED);
  CHECK(Norvane_AGA8_M_Batch(ROWS, NULL, 5, out, 5, NULL) == NORVANE_BATCH_REFUSED);
}

static void check_conversions(void) {
  double values[2] = {870, 0};
  const char* message = NULL;
  CHECK(norvane_convert("psia", "bar(a)", values, 2, &message) == 0 && message[0] == 0);
  CHECK(fabs(values[0] - 59.984412) < 1e-5 && values[1] == 0);
  CHECK(norvane_convert("bara", "barg", values, 2, &message) == NORVANE_NOT_RUN && strstr(message, "atmosphere"));
  CHECK(norvane_convert("furlong", "m", values, 2, &message) == NORVANE_NOT_RUN && strstr(message, "furlong"));
  CHECK(norvane_convert("kg", "m", values, 2, NULL) == NORVANE_NOT_RUN && fabs(values[0] - 59.984412) < 1e-5);
  CHECK(norvane_convert(NULL, "m", values, 2, &message) == NORVANE_NOT_RUN && message[0] != 0);
  CHECK(norvane_convert("m", "mm", NULL, 2, &message) == NORVANE_NOT_RUN && strstr(message, "values"));
  CHECK(norvane_convert("m", "mm", NULL, 0, &message) == 0);
  CHECK(norvane_convert("in3", "m3", values, 2, &message) == 0 && message[0] != 0); /* not the physical factor */
}

#define THREADS 8
#define CALLS 500

static int wrong[THREADS];

static void many_calls(int thread) {
  struct result r;
  int i;
  for (i = 0; i < CALLS; ++i) {
    const int refused = (i + thread) % 5 == 0;
    const uint32_t status = calorific(gas, refused ? 3 : 22, &r);
    if (refused ? status != NORVANE_NOT_RUN : status != 0 || fabs(r.number[0] - published) > 1e-9 * published)
      ++wrong[thread];
  }
}

#if defined(_WIN32)
static DWORD WINAPI start(void* argument) {
  many_calls(*(int*)argument);
  return 0;
}
#else
static void* start(void* argument) {
  many_calls(*(int*)argument);
  return NULL;
}
#endif

static void check_threads(void) {
  int number[THREADS];
  int i;
#if defined(_WIN32)
  HANDLE thread[THREADS];
  for (i = 0; i < THREADS; ++i) {
    number[i] = i;
    thread[i] = CreateThread(NULL, 0, start, &number[i], 0, NULL);
  }
  WaitForMultipleObjects(THREADS, thread, TRUE, INFINITE);
#else
  pthread_t thread[THREADS];
  for (i = 0; i < THREADS; ++i) {
    number[i] = i;
    CHECK(pthread_create(&thread[i], NULL, start, &number[i]) == 0);
  }
  for (i = 0; i < THREADS; ++i) pthread_join(thread[i], NULL);
#endif
  for (i = 0; i < THREADS; ++i) CHECK(wrong[i] == 0);
}

int main(void) {
  check_published_value();
  check_refusals();
  check_batches();
  check_conversions();
  check_threads();
  printf("%d failures\n", failures);
  return failures != 0;
}
