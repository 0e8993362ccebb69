// API MPMS Chapter 11.2.4 (GPA TP-27): Tables 23E, 24E, 53E, 54E, 59E and 60E for natural gas liquids and liquefied
// petroleum gases, relative density 60/60 degF 0.3500 to 0.6880, -50.8 to 199.4 degF (-46 to 93 degC).
//
// Tables 23E, 53E and 59E find the density at 60 degF, 15 degC and 20 degC of an observed one, 24E, 54E and 60E the
// factor CTL of a density at the base temperature.
//
// Pure functions of numbers; nothing throws, nothing is kept between calls.
#pragma once

#include "core/coefficients.h"
#include "math/common/dual.h"
#include "math/liquid/liquid.h"
#include "math/liquid/rising.h"

namespace norvane::API_11_2_4 {

// The relative densities that lie between two of the fluids; beyond them the tables have no answer.
inline constexpr double lightest = 0.325022, heaviest = 0.688039;

// Base temperatures, and temperatures in degF.
constexpr double kelvin_of_degF(double degF) { return (degF + 459.67) / 1.8; }
enum class Base { degF60, degC15, degC20 };
constexpr double base_degF(Base base) {
  return base == Base::degF60   ? liquid::base_60F
         : base == Base::degC15 ? liquid::base_15C_in_degF
                                : liquid::base_20C_in_degF;
}

// The factor from 60 degF of a liquid with this relative density at 60 degF, from lightest to heaviest; NaN above its
// critical temperature.
template <class Number>
Number ctl_from_60F(Number g, double kelvin) noexcept;
extern template double ctl_from_60F(double g, double kelvin) noexcept;
extern template Dual ctl_from_60F(Dual g, double kelvin) noexcept;

// The lightest relative density at 60 degF that is a liquid at this temperature; above `heaviest` when none is.
double lightest_liquid(double kelvin) noexcept;

// The relative density at 60 degF of an observed one, by a fit to the tables: within 0.3 % below 100 degF from 0.4 up.
double guess(double observed, double degF) noexcept;
// The same as the tables have it.
liquid::Solution relative_density_60(double observed, double degF, double& g) noexcept;

// Outside the tables: relative density at 60 degF and temperature in degF; observed relative density.
bool out_of_range(double g, double degF) noexcept;
bool out_of_range_observed(double relative_density) noexcept;

struct Observation {
  double density = 0.0;      // observed or at the base temperature: relative density, metric kg/m3
  double temperature = 0.0;  // degF, metric degC
  bool rounding = false;     // as printed: arguments to 0.0001 and 0.1 degF (0.1 kg/m3 and 0.05 degC), results alike,
                             // CTL to 0.00001
};
struct Correction {
  double base_density = 0.0;  // as the argument
  double ctl = 0.0;
  bool out_of_range = false;
};

// Errors: argument_error for what is not finite, a density or an absolute temperature that is not positive;
// calculation_error for a liquid outside the reference fluids or above its critical temperature.
Outcome to_60F(const Observation& o, Correction& out) noexcept;    // Table 23E
Outcome from_60F(const Observation& o, Correction& out) noexcept;  // Table 24E
Outcome to_15C(const Observation& o, Correction& out) noexcept;    // Table 53E
Outcome from_15C(const Observation& o, Correction& out) noexcept;  // Table 54E
Outcome to_20C(const Observation& o, Correction& out) noexcept;    // Table 59E
Outcome from_20C(const Observation& o, Correction& out) noexcept;  // Table 60E

// What the composites need of it.
inline constexpr double zero_degF = -459.67, zero_degC = -273.15;  // temperatures must be above
Outcome check_60F(const double& g) noexcept;
// The correction of a known relative density at 60 degF; `temperature` is to blame where it is above the critical one.
Outcome correct(double g, Base base, double degF, const double& temperature, Correction& out) noexcept;
// The same where the factor from 60 degF is known.
Outcome correct(double g, double ctl_60, Base base, double degF, const double& temperature, Correction& out) noexcept;

extern const CoefficientSet coefficient_set;

}  // namespace norvane::API_11_2_4
