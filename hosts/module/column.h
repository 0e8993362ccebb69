/* An input of a batch, as the direct exports take it and as norvane.h shows it. */
#pragma once

#include <stddef.h>

#if !defined(NORVANE_COLUMN)
#define NORVANE_COLUMN
typedef struct norvane_column {
  const double* values; /* the number of the first row; a list: its first number; null: left out */
  size_t row_step;      /* numbers from one row to the next; 0: the same for every row */
  size_t cells;         /* numbers of a list, 1 for a single value */
  size_t cell_step;     /* numbers from one cell of a list to the next */
} norvane_column;
#endif
