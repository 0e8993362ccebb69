/* How a caller that knows types hands an argument to the library. The generated exports are C, so this is too. */
#pragma once

#include <stdint.h>

/* An argument in the form that its parameter takes. */
typedef struct norvane_value {
  const void* data; /* range: the host's list; text: the host's text */
  double number;    /* number */
  uint32_t option;  /* option; the count of a range that is a pointer to its numbers */
} norvane_value;
