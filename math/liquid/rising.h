// The base value that belongs to an observed one.
//
// Corrections are given as functions of the base value, so that an observed value asks for the root u of
//
//   left(band, u) = target                    left, for example, u x CTL(u) x CPL(u)
//
// left rises with u. It may be made of bands with constants of their own: where two meet, it may jump a little, up or
// down, so that a target has two solutions or none. The answer is the largest u whose left side does not exceed the
// target, and in a gap the edge itself. Substitution u := target/(CTL CPL) would be simpler; it diverges where CTL
// depends strongly on the base value. Newton steps inside a bracket do not.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

#include "math/common/dual.h"
#include "math/common/outcome.h"

namespace norvane::liquid {

enum class Search { found, below, above, none, unsettled };

struct Solution {
  Search search = Search::found;
  double limit = 0.0;  // of what can be reached, where the target lies below or above

  bool found() const { return search == Search::found; }
};

// A residual of this part of the target leaves its square after one more Newton step.
inline constexpr double one_step_away = 1e-10;
// Far more than it takes: halving alone needs 53 for every digit, after a few doublings.
inline constexpr int most_rounds = 120;

// The status of an answer that was not found. `unit`: one unit of the member in units of the left side.
template <class Member>
Outcome outcome_of(const Solution& solution, const Member& member, double unit = 1.0) {
  switch (solution.search) {
    case Search::found: return {};
    case Search::below:
    case Search::above:
      if (std::isfinite(solution.limit)) {
        return blame(member, calculation_error, u"lies beyond %, where the table ends at these conditions",
                     solution.limit / unit);
      }
      [[fallthrough]];
    case Search::none:
      return blame(member, calculation_error, u"belongs to no liquid of the table at these conditions");
    default:
      return failure(no_convergence, u"the search for the base value does not settle within % rounds", most_rounds);
  }
}

// Band k lies between edges[k] and edges[k + 1]; the first edge may be 0 and the last infinite, where left is not
// evaluated. `left` answers a Dual, of which NaN, or a slope that is not positive, means that u is below the range in
// which left rises. `u` is the guess and the answer.
template <class Left>
Solution solve_rising(const Left& left, std::span<const double> edges, double target, double& u) {
  const std::size_t last = edges.size() - 2;
  const auto rises = [](Dual at) { return at.slope > 0.0 && std::isfinite(at.value); };
  const double tolerance = one_step_away * target;
  // Rounding must not push what belongs to the lowest value out of the range.
  const auto starts_above = [&](std::size_t band) {
    if (!(edges[band] > 0.0)) return false;
    const Dual at = left(band, Dual::variable(edges[band]));
    return rises(at) && at.value > (band == 0 ? target + tolerance : target);
  };

  std::size_t band = 0;
  while (band < last && u > edges[band + 1]) ++band;
  if (band < last && !starts_above(band + 1)) {
    do ++band;
    while (band < last && !starts_above(band + 1));
  } else {
    while (starts_above(band)) {
      if (band == 0) return {Search::below, left(0, Dual::variable(edges[0])).value};
      --band;
    }
  }

  double low = edges[band], high = edges[band + 1];
  const double top = high;
  bool low_is_below = false;  // left(low) is known to lie below the target, not only where it does not rise
  u = std::clamp(u, low, high);
  if (!(u > 0.0)) return {Search::none};
  for (int round = 0; round < most_rounds; ++round) {
    const Dual at = left(band, Dual::variable(u));
    double next = std::numeric_limits<double>::quiet_NaN();
    if (rises(at)) {
      const double missing = target - at.value;
      next = u + missing / at.slope;
      if (std::fabs(missing) <= tolerance) {
        u = std::clamp(next, edges[band], top);
        return {};
      }
      if (missing > 0.0 && u == top) return {band == last ? Search::above : Search::found, at.value};
      (missing > 0.0 ? low : high) = u;
      low_is_below = low_is_below || missing > 0.0;
    } else {
      if (u == top) return {Search::none};
      low = u;
      low_is_below = false;
    }
    if (next >= high && high == top && std::isfinite(top)) {
      next = top;
    } else if (!(next > low && next < high)) {
      next = std::isfinite(high) ? low + 0.5 * (high - low) : 2.0 * u;
      if (!(next > low && next < high)) {
        // No number is left between: too steep for the residual to become small.
        u = low;
        return {low_is_below ? Search::found : Search::none};
      }
    }
    u = next;
  }
  return {Search::unsettled};
}

}  // namespace norvane::liquid
