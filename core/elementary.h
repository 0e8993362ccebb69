// exp, log and pow as the calculations use them.
#pragma once

#include <cmath>

namespace norvane::elementary {

inline double exp(double x) noexcept {
  return std::exp(x);
}
inline double log(double x) noexcept {
  return std::log(x);
}
inline double pow(double x, double y) noexcept {
  return std::pow(x, y);
}

}  // namespace norvane::elementary
