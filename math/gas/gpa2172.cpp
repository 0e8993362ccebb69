// GPA Standard 2172, Calculation of gross heating value, relative density, compressibility and theoretical
// hydrocarbon liquid content for natural gas mixtures; component properties of GPA 2145.
//
//   x_i  mole fraction [-]                            x_s  mole fraction of water in saturated gas [-]
//   b_i  summation factor [psia^-1/2, kPa^-1/2]       P    base pressure [psia, kPa]
//   G    relative density [-]                         Z    compressibility factor [-]
#include "math/gas/gpa2172.h"

#include <array>
#include <iterator>

#include "math/gas/gpa2145_table.h"

namespace norvane::GPA2172 {
namespace {

using GPA2145::Component;
using GPA2145::n_components;

constexpr std::size_t i_water = 5, i_isopentane = 12, i_n_pentane = 13, i_neopentane = 21;
static_assert(n_fractions == n_components + 1 && i_neopentane == n_components);

constexpr double sum_low = 0.9999, sum_high = 1.0001;
constexpr double smallest_amount = 1e-290;  // products with less lose digits to gradual underflow

// Base conditions of an edition of GPA 2145.
struct Edition {
  const Component* components;
  double saturation;     // x_s: vapour pressure of water over base pressure
  double air_summation;  // summation factor of dry air
  double pressure;       // P
};

// In the order of the editions 2000, 2003, 2009, 2016. The vapour pressure of water is 0.25636 psia, from
// 2016 on 0.2564 psia, at 60 degF, and 1.7058 kPa at 15 degC.
constexpr double psia = 14.696, kPa = 101.325;
constexpr Edition customary_editions[] = {
    {GPA2145::customary_2000, 0.017444202504082743, 0.005, psia},
    {GPA2145::customary_2003, 0.017444202504082743, 0.00678, psia},
    {GPA2145::customary_2016, 0.017444202504082743, 0.00523, psia},
    {GPA2145::customary_2016, 0.01744692433315188, 0.00537, psia},
};
constexpr Edition metric_editions[] = {
    {GPA2145::metric_2003, 0.016834937083641748, 0.00259, kPa},
    {GPA2145::metric_2003, 0.016834937083641748, 0.00259, kPa},
    {GPA2145::metric_2016, 0.016834937083641748, 0.00201, kPa},
    {GPA2145::metric_2016, 0.016834937083641748, 0.00201, kPa},
};
constexpr int n_editions = 4;
static_assert(std::size(customary_editions) == n_editions && std::size(metric_editions) == n_editions);

// Every property of a gas, summed over amounts of its components.
void add(Component& sum, double amount, const Component& c) noexcept {
  sum.molar_mass += amount * c.molar_mass;
  sum.ideal_relative_density += amount * c.ideal_relative_density;
  sum.gross_volume += amount * c.gross_volume;
  sum.gross_mass += amount * c.gross_mass;
  sum.net_volume += amount * c.net_volume;
  sum.summation += amount * c.summation;
}

// The sums divided by the amount of gas they hold: the mole fraction-weighted properties.
Component of_one_mole(const Component& sum, double amount) noexcept {
  return {sum.molar_mass / amount,   sum.ideal_relative_density / amount,
          sum.gross_volume / amount, sum.gross_mass / amount,
          sum.net_volume / amount,   sum.summation / amount};
}

// A property of gas that holds the share x_water of water.
constexpr double mixed(double x_water, double water, double dry) { return x_water * water + (1.0 - x_water) * dry; }

Component mixed_with_water(double x_water, const Component& dry, const Component& water) noexcept {
  return {mixed(x_water, water.molar_mass, dry.molar_mass),
          mixed(x_water, water.ideal_relative_density, dry.ideal_relative_density),
          mixed(x_water, water.gross_volume, dry.gross_volume),
          mixed(x_water, water.gross_mass, dry.gross_mass),
          mixed(x_water, water.net_volume, dry.net_volume),
          mixed(x_water, water.summation, dry.summation)};
}

// The real gas of one basis. x_water is the water that the air of the relative density carries: none with dry
// gas, else the water of the gas. False when the gas has no compressibility factor.
bool real_gas(const Component& ideal, const Edition& edition, double x_water, Basis& basis) noexcept {
  const double P = edition.pressure;
  const double s_air = mixed(x_water, edition.components[i_water].summation, edition.air_summation);
  const double Z = 1.0 - P * ideal.summation * ideal.summation;
  const double Z_air = 1.0 - P * s_air * s_air;
  if (!(Z > 0.0)) return false;
  basis.gross_volume = ideal.gross_volume / Z;
  basis.molar_mass = ideal.molar_mass;
  basis.ideal_relative_density = ideal.ideal_relative_density;
  basis.real_relative_density = ideal.ideal_relative_density * Z_air / Z;
  basis.compressibility = Z;
  basis.gross_mass = ideal.gross_mass;
  basis.net_volume = ideal.net_volume / Z;
  return true;
}

Outcome calculate(const Gas& gas, const Edition (&editions)[n_editions], Result& result) noexcept {
  if (gas.edition < 1 || gas.edition > n_editions)
    return blame(gas.edition, argument_error, u"must be within % to %", 1, n_editions);
  const Edition& edition = editions[gas.edition - 1];

  double total = 0.0;
  for (double fraction : gas.fractions) total += fraction;
  if (!(total >= sum_low && total <= sum_high))
    return blame(gas.fractions, composition_error, u"sums to %, not to 1 within %", total, sum_high - 1.0);

  std::array<double, n_components> x;
  for (std::size_t i = 0; i < n_components; ++i) x[i] = gas.fractions[i];
  switch (gas.mode) {
    case NeoPentane::to_isopentane: x[i_isopentane] += gas.fractions[i_neopentane]; break;
    case NeoPentane::to_n_pentane: x[i_n_pentane] += gas.fractions[i_neopentane]; break;
    case NeoPentane::neglect: break;
    default: return blame(gas.mode, argument_error, u"must be within % to %", 1, 3);
  }
  for (const double& fraction : gas.fractions) {
    if (fraction < 0.0) return blame(fraction, calculation_error, u"must not be negative");
  }
  // The dry gas is summed without the water, not by subtraction, so that a rounding residue is never taken for a gas.
  const Component& water = edition.components[i_water];
  double dry_amount = 0.0;
  Component sum{};
  for (std::size_t i = 0; i < n_components; ++i) {
    if (i == i_water) continue;
    dry_amount += x[i];
    add(sum, x[i], edition.components[i]);
  }
  if (!(dry_amount > smallest_amount))
    return blame(gas.fractions, calculation_error, u"holds nothing but water or neglected neo-pentane");
  const Component ideal_dry = of_one_mole(sum, dry_amount);
  const double wet_amount = dry_amount + x[i_water];
  add(sum, x[i_water], water);  // from here on the sums are those of the wet gas
  const Component ideal_wet = of_one_mole(sum, wet_amount);
  const Component ideal_saturated = mixed_with_water(edition.saturation, ideal_dry, water);
  if (!real_gas(ideal_wet, edition, x[i_water] / wet_amount, result.wet) ||
      !real_gas(ideal_dry, edition, 0.0, result.dry) ||
      !real_gas(ideal_saturated, edition, edition.saturation, result.saturated)) {
    return failure(calculation_error, u"the gas has no compressibility factor above 0 at base conditions");
  }
  return {};
}

}  // namespace

Outcome metric(const Gas& gas, Result& result) noexcept { return calculate(gas, metric_editions, result); }
Outcome customary(const Gas& gas, Result& result) noexcept { return calculate(gas, customary_editions, result); }

}  // namespace norvane::GPA2172
