// The search of math/common/root.h for several functions side by side, one a lane.
//
// A lane takes the steps of the lone search, operation by operation, and stands still once it has arrived, so that its
// root has the bits of the lone search whatever its neighbours do. A lane that fails, or needs more steps than is usual,
// is left to the lone search.
#pragma once

#include "core/lanes.h"
#include "math/common/root.h"

namespace norvane::root {

// March and Brent's method; `f_stop` is Stop::f, the other limits are the usual ones. Answers the lanes with a root x.
template <class Value, class Function>
[[gnu::always_inline]] inline lanes::MaskOf<Value> search(const Function& f, Value target, Value start, Value limit,
                                                          Value least_step, Value f_stop, Value& x) noexcept {
  using Mask = lanes::MaskOf<Value>;
  using lanes::magnitude;
  using lanes::select;
  constexpr int most_rounds = 60;
  constexpr Stop stop{.f = 0.0};

  Mask active = start == start;  // no lane has a NaN for long
  Mask marching = active;
  Mask found{}, clipped{};
  Value last_x{}, last_f{}, best_x = start, best_f{}, other_x{}, other_f{};
  Value step = start / march_first_step, earlier_step = step;
  x = start;
  const auto clip = [&](Mask lanes_marching) {
    const Mask now = lanes_marching & ~clipped & (best_x > limit);
    const Value rest = (limit - last_x) * march_share_of_rest + least_step;
    step = select(now, rest, step);
    best_x = select(now, last_x + rest, best_x);
    clipped |= now;
  };
  clip(marching);
  for (int round = 0; round < most_rounds; ++round) {
    const Value value = f(best_x);
    const Mask above = marching & (value > target);
    const Mask onward = marching & ~above & (value > last_f);
    active &= ~marching | above | onward;
    // Brent's method starts between the last two points of the march, or goes on.
    const Mask refining = active & ~onward;
    best_f = value - target;
    if (lanes::any(refining)) {
      last_f = select(above, last_f - target, last_f);
      other_x = select(above, last_x, other_x);
      other_f = select(above, last_f, other_f);
      const Value width = best_x - last_x;
      step = select(above, width, step);
      earlier_step = select(above, width, earlier_step);

      const Mask one_side = refining & ~((best_f > 0.0) ^ (other_f > 0.0));
      other_x = select(one_side, last_x, other_x);
      other_f = select(one_side, last_f, other_f);
      step = select(one_side, width, step);
      earlier_step = select(one_side, width, earlier_step);

      const Mask exchange = refining & (magnitude(other_f) < magnitude(best_f));
      last_x = select(exchange, best_x, last_x);
      last_f = select(exchange, best_f, last_f);
      best_x = select(exchange, other_x, best_x);
      best_f = select(exchange, other_f, best_f);
      other_x = select(exchange, last_x, other_x);
      other_f = select(exchange, last_f, other_f);

      const Value smallest_step = stop.smallest_step * magnitude(best_x);
      const Value half = 0.5 * (other_x - best_x);
      const Mask fit = (magnitude(earlier_step) >= smallest_step) & (magnitude(last_f) > magnitude(best_f));
      const Value s = best_f / last_f;
      const Value q = last_f / other_f;
      const Value t = best_f / other_f;
      const Mask secant = last_x == other_x;
      Value numerator =
          select(secant, 2.0 * half * s, s * (2.0 * half * q * (q - t) - (best_x - last_x) * (t - 1.0)));
      Value denominator = select(secant, 1.0 - s, (q - 1.0) * (t - 1.0) * (s - 1.0));
      const Mask positive = numerator > 0.0;
      denominator = select(positive, -denominator, denominator);
      numerator = select(positive, numerator, -numerator);
      const Value inside = 3.0 * half * denominator - magnitude(smallest_step * denominator);
      const Value halved = magnitude(earlier_step * denominator);
      const Mask interpolate = fit & (2.0 * numerator < select(halved < inside, halved, inside));
      const Value interpolated = numerator / denominator;
      earlier_step = select(refining, select(interpolate, step, half), earlier_step);
      step = select(refining, select(interpolate, interpolated, half), step);

      const Value size = stop.step * magnitude(best_x);
      const Mask short_step = magnitude(step) < size;
      const Mask arrived = refining & ((magnitude(best_f) < f_stop) | short_step);
      const Mask leaves = ~interpolate & (magnitude(step) >= size);
      x = select(arrived, select(leaves, best_x, best_x + step), x);
      found |= arrived;
      active &= ~arrived;
      if (!lanes::any(active)) break;
      const Mask too_short = refining & (magnitude(step) < smallest_step);
      step = select(too_short, lanes::with_sign(beyond_rounding * smallest_step, step), step);
    }
    // The next point.
    step = select(onward & ~clipped, 2.0 * step, step);
    last_x = select(active, best_x, last_x);
    last_f = select(active, select(onward, value, best_f), last_f);
    best_x = select(active, best_x + step, best_x);
    marching = onward;
    clip(marching);
    if (!lanes::any(active)) break;
  }
  return found;
}

}  // namespace norvane::root
