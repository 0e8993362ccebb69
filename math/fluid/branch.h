// Density at a pressure on one branch of an isotherm that may have a van der Waals loop.
//
//   p(rho)  pressure at the temperature of the isotherm; its unit and that of the density are the caller's
//
// Below the critical temperature p falls between two densities, the spinodals. What lies between them is no state of
// the fluid, and wide-range equations have further roots there that look like one. The dilute branch reaches from
// zero to the vapour spinodal and is concave, the dense branch begins at the liquid spinodal and is convex where it
// is walked down.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvane::fluid {

struct Pressure {
  double value;  // p
  double slope;  // dp/drho
};

struct Branch {
  enum Side { dilute, dense } side;
  double start;       // first density tried, on the branch
  double limit;       // density between the branches, which the search does not pass
  bool single;        // there is one branch only: at `limit`, too, the pressure is that of a state
  double zero_slope;  // dp/drho at zero density
};

inline constexpr int max_steps = 100;  // at most 40 are seen, within a millikelvin of a critical point
inline constexpr int newton_steps = 50;
inline constexpr double root_tolerance = 1e-13;  // share of the density that the last step may leave
// Share of rho (dp/drho at zero density) below which p is made of rounding errors: a smaller difference
// of pressures says nothing, and moves the root within a millikelvin of a critical point.
inline constexpr double pressure_rounding = 1e-15;

// Newton's method in a bracket. A step that leaves the branch (p falls, or the curvature is that of the loop) is
// halved back towards the last density that did not. False when the branch has no such pressure.
template <class Isotherm>
bool find_density(const Isotherm& isotherm, double p, const Branch& branch, double& rho) noexcept {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const bool dense = branch.side == Branch::dense;
  double low = dense ? branch.limit : 0.0, high = dense ? infinity : branch.limit;
  bool low_is_state = !dense || branch.single, high_is_state = !dense && branch.single;
  double good = dense ? infinity : 0.0, good_slope = dense ? infinity : branch.zero_slope;
  double at = branch.start;
  for (int i = 0; i < max_steps; ++i) {
    const auto [value, slope] = isotherm(at);
    const double f = value - p;
    const bool bracketed = low_is_state && high_is_state;
    const bool loop =
        dense ? at < good && !low_is_state && slope > good_slope : at > good && !high_is_state && slope > good_slope;
    const bool falls = !(slope > 0.0);
    if ((falls || loop) && !bracketed) {
      if (!(std::fabs(at - good) > root_tolerance * good)) return false;
      (at < good ? low : high) = at;
      at = 0.5 * (at + good);
      continue;
    }
    if (std::fabs(f) <= pressure_rounding * branch.zero_slope * at) {
      rho = at;
      return at > 0.0;
    }
    const double step = -f / slope;
    // What the step will leave: half the curvature, as met on the way here, times its square, over the slope.
    const double way = std::fabs(at - good);
    const double bend = std::fabs(slope - good_slope) / way;
    if (!falls && std::fabs(step) <= way && 0.5 * bend * step * step <= root_tolerance * at * slope) {
      rho = at + step;
      return rho > 0.0;
    }
    if (f < 0.0) {
      low = at;
      low_is_state = true;
    } else {
      high = at;
      high_is_state = true;
    }
    good = at;
    good_slope = slope;
    at += std::min(step, 0.25 * at);
    if (falls || !(at > low && at < high) || i > newton_steps) {
      if (!(high < infinity)) return false;
      at = 0.5 * (low + high);
      if (!(high - low > root_tolerance * high)) {
        rho = at;
        return low_is_state && high_is_state;
      }
    }
  }
  return false;
}

}  // namespace norvane::fluid
