// GOST 30319-96, Natural gas, methods of calculation of physical properties: compressibility coefficient K = z/z_c by
// NX19 mod., GERG-91 mod. or AGA8-92DC (30319.2), and the properties of part 30319.1.
//
// Standard conditions (c) are 293.15 K and 0.101325 MPa.
#pragma once

#include "core/outcome.h"
#include "math/gas/aga8.h"

namespace norvane::GOST30319 {

enum class Method : int { nx19_mod = 1, gerg91_mod = 2 };

struct Arguments {
  double pressure = 0.0;        // absolute [MPa]
  double temperature = 0.0;     // [K]
  double density = 0.0;         // at standard conditions [kg/m3]
  double nitrogen = 0.0;        // mole fraction
  double carbon_dioxide = 0.0;  // mole fraction
  Method method = Method::nx19_mod;
};

// Of which property the gas is known by beside nitrogen and carbon dioxide.
enum class Known : int { density = 1, calorific_value = 2 };

struct Gerg91Arguments {
  double pressure = 0.0;         // absolute [MPa]
  double temperature = 0.0;      // [K]
  double density = 0.0;          // at standard conditions [kg/m3]
  double calorific_value = 0.0;  // superior, at standard conditions [MJ/m3]
  double nitrogen = 0.0;         // mole fraction
  double carbon_dioxide = 0.0;   // mole fraction
  Known known = Known::density;
};

struct Result {
  double k = 0.0;                         // compressibility coefficient K = z/z_c
  double z = 0.0;                         // compressibility factor
  double zc = 0.0;                        // at standard conditions
  double mass_density = 0.0;              // [kg/m3]
  double isentropic_exponent = 0.0;       // kappa
  double speed_of_sound = 0.0;            // [m/s]
  double viscosity = 0.0;                 // dynamic [Pa s]
  double superior_calorific_value = 0.0;  // at standard conditions [MJ/m3]
  double inferior_calorific_value = 0.0;  // at standard conditions [MJ/m3]
  double molar_mass = 0.0;                // [kg/kmol]
  double density = 0.0;                   // at standard conditions, given or found [kg/m3]
  bool out_of_range = false;              // outside the range of the method
};

// Status 1: an argument that no gas has. Status 2: a state that the method does not cover.
Outcome calculate(const Arguments& in, Result& out) noexcept;
Outcome calculate_gerg91(const Gerg91Arguments& in, Result& out) noexcept;

// AGA8-92DC: z and z_c of the AGA-8 detail equation.
struct DetailArguments {
  double pressure = 0.0;                 // absolute [MPa]
  double temperature = 0.0;              // [K]
  AGA8::CompositionInput composition{};  // mole amounts
  composition::NeoPentaneMode neo_pentane = composition::add_to_i_pentane;
  double base_pressure = 0.101325;   // of z_c, absolute [MPa]
  double base_temperature = 293.15;  // of z_c [K]
};
struct DetailResult {
  double k = 0.0;             // K = z/z_c
  double z = 0.0;             // compressibility factor
  double zc = 0.0;            // at base conditions
  double mass_density = 0.0;  // [kg/m3]
};
struct DetailCache {
  AGA8::CDetail flowing, base;
};
// As above; AGA8::composition_error: amounts that sum neither to 1 nor to 100.
Outcome calculate_detail(const DetailArguments& in, DetailResult& out, DetailCache& cache) noexcept;

}  // namespace norvane::GOST30319
