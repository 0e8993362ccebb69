// The calculations that are compared, each with its plain transcription.
#include <algorithm>
#include <initializer_list>

#include "bench/compare/case.h"
#include "bench/plain_calorific.h"
#include "bench/plain_detail.h"
#include "bench/plain_flow.h"
#include "bench/plain_fluid.h"
#include "bench/plain_gerg.h"
#include "bench/plain_liquid.h"
#include "math/flow/aga3.h"
#include "math/flow/iso5167.h"
#include "math/fluid/nist_ethylene_visc.h"
#include "math/gas/aga10.h"
#include "math/liquid/api_11_1_1980.h"
#include "math/liquid/api_11_1_2004.h"
#include "math/liquid/api_11_2_4.h"

namespace norvane::bench {
namespace {

constexpr double zero_celsius = 273.15;

template <class Function>
auto prepare(const Function& of_state) {
  std::vector<decltype(of_state(0))> list;
  for (std::size_t i = 0; i < state_count; ++i) list.push_back(of_state(i));
  return std::make_shared<const std::vector<decltype(of_state(0))>>(std::move(list));
}

Columns shared(std::vector<Column> columns) {
  return std::make_shared<const std::vector<Column>>(std::move(columns));
}

// These, then one number for all states each.
Columns and_same(std::vector<Column> columns, std::initializer_list<double> values) {
  for (double value : values) columns.push_back(same(value));
  return shared(std::move(columns));
}

// ---- Gases -------------------------------------------------------------------------------------------------------

using Amounts = std::array<double, 22>;

Amounts gas_of(std::size_t components, double shift) {
  switch (components) {
    case 1: return {1.0};
    case 5: return {0.9 - shift, 0.02 + shift, 0.01, 0.05, 0.02};
    case 11:  // Amarillo gas
      return {0.906724 - shift, 0.031284 + shift, 0.004676, 0.045279, 0.00828, 0, 0, 0, 0, 0,
              0.001037,         0.001563,         0.000321, 0.000443, 0.000393};
    default:
      return {0.8629 - shift, 0.02 + shift, 0.005,  0.05,  0.03,  0.0001, 0.001,  0.0001, 0.0001, 0.0002, 0.011,
              0.009,          0.0035,       0.0025, 0.002, 0.001, 0.0005, 0.0002, 0.0001, 0.0004, 0.0004, 0.0};
  }
}

Column gases(std::size_t components, bool gas_a_row) {
  if (!gas_a_row) return same_list(gas_of(components, 0.0));
  Column column{{}, 22, 22};
  for (std::size_t i = 0; i < state_count; ++i) {
    const Amounts gas = gas_of(components, 1e-5 * static_cast<double>(i * 101 % state_count));
    column.values.insert(column.values.end(), gas.begin(), gas.end());
  }
  return column;
}

// Pressure [bar(a)], temperature [degC], composition, neo-pentane mode.
std::vector<Column> gas_columns(std::size_t components, bool gas_a_row) {
  return {spread(10.0, 75.0, 149), spread(5.0, 45.0, 211), gases(components, gas_a_row), same(1)};
}

// A gas as the library takes it, and as the plain transcriptions do.
template <class Gas>
struct GasState {
  Gas gas{};
  std::array<double, 21> x{};
  double p = 0, T = 0;
};
template <class Gas>
auto gas_states(const Columns& columns) {
  return prepare([&](std::size_t i) {
    GasState<Gas> state;
    std::copy_n((*columns)[2].at(i), 22, state.gas.composition.begin());
    state.gas.neo_pentane = composition::add_to_i_pentane;
    state.p = state.gas.pressure = *(*columns)[0].at(i) / 10.0;
    state.gas.temperature = *(*columns)[1].at(i);
    state.T = state.gas.temperature + zero_celsius;
    (void)composition::prepare(state.gas.composition, state.gas.neo_pentane, 4, state.x);
    return state;
  });
}

// An algorithm of the library with its result and, perhaps, its memory.
template <class Result, auto algorithm, class Arguments>
auto answered_by(const Arguments&) {
  return [result = std::make_shared<Result>()](const Arguments& in) -> const Result& {
    (void)algorithm(in, *result);
    return *result;
  };
}
template <class Result, class Memory, auto algorithm, class Gas>
auto gas_answered_by(const Gas&) {
  return [result = std::make_shared<Result>(),
          memory = std::make_shared<Memory>()](const GasState<Gas>& in) -> const Result& {
    (void)algorithm(in.gas, *result, *memory);
    return *result;
  };
}

std::string gas_text(std::size_t components, bool gas_a_row) {
  return (gas_a_row ? std::string("new gas") : std::string("new p, T")) + ", " + std::to_string(components) +
         (components == 1 ? " component" : " components");
}

}  // namespace

std::vector<Column> aga8_columns(std::size_t components, bool gas_a_row) {
  std::vector<Column> columns = gas_columns(components, gas_a_row);
  columns.push_back(same(1));  // edition
  return columns;
}

Case aga8_case(std::size_t components, bool gas_a_row) {
  const Columns columns = shared(aga8_columns(components, gas_a_row));
  auto made_states = std::make_shared<std::vector<GasState<AGA8::Gas>>>(*gas_states<AGA8::Gas>(columns));
  for (auto& state : *made_states) state.gas.edition = 1;
  const std::shared_ptr<const std::vector<GasState<AGA8::Gas>>> states = made_states;
  Case made{"AGA-8, density", gas_text(components, gas_a_row)};
  made.compared = {0, 1, 2, 3};
  made.tolerance = 3e-11;  // the stop rule of the search
  struct Plain {
    double z, mass_density, rho, M;
  };
  const auto detail = std::make_shared<PlainDetail>();
  detail->set_composition(states->front().x);
  made[Ways::plain] = timed(
      states,
      [detail, gas_a_row](const GasState<AGA8::Gas>& in) {
        if (gas_a_row) detail->set_composition(in.x);
        detail->set_temperature(in.T);
        const double rho = detail->density(in.p), M = detail->molar_mass();
        return Plain{in.p / (rho * AGA8::R * in.T), rho * M, rho, M};
      },
      [](const Plain& a, double* out) { out[0] = a.z, out[1] = a.mass_density, out[2] = a.rho, out[3] = a.M; });
  made[Ways::algorithm] = timed(states, gas_answered_by<AGA8::Answer, AGA8::CDetail, AGA8::state_of>(AGA8::Gas{}),
                                [](const AGA8::Answer& a, double* out) {
                                  out[0] = a.state.z, out[1] = a.state.mass_density;
                                  out[2] = a.state.molar_density, out[3] = a.state.molar_mass;
                                });
  add_hosts(made, u"AGA8_M", columns, &Norvane_AGA8_M, &Norvane_AGA8_M_Batch);
  return made;
}

Case aga10_case(std::size_t components, bool gas_a_row) {
  std::vector<Column> list = gas_columns(components, gas_a_row);
  list.push_back(same(1));  // without the critical flow factors
  const Columns columns = shared(std::move(list));
  auto made_states = std::make_shared<std::vector<GasState<AGA10::Gas>>>(*gas_states<AGA10::Gas>(columns));
  for (auto& state : *made_states) state.gas.critical_flow = 1;
  const std::shared_ptr<const std::vector<GasState<AGA10::Gas>>> states = made_states;
  Case made{"AGA-10, all properties", gas_text(components, gas_a_row)};
  // Speed of sound, both Z, entropy, cp and cv, isentropic exponent, enthalpy.
  made.compared = {7, 8, 9, 13, 18, 19, 21, 24};
  made.tolerance = 1e-10;  // the stop rule of the search
  struct Plain {
    double M, base_z;
    PlainDetail::State now;
  };
  const auto detail = std::make_shared<PlainDetail>();
  // The state at base conditions, once a gas.
  const auto set_gas = [detail](const AGA8::Composition& x) {
    const AGA10::Conditions& base = AGA10::base_conditions;
    detail->set_composition(x);
    detail->set_temperature(base.T);
    return base.p / (detail->density(base.p) * AGA8::R * base.T);
  };
  made[Ways::plain] = timed(
      states,
      [detail, set_gas, gas_a_row, base_z = set_gas(states->front().x)](const GasState<AGA10::Gas>& in) {
        const double z = gas_a_row ? set_gas(in.x) : base_z;
        detail->set_temperature(in.T);
        return Plain{detail->molar_mass(), z, detail->properties(detail->density(in.p))};
      },
      [](const Plain& a, double* out) {
        out[7] = a.now.w, out[8] = a.base_z, out[9] = a.now.z, out[13] = a.now.s / a.M;
        out[18] = a.now.cp, out[19] = a.now.cv, out[21] = a.now.kappa, out[24] = a.now.h;
      });
  made[Ways::algorithm] =
      timed(states, gas_answered_by<AGA10::Answer, AGA10::CDetail, AGA10::all_properties>(AGA10::Gas{}),
            [](const AGA10::Answer& a, double* out) { std::copy(a.values.begin(), a.values.end(), out); });
  add_hosts(made, u"AGA10ex_M", columns, &Norvane_AGA10ex_M, &Norvane_AGA10ex_M_Batch);
  return made;
}

namespace {

std::shared_ptr<PlainGerg> plain_gerg(const GERG2008::Composition& x) {
  const auto made = std::make_shared<PlainGerg>();
  made->set_composition(x);
  return made;
}

// The density without other properties, of which the catalogue has no function.
Case gerg_density_case(std::size_t components, bool gas_a_row) {
  const auto states = gas_states<GERG2008::Gas>(shared(gas_columns(components, gas_a_row)));
  using State = GasState<GERG2008::Gas>;
  Case made{"GERG-2008, density", gas_text(components, gas_a_row)};
  made.compared = {0};
  const auto deliver = [](double rho, double* out) { out[0] = rho; };
  made[Ways::plain] = timed(
      states,
      [gerg = plain_gerg(states->front().x), gas_a_row](const State& in) {
        if (gas_a_row) gerg->set_composition(in.x);
        gerg->set_temperature(in.T);
        return gerg->density(in.p);
      },
      deliver);
  made[Ways::algorithm] = timed(
      states,
      [memory = std::make_shared<GERG2008::CEquation>()](const State& in) {
        double rho = 0.0;
        (void)memory->density(GERG2008::Edition::gerg_2008, in.x, in.T, in.p, rho);
        return rho;
      },
      deliver);
  return made;
}

}  // namespace

Case gerg_case(std::size_t components, bool gas_a_row) {
  const Columns columns = shared(gas_columns(components, gas_a_row));
  const auto states = gas_states<GERG2008::Gas>(columns);
  using State = GasState<GERG2008::Gas>;
  Case made{"GERG-2008, density and speed of sound", gas_text(components, gas_a_row)};
  made.compared = {0, 1, 2, 3, 4, 5};
  using Plain = std::array<double, 6>;
  made[Ways::plain] = timed(
      states,
      [gerg = plain_gerg(states->front().x), gas_a_row](const State& in) -> Plain {
        if (gas_a_row) gerg->set_composition(in.x);
        gerg->set_temperature(in.T);
        const double rho = gerg->density(in.p), M = gerg->molar_mass();
        const PlainState now = gerg->properties(rho);
        return {in.p / (rho * GERG2008::R * in.T), rho * M, rho, M, std::sqrt(1000.0 * now.w2 / M), now.kappa};
      },
      [](const Plain& a, double* out) { std::copy(a.begin(), a.end(), out); });
  made[Ways::algorithm] =
      timed(states, gas_answered_by<GERG2008::GasAnswer, GERG2008::CEquation, GERG2008::gas_2008>(GERG2008::Gas{}),
            [](const GERG2008::GasAnswer& a, double* out) {
              const double values[] = {a.z, a.mass_density, a.molar_density, a.molar_mass, a.speed_of_sound, a.kappa};
              std::copy(std::begin(values), std::end(values), out);
            });
  add_hosts(made, u"GERG2008_Gas", columns, &Norvane_GERG2008_Gas, &Norvane_GERG2008_Gas_Batch);
  return made;
}

namespace {

// ---- Calorific values --------------------------------------------------------------------------------------------

Case iso6976_case(bool of_2016) {
  // 15 degC/15 degC, molar masses from the table, definitive method.
  const Columns columns = shared({gases(21, true), same(1), same(2), same(1)});
  const auto states = prepare([&](std::size_t i) {
    ISO6976::Gas22 gas{{}, {1, ISO6976::MolarMassMethod::table, ISO6976::CalorificMethod::definitive}};
    std::copy_n((*columns)[0].at(i), 22, gas.composition.begin());
    return gas;
  });
  Case made{of_2016 ? "ISO 6976:2016" : "ISO 6976:1995", "new gas, 21 components"};
  made.compared = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  made[Ways::plain] = timed(
      states, [of_2016](const ISO6976::Gas22& gas) { return plain_iso6976(gas.composition, of_2016); },
      [](const std::array<double, 11>& a, double* out) { std::copy(a.begin(), a.end(), out); });
  const auto deliver = [](const ISO6976::Delivered& a, double* out) {
    const ISO6976::Properties& p = a.properties;
    const double values[] = {
        p.superior_volume, p.density,         p.compressibility, p.relative_density, p.molar_mass, p.superior_mass,
        p.superior_molar,  p.inferior_volume, p.inferior_mass,   p.inferior_molar,   p.wobbe};
    std::copy(std::begin(values), std::end(values), out);
  };
  if (of_2016) {
    made[Ways::algorithm] =
        timed(states, answered_by<ISO6976::Delivered, ISO6976::of_2016>(ISO6976::Gas22{}), deliver);
    add_hosts(made, u"ISO6976_2016_M", columns, &Norvane_ISO6976_2016_M, &Norvane_ISO6976_2016_M_Batch);
  } else {
    made[Ways::algorithm] =
        timed(states, answered_by<ISO6976::Delivered, ISO6976::of_1995>(ISO6976::Gas22{}), deliver);
    add_hosts(made, u"ISO6976_1995_M", columns, &Norvane_ISO6976_1995_M, &Norvane_ISO6976_1995_M_Batch);
  }
  return made;
}

// ---- Orifice plates ----------------------------------------------------------------------------------------------

void deliver_plain_orifice(const PlainOrifice& o, double* out) {
  const double values[] = {o.mass_rate,      o.beta,           o.d,           o.D,
                           o.pressure[0],    o.pressure[1],    o.pressure[2], o.temperature[0],
                           o.temperature[1], o.temperature[2], o.density[0],  o.density[1],
                           o.density[2],     o.reynolds,       o.C,           o.expansion,
                           o.approach};
  std::copy(std::begin(values), std::end(values), out);
}
template <class Result>
void deliver_orifice(const Result& r, double d, double expansion, double approach, double unit, double* out) {
  const double values[] = {r.mass_rate / unit,
                           r.beta,
                           d,
                           r.pipe_diameter,
                           r.pressure.upstream,
                           r.pressure.downstream,
                           r.pressure.recovered,
                           r.temperature.upstream,
                           r.temperature.downstream,
                           r.temperature.recovered,
                           r.density.upstream,
                           r.density.downstream,
                           r.density.recovered,
                           r.reynolds,
                           r.discharge_coefficient,
                           expansion,
                           approach};
  std::copy(std::begin(values), std::end(values), out);
}
const std::vector<std::size_t> orifice_outputs = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

// The twelve inputs that both begin with.
differential_pressure::Device device_of(const std::vector<Column>& columns, std::size_t i) {
  const auto of = [&](std::size_t k) { return *columns[k].at(i); };
  differential_pressure::Device device;
  differential_pressure::Measurement& m = device.measured;
  m.dp = of(0), m.pressure = of(1), m.temperature = of(2), m.density = of(3), m.viscosity = of(4), m.kappa = of(5);
  device.geometry = {of(6), of(7), of(8), of(9), of(10), of(11)};
  return device;
}

Case iso5167_case() {
  const Columns columns =
      and_same({spread(50, 450, 149), spread(40, 70, 211), spread(10, 40, 59), spread(30, 60, 101)},
               {1.2e-5, 1.3, 202.7, 1.1e-5, 20, 121.6, 1.65e-5, 20, 3, 1, 1, 1, 0, 1, 0, 1, 3, 0});
  const auto states = prepare([&](std::size_t i) {
    return ISO5167::OrificeArguments{device_of(*columns, i), ISO5167::Tappings::flange, ISO5167::Edition::y2003, 0.0};
  });
  Case made{"ISO 5167 orifice", "flange tappings, 2003"};
  made.compared = orifice_outputs;
  made[Ways::plain] = timed(
      states,
      [](const ISO5167::OrificeArguments& in) { return plain_iso5167(in.device.measured, in.device.geometry); },
      deliver_plain_orifice);
  made[Ways::algorithm] =
      timed(states, answered_by<ISO5167::Result, ISO5167::orifice_flow>(ISO5167::OrificeArguments{}),
            [](const ISO5167::Result& r, double* out) {
              deliver_orifice(r, r.device_diameter, r.expansibility, r.velocity_of_approach, 1.0, out);
            });
  add_hosts(made, u"ISO5167_Orifice", columns, &Norvane_ISO5167_Orifice, &Norvane_ISO5167_Orifice_Batch);
  return made;
}

Case aga3_case() {
  const Columns columns =
      and_same({spread(20, 180, 149), spread(500, 900, 211), spread(40, 90, 59), spread(1.5, 3.0, 101)},
               {7.3e-6, 1.29, 8.071, 6.2e-6, 68, 4.75, 9.25e-6, 68, 1, 1, 1, 0, 1, 0, 1, 0, 1, 1});
  const auto states = prepare([&](std::size_t i) {
    AGA3::Arguments in{device_of(*columns, i), 0.0, 1.0, AGA3::Edition::y1992};
    in.device.measured.viscosity *= 1488.16394356955;  // lbm/(ft s) to cP
    return in;
  });
  Case made{"AGA-3 orifice", "1992"};
  made.compared = orifice_outputs;
  made[Ways::plain] = timed(
      states, [](const AGA3::Arguments& in) { return plain_aga3(in.device.measured, in.device.geometry); },
      [](const PlainOrifice& o, double* out) {
        deliver_plain_orifice(o, out);
        out[0] /= 1000.0;  // klbm/h
      });
  made[Ways::algorithm] =
      timed(states, answered_by<AGA3::Result, AGA3::orifice_flow>(AGA3::Arguments{}),
            [](const AGA3::Result& r, double* out) {
              deliver_orifice(r, r.orifice_diameter, r.expansion_factor, r.velocity_of_approach, 1000.0, out);
            });
  add_hosts(made, u"AGA3_C", columns, &Norvane_AGA3_C, &Norvane_AGA3_C_Batch);
  return made;
}

// ---- Pure fluids -------------------------------------------------------------------------------------------------

// Pressures [MPa] and temperatures [K] of which `accept` is true, in no order.
template <class Accept>
std::array<Column, 2> fluid_states(double p_low, double p_high, double T_low, double T_high, const Accept& accept) {
  std::array<Column, 2> drawn{Column{{}, 1}, Column{{}, 1}};
  for (std::size_t i = 0; drawn[0].values.size() < state_count; ++i) {
    const auto share = [i](double step) { return std::fmod(static_cast<double>(i) * step, 1.0); };
    const double p = p_low + (p_high - p_low) * share(0.7548776662466927);
    const double T = T_low + (T_high - T_low) * share(0.5698402909980532);
    if (!accept(p, T)) continue;
    drawn[0].values.push_back(10.0 * p);
    drawn[1].values.push_back(T - zero_celsius);
  }
  return drawn;
}
constexpr auto any_state = [](double, double) { return true; };

template <class Arguments>
auto fluid_arguments(const std::array<Column, 2>& drawn) {
  return prepare([&](std::size_t i) {
    Arguments in;
    in.pressure = *drawn[0].at(i) / 10.0;
    in.temperature = *drawn[1].at(i) + zero_celsius;
    return in;
  });
}

Case if97_case(int wanted, const char* what, PlainWater (*plain)(double, double)) {
  using IAPWS_IF97::Arguments;
  using IAPWS_IF97::Result;
  const double T_low = wanted == 5 ? 1074.0 : wanted == 3 ? 623.2 : 280.0;
  const double T_high = wanted == 5 ? 2273.0 : wanted == 3 ? 863.0 : 1073.0;
  const auto drawn = fluid_states(wanted == 3 ? 16.0 : 0.01, wanted == 5 ? 50.0 : 100.0, T_low, T_high,
                                  [wanted](double p, double T) {
                                    Result result;
                                    return IAPWS_IF97::calculate({p, T}, result).good() && result.region == wanted;
                                  });
  const auto states = fluid_arguments<Arguments>(drawn);
  const Columns columns = shared({drawn[0], drawn[1], same(1)});
  Case made{"IAPWS-IF97", what};
  made.compared = {0, 1, 2, 3};
  made.tolerance = 1e-10;  // large terms that cancel
  made[Ways::plain] = timed(
      states, [plain](const Arguments& in) { return plain(in.pressure, in.temperature); },
      [](const PlainWater& a, double* out) { out[0] = a.rho, out[1] = a.h, out[2] = a.s, out[3] = a.kappa; });
  made[Ways::algorithm] =
      timed(states, answered_by<Result, IAPWS_IF97::calculate>(Arguments{}), [](const Result& a, double* out) {
        out[0] = a.density, out[1] = a.enthalpy, out[2] = a.entropy;
        out[3] = a.isentropic_exponent;
      });
  add_hosts(made, u"IAPWS_IF97_M", columns, &Norvane_IAPWS_IF97_M, &Norvane_IAPWS_IF97_M_Batch);
  return made;
}

Case co2_case(const char* what, const std::array<Column, 2>& drawn) {
  using NIST_CO2::Arguments;
  using NIST_CO2::Result;
  const auto states = fluid_arguments<Arguments>(drawn);
  Case made{"Carbon dioxide", what};
  made.compared = {0};
  made.tolerance = 1e-11;
  made[Ways::plain] = timed(
      states, [](const Arguments& in) { return plain_co2(in.pressure, in.temperature); },
      [](double rho, double* out) { out[0] = rho; });
  made[Ways::algorithm] = timed(states, answered_by<Result, NIST_CO2::calculate>(Arguments{}),
                                [](const Result& a, double* out) { out[0] = a.density; });
  add_hosts(made, u"NIST_CO2_M", shared({drawn[0], drawn[1]}), &Norvane_NIST_CO2_M, &Norvane_NIST_CO2_M_Batch);
  return made;
}

// Away from saturation and from the critical point.
std::array<Column, 2> ethylene_states() {
  return fluid_states(0.1, 20.0, 200.0, 400.0, [](double p, double T) {
    if (T > 282.0) return T > 300.0 || p < 4.0 || p > 8.0;
    return std::fabs(p / ethylene::vapour_pressure(T) - 1.0) > 0.02 && T < 275.0;
  });
}

Case ethylene_iupac_case() {
  using namespace Ethylene_IUPAC;
  const auto drawn = ethylene_states();
  const auto states = fluid_arguments<Arguments>(drawn);
  Case made{"Ethylene, IUPAC", "all properties"};
  made.compared = {0, 1, 2, 3, 4, 5, 6};
  made.tolerance = 1e-11;
  made[Ways::plain] = timed(
      states, [](const Arguments& in) { return plain_ethylene_iupac(in.pressure, in.temperature); },
      [](const PlainEthylene& a, double* out) {
        const double values[] = {a.z, a.rho, a.h, a.s, a.cp, a.cv, a.w};
        std::copy(std::begin(values), std::end(values), out);
      });
  made[Ways::algorithm] =
      timed(states, answered_by<Result, calculate>(Arguments{}), [](const Result& a, double* out) {
        const double values[] = {a.z, a.density, a.enthalpy, a.entropy, a.cp, a.cv, a.speed_of_sound};
        std::copy(std::begin(values), std::end(values), out);
      });
  add_hosts(made, u"Ethylene_IUPAC_M", shared({drawn[0], drawn[1]}), &Norvane_Ethylene_IUPAC_M,
            &Norvane_Ethylene_IUPAC_M_Batch);
  return made;
}

Case ethylene_1045_case() {
  using namespace Ethylene_NIST1045;
  const auto drawn = ethylene_states();
  const auto states = fluid_arguments<Arguments>(drawn);
  Case made{"Ethylene, Technical Note 1045", "density"};
  made.compared = {0, 1, 2};
  made.tolerance = 1e-11;
  made[Ways::plain] = timed(
      states,
      [](const Arguments& in) {
        const double rho = plain_ethylene_1045(in.pressure, in.temperature);
        return std::array{1000.0 * in.pressure / (rho * 8.31434 * in.temperature), rho * molar_mass, rho};
      },
      [](const std::array<double, 3>& a, double* out) { std::copy(a.begin(), a.end(), out); });
  made[Ways::algorithm] =
      timed(states, answered_by<Result, calculate>(Arguments{}),
            [](const Result& a, double* out) { out[0] = a.z, out[1] = a.density, out[2] = a.molar_density; });
  add_hosts(made, u"Ethylene_NIST1045", shared({drawn[0], drawn[1], same(1)}), &Norvane_Ethylene_NIST1045,
            &Norvane_Ethylene_NIST1045_Batch);
  return made;
}

Case ethylene_viscosity_case() {
  using namespace NIST_Ethylene_Visc;
  const auto drawn = ethylene_states();
  const auto states = fluid_arguments<Arguments>(drawn);
  Case made{"Ethylene, viscosity", "new p, T"};
  made.compared = {0};
  made.tolerance = 1e-11;
  made[Ways::plain] = timed(
      states, [](const Arguments& in) { return plain_ethylene_viscosity(in.pressure, in.temperature); },
      [](double viscosity_, double* out) { out[0] = viscosity_; });
  made[Ways::algorithm] = timed(states, answered_by<Result, calculate>(Arguments{}),
                                [](const Result& a, double* out) { out[0] = a.viscosity; });
  add_hosts(made, u"NIST_Ethylene_Visc_M", shared({drawn[0], drawn[1]}), &Norvane_NIST_Ethylene_Visc_M,
            &Norvane_NIST_Ethylene_Visc_M_Batch);
  return made;
}

// ---- Liquid tables -----------------------------------------------------------------------------------------------

// Crude oil by the edition of 2004: relative density, degF, psig.
Case crude_2004_case(bool to_base) {
  using namespace API_11_1_2004;
  constexpr double water = 999.016;  // kg/m3
  const Columns columns =
      shared({spread(0.72, 1.0, 149), spread(20, 200, 211), spread(0, 900, 59), same(1), same(0)});
  const auto states = prepare([&](std::size_t i) {
    const auto of = [&](std::size_t k) { return *(*columns)[k].at(i); };
    return Observation{of(0) * water, of(1), of(2), Group::crude, false};
  });
  Case made{"API MPMS 11.1:2004", to_base ? "Table 23, crude oil" : "Table 24, crude oil"};
  made.compared = {0, 1, 2, 3};
  if (to_base) made.tolerance = 2e-10;  // the stop rule of the search
  struct Plain {
    double density, ctl, cpl;
  };
  made[Ways::plain] = timed(
      states,
      [to_base](const Observation& o) {
        const double base = to_base ? plain_base(o.density, o.temperature, o.pressure) : o.density;
        const PlainFactors c = plain_factors(base, o.temperature, o.pressure);
        return Plain{to_base ? base : base * c.ctl * c.cpl, c.ctl, c.cpl};
      },
      [](const Plain& a, double* out) {
        out[0] = a.density / water, out[1] = a.ctl, out[2] = a.cpl, out[3] = a.ctl * a.cpl;
      });
  const auto deliver = [to_base](const Correction& a, double* out) {
    out[0] = (to_base ? a.base_density : a.observed_density) / water;
    out[1] = a.ctl, out[2] = a.cpl, out[3] = a.ctpl;
  };
  if (to_base) {
    made[Ways::algorithm] = timed(states, answered_by<Correction, to_60F>(Observation{}), deliver);
    add_hosts(made, u"API_Table23_2004", columns, &Norvane_API_Table23_2004, &Norvane_API_Table23_2004_Batch);
  } else {
    made[Ways::algorithm] = timed(states, answered_by<Correction, from_60F>(Observation{}), deliver);
    add_hosts(made, u"API_Table24_2004", columns, &Norvane_API_Table24_2004, &Norvane_API_Table24_2004_Batch);
  }
  return made;
}

Case crude_1980_case() {
  using namespace API_11_1_1980;
  const Columns columns = shared({spread(700, 1000, 149), spread(10, 90, 211), same(1), same(0), same(0)});
  const auto states = prepare([&](std::size_t i) {
    return Observation{*(*columns)[0].at(i), *(*columns)[1].at(i), liquid::Product::crude, false, Rounding::disabled};
  });
  Case made{"API 2540 (1980)", "Table 53, crude oil"};
  made.compared = {0, 1};
  struct Plain {
    double rho, ctl;
  };
  made[Ways::plain] = timed(
      states,
      [](const Observation& o) {
        const double rho = plain_base_1980(o.density, 613.9723, o.temperature - 15.0);
        return Plain{rho, o.density / rho};
      },
      [](const Plain& a, double* out) { out[0] = a.rho, out[1] = a.ctl; });
  made[Ways::algorithm] = timed(states, answered_by<Correction, to_15C>(Observation{}),
                                [](const Correction& a, double* out) { out[0] = a.base_density, out[1] = a.ctl; });
  add_hosts(made, u"API_Table53_1980", columns, &Norvane_API_Table53_1980, &Norvane_API_Table53_1980_Batch);
  return made;
}

Case gas_liquid_case(bool to_base) {
  using namespace API_11_2_4;
  const Columns columns = shared({spread(0.52, 0.59, 149), spread(10, 110, 211), same(0)});
  const auto states = prepare([&](std::size_t i) {
    return Observation{*(*columns)[0].at(i), *(*columns)[1].at(i), false};
  });
  Case made{"API MPMS 11.2.4", to_base ? "Table 23E" : "Table 24E"};
  made.compared = to_base ? std::vector<std::size_t>{0, 1} : std::vector<std::size_t>{0};
  struct Plain {
    double g, ctl;
  };
  made[Ways::plain] = timed(
      states,
      [to_base](const Observation& o) {
        const double g = to_base ? plain_relative_density(o.density, o.temperature) : o.density;
        return Plain{g, plain_ctl(g, o.temperature)};
      },
      [to_base](const Plain& a, double* out) { out[0] = to_base ? a.g : a.ctl, out[1] = a.ctl; });
  const auto deliver = [to_base](const Correction& a, double* out) {
    out[0] = to_base ? a.base_density : a.ctl, out[1] = a.ctl;
  };
  if (to_base) {
    made[Ways::algorithm] = timed(states, answered_by<Correction, to_60F>(Observation{}), deliver);
    add_hosts(made, u"API_Table23E", columns, &Norvane_API_Table23E, &Norvane_API_Table23E_Batch);
  } else {
    made[Ways::algorithm] = timed(states, answered_by<Correction, from_60F>(Observation{}), deliver);
    add_hosts(made, u"API_Table24E", columns, &Norvane_API_Table24E, &Norvane_API_Table24E_Batch);
  }
  return made;
}

}  // namespace

std::vector<Case> all_cases() {
  std::vector<Case> list;
  for (const bool gas_a_row : {false, true})
    for (const std::size_t components : {11, 21}) list.push_back(aga8_case(components, gas_a_row));
  for (const bool gas_a_row : {false, true})
    for (const std::size_t components : {11, 21}) list.push_back(aga10_case(components, gas_a_row));
  for (const bool gas_a_row : {false, true})
    for (const std::size_t components : {11, 21}) list.push_back(gerg_density_case(components, gas_a_row));
  for (const bool gas_a_row : {false, true})
    for (const std::size_t components : {11, 21}) list.push_back(gerg_case(components, gas_a_row));
  list.push_back(iso6976_case(false));
  list.push_back(iso6976_case(true));
  list.push_back(iso5167_case());
  list.push_back(aga3_case());
  list.push_back(if97_case(1, "region 1, water", plain_region1));
  list.push_back(if97_case(2, "region 2, steam", plain_region2));
  list.push_back(if97_case(3, "region 3, around the critical point", plain_region3));
  list.push_back(if97_case(5, "region 5, hot steam", plain_region5));
  list.push_back(co2_case("gas, density", fluid_states(0.1, 7.0, 225.0, 304.0, [](double p, double T) {
                            return p < 0.95 * NIST_CO2::vapour_pressure(T);
                          })));
  list.push_back(co2_case("liquid, density", fluid_states(0.6, 30.0, 220.0, 300.0, [](double p, double T) {
                            return p > 1.05 * NIST_CO2::vapour_pressure(T);
                          })));
  list.push_back(co2_case("supercritical, density", fluid_states(0.1, 40.0, 315.0, 500.0, any_state)));
  list.push_back(ethylene_iupac_case());
  list.push_back(ethylene_1045_case());
  list.push_back(ethylene_viscosity_case());
  list.push_back(crude_2004_case(true));
  list.push_back(crude_2004_case(false));
  list.push_back(crude_1980_case());
  list.push_back(gas_liquid_case(true));
  list.push_back(gas_liquid_case(false));
  return list;
}

}  // namespace norvane::bench
