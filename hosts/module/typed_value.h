/* How a caller that knows types hands an argument to the library. The generated exports are C, so this is too. */
#pragma once

#include <stdint.h>

/* An argument in the form that its parameter takes. All 64 bits of the first part are set. */
typedef struct norvane_value {
  union {
    double number;    /* number */
    uint64_t option;  /* option */
    const void* data; /* range: the host's list; text: the host's text */
  };
  uint32_t count; /* of a range that is a pointer to its numbers */
} norvane_value;
