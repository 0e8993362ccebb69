// AGA Report No. 8, detail characterisation method: compressibility and density of natural gas from its composition.
//
// Source: AGA Report No. 8, 2nd edition, 2nd printing (1994), equations and tables; the equation is unchanged
// in AGA Report No. 8 Part 1 (2017) and in ISO 12213-2. The range rules are those of the 1994 and the 2017 edition.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "core/outcome.h"
#include "math/common/components.h"
#include "math/common/composition.h"
#include "math/common/helmholtz.h"
#include "math/gas/aga8_table.h"

namespace norvane::AGA8 {

inline constexpr double R = 0.00831451;  // gas constant [MPa m3/(kmol K)]

// Mole fractions of the 21 components, in the order of the tables; their sum is 1.
using Composition = std::array<double, component_count>;

// Component numbers that rules name.
using enum component::Index;
using ComponentIndex = component::Index;

// What a composition input holds: the 21 components and neo-pentane, which the equation does not know.
using CompositionInput = std::array<double, component_count + 1>;

using composition::NeoPentaneMode;
inline constexpr int composition_error = 4;  // status

// Range status: 0 normal, 1 extended, 2 out of range.
int composition_range_1994(const Composition& x) noexcept;
int state_range_1994(double t, double p) noexcept;  // t [degC], p [MPa]
// 2 outside the temperature and pressure of the equation as a whole (-129..204 degC, 0..137.9 MPa), else 0.
int state_limits_1994(double t, double p) noexcept;
int range_2017(const Composition& x, double t, double p) noexcept;  // t [degC], p [MPa]

double molar_mass(const Composition& x) noexcept;  // [kg/kmol]

// What depends on the composition alone.
struct Mixture {
  double K3 = 0.0;                 // cube of the mixture size parameter [m3/kmol]
  double U = 0.0;                  // mixture energy parameter [K]
  double G = 0.0;                  // orientation parameter
  double Q = 0.0;                  // quadrupole parameter
  double F = 0.0;                  // high-temperature parameter
  double molar_mass = 0.0;         // [kg/kmol]
  std::array<double, 18> beta{};   // second virial coefficient B = sum beta_n T^-u_n [m3/kmol], n = 1..18
  std::array<double, 46> gamma{};  // C*_n = gamma_n T^-u_n, n = 13..58

  void set(const Composition& x) noexcept;
};

// What depends on composition and temperature. The terms 13..58 have only 24 different pairs of
// exponents (k, b) of the density, so that at one temperature they are 24 coefficients.
struct Isotherm {
  double T = 0.0;            // [K]
  double RT = 0.0;           // [MPa m3/kmol]
  double B = 0.0;            // second virial coefficient [m3/kmol]
  double K3 = 0.0;           // [m3/kmol]
  double linear = 0.0;       // sum of C*_n, n = 13..18
  double max_density = 0.0;  // density at which the search is cut [kmol/m3]
  // Sum of C*_n with the same (k, b), and b times that: side by side, as they are summed.
  alignas(16) std::array<std::array<double, 2>, 24> C{};

  void set(const Mixture& mixture, double temperature) noexcept;
  // Pressure [MPa] at a molar density rho [kmol/m3].
  double pressure(double rho) const noexcept;
  // Molar density [kmol/m3] at a pressure p [MPa]. False when the search finds no bracket or does not
  // converge; a p that is not positive has none.
  bool density(double p, double& rho) const noexcept;
};

// The same with what the residual Helmholtz energy and its derivatives need: sums of u and of u (u+1) times the terms.
struct ResidualIsotherm : Isotherm {
  struct Sums {
    double B = 0.0, linear = 0.0;
  };
  Sums u, uu;
  // b^2 times the sum of C, sum of u C, b times that, sum of u (u+1) C.
  alignas(32) std::array<std::array<double, 4>, 24> rest{};

  void set(const Mixture& mixture, double temperature) noexcept;
  // At a molar density rho [kmol/m3].
  helmholtz::Residual at(double rho) const noexcept;
};

// Both steps at once.
helmholtz::Residual residual(const Mixture& mixture, double T, double rho) noexcept;

struct State {
  double z = 0.0;              // compressibility factor
  double molar_density = 0.0;  // [kmol/m3]
  double molar_mass = 0.0;     // [kg/kmol]
  double mass_density = 0.0;   // [kg/m3]
};

enum Result : int { converged = 0, failed = -1, not_finite = -2 };

// The calculation with its memory of the last composition, temperature, pressure and answer. Comparisons are exact,
// so that an answer from memory equals a fresh one bit for bit. Not for use by several threads at once.
class CDetail {
 public:
  struct Prepared {
    Composition x{};
    int range_1994 = 0;  // of the composition
  };
  // A composition as it is given, prepared for the equation: from memory or made now. Null when it is refused.
  const Prepared* prepare(const CompositionInput& given, NeoPentaneMode mode, Outcome& refusal) noexcept;
  // T [K], p [MPa]. The state is set when the result is `converged`.
  Result calculate(const Composition& x, double T, double p, State& state) noexcept;
  // The mixture of a composition, from memory or made now.
  const Mixture& mixture(const Composition& x) noexcept;

 private:
  bool has_given_ = false;
  CompositionInput given_{};
  NeoPentaneMode mode_ = composition::add_to_i_pentane;
  Prepared prepared_;
  bool has_composition_ = false;
  bool has_isotherm_ = false;
  bool has_state_ = false;
  Composition x_{};
  double T_ = 0.0;  // [K]
  double p_ = 0.0;  // [MPa]
  Mixture mixture_;
  Isotherm isotherm_;
  double rho_ = 0.0;  // [kmol/m3]
  double z_ = 0.0;
  Result result_ = failed;
};

// ---- A gas as it is given ----------------------------------------------------------------------------------------

struct Gas {
  CompositionInput composition;  // amounts: fractions or percent
  NeoPentaneMode neo_pentane;
  double pressure;     // absolute [MPa]
  double temperature;  // [degC]
  int edition;         // of the range rules: 1: 1994, 2: 2017
};

struct Answer {
  State state{};
  int range = 0;  // status: 0 normal, 1 extended, 2 out of range
};

// Statuses: argument_error outside -150..450 degC and 0..280 MPa (the first only), calculation_error for a composition
// that is none and where there is no density, composition_error for a sum that is neither 1 nor 100.
Outcome state_of(const Gas& gas, Answer& answer, CDetail& memory) noexcept;
// Without that limit, and with the range rules of the equation as a whole.
Outcome state_of_unlimited(const Gas& gas, Answer& answer, CDetail& memory) noexcept;

// The same for rows of a batch, several at a time: where done[i] is set, out[i] is what the single calculation of in[i]
// answers with status 0 and without remark, bit for bit; the other rows are left to it.
void state_of_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept;
void state_of_unlimited_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept;

}  // namespace norvane::AGA8
