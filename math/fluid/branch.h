// Density at a pressure on one branch of an isotherm that may have a van der Waals loop.
//
//   p(rho)  pressure at the temperature of the isotherm; its unit and that of the density are the caller's
//
// Below the critical temperature p falls between two densities, the spinodals. What lies between them is no state of
// the fluid, and wide-range equations have further roots there that look like one. The dilute branch reaches from
// zero to the vapour spinodal and is concave, the dense branch begins at the liquid spinodal and is convex where it
// is walked down. At and above the critical temperature p rises everywhere.
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
  enum Side { dilute, dense, whole } side;  // whole: at and above the critical temperature
  double start;                             // first density tried, on the branch
  double limit;                             // between the branches: the search does not pass it
  double zero_slope;                        // dp/drho at zero density
  bool curved = true;                       // curvature as said above: one that is not tells the loop
};

inline constexpr int max_steps = 100;            // at most 55 are seen, most of them halvings towards a spinodal
inline constexpr int free_steps = 50;            // after which brackets are halved
inline constexpr double longest_step = 0.25;     // upward, as a share of the density
inline constexpr double outward_step = 0.1;      // back to a dense branch that the start missed
inline constexpr double root_tolerance = 1e-13;  // share of the density that the last step may leave
// Share of rho (dp/drho at zero density) below which p is made of rounding errors: a smaller difference
// of pressures says nothing, and moves the root within a millikelvin of a critical point.
inline constexpr double pressure_rounding = 1e-15;

// Steps in a bracket, towards a p that is above 0. The first is Newton's; the others go to where the cubic through
// the last two points, density over pressure with its slopes, has the pressure. A step that leaves the branch (p
// falls, or the curvature is that of the loop) is halved back towards the last density that did not. False when the
// branch has no such pressure.
template <class Isotherm>
bool find_density(const Isotherm& isotherm, double p, const Branch& branch, double& rho) noexcept {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const bool dense = branch.side == Branch::dense, whole = branch.side == Branch::whole;
  // The ends of the bracket, and whether they are states; otherwise they are where the branch has ended.
  double low = dense ? branch.limit : 0.0, high = branch.side == Branch::dilute ? branch.limit : infinity;
  bool low_is_state = !dense, high_is_state = whole;
  // The last density on the branch; at zero density everything is known.
  double good = dense ? infinity : 0.0, good_slope = dense ? infinity : branch.zero_slope, good_value = 0.0;
  double at = branch.start;
  for (int i = 0; i < max_steps; ++i) {
    const auto [value, slope] = isotherm(at);
    const double f = value - p;
    const bool falls = !(slope > 0.0);
    const bool inward = dense ? at < good && !low_is_state : at > good && !high_is_state;
    if ((falls || (branch.curved && inward && slope > good_slope)) && !(low_is_state && high_is_state)) {
      (at < good ? low : high) = at;
      if (good < infinity) {
        if (!(std::fabs(at - good) > root_tolerance * good)) return false;
        at = 0.5 * (at + good);
      } else {
        at *= 1.0 + outward_step;  // the start was too low
      }
      continue;
    }
    if (std::fabs(f) <= pressure_rounding * branch.zero_slope * at) {
      rho = at;
      return at > 0.0;
    }
    double step = -f / slope;
    // What the step will leave: half the curvature times its square, over the slope. The curvature is that met on the
    // way here, and the slope over the density beside it, since the way may have led round an inflection.
    const double way = std::fabs(at - good);
    const double bend = std::fabs(slope - good_slope) / way + slope / at;
    if (!falls && std::fabs(step) <= way && 0.5 * bend * step * step <= root_tolerance * at * slope) {
      rho = at + step;
      return rho > 0.0;
    }
    if (good < infinity) {
      const double over = value - good_value, secant = (at - good) / over;
      const double near = (1.0 / slope - secant) / over, far = (secant - 1.0 / good_slope) / over;
      const double correction = f * f * (near + (near - far) / over * (p - good_value));
      if (std::fabs(correction) < 0.5 * std::fabs(step)) step += correction;
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
    good_value = value;
    at += std::min(step, longest_step * at);
    if (falls || !(at > low && at < high) || i > free_steps) {
      if (!(high < infinity)) {
        at = (1.0 + longest_step) * good;
        continue;
      }
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
