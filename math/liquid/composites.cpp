//   u      the unknown of a table: base density, relative density at 60 degF
//   f, d   compressibility and pressure above equilibrium in units that cancel
#include "math/liquid/composites.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

#include "math/liquid/api_11_2_1.h"
#include "math/liquid/api_11_2_2.h"
#include "math/liquid/compressibility.h"
#include "math/liquid/gpa_tp15.h"
#include "math/liquid/rising.h"

namespace norvane::composite {

using namespace liquid;

namespace {

Outcome check(const Flow& flow) {
  if (!positive(flow.density)) return blame(flow.density, argument_error, not_a_density);
  if (!std::isfinite(flow.temperature)) return blame(flow.temperature, argument_error, not_finite);
  if (!std::isfinite(flow.pressure)) return blame(flow.pressure, argument_error, not_finite);
  if (!std::isfinite(flow.equilibrium_pressure)) return blame(flow.equilibrium_pressure, argument_error, not_finite);
  if (!known(flow.conversion)) return blame(flow.conversion, argument_error, u"must be % or %", 1, 2);
  if (flow.f_rounding) return blame(flow.f_rounding, argument_error, no_chapter_rounding);
  return {};
}

// A composite has
//   edges, guess(target)       the bands of its unknown, and where to look for it
//   band_of(u)
//   observed(band, u)          base density x CTL, in the unit of the argument
//   d(band, u), f(u, d)        pressure above equilibrium and compressibility, in units that cancel
//   f_unit, f_out_of_range(u)  one unit of the answer's f in that unit, and the limits of the chapter
//   may_fall, falls_near(u)    whether base x CTL x CPL rises with u around this one and above
//   unknown_of(density, u)     the unknown of a base density
//   correct(u)                 the table's own answer, which table() holds from then on
template <class Composite, class Table>
Outcome convert(const Composite& composite, const Flow& flow, double hydrometer_factor, Converted& out, Table& table,
                double& u) {
  const double factor = flow.hydrometer ? hydrometer_factor : 1.0;
  const bool to_base = flow.conversion == Conversion::observed_to_standard;
  u = 0.0;
  if (to_base) {
    const double target = flow.density * factor;
    u = composite.guess(target);
    const auto left = [&](std::size_t band, Dual v) {
      const Dual d = composite.d(band, v);
      return composite.observed(band, v) * cpl(composite.f(v, d), d);
    };
    Solution solution = solve_rising(left, composite.edges(), target, u);
    if constexpr (Composite::may_fall) {
      if (!solution.found() || composite.falls_near(u))
        solution = solve_from_above(left, composite.edges(), target, u);
    }
    if (!solution.found()) return outcome_of(solution, flow.density, factor);
  } else if (const Outcome outcome = composite.unknown_of(flow.density, u); !outcome.good()) {
    return outcome;
  }

  if (const Outcome outcome = composite.correct(u, table); !outcome.good()) return outcome;
  const double d = composite.d(composite.band_of(u), u);
  out.f = composite.f(u, d);
  if (const Outcome outcome = finish(out.f, d, out.cpl); !outcome.good()) return outcome;
  out.f /= composite.f_unit;
  out.f_out_of_range = composite.f_out_of_range(u);
  out.ctpl = table.ctl * out.cpl;
  out.density = to_base ? table.base_density : flow.density * out.ctpl / factor;
  if (!positive(out.density) || !positive(out.ctpl))
    return failure(calculation_error, u"the factors give no positive density");
  return {};
}

// ---- 1980 and 1952: compressibility of 11.2.1, pressure above equilibrium as given -------------------------------

// What both editions have in common. F in 1/psi and d in psi, metric in 1/kPa and kPa.
struct Generalised {
  const Flow& flow;
  bool metric;
  double above_equilibrium;

  Generalised(const Flow& given, bool in_metric)
      : flow(given), metric(in_metric), above_equilibrium(given.pressure - given.equilibrium_pressure) {
    if (metric) above_equilibrium = kPa_of_bar(above_equilibrium);
  }
  static constexpr double f_unit = 1.0;
  static constexpr bool may_fall = false;
  template <class Number>
  Number d(std::size_t, Number) const {
    return Number{above_equilibrium};
  }
  template <class Number>
  Number f_of_density(Number rho) const {
    return API_11_2_1::compressibility(metric ? API_11_2_1::metric : API_11_2_1::customary, rho, flow.temperature);
  }
  bool out_of_range_of_density(double rho) const {
    return metric ? API_11_2_1::out_of_range_metric(rho, flow.temperature)
                  : API_11_2_1::out_of_range(rho, flow.temperature);
  }
};

struct Composite1980 : Generalised {
  API_11_1_1980::Expansion expansion;

  Composite1980(const Arguments1980& in, API_11_1_1980::Base base)
      : Generalised(in.flow, base == API_11_1_1980::Base::degC15), expansion(base, in.product, in.flow.temperature) {}

  std::span<const double> edges() const { return expansion.edges(); }
  double guess(double target) const { return target; }
  std::size_t band_of(double rho) const { return expansion.band_of(rho); }
  template <class Number>
  Number observed(std::size_t band, Number rho) const {
    return rho * expansion.ctl(band, rho);
  }
  template <class Number>
  Number f(Number rho, Number) const {
    return f_of_density(rho);
  }
  bool f_out_of_range(double rho) const { return out_of_range_of_density(rho); }
  Outcome unknown_of(const double& density, double& rho) const {
    rho = density;
    return {};
  }
  Outcome correct(double rho, API_11_1_1980::Correction& table) const {
    return API_11_1_1980::correct(expansion, rho, table);
  }
};

// The unknown is the relative density S at 60 degF.
struct Composite1952 : Generalised {
  API_11_1_1952::Expansion expansion;

  Composite1952(const Flow& given, bool in_metric)
      : Generalised(given, in_metric), expansion(in_metric ? degF_of_degC(given.temperature) : given.temperature) {}

  std::span<const double> edges() const { return metric ? API_11_1_1952::edges_15C() : API_11_1_1952::edges_60F(); }
  double guess(double target) const { return metric ? water_1952.relative_of_density(target) : target; }
  std::size_t band_of(double s) const { return API_11_1_1952::band_of(s); }
  template <class Number>
  Number observed(std::size_t band, Number s) const {
    const Number s_t = expansion.at(band, s);
    return metric ? s_t * water_1952.density : s_t;
  }
  // Chapter 11.2.1 goes by the density in its own edition's water, 11.2.1M by that of Table 53.
  template <class Number>
  Number density(Number s) const {
    const std::size_t band = band_of(value_of(s));
    return metric ? API_11_1_1952::at_15C.at(band, s) * water_1952.density : s * water_1980.density;
  }
  template <class Number>
  Number f(Number s, Number) const {
    return f_of_density(density(s));
  }
  bool f_out_of_range(double s) const { return out_of_range_of_density(density(s)); }
  Outcome unknown_of(const double& given, double& s) const {
    if (!metric) {
      s = given;
      return API_11_1_1952::check_60F(given);
    }
    const Solution solution = API_11_1_1952::relative_density_60(API_11_1_1952::edges_15C(), API_11_1_1952::at_15C,
                                                                 water_1952.relative_of_density(given), s);
    return outcome_of(solution, given, 1.0 / water_1952.density);
  }
  Outcome correct(double s, API_11_1_1952::Correction& table) const {
    return metric ? API_11_1_1952::correct_15C(s, flow.temperature, table)
                  : API_11_1_1952::correct_60F(s, flow.temperature, table);
  }
};

// ---- NGL and LPG: compressibility of 11.2.2, equilibrium pressure of TP-15 ---------------------------------------

constexpr double atmosphere_psi = 14.696, atmosphere_bar = 1.01325;
constexpr double bar_per_psi = 0.06894757;

// The unknown is the relative density G at 60 degF; its bands are those of TP-15. d in psi, F in 1/psi.
struct CompositeNgl {
  const ArgumentsNgl& in;
  API_11_2_4::Base base;
  bool metric;
  double degF, kelvin;
  API_11_2_2::Correlation correlation;
  std::array<double, std::size(GPA_TP15::edges) + 1> edge_list;
  std::size_t edge_count, first_band;
  double f_unit;

  CompositeNgl(const ArgumentsNgl& given, API_11_2_4::Base to)
      : in(given),
        base(to),
        metric(to != API_11_2_4::Base::degF60),
        degF(metric ? degF_of_degC(given.flow.temperature) : given.flow.temperature),
        kelvin(API_11_2_4::kelvin_of_degF(degF)),
        correlation(degF),
        f_unit(metric ? kPa_per_psi : 1.0) {
    // Liquids at this temperature; at the base temperatures all are.
    edge_list[0] = API_11_2_4::lightest_liquid(kelvin);
    edge_count = 1;
    first_band = GPA_TP15::band_of(edge_list[0]);
    if (calculated()) {
      for (std::size_t band = first_band + 1; band < std::size(GPA_TP15::bands); ++band)
        edge_list[edge_count++] = GPA_TP15::edges[band];
    }
    edge_list[edge_count++] = API_11_2_4::heaviest;
  }

  // Near the critical temperature 11.2.2 lets the left side fall.
  static constexpr bool may_fall = true;
  bool falls_near(double g) const { return API_11_2_2::near_critical(g, degF); }

  bool calculated() const { return in.equilibrium == Equilibrium::calculated; }
  std::span<const double> edges() const { return {edge_list.data(), edge_count}; }
  double guess(double target) const {
    const double relative = metric ? water_2004.relative_of_density(target) : target;
    const double g = std::clamp(API_11_2_4::guess(relative, degF), edge_list[0], API_11_2_4::heaviest);
    const double above = d(band_of(g), g), factor = cpl(f(g, above), above);
    return factor > 1.0 && factor < 1.2 ? API_11_2_4::guess(relative / factor, degF) : g;
  }
  std::size_t band_of(double g) const { return calculated() ? GPA_TP15::band_of(g) - first_band : 0; }
  template <class Number>
  Number observed(std::size_t, Number g) const {
    const Number g_t = g * API_11_2_4::ctl_from_60F(g, kelvin);
    return metric ? g_t * water_2004.density : g_t;
  }

  // Gauge, in the unit of the argument; what is given as well as what is calculated.
  template <class Number>
  Number equilibrium_pressure(std::size_t band, Number g) const {
    if (!calculated()) return Number{in.flow.equilibrium_pressure};
    const Number psia = GPA_TP15::equilibrium_pressure(first_band + band, g, degF);
    const Number gauge = metric ? psia * bar_per_psi - atmosphere_bar : psia - atmosphere_psi;
    return value_of(gauge) > 0.0 ? gauge : Number{0.0};
  }
  template <class Number>
  Number d(std::size_t band, Number g) const {
    const Number above = in.flow.pressure - equilibrium_pressure(band, g);
    return metric ? above * (100.0 / kPa_per_psi) : above;
  }
  template <class Number>
  Number f(Number g, Number above) const {
    const Number inverse = correlation.inverse_compressibility(g, value_of(above) > 0.0 ? above : Number{0.0});
    return value_of(inverse) > 0.0 ? 1.0 / inverse : Number{std::numeric_limits<double>::quiet_NaN()};
  }
  bool f_out_of_range(double g) const { return API_11_2_2::out_of_range(g, degF); }
  Outcome unknown_of(const double& given, double& g) const {
    g = given;
    if (!metric) return API_11_2_4::check_60F(given);
    const Solution solution =
        API_11_2_4::relative_density_60(water_2004.relative_of_density(given), API_11_2_4::base_degF(base), g);
    return outcome_of(solution, given, 1.0 / water_2004.density);
  }
  Outcome correct(double g, API_11_2_4::Correction& table) const {
    return API_11_2_4::correct(g, base, degF, in.flow.temperature, table);
  }
};

Outcome convert_1980(const Arguments1980& in, API_11_1_1980::Base base, double hydrometer_factor, Result1980& out) {
  if (const Outcome outcome = check(in.flow); !outcome.good()) return outcome;
  if (const Outcome outcome = API_11_1_1980::check_options(in.product, in.rounding); !outcome.good()) return outcome;
  double u;
  return convert(Composite1980(in, base), in.flow, hydrometer_factor, out.converted, out.table, u);
}

Outcome convert_1952(const Flow& flow, bool metric, Result1952& out) {
  if (const Outcome outcome = check(flow); !outcome.good()) return outcome;
  double u;
  return convert(Composite1952(flow, metric), flow, 1.0, out.converted, out.table, u);
}

Outcome convert_ngl(const ArgumentsNgl& in, API_11_2_4::Base base, ResultNgl& out) {
  const Flow& flow = in.flow;
  if (const Outcome outcome = check(flow); !outcome.good()) return outcome;
  const double zero = base == API_11_2_4::Base::degF60 ? API_11_2_4::zero_degF : API_11_2_4::zero_degC;
  // TP-15 has no value below its own, a little higher zero.
  if (!(flow.temperature > zero)) return blame(flow.temperature, argument_error, u"must be above %", zero);
  if (in.rounding) return blame(in.rounding, argument_error, no_chapter_rounding);
  if (in.tp15_rounding) return blame(in.tp15_rounding, argument_error, no_chapter_rounding);
  if (in.p100_known) return blame(in.p100_known, argument_error, GPA_TP15::no_p100);
  if (in.equilibrium != Equilibrium::given && in.equilibrium != Equilibrium::calculated)
    return blame(in.equilibrium, argument_error, u"must be % or %", 1, 2);

  const CompositeNgl composite(in, base);
  if (!(composite.edges().front() < API_11_2_4::heaviest)) {
    return blame(flow.temperature, calculation_error,
                 u"is above the critical temperature of every liquid of the tables");
  }
  double g;
  const Outcome outcome =
      convert(composite, flow, hydrometer_factor_degF(flow.temperature), out.converted, out.table, g);
  out.equilibrium_pressure = composite.equilibrium_pressure(composite.band_of(g), g);
  out.equilibrium_out_of_range = composite.calculated() && GPA_TP15::out_of_range(g, composite.degF);
  return outcome;
}

}  // namespace

Outcome dens60F_1980(const Arguments1980& in, Result1980& out) noexcept {
  return convert_1980(in, API_11_1_1980::Base::degF60, hydrometer_factor_degF(in.flow.temperature), out);
}
Outcome dens15C_1980(const Arguments1980& in, Result1980& out) noexcept {
  return convert_1980(in, API_11_1_1980::Base::degC15, hydrometer_factor_degC(in.flow.temperature), out);
}
Outcome rd60F_1952(const Arguments1952& in, Result1952& out) noexcept { return convert_1952(in.flow, false, out); }
Outcome dens15C_1952(const Arguments1952& in, Result1952& out) noexcept { return convert_1952(in.flow, true, out); }
Outcome rd60F_ngl(const ArgumentsNgl& in, ResultNgl& out) noexcept {
  return convert_ngl(in, API_11_2_4::Base::degF60, out);
}
Outcome dens15C_ngl(const ArgumentsNgl& in, ResultNgl& out) noexcept {
  return convert_ngl(in, API_11_2_4::Base::degC15, out);
}
Outcome dens20C_ngl(const ArgumentsNgl& in, ResultNgl& out) noexcept {
  return convert_ngl(in, API_11_2_4::Base::degC20, out);
}

}  // namespace norvane::composite
