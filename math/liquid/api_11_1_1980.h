// API 2540 (1980) (API MPMS 11.1:1980, ASTM D1250-80, IP 200/80): Tables 5, 6, 23, 24, 53 and 54 for crude oil (A),
// refined products (B) and lubricating oil (D).
//
// Tables 5, 23 and 53 find the base density of an observed one, Tables 6, 24 and 54 the factor CTL of a base density.
// Base temperature 60 degF (temperatures in degF), Tables 53 and 54 15 degC (degC). Full precision: the stepwise
// rounding of the printed tables is refused.
//
// Pure functions of numbers; nothing throws, nothing is kept between calls.
#pragma once

#include <cstddef>
#include <span>

#include "core/coefficients.h"
#include "math/common/dual.h"
#include "math/liquid/liquid.h"

namespace norvane::API_11_1_1980 {

enum class Base { degF60, degC15 };

// The expansion of one product at one temperature, as a function of the base density. Bands are the groups of
// 'Refined, auto'; every other product has one.
class Expansion {
 public:
  // t in degF or degC, as the base says; finite. product: one of the list.
  Expansion(Base base, liquid::Product product, double t) noexcept;

  Base base() const noexcept { return base_; }
  // Where base density and temperature lie against the tables' extent.
  liquid::Range range(double rho) const noexcept;

  std::span<const double> edges() const noexcept { return edges_; }
  std::size_t band_of(double rho) const noexcept;
  liquid::Product product(std::size_t band) const noexcept { return first_[band].product; }
  const liquid::Constants& constants(std::size_t band) const noexcept { return first_[band].k; }

  template <class Number>
  Number alpha(std::size_t band, Number rho) const noexcept {
    const liquid::Constants& k = constants(band);
    const Number inverse = 1.0 / rho;
    return (k.k0 * inverse + k.k1) * inverse + k.k2;
  }
  template <class Number>
  Number ctl(std::size_t band, Number rho) const noexcept {
    const Number x = alpha(band, rho) * dt_;
    return exponential(-(x * (1.0 + 0.8 * x)));
  }

  struct Group {
    liquid::Product product;
    liquid::Constants k;
  };

 private:
  const Group* first_;
  std::span<const double> edges_;
  double t_;
  double dt_;  // t less base temperature
  Base base_;
  liquid::Product product_;
};

// Rounding of the printed tables: only `disabled` is calculated.
enum class Rounding : int { disabled = 0, enabled = 1, table_values = 2, five_decimals = 3 };
inline constexpr const char16_t* no_rounding =
    u"must be 0, disabled: the stepwise rounding of the printed tables is not part of this build";

struct Observation {
  double density = 0.0;      // kg/m3, observed or at the base temperature
  double temperature = 0.0;  // degF or degC
  liquid::Product product = liquid::Product::crude;
  bool hydrometer = false;  // the observed density is the reading of a glass hydrometer
  Rounding rounding = Rounding::disabled;
};

struct Correction {
  double base_density = 0.0;  // kg/m3
  double ctl = 0.0;
  liquid::Constants k{};
  double alpha = 0.0;                                // thermal expansion at the base temperature, 1/degF or 1/degC
  liquid::Product product = liquid::Product::crude;  // whose constants were used
  liquid::Range range = liquid::Range::in_range;
};

// Errors: argument_error for a density or temperature that is not finite, a density that is not positive, a product
// or rounding outside what is offered; calculation_error where CTL is no positive number; no_convergence (to a base).
Outcome to_60F(const Observation& o, Correction& out) noexcept;    // Tables 5 and 23
Outcome from_60F(const Observation& o, Correction& out) noexcept;  // Tables 6 and 24; no hydrometer
Outcome to_15C(const Observation& o, Correction& out) noexcept;    // Table 53
Outcome from_15C(const Observation& o, Correction& out) noexcept;  // Table 54; no hydrometer

// What the composites need of it.
Outcome check_options(const liquid::Product& product, const Rounding& rounding) noexcept;
Outcome correct(const Expansion& expansion, double rho, Correction& out) noexcept;

extern const CoefficientSet coefficient_set;

}  // namespace norvane::API_11_1_1980
