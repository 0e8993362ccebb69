// What the densitometer calculations share.
#pragma once

#include <cstdint>

namespace norvane::densitometer {

enum class Outcome : std::uint8_t { ok = 0, argument_error = 1, calculation_error = 2 };

// A density that a meter can mean [kg/m3], both bounds inside. False for a NaN.
constexpr bool plausible(double density) { return density >= 0.0 && density <= 3000.0; }

}  // namespace norvane::densitometer
