// ASTM D1250-52 (IP 200/52): Tables 5, 6, 23, 24, 53 and 54, by the equation from which the tables were printed, for
// relative densities 60/60 degF from 0.600 to 1.100. The tables of lighter liquids are not available.
//
// Base temperature 60 degF (temperatures in degF), Tables 53 and 54 15 degC (degC).
//
// Pure functions of numbers; nothing throws, nothing is kept between calls.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "core/coefficients.h"
#include "math/common/dual.h"
#include "math/liquid/liquid.h"
#include "math/liquid/rising.h"

namespace norvane::API_11_1_1952 {

// S(T) = S + (a1 + a2 S) dt + (b1 + b2 S) dt^2: the relative density at T, referred to water at 60 degF, of a liquid
// of relative density S at 60 degF. Constants by bands of S, to which their upper edges belong.
struct Band {
  double a1, a2;  // 1/degF
  double b1, b2;  // 1/degF^2
};
extern const std::array<Band, 15> bands;

// Edges of the bands. The metric tables begin at 600 kg/m3, where S is below 0.600.
std::span<const double> edges_60F() noexcept;
std::span<const double> edges_15C() noexcept;
std::size_t band_of(double s) noexcept;

// The expansion at one temperature [degF].
class Expansion {
 public:
  constexpr explicit Expansion(double degF) : dt_(degF - liquid::base_60F) {}

  template <class Number>
  constexpr Number at(std::size_t band, Number s) const noexcept {
    const Band& k = bands[band];
    return s + ((k.a1 + k.a2 * s) + (k.b1 + k.b2 * s) * dt_) * dt_;
  }

 private:
  double dt_;  // degF
};

inline constexpr Expansion at_15C(liquid::base_15C_in_degF);

// The S between the first and the last edge that has this S(T). At three edges S(T) jumps by 7e-7 per degF and may be
// met twice or not at all: then the largest S whose S(T) does not exceed it.
liquid::Solution relative_density_60(std::span<const double> edges, const Expansion& expansion, double s_t,
                                     double& s) noexcept;

struct Observation {
  double density = 0.0;      // observed or at the base: relative density, Tables 53 and 54 kg/m3
  double temperature = 0.0;  // degF or degC
};
struct Correction {
  double base_density = 0.0;  // as the argument
  double ctl = 0.0;
  bool out_of_range = false;  // beyond the printed tables, the equation still holds
};

// Errors: argument_error for what is not finite, a density that is not positive; calculation_error where the relative
// density at 60 degF lies outside the equation, or where CTL is no positive number.
Outcome to_60F(const Observation& o, Correction& out) noexcept;    // Tables 5 and 23
Outcome from_60F(const Observation& o, Correction& out) noexcept;  // Tables 6 and 24
Outcome to_15C(const Observation& o, Correction& out) noexcept;    // Table 53
Outcome from_15C(const Observation& o, Correction& out) noexcept;  // Table 54

// What the composites need of it: the correction of a known S.
Outcome check_60F(const double& s) noexcept;
Outcome correct_60F(double s, double degF, Correction& out) noexcept;
Outcome correct_15C(double s, double degC, Correction& out) noexcept;

extern const CoefficientSet coefficient_set;

}  // namespace norvane::API_11_1_1952
