// AGA Report No. 10 (2003): speed of sound and other thermodynamic properties of natural gas, from the AGA-8
// detail equation, its derivatives and ideal-gas correlations.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "math/gas/aga10_kernel.h"
#include "math/gas/aga8.h"

namespace norvane::AGA10 {

// What is to be calculated. Heat capacities, enthalpies and entropies are zero for no state in particular:
// the enthalpy of each ideal gas is zero at 0 K, its entropy is the absolute one at 101.325 kPa.
enum class Property : std::size_t {
  molar_mass,              // [kg/kmol]
  base_molar_density,      // [mol/m3]
  flowing_molar_density,   // [mol/m3]
  base_density,            // [kg/m3]
  flowing_density,         // [kg/m3]
  ideal_relative_density,  // molar mass over that of air
  real_relative_density,   // at base conditions
  speed_of_sound,          // [m/s]
  base_z,                  // compressibility factor
  flowing_z,
  supercompressibility,  // Fpv = sqrt(base_z / flowing_z)
  ideal_enthalpy,        // [kJ/kg]
  enthalpy,              // [kJ/kg]
  entropy,               // [kJ/(kg K)]
  ideal_cp,              // [kJ/(kg K)]
  cp,                    // [kJ/(kg K)]
  cv,                    // [kJ/(kg K)]
  ideal_molar_cp,        // [kJ/(kmol K)]
  molar_cp,              // [kJ/(kmol K)]
  molar_cv,              // [kJ/(kmol K)]
  cp_over_cv,
  isentropic_exponent,     // kappa
  critical_flow_factor,    // C* of a nozzle with this stagnation state
  ideal_molar_enthalpy,    // [kJ/kmol]
  molar_enthalpy,          // [kJ/kmol]
  ideal_gas_flow_factor,   // C* of a perfect gas with the ideal gas's ratio of heat capacities
  isentropic_flow_factor,  // C* of a perfect gas with this isentropic exponent, over sqrt(Z)
  count
};
using Properties = std::array<double, static_cast<std::size_t>(Property::count)>;

struct Conditions {
  double p;  // [MPa]
  double T;  // [K]
};
inline constexpr Conditions base_conditions{0.101325, 273.15};

enum Result : int {
  success = 0,
  flowing_density_failed = -1,  // no density at flowing conditions
  base_density_failed = -6,     // no density at base conditions
  unstable = 1,                 // a state without speed of sound: dp/drho or cv not positive
  throat_not_found = 2          // the nozzle-throat iteration did not converge
};

// The ideal-gas mixture: what depends on the composition alone.
enum class Entropy { leave_out, include };  // leaving it out saves the logarithms
class IdealMixture {
 public:
  void set(const AGA8::Composition& x) noexcept;
  // At a temperature T [K]; the entropy is that at 101.325 kPa, without the entropy of mixing.
  helmholtz::IdealGas at(double T, Entropy entropy) const noexcept;

 private:
  struct Gas {
    std::size_t component;
    double fraction;
    std::size_t vibrations;
  };
  std::array<Gas, AGA8::component_count> gases_;
  std::size_t gas_count_ = 0;
  Vibrations vibrations_;
};
helmholtz::IdealGas ideal_mixture(const AGA8::Composition& x, double T, Entropy entropy) noexcept;

// The state of a mixture at a temperature T [K] and density rho [kmol/m3], per mole.
using MolarState = helmholtz::State;
MolarState state(const AGA8::Mixture& mixture, const AGA8::Composition& x, double T, double rho,
                 Entropy entropy) noexcept;

// What depends on the composition alone.
struct Mixture {
  AGA8::Mixture detail;
  IdealMixture ideal;
  double mixing = 0.0;  // sum x ln x

  void set(const AGA8::Composition& x) noexcept;
};

// What depends on composition and temperature: the ideal gas serves every density.
struct Isotherm {
  AGA8::ResidualIsotherm residual;
  helmholtz::IdealGas ideal;
  double mixing = 0.0;
  Entropy entropy = Entropy::leave_out;

  void set(const Mixture& mixture, double T, Entropy with) noexcept;
  void set_ideal(const Mixture& mixture, Entropy with) noexcept;  // at the temperature of the residual part
  MolarState at(double rho) const noexcept;
};

// The calculation with its memory of the last composition, states and answers. Comparisons are exact, so that an answer
// from memory equals a fresh one bit for bit. Not for use by several threads at once.
class CDetail {
 public:
  // Fills the requested properties and leaves the others as they are.
  Result calculate(const AGA8::Composition& x, const Conditions& flowing, const Conditions& base,
                   std::span<const Property> requested, Properties& values) noexcept;
  // The same for states of one composition, several at a time. True where the answer is what calculate gives with
  // success; the others are left to it.
  static constexpr std::size_t most_rows = 64;
  void calculate_rows(const AGA8::Composition& x, std::span<const Conditions> flowing, const Conditions& base,
                      std::span<const Property> requested, Properties* const* values, bool* done) noexcept;

 private:
  // A density found, or that there is none, at the last conditions.
  struct Density {
    bool known = false, found = false;
    Conditions at{};
    double rho = 0.0;  // [kmol/m3]
    double z = 0.0;
  };
  void find(Density& density, const AGA8::Isotherm& isotherm, const Conditions& at) noexcept;
  void set(const AGA8::Composition& x) noexcept;
  bool find_base(const Conditions& at) noexcept;
  bool find_flowing(const Conditions& at) noexcept;
  // The state at the flowing conditions, with at least this.
  const MolarState& flowing_state(Entropy entropy) noexcept;
  // The properties requested, from the densities and the state.
  Result properties(unsigned need, const MolarState& state, std::span<const Property> requested,
                    Properties& values) noexcept;

  bool has_composition_ = false, has_residual_ = false, has_ideal_ = false, has_state_ = false;
  bool has_throat_ = false, throat_found_ = false;
  AGA8::Composition x_{};
  Mixture mixture_;
  Isotherm isotherm_;
  Density flowing_, base_;
  MolarState state_{}, throat_{};
};

// Without memory.
Result calculate(const AGA8::Composition& x, const Conditions& flowing, const Conditions& base,
                 std::span<const Property> requested, Properties& values) noexcept;

// ---- A gas as it is given ----------------------------------------------------------------------------------------

struct Gas {
  AGA8::CompositionInput composition;  // fractions
  AGA8::NeoPentaneMode neo_pentane;
  double pressure;     // absolute [MPa]
  double temperature;  // [degC]
  int critical_flow;   // 1: without the three critical flow factors, which are then 0; 2: with them
};

struct Answer {
  Properties values{};
  int range = 0;  // status: 0 normal, 1 extended, 2 out of range
};

// Statuses: no_convergence without a density, calculation_error for a composition that is none, for a state without speed of
// sound and for a nozzle without throat, AGA8::composition_error for a sum that is not 1. The call is refused when an
// amount lies outside 0 to 1.
Outcome speed_of_sound(const Gas& gas, Answer& answer, CDetail& memory) noexcept;
Outcome all_properties(const Gas& gas, Answer& answer, CDetail& memory) noexcept;
// The same for rows of a batch: where done[i] is set, out[i] is what the single calculation of in[i] answers with status 0,
// bit for bit; the other rows are left to it.
void speed_of_sound_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept;
void all_properties_rows(const Gas* in, Answer* out, bool* done, std::size_t rows, CDetail& memory) noexcept;

}  // namespace norvane::AGA10
