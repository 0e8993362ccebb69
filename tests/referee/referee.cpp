#include "tests/referee/referee.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <random>

#include "math/fluid/iapws_if97.h"
#include "math/gas/aga10.h"
#include "math/gas/gerg.h"
#include "tests/referee/aga8_reference.h"
#include "tests/referee/api_11_1_reference.h"
#include "tests/referee/gerg_reference.h"
#include "tests/referee/if97_reference.h"
#include "tests/referee/iso5167_reference.h"

namespace norvane::referee {

double Row::median() const {
  if (deviations.empty()) return 0.0;
  std::vector<double> sorted = deviations;
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  return *middle;
}

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// A seed stands for the same states.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  double unit() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
  double within(double low, double high) { return low + (high - low) * unit(); }
  double decade(double low, double high) { return std::pow(10.0, within(low, high)); }
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(engine_() % n); }
  template <std::size_t n>
  double one_of(const double (&values)[n]) {
    return values[below(n)];
  }

 private:
  std::mt19937_64 engine_;
};

// The rows of one function, found by class and quantity.
class Tally {
 public:
  Tally(std::vector<Row>& rows, std::string function) : rows_(rows), function_(std::move(function)) {}

  void states(std::string name) { states_ = std::move(name); }
  void state(std::function<std::string()> text) { text_ = std::move(text); }
  // Deviation over a size, which is that of the expected value where none is given.
  void add(const char* quantity, double limit, Real got, Real want, Real size = 0) {
    if (size == 0) size = abs(want);
    const Real difference = abs(got - want);
    const double deviation = difference == 0 ? 0.0 : static_cast<double>(difference / size);
    Row& row = find(quantity, limit);
    row.deviations.push_back(deviation);
    if (!(deviation <= row.worst)) {
      row.worst = deviation;
      row.worst_state = text_();
    }
  }

 private:
  Row& find(const char* quantity, double limit) {
    for (Row& row : rows_)
      if (row.function == function_ && row.states == states_ && row.quantity == quantity) return row;
    rows_.push_back({function_, states_, quantity, limit, {}, 0.0, {}});
    return rows_.back();
  }

  std::vector<Row>& rows_;
  std::string function_, states_;
  std::function<std::string()> text_;
};

std::string number(double value) {
  char text[32] = {};
  std::to_chars(text, text + sizeof text - 1, value);
  return text;
}

// ---- Gases -------------------------------------------------------------------------------------------------------

using Composition = std::array<double, AGA8::component_count>;

void normalise(Composition& x) {
  double sum = 0.0;
  for (double amount : x) sum += amount;
  for (double& amount : x) amount /= sum;
}

Composition natural_gas(Random& random) {
  using namespace component;
  Composition x{};
  const auto up_to = [&](std::size_t i, double most) { x[i] = random.within(0.0, most); };
  x[methane] = random.within(0.5, 1.0);
  for (std::size_t i : {nitrogen, carbon_dioxide, ethane}) up_to(i, 0.1);
  up_to(propane, 0.04);
  for (std::size_t i : {i_butane, n_butane}) up_to(i, 0.015);
  for (std::size_t i : {i_pentane, n_pentane, n_hexane}) up_to(i, 0.003);
  for (std::size_t i : {n_heptane, n_octane, n_nonane, n_decane, water, helium, argon, oxygen}) up_to(i, 0.0005);
  for (std::size_t i : {hydrogen_sulfide, carbon_monoxide}) up_to(i, 0.01);
  up_to(hydrogen, 0.1);
  normalise(x);
  return x;
}

Composition any_gas(Random& random) {
  Composition x{};
  for (double& amount : x) amount = random.below(2) == 0 ? std::pow(random.unit(), 3.0) : 0.0;
  x[random.below(std::size(x))] += 0.1;
  normalise(x);
  return x;
}

struct GasState {
  Composition x;
  double T, p;  // [K], [MPa]

  std::string text() const {
    std::string all = "T " + number(T) + " K, p " + number(p) + " MPa, x";
    for (double amount : x) all += " " + number(amount);
    return all;
  }
};

struct GasClass {
  const char* name;
  std::function<GasState(Random&)> draw;
};

// Edges in temperature [K] and pressure [MPa].
template <std::size_t n, std::size_t m>
std::vector<GasClass> gas_classes(double lowest_T, double highest_T, double highest_p, const double (&edges_T)[n],
                                  const double (&edges_p)[m]) {
  return {{"pipelines: 265 to 335 K, up to 12 MPa",
           [](Random& r) {
             return GasState{natural_gas(r), r.within(265.0, 335.0), r.within(0.05, 12.0)};
           }},
          {"whole range, any gas",
           [=](Random& r) {
             return GasState{any_gas(r), r.within(lowest_T, highest_T), highest_p * std::pow(r.unit(), 2.0) + 1e-6};
           }},
          {"near the critical point",
           [](Random& r) {
             return GasState{natural_gas(r), r.within(190.0, 235.0), r.within(3.0, 9.0)};
           }},
          {"pressure to 0",
           [](Random& r) {
             return GasState{natural_gas(r), r.within(200.0, 500.0), r.decade(-15.0, -3.0)};
           }},
          {"pure components",
           [](Random& r) {
             Composition x{};
             x[r.below(std::size(x))] = 1.0;
             return GasState{x, r.within(250.0, 600.0), r.within(0.01, 10.0)};
           }},
          {"traces of 1e-15 to 1e-6",
           [](Random& r) {
             Composition x;
             for (double& amount : x) amount = r.decade(-15.0, -6.0);
             x[r.below(4)] = 1.0;
             normalise(x);
             return GasState{x, r.within(250.0, 400.0), r.within(0.05, 20.0)};
           }},
          {"edges of the range", [&edges_T, &edges_p](Random& r) {
             return GasState{r.below(2) == 0 ? natural_gas(r) : any_gas(r), r.one_of(edges_T), r.one_of(edges_p)};
           }}};
}

// A density is known to the rounding of the pressure times this.
double amplification(const HelmholtzState& state) {
  return std::max(1.0, static_cast<double>(state.p() / (state.rho * state.dp_drho())));
}

// ---- AGA-8 and AGA-10 --------------------------------------------------------------------------------------------

constexpr double stop_rule = 3e-11;  // what the density search of AGA-8 may leave
constexpr double formula = 1e-13;    // what the rounding of an explicit formula may make

constexpr double aga8_T[] = {144.15, 265.15, 335.15, 477.15, 673.15}, aga8_p[] = {1e-6, 0.101325, 12.0, 137.9, 280.0};

// C* of a nozzle: the throat has the entropy of the stagnation state, and half the square of the speed of sound makes
// up for its enthalpy. False when Newton's method does not find it.
bool critical_flow(const Aga8Reference& reference, const Aga8Reference::Mixture& m, const Composition& x,
                   const HelmholtzState& stagnation, const IdealState& ideal, Real p, Real& C_star) {
  const Real s0 = stagnation.s(ideal), h0 = stagnation.h(ideal), kappa = stagnation.kappa(ideal);
  const Real expansion = pow(2 / (kappa + 1), 1 / (kappa - 1));
  Real ln_T = log(stagnation.T) + stagnation.dp_dT() / stagnation.rho / stagnation.cv(ideal) * log(expansion);
  Real ln_rho = log(stagnation.rho * expansion);
  struct Miss {
    Real s, h, flux;
  };
  const auto miss = [&](Real at_T, Real at_rho) {
    const Real T = exp(at_T), rho = exp(at_rho);
    const HelmholtzState state = reference.residual(m, T, rho);
    const IdealState gas = reference.ideal(x, T);
    const Real M_w2 = state.M_w2(gas);
    return Miss{(state.s(gas) - s0) / stagnation.R, (state.h(gas) + M_w2 / 2 - h0) / (stagnation.R * stagnation.T),
                rho * sqrt(M_w2)};
  };
  constexpr double h = 1e-14;
  for (int i = 0; i < 40; ++i) {
    const Miss now = miss(ln_T, ln_rho), warm = miss(ln_T + h, ln_rho), dense = miss(ln_T, ln_rho + h);
    const Real s_T = (warm.s - now.s) / h, h_T = (warm.h - now.h) / h;
    const Real s_rho = (dense.s - now.s) / h, h_rho = (dense.h - now.h) / h;
    const Real determinant = s_T * h_rho - s_rho * h_T;
    const Real step_T = (s_rho * now.h - h_rho * now.s) / determinant;
    const Real step_rho = (h_T * now.s - s_T * now.h) / determinant;
    C_star = now.flux * sqrt(stagnation.R * stagnation.T) / p;
    if (abs(step_T) + abs(step_rho) < 1e-22_r) return true;
    if (!(abs(step_T) < 0.3_r && abs(step_rho) < 1)) return false;
    ln_T += step_T;
    ln_rho += step_rho;
  }
  return false;
}

void judge_aga(Random& random, std::size_t states, std::vector<Row>& rows) {
  const Aga8Reference reference;
  Tally aga8(rows, "AGA-8 detail"), aga10(rows, "AGA-10");
  for (const GasClass& kind : gas_classes(150.0, 670.0, 140.0, aga8_T, aga8_p)) {
    aga8.states(kind.name);
    aga10.states(kind.name);
    for (std::size_t n = 0; n < states; ++n) {
      const GasState given = kind.draw(random);
      const auto text = [&given] { return given.text(); };
      aga8.state(text);
      aga10.state(text);
      AGA8::CDetail detail;
      AGA8::State got;
      if (detail.calculate(given.x, given.T, given.p, got) != AGA8::converged) continue;
      const Aga8Reference::Mixture m = reference.mixture(given.x);
      const auto energy = [&](const Jet& T, const Jet& rho) { return reference.energy(m, T, rho); };
      const Real R = reference.R(), p = Real(1000) * given.p;
      Real rho = got.molar_density;
      if (!density_near(energy, given.T, R, p, rho)) continue;
      const HelmholtzState state = reference.residual(m, given.T, rho);
      const double sharpness = amplification(state);
      aga8.add("density", infinity, got.molar_density, rho);
      aga8.add("density / s", stop_rule, got.molar_density, rho, rho * sharpness);
      aga8.add("Z / s", stop_rule, got.z, state.z(), state.z() * sharpness);
      aga8.add("molar mass", formula, got.molar_mass, m.M);

      if (n % 4 != 0) continue;
      using AGA10::Property;
      std::vector<Property> wanted;
      for (std::size_t i = 0; i < static_cast<std::size_t>(Property::count); ++i)
        wanted.push_back(static_cast<Property>(i));
      AGA10::Properties values;
      const AGA10::Result result =
          AGA10::calculate(given.x, {given.p, given.T}, AGA10::base_conditions, wanted, values);
      if (result != AGA10::success) continue;
      const auto value = [&values](Property property) { return values[static_cast<std::size_t>(property)]; };
      const IdealState ideal = reference.ideal(given.x, given.T);
      const Real RT = R * given.T;
      // What the stop rule leaves of the density goes into all that follows from it, times their own sensitivity.
      const double limit = 3.0 * stop_rule;
      const auto add = [&](const char* name, Property property, Real want, Real size = 0) {
        aga10.add(name, limit, value(property), want, (size == 0 ? abs(want) : size) * sharpness);
      };
      add("enthalpy, entropy / s", Property::molar_enthalpy, state.h(ideal), RT);
      add("enthalpy, entropy / s", Property::entropy, state.s(ideal) / m.M, R / m.M);
      add("enthalpy, entropy / s", Property::ideal_molar_enthalpy, ideal.h, RT);
      add("cp, cv / s", Property::molar_cp, state.cp(ideal), state.cp(ideal) * sharpness);
      add("cp, cv / s", Property::molar_cv, state.cv(ideal));
      add("cp, cv / s", Property::ideal_molar_cp, ideal.cp);
      add("speed of sound, kappa / s", Property::speed_of_sound, sqrt(state.M_w2(ideal) * 1000 / m.M));
      add("speed of sound, kappa / s", Property::isentropic_exponent, state.kappa(ideal));
      Real base = value(Property::base_molar_density) / 1000;
      if (density_near(energy, 273.15_r, R, 101.325_r, base)) {
        const HelmholtzState at_base = reference.residual(m, 273.15_r, base);
        const Real air =
            1 + (-0.12527_r + 0.000591_r * 273.15_r - 0.000000662_r * square(273.15_r)) * 101.325_r / (R * 273.15_r);
        const double sharp = amplification(at_base);
        aga10.add("base density, relative density, Fpv / s", limit, value(Property::base_density), base * m.M,
                  base * m.M * sharp);
        const Real relative = m.M / 28.9625_r * air / at_base.z();
        aga10.add("base density, relative density, Fpv / s", limit, value(Property::real_relative_density), relative,
                  relative * sharp);
        const Real Fpv = sqrt(at_base.z() / state.z());
        aga10.add("base density, relative density, Fpv / s", limit, value(Property::supercompressibility), Fpv,
                  Fpv * (sharp + sharpness));
      }
      Real C_star;
      if (n % 16 == 0 && critical_flow(reference, m, given.x, state, ideal, p, C_star))
        add("critical flow factor / s", Property::critical_flow_factor, C_star);
    }
  }
}

// ---- GERG-2008 and GERG-2004 -------------------------------------------------------------------------------------

constexpr double gerg_T[] = {60.0, 90.0, 450.0, 700.0}, gerg_p[] = {1e-6, 0.101325, 35.0, 70.0};

void judge_gerg(Random& random, std::size_t states, std::vector<Row>& rows) {
  using namespace GERG2008;
  for (const Edition edition : {Edition::gerg_2008, Edition::gerg_2004}) {
    const bool earlier = edition == Edition::gerg_2004;
    const GergReferee reference(earlier);
    Tally tally(rows, earlier ? "GERG-2004" : "GERG-2008");
    for (const GasClass& kind : gas_classes(90.0, 450.0, 35.0, gerg_T, gerg_p)) {
      tally.states(kind.name);
      for (std::size_t n = 0; n < states; ++n) {
        GasState given = kind.draw(random);
        if (earlier) {
          for (std::size_t absent : edition_2004::absent) given.x[absent] = 0.0;
          if (*std::max_element(given.x.begin(), given.x.end()) == 0.0) continue;
          normalise(given.x);
        }
        tally.state([&given] { return given.text(); });
        CEquation equation;
        double got = 0.0;
        if (equation.density(edition, given.x, given.T, given.p, got) == CEquation::Root::none) continue;
        const auto energy = [&](const Jet& T, const Jet& rho) { return reference.energy(given.x, T, rho); };
        const Real R = reference.R();
        Real rho = got;
        if (!density_near(energy, given.T, R, Real(1000) * given.p, rho)) continue;
        const HelmholtzState state = HelmholtzState::of(energy, given.T, rho, R);
        const double sharpness = amplification(state);
        tally.add("density", infinity, got, rho);
        tally.add("density / s", formula, got, rho, rho * sharpness);
        const helmholtz::State& properties = equation.state();
        const IdealState ideal = reference.ideal(given.x, given.T);
        if (!(properties.cv > 0.0 && properties.M_w2 > 0.0)) continue;
        tally.add("cv / s", 10 * formula, properties.cv, state.cv(ideal), state.cv(ideal) * sharpness);
        tally.add("speed of sound, kappa / s", 10 * formula, std::sqrt(properties.M_w2), sqrt(state.M_w2(ideal)),
                  sqrt(state.M_w2(ideal)) * sharpness);
        tally.add("speed of sound, kappa / s", 10 * formula, helmholtz::kappa(1000.0 * GERG2008::R, properties),
                  state.kappa(ideal), state.kappa(ideal) * sharpness);
      }
    }
  }
}

// ---- ISO 5167 ----------------------------------------------------------------------------------------------------

void judge_iso5167(Random& random, std::size_t states, std::vector<Row>& rows) {
  using namespace ISO5167;
  using differential_pressure::Fluid;
  using differential_pressure::Location;
  using differential_pressure::TemperatureCorrection;
  Tally tally(rows, "ISO 5167 orifice");
  enum Kind { random_states, small_difference, small_pipe, low_reynolds, edges, other_tappings, kind_count };
  constexpr const char* names[] = {"random gases and liquids",
                                   "differential pressure to 1e-6 mbar",
                                   "pipes about 58.62 and 71.12 mm",
                                   "Reynolds numbers about 3700",
                                   "beta 0.1, 0.2 and 0.75, pipes of 50 and 1000 mm",
                                   "states measured downstream and at the recovered pressure"};
  for (int kind = 0; kind < kind_count; ++kind) {
    tally.states(names[kind]);
    for (std::size_t n = 0; n < states; ++n) {
      OrificeArguments given{};
      Measurement& m = given.device.measured;
      Geometry& g = given.device.geometry;
      given.edition = static_cast<Edition>(1 + random.below(3));
      given.tappings = static_cast<Tappings>(1 + random.below(3));
      given.drain_hole = random.below(4) == 0 ? random.within(0.5, 3.0) : 0.0;
      g.pipe_diameter = kind == small_pipe ? random.one_of({58.62, 71.12}) + random.within(-0.01, 0.01)
                        : kind == edges    ? random.one_of({50.0, 1000.0})
                                           : random.within(50.0, 1000.0);
      g.device_diameter =
          g.pipe_diameter * (kind == edges ? random.one_of({0.1, 0.2, 0.75}) : random.within(0.1, 0.75));
      g.pipe_expansion = 1.2e-5;
      g.device_expansion = 1.65e-5;
      g.pipe_reference_temperature = g.device_reference_temperature = 20.0;
      m.pressure = random.within(2.0, 100.0);
      m.dp = kind == small_difference ? random.decade(-6.0, 0.0) : random.within(1.0, 250.0 * m.pressure);
      m.temperature = random.within(-20.0, 60.0);
      m.fluid = random.below(3) == 0 ? Fluid::liquid : Fluid::gas;
      m.density = m.fluid == Fluid::liquid ? random.within(500.0, 1100.0) : random.within(0.7, 0.9) * m.pressure;
      m.kappa = random.within(1.05, 1.7);
      m.viscosity = m.fluid == Fluid::liquid ? random.decade(-4.0, -2.0) : random.within(8e-6, 2e-5);
      m.pressure_location = m.temperature_location = m.density_location = Location::upstream;
      m.temperature_correction = TemperatureCorrection::isentropic;
      if (kind == other_tappings) {
        m.pressure_location = static_cast<Location>(1 + random.below(2));
        m.temperature_location = static_cast<Location>(1 + random.below(3));
        m.density_location = static_cast<Location>(1 + random.below(3));
        m.temperature_correction = static_cast<TemperatureCorrection>(1 + random.below(3));
        m.temperature_exponent = random.within(-0.3, 0.5);
        m.density_exponent = random.below(2) == 0 ? 0.0 : random.within(0.5, 1.0);
      }
      Result got;
      if (kind == low_reynolds) {
        if (!delivered(orifice(m, g, given.tappings, given.edition, given.drain_hole, got))) continue;
        m.viscosity *= got.reynolds / random.within(3000.0, 5000.0);
      }
      tally.state([&given] {
        const Measurement& at = given.device.measured;
        std::string all = "edition " + std::to_string(static_cast<int>(given.edition)) + ", tappings " +
                          std::to_string(static_cast<int>(given.tappings));
        for (double value : {given.device.geometry.pipe_diameter, given.device.geometry.device_diameter, at.dp,
                             at.pressure, at.temperature, at.density, at.viscosity, at.kappa, given.drain_hole})
          all += " " + number(value);
        return all;
      });
      if (!delivered(orifice(m, g, given.tappings, given.edition, given.drain_hole, got))) continue;
      const OrificeFlow want = orifice_flow(given);
      if (!want.settled) continue;
      // The loop stops when the flow changes by less than 1e-12 kg/s.
      const Real left = 1e-12_r / want.q_m;
      const auto beyond_stop = [&left](Real got_value, Real want_value) {
        const Real off = abs(got_value - want_value) / abs(want_value) - left;
        return off > 0 ? off : Real(0);
      };
      tally.add("C, beyond the stop", formula, beyond_stop(got.discharge_coefficient, want.C), 0, 1);
      tally.add("expansibility", formula, got.expansibility, want.epsilon);
      tally.add("mass flow rate", infinity, got.mass_rate, want.q_m);
      tally.add("mass flow rate, beyond the stop", formula, beyond_stop(got.mass_rate, want.q_m), 0, 1);
    }
  }
}

// ---- API MPMS 11.1:2004 ------------------------------------------------------------------------------------------

void judge_api_11_1(Random& random, std::size_t states, std::vector<Row>& rows) {
  using namespace API_11_1_2004;
  // The search for a base density ends within 1e-10 of the observed one; at the edge of a group, where a step leads to
  // the next one, within the standard's 1e-6 kg/m3.
  constexpr double settled = 3e-10, settled_at_edge = 3e-9;
  Tally tally(rows, "API MPMS 11.1:2004");
  enum Kind { random_states, edges, group_edges, outside, kind_count };
  constexpr const char* names[] = {"within the limits", "edges of the limits", "edges of the refined groups",
                                   "beyond the limits"};
  constexpr double edge[] = {770.352, 787.5195, 838.3127};
  const auto group_of = [&edge](Group group, double rho) {
    if (group != Group::refined) return group;
    return rho < edge[0]   ? Group::gasoline
           : rho < edge[1] ? Group::transition
           : rho < edge[2] ? Group::jet_fuel
                           : Group::fuel_oil;
  };
  for (int kind = 0; kind < kind_count; ++kind) {
    tally.states(names[kind]);
    for (std::size_t n = 0; n < states; ++n) {
      Liquid liquid{kind == group_edges ? Group::refined : static_cast<Group>(1 + random.below(7)), 0.0};
      double rho = random.within(620.0, 1160.0), t = random.within(-58.0, 302.0), p = random.within(0.0, 1500.0);
      if (liquid.group == Group::lubricating_oil) rho = random.within(801.0, 1160.0);
      if (kind == edges) {
        rho =
            liquid.group == Group::lubricating_oil ? random.one_of({800.9, 1163.5}) : random.one_of({610.6, 1163.5});
        t = random.one_of({-58.0, 60.0, 302.0});
        p = random.one_of({-10.0, 0.0, 1e-9, 1500.0});
      } else if (kind == group_edges) {
        rho = random.one_of(edge);
        if (random.below(3) != 0) rho = std::nextafter(rho, random.below(2) == 0 ? 0.0 : 2000.0);
      } else if (kind == outside) {
        rho = random.decade(1.5, 4.0);
        t = random.within(-150.0, 400.0);
        p = random.within(-100.0, 3000.0);
      }
      tally.state([&] {
        return "group " + std::to_string(static_cast<int>(liquid.group)) + ", " + number(rho) + " kg/m3, " +
               number(t) + " degF, " + number(p) + " psi";
      });
      Correction got;
      if (!observed_from_base(liquid, rho, t, p, Rounding::off, got).good()) continue;
      const Group group = group_of(liquid.group, rho);
      const VolumeFactors want = volume_factors(got.k, rho, t, p);
      if (want.cpl < 1) continue;  // beyond the pole of the factor, which the library answers with 1
      tally.add("group", 0.0, static_cast<double>(got.group == group), 1);
      tally.add("CTL", formula, got.ctl, want.ctl);
      tally.add("CPL", formula, got.cpl, want.cpl);
      // An exponential knows as many digits less as its exponent has; the constants of alpha may cancel.
      tally.add("F", formula, got.f, want.f, want.f * (1 + abs(log(want.f))));
      tally.add("alpha", formula, got.alpha, want.alpha60, abs(want.alpha60) + abs(Real(got.k.k2)));
      tally.add("observed density", formula, got.observed_density, rho * want.ctl * want.cpl);

      Correction back;
      if (!base_from_observed(liquid, got.observed_density, t, p, Rounding::off, back).good()) continue;
      Real base = back.base_density;
      if (base_density(back.k, got.observed_density, t, p, base)) {
        const Real more = base * (1 + 1e-10_r);
        const VolumeFactors at = volume_factors(back.k, base, t, p), at_more = volume_factors(back.k, more, t, p);
        const Real slope = (more * at_more.ctl * at_more.cpl / (base * at.ctl * at.cpl) - 1) / 1e-10_r;
        tally.add("base density / s", kind == group_edges ? settled_at_edge : settled, back.base_density, base,
                  base * std::max(1.0, std::fabs(static_cast<double>(1 / slope))));
      }
      if (kind == outside) continue;

      for (const MetricBase metric : {MetricBase::degC15, MetricBase::degC20}) {
        const double degC = (t - 32.0) / 1.8, bar = p * 0.06894757;
        Correction chained;
        if (!observed_from_base(liquid, metric, rho, degC, bar, Rounding::off, chained).good()) continue;
        const Real base_t = metric == MetricBase::degC15 ? 59 : 68;
        Real rho60 = rho;
        if (!base_density(chained.k, rho, base_t, 0, rho60)) continue;
        const VolumeFactors at = volume_factors(chained.k, rho60, degC * 1.8_r + 32, bar * 100 / 6.894757_r);
        const VolumeFactors at_base = volume_factors(chained.k, rho60, base_t, 0);
        if (at.cpl < 1) continue;
        tally.add("CTL, CPL from 15 or 20 degC", kind == group_edges ? settled_at_edge : settled, chained.ctl,
                  at.ctl / at_base.ctl);
        tally.add("CTL, CPL from 15 or 20 degC", kind == group_edges ? settled_at_edge : settled, chained.cpl,
                  at.cpl);
      }
    }
  }
  // Where the factor is half a unit of the fifth decimal, and temperatures beside.
  tally.states("beside ties of the fifth decimal");
  for (std::size_t n = 0; n < states; ++n) {
    const Constants k{341.0957, 0.0, 0.0};
    const double rho = random.within(650.0, 1100.0);
    const auto scaled = [&](double t) { return volume_factors(k, rho, t, 0).ctl * 100000; };
    double low = random.within(70.0, 290.0), high = low + 1.0;  // the factor falls with temperature
    const Real tie = round(scaled(low)) - 0.5_r;
    if (!(scaled(high) < tie)) continue;
    for (double middle = 0.5 * (low + high); middle > low && middle < high; middle = 0.5 * (low + high))
      (scaled(middle) > tie ? low : high) = middle;
    const double beside = random.decade(-11.0, -6.0);
    for (double t : {low - beside, high + beside}) {
      tally.state([&] { return number(rho) + " kg/m3, " + number(t) + " degF"; });
      Correction got;
      if (observed_from_base({Group::crude, 0.0}, rho, t, 0.0, Rounding::on, got).good())
        tally.add("rounded CTPL", formula, got.ctpl, round(scaled(t)) / 100000);
    }
  }
}

// ---- IAPWS-IF97 --------------------------------------------------------------------------------------------------

void judge_if97(Random& random, std::size_t states, std::vector<Row>& rows) {
  using namespace IAPWS_IF97;
  constexpr double caloric = 1e-11;  // the terms of regions 1 and 3 are large and cancel
  Tally tally(rows, "IAPWS-IF97");
  struct Class {
    const char* name;
    std::function<Arguments(Random&)> draw;
  };
  const Class classes[] = {
      {"region 1",
       [](Random& r) {
         const double T = r.within(273.15, 623.15), p = saturation_pressure(T);
         return Arguments{p + (100.0 - p) * r.unit(), T, Phase::automatic};
       }},
      {"region 2",
       [](Random& r) {
         const double T = r.within(273.15, 1073.15);
         const double most = T < 623.15 ? saturation_pressure(T) : T < 863.15 ? boundary23_pressure(T) : 100.0;
         return Arguments{most * r.unit(), T, Phase::automatic};
       }},
      {"region 2, pressure to 0",
       [](Random& r) {
         return Arguments{r.decade(-15.0, -4.0), r.within(273.15, 1073.15), Phase::automatic};
       }},
      {"region 3",
       [](Random& r) {
         const double T = r.within(623.15, 863.15), p = boundary23_pressure(T);
         return Arguments{p + (100.0 - p) * r.unit(), T, Phase::automatic};
       }},
      {"region 3, near the critical point",
       [](Random& r) {
         return Arguments{r.within(21.5, 23.0), r.within(643.0, 653.0), Phase::automatic};
       }},
      {"region 5",
       [](Random& r) {
         return Arguments{50.0 * r.unit(), r.within(1073.15, 2273.15), Phase::automatic};
       }},
      {"boundaries", [](Random& r) {
         const double T = r.within(273.15, 647.0), hot = r.within(623.15, 863.15);
         switch (r.below(5)) {
           case 0: return Arguments{saturation_pressure(T), T, Phase::automatic};
           case 1: return Arguments{boundary23_pressure(hot), hot, Phase::automatic};
           case 2: return Arguments{r.within(0.0, 100.0), r.one_of({273.15, 623.15, 863.15}), Phase::automatic};
           case 3: return Arguments{r.within(0.0, 50.0), r.one_of({1073.15, 2273.15}), Phase::automatic};
           default: return Arguments{100.0, r.within(273.15, 1073.15), Phase::automatic};
         }
       }}};
  for (const Class& kind : classes) {
    tally.states(kind.name);
    for (std::size_t n = 0; n < states; ++n) {
      const Arguments in = kind.draw(random);
      tally.state([&in] { return "p " + number(in.pressure) + " MPa, T " + number(in.temperature) + " K"; });
      IAPWS_IF97::Result got;
      if (!calculate(in, got).good()) continue;
      const Real p = in.pressure, T = in.temperature;
      WaterState want;
      double sharpness = 1.0;
      if (got.region == 3) {
        Real rho = got.density, at, slope;
        if (!If97::region3_density(p, T, rho)) continue;
        want = If97::region3(rho, T, at, slope);
        sharpness = std::max(1.0, static_cast<double>(p / (rho * slope)));
      } else {
        want = got.region == 1 ? If97::region1(p, T) : got.region == 2 ? If97::region2(p, T) : If97::region5(p, T);
      }
      int region = 5;
      if (T <= 623.15)
        region = p >= If97::saturation_pressure(T) ? 1 : 2;
      else if (T <= 863.15 && p > If97::boundary23(T))
        region = 3;
      else if (T <= 1073.15)
        region = 2;
      // On a line that is itself a rounded result the state may lie on either side.
      const bool on_line = abs(If97::saturation_pressure(T < 647 ? T : 647) / p - 1) < 1e-12_r ||
                           abs(If97::boundary23(T) / p - 1) < 1e-12_r;
      if (!on_line) tally.add("region", 0.0, got.region, region);
      const Real RT = If97::R() * T;
      tally.add("density / s", 10 * formula, got.density, want.rho, want.rho * sharpness);
      tally.add("enthalpy, entropy / s", caloric, got.enthalpy, want.h, RT * sharpness);
      tally.add("enthalpy, entropy / s", caloric, got.entropy, want.s, If97::R() * sharpness);
      tally.add("kappa / s", caloric, got.isentropic_exponent, want.kappa, want.kappa * sharpness);
    }
  }
}

}  // namespace

std::vector<Row> run(std::uint64_t seed, std::size_t states) {
  std::vector<Row> rows;
  Random random(seed);
  judge_aga(random, states, rows);
  judge_gerg(random, states, rows);
  judge_iso5167(random, states, rows);
  judge_api_11_1(random, states, rows);
  judge_if97(random, states, rows);
  return rows;
}

}  // namespace norvane::referee
