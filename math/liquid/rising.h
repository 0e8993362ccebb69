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

#include "core/outcome.h"
#include "math/common/dual.h"

namespace norvane::liquid {

enum class Search { found, below, above, none, unsettled };

struct Solution {
  Search search = Search::found;
  double limit = 0.0;  // of what can be reached, where the target lies below or above

  bool found() const { return search == Search::found; }
};

// A residual of this part of the target leaves its square after one more Newton step.
inline constexpr double one_step_away = 1e-9;
// More than the left side jumps anywhere; closer than this to an edge both sides of it are looked at.
inline constexpr double most_jump = 1e-2;
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
  const double tolerance = one_step_away * target;
  const auto rises = [](Dual at) { return at.slope > 0.0 && std::isfinite(at.value); };
  // Whether the solution lies in the band above `band`.
  const auto belongs_above = [&](std::size_t band) {
    if (band == last) return false;
    const Dual at = left(band + 1, Dual::variable(edges[band + 1]));
    return !rises(at) || at.value <= target;
  };

  u = std::clamp(u, edges.front(), edges.back());
  if (!(u > 0.0)) return {Search::none};
  std::size_t band = 0;
  while (band < last && u > edges[band + 1]) ++band;
  double low = edges[band], high = edges[band + 1];
  bool low_is_open = low > 0.0;  // left(low) has not been looked at
  bool low_is_below = false;     // left(low) is known to lie below the target, not only where it does not rise
  const auto enter = [&](std::size_t next) {
    band = next;
    low = edges[band];
    high = edges[band + 1];
    low_is_open = low > 0.0;
    low_is_below = false;
  };

  for (int round = 0; round < most_rounds; ++round) {
    const double bottom = edges[band], top = edges[band + 1];
    const Dual at = left(band, Dual::variable(u));
    const double missing = target - at.value;
    double next = std::numeric_limits<double>::quiet_NaN();
    if (rises(at)) {
      next = u + missing / at.slope;
      if (std::fabs(missing) <= tolerance) {
        next = std::clamp(next, bottom, top);
        if ((top - next) * at.slope > most_jump * target || !belongs_above(band)) {
          u = next;
          return {};
        }
        enter(band + 1);
        u = top;
        continue;
      }
    }
    if (!rises(at) || missing > 0.0) {
      if (u == top) {
        if (band == last) return rises(at) ? Solution{Search::above, at.value} : Solution{Search::none};
        if (!belongs_above(band)) return {};
        enter(band + 1);
        continue;
      }
      low = u;
      low_is_open = false;
      low_is_below = rises(at);
    } else {
      if (u == bottom) {
        if (band == 0) return {Search::below, at.value};
        enter(band - 1);
        continue;
      }
      high = u;
    }
    if (next >= high && high == top && std::isfinite(top)) {
      next = top;
    } else if (next <= low && low_is_open) {
      next = bottom;
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

// The same where left may fall and rise again below the range in which it is known to rise: from the uppermost edge
// down in steps, so that the solution is the largest one.
// The edges are finite.
template <class Left>
Solution solve_from_above(const Left& left, std::span<const double> edges, double target, double& u) {
  constexpr int steps = 16;  // of a band
  const auto exceeds = [&](std::size_t band, double at) {
    const Dual value = left(band, Dual::variable(at));
    return value.slope > 0.0 && value.value > target;
  };
  for (std::size_t band = edges.size() - 1; band-- > 0;) {
    const double bottom = edges[band], top = edges[band + 1];
    // Above the uppermost edge, or in the gap between two bands.
    if (!exceeds(band, top)) {
      u = top;
      const double value = left(band, Dual::variable(top)).value;
      if (band + 2 < edges.size() || value >= target) return {};
      return {Search::above, value};
    }
    double high = top;
    for (int step = steps; step-- > 0;) {
      const double low = bottom + (top - bottom) * step / steps;
      if (!exceeds(band, low)) {
        const double interval[] = {low, high};
        u = high;
        const Solution solution =
            solve_rising([&](std::size_t, Dual at) { return left(band, at); }, interval, target, u);
        return solution.found() ? solution : Solution{Search::none};
      }
      high = low;
    }
  }
  return {Search::below, left(0, Dual::variable(edges.front())).value};
}

}  // namespace norvane::liquid
