// OIML R 22 (1975), general formula.
//
//   rho(p, t) = sum A_k p^(k-1) + sum B_k (t-20)^k + sum sum C_ik p^k (t-20)^i
//
//   p  mass fraction of ethanol [-]    t  temperature [degC]    rho  density [kg/m3]
//   q  volume fraction at 20 degC = p rho(p, 20)/(density of ethanol at 20 degC)
#include "math/liquid/oiml_r22.h"

#include <array>
#include <iterator>

#include "math/liquid/liquid.h"
#include "math/liquid/rising.h"

namespace norvane::OIML_R22 {
namespace {

// clang-format off
constexpr double a[] = {  // A_1 to A_12
    998.20123, -192.9769495, 389.1238958, -1668.103923, 13522.15441, -88292.78388,
    306287.4042, -613838.1234, 747017.2998, -547846.1354, 223446.0334, -39032.85426};
constexpr double b[] = {  // B_1 to B_6
    -0.20618513, -0.0052682542, 3.6130013e-5, -3.8957702e-7, 7.169354e-9, -9.9739231e-11};
constexpr double c1[] = {  // C_1,1 to C_1,11
    0.1693443461530087, -10.46914743455169, 71.96353469546523, -704.7478054272792, 3924.090430035045,
    -12101.64659068747, 22486.46550400788, -26055.62982188164, 18523.73922069467, -7420.201433430137,
    1285.617841998974};
constexpr double c2[] = {
    -0.0119301300505701, 0.2517399633803461, -2.170575700536993, 13.53034988843029, -50.29988758547014,
    109.635566657757, -142.2753946421155, 108.043594285623, -44.14153236817392, 7.442971530188783};
constexpr double c3[] = {
    -0.0006802995733503803, 0.01876837790289664, -0.2002561813734156, 1.02299296671922, -2.895696483903638,
    4.810060584300675, -4.672147440794683, 2.458043105903461, -0.5411227621436812};
constexpr double c4[] = {
    4.075376675622027e-6, -8.76305857347111e-6, 6.515031360099368e-6, -1.51578483698721e-6};
constexpr double c5[] = {
    -2.788074354782409e-8, 1.345612883493354e-8};
// clang-format on
constexpr std::span<const double> c[] = {c1, c2, c3, c4, c5};
static_assert(std::size(a) == 12 && std::size(b) == 6);
static_assert(std::size(c1) + std::size(c2) + std::size(c3) + std::size(c4) + std::size(c5) == 36);

constexpr double ethanol_20 = 789.24;  // kg/m3, by which the volume content is defined
constexpr double coldest = -20.0, hottest = 40.0;

// The density at one temperature is a polynomial of the mass fraction.
using Polynomial = std::array<double, std::size(a)>;

constexpr Polynomial density_at(double degC) {
  const double dt = degC - 20.0;
  Polynomial k{};
  for (std::size_t i = std::size(b); i-- > 0;) k[0] = (k[0] + b[i]) * dt;
  for (std::size_t i = std::size(c); i-- > 0;) {
    for (std::size_t j = 1; j < k.size(); ++j) k[j] = (k[j] + (j <= c[i].size() ? c[i][j - 1] : 0.0)) * dt;
  }
  for (std::size_t j = 0; j < k.size(); ++j) k[j] += a[j];
  return k;
}
constexpr Polynomial density_at_20 = density_at(20.0);

template <class Number>
Number value(const Polynomial& k, Number p) {
  Number sum{k[k.size() - 1]};
  for (std::size_t i = k.size() - 1; i-- > 0;) sum = sum * p + k[i];
  return sum;
}
template <class Number>
Number volume_fraction(Number p) {
  return p * value(density_at_20, p) / ethanol_20;
}

constexpr double fractions[] = {0.0, 1.0};

// Mass fraction of a density between those of water and ethanol. It falls as the fraction rises: solved for what it
// lacks to a density above all others.
liquid::Solution fraction_of_density(const Polynomial& k, double rho, double& p) {
  constexpr double above_all = 1100.0;
  p = 0.5;
  return liquid::solve_rising([&](std::size_t, Dual u) { return above_all - value(k, u); }, fractions,
                              above_all - rho, p);
}

liquid::Solution fraction_of_volume(double q, double& p) {
  p = q;
  if (q == 0.0) return {};
  const liquid::Solution solution =
      liquid::solve_rising([](std::size_t, Dual u) { return volume_fraction(u); }, fractions, q, p);
  // The defining density is rounded: by it pure ethanol has a volume content of 99.9999 %.
  return solution.search == liquid::Search::above ? liquid::Solution{} : solution;
}

bool is_percentage(double x) { return x >= 0.0 && x <= 100.0; }

}  // namespace

Outcome calculate(const Arguments& in, Result& out) noexcept {
  if (!std::isfinite(in.temperature)) return blame(in.temperature, argument_error, u"must be a finite number");
  if (in.hydrometer) {
    return blame(in.hydrometer, argument_error,
                 u"must be 0, off: the expansion of alcohol hydrometers is not part of this build");
  }
  const Polynomial density = density_at(in.temperature);
  liquid::Solution solution;
  double p = 0.0;
  switch (in.mode) {
    case Mode::content_of_density: {
      if (liquid::outside(in.temperature, coldest, hottest))
        return blame(in.temperature, argument_error, u"must be from % to % to find the content", coldest, hottest);
      const double water = density[0], ethanol = value(density, 1.0);
      if (!(in.density >= ethanol && in.density <= water)) {
        return blame(in.density, calculation_error, u"must be from % (ethanol) to % (water) at this temperature",
                     ethanol, water);
      }
      solution = fraction_of_density(density, in.density, p);
      break;
    }
    case Mode::density_of_mass_content:
      if (!is_percentage(in.mass_content))
        return blame(in.mass_content, argument_error, u"must be from % to %", 0.0, 100.0);
      p = in.mass_content / 100.0;
      break;
    case Mode::density_of_volume_content:
      if (!is_percentage(in.volume_content))
        return blame(in.volume_content, argument_error, u"must be from % to %", 0.0, 100.0);
      solution = fraction_of_volume(in.volume_content / 100.0, p);
      break;
    default: return blame(in.mode, argument_error, u"must be from % to %", 1.0, 3.0);
  }
  if (!solution.found()) return outcome_of(solution, in.mode);

  out.density = in.mode == Mode::content_of_density ? in.density : value(density, p);
  out.mass_content = 100.0 * p;
  out.volume_content = in.mode == Mode::density_of_volume_content ? in.volume_content : 100.0 * volume_fraction(p);
  out.density_20 = value(density_at_20, p);
  out.ctl = out.density / out.density_20;
  out.out_of_range = liquid::outside(in.temperature, coldest, hottest);
  if (!liquid::positive(out.density))
    return blame(in.temperature, calculation_error, u"is too far outside % to %", coldest, hottest);
  return {};
}

constexpr CoefficientTable coefficient_tables[] = {
    rows("a", a), rows("b", b), rows("c1", c1), rows("c2", c2), rows("c3", c3), rows("c4", c4), rows("c5", c5),
};
constinit const CoefficientSet coefficient_set{"OIML R 22", "OIML R 22 (1975), general formula", coefficient_tables};

}  // namespace norvane::OIML_R22
