// ISO 5167: see iso5167.h for the parts and editions.
//
//   mu   dynamic viscosity [Pa s]
//   tau  p2/p1                                x    dp/p1 = 1 - tau
//   A    (19000 beta/Re_D)^0.8                E    1/sqrt(1 - beta^4)
//   L1   distance of the upstream tapping from the plate / D
//   L2'  distance of the downstream tapping from the plate's downstream face / D
//   M2'  2 L2'/(1 - beta)
//
// Lengths in the coefficient equations are in mm, as the standard has them.
#include "math/flow/iso5167.h"

#include <numbers>

#include "core/elementary.h"
#include "math/flow/orifice_plate.h"

namespace norvane::ISO5167 {
namespace {

using differential_pressure::any;
using differential_pressure::at_least;
using differential_pressure::between;
using differential_pressure::Fluid;
using differential_pressure::inside;
using differential_pressure::iterate;
using differential_pressure::Limit;
using differential_pressure::Location;
using differential_pressure::LoopEnd;
using differential_pressure::metric;
using differential_pressure::States;
using orifice_plate::Flowing;
using orifice_plate::mm_per_inch;
using orifice_plate::relative_growth;

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

// Pressures as the expansibility needs them.
struct Expansion {
  double x;        // dp/p1
  double log_tau;  // ln(p2/p1)
  double kappa;
};

double cube(double x) noexcept { return x * x * x; }
double fourth(double x) noexcept { return (x * x) * (x * x); }

// ---- Expansibility -----------------------------------------------------------------------------------------------

// -ln(1 - x)/x, as 2 artanh(z)/x with z = x/(2 - x) where the logarithm would lose digits.
double relative_log(double x, double log_tau) noexcept {
  if (x > 0.1) return -log_tau / x;
  const double z = x / (2.0 - x);
  const double z2 = z * z;
  double sum = 0.0;
  for (int n = 13; n >= 1; n -= 2) sum = 1.0 / n + z2 * sum;
  return 2.0 * sum / (2.0 - x);
}

// Nozzles and Venturi tubes, ISO 5167-3:2003, 5.1.6.3, and ISO 5167-4:2003, 5.6.
// With a = (kappa - 1)/kappa the quotient (1 - tau^a)/(a (1 - tau)) is the product of two functions that are
// near 1; as it stands it would be 0/0 for small differential pressures.
double nozzle_expansibility(const Expansion& e, double beta4) noexcept {
  const double tau_2k = elementary::exp(2.0 * e.log_tau / e.kappa);  // tau^(2/kappa)
  const double a = (e.kappa - 1.0) / e.kappa;
  const double heat = relative_growth(a * e.log_tau) * relative_log(e.x, e.log_tau);
  return std::sqrt(tau_2k * heat * ((1.0 - beta4) / (1.0 - beta4 * tau_2k)));
}

// ISO 5167-1:1991, 8.3.2.2.
double orifice_expansibility_1991(const Expansion& e, double beta4) noexcept {
  return 1.0 - (0.41 + 0.35 * beta4) * e.x / e.kappa;
}

// ---- Pressure loss, as a fraction of dp --------------------------------------------------------------------------

// ISO 5167-2:2003, 5.4.
double loss_2003(const Flowing& f, double C) noexcept {
  const double root = std::sqrt(1.0 - f.beta4 * (1.0 - C * C));
  return (root - C * f.beta2) / (root + C * f.beta2);
}

// ISO 5167-1:1991, 8.4, written with E.
double loss_1991(const Flowing& f, double C) noexcept {
  const double CEb2 = C * f.E * f.beta2;
  return (1.0 - CEb2) / (1.0 + CEb2);
}

double given_loss(const PressureLoss& loss, double dp) noexcept {
  return loss.mode == PressureLoss::Mode::value ? loss.value : dp * loss.value / 100.0;
}

// ---- Limits of use -----------------------------------------------------------------------------------------------

struct Limits {
  Limit device;    // d at reference temperature [mm]
  Limit pipe;      // D at reference temperature [mm]
  Limit beta;      // at flowing temperature
  Limit reynolds;  // Re_D
};

// Each limit violated sets its flag and the code, the later one overriding the earlier.
Code check_limits(const Limits& limits, const Geometry& reference, Code code, Result& result) noexcept {
  const auto check = [&code](const Limit& limit, double value, Code violated, bool& flag) {
    if (limit.holds(value)) return;
    code = violated;
    flag = true;
  };
  check(limits.device, reference.device_diameter, Code::device_diameter, result.diameter_out_of_range);
  check(limits.pipe, reference.pipe_diameter, Code::pipe_diameter, result.diameter_out_of_range);
  check(limits.beta, result.beta, Code::beta, result.diameter_out_of_range);
  check(limits.reynolds, result.reynolds, Code::reynolds, result.reynolds_out_of_range);
  return code;
}

// ---- The elements ------------------------------------------------------------------------------------------------
//
// Each element has
//   tolerance              of the loop on q_m [kg/s], and what 25 rounds that do not meet it come to
//   first_reynolds(...)    Re_D for C of the first round
//   bore_factor()          on d, for a drain hole
//   check()                of its own arguments
//   set(flowing)           takes over what depends on the geometry alone
//   expansibility(e)       of a gas
//   C(Re_D)                discharge coefficient
//   loss(C, dp)            pressure loss [mbar]
//   limits(beta, D)        limits of use; D at reference temperature

struct Orifice {
  static constexpr double tolerance = 1e-12;
  static constexpr bool deliver_unconverged = false;
  static constexpr Code unconverged = Code::no_convergence;

  Tappings tappings;
  Edition edition;
  double drain_hole;    // [mm]
  double drain_factor;  // on d

  Flowing f{};
  // Reader-Harris/Gallagher with the edition of 1998 and later.
  orifice_plate::ReaderHarrisGallagher gallagher{};
  // Else the terms of C that the Reynolds number does not enter, and the factor on (10^6/Re)^0.75 (1991).
  double constant = 0.0;
  double reynolds_factor = 0.0;

  static double first_reynolds(double, double, double) noexcept { return 100000.0; }
  double bore_factor() const noexcept { return drain_factor; }
  Code check() const noexcept {
    if (of_tr15377() && edition != Edition::y2003) return Code::configuration;
    return drain_hole >= 0.0 && std::isfinite(drain_hole) ? Code::ok : Code::argument;
  }
  bool of_tr15377() const noexcept { return tappings >= Tappings::quarter_circle; }

  void set(const Flowing& flowing) noexcept {
    f = flowing;
    if (tappings == Tappings::quarter_circle)
      constant = 0.73823 + 0.3309 * f.beta - 1.1615 * f.beta2 + 1.5084 * f.beta2 * f.beta;  // ISO/TR 15377
    else if (tappings == Tappings::conical_entrance)
      constant = 0.734;  // ISO/TR 15377
    else if (edition == Edition::y1991)
      set_stolz();
    else {
      double L1, L2;
      tapping_distances(L1, L2);
      gallagher.set(f, L1, L2);
    }
  }

  // L1 and L2'.
  void tapping_distances(double& L1, double& L2) const noexcept {
    L1 = tappings == Tappings::corner ? 0.0 : tappings == Tappings::d_and_half_d ? 1.0 : mm_per_inch / f.D;
    L2 = tappings == Tappings::d_and_half_d ? 0.47 : L1;
  }

  // Stolz, ISO 5167-1:1991, 8.3.2.1.
  void set_stolz() noexcept {
    double L1, L2;
    tapping_distances(L1, L2);
    const double beta4_ratio = f.beta4 / (1.0 - f.beta4);
    const double upstream = L1 < 0.4333 ? 0.0900 * L1 * beta4_ratio : 0.0390 * beta4_ratio;
    constant = 0.5959 + 0.0312 * elementary::pow(f.beta, 2.1) - 0.184 * f.beta4 * f.beta4 + upstream -
               0.0337 * L2 * f.beta2 * f.beta;
    reynolds_factor = 0.0029 * f.beta2 * std::sqrt(f.beta);
  }

  double C(double Re) const noexcept {
    if (of_tr15377()) return constant;
    if (edition != Edition::y1991) return gallagher.C(Re, true);
    return constant + reynolds_factor * cube(std::sqrt(std::sqrt(1e6 / Re)));
  }

  double expansibility(const Expansion& e) const noexcept {
    if (of_tr15377())
      return 0.5 * (nozzle_expansibility(e, f.beta4) + orifice_plate::expansibility(e.log_tau, e.kappa, f.beta4));
    return edition == Edition::y2003 ? orifice_plate::expansibility(e.log_tau, e.kappa, f.beta4)
                                     : orifice_expansibility_1991(e, f.beta4);
  }

  double loss(double C_, double dp) const noexcept { return loss_2003(f, C_) * dp; }

  Limits limits(double beta, double D) const noexcept {
    if (tappings == Tappings::quarter_circle)  // without the upper Reynolds limit of ISO/TR 15377
      return {at_least(15.0), between(50.0, 500.0), between(0.245, 0.6),
              at_least(1000.0 * beta + 9.4e6 * fourth(beta - 0.24) * fourth(beta - 0.24))};
    if (tappings == Tappings::conical_entrance)
      return {at_least(6.0), between(50.0, 500.0), between(0.1, 0.316), between(80.0, 2e5 * beta)};
    return {at_least(12.5), between(50.0, 1000.0), between(edition == Edition::y1991 ? 0.2 : 0.1, 0.75),
            at_least(least_reynolds(beta, D))};
  }

  double least_reynolds(double beta, double D) const noexcept {
    const double beta2 = beta * beta;
    switch (edition) {
      case Edition::y1991:  // ISO 5167-1:1991, 8.3.1
        if (tappings == Tappings::corner) return beta <= 0.45 ? 5000.0 : 10000.0;
        return 1260.0 * beta2 * D;
      case Edition::y1998:  // Amd 1:1998
        if (tappings == Tappings::flange) return std::max(4000.0, 170.0 * beta2 * D);
        return beta <= 0.5 ? 4000.0 : 16000.0 * beta2;
      case Edition::y2003: break;
    }
    return orifice_plate::least_reynolds(tappings == Tappings::flange, beta, D);
  }
};

// The nozzles start from a mass rate of their own, q_m = 0.25 sqrt(100 dp).
double nozzle_first_reynolds(double dp, double viscosity, double D) noexcept {
  return 4.0 * 0.25 * std::sqrt(100.0 * dp) / (std::numbers::pi * viscosity * D);
}

struct Isa1932Nozzle {
  static constexpr double tolerance = 1e-6;
  static constexpr bool deliver_unconverged = true;  // with the code, unless a limit of use overrides it
  static constexpr Code unconverged = Code::no_convergence;

  Edition edition;
  Flowing f{};
  double constant = 0.0;
  double reynolds_factor = 0.0;  // on (10^6/Re)^1.15

  static double first_reynolds(double dp, double viscosity, double D) noexcept {
    return nozzle_first_reynolds(dp, viscosity, D);
  }
  static double bore_factor() noexcept { return 1.0; }
  static Code check() noexcept { return Code::ok; }

  // ISO 5167-3:2003, 5.1.6.2.
  void set(const Flowing& flowing) noexcept {
    f = flowing;
    constant = 0.9900 - 0.2262 * elementary::pow(f.beta, 4.1);
    reynolds_factor = 0.00175 * f.beta2 - 0.0033 * elementary::pow(f.beta, 4.15);
  }
  double C(double Re) const noexcept { return constant - reynolds_factor * elementary::pow(1e6 / Re, 1.15); }
  double expansibility(const Expansion& e) const noexcept { return nozzle_expansibility(e, f.beta4); }
  double loss(double C_, double dp) const noexcept {
    return (edition == Edition::y2003 ? loss_2003(f, C_) : loss_1991(f, C_)) * dp;
  }
  // ISO 5167-3:2003, 5.1.6.1. Outside the limits of beta there is none of the Reynolds number.
  static Limits limits(double beta, double) noexcept {
    const Limit reynolds = beta >= 0.3 && beta < 0.44    ? between(7e4, 1e7)
                           : beta >= 0.44 && beta <= 0.8 ? between(2e4, 1e7)
                                                         : any;
    return {any, between(50.0, 500.0), between(0.3, 0.8), reynolds};
  }
};

struct LongRadiusNozzle {
  static constexpr double tolerance = 1e-9;
  static constexpr bool deliver_unconverged = true;
  static constexpr Code unconverged = Code::no_convergence;

  Edition edition;
  Flowing f{};
  double reynolds_factor = 0.0;  // on (10^6/Re)^0.5

  static double first_reynolds(double dp, double viscosity, double D) noexcept {
    return nozzle_first_reynolds(dp, viscosity, D);
  }
  static double bore_factor() noexcept { return 1.0; }
  static Code check() noexcept { return Code::ok; }

  // ISO 5167-3:2003, 5.2.6.2.
  void set(const Flowing& flowing) noexcept {
    f = flowing;
    reynolds_factor = 0.00653 * std::sqrt(f.beta);
  }
  double C(double Re) const noexcept { return 0.9965 - reynolds_factor * std::sqrt(1e6 / Re); }
  double expansibility(const Expansion& e) const noexcept { return nozzle_expansibility(e, f.beta4); }
  double loss(double C_, double dp) const noexcept {
    return (edition == Edition::y2003 ? loss_2003(f, C_) : loss_1991(f, C_)) * dp;
  }
  // ISO 5167-3:2003, 5.2.6.1.
  static Limits limits(double, double) noexcept {
    return {any, between(50.0, 630.0), between(0.2, 0.8), between(1e4, 1e7)};
  }
};

// C of the two Venturis does not depend on the Reynolds number: the loop
// settles the states only and stops without a code.
struct VenturiNozzle {
  static constexpr double tolerance = 1e-9;
  static constexpr bool deliver_unconverged = true;
  static constexpr Code unconverged = Code::ok;

  PressureLoss pressure_loss;
  Flowing f{};

  static double first_reynolds(double, double, double) noexcept { return 100000.0; }
  static double bore_factor() noexcept { return 1.0; }
  Code check() const noexcept { return std::isfinite(pressure_loss.value) ? Code::ok : Code::argument; }
  void set(const Flowing& flowing) noexcept { f = flowing; }
  // ISO 5167-3:2003, 5.3.4.2.
  double C(double) const noexcept { return 0.9858 - 0.196 * f.beta4 * std::sqrt(f.beta); }
  double expansibility(const Expansion& e) const noexcept { return nozzle_expansibility(e, f.beta4); }
  double loss(double, double dp) const noexcept { return given_loss(pressure_loss, dp); }
  // ISO 5167-3:2003, 5.3.4.1.
  static Limits limits(double, double) noexcept {
    return {at_least(50.0), between(65.0, 500.0), between(0.316, 0.775), inside(1.5e5, 2e6)};
  }
};

struct Venturi {
  static constexpr double tolerance = 1e-8;
  static constexpr bool deliver_unconverged = true;
  static constexpr Code unconverged = Code::ok;

  VenturiType type;
  PressureLoss pressure_loss;
  double custom_coefficient;
  Flowing f{};

  // ISO 5167-4:2003, 5.5.2 to 5.5.4.
  struct Type {
    double C;
    Limits limits;
  };
  static constexpr Type types[] = {
      // as cast
      {0.984, {any, inside(100.0, 800.0), inside(0.3, 0.75), inside(2e5, 2e6)}},
      // rough-welded sheet-iron
      {0.985, {any, inside(200.0, 1200.0), inside(0.4, 0.7), inside(2e5, 2e6)}},
      // machined
      {0.995, {any, inside(50.0, 250.0), inside(0.4, 0.75), inside(2e5, 1e6)}},
      // custom: C is the caller's, and so are its limits
      {0.0, {any, any, any, any}},
  };
  const Type& row() const noexcept { return types[static_cast<int>(type) - 1]; }

  static double first_reynolds(double, double, double) noexcept { return 100000.0; }
  static double bore_factor() noexcept { return 1.0; }
  Code check() const noexcept {
    const bool good = std::isfinite(pressure_loss.value) && std::isfinite(custom_coefficient);
    return good && custom_coefficient >= 0.0 ? Code::ok : Code::argument;
  }
  void set(const Flowing& flowing) noexcept { f = flowing; }
  double C(double) const noexcept { return type == VenturiType::custom ? custom_coefficient : row().C; }
  double expansibility(const Expansion& e) const noexcept { return nozzle_expansibility(e, f.beta4); }
  double loss(double, double dp) const noexcept { return given_loss(pressure_loss, dp); }
  Limits limits(double, double) const noexcept { return row().limits; }
};

// ---- The calculation ---------------------------------------------------------------------------------------------

Code check_arguments(const Measurement& measured, const Geometry& geometry, Result& result) noexcept {
  if (!(measured.viscosity > 0.0)) return Code::viscosity;
  if (!(measured.density > 0.0)) return Code::density;
  if (!(measured.pressure > 0.0) || measured.pressure_location == Location::recovered) {
    result.pressure_out_of_range = true;
    return Code::pressure;
  }
  if (!(measured.dp >= 0.0)) {
    result.pressure_out_of_range = true;
    return Code::differential_pressure;
  }
  if (!(measured.kappa > 1.0)) return Code::isentropic_exponent;
  return all_finite(measured) && all_finite(geometry) ? Code::ok : Code::argument;
}

bool all_finite(const Result& r) noexcept {
  return differential_pressure::all_finite({r.mass_rate, r.beta, r.device_diameter, r.pipe_diameter, r.reynolds,
                                            r.discharge_coefficient, r.expansibility, r.velocity_of_approach}) &&
         differential_pressure::all_finite(r.pressure) && differential_pressure::all_finite(r.temperature) &&
         differential_pressure::all_finite(r.density);
}

void store_states(const Measurement& measured, const States& states, Result& result) noexcept {
  result.pressure = states.pressure();
  for (const Location at : {Location::upstream, Location::downstream, Location::recovered}) {
    result.temperature[at] = states.temperature(at);
    result.density[at] = states.density(at);
  }
  if (measured.fluid == Fluid::liquid)
    differential_pressure::clear_unmeasured(measured, result.temperature, result.density);
}

void store_geometry(const Flowing& flowing, Result& result) noexcept {
  result.beta = flowing.beta;
  result.device_diameter = flowing.d;
  result.pipe_diameter = flowing.D;
  result.velocity_of_approach = flowing.E;
}

// The loop on the mass rate. What does not depend on the recovered pressure is computed in the first round only.
template <class Element>
class Calculation {
 public:
  Calculation(const Measurement& measured, const Geometry& geometry, Element& element, Result& result) noexcept
      : measured_(measured), geometry_(geometry), element_(element), states_(measured, metric), result_(result) {}

  Code run() noexcept {
    if (!(states_.pressure().downstream > 0.0)) return Code::division_by_zero;
    const Code code = measured_.dp == 0.0 ? at_rest() : flowing();
    return delivered(code) && !all_finite(result_) ? Code::division_by_zero : code;
  }

 private:
  // Without a differential pressure nothing flows; states and geometry are what they are and no limit is tested.
  Code at_rest() noexcept {
    if (!set_geometry()) return Code::division_by_zero;
    result_.reynolds = 0.0;
    result_.expansibility = 1.0;
    store_geometry(flowing_, result_);
    store_states(measured_, states_, result_);
    return Code::ok;
  }

  Code flowing() noexcept {
    const LoopEnd end = iterate(Element::tolerance, result_.mass_rate, result_.rounds,
                                [this](double previous) { return round(previous); });
    // Far below its limits the equation of a nozzle's coefficient turns negative and has no flow that agrees with it.
    // The loop may find its way back; where it has not, it has found nothing to deliver.
    if (was_negative_ && (end != LoopEnd::converged || result_.mass_rate < 0.0)) return Code::no_convergence;
    if (end == LoopEnd::not_finite) return Code::division_by_zero;
    if (end == LoopEnd::no_convergence && !Element::deliver_unconverged) return Element::unconverged;

    result_.reynolds = reynolds(result_.mass_rate);
    result_.discharge_coefficient = C_;
    result_.expansibility = expansibility_;
    store_geometry(flowing_, result_);
    // Temperatures and densities are those of the last round, the recovered pressure is what came out of it.
    states_.set_recovered_pressure(state_p3_);
    store_states(measured_, states_, result_);
    result_.pressure.recovered = p3_;
    const Code code = end == LoopEnd::converged ? Code::ok : Element::unconverged;
    return check_limits(element_.limits(flowing_.beta, geometry_.pipe_diameter), geometry_, code, result_);
  }

  // One round: states, geometry, expansibility, coefficient, mass rate and
  // recovered pressure. NaN where a formula has no value.
  double round(double previous) noexcept {
    const bool first = result_.rounds == 1;
    state_p3_ = first ? states_.pressure().recovered : p3_;
    const bool temperature_moves = first || measured_.temperature_location == Location::recovered;
    const bool density_moves = first || measured_.density_location == Location::recovered;
    if (temperature_moves || density_moves) states_.set_recovered_pressure(state_p3_);
    if (temperature_moves) {
      if (!set_geometry()) return not_a_number;
      set_expansibility();
    }
    if (density_moves) driving_ = std::sqrt(200.0 * measured_.dp * states_.density(Location::upstream));
    if (temperature_moves || density_moves) {
      const double d = flowing_.d / 1000.0;
      rate_of_C_one_ = expansibility_ * (std::numbers::pi / 4.0) * d * d * driving_ * flowing_.E;
    }
    // The powers in C take the magnitude of a Reynolds number that is negative in passing.
    const double Re = first ? element_.first_reynolds(measured_.dp, measured_.viscosity, flowing_.D / 1000.0)
                            : std::fabs(reynolds(previous));
    C_ = element_.C(Re);
    was_negative_ = was_negative_ || C_ < 0.0;
    p3_ = states_.pressure().upstream - element_.loss(C_, measured_.dp) / 1000.0;
    return p3_ > 0.0 ? C_ * rate_of_C_one_ : not_a_number;
  }

  bool set_geometry() noexcept {
    const double T1 = states_.temperature(Location::upstream);
    const bool good = flowing_.set(pipe_at(geometry_, T1), device_at(geometry_, T1) * element_.bore_factor());
    if (good) element_.set(flowing_);
    return good;
  }

  void set_expansibility() noexcept {
    const double x = measured_.dp / 1000.0 / states_.pressure().upstream;
    expansibility_ = measured_.fluid == Fluid::liquid
                         ? 1.0
                         : element_.expansibility({x, states_.log_pressure_ratio(), measured_.kappa});
  }

  double reynolds(double mass_rate) const noexcept {
    return 4.0 * mass_rate / (std::numbers::pi * measured_.viscosity * (flowing_.D / 1000.0));
  }

  const Measurement& measured_;
  const Geometry& geometry_;
  Element& element_;
  States states_;
  Result& result_;
  Flowing flowing_{};
  double expansibility_ = 0.0;
  double driving_ = 0.0;        // sqrt(2 dp rho1) [kg/(m2 s)]
  double rate_of_C_one_ = 0.0;  // q_m/C [kg/s]
  double C_ = 0.0;
  double p3_ = 0.0;        // out of the last round [bar]
  double state_p3_ = 0.0;  // what that round started from [bar]
  bool was_negative_ = false;
};

template <class Element>
Code calculate(const Measurement& measured, const Geometry& geometry, Element element, Result& result) noexcept {
  result = Result{};
  Code code = check_arguments(measured, geometry, result);
  if (code == Code::ok) code = element.check();
  return code == Code::ok ? Calculation<Element>(measured, geometry, element, result).run() : code;
}

}  // namespace

Code orifice(const Measurement& measured, const Geometry& geometry, Tappings tappings, Edition edition,
             double drain_hole, Result& result) noexcept {
  const double factor = differential_pressure::drain_hole_factor(drain_hole, geometry.device_diameter);
  return calculate(measured, geometry, Orifice{tappings, edition, drain_hole, factor}, result);
}

Code isa1932_nozzle(const Measurement& measured, const Geometry& geometry, Edition edition, Result& result) noexcept {
  return calculate(measured, geometry, Isa1932Nozzle{edition}, result);
}

Code long_radius_nozzle(const Measurement& measured, const Geometry& geometry, Edition edition,
                        Result& result) noexcept {
  return calculate(measured, geometry, LongRadiusNozzle{edition}, result);
}

Code venturi_nozzle(const Measurement& measured, const Geometry& geometry, const PressureLoss& loss,
                    Result& result) noexcept {
  return calculate(measured, geometry, VenturiNozzle{loss}, result);
}

Code venturi(const Measurement& measured, const Geometry& geometry, VenturiType type, const PressureLoss& loss,
             double custom_coefficient, Result& result) noexcept {
  return calculate(measured, geometry, Venturi{type, loss, custom_coefficient}, result);
}

// ---- The elements as they are given ------------------------------------------------------------------------------

namespace {

Outcome outcome_of(Code code, const Device& device) noexcept {
  const Measurement& m = device.measured;
  switch (code) {
    case Code::viscosity: return blame(m.viscosity, argument_error, u"must be greater than %", 0.0);
    case Code::density: return blame(m.density, argument_error, u"must be greater than %", 0.0);
    case Code::pressure: return blame(m.pressure, argument_error, u"must be greater than %", 0.0);
    case Code::differential_pressure: return blame(m.dp, argument_error, u"must not be below %", 0.0);
    case Code::isentropic_exponent: return blame(m.kappa, argument_error, u"must be greater than %", 1.0);
    case Code::argument: return failure(argument_error, u"an argument is not a finite number");
    case Code::no_convergence:
      return failure(no_convergence, u"the mass rate does not settle within % rounds",
                     differential_pressure::max_rounds);
    case Code::division_by_zero:
      return failure(calculation_error,
                     u"a diameter, pressure or coefficient is zero or below, or the device is as wide as the pipe");
    default: return {};  // a good result, some limit of use exceeded
  }
}

template <class Given, class Flow>
Outcome flow_of(const Given& given, Flow flow) noexcept {
  const Geometry& g = given.device.geometry;
  if (g.device_diameter > g.pipe_diameter)
    return blame(g.device_diameter, refused, u"is larger than the pipe diameter, %", g.pipe_diameter);
  return outcome_of(flow(given.device.measured, g), given.device);
}

}  // namespace

Outcome orifice_flow(const OrificeArguments& given, Result& result) noexcept {
  Code code = Code::ok;
  const Outcome outcome = flow_of(given, [&](const Measurement& measured, const Geometry& geometry) {
    code = orifice(measured, geometry, given.tappings, given.edition, given.drain_hole, result);
    return code;
  });
  return code == Code::configuration ? blame(given.tappings, argument_error, u"asks for edition %", 3) : outcome;
}

Outcome isa1932_nozzle_flow(const NozzleArguments& given, Result& result) noexcept {
  return flow_of(given, [&](const Measurement& measured, const Geometry& geometry) {
    return isa1932_nozzle(measured, geometry, given.edition, result);
  });
}

Outcome long_radius_nozzle_flow(const NozzleArguments& given, Result& result) noexcept {
  return flow_of(given, [&](const Measurement& measured, const Geometry& geometry) {
    return long_radius_nozzle(measured, geometry, given.edition, result);
  });
}

Outcome venturi_nozzle_flow(const VenturiNozzleArguments& given, Result& result) noexcept {
  return flow_of(given, [&](const Measurement& measured, const Geometry& geometry) {
    return venturi_nozzle(measured, geometry, given.loss, result);
  });
}

Outcome venturi_flow(const VenturiArguments& given, Result& result) noexcept {
  return flow_of(given, [&](const Measurement& measured, const Geometry& geometry) {
    return venturi(measured, geometry, given.type, given.loss, given.custom_coefficient, result);
  });
}

}  // namespace norvane::ISO5167
