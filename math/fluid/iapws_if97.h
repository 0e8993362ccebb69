// IAPWS-IF97: thermodynamic properties of water and steam.
//
// Source: IAPWS R7-97(2012), Revised Release on the IAPWS Industrial Formulation 1997 for the Thermodynamic
// Properties of Water and Steam (2007, with the revision of 2012). Check values: Tables 5, 15, 18, 33, 35, 36 and 42.
#pragma once

#include "core/outcome.h"

namespace norvane::IAPWS_IF97 {

inline constexpr double R = 0.461526;                     // specific gas constant [kJ/(kg K)], eq. (1)
inline constexpr double critical_temperature = 647.096;   // [K], eq. (2)
inline constexpr double critical_pressure = 22.064;       // [MPa], eq. (3)
inline constexpr double critical_density = 322.0;         // [kg/m3], eq. (4)
inline constexpr double lowest_temperature = 273.15;      // [K]
inline constexpr double highest_temperature = 2273.15;    // [K], region 5
inline constexpr double highest_pressure = 100.0;         // [MPa]
inline constexpr double highest_pressure_region5 = 50.0;  // [MPa]

// Which side of the saturation line is wanted. A phase other than `automatic` continues the equation of that phase
// across the line:
//   up to 623.15 K liquid takes region 1; steam takes region 2 or, above the saturation pressure up to 10 MPa, the
//   equation for metastable vapour;
//   from there to the critical temperature liquid and steam take the dense and the dilute root of region 3;
//   elsewhere there is nothing to choose.
enum class Phase : int { automatic = 1, liquid = 2, steam = 3 };

struct Arguments {
  double pressure = 0.101325;   // [MPa], above 0 to 100, above 1073.15 K to 50
  double temperature = 293.15;  // [K], 273.15 to 2273.15
  Phase phase = Phase::automatic;
};

struct Result {
  double density = 0.0;              // [kg/m3]
  double enthalpy = 0.0;             // [kJ/kg], internal energy of the saturated liquid at the triple point is zero
  double entropy = 0.0;              // [kJ/(kg K)], that of the saturated liquid at the triple point is zero
  double isentropic_exponent = 0.0;  // kappa = w^2/(p v)
  int region = 0;                    // 1, 2, 3 or 5
};

// On the saturation line itself the answer is the liquid's. Errors: argument_error for a state outside the equations
// or a phase outside its list, no_convergence when the phase wanted does not exist in region 3, calculation_error
// when the continued equation has no meaning any more.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// ---- The equations ----------------------------------------------------------------------------------------------

// Everything the equations give at one state. u = h - p v.
struct State {
  double v;   // specific volume [m3/kg]
  double h;   // enthalpy [kJ/kg]
  double s;   // entropy [kJ/(kg K)]
  double cp;  // isobaric heat capacity [kJ/(kg K)]
  double cv;  // isochoric heat capacity [kJ/(kg K)]
  double w2;  // square of the speed of sound [m2/s2]
};

// p [MPa], T [K]. No limit is checked; beyond their regions the equations are continued.
State region1(double p, double T) noexcept;            // eq. (7)
State region2(double p, double T) noexcept;            // eq. (15)
State metastable_vapour(double p, double T) noexcept;  // eq. (15) with Table 16
State region3(double rho, double T) noexcept;          // eq. (28), rho [kg/m3]
State region5(double p, double T) noexcept;            // eq. (32)

double region3_pressure(double rho, double T) noexcept;  // [MPa]

// Density [kg/m3] in region 3. False when the phase wanted has no such pressure at this temperature.
bool region3_density(double p, double T, Phase phase, double& rho) noexcept;

double saturation_pressure(double T) noexcept;     // [MPa], 273.15 K to 647.096 K, eq. (30)
double saturation_temperature(double p) noexcept;  // [K], 0.611 kPa to 22.064 MPa, eq. (31)
double boundary23_pressure(double T) noexcept;     // [MPa], between regions 2 and 3, 623.15 K to 863.15 K, eq. (5)
double boundary23_temperature(double p) noexcept;  // [K], eq. (6)

}  // namespace norvane::IAPWS_IF97
