// GOST 8.586-2005.
//
//   D, d   pipe and orifice diameter at the working temperature [mm]     beta  d/D
//   Re     Reynolds number of the pipe                                   lg    logarithm to the base 10
//   R_sh   equivalent roughness [mm], pi Ra                              r_k   radius of the edge [mm]
//   Ra     arithmetic mean deviation of the profile [mm]                 lambda  friction factor
#include "math/flow/gost8_586.h"

#include <cmath>
#include <numbers>

#include "core/elementary.h"
#include "math/flow/gost8_586_table.h"

namespace norvane::GOST_8_586_2005 {
namespace {

using differential_pressure::at_least;
using differential_pressure::between;
using differential_pressure::Fluid;
using differential_pressure::LoopEnd;
using differential_pressure::metric;
using differential_pressure::States;
using orifice_plate::Flowing;

constexpr double pi = std::numbers::pi;

double lg(double x) noexcept { return elementary::log(x) / std::numbers::ln10; }
double cubic(const double (&B)[4], double x) noexcept { return B[0] + x * (B[1] + x * (B[2] + x * B[3])); }

constexpr double last_reynolds = 1e8;  // of the equations for the limits

// Friction factor, an explicit form of Colebrook's equation within 0.25 % of it. R_sh/D = 0 is a smooth pipe. NaN
// where a logarithm has no value, at Reynolds numbers of some ten.
double friction_factor(double relative_roughness, double Re) noexcept {
  const double k_D = 0.26954 * relative_roughness;
  const double k_R = 5.035 / Re;
  const double inner = k_D - k_R * lg(k_D + 3.3333 * k_R);
  const double root = 1.74 - 2.0 * lg(2.0 * relative_roughness - 37.36 / Re * lg(inner));
  return 1.0 / (root * root);
}

}  // namespace

double greatest_roughness(double beta, double Re) noexcept {
  double limit;
  if (Re <= 1e4) {
    limit = 0.718866 * elementary::pow(beta, -3.887) + 0.364;
  } else {
    const RoughnessBand* band = roughness_bands;
    while (band != std::end(roughness_bands) - 1 && Re > band->Re) ++band;
    const double x = lg(std::min(Re, last_reynolds));
    limit = cubic(band->B[0], x) * elementary::pow(std::min(beta, 0.65), cubic(band->B[1], x)) + cubic(band->B[2], x);
  }
  return std::min(limit, 15.0);
}

double least_roughness(double beta, double Re) noexcept {
  if (Re < 3e6) return 0.0;
  const double x = lg(std::min(Re, last_reynolds));
  const double limit = beta < 0.65
                           ? 7.1592 - 12.387 * beta - (2.0118 - 3.469 * beta) * x + (0.1382 - 0.23762 * beta) * x * x
                           : -0.892353 + 0.24308 * x - 0.0162562 * x * x;
  return std::max(limit, 0.0);
}

double COrifice::edge_factor() const noexcept {
  const double ratio = edge_radius_ / flowing_.d;
  return ratio <= 0.0004 ? 1.0 : 0.9826 + elementary::pow(ratio + 0.0007773, 0.6);
}

double COrifice::roughness_factor(double Re) const noexcept {
  const double relative = roughness_ / flowing_.D;
  const double Ra = 1e4 * relative / pi;
  const double most = greatest_roughness(flowing_.beta, Re);
  // Where one limit holds the other need not be known; the upper one stands first should they cross.
  const double limit = Ra > most ? most : least_roughness(flowing_.beta, Re);
  if (Ra <= most && Ra >= limit) return 1.0;
  const double beta_3_5 = flowing_.beta2 * flowing_.beta * std::sqrt(flowing_.beta);
  return 1.0 + 5.22 * beta_3_5 * (friction_factor(relative, Re) - friction_factor(1e-4 * pi * limit, Re));
}

// ---- Mass flow rate ----------------------------------------------------------------------------------------------

namespace {

Outcome check_arguments(const Arguments& in) noexcept {
  const Measurement& m = in.measured;
  const Geometry& g = in.geometry;
  if (in.tappings < Tappings::corner || in.tappings > Tappings::flange)
    return blame(in.tappings, argument_error, u"is not a configuration (% to %)", 1, 3);
  if (m.fluid != Fluid::gas && m.fluid != Fluid::liquid)
    return blame(m.fluid, argument_error, u"is not a fluid (% or %)", 1, 2);
  const auto positive = [](double x) { return x > 0.0 && std::isfinite(x); };
  const auto not_negative = [](double x) { return x >= 0.0 && std::isfinite(x); };
  if (!positive(m.pressure)) return blame(m.pressure, argument_error, u"must be above %", 0.0);
  if (!not_negative(m.dp)) return blame(m.dp, argument_error, u"must not be below %", 0.0);
  if (!(m.dp / metric.dp_per_pressure < m.pressure))
    return blame(m.dp, argument_error, u"must be below % mbar, the absolute pressure",
                 m.pressure * metric.dp_per_pressure);
  if (!(m.temperature > -metric.absolute_zero) || !std::isfinite(m.temperature))
    return blame(m.temperature, argument_error, u"must be above %", -metric.absolute_zero);
  if (!positive(m.density)) return blame(m.density, argument_error, u"must be above %", 0.0);
  if (!positive(m.viscosity)) return blame(m.viscosity, argument_error, u"must be above %", 0.0);
  if (m.fluid == Fluid::gas && !(m.kappa > 1.0 && std::isfinite(m.kappa)))
    return blame(m.kappa, argument_error, u"must be above %", 1.0);
  if (!positive(g.pipe_diameter)) return blame(g.pipe_diameter, argument_error, u"must be above %", 0.0);
  if (!positive(g.device_diameter)) return blame(g.device_diameter, argument_error, u"must be above %", 0.0);
  if (!(g.device_diameter < g.pipe_diameter))
    return blame(g.device_diameter, argument_error, u"must be below %, the pipe diameter", g.pipe_diameter);
  if (!std::isfinite(g.pipe_expansion)) return blame(g.pipe_expansion, argument_error, u"must be a number");
  if (!std::isfinite(g.device_expansion)) return blame(g.device_expansion, argument_error, u"must be a number");
  if (!not_negative(in.roughness)) return blame(in.roughness, argument_error, u"must not be below %", 0.0);
  if (!not_negative(in.edge_radius)) return blame(in.edge_radius, argument_error, u"must not be below %", 0.0);
  return {};
}

void set_coefficient(Tappings tappings, const Flowing& flowing,
                     orifice_plate::ReaderHarrisGallagher& coefficient) noexcept {
  switch (tappings) {
    case Tappings::corner: return coefficient.set(flowing, 0.0, 0.0);
    case Tappings::d_and_half_d: return coefficient.set(flowing, 1.0, 0.47);
    case Tappings::flange: break;
  }
  const double inch = orifice_plate::mm_per_inch / flowing.D;
  coefficient.set(flowing, inch, inch);
}

void check_limits(const Arguments& in, Result& out) noexcept {
  const Measurement& m = in.measured;
  const Geometry& g = in.geometry;
  out.pressure_out_of_range =
      m.fluid == Fluid::gas && !at_least(0.75).holds(1.0 - m.dp / metric.dp_per_pressure / m.pressure);
  out.diameter_out_of_range = !at_least(12.5).holds(g.device_diameter) ||
                              !between(50.0, 1000.0).holds(g.pipe_diameter) || !between(0.1, 0.75).holds(out.beta);
  out.reynolds_out_of_range =
      !at_least(orifice_plate::least_reynolds(in.tappings == Tappings::flange, out.beta, g.pipe_diameter))
           .holds(out.reynolds);
}

// The loop goes to the last digit. A roughness limit that steps where its equations meet can keep it from settling;
// then the standard's own stop rule decides (GOST 8.586.5: a change below 0.001 %).
constexpr double tolerance = 1e-12;  // [kg/s], as for ISO 5167
constexpr double standard_tolerance = 1e-5;
constexpr double first_reynolds = 1e6;

}  // namespace

Outcome calculate(const Arguments& in, Result& out) noexcept {
  if (const Outcome bad = check_arguments(in); !bad.good()) return bad;
  const Measurement& m = in.measured;
  out = Result{};
  Flowing flowing;
  if (!flowing.set(pipe_at(in.geometry, m.temperature), device_at(in.geometry, m.temperature)))
    return failure(calculation_error, u"the orifice of % mm does not fit the pipe of % mm at the temperature",
                   flowing.d, flowing.D);
  const COrifice plate(flowing, in.roughness, in.edge_radius);
  out.orifice_diameter = flowing.d;
  out.pipe_diameter = flowing.D;
  out.beta = flowing.beta;
  out.velocity_of_approach = flowing.E;
  out.edge_factor = plate.edge_factor();
  if (!std::isfinite(out.edge_factor))
    return failure(calculation_error, u"the edge of % mm is too great for the orifice of % mm", in.edge_radius,
                   flowing.d);
  if (m.dp == 0.0) return {};

  if (m.fluid == Fluid::gas)
    out.expansibility = orifice_plate::expansibility(States(m, metric).log_pressure_ratio(), m.kappa, flowing.beta4);
  orifice_plate::ReaderHarrisGallagher coefficient;
  set_coefficient(in.tappings, flowing, coefficient);
  const double d = flowing.d / 1000.0;
  const double rate_of_C_one =
      pi / 4.0 * d * d * flowing.E * out.edge_factor * out.expansibility * std::sqrt(200.0 * m.dp * m.density);
  const double reynolds_of_one = 4.0 / (pi * m.viscosity * (flowing.D / 1000.0));  // of 1 kg/s
  double change = 0.0;
  int rounds = 0;
  const LoopEnd end = differential_pressure::iterate(tolerance, out.mass_rate, rounds, [&](double previous) {
    const double Re = rounds == 1 ? first_reynolds : std::fabs(previous * reynolds_of_one);
    out.discharge_coefficient = coefficient.C(Re, false);
    out.roughness_factor = plate.roughness_factor(Re);
    const double rate = rate_of_C_one * out.discharge_coefficient * out.roughness_factor;
    change = std::fabs(rate - previous) / rate;
    return rate;
  });
  out.reynolds = out.mass_rate * reynolds_of_one;
  if (end == LoopEnd::not_finite || !(out.mass_rate > 0.0) || !std::isfinite(out.reynolds))
    return failure(calculation_error,
                   u"the mass rate is no positive number: discharge coefficient %, roughness factor %",
                   out.discharge_coefficient, out.roughness_factor);
  if (end == LoopEnd::no_convergence && !(change <= standard_tolerance))
    return failure(no_convergence, u"the mass rate does not settle within % rounds",
                   differential_pressure::max_rounds);
  check_limits(in, out);
  return {};
}

// ---- Edge, pipe, steel -------------------------------------------------------------------------------------------

Outcome edge_radius(const EdgeArguments& in, EdgeResult& out) noexcept {
  const auto not_negative = [](double x) { return x >= 0.0 && std::isfinite(x); };
  if (in.mode != RadiusMode::interval_mean && in.mode != RadiusMode::after_operation)
    return blame(in.mode, argument_error, u"is not a calculation mode (% or %)", 1, 2);
  if (!not_negative(in.initial_radius)) return blame(in.initial_radius, argument_error, u"must not be below %", 0.0);
  if (!not_negative(in.time)) return blame(in.time, argument_error, u"must not be below %", 0.0);
  if (!not_negative(in.limit_radius)) return blame(in.limit_radius, argument_error, u"must not be below %", 0.0);
  // Share of the way to the limit that is left, with a time constant of three years: exp(-tau/3), and its mean over
  // the interval, (3/tau)(1 - exp(-tau/3)).
  const double y = -in.time / 3.0;
  const double left = in.mode == RadiusMode::interval_mean ? orifice_plate::relative_growth(y) : elementary::exp(y);
  out.radius = in.limit_radius - (in.limit_radius - in.initial_radius) * left;
  return {};
}

Outcome pipe_roughness(const RoughnessArguments& in, RoughnessResult& out) noexcept {
  const int row = static_cast<int>(in.pipe);
  constexpr int last = std::size(pipe_walls);
  if (row < 1 || row > last) return blame(in.pipe, argument_error, u"is not a row of the table (% to %)", 1, last);
  const PipeWall& wall = pipe_walls[row - 1];
  if (wall.R_sh == 0.0)
    return blame(in.pipe, calculation_error, u"is a row whose figures are not part of this build");
  out = {.roughness = wall.R_sh, .average_roughness = wall.Ra};
  return {};
}

Outcome steel_expansion(const SteelArguments& in, SteelResult& out) noexcept {
  const int row = static_cast<int>(in.grade);
  constexpr int last = std::size(steels);
  if (row < 1 || row > last) return blame(in.grade, argument_error, u"is not a row of the table (% to %)", 1, last);
  if (!(in.temperature > -273.15) || !std::isfinite(in.temperature))
    return blame(in.temperature, argument_error, u"must be above %", -273.15);
  const Steel& steel = steels[row - 1];
  if (steel.printing == Printing::missing)
    return blame(in.grade, argument_error, u"is a grade whose polynomial is not part of this build");
  const double t = in.temperature / 1000.0;
  out.expansion = 1e-6 * (steel.a0 + t * (steel.a1 + t * steel.a2));
  if (!(out.expansion > 0.0) || !std::isfinite(out.expansion))
    return blame(in.temperature, calculation_error, u"is beyond the polynomial, which comes to % 1/degC",
                 out.expansion);
  if (steel.printing == Printing::conflicting)
    return remark(u"two prints of the table give a1 of this grade as % and %; the first is used", steel.a1, 13.64);
  if (steel.printing == Printing::attributed)
    return remark(u"the polynomial is attributed to this grade by its place in the table");
  return {};
}

}  // namespace norvane::GOST_8_586_2005
