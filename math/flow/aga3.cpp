// AGA Report No. 3: see aga3.h. Symbols of Part 4, section 4.3.2.
//
//   X       4000/Re_D                             FI   iteration flow factor, X = FI/Cd
//   L1, L2  tapping distances / D                 M2   2 L2/(1 - beta)
//   Tu, Td  upstream and downstream tap terms     Ts   small-pipe term
//   x1      dP/(N3 P1)
#include "math/flow/aga3.h"

#include <numbers>

#include "core/elementary.h"

namespace norvane::AGA3 {
namespace {

using differential_pressure::at_least;
using differential_pressure::between;
using differential_pressure::Fluid;
using differential_pressure::Limit;
using differential_pressure::Location;
using differential_pressure::States;

// Constants of Part 4, table 4-1 (customary units).
// clang-format off
constexpr double A0 =  0.5961,   A1 = 0.0291,   A2 = -0.2290, A3 = 0.003, A4 = 2.8, A5 = 0.000511, A6 = 0.021;
constexpr double S1 =  0.0049,   S2 = 0.0433,   S3 = 0.0712,  S4 = -0.1145;
constexpr double S5 = -0.2300,   S6 = -0.0116,  S7 = -0.5200, S8 = -0.1400;
// clang-format on
constexpr double N3 = 27.7070;             // inH2O at 60 degF per psi
constexpr double N4 = 1.0;                 // in: distance of a flange tapping
constexpr double N5 = 459.67;              // degF to degR
constexpr double NIc_4000 = 2.494328;      // 4000 NIc with NIc = 6.23582e-4 [in cP h/lbm]
constexpr double N_mass = 253.9025184025;  // Nc pi/4 with the standard's 323.279 and 3.14159
constexpr double N_estimate = 215.4432;    // 0.6 N_mass sqrt(2): the flow of Cd = 0.6 and Ev = Y = 1
// Re_D = 48 q_m/(3600 pi mu D) with mu in lbm/(ft s), of which one is 1488.16 cP.
constexpr double N_Re = 48.0 * 1488.16394356955 / (3600.0 * std::numbers::pi);

// The correlation's two forms meet at Xc, where X^0.35 = A - B/X.
constexpr double Xc = 1.142139337256165;
constexpr double A = 4.343524261523267;
constexpr double B = 3.764387693320165;

constexpr double FI_limit = 1000.0;
constexpr double Cd_tolerance = 0.000005;
constexpr int max_steps = 20;

constexpr differential_pressure::Units customary{N3, N5};

double cube(double x) noexcept { return x * x * x; }

// The discharge coefficient as a function of X, Part 4, 4.3.2.3 to 4.3.2.5.
struct Coefficient {
  double C0, C1, C2, C3, C4;

  Coefficient(double beta, double D) noexcept {
    const double beta2 = beta * beta;
    const double beta4 = beta2 * beta2;
    const double tenth = elementary::pow(beta, 0.1);
    const double tenth2 = tenth * tenth;
    const double beta_0_7 = cube(tenth2) * tenth;
    const double L1 = N4 / D;
    const double M2 = 2.0 * L1 / (1.0 - beta);
    const double Tu =
        (S2 + S3 * elementary::exp(-8.5 * L1) + S4 * elementary::exp(-6.0 * L1)) * beta4 / (1.0 - beta4);
    const double Td = S6 * (M2 + S7 * elementary::pow(M2, 1.3)) * beta * tenth;
    const double Ts = D <= A4 * N4 ? A3 * (1.0 - beta) * (A4 - D / N4) : 0.0;
    const double beta_4_75_0_8 = power_4_75_0_8 * beta_0_7 * tenth;
    C0 = A0 + A1 * beta2 + A2 * beta4 * beta4 + Tu + Td + Ts;
    C1 = A5 * power_250_0_7 * beta_0_7;
    C2 = A6 * beta4 * power_250_0_35;
    C3 = S1 * beta4 * beta_4_75_0_8 * power_250_0_35;
    C4 = (S5 * Tu + S8 * Td) * beta_4_75_0_8;
  }

  // F and its derivative by ln X. The powers 0.35, 0.7 and 0.8 of X come from one root.
  void at(double X, double& F, double& dF) const noexcept {
    const double root = elementary::pow(X, 0.05);
    const double root2 = root * root;
    const double X_0_35 = cube(root2) * root;
    const double X_0_7 = X_0_35 * X_0_35;
    const double X_0_8 = X_0_7 * root2;
    const double g = X < Xc ? X_0_35 : A - B / X;
    const double h = X < Xc ? 0.35 * X_0_35 : B / X;
    F = C0 + C1 * X_0_7 + (C2 + C3 * X_0_8) * g + C4 * X_0_8;
    dF = 0.7 * C1 * X_0_7 + (C2 + C3 * X_0_8) * h + 0.8 * C3 * X_0_8 * g + 0.8 * C4 * X_0_8;
  }

 private:
  static constexpr double power_250_0_35 = 6.90683375841880268;
  static constexpr double power_250_0_7 = 47.7043525664336035;
  static constexpr double power_4_75_0_8 = 3.47820269854733357;
};

double expansion_factor(Edition edition, double x1, double kappa, double beta4) noexcept {
  if (edition == Edition::y1992) return 1.0 - (0.41 + 0.35 * beta4) * x1 / kappa;
  return 1.0 - (0.3625 + 0.1027 * beta4 + 1.132 * beta4 * beta4) *
                   (1.0 - elementary::exp(elementary::log(1.0 - x1) / kappa));
}

// Limits of use.
constexpr Limit bore_limit = at_least(0.45);  // [in]
constexpr Limit pipe_limit = at_least(2.0);   // [in]
constexpr Limit beta_limit = between(0.2, 0.75);
constexpr Limit reynolds_limit = at_least(4000.0);
constexpr double x1_limit(Edition edition) noexcept { return edition == Edition::y1992 ? 0.2 : 0.25; }

bool all_finite(const Result& r) noexcept {
  return differential_pressure::all_finite({r.mass_rate, r.beta, r.orifice_diameter, r.pipe_diameter, r.reynolds,
                                            r.discharge_coefficient, r.expansion_factor, r.velocity_of_approach,
                                            r.raw_mass_rate, r.raw_previous_mass_rate}) &&
         all_finite(r.pressure) && all_finite(r.temperature) && all_finite(r.density);
}

class Calculation {
 public:
  Calculation(const Measurement& measured, const Geometry& geometry, Edition edition, Result& result) noexcept
      : measured_(measured), geometry_(geometry), edition_(edition), result_(result), states_(measured, customary) {}

  Code run(double drain_hole) noexcept {
    if (const Code code = check_upstream_density(); code != Code::ok) return code;
    if (!all_finite(measured_) || !all_finite(geometry_) || !std::isfinite(drain_hole)) return Code::math;
    const bool at_rest = measured_.dp == 0.0;
    if (!at_rest) {
      first_estimate_ = N_estimate * geometry_.device_diameter * geometry_.device_diameter *
                        std::sqrt(states_.density(Location::upstream) * measured_.dp);
      // Where no temperature or density can be: the ratio of the pressures is zero or negative.
      if (!(states_.pressure().downstream > 0.0)) return Code::math;
    }
    store_states();
    if (!differential_pressure::all_finite(result_.temperature)) return Code::math;
    if (!set_geometry(drain_hole)) return Code::diameter;
    if (at_rest) {
      result_.expansion_factor = 1.0;
      return Code::ok;
    }
    const Code code = flow();
    check_limits();
    return code;
  }

 private:
  Code check_upstream_density() const noexcept {
    if (measured_.density_location != Location::upstream) {
      if (states_.pressure().downstream == 0.0) return Code::downstream_pressure;
      if (states_.pressure().downstream < 0.0) return Code::math;
    }
    if (!(states_.density(Location::upstream) > 0.0)) return Code::density;
    return measured_.kappa > 0.0 ? Code::ok : Code::isentropic_exponent;
  }

  void store_states() noexcept {
    result_.pressure = states_.pressure();
    for (const Location at : {Location::upstream, Location::downstream, Location::recovered}) {
      result_.temperature[at] = states_.temperature(at);
      result_.density[at] = states_.density(at);
    }
  }

  bool set_geometry(double drain_hole) noexcept {
    const double T1 = result_.temperature.upstream;
    const double D = pipe_at(geometry_, T1);
    const double d =
        device_at(geometry_, T1) * differential_pressure::drain_hole_factor(drain_hole, geometry_.device_diameter);
    result_.pipe_diameter = D;
    result_.orifice_diameter = d;
    result_.beta = d / D;
    beta4_ = (result_.beta * result_.beta) * (result_.beta * result_.beta);
    result_.velocity_of_approach = 1.0 / std::sqrt(1.0 - beta4_);
    const bool good = D > 0.0 && result_.beta > 0.0 && beta4_ < 1.0;
    result_.diameter_out_of_range = !good;
    return good;
  }

  Code flow() noexcept {
    const double D = result_.pipe_diameter;
    const double d2 = result_.orifice_diameter * result_.orifice_diameter;
    const double Ev = result_.velocity_of_approach;
    const double mu = measured_.viscosity;
    const double x1 = measured_.dp / (N3 * result_.pressure.upstream);
    const double Y = measured_.fluid == Fluid::liquid ? 1.0 : expansion_factor(edition_, x1, measured_.kappa, beta4_);
    result_.expansion_factor = Y;
    if (Y < 0.0) return Code::negative_flow;
    if (!(mu > 0.0)) return Code::math;

    const double FIp = std::sqrt(2.0 * result_.density.upstream * measured_.dp);
    const double FIc = NIc_4000 * D * mu / (Ev * Y * d2);
    const double FI = FIc < FI_limit * FIp ? FIc / FIp : FI_limit;
    const double rate_of_Cd_one = N_mass * Ev * Y * d2 * FIp;
    double Cd = 0.0;
    const Code code = newton(Coefficient(result_.beta, D), FI, rate_of_Cd_one, Cd);
    if (code == Code::math) return code;

    result_.discharge_coefficient = Cd;
    result_.mass_rate = Cd * rate_of_Cd_one;
    result_.reynolds = N_Re * result_.mass_rate / (mu * D);
    result_.raw_mass_rate = result_.mass_rate;
    return code;
  }

  // Part 4, 4.3.2.6: from Cd = C0 by Newton's method.
  Code newton(const Coefficient& coefficient, double FI, double rate_of_Cd_one, double& Cd) noexcept {
    Cd = coefficient.C0;
    double previous_rate = first_estimate_;
    for (result_.steps = 1; result_.steps <= max_steps; ++result_.steps) {
      const double X = FI / Cd;
      if (!(X >= 0.0) || !std::isfinite(X)) return Code::math;
      double F, dF;
      coefficient.at(X, F, dF);
      const double delta = (Cd - F) / (1.0 + dF / Cd);
      Cd -= delta;
      result_.raw_previous_mass_rate = previous_rate;
      if (!std::isfinite(Cd)) return Code::math;
      if (std::fabs(delta) < Cd_tolerance) return Code::ok;
      previous_rate = Cd * rate_of_Cd_one;
    }
    result_.steps = max_steps;
    return Code::no_convergence;
  }

  void check_limits() noexcept {
    result_.diameter_out_of_range = !bore_limit.holds(result_.orifice_diameter) ||
                                    !pipe_limit.holds(result_.pipe_diameter) || !beta_limit.holds(result_.beta);
    result_.pressure_out_of_range = measured_.dp / (N3 * result_.pressure.upstream) > x1_limit(edition_);
    result_.reynolds_out_of_range = !reynolds_limit.holds(result_.reynolds);
  }

  const Measurement& measured_;
  const Geometry& geometry_;
  Edition edition_;
  Result& result_;
  States states_;
  double beta4_ = 0.0;
  double first_estimate_ = 0.0;  // [lbm/h]
};

}  // namespace

Code orifice(const Measurement& measured, const Geometry& geometry, Edition edition, double drain_hole,
             double gravity_correction, Result& result) noexcept {
  result = Result{};
  if (!(geometry.device_diameter > 0.0 && geometry.device_diameter < geometry.pipe_diameter)) {
    result.diameter_out_of_range = true;
    return Code::diameter;
  }
  if (!(measured.dp >= 0.0)) {
    result.pressure_out_of_range = true;
    return Code::differential_pressure;
  }
  if (!(measured.pressure > 0.0)) {
    result.pressure_out_of_range = true;
    return Code::pressure;
  }
  if (measured.pressure_location == Location::recovered) {
    result.pressure_out_of_range = true;
    return Code::pressure_location;
  }
  Code code = Calculation(measured, geometry, edition, result).run(drain_hole);
  if (code != Code::ok && code != Code::no_convergence) return code;
  result.mass_rate *= gravity_correction;
  return all_finite(result) ? code : Code::math;
}

// ---- The orifice as it is given ----------------------------------------------------------------------------------

namespace {

Outcome outcome_of(Code code, const Device& device) noexcept {
  const Measurement& m = device.measured;
  switch (code) {
    case Code::ok: return {};
    case Code::diameter:
      return blame(device.geometry.device_diameter, calculation_error,
                   u"must be greater than 0 and less than the pipe diameter, %", device.geometry.pipe_diameter);
    case Code::density: return blame(m.density, argument_error, u"must be greater than %", 0.0);
    case Code::pressure: return blame(m.pressure, argument_error, u"must be greater than %", 0.0);
    case Code::pressure_location: return blame(m.pressure_location, argument_error, u"must be 1 or 2");
    case Code::differential_pressure: return blame(m.dp, argument_error, u"must not be below %", 0.0);
    case Code::isentropic_exponent: return blame(m.kappa, argument_error, u"must be greater than %", 0.0);
    case Code::downstream_pressure: return blame(m.dp, calculation_error, u"leaves no downstream pressure");
    case Code::negative_flow: return failure(calculation_error, u"the expansion factor is below 0");
    case Code::no_convergence:
      return failure(no_convergence, u"the discharge coefficient does not settle within % steps", max_steps)
          .but_delivered();
    default: return failure(calculation_error, u"an argument or result is no finite number");
  }
}

// What is refused before the calculation. A comparison with a NaN counts as violated.
Outcome misfit(const Arguments& given) noexcept {
  const Geometry& g = given.device.geometry;
  const double D = g.pipe_diameter, d = g.device_diameter;
  if (!(D > 0.0)) return blame(g.pipe_diameter, argument_error, u"must be greater than %", 0.0);
  if (!(d <= D)) return blame(g.device_diameter, argument_error, u"is larger than the pipe diameter, %", D);
  if (!(given.drain_hole <= (D - d) / 2.0))
    return blame(given.drain_hole, argument_error, u"does not fit between the bore and the pipe, which leave %",
                 (D - d) / 2.0);
  return {};
}

}  // namespace

Outcome orifice_flow(const Arguments& given, Result& result) noexcept {
  const Outcome fit = misfit(given);
  if (!fit.good()) {
    result.code = Code::diameter;
    return fit;
  }
  const Code code = orifice(given.device.measured, given.device.geometry, given.edition, given.drain_hole,
                            given.gravity_correction, result);
  result.code = code;
  return outcome_of(code, given.device);
}

}  // namespace norvane::AGA3
