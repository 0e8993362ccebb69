// API 2540 (1980), equations of Tables 5, 6, 23, 24, 53 and 54.
//
//   rho    density at the base temperature [kg/m3]         dt   temperature less base temperature [degF or degC]
//   alpha  K0/rho^2 + K1/rho + K2 [1/degF or 1/degC]       CTL  exp(-alpha dt (1 + 0.8 alpha dt))
#include "math/liquid/api_11_1_1980.h"

#include <iterator>
#include <limits>

#include "math/liquid/rising.h"

namespace norvane::API_11_1_1980 {
namespace {

using namespace liquid;

constexpr double infinity = std::numeric_limits<double>::infinity();

// The groups of Table B in the order of their densities, then crude oil (A) and lubricating oil (D).
// clang-format off
constexpr Expansion::Group groups_degF60[] = {
    {Product::gasoline,        { 192.4571, 0.2438,  0.0      }},
    {Product::transition,      {1489.067,  0.0,    -0.0018684}},
    {Product::jet_fuel,        { 330.3010, 0.0,     0.0      }},
    {Product::fuel_oil,        { 103.8720, 0.2701,  0.0      }},
    {Product::crude,           { 341.0957, 0.0,     0.0      }},
    {Product::lubricating_oil, {   0.0,    0.34878, 0.0      }},
};
constexpr Expansion::Group groups_degC15[] = {
    {Product::gasoline,        { 346.4228,  0.4388,  0.0       }},
    {Product::transition,      {2680.3206,  0.0,    -0.00336312}},
    {Product::jet_fuel,        { 594.5418,  0.0,     0.0       }},
    {Product::fuel_oil,        { 186.9696,  0.4862,  0.0       }},
    {Product::crude,           { 613.9723,  0.0,     0.0       }},
    {Product::lubricating_oil, {   0.0,     0.6278,  0.0       }},
};
// clang-format on
static_assert(std::size(groups_degF60) == std::size(groups_degC15));

constexpr double rho_of_gravity(double api) { return water_1980.density_of_gravity(api); }

// Where the groups of 'Refined, auto' meet, by the base density: 52.0, 48.0 and 37.0 degAPI; at 15 degC the
// corresponding densities, each inside the gap that the printed tables leave between two groups. The transition zone
// includes both of its edges.
constexpr double refined_degF60[] = {0.0, rho_of_gravity(52.0), rho_of_gravity(48.0), rho_of_gravity(37.0), infinity};
constexpr double refined_degC15[] = {0.0, 770.355, 787.522, 838.933, infinity};
constexpr double one_band[] = {0.0, infinity};

std::size_t index_of(Product product) {
  switch (product) {
    case Product::transition: return 1;
    case Product::jet_fuel: return 2;
    case Product::fuel_oil: return 3;
    case Product::crude: return 4;
    case Product::lubricating_oil: return 5;
    default: return 0;  // gasoline, and the first group of `refined`
  }
}

// Extent of the tables: what is printed, and up to which temperature it is extrapolated.
struct Extent {
  double lightest;     // kg/m3
  double printed_to;   // degF
  double extended_to;  // degF
};
// To 40, 50 and from there to the lightest; the densities at 15 degC differ by less than the tables' steps.
constexpr Extent extents[] = {
    {rho_of_gravity(40.0), 250.0, 300.0}, {rho_of_gravity(50.0), 200.0, 250.0}, {0.0, 150.0, 200.0}};
constexpr double coldest = 0.0;  // degF
// 0 degAPI to 85 degAPI (B) and 100 degAPI (A); Table 54 prints 653 to 1075 kg/m3.
struct Densities {
  double lightest_crude, lightest_refined, heaviest;  // kg/m3
};
constexpr Densities densities_degF60 = {rho_of_gravity(100.0), rho_of_gravity(85.0), rho_of_gravity(0.0)};
constexpr Densities densities_degC15 = {rho_of_gravity(100.0), 653.0, 1075.0};
// Lubricating oil.
constexpr double oil_low = 800.0, oil_high = 1164.0;       // kg/m3
constexpr double oil_coldest = -4.0, oil_hottest = 302.0;  // degF; -20 to 150 degC

Outcome check(const Observation& o) {
  if (!positive(o.density)) return blame(o.density, argument_error, not_a_density);
  if (!std::isfinite(o.temperature)) return blame(o.temperature, argument_error, not_finite);
  return check_options(o.product, o.rounding);
}

Outcome to_base(Base base, const Observation& o, double hydrometer_factor, Correction& out) {
  if (const Outcome outcome = check(o); !outcome.good()) return outcome;
  const Expansion expansion(base, o.product, o.temperature);
  const double factor = o.hydrometer ? hydrometer_factor : 1.0;
  const double observed = o.density * factor;
  double rho = observed;
  const Solution solution = solve_rising([&](std::size_t band, Dual u) { return u * expansion.ctl(band, u); },
                                         expansion.edges(), observed, rho);
  if (!solution.found()) return outcome_of(solution, o.density, factor);
  return correct(expansion, rho, out);
}

Outcome from_base(Base base, const Observation& o, Correction& out) {
  if (const Outcome outcome = check(o); !outcome.good()) return outcome;
  return correct(Expansion(base, o.product, o.temperature), o.density, out);
}

}  // namespace

Expansion::Expansion(Base base, Product product, double t) noexcept
    : first_((base == Base::degF60 ? groups_degF60 : groups_degC15) + index_of(product)),
      edges_(one_band),
      t_(t),
      dt_(t - (base == Base::degF60 ? base_60F : base_15C)),
      base_(base),
      product_(product) {
  if (product == Product::refined) {
    edges_ = base == Base::degF60 ? std::span<const double>(refined_degF60) : std::span<const double>(refined_degC15);
  }
}

std::size_t Expansion::band_of(double rho) const noexcept {
  if (edges_.size() == std::size(one_band) || rho < edges_[1]) return 0;
  if (rho <= edges_[2]) return 1;
  return rho < edges_[3] ? 2 : 3;
}

Range Expansion::range(double rho) const noexcept {
  const double degF = base_ == Base::degF60 ? t_ : degF_of_degC(t_);
  if (product_ == Product::lubricating_oil) {
    return outside(rho, oil_low, oil_high) || outside(degF, oil_coldest, oil_hottest) ? Range::out_of_range
                                                                                      : Range::in_range;
  }
  const Densities& limits = base_ == Base::degF60 ? densities_degF60 : densities_degC15;
  const double lightest = product_ == Product::crude ? limits.lightest_crude : limits.lightest_refined;
  const Extent* extent = extents;
  while (rho < extent->lightest - limit_tolerance) ++extent;
  if (outside(rho, lightest, limits.heaviest) || outside(degF, coldest, extent->extended_to))
    return Range::out_of_range;
  return degF > extent->printed_to + limit_tolerance ? Range::extended : Range::in_range;
}

Outcome check_options(const Product& product, const Rounding& rounding) noexcept {
  if (!known(product)) return blame(product, argument_error, unknown_product, 1, 7);
  if (rounding != Rounding::disabled) return blame(rounding, argument_error, no_rounding);
  return {};
}

Outcome correct(const Expansion& expansion, double rho, Correction& out) noexcept {
  const std::size_t band = expansion.band_of(rho);
  out.base_density = rho;
  out.k = expansion.constants(band);
  out.alpha = expansion.alpha(band, rho);
  out.ctl = expansion.ctl(band, rho);
  out.product = expansion.product(band);
  out.range = expansion.range(rho);
  return positive(out.ctl) && std::isfinite(out.alpha) ? Outcome{} : failure(calculation_error, no_ctl);
}

Outcome to_60F(const Observation& o, Correction& out) noexcept {
  return to_base(Base::degF60, o, hydrometer_factor_degF(o.temperature), out);
}
Outcome from_60F(const Observation& o, Correction& out) noexcept { return from_base(Base::degF60, o, out); }
Outcome to_15C(const Observation& o, Correction& out) noexcept {
  return to_base(Base::degC15, o, hydrometer_factor_degC(o.temperature), out);
}
Outcome from_15C(const Observation& o, Correction& out) noexcept { return from_base(Base::degC15, o, out); }

constexpr CoefficientTable coefficient_tables[] = {
    rows("groups_degF60", groups_degF60),
    rows("groups_degC15", groups_degC15),
};
constinit const CoefficientSet coefficient_set{
    "API 2540 (1980)", "API 2540 (1980), ASTM D1250-80: constants of the product groups", coefficient_tables};

}  // namespace norvane::API_11_1_1980
