// What the densitometer calculations share.
#pragma once

#include "core/outcome.h"

namespace norvane::densitometer {

// A density that a meter can mean [kg/m3], both bounds inside. False for a NaN.
constexpr bool plausible(double density) { return density >= 0.0 && density <= 3000.0; }

constexpr Outcome no_density(const char* which, double density) {
  return failure(calculation_error, u"the $ is % kg/m3, which is not within 0 to 3000", density).naming(which);
}

}  // namespace norvane::densitometer
