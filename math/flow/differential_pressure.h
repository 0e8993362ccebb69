// Differential-pressure flow elements: what ISO 5167, AGA Report 3 and the cone meter have in common.
//
//   1 = upstream tapping, 2 = downstream tapping, 3 = where the pressure has fully recovered
//   dp     differential pressure p1 - p2                p1, p2, p3   absolute pressures
//   T1..3  temperatures                                 rho1..3      densities
//   kappa  isentropic exponent [-]                      D, d         pipe and device diameter at T1
//   n_rho  density exponent, rho ~ p^n_rho              n_T          temperature exponent, T ~ p^-n_T
//
// The three points, the thermal expansion, the loop on the mass flow rate and the limits of use are written once,
// here. Everything works on numbers in one consistent set of units; a standard names its own set by Units.
#pragma once

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace norvane::differential_pressure {

enum class Location : int { upstream = 1, downstream = 2, recovered = 3 };
enum class TemperatureCorrection : int { isentropic = 1, exponent = 2, joule_thomson = 3 };
enum class Fluid : int { gas = 1, liquid = 2 };

// The set of units a standard works in.
struct Units {
  double dp_per_pressure;  // differential-pressure units in one unit of absolute pressure
  double absolute_zero;    // temperature + absolute_zero is absolute
};
inline constexpr Units metric{1000.0, 273.15};  // mbar, bar, degC

// What is measured, and where. [metric | customary]
struct Measurement {
  double dp = 0.0;                                  // [mbar | inH2O at 60 degF]
  double pressure = 0.0;                            // absolute, at pressure_location [bar | psia]
  double temperature = 0.0;                         // at temperature_location [degC | degF]
  double density = 0.0;                             // at density_location [kg/m3 | lbm/ft3]
  double viscosity = 0.0;                           // dynamic viscosity [Pa s | cP]
  double kappa = 0.0;                               // isentropic exponent [-]
  Location pressure_location = Location::upstream;  // upstream or downstream
  Location temperature_location = Location::upstream;
  TemperatureCorrection temperature_correction = TemperatureCorrection::isentropic;
  double temperature_exponent = 0.0;  // [-]; Joule-Thomson: [K/bar | degF/psi]
  Location density_location = Location::upstream;
  double density_exponent = 0.0;  // [-]; 0 stands for 1/kappa
  Fluid fluid = Fluid::gas;
};

// Diameters at their reference temperatures, and how they expand.
struct Geometry {
  double pipe_diameter = 0.0;               // [mm | in]
  double pipe_expansion = 0.0;              // linear [1/degC | 1/degF]
  double pipe_reference_temperature = 0.0;  // [degC | degF]
  double device_diameter = 0.0;
  double device_expansion = 0.0;
  double device_reference_temperature = 0.0;
};

constexpr double expanded(double diameter, double expansion, double temperature, double reference) noexcept {
  return diameter * (1.0 + expansion * (temperature - reference));
}
constexpr double pipe_at(const Geometry& g, double temperature) noexcept {
  return expanded(g.pipe_diameter, g.pipe_expansion, temperature, g.pipe_reference_temperature);
}
constexpr double device_at(const Geometry& g, double temperature) noexcept {
  return expanded(g.device_diameter, g.device_expansion, temperature, g.device_reference_temperature);
}

// A drain hole at the bottom of an orifice plate lets more through: factor on the bore, ISO/TR 15377 and API
// MPMS 14.3.2. Both diameters in one unit, the bore at its reference temperature.
constexpr double drain_hole_factor(double drain_hole, double bore) noexcept {
  const double ratio = drain_hole / bore;
  return 1.0 + 0.55 * ratio * ratio;
}

// A device in its pipe with what is measured on it.
struct Device {
  Measurement measured;
  Geometry geometry;
};

struct ThreePoints {
  double upstream = 0.0;
  double downstream = 0.0;
  double recovered = 0.0;

  constexpr double& operator[](Location at) noexcept {
    return at == Location::upstream ? upstream : at == Location::downstream ? downstream : recovered;
  }
  constexpr double operator[](Location at) const noexcept {
    return at == Location::upstream ? upstream : at == Location::downstream ? downstream : recovered;
  }
};

// The fluid's state at the three points.
class States {
 public:
  // The recovered pressure starts as the downstream pressure.
  States(const Measurement& measured, const Units& units) noexcept;

  // Pressures [bar | psia]. A downstream pressure may come out zero or negative; the caller decides what that means.
  const ThreePoints& pressure() const noexcept { return pressure_; }
  // ln(p2/p1) <= 0.
  double log_pressure_ratio() const noexcept { return log_ratio_.downstream; }
  void set_recovered_pressure(double p3) noexcept;

  // Temperature and density at a point, propagated from where they are measured:
  //   T_x = T_loc (p_loc/p_x)^n_T with absolute temperatures, or T_loc + (p_x - p_loc) mu_JT
  //   rho_x = rho_loc (p_x/p_loc)^n_rho
  double temperature(Location x) const noexcept;
  double density(Location x) const noexcept;

 private:
  const Measurement& measured_;
  double absolute_zero_;
  double n_T_;
  double n_rho_;
  ThreePoints pressure_;
  ThreePoints log_ratio_;  // ln(p_x/p1)
};

// A liquid carries its temperature and density from no point to another: clears all but the measured ones.
void clear_unmeasured(const Measurement& measured, ThreePoints& temperature, ThreePoints& density) noexcept;

inline bool all_finite(std::initializer_list<double> values) noexcept {
  return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}
bool all_finite(const Measurement& measured) noexcept;
bool all_finite(const Geometry& geometry) noexcept;
bool all_finite(const ThreePoints& points) noexcept;

inline constexpr int max_rounds = 25;

enum class LoopEnd { converged, no_convergence, not_finite };

// Repeats mass_rate = round(mass_rate) until two rounds agree within the tolerance [kg/s], at least twice
// and at most max_rounds times. A tolerance below what a double can tell apart counts as met: a change of one unit
// in the last place of a coefficient moves the mass rate by up to two (1e-12 kg/s is less than that above 4000 kg/s).
template <class Round>
LoopEnd iterate(double tolerance, double& mass_rate, int& rounds, Round&& round) noexcept {
  for (rounds = 1; rounds <= max_rounds; ++rounds) {
    const double previous = mass_rate;
    mass_rate = round(previous);
    if (!std::isfinite(mass_rate)) return LoopEnd::not_finite;
    const double resolution = 2.0 * std::numeric_limits<double>::epsilon() * std::fabs(mass_rate);
    if (rounds >= 2 && std::fabs(previous - mass_rate) <= std::max(tolerance, resolution)) return LoopEnd::converged;
  }
  rounds = max_rounds;
  return LoopEnd::no_convergence;
}

// A limit of use: inclusive unless open.
struct Limit {
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
  bool open = false;

  constexpr bool holds(double value) const noexcept {
    return open ? value > low && value < high : value >= low && value <= high;
  }
};
inline constexpr Limit any{};
constexpr Limit between(double low, double high) noexcept { return {low, high, false}; }
constexpr Limit at_least(double low) noexcept { return {low, std::numeric_limits<double>::infinity(), false}; }
constexpr Limit inside(double low, double high) noexcept { return {low, high, true}; }

}  // namespace norvane::differential_pressure
