// AGA Report No. 5, Natural gas energy measurement: heating value from specific gravity and diluents.
//
//   G         specific gravity [-]
//   y_j       mole fraction of a diluent [-]
//   a_j, k_j  its terms by mass and by volume
#include "math/gas/aga5.h"

#include <cmath>

namespace norvane::AGA5 {
namespace {

// clang-format off
struct Diluent { std::size_t place; double a; double k; };  // place in the component order of AGA-8

constexpr Diluent diluents[] = {
    { 1,  0.000217, 16.639},  // nitrogen
    { 2,  0.000329, 25.318},  // carbon dioxide
    { 9,  0.000245, 18.801},  // oxygen
    {19,  0.000048,  3.612},  // helium
    { 8,  0.000174, 13.424},  // carbon monoxide
    { 6,  0.000174, 13.462},  // hydrogen sulfide
    { 5,  0.000146, 11.214},  // water
    { 7, -0.000009, -0.713},  // hydrogen
};
// clang-format on

constexpr double negative_tolerance = 1e-8;        // of the sum, beyond which a fraction counts as negative
constexpr double minimum_specific_gravity = 1e-6;  // the mass-based value divides by it

}  // namespace

Outcome calculate(const Gas& gas, Result& result) noexcept {
  double sum = 0.0, absolute_sum = 0.0, sum_a = 0.0, sum_k = 0.0;
  for (const Diluent& diluent : diluents) {
    const double y = gas.fractions[diluent.place];
    sum += y;
    absolute_sum += std::fabs(y);
    sum_a += diluent.a * y;
    sum_k += diluent.k * y;
  }
  // Written so that a NaN is refused too.
  if (!(sum <= 1.0)) return blame(gas.fractions, argument_error, u"holds % of diluents, more than %", sum, 1.0);
  if (!(absolute_sum - sum <= negative_tolerance))
    return blame(gas.fractions, argument_error, u"holds a negative amount of a diluent");
  const double G = gas.specific_gravity;
  if (!(G >= minimum_specific_gravity))
    return blame(gas.specific_gravity, calculation_error, u"must be at least %", minimum_specific_gravity);
  result = {(0.00197 / G + 0.02035 - 100.0 * sum_a / G) * 1e6, 1571.5 * G + 144.0 - 100.0 * sum_k};
  if (!std::isfinite(result.mass_based) || !std::isfinite(result.volume_based))
    return failure(calculation_error, u"the heating value is no finite number");
  return {};
}

constexpr CoefficientTable coefficient_tables[] = {
    rows("diluents", diluents),
};
constinit const CoefficientSet coefficient_set{"AGA-5", "AGA Report No. 5, terms of the diluents",
                                               coefficient_tables};

}  // namespace norvane::AGA5
