// API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), temperature and pressure volume correction factors
// for generalised crude oils, refined products and lubricating oils.
//
// 11.1.6.1 corrects a density at 60 degF to observed conditions, 11.1.6.2 an observed
// density to 60 degF, 11.1.7.1 and 11.1.7.2 do the same for the bases 15 degC and 20 degC.
// Worked examples are printed at the end of each.
//
// Pure functions of numbers; nothing throws, nothing is kept between calls.
#pragma once

#include <cstdint>

#include "core/coefficients.h"
#include "core/outcome.h"
#include "math/liquid/liquid.h"

namespace norvane::API_11_1_2004 {

// Commodity groups: the products, of which `special` is a liquid with a known coefficient of thermal expansion.
using Group = liquid::Product;
// alpha60 = K0/rho*^2 + K1/rho* + K2; rho* in kg/m3, alpha60 in 1/degF.
using liquid::Constants;

struct Liquid {
  Group group = Group::crude;
  double alpha60 = 0.0;  // 1/degF, read for `special` only
};

enum class Rounding : bool { off, on };

// Base temperature of the metric tables.
enum class MetricBase : std::uint8_t { degC15, degC20 };

// Densities in kg/m3. The factors turn a volume at observed conditions into a volume at base conditions, base
// being 60 degF or the base of the metric table; density at observed conditions = base density x CTL x CPL.
struct Correction {
  double base_density = 0.0;
  double observed_density = 0.0;
  double ctl = 0.0;
  double cpl = 0.0;
  double ctpl = 0.0;   // CTL x CPL; with rounding to 5 decimals
  double alpha = 0.0;  // thermal expansion at 60 degF: 1/degF, metric tables 1/degC
  double f = 0.0;      // compressibility: 1/psi, metric tables 1/kPa
  Constants k{};
  Group group = Group::crude;  // the group whose constants were used
  bool out_of_range = false;   // outside the limits of the standard; the calculation was carried out all the same
  int steps = 0;               // Newton steps that found the density at 60 degF
};

// Density conversions, with the water density of this edition.
constexpr double density_of_gravity(double api) { return liquid::water_2004.density_of_gravity(api); }
constexpr double gravity_of_density(double rho) { return liquid::water_2004.gravity_of_density(rho); }
constexpr double density_of_relative(double rd) { return liquid::water_2004.density_of_relative(rd); }
constexpr double relative_of_density(double rho) { return liquid::water_2004.relative_of_density(rho); }

// IPTS-68 temperature of an ITS-90 temperature, both in degF.
double ipts68_of_its90(double degF) noexcept;

// Base 60 degF; temperature in degF (ITS-90), pressure in psi gauge above the equilibrium pressure. A
// negative pressure corrects nothing: CPL is 1.
//
// Errors: argument_error for a group outside the list; calculation_error for numbers that are not finite, a
// CTL, F or density that is zero or not finite; no_convergence (base from observed only) when 15 Newton steps
// do not bring the observed density within 1e-6 kg/m3. The result is valid with success only.
Outcome observed_from_base(Liquid liquid, double rho60, double degF, double psig, Rounding rounding,
                           Correction& result) noexcept;
Outcome base_from_observed(Liquid liquid, double rho_observed, double degF, double psig, Rounding rounding,
                           Correction& result) noexcept;

// Base 15 degC or 20 degC; temperature in degC (ITS-90), pressure in bar gauge. Errors as above.
Outcome observed_from_base(Liquid liquid, MetricBase base, double rho_base, double degC, double barg,
                           Rounding rounding, Correction& result) noexcept;
Outcome base_from_observed(Liquid liquid, MetricBase base, double rho_observed, double degC, double barg,
                           Rounding rounding, Correction& result) noexcept;

// ---- The tables --------------------------------------------------------------------------------------------------

// What a table is given. The density is the observed or the base one, temperature and pressure are in the table's units:
// degF and psi gauge, or degC and bar gauge.
struct Observation {
  double density;  // kg/m3
  double temperature;
  double pressure;
  Group product;
  bool rounding;
};

Outcome to_60F(const Observation& o, Correction& result) noexcept;    // Tables 5 and 23
Outcome from_60F(const Observation& o, Correction& result) noexcept;  // Tables 6 and 24
Outcome to_15C(const Observation& o, Correction& result) noexcept;    // Table 53
Outcome from_15C(const Observation& o, Correction& result) noexcept;  // Table 54
Outcome to_20C(const Observation& o, Correction& result) noexcept;    // Table 59
Outcome from_20C(const Observation& o, Correction& result) noexcept;  // Table 60

extern const CoefficientSet coefficient_set;

}  // namespace norvane::API_11_1_2004
