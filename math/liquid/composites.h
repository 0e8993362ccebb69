// Observed density to base density, and back, at a temperature and a pressure: a table, its compressibility and its
// vapour pressure called one after the other.
//
//   edition   table                     compressibility         equilibrium pressure
//   1980      API_11_1_1980             11.2.1, metric 11.2.1M  given
//   1952      API_11_1_1952             11.2.1, metric 11.2.1M  given
//   NGL, LPG  API_11_2_4 (Tables E)     11.2.2                  given or GPA TP-15
//
// b CTL(b) CPL(b) = observed density x hydrometer factor, to every digit: all three factors belong to the base value b
// and follow it. Where that left side jumps, the answer is the largest b that does not exceed it. CPL is 1 below the
// equilibrium pressure.
#pragma once

#include "math/liquid/api_11_1_1952.h"
#include "math/liquid/api_11_1_1980.h"
#include "math/liquid/api_11_2_4.h"
#include "math/liquid/liquid.h"

namespace norvane::composite {

// Given to every composite. Units customary or metric; densities are in kg/m3, of the tables with a relative density
// that.
struct Flow {
  double density = 0.0;               // observed or at the base, as the conversion says
  double temperature = 0.0;           // degF, degC
  double pressure = 0.0;              // psi gauge, bar gauge
  double equilibrium_pressure = 0.0;  // psi gauge, bar gauge
  liquid::Conversion conversion = liquid::Conversion::observed_to_standard;
  bool hydrometer = false;  // the observed density is the reading of a glass hydrometer
  bool f_rounding = false;  // of the compressibility's chapter; refused
};

struct Converted {
  double density = 0.0;  // at the base or observed, as the conversion says; in the unit of the argument
  double cpl = 0.0;
  double ctpl = 0.0;
  double f = 0.0;  // 1/psi, 1/kPa
  bool f_out_of_range = false;
};

struct Arguments1980 {
  Flow flow{};
  liquid::Product product = liquid::Product::crude;
  API_11_1_1980::Rounding rounding = API_11_1_1980::Rounding::disabled;
};
struct Result1980 {
  Converted converted{};
  API_11_1_1980::Correction table{};
};

struct Arguments1952 {
  Flow flow{};
};
struct Result1952 {
  Converted converted{};
  API_11_1_1952::Correction table{};
};

enum class Equilibrium : int { given = 1, calculated = 2 };
struct ArgumentsNgl {
  Flow flow{};
  Equilibrium equilibrium = Equilibrium::calculated;
  bool rounding = false;       // of the tables; refused
  bool tp15_rounding = false;  // refused
  bool p100_known = false;     // refused
  double p100 = 0.0;           // vapour pressure at 100 degF; not read
};
struct ResultNgl {
  Converted converted{};
  API_11_2_4::Correction table{};
  double equilibrium_pressure = 0.0;  // the one used, psi gauge or bar gauge
  bool equilibrium_out_of_range = false;
};

// Errors: argument_error for what is not finite, a density that is not positive, an option outside its list or refused;
// calculation_error for a liquid outside the table, or where a factor is no positive number; no_convergence.
Outcome dens60F_1980(const Arguments1980& in, Result1980& out) noexcept;  // kg/m3 at 60 degF
Outcome dens15C_1980(const Arguments1980& in, Result1980& out) noexcept;
Outcome rd60F_1952(const Arguments1952& in, Result1952& out) noexcept;  // relative density 60/60 degF
Outcome dens15C_1952(const Arguments1952& in, Result1952& out) noexcept;
Outcome rd60F_ngl(const ArgumentsNgl& in, ResultNgl& out) noexcept;
Outcome dens15C_ngl(const ArgumentsNgl& in, ResultNgl& out) noexcept;
Outcome dens20C_ngl(const ArgumentsNgl& in, ResultNgl& out) noexcept;

}  // namespace norvane::composite
