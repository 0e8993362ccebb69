// GERG-2008: density from pressure.
//
// Above a certain temperature the pressure rises with density all the way. Below it an isotherm has a vapour branch
// that begins at density zero and ends where the pressure stops rising, a liquid branch that comes down from high
// density, and between them loops without meaning, rising ones among them. The two branches are followed from their
// own ends, in steps too short to miss a loop.

#include <algorithm>
#include <cmath>

#include "math/gas/gerg.h"
#include "math/gas/gerg_terms.h"

namespace norvane::GERG2008 {
namespace {

constexpr double longest_step = 0.15;  // in delta; the loops are three times as wide
constexpr double narrowest = 0.005;    // in delta; where the search for a fall of the pressure ends
constexpr int max_steps = 100;

struct Place {
  double rho;
  double p;      // [MPa]
  double slope;  // dp/drho [MPa m3/kmol]
};

class DensitySearch {
 public:
  DensitySearch(const Isotherm& isotherm, double p) noexcept : isotherm_(isotherm), p_(p) {}

  // The density that the virial equation up to the third coefficient has, near it, or the ideal gas's.
  double estimate() const noexcept {
    double b = 0.0, c = 0.0;
    for (std::size_t s = 0; s < slot_count; ++s) {
      b += virial.b[s] * isotherm_.n[s];
      c += virial.c[s] * isotherm_.n[s];
    }
    const double ideal = p_ * isotherm_.v_r / isotherm_.RT;
    double delta = ideal;
    for (int i = 0; i < 4; ++i) {
      const double slope = 1.0 + delta * (2.0 * b + 3.0 * c * delta);
      if (!(slope > 0.1)) break;
      const double next = delta - (delta * (1.0 + delta * (b + c * delta)) - ideal) / slope;
      if (!(next > 0.2 * ideal && next < 5.0 * ideal)) break;
      delta = next;
    }
    return delta / isotherm_.v_r;
  }

  Place at(double rho) const noexcept {
    const Isotherm::Point point = isotherm_.at(rho);
    return {rho, rho * isotherm_.RT * point.z, isotherm_.RT * point.dp_drho};
  }

  // Newton's method between two densities with the pressure rising from below p to above it.
  bool polish(double low, double high, Place now, double& rho) const noexcept {
    for (int i = 0; i < max_steps; ++i) {
      if (!(now.slope > 0.0)) return false;
      const double next = now.rho + (p_ - now.p) / now.slope;
      if (std::fabs(next - now.rho) <= settled * now.rho) {
        rho = next;
        return true;
      }
      (now.p < p_ ? low : high) = now.rho;
      now = at(next > low && next < high ? next : 0.5 * (low + high));
    }
    return false;
  }

  // Follows a branch from one end toward the pressure sought as long as the pressure rises with density.
  bool follow(Place now, double first, double& rho) const noexcept {
    const bool upward = now.p < p_;
    const double longest = longest_step / isotherm_.v_r;
    double barrier = upward ? highest_delta / isotherm_.v_r : 0.0;  // a density where the pressure does not rise
    double next = first;
    for (int i = 0; i < max_steps; ++i) {
      const double step = next - now.rho;
      if (std::fabs(step) <= settled * now.rho) {
        rho = next;
        return true;
      }
      if (std::fabs(step) > longest) next = now.rho + std::copysign(longest, step);
      if (upward ? next >= barrier : next <= barrier) {
        // The branch bends toward its end, so that its tangent passes the pressure sought before it does itself.
        const double reach = (next - now.rho) / (barrier - now.rho);
        if (!(reach < 1.5) || std::fabs(barrier - now.rho) <= settled * now.rho) return false;
        next = 0.5 * (now.rho + barrier);
      }
      const Place there = at(next);
      double fall = 0.0;
      if (!(there.slope > 0.0)) {
        barrier = next;
      } else if (falls_between(now, there, fall)) {
        barrier = fall;
      } else {
        if ((there.p < p_) != upward) return polish(std::min(now.rho, next), std::max(now.rho, next), there, rho);
        now = there;
      }
      next = now.rho + (p_ - now.p) / now.slope;
    }
    return false;
  }

 private:
  // Whether the pressure falls somewhere between two places where it rises. The cubic through both has no fall when
  // its slopes are below three times the mean one; else the middle is looked at.
  bool falls_between(const Place& a, const Place& b, double& where) const noexcept {
    const double mean = (b.p - a.p) / (b.rho - a.rho);
    constexpr double steep = 2.5;
    if (a.slope < steep * mean && b.slope < steep * mean) return false;
    if (std::fabs(b.rho - a.rho) * isotherm_.v_r < narrowest) {
      where = b.rho;
      return !(mean > 0.0);
    }
    const Place middle = at(0.5 * (a.rho + b.rho));
    if (!(middle.slope > 0.0)) {
      where = middle.rho;
      return true;
    }
    return falls_between(a, middle, where) || falls_between(middle, b, where);
  }

  const Isotherm& isotherm_;
  double p_;
};

}  // namespace

bool Isotherm::has_one_root() const noexcept { return tau * loopless < 1.0; }

bool Isotherm::vapour_density(double p, double& rho) const noexcept {
  if (!(p > 0.0 && RT > 0.0)) return false;
  const DensitySearch search(*this, p);
  const double start = search.estimate();
  if (has_one_root()) return search.polish(0.0, highest_delta / v_r, search.at(start), rho);
  return search.follow({0.0, 0.0, RT}, start, rho);
}

bool Isotherm::liquid_density(double p, double& rho) const noexcept {
  if (!(p > 0.0 && RT > 0.0)) return false;
  if (has_one_root()) return vapour_density(p, rho);
  // A little above the density of any liquid at low pressure, and up from there when the pressure is high.
  constexpr double intercept = 4.2, fall = 2.1;
  constexpr double raise = 1.1;
  const DensitySearch search(*this, p);
  Place top = search.at(std::max(intercept - fall / tau, 1.0) / v_r);
  while (top.p < p) {
    if (!(top.rho * v_r < highest_delta)) return false;
    top = search.at(raise * top.rho);
  }
  if (!(top.slope > 0.0)) return false;
  return search.follow(top, top.rho + (p - top.p) / top.slope, rho);
}

bool Isotherm::loop_density(double p, double& rho) const noexcept {
  constexpr double step = 0.02;  // in delta
  const DensitySearch search(*this, p);
  Place last{0.0, 0.0, RT};
  for (double delta = step; delta < highest_delta; delta += step) {
    const Place now = search.at(delta / v_r);
    if (last.p < p && now.p >= p && search.polish(last.rho, now.rho, now, rho)) return true;
    last = now;
  }
  return false;
}

bool Isotherm::density_near(double p, double guess, double& rho) const noexcept {
  constexpr double far = 0.05;  // relative; a root further away may be another one
  const DensitySearch search(*this, p);
  Place now = search.at(guess);
  for (int i = 0; i < 6; ++i) {
    if (!(now.slope > 0.0)) return false;
    const double next = now.rho + (p - now.p) / now.slope;
    if (!(std::fabs(next - guess) <= far * guess)) return false;
    if (std::fabs(next - now.rho) <= settled * now.rho) {
      rho = next;
      return true;
    }
    now = search.at(next);
  }
  return false;
}

}  // namespace norvane::GERG2008
