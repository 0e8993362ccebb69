#include "math/common/composition.h"

#include <cmath>

namespace norvane::composition {
namespace {

// Windows within which a sum counts as fractions or as percent.
bool in_window(double sum) noexcept { return (sum >= 0.9999 && sum <= 1.0001) || (sum >= 99.99 && sum <= 100.01); }

}  // namespace

Result normalise(std::span<double> amounts) noexcept {
  if (amounts.empty()) return invalid;
  double sum = 0.0;
  for (double amount : amounts) {
    if (!(amount >= 0.0)) return negative;
    sum += amount;
  }
  if (sum < 1e-6 || !std::isfinite(sum)) return invalid;
  for (double& amount : amounts) amount /= sum;
  return in_window(sum) ? ok : sum_off;
}

Result check_sum(std::span<const double> amounts) noexcept {
  if (amounts.empty()) return invalid;
  double sum = 0.0;
  for (double amount : amounts) {
    if (!(amount >= 0.0)) return negative;
    sum += amount;
  }
  return in_window(sum) ? ok : sum_off;
}

}  // namespace norvane::composition
