// ASTM D4311, the equations of Tables A and B in full precision. The printed factors have four decimals.
#include "math/liquid/astm_d4311.h"

namespace norvane::ASTM_D4311 {
namespace {

// CTL = a - b t + c t^2, t in degC.
struct Quadratic {
  double a, b, c;

  constexpr double at(double degC) const { return a - (b - c * degC) * degC; }
  // The same re-based to 60 degF. The coefficients for degF that the standard prints are these,
  // rounded: in full precision they meet the printed factors without a rounding rule of their own.
  constexpr double at_60F(double degF) const { return at((degF - 32.0) / 1.8) / at((60.0 - 32.0) / 1.8); }
};
constexpr Quadratic table_a = {1.0094684142, 0.000633413410744, 1.45710416212e-07};  // the heavier ones
constexpr Quadratic table_b = {1.0108020095, 0.00072343515319, 2.1996598346e-07};

// Table A: 966 kg/m3 and above, below 15.0 degAPI.
constexpr double heavy_from = 966.0;
constexpr double heavy_below_gravity = 15.0;

// Not beyond the limits, and a number.
bool within(double x, double low, double high) { return x >= low && x <= high; }

}  // namespace

Outcome factor_60F(const Arguments& in, Result& out) noexcept {
  if (!within(in.value, 0.0, 34.9)) return blame(in.value, argument_error, u"must be from % to %", 0.0, 34.9);
  if (!within(in.temperature, 0.0, 500.0))
    return blame(in.temperature, argument_error, u"must be from % to %", 0.0, 500.0);
  out.ctl = (in.value < heavy_below_gravity ? table_a : table_b).at_60F(in.temperature);
  return {};
}

Outcome factor_15C(const Arguments& in, Result& out) noexcept {
  if (!within(in.value, 850.0, 1300.0)) return blame(in.value, argument_error, u"must be from % to %", 850.0, 1300.0);
  if (!within(in.temperature, -25.0, 275.0))
    return blame(in.temperature, argument_error, u"must be from % to %", -25.0, 275.0);
  out.ctl = (in.value < heavy_from ? table_b : table_a).at(in.temperature);
  return {};
}

}  // namespace norvane::ASTM_D4311
