// GERG-2008 and GERG-2004: density, caloric properties and phase equilibrium of natural gases and similar mixtures.
//
// Source: O. Kunz, W. Wagner, J. Chem. Eng. Data 57 (2012) 3032 (GERG-2008), the same as ISO 20765-2 and AGA Report
// No. 8 Part 2 (2017); GERG Technical Monograph 15 (2007) (GERG-2004). Range of the standard: 90..450 K and 0..35 MPa
// normal, 60..700 K and 0..70 MPa extended.
#pragma once

#include <array>
#include <cstddef>

#include "core/outcome.h"
#include "math/common/composition.h"
#include "math/common/helmholtz.h"
#include "math/gas/gerg2008_table.h"

namespace norvane::GERG2008 {

inline constexpr double R = 0.008314472;  // gas constant [MPa m3/(kmol K)]

enum class Edition : int { gerg_2004 = 2004, gerg_2008 = 2008 };

// Mole fractions of the 21 components, in the order of the tables; their sum is 1.
using Composition = std::array<double, component_count>;

// The terms of all equations: those of the pure fluids, which fluids of one form share, then the departure functions.
inline constexpr std::size_t pure_term_count = std::size(light_form) + std::size(carbon_dioxide_form) +
                                               std::size(simple_form) + std::size(water_form) +
                                               std::size(hydrogen_form) + std::size(helium_form);
inline constexpr std::size_t term_count = pure_term_count + std::size(departure_terms);

// What depends on the composition alone.
struct Mixture {
  Edition edition = Edition::gerg_2008;
  Composition x{};
  double molar_mass = 0.0;             // [kg/kmol]
  double T_r = 0.0;                    // reducing temperature [K]
  double v_r = 0.0;                    // reducing molar volume [m3/kmol]
  bool departs = false;                // whether a departure function acts
  std::array<double, term_count> n{};  // coefficients of the terms

  void set(Edition of, const Composition& composition) noexcept;

 protected:
  void set_terms(Edition of, const Composition& composition) noexcept;
};

// The same with what fugacities need of it.
struct PhaseMixture : Mixture {
  // n^2 v_r and n^2 T_r are functions of the second degree in the moles n_i: their derivatives, where n = 1.
  std::array<std::array<double, 2>, component_count> reducing{};

  void set(Edition of, const Composition& composition) noexcept;
};

// The terms have only 25 different factors delta^d exp(-delta^c), and 11 of the departure functions' kind, so that
// at one temperature they are 36 coefficients; some places stay empty.
inline constexpr std::size_t slot_count = 42;
using Slots = std::array<double, slot_count>;

// Different exponents of tau in all terms.
inline constexpr std::size_t power_count = 76;

// What depends on composition and temperature.
struct Isotherm {
  double T = 0.0;                            // [K]
  double RT = 0.0;                           // [MPa m3/kmol]
  double tau = 0.0;                          // T_r/T
  double v_r = 0.0;                          // [m3/kmol]
  bool departs = false;                      // whether a departure function acts
  bool fifth = false;                        // whether a term with delta^5 in its exponential acts
  alignas(16) Slots n{};                     // coefficients
  std::array<double, power_count> powers{};  // of tau

  void set(const Mixture& mixture, double temperature) noexcept;

  // Compressibility factor at a density [kmol/m3], and the slope of the pressure.
  struct Point {
    double z;        // p/(rho R T)
    double dp_drho;  // (dp/drho)_T / (R T)
  };
  Point at(double rho) const noexcept;
  // Residual Helmholtz energy over R T there.
  double energy(double rho) const noexcept;

  // The density [kmol/m3] of a vapour at a pressure p [MPa]: the root that is reached from density zero with the
  // pressure rising all the way. False when there is none, as above the pressure of the vapour's stability limit.
  bool vapour_density(double p, double& rho) const noexcept;
  // The density of a liquid: the root from which the pressure rises all the way up. False when there is none. At
  // temperatures and pressures with one root only both give that.
  bool liquid_density(double p, double& rho) const noexcept;
  // The root of least density on any rising stretch: where there is neither vapour nor liquid, that of a mixture which
  // is about to split.
  bool loop_density(double p, double& rho) const noexcept;
  // Whether the pressure rises with density all the way, so that there is one root.
  bool has_one_root() const noexcept;
  // The root close to a guess, on the branch of the guess. False when there is none, or none close enough.
  bool density_near(double p, double guess, double& rho) const noexcept;
};

// Residual Helmholtz energy and its derivatives.
helmholtz::Residual residual(const Mixture& mixture, const Isotherm& isotherm, double rho) noexcept;

// The ideal gas at a temperature T [K]. Enthalpy and entropy of each component are zero at 298.15 K and 101.325
// kPa; the entropy is that at 101.325 kPa, without the entropy of mixing.
enum class Entropy { leave_out, include };  // leaving it out saves the logarithms
helmholtz::IdealGas ideal_mixture(const Composition& x, double T, Entropy entropy) noexcept;

// Properties at a density [kmol/m3].
helmholtz::State state(const Mixture& mixture, const Isotherm& isotherm, double rho, Entropy entropy) noexcept;

// What the fugacity coefficients are made of: one list a phase, in the order of the components. Those of absent
// components are not set.
using PerComponent = std::array<double, component_count>;
// ln phi_i at a density [kmol/m3] and a positive compressibility factor z. That of a liquid is known better from its
// pressure than from the equation, where large terms cancel.
void fugacity(const PhaseMixture& mixture, const Isotherm& isotherm, double rho, double z,
              PerComponent& ln_phi) noexcept;
// The same with n d(ln phi_i)/d(n_j) at constant temperature and pressure, a symmetrical matrix.
using PerPair = std::array<PerComponent, component_count>;
void fugacity(const PhaseMixture& mixture, const Isotherm& isotherm, double rho, double z, PerComponent& ln_phi,
              PerPair& slope) noexcept;

// ---- Phase equilibrium -------------------------------------------------------------------------------------------

struct Phase {
  Composition x{};
  double rho = 0.0;         // molar density [kmol/m3]
  double z = 0.0;           // p/(rho R T)
  double molar_mass = 0.0;  // [kg/kmol]
  bool liquid = false;      // denser than the reducing density and colder than the reducing temperature
};

// A mixture at a temperature and pressure: one phase or two.
struct Equilibrium {
  bool split = false;
  double vapour_fraction = 0.0;  // amount of the lighter phase over the whole, of two phases
  Phase vapour;                  // the lighter phase, or the only one
  Phase liquid;                  // the denser of two
  bool third = false;            // another phase would form beside these two
  bool untested = false;         // the equation has no density for some phase that might form
  bool without_water = false;    // the phases of the rest: the equation has no liquid water here
};

// Where the equation has no liquid water, a little of it in the feed is left out; with more there is no answer.
enum class FlashResult { found, no_density, not_converged, no_liquid_water };
inline constexpr double most_water_left_out = 0.01;

// T [K], p [MPa]. Components below 1e-14 take no part in the equilibrium.
FlashResult flash(Edition edition, const Composition& x, double T, double p, Equilibrium& answer) noexcept;

// ---- A gas as it is given ----------------------------------------------------------------------------------------

// Statuses of the functions below: argument_error outside -250..450 degC and 0..200 MPa, calculation_error for a
// composition that is none, at pressure 0 and where the equation has no density, no_convergence (flash only),
// composition_error for a sum that is neither 1 nor 100 and for components that GERG-2004 does not have.
inline constexpr int composition_error = 4;

struct Gas {
  std::array<double, component_count + 1> composition;  // amounts: fractions or percent, the last neo-pentane
  composition::NeoPentaneMode neo_pentane = composition::add_to_i_pentane;
  double pressure;     // absolute [MPa]
  double temperature;  // [degC]
};

struct GasAnswer {
  double z = 0.0;               // compressibility factor
  double mass_density = 0.0;    // [kg/m3]
  double molar_density = 0.0;   // [kmol/m3]
  double molar_mass = 0.0;      // [kg/kmol]
  double speed_of_sound = 0.0;  // [m/s]
  double kappa = 0.0;           // isentropic exponent
  int range = 0;                // status: 0 normal, 1 extended, 2 out of range
};

// The equation with its memory of the last mixture, isotherm and state. Comparisons are exact, so that an answer from
// memory equals a fresh one bit for bit. Not for use by several threads at once.
class CEquation {
 public:
  enum class Root { none, vapour, liquid };
  // T [K], p [MPa], rho [kmol/m3]. The vapour's density where it has one, else the liquid's.
  Root density(Edition edition, const Composition& x, double T, double p, double& rho) noexcept;
  // Properties at the density found last.
  const helmholtz::State& state() noexcept;
  const Mixture& mixture() const noexcept { return mixture_; }
  // The mixture of a composition, from memory or made now.
  const Mixture& mixture(Edition edition, const Composition& x) noexcept;
  const Isotherm& isotherm() const noexcept { return isotherm_; }

 private:
  bool has_mixture_ = false, has_isotherm_ = false, has_density_ = false, has_state_ = false;
  Mixture mixture_;
  Isotherm isotherm_;
  double p_ = 0.0;
  double rho_ = 0.0;
  Root root_ = Root::none;
  helmholtz::State state_{};
};

// A gas, not tested for phases: where it has no vapour density the liquid's is answered, with a remark.
Outcome gas_2008(const Gas& gas, GasAnswer& answer, CEquation& memory) noexcept;
Outcome gas_2004(const Gas& gas, GasAnswer& answer, CEquation& memory) noexcept;
// Without speed of sound and isentropic exponent.
Outcome density_2004(const Gas& gas, GasAnswer& answer, CEquation& memory) noexcept;

// The same for rows of a batch, several at a time: where done[i] is set, out[i] is what the single calculation of in[i]
// answers with status 0 and without remark, bit for bit; the other rows are left to it.
void gas_2008_rows(const Gas* in, GasAnswer* out, bool* done, std::size_t rows, CEquation& memory) noexcept;
void gas_2004_rows(const Gas* in, GasAnswer* out, bool* done, std::size_t rows, CEquation& memory) noexcept;
void density_2004_rows(const Gas* in, GasAnswer* out, bool* done, std::size_t rows, CEquation& memory) noexcept;

struct FlashAnswer {
  int phase = 0;                 // 1: gas, 2: liquid, 3: both
  double vapour_fraction = 0.0;  // amount of vapour over the whole: 1 for a gas, 0 for a liquid
  double mass_density = 0.0;     // of the whole [kg/m3]
  double vapour_z = 0.0;         // 0 for a phase that is absent, as for the others
  double liquid_z = 0.0;
  double vapour_density = 0.0;  // [kg/m3]
  double liquid_density = 0.0;  // [kg/m3]
};

struct CFlash {
  bool known = false;
  Composition x{};
  double T = 0.0, p = 0.0;
  FlashResult result = FlashResult::no_density;
  Equilibrium equilibrium;
};

// The phases of a mixture, two at most. A feed of three phases answers the best two, with a remark.
Outcome flash_2008(const Gas& gas, FlashAnswer& answer, CFlash& memory) noexcept;
Outcome flash_2004(const Gas& gas, FlashAnswer& answer, CFlash& memory) noexcept;

}  // namespace norvane::GERG2008
