#include "math/common/composition.h"

#include <algorithm>
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

double sum_of(std::span<const double> amounts) noexcept {
  double sum = 0.0;
  for (double amount : amounts) sum += amount;
  return sum;
}

Outcome prepare(const std::array<double, 22>& given, NeoPentaneMode mode, int sum_status,
                std::array<double, 21>& x) noexcept {
  constexpr std::size_t i_pentane = 12, n_pentane = 13;
  std::copy_n(given.begin(), x.size(), x.begin());
  if (mode == neglect) {
    const double sum = sum_of(given);
    if (!(sum >= 0.9999 && sum <= 1.0001))
      return blame(given, sum_status, u"sums to %, not to 1 within 0.0001, which neglecting neo-pentane asks for",
                   sum);
  } else {
    x[mode == add_to_i_pentane ? i_pentane : n_pentane] += given.back();
  }
  const Result result = normalise(x);
  if (result == ok || (mode == neglect && result == sum_off)) return {};
  return judge(result, given, sum_of(given), sum_status);
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
