// ISO 20765-5, viscosity.
//
//   x_i   mole fraction [-]                    M_i, M     molar mass [kg/kmol]
//   T     temperature [K]                      T_ci, T_c  critical temperature [K]
//   D     molar density [kmol/m3]              p_ci, p_c  critical pressure [MPa]
//   eta   viscosity [mPa s]                    rho_ci     critical molar density [kmol/m3]
//   M, T_c and p_c of the mixture are the means over the mole fractions.
//
//   N(M, T_c, p_c) = 1e-4 M^(1/2) T_c^(-1/6) (p_c/0.101325)^(2/3)
//   eta_i = N_i 3.4 Tr^0.94,  Tr = T/T_ci <= 1.5;   eta_i = N_i 1.778 (4.58 Tr - 1.67)^0.625 above
//   eta_0 = sum x_i eta_i sqrt(M_i) / sum x_i sqrt(M_i)
//   rho_r = D sum x_i/rho_ci
//   delta = 1.023 + 0.23364 rho_r + 0.58533 rho_r^2 - 0.40758 rho_r^3 + 0.093324 rho_r^4
//   eta   = eta_0 + N (delta^4 - 1)
#include "math/gas/gas_viscosity.h"

#include <cmath>

#include "core/elementary.h"

namespace norvane::ISO20765_5 {
namespace {

// clang-format off
struct Component { double M, rho_c, T_c, p_c; };
// Constants of ISO 20765-5, in the order of AGA-8.
constexpr Component components[] = {
    { 16.04246, 10.139342719,  190.564,  4.5992},  // methane
    {  28.0134,      11.1839,  126.192,  3.3958},  // nitrogen
    {  44.0095, 10.624978698, 304.1282,  7.3773},  // carbon dioxide
    { 30.06904,   6.87085454,  305.322,  4.8722},  // ethane
    { 44.09562,  5.000043088,  369.825,  4.2512},  // propane
    { 18.01528,  17.87371609,  647.096,  22.064},  // water
    { 34.08088,        10.19,    373.1,     9.0},  // hydrogen sulfide
    {  2.01588,        14.94,    33.19,  1.2964},  // hydrogen
    {  28.0101,        10.85,   132.86,   3.494},  // carbon monoxide
    {  31.9988,        13.63,  154.595,   5.043},  // oxygen
    {  58.1222,   3.86014294,  407.817,   3.629},  // i-butane
    {  58.1222,  3.920016792,  425.125,   3.796},  // n-butane
    { 72.14878,        3.271,   460.35,   3.378},  // i-pentane
    { 72.14878,  3.215577588,    469.7,    3.37},  // n-pentane
    { 86.17536,  2.705877875,   507.82,   3.034},  // n-hexane
    {100.20194,  2.315324434,   540.13,   2.736},  // n-heptane
    {114.22852,  2.056404127,   569.32,   2.497},  // n-octane
    { 128.2551,         1.81,   594.55,   2.281},  // n-nonane
    {142.28168,         1.64,    617.7,   2.103},  // n-decane
    { 4.002602,       17.399,   5.1953,  0.2276},  // helium
    {   39.948, 13.407429659,  150.687,   4.863},  // argon
};
// clang-format on
static_assert(std::size(components) == AGA8::component_count);

// N [mPa s]: what the viscosity of a gas with this molar mass and critical point is counted in.
double viscosity_unit(double M, double T_c, double p_c) noexcept {
  // (p_c/p_0)^(2/3)/T_c^(1/6) as one power: (p_c^4/T_c)^(1/6).
  const double p = p_c / 0.101325, p2 = p * p;
  return 1e-4 * std::sqrt(M) * elementary::pow(p2 * p2 / T_c, 1.0 / 6.0);
}

struct Units {
  std::array<double, AGA8::component_count> N;     // [mPa s]
  std::array<double, AGA8::component_count> root;  // sqrt(M_i)
  Units() noexcept {
    for (std::size_t i = 0; i < AGA8::component_count; ++i) {
      const Component& c = components[i];
      N[i] = viscosity_unit(c.M, c.T_c, c.p_c);
      root[i] = std::sqrt(c.M);
    }
  }
};
const Units& units() noexcept {
  static const Units table;
  return table;
}

// x^0.625: roots and products.
double power_5_8(double x) noexcept {
  const double half = std::sqrt(x);
  return half * std::sqrt(std::sqrt(half));
}

double viscosity(const AGA8::Composition& x, double T, double D) noexcept {
  const Units& table = units();
  double weighted = 0.0, weights = 0.0, volume = 0.0, M = 0.0, T_c = 0.0, p_c = 0.0;
  for (std::size_t i = 0; i < AGA8::component_count; ++i) {
    if (x[i] == 0.0) continue;
    const Component& c = components[i];
    const double Tr = T / c.T_c;
    const double reduced = Tr <= 1.5 ? 3.4 * elementary::pow(Tr, 0.94) : 1.778 * power_5_8(4.58 * Tr - 1.67);
    const double weight = x[i] * table.root[i];
    weighted += weight * table.N[i] * reduced;
    weights += weight;
    volume += x[i] / c.rho_c;
    M += x[i] * c.M;
    T_c += x[i] * c.T_c;
    p_c += x[i] * c.p_c;
  }
  const double r = D * volume;
  const double delta = 1.023 + r * (0.23364 + r * (0.58533 + r * (-0.40758 + r * 0.093324)));
  const double delta2 = delta * delta;
  return weighted / weights + viscosity_unit(M, T_c, p_c) * (delta2 * delta2 - 1.0);
}

}  // namespace

Outcome calculate(const Arguments& in, Result& out, Cache& cache) noexcept {
  if (!(in.pressure >= 0.0) || !std::isfinite(in.pressure))
    return blame(in.pressure, argument_error, u"must not be below %", 0.0);
  if (!(in.temperature > 0.0) || !std::isfinite(in.temperature))
    return blame(in.temperature, argument_error, u"must be above %", 0.0);
  AGA8::Composition x;
  if (const Outcome bad =
          composition::prepare(in.composition, composition::add_to_i_pentane, AGA8::composition_error, x);
      !bad.good())
    return bad;
  out.molar_density = 0.0;
  if (in.pressure > 0.0) {
    AGA8::State state;
    if (cache.detail.calculate(x, in.temperature, in.pressure, state) != AGA8::converged)
      return blame(in.pressure, calculation_error, u"is reached by no gas density at this temperature");
    out.molar_density = state.molar_density;
  }
  out.viscosity = 1e-3 * viscosity(x, in.temperature, out.molar_density);
  if (!(out.viscosity > 0.0) || !std::isfinite(out.viscosity))
    return failure(calculation_error, u"the viscosity is no positive number at a density of % kmol/m3",
                   out.molar_density);
  constexpr double lowest = -20.0 + 273.15, highest = 40.0 + 273.15;
  out.out_of_range = !(in.temperature >= lowest && in.temperature <= highest && in.pressure <= 10.0);
  return {};
}

constexpr CoefficientTable coefficient_tables[] = {
    rows("components", components),
};
constinit const CoefficientSet coefficient_set{"ISO 20765-5", "ISO 20765-5, component constants", coefficient_tables};

}  // namespace norvane::ISO20765_5
