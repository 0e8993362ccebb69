// Cone meter: see vcone.h.
//
//   x    dp/(kappa p1), dp and p1 in one unit
//   F_a  area factor: the area term of the flowing diameters over that of the reference diameters
//
// The bulletin multiplies the area term of the reference diameters by F_a; the reference terms cancel, so the
// area term of the flowing diameters stands in for the product.
#include "math/flow/vcone.h"

#include <numbers>

namespace norvane::VCone {
namespace {

using differential_pressure::Fluid;
using differential_pressure::iterate;
using differential_pressure::Location;
using differential_pressure::LoopEnd;
using differential_pressure::metric;
using differential_pressure::States;

constexpr double tolerance = 1e-9;               // on the mass rate [kg/s]
constexpr double least_expansion_factor = 0.84;  // limit of use of eps

struct Annulus {
  double D = 0.0;  // [mm]
  double d = 0.0;  // cone [mm]
  double beta = 0.0;
  double beta2 = 0.0;
  double beta4 = 0.0;

  // False where no flow can be computed: no cone, no gap, or no pipe.
  bool set(const Geometry& geometry, double T1) noexcept {
    D = pipe_at(geometry, T1);
    d = device_at(geometry, T1);
    beta2 = (1.0 - d / D) * (1.0 + d / D);
    beta = std::sqrt(beta2);
    beta4 = beta2 * beta2;
    return D > 0.0 && std::isfinite(D) && d > 0.0 && beta2 > 0.0 && beta4 < 1.0;
  }
};

double expansion_factor(Type type, double beta4, double x) noexcept {
  return type == Type::standard ? 1.0 - (0.649 + 0.696 * beta4) * x : 1.0 - (0.755 + 6.787 * beta4 * beta4) * x;
}

// Permanent pressure loss as a fraction of dp.
double loss(double beta) noexcept { return 1.3 - 1.25 * beta; }

Code check_arguments(const Measurement& measured, const Geometry& geometry, double coefficient) noexcept {
  if (!(geometry.device_diameter < geometry.pipe_diameter)) return Code::division_by_zero;
  if (!(measured.density > 0.0)) return Code::density;
  if (!(measured.kappa > 0.0)) return Code::isentropic_exponent;
  // Without a differential pressure nothing flows, whatever the pressure.
  if (measured.dp != 0.0) {
    if (!(measured.pressure > 0.0) || measured.pressure_location == Location::recovered) return Code::pressure;
    if (!(measured.dp >= 0.0)) return Code::differential_pressure;
  }
  return all_finite(measured) && all_finite(geometry) && std::isfinite(coefficient) ? Code::ok : Code::argument;
}

bool all_finite(const Result& r) noexcept {
  return differential_pressure::all_finite({r.mass_rate, r.beta, r.cone_diameter, r.pipe_diameter, r.reynolds,
                                            r.discharge_coefficient, r.expansion_factor, r.velocity}) &&
         all_finite(r.pressure) && all_finite(r.temperature) && all_finite(r.density);
}

class Calculation {
 public:
  Calculation(const Measurement& measured, const Geometry& geometry, Type type, Result& result) noexcept
      : measured_(measured), geometry_(geometry), type_(type), result_(result), states_(measured, metric) {}

  Code run() noexcept {
    // The geometry at the temperature measured is where the rounds start.
    const bool gap = annulus_.set(geometry_, measured_.temperature);
    Code code = Code::ok;
    if (measured_.dp == 0.0) {
      at_rest();
    } else if (!gap) {
      code = Code::division_by_zero;
    } else if (!(measured_.viscosity > 0.0)) {
      code = Code::viscosity;
    } else {
      code = flowing();
    }
    return code == Code::ok && !all_finite(result_) ? Code::division_by_zero : code;
  }

 private:
  // Nothing flows: the same state everywhere.
  void at_rest() noexcept {
    for (const Location at : {Location::upstream, Location::downstream, Location::recovered}) {
      result_.pressure[at] = measured_.pressure;
      result_.temperature[at] = measured_.temperature;
      result_.density[at] = measured_.density;
    }
    store_geometry();
    if (!(annulus_.beta2 > 0.0)) result_.beta = 0.0;  // hot, the cone fills the pipe
  }

  Code flowing() noexcept {
    if (!(states_.pressure().downstream > 0.0) || !set_recovered_pressure()) return Code::division_by_zero;
    const LoopEnd end = iterate(tolerance, result_.mass_rate, result_.rounds, [this](double) { return round(); });
    if (end == LoopEnd::not_finite || !(result_.mass_rate >= 0.0)) return Code::division_by_zero;
    if (end == LoopEnd::no_convergence) return Code::no_convergence;
    store();
    return Code::ok;
  }

  // Geometry, pressures and mass rate of one round; NaN where a formula has no value.
  double round() noexcept {
    if (!annulus_.set(geometry_, states_.temperature(Location::upstream)) || !set_recovered_pressure())
      return std::numeric_limits<double>::quiet_NaN();
    const double x = measured_.dp / 1000.0 / (measured_.kappa * states_.pressure().upstream);
    const double eps = measured_.fluid == Fluid::liquid ? 1.0 : expansion_factor(type_, annulus_.beta4, x);
    result_.expansion_factor = eps;
    const double D = annulus_.D / 1000.0;
    const double area = std::numbers::pi / 4.0 * D * D * annulus_.beta2 / std::sqrt(1.0 - annulus_.beta4);
    return result_.discharge_coefficient * eps * area *
           std::sqrt(200.0 * measured_.dp * states_.density(Location::upstream));
  }

  bool set_recovered_pressure() noexcept {
    const double p3 = states_.pressure().upstream - loss(annulus_.beta) * measured_.dp / 1000.0;
    if (!(p3 > 0.0)) return false;
    states_.set_recovered_pressure(p3);
    return true;
  }

  void store_geometry() noexcept {
    result_.beta = annulus_.beta;
    result_.cone_diameter = annulus_.d;
    result_.pipe_diameter = annulus_.D;
  }

  void store() noexcept {
    store_geometry();
    result_.pressure = states_.pressure();
    for (const Location at : {Location::upstream, Location::downstream, Location::recovered}) {
      result_.temperature[at] = states_.temperature(at);
      result_.density[at] = states_.density(at);
    }
    const double rho1 = result_.density.upstream;
    const double D = annulus_.D / 1000.0;
    result_.velocity = 4.0 * result_.mass_rate / (rho1 * std::numbers::pi * D * D);
    result_.reynolds = result_.velocity * annulus_.D * rho1 / measured_.viscosity;
    result_.expansion_out_of_range = result_.expansion_factor < least_expansion_factor;
    if (measured_.fluid == Fluid::liquid)
      differential_pressure::clear_unmeasured(measured_, result_.temperature, result_.density);
  }

  const Measurement& measured_;
  const Geometry& geometry_;
  Type type_;
  Result& result_;
  States states_;
  Annulus annulus_{};
};

}  // namespace

Code cone(const Measurement& measured, const Geometry& geometry, Type type, double discharge_coefficient,
          Result& result) noexcept {
  result = Result{};
  result.discharge_coefficient = discharge_coefficient;
  const Code code = check_arguments(measured, geometry, discharge_coefficient);
  return code == Code::ok ? Calculation(measured, geometry, type, result).run() : code;
}

Outcome outcome_of(Code code, const Arguments& given) noexcept {
  const Measurement& m = given.device.measured;
  switch (code) {
    case Code::ok: return {};
    case Code::viscosity: return blame(m.viscosity, argument_error, u"must be greater than %", 0.0);
    case Code::density: return blame(m.density, argument_error, u"must be greater than %", 0.0);
    case Code::pressure: return blame(m.pressure, argument_error, u"must be greater than %", 0.0);
    case Code::differential_pressure: return blame(m.dp, argument_error, u"must not be below %", 0.0);
    case Code::isentropic_exponent: return blame(m.kappa, argument_error, u"must be greater than %", 0.0);
    case Code::argument: return failure(argument_error, u"an argument is not a finite number");
    case Code::no_convergence:
      return failure(no_convergence, u"the mass rate does not settle within % rounds",
                     differential_pressure::max_rounds);
    case Code::division_by_zero: break;
  }
  return failure(calculation_error,
                 u"a diameter, pressure or factor is zero or below, or the cone is not smaller than the pipe");
}

}  // namespace norvane::VCone
