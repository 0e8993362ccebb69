/* The density of one gas at many pressures, in one call.
 *
 *   cc batch.c $(pkg-config --cflags --libs norvane) -o batch
 */
#include <norvane.h>
#include <stdio.h>

#define ROWS 4

int main(void) {
  const double gas[22] = {0.965, 0.003, 0.006, 0.018, 0.0045, 0, 0, 0, 0, 0, 0.001, 0.001, 0.0005, 0.0003, 0.0007};
  const double pressures[ROWS] = {20.0, 40.0, 60.0, -80.0};
  const double temperature = 6.85;
  const norvane_column inputs[] = {
      {pressures, 1, 1, 0},    /* a number a row */
      {&temperature, 0, 1, 0}, /* the same for every row */
      {gas, 0, 22, 1},         /* 22 numbers behind each other, the same for every row */
      {NULL, 0, 0, 0},         /* left out: its default */
      {NULL, 0, 0, 0},
  };
  double z[ROWS], density[ROWS];
  double* const outputs[] = {z, density, NULL, NULL, NULL}; /* the others are not wanted */
  uint32_t statuses[ROWS];
  size_t i;

  const size_t failed = Norvane_AGA8_M_Batch(ROWS, inputs, 5, outputs, 5, statuses);
  if (failed == NORVANE_BATCH_REFUSED) {
    fprintf(stderr, "%s\n", norvane_last_message());
    return 1;
  }
  for (i = 0; i < ROWS; ++i) {
    if (statuses[i] == 0)
      printf("%g bar(a): Z %.6f, %.4f kg/m3\n", pressures[i], z[i], density[i]);
    else
      printf("%g bar(a): %s\n", pressures[i], norvane_status_text("AGA8_M", 0, statuses[i]));
  }
  printf("%u of %d without an answer\n", (unsigned)failed, ROWS);
  return 0;
}
