// The root of an increasing function: a march that brackets it, then Brent's method.
//
// The march and its limits are those of the density search of AGA Report No. 8 (1992); Brent's method is that of
// R. P. Brent, Algorithms for Minimization without Derivatives (1973), chapter 4, with a stop rule of this library.
// The function is any callable double(double); x and f carry the caller's units.
#pragma once

#include <algorithm>
#include <cmath>

namespace norvane::root {

// A point and the function there.
struct Point {
  double x;
  double f;
};

struct March {
  double start;       // first point tried; above 0
  double limit;       // beyond it the march goes on once more, from the last point, in even steps
  double least_step;  // added to a hundredth of what is left to the limit, so that such a step is never 0
};

inline constexpr int max_march_steps = 300;
inline constexpr double march_first_step = 20.0;     // a twentieth of the start
inline constexpr double march_share_of_rest = 0.01;  // of the way to the limit

// Marches from f = 0 at x = 0 upward, in steps that double, until f exceeds `target`: the root of f - target lies
// between `low` and `high`, which hold the distances from the target. The first point above it ends the march; a
// function that does not rise, as the pressure behind a vapour's stability limit, is a failure.
template <class Function>
bool bracket(const Function& f, double target, const March& march, Point& low, Point& high) noexcept {
  double x = march.start;
  double step = x / march_first_step;
  double previous = 0.0;
  double previous_value = 0.0;
  bool clipped = false;
  for (int i = 0; i < max_march_steps; ++i) {
    if (x > march.limit && !clipped) {
      step = (march.limit - previous) * march_share_of_rest + march.least_step;
      x = previous + step;
      clipped = true;
      continue;
    }
    const double value = f(x);
    if (value > target) {
      low = {previous, previous_value - target};
      high = {x, value - target};
      return true;
    }
    if (!(value > previous_value)) return false;
    previous = x;
    previous_value = value;
    if (!clipped) step *= 2.0;
    x += step;
  }
  return false;
}

struct Stop {
  double f;                      // |f| below this ends the search
  double step = 1e-11;           // so does a step below this share of x
  double smallest_step = 3e-13;  // no step is shorter, relative to x: below it rounding decides
  int max_steps = 250;
};

// A step of exactly the smallest size could be lost in rounding; a little more cannot.
inline constexpr double beyond_rounding = 1.0000009;

// Root of f(x) = 0 between two points on either side of it. False when it is not found within the steps.
template <class Function>
bool brent(const Function& f, Point low, Point high, const Stop& stop, double& x) noexcept {
  // `best` is the newest and best point, `last` the one before, `other` lies on the far side of the root.
  Point last = low, best = high, other = low;
  double step = best.x - last.x;
  double earlier_step = step;
  for (int i = 0; i < stop.max_steps; ++i) {
    if ((best.f > 0.0) == (other.f > 0.0)) {
      other = last;
      step = earlier_step = best.x - last.x;
    }
    if (std::fabs(other.f) < std::fabs(best.f)) {
      last = best;
      best = other;
      other = last;
    }
    const double smallest_step = stop.smallest_step * std::fabs(best.x);
    const double half = 0.5 * (other.x - best.x);
    bool bisect = true;
    if (std::fabs(earlier_step) >= smallest_step && std::fabs(last.f) > std::fabs(best.f)) {
      // Secant through two points, or inverse quadratic through three: step = numerator / denominator.
      const double s = best.f / last.f;
      double numerator, denominator;
      if (last.x == other.x) {
        numerator = 2.0 * half * s;
        denominator = 1.0 - s;
      } else {
        const double q = last.f / other.f;
        const double t = best.f / other.f;
        numerator = s * (2.0 * half * q * (q - t) - (best.x - last.x) * (t - 1.0));
        denominator = (q - 1.0) * (t - 1.0) * (s - 1.0);
      }
      if (numerator > 0.0) {
        denominator = -denominator;
      } else {
        numerator = -numerator;
      }
      // Only a step that stays well inside the bracket and at least halves the one before last is taken.
      if (2.0 * numerator < std::min(3.0 * half * denominator - std::fabs(smallest_step * denominator),
                                     std::fabs(earlier_step * denominator))) {
        earlier_step = step;
        step = numerator / denominator;
        bisect = false;
      }
    }
    if (bisect) step = earlier_step = half;
    if (std::fabs(best.f) < stop.f || std::fabs(step) < stop.step * std::fabs(best.x)) {
      // The step refines a point that is good already; half of a wide bracket would leave it.
      const bool leaves = bisect && std::fabs(step) >= stop.step * std::fabs(best.x);
      x = leaves ? best.x : best.x + step;
      return true;
    }
    if (std::fabs(step) < smallest_step) step = std::copysign(beyond_rounding * smallest_step, step);
    last = best;
    best.x += step;
    best.f = f(best.x);
  }
  return false;
}

}  // namespace norvane::root
