// What the liquid standards share: gravity and density, base temperatures, products, the glass hydrometer, the
// correction for pressure, options and their refusals.
//
//   G    relative density 60/60 degF [-]        rho  density [kg/m3]       API  gravity [degAPI]
//   CTL, CPL, CTPL  factors that turn a volume at flowing conditions into one at base conditions [-];
//                   density at flowing conditions = base density x CTL x CPL
#pragma once

#include <cmath>

#include "core/outcome.h"
#include "math/common/dual.h"

namespace norvane::liquid {

// Pressure and temperature.
inline constexpr double kPa_per_psi = 6.894757;
constexpr double degF_of_degC(double degC) { return degC * 1.8 + 32.0; }
constexpr double kPa_of_bar(double bar) { return bar * 100.0; }
constexpr double psi_of_bar(double bar) { return kPa_of_bar(bar) / kPa_per_psi; }

// Base temperatures: 60 degF; 15 degC and 20 degC, also in degF.
inline constexpr double base_60F = 60.0;
inline constexpr double base_15C = 15.0, base_15C_in_degF = 59.0;
inline constexpr double base_20C = 20.0, base_20C_in_degF = 68.0;

// API gravity and relative density 60/60 degF.
constexpr double relative_of_gravity(double api) { return 141.5 / (131.5 + api); }
constexpr double gravity_of_relative(double g) { return 141.5 / g - 131.5; }

// Water at 60 degF, of which every edition has its own density. The product with 141.5 is kept as the editions
// print it, API gravity being 141.5/G - 131.5.
struct Water {
  double density;        // kg/m3
  double density_141_5;  // 141.5 x density [kg/m3]

  constexpr double density_of_gravity(double api) const { return density_141_5 / (api + 131.5); }
  constexpr double gravity_of_density(double rho) const { return gravity_of_relative(rho / density); }
  constexpr double density_of_relative(double g) const { return g * density; }
  constexpr double relative_of_density(double rho) const { return rho / density; }
};
inline constexpr Water water_2004 = {999.016, 141360.764};  // API MPMS 11.1:2004, 11.2.4
inline constexpr Water water_1980 = {999.012, 141360.198};  // API 2540 (1980), API MPMS 11.2.1
inline constexpr Water water_1952 = {999.042, 141364.443};  // ASTM D1250-52 (Tables 53 and 54)

// Products, by the numbers of the product option. `refined` takes the constants of the refined product that the base
// density points to. `special`, a liquid with a known coefficient of thermal expansion, is none of the options.
enum class Product : int {
  special = 0,
  crude = 1,
  refined = 2,
  gasoline = 3,
  transition = 4,
  jet_fuel = 5,
  fuel_oil = 6,
  lubricating_oil = 7
};
constexpr bool known(Product product) { return product >= Product::crude && product <= Product::lubricating_oil; }

// Constants of alpha = K0/rho^2 + K1/rho + K2 at the base temperature; rho in kg/m3, alpha per degF or degC.
struct Constants {
  double k0;
  double k1;
  double k2;
};

enum class Conversion : int { observed_to_standard = 1, standard_to_observed = 2 };
constexpr bool known(Conversion conversion) {
  return conversion == Conversion::observed_to_standard || conversion == Conversion::standard_to_observed;
}

// Where a value lies against the limits of a standard. Functions that know no extended range have bool outputs.
enum class Range : int { in_range = 0, extended = 1, out_of_range = 2 };

// Limits are inclusive; values that went through a conversion may miss them by rounding.
inline constexpr double limit_tolerance = 1e-6;
constexpr bool outside(double value, double low, double high) {
  return value < low - limit_tolerance || value > high + limit_tolerance;
}

// The expansion of a glass hydrometer: true density = reading x factor. API 2540 (1980), customary and metric.
constexpr double hydrometer_factor_degF(double degF) {
  const double dt = degF - base_60F;
  return 1.0 - 0.00001278 * dt - 0.0000000062 * dt * dt;
}
constexpr double hydrometer_factor_degC(double degC) {
  const double dt = degC - base_15C;
  return 1.0 - 0.000023 * dt - 0.00000002 * dt * dt;
}

// CPL of a compressibility f and the pressure d above equilibrium, in units that cancel; d <= 0 corrects nothing.
// Not positive, or without end, where f d reaches 1: no liquid is that compressible.
template <class Number>
constexpr Number cpl(Number f, Number d) {
  if (!(value_of(d) > 0.0)) return Number{1.0};
  return 1.0 / (1.0 - f * d);
}

// Why a calculation is refused, where several say the same.
inline constexpr const char16_t* not_a_density = u"must stand for a finite density above 0";
inline constexpr const char16_t* not_finite = u"must be a finite number";
inline constexpr const char16_t* unknown_product = u"must be from % to %";
inline constexpr const char16_t* no_ctl = u"the density and the temperature give no positive CTL";
inline constexpr const char16_t* no_cpl = u"the compressibility times the pressure reaches 1: no CPL";

inline bool positive(double x) { return x > 0.0 && std::isfinite(x); }

}  // namespace norvane::liquid
