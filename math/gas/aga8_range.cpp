// AGA Report No. 8: ranges of composition, temperature and pressure of the 1994 and the 2017 edition.

#include "math/gas/aga8.h"

namespace norvane::AGA8 {

int composition_range_1994(const Composition& x) noexcept {
  const double butanes = x[i_butane] + x[n_butane];
  const double pentanes = x[i_pentane] + x[n_pentane];
  const bool beyond = x[methane] > 1.0 || x[nitrogen] > 1.0 || x[carbon_dioxide] > 1.0 || x[ethane] > 1.0 ||
                      x[hydrogen] > 1.0 || x[hydrogen_sulfide] > 1.0 || x[propane] > 0.12 || butanes > 0.06 ||
                      pentanes > 0.04 || x[helium] > 0.03 || x[carbon_monoxide] > 0.03 || x[argon] > 0.01 ||
                      x[oxygen] > 0.21;
  if (beyond) return 2;
  // Hexanes and heavier count one by one, not as a sum.
  const bool heavy = x[n_hexane] <= 0.002 && x[n_heptane] <= 0.002 && x[n_octane] <= 0.002 && x[n_nonane] <= 0.002 &&
                     x[n_decane] <= 0.002;
  const bool normal = x[methane] >= 0.45 && x[methane] <= 1.0 && x[ethane] <= 0.1 && x[propane] <= 0.04 &&
                      butanes <= 0.01 && pentanes <= 0.003 && heavy && x[carbon_monoxide] <= 0.03 &&
                      x[carbon_dioxide] <= 0.3 && x[nitrogen] <= 0.5 && x[helium] <= 0.002 && x[argon] == 0.0 &&
                      x[oxygen] == 0.0 && x[hydrogen_sulfide] <= 0.0002 && x[hydrogen] <= 0.1 && x[water] <= 0.0005;
  return normal ? 0 : 1;
}

int state_limits_1994(double t, double p) noexcept {
  return t >= -129.0 && t <= 204.0 && p >= 0.0 && p <= 137.9 ? 0 : 2;
}

int state_range_1994(double t, double p) noexcept {
  if (state_limits_1994(t, p) != 0) return 2;
  return t >= -8.0 && t <= 62.0 && p <= 12.0 ? 0 : 1;
}

namespace {

// Regions of the 2017 edition. The limits are upper ones, in the order of the components; the lower one is 0.
struct Region {
  double minimum_t;  // [degC]
  double maximum_p;  // [MPa]
  Composition limit;
};
// clang-format off
//   methane, nitrogen, carbon dioxide, ethane, propane, water, hydrogen sulfide, hydrogen, carbon monoxide, oxygen,
//   i-butane, n-butane, i-pentane, n-pentane, n-hexane, n-heptane, n-octane, n-nonane, n-decane, helium, argon
constexpr Region region_a{-4.0, 10.3,  // the carbon dioxide limit depends on the other components, see below
    {1.0, 0.5, 0.3, 0.1, 0.04, 0.0005, 0.001, 0.05, 0.01, 0.002,
     0.004, 0.006, 0.003, 0.003, 0.0012, 0.0004, 0.0003, 0.0003, 0.0003, 0.004, 0.002}};
constexpr Region region_b{-4.0, 2.1,
    {1.0, 0.5, 0.8, 0.25, 0.06, 0.014, 0.04, 1.0, 0.1, 0.01,
     0.015, 0.06, 0.02, 0.02, 0.002, 0.002, 0.002, 0.002, 0.002, 0.05, 0.03}};
constexpr Region region_c{-8.0, 21.0,
    {1.0, 0.03, 0.03, 0.04, 0.02, 0.00005, 0.001, 0.01, 0.01, 0.002,
     0.001, 0.004, 0.001, 0.001, 0.0003, 0.0001, 0.00003, 0.00003, 0.00003, 0.004, 0.002}};
// clang-format on

bool within(const Region& region, const Composition& x, double t, double p) noexcept {
  if (!(t >= region.minimum_t && p <= region.maximum_p)) return false;
  for (std::size_t i = 0; i < component_count; ++i)
    if (!(x[i] >= 0.0 && x[i] <= region.limit[i])) return false;
  return true;
}

// Carbon dioxide limit of region A: the heavier the rest of the gas, the less of it.
double carbon_dioxide_limit(const Composition& x) noexcept {
  if (x[propane] > 0.02) return 5.0 / 100.0;
  if (x[propane] > 0.01) return 7.0 / 100.0;
  if (x[i_butane] > 0.001) return 10.0 / 100.0;
  if (x[n_butane] > 0.003) return 10.0 / 100.0;
  if (x[nitrogen] > 0.15) return 10.0 / 100.0;
  if (x[nitrogen] > 0.07) return 20.0 / 100.0;
  return 30.0 / 100.0;
}

bool within_region_a(const Composition& x, double t, double p) noexcept {
  const double heptanes_plus = x[n_heptane] + x[n_octane] + x[n_nonane] + x[n_decane];
  return within(region_a, x, t, p) && x[carbon_dioxide] <= carbon_dioxide_limit(x) &&
         x[i_pentane] + x[n_pentane] <= 0.003 && x[n_hexane] + heptanes_plus <= 0.0015 && heptanes_plus <= 0.0004;
}

bool within_region_b(const Composition& x, double t, double p) noexcept {
  return within(region_b, x, t, p) && x[i_pentane] + x[n_pentane] <= 0.02;
}

}  // namespace

int range_2017(const Composition& x, double t, double p) noexcept {
  if (!(t >= -130.0 && t <= 180.0 && p >= 0.0 && p <= 280.0)) return 2;
  return within_region_a(x, t, p) || within_region_b(x, t, p) || within(region_c, x, t, p) ? 0 : 1;
}

}  // namespace norvane::AGA8
