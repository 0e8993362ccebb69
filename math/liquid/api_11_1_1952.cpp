// ASTM D1250-52, the equation of the tables (Table III of the ASTM-IP report on them).
//
//   S     relative density 60/60 degF [-]       S(T)  relative density at T, referred to water at 60 degF [-]
//   CTL = S(T)/S, metric S(T)/S(59 degF)        rho15 = 999.042 S(59 degF) [kg/m3]
#include "math/liquid/api_11_1_1952.h"

#include <cmath>
#include <iterator>

namespace norvane::API_11_1_1952 {

using namespace liquid;

// clang-format off
const std::array<Band, 15> bands = {{
    {-0.001361,  0.00130,   -4.9e-7,   6.0e-7},   // 0.600 to 0.620
    {-0.001237,  0.00110,   -4.9e-7,   6.0e-7},
    {-0.001077,  0.00085,   -4.9e-7,   6.0e-7},
    {-0.001011,  0.00075,   -4.9e-7,   6.0e-7},
    {-0.000977,  0.00070,   -4.9e-7,   6.0e-7},
    {-0.001005,  0.00074,   -4.9e-7,   6.0e-7},   // 0.700
    {-0.001238,  0.00105,   -4.9e-7,   6.0e-7},
    {-0.001084,  0.00085,   -4.9e-7,   6.0e-7},
    {-0.000965,  0.00070,   -4.9e-7,   6.0e-7},
    {-0.0008435, 0.00055,   -4.9e-7,   6.0e-7},   // 0.810
    {-0.000719,  0.00040,   -4.9e-7,   6.0e-7},
    {-0.000617,  0.00028,   -4.9e-7,   6.0e-7},
    {-0.000512,  0.00016,   -4.9e-7,   6.0e-7},
    {-0.0003948, 0.00003,   -4.9e-7,   6.0e-7},   // 0.900
    {-0.0005426, 0.0001778,  2.31e-6, -2.20e-6},  // 1.000 to 1.100
}};
// clang-format on

namespace {

constexpr double table_edges[] = {0.600, 0.620, 0.640, 0.660, 0.680, 0.700, 0.750, 0.770,
                                  0.790, 0.810, 0.830, 0.850, 0.875, 0.900, 1.000, 1.100};
constexpr double table_edges_15C[] = {0.599, 0.620, 0.640, 0.660, 0.680, 0.700, 0.750, 0.770,
                                      0.790, 0.810, 0.830, 0.850, 0.875, 0.900, 1.000, 1.100};
static_assert(std::size(table_edges) == std::tuple_size_v<decltype(bands)> + 1);

// What rounding may add to or take from a value that went to the edge and back.
constexpr double edge_tolerance = 1e-10;

constexpr double lowest = 0.600, highest = 1.100;

// Extent of the printed tables.
bool out_of_range(double s, double degF) { return outside(s, 0.600, 1.076) || outside(degF, 0.0, 150.0); }
bool out_of_range_metric(double rho15, double degC) {
  return outside(rho15, 600.0, 1075.0) || outside(degC, -18.0, 65.0);
}

Outcome check(const Observation& o) {
  if (!positive(o.density)) return blame(o.density, argument_error, not_a_density);
  if (!std::isfinite(o.temperature)) return blame(o.temperature, argument_error, not_finite);
  return {};
}

Outcome finish(double s_t, double s_base, Correction& out) {
  out.ctl = s_t / s_base;
  return positive(out.ctl) ? Outcome{} : failure(calculation_error, no_ctl);
}

}  // namespace

std::span<const double> edges_60F() noexcept { return table_edges; }
std::span<const double> edges_15C() noexcept { return table_edges_15C; }

std::size_t band_of(double s) noexcept {
  std::size_t band = 0;
  while (band + 1 < bands.size() && s > table_edges[band + 1]) ++band;
  return band;
}

Solution relative_density_60(std::span<const double> edges, const Expansion& expansion, double s_t,
                             double& s) noexcept {
  s = s_t;
  return solve_rising([&](std::size_t band, Dual u) { return expansion.at(band, u); }, edges, s_t, s);
}

Outcome check_60F(const double& s) noexcept {
  if (s >= lowest - edge_tolerance && s <= highest + edge_tolerance) return {};
  return blame(s, calculation_error, u"must lie from % to %, where the equation of the tables stands", lowest,
               highest);
}

Outcome correct_60F(double s, double degF, Correction& out) noexcept {
  out.base_density = s;
  out.out_of_range = out_of_range(s, degF);
  return finish(Expansion(degF).at(band_of(s), s), s, out);
}

Outcome correct_15C(double s, double degC, Correction& out) noexcept {
  const std::size_t band = band_of(s);
  const double s_15 = at_15C.at(band, s);
  out.base_density = water_1952.density_of_relative(s_15);
  out.out_of_range = out_of_range_metric(out.base_density, degC);
  return finish(Expansion(degF_of_degC(degC)).at(band, s), s_15, out);
}

Outcome to_60F(const Observation& o, Correction& out) noexcept {
  if (const Outcome outcome = check(o); !outcome.good()) return outcome;
  double s;
  const Solution solution = relative_density_60(table_edges, Expansion(o.temperature), o.density, s);
  return solution.found() ? correct_60F(s, o.temperature, out) : outcome_of(solution, o.density);
}

Outcome from_60F(const Observation& o, Correction& out) noexcept {
  if (const Outcome outcome = check(o); !outcome.good()) return outcome;
  if (const Outcome outcome = check_60F(o.density); !outcome.good()) return outcome;
  return correct_60F(o.density, o.temperature, out);
}

namespace {

// Density at t to the correction, by way of S.
Outcome correct_metric(const Observation& o, const Expansion& expansion, Correction& out) {
  if (const Outcome outcome = check(o); !outcome.good()) return outcome;
  double s;
  const Solution solution =
      relative_density_60(table_edges_15C, expansion, water_1952.relative_of_density(o.density), s);
  if (!solution.found()) return outcome_of(solution, o.density, 1.0 / water_1952.density);
  return correct_15C(s, o.temperature, out);
}

}  // namespace

Outcome to_15C(const Observation& o, Correction& out) noexcept {
  return correct_metric(o, Expansion(degF_of_degC(o.temperature)), out);
}
Outcome from_15C(const Observation& o, Correction& out) noexcept { return correct_metric(o, at_15C, out); }

constexpr CoefficientTable coefficient_tables[] = {
    rows("bands", bands),
    rows("table_edges", table_edges),
    rows("table_edges_15C", table_edges_15C),
};
constinit const CoefficientSet coefficient_set{
    "ASTM D1250-52", "table III of the ASTM-IP report on ASTM D1250-52 (IP 200/52)", coefficient_tables};

}  // namespace norvane::API_11_1_1952
