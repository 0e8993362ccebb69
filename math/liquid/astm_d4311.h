// ASTM D4311: volume correction factors of asphalt to 15 degC (metric table) and 60 degF (customary table).
#pragma once

#include "core/outcome.h"

namespace norvane::ASTM_D4311 {

struct Arguments {
  double value = 0.0;        // at the base temperature: degAPI 0 to 34.9, or kg/m3 from 850
  double temperature = 0.0;  // degF 0 to 500, or degC -25 to 275
};
struct Result {
  double ctl = 0.0;
};

// Errors: argument_error outside the table, which alone the equations stand for.
Outcome factor_60F(const Arguments& in, Result& out) noexcept;
Outcome factor_15C(const Arguments& in, Result& out) noexcept;

}  // namespace norvane::ASTM_D4311
