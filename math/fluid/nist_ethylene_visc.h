// Dynamic viscosity of ethylene.
//
// Source: P. M. Holland, B. E. Eaton, H. J. M. Hanley, A correlation of the viscosity and thermal conductivity data
// of gaseous and liquid ethylene, J. Phys. Chem. Ref. Data 12 (1983) 917-932, with the density of NBS Technical Note
// 1045. Check values: Tables 5 and 8.
#pragma once

#include "core/coefficients.h"
#include "core/outcome.h"

namespace norvane::NIST_Ethylene_Visc {

inline constexpr double lowest_temperature = 110.0;   // [K]
inline constexpr double highest_temperature = 500.0;  // [K]
inline constexpr double highest_pressure = 50.0;      // [MPa]

struct Arguments {
  double pressure = 0.101325;   // [MPa], above 0
  double temperature = 293.15;  // [K], above 0
};

enum class Range : int { normal = 0, outside = 1 };

struct Result {
  double viscosity = 0.0;       // dynamic viscosity [Pa s]
  Range range = Range::normal;  // outside: below 110 K, above 500 K or 50 MPa
};

// Viscosity of the stable phase; at the saturation pressure the liquid's. Errors: argument_error for a number that is
// no pressure or temperature, no_convergence when there is no density, calculation_error when the viscosity is not a
// positive number. Beyond its range the correlation is continued, with a remark.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// ---- The correlation --------------------------------------------------------------------------------------------

// [Pa s], at T [K] and rho [kmol/m3].
double viscosity(double T, double rho) noexcept;
// Of the dilute gas [Pa s].
double dilute_viscosity(double T) noexcept;

extern const CoefficientSet coefficient_set;

}  // namespace norvane::NIST_Ethylene_Visc
