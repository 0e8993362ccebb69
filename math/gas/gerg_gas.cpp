// GERG-2008, GERG-2004: a gas as it is given, checked, and its answers.

#include <algorithm>
#include <cmath>
#include <cstring>

#include "math/gas/gerg.h"
#include "math/gas/gerg2004_table.h"
#include "math/gas/gerg_kernel.h"

namespace norvane::GERG2008 {

// ---- The equation with its memory --------------------------------------------------------------------------------

namespace {

// Equal bits: a NaN equals itself, and 0 and -0 differ.
template <class Value>
bool same(const Value& a, const Value& b) noexcept {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

const Mixture& CEquation::mixture(Edition edition, const Composition& x) noexcept {
  if (!has_mixture_ || edition != mixture_.edition || !same(x, mixture_.x)) {
    mixture_.set(edition, x);
    has_mixture_ = true;
    has_isotherm_ = has_density_ = has_state_ = false;
  }
  return mixture_;
}

CEquation::Root CEquation::density(Edition edition, const Composition& x, double T, double p, double& rho) noexcept {
  (void)mixture(edition, x);
  if (!has_isotherm_ || !same(T, isotherm_.T)) {
    isotherm_.set(mixture_, T);
    has_isotherm_ = true;
    has_density_ = has_state_ = false;
  }
  if (!has_density_ || !same(p, p_)) {
    p_ = p;
    has_density_ = true;
    has_state_ = false;
    root_ = isotherm_.vapour_density(p, rho_)   ? Root::vapour
            : isotherm_.liquid_density(p, rho_) ? Root::liquid
                                                : Root::none;
  }
  rho = rho_;
  return root_;
}

const helmholtz::State& CEquation::state() noexcept {
  if (!has_state_) {
    state_ = GERG2008::state(mixture_, isotherm_, rho_, Entropy::leave_out);
    // The equation's own sum is 1 less nearly 1 in a liquid at low pressure.
    state_.z = p_ / (rho_ * isotherm_.RT);
    has_state_ = true;
  }
  return state_;
}

// ---- Checks ------------------------------------------------------------------------------------------------------

namespace {

constexpr double zero_celsius = 273.15;  // [K]
constexpr double R_joule = 1000.0 * R;   // [J/(mol K)]

// Checked and in the equation's terms.
struct Given {
  Composition x;
  double T;  // [K]
};

Outcome prepare(Edition edition, const Gas& gas, Composition& x) noexcept {
  const Outcome prepared = composition::prepare(gas.composition, gas.neo_pentane, composition_error, x);
  if (!prepared.good()) return prepared;
  if (edition == Edition::gerg_2004) {
    for (std::size_t absent : edition_2004::absent)
      if (x[absent] > 0.0)
        return blame(gas.composition, composition_error, u"holds $, which GERG-2004 does not have")
            .naming(component::table[absent].name);
  }
  return {};
}

Outcome judge_state(const Gas& gas) noexcept {
  constexpr double lowest_t = -250.0, highest_t = 450.0, highest_p = 200.0;
  if (!(gas.temperature >= lowest_t && gas.temperature <= highest_t))
    return blame(gas.temperature, argument_error, u"must be within % to %", lowest_t, highest_t);
  if (!(gas.pressure >= 0.0 && gas.pressure <= highest_p))
    return blame(gas.pressure, argument_error, u"must be within % to %", 0.0, highest_p);
  if (!(gas.pressure > 0.0)) return blame(gas.pressure, calculation_error, u"must be above %", 0.0);
  return {};
}

Outcome prepare(Edition edition, const Gas& gas, Given& given) noexcept {
  const Outcome prepared = prepare(edition, gas, given.x);
  if (!prepared.good()) return prepared;
  const Outcome judged = judge_state(gas);
  if (!judged.good()) return judged;
  given.T = gas.temperature + zero_celsius;
  return {};
}

constexpr const char16_t* no_density = u"the equation has no density at this pressure and temperature";

// Range of the standard, in degC and MPa.
int range(double t, double p) noexcept {
  if (t >= -183.15 && t <= 176.85 && p <= 35.0) return 0;
  return t >= -213.15 && t <= 426.85 && p <= 70.0 ? 1 : 2;
}

// False where they are no finite numbers.
bool describe(const Gas& gas, double rho, double RT, double molar_mass, GasAnswer& answer) noexcept {
  answer.z = gas.pressure / (rho * RT);
  answer.molar_density = rho;
  answer.molar_mass = molar_mass;
  answer.mass_density = rho * molar_mass;
  answer.range = range(gas.temperature, gas.pressure);
  return std::isfinite(answer.z) && std::isfinite(rho);
}

// False where there is no speed of sound.
bool describe(const helmholtz::State& state, GasAnswer& answer) noexcept {
  answer.speed_of_sound = std::sqrt(state.M_w2 * 1000.0 / answer.molar_mass);
  answer.kappa = helmholtz::kappa(R_joule, state);
  return state.cv > 0.0 && state.M_w2 > 0.0 && std::isfinite(answer.speed_of_sound) && std::isfinite(answer.kappa);
}

Outcome density(Edition edition, const Gas& gas, GasAnswer& answer, CEquation& equation) noexcept {
  Given given;
  const Outcome prepared = prepare(edition, gas, given);
  if (!prepared.good()) return prepared;
  double rho = 0.0;
  const CEquation::Root root = equation.density(edition, given.x, given.T, gas.pressure, rho);
  if (root == CEquation::Root::none) return failure(calculation_error, no_density);
  if (!describe(gas, rho, equation.isotherm().RT, equation.mixture().molar_mass, answer))
    return failure(calculation_error, no_density);
  if (root == CEquation::Root::liquid)
    return remark(u"there is no vapour at this pressure and temperature: this is the liquid");
  return {};
}

Outcome gas_state(Edition edition, const Gas& gas, GasAnswer& answer, CEquation& equation) noexcept {
  const Outcome outcome = density(edition, gas, answer, equation);
  if (!outcome.good()) return outcome;
  if (!describe(equation.state(), answer))
    return failure(calculation_error, u"there is no speed of sound at this pressure and temperature");
  return outcome;
}

Outcome phases(Edition edition, const Gas& gas, FlashAnswer& answer, CFlash& memory) noexcept {
  Given given;
  const Outcome prepared = prepare(edition, gas, given);
  if (!prepared.good()) return prepared;
  if (!memory.known || !same(memory.x, given.x) || !same(memory.T, given.T) || !same(memory.p, gas.pressure)) {
    memory.known = true;
    memory.x = given.x;
    memory.T = given.T;
    memory.p = gas.pressure;
    memory.result = flash(edition, given.x, given.T, gas.pressure, memory.equilibrium);
  }
  if (memory.result == FlashResult::no_density) return failure(calculation_error, no_density);
  if (memory.result == FlashResult::not_converged)
    return failure(no_convergence, u"the mixture splits, but its phases are not found");
  if (memory.result == FlashResult::no_liquid_water)
    return blame(gas.composition[water], no_convergence,
                 u"is more water than the mole fraction % that may be left out: the equation has no liquid water at "
                 u"this pressure and temperature",
                 most_water_left_out);

  const Equilibrium& found = memory.equilibrium;
  const auto mass_density = [](const Phase& phase) { return phase.rho * phase.molar_mass; };
  if (found.split) {
    const double b = found.vapour_fraction;
    const double molar_mass = b * found.vapour.molar_mass + (1.0 - b) * found.liquid.molar_mass;
    answer.phase = 3;
    answer.vapour_fraction = b;
    answer.mass_density = molar_mass / (b / found.vapour.rho + (1.0 - b) / found.liquid.rho);
    answer.vapour_z = found.vapour.z;
    answer.vapour_density = mass_density(found.vapour);
    answer.liquid_z = found.liquid.z;
    answer.liquid_density = mass_density(found.liquid);
  } else {
    const bool liquid = found.vapour.liquid;
    answer.phase = liquid ? 2 : 1;
    answer.vapour_fraction = liquid ? 0.0 : 1.0;
    answer.mass_density = mass_density(found.vapour);
    (liquid ? answer.liquid_z : answer.vapour_z) = found.vapour.z;
    (liquid ? answer.liquid_density : answer.vapour_density) = mass_density(found.vapour);
  }
  if (!std::isfinite(answer.mass_density)) return failure(calculation_error, no_density);
  if (found.without_water)
    return remark(found.third
                      ? u"these are two of several phases of the gas without its water (mole fraction %): the "
                        u"equation has no liquid water at this pressure and temperature"
                      : u"these are the phases of the gas without its water (mole fraction %): the equation "
                        u"has no liquid water at this pressure and temperature",
                  given.x[water]);
  if (found.third)
    return remark(u"a third phase would form beside these two, which have the least energy of all pairs");
  if (found.untested) return remark(u"the equation has no density for some phases that might form besides");
  if (found.split && found.vapour.liquid)
    return remark(u"both phases are liquids; the lighter one is answered as the vapour");
  return {};
}

}  // namespace

// ---- The functions -----------------------------------------------------------------------------------------------

Outcome gas_2008(const Gas& gas, GasAnswer& answer, CEquation& memory) noexcept {
  return gas_state(Edition::gerg_2008, gas, answer, memory);
}
Outcome gas_2004(const Gas& gas, GasAnswer& answer, CEquation& memory) noexcept {
  return gas_state(Edition::gerg_2004, gas, answer, memory);
}
Outcome density_2004(const Gas& gas, GasAnswer& answer, CEquation& memory) noexcept {
  return density(Edition::gerg_2004, gas, answer, memory);
}
Outcome flash_2008(const Gas& gas, FlashAnswer& answer, CFlash& memory) noexcept {
  return phases(Edition::gerg_2008, gas, answer, memory);
}
Outcome flash_2004(const Gas& gas, FlashAnswer& answer, CFlash& memory) noexcept {
  return phases(Edition::gerg_2004, gas, answer, memory);
}

// ---- Rows --------------------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t most_rows = 64;  // that are calculated together

// Rows of one composition that follow each other.
void answer_run(Edition edition, const Gas* in, GasAnswer* out, bool* done, std::size_t rows, bool with_state,
                CEquation& memory) noexcept {
  Composition x;
  if (rows < 2 || !prepare(edition, in[0], x).good()) return;
  std::size_t row[most_rows], count = 0;
  double T[most_rows], p[most_rows], rho[most_rows];
  helmholtz::State states[most_rows];
  for (std::size_t i = 0; i < rows; ++i) {
    if (!judge_state(in[i]).good()) continue;
    T[count] = in[i].temperature + zero_celsius;
    p[count] = in[i].pressure;
    row[count++] = i;
  }
  const Mixture& mixture = memory.mixture(edition, x);
  kernel().densities(mixture, T, p, rho, count);
  if (with_state) kernel().states(mixture, T, rho, states, count);
  for (std::size_t k = 0; k < count; ++k) {
    GasAnswer& answer = out[row[k]];
    if (with_state) states[k].z = p[k] / (rho[k] * (R * T[k]));  // as CEquation::state
    done[row[k]] = describe(in[row[k]], rho[k], R * T[k], mixture.molar_mass, answer) &&
                   (!with_state || describe(states[k], answer));
  }
}

void answer_rows(Edition edition, const Gas* in, GasAnswer* out, bool* done, std::size_t rows, bool with_state,
                 CEquation& memory) noexcept {
  std::fill_n(done, rows, false);
  for (std::size_t first = 0, end = 0; first < rows; first = end) {
    end = first + 1;
    while (end < rows && end - first < most_rows && in[end].neo_pentane == in[first].neo_pentane &&
           same(in[end].composition, in[first].composition))
      ++end;
    answer_run(edition, in + first, out + first, done + first, end - first, with_state, memory);
  }
}

}  // namespace

void gas_2008_rows(const Gas* in, GasAnswer* out, bool* done, std::size_t rows, CEquation& memory) noexcept {
  answer_rows(Edition::gerg_2008, in, out, done, rows, true, memory);
}
void gas_2004_rows(const Gas* in, GasAnswer* out, bool* done, std::size_t rows, CEquation& memory) noexcept {
  answer_rows(Edition::gerg_2004, in, out, done, rows, true, memory);
}
void density_2004_rows(const Gas* in, GasAnswer* out, bool* done, std::size_t rows, CEquation& memory) noexcept {
  answer_rows(Edition::gerg_2004, in, out, done, rows, false, memory);
}

}  // namespace norvane::GERG2008
