/* The routines behind the direct exports, single calls and batches. The exports are generated: each hands its parameters over as
 * they came, and nothing in them is looked at before this side has. */
#pragma once

#include <stddef.h>

#include "hosts/module/typed_value.h"

#ifdef __cplusplus
extern "C" {
#endif

#define NORVANE_NUMBER(value) \
  { {.number = (value)}, 0 }
#define NORVANE_OPTION(value) \
  { {.option = (value)}, 0 }
#define NORVANE_RANGE(values, count) \
  { {.data = (values)}, (count) }
#define NORVANE_TEXT(text) \
  { {.data = (text)}, 0 }

#define NORVANE_RUN(id, in, out) \
  norvane_run((id), (in), sizeof(in) / sizeof((in)[0]), (out), sizeof(out) / sizeof((out)[0]))

/* The function with this dispatch id. The counts must be those of its signature. */
uint32_t norvane_run(uint32_t id, const norvane_value* in, size_t in_count, void* const* out, size_t out_count);

struct norvane_column;

/* The batch of the function with this dispatch id. */
size_t norvane_run_batch(uint32_t id, size_t rows, const struct norvane_column* inputs, size_t input_count,
                         double* const* outputs, size_t output_count, uint32_t* statuses);

#ifdef __cplusplus
}
#endif
