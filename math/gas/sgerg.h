// SGERG-88, ISO 12213-3: compressibility factor and density of natural gas from its physical properties, that is
// from three of calorific value, relative density, carbon dioxide and nitrogen, and from hydrogen.
#pragma once

#include "core/outcome.h"
#include "math/gas/sgerg_table.h"

namespace norvane::SGERG {

// The three properties that are known beside hydrogen.
enum class InputSet : int {
  calorific_density_co2 = 1,
  calorific_density_n2 = 2,
  calorific_co2_n2 = 3,
  density_co2_n2 = 4
};

// Temperature of combustion / of the volume, the latter also that of the relative density; at 1.01325 bar.
enum class Reference : int {
  c25_0 = 1,
  c0_0 = 2,
  c15_15 = 3,
  c25_15 = 4,
  c20_20 = 5,
  c25_20 = 6,
  f60_60 = 7  // in degF, at 14.73 psia
};

enum class Range : int { normal = 0, extended = 1, out_of_range = 2 };

// What the input set does not need is not looked at.
struct Arguments {
  double pressure = 0.0;          // absolute [bar]
  double temperature = 0.0;       // [K]
  double calorific_value = 0.0;   // superior, volume-based, at the reference conditions [MJ/m3]
  double relative_density = 0.0;  // at the reference conditions [-]
  double carbon_dioxide = 0.0;    // mole fraction
  double nitrogen = 0.0;          // mole fraction
  double hydrogen = 0.0;          // mole fraction
  InputSet input_set = InputSet::calorific_density_co2;
  Reference reference = Reference::c25_0;
};

// A gas as the equation sees it.
struct Mixture {
  double CH = 0.0;  // mole fraction of the hydrocarbons
  double N2 = 0.0;  // mole fractions
  double CO2 = 0.0;
  double H2 = 0.0;
  double CO = 0.0;
  double H = 0.0;  // molar calorific value of the hydrocarbons, combustion at 298.15 K [MJ/kmol]
};

struct Result {
  double z = 0.0;                 // compressibility factor
  double mass_density = 0.0;      // [kg/m3]
  double molar_density = 0.0;     // [kmol/m3]
  double calorific_value = 0.0;   // superior, combustion at 25 degC, volume at 0 degC and 1.01325 bar [MJ/m3]
  double relative_density = 0.0;  // at 0 degC and 1.01325 bar
  Mixture mixture;
  Range range = Range::normal;
};

// Status 1: an argument that no gas has. Status 2: properties that contradict each other, or a state that the
// equation has no gas for. Status 3: the composition does not settle.
Outcome calculate(const Arguments& in, Result& out) noexcept;

// ---- The virial equation, also for the standards that take it over ------------------------------------------------

// Second virial coefficient of mixtures at one temperature.
struct SecondVirial {
  double B11[3], B22, B23, B33, B15, B17, B25, B55, B77;
  double z12;

  constexpr SecondVirial(const Coefficients& c, double T) noexcept;
  // B [m3/kmol]. False where the equation has none: B11 B33 is negative.
  bool of(const Mixture& x, double& B) const noexcept;
};

// Third virial coefficient C of a mixture at a temperature T [K], in m6/kmol2. False where the equation has none: a
// coefficient of a pure gas is negative.
bool third_virial(const Coefficients& c, double T, const Mixture& x, double& C) noexcept;

constexpr SecondVirial::SecondVirial(const Coefficients& c, double T) noexcept
    : B11{c.B11[0].at(T), c.B11[1].at(T), c.B11[2].at(T)},
      B22(c.B22.at(T)),
      B23(c.B23.at(T)),
      B33(c.B33.at(T)),
      B15(c.B15.at(T)),
      B17(c.B17.at(T)),
      B25(c.B25),
      B55(c.B55.at(T)),
      B77(c.B77.at(T)),
      z12(0.72 + 1.875e-5 * (320.0 - T) * (320.0 - T)) {}

}  // namespace norvane::SGERG
