// API MPMS Chapter 11.2.2.
//
//   G  relative density 60/60 degF [-]      t  temperature [degR]      d  pressure above equilibrium [psi]
//   A = 1e5 sum A_i, B = 1e5 sum B_i, F = 1/(A + B d) [1/psi]
#include "math/liquid/api_11_2_2.h"

#include "math/liquid/api_11_2_4.h"

namespace norvane::API_11_2_2 {

using namespace liquid;

namespace {

constexpr double degR_of_degF(double degF) { return degF + 459.67; }

// The terms of A by powers of t and G.
constexpr double a_t2 = -2.1465891e-6;    // A1, t^2
constexpr double a_t2g2 = 1.5774390e-5;   // A2
constexpr double a_t2g4 = -1.0502139e-5;  // A3
constexpr double a_t3g6 = 2.8324481e-7;   // A4
constexpr double a_1 = -0.95495939;       // A5
constexpr double a_t3g2 = 7.2900662e-8;   // A6
constexpr double a_t3g4 = -2.7769343e-7;  // A7
constexpr double a_tg2 = 0.03645838;      // A8
constexpr double a_tg = -0.05110158;      // A9
constexpr double a_t = 0.00795529;        // A10
constexpr double a_g = 9.13114910;        // A11
// The terms of B.
constexpr double b_t2 = -6.0357667e-10;  // B1
constexpr double b_tg2 = 2.2112678e-6;   // B2
constexpr double b_g = 0.00088384;       // B3
constexpr double b_g2 = -0.00204016;     // B4

Outcome factor_psi(double g, double degF, double d, Compressed& out) {
  const double inverse = Correlation(degF).inverse_compressibility(g, d > 0.0 ? d : 0.0);
  out.f = 1.0 / inverse;
  return finish(out.f, d, out.cpl);
}

}  // namespace

Correlation::Correlation(double degF) noexcept {
  const double t = degR_of_degF(degF);
  a0_ = 1e5 * (a_1 + (a_t + a_t2 * t) * t);
  a1_ = 1e5 * (a_g + a_tg * t);
  a2_ = 1e5 * (a_tg2 + (a_t2g2 + a_t3g2 * t) * t) * t;
  a4_ = 1e5 * (a_t2g4 + a_t3g4 * t) * t * t;
  a6_ = 1e5 * a_t3g6 * t * t * t;
  b0_ = 1e5 * b_t2 * t * t;
  b1_ = 1e5 * b_g;
  b2_ = 1e5 * (b_g2 + b_tg2 * t);
}

bool near_critical(double g, double degF) noexcept {
  const double critical = 621.418 + (-822.686 + 1737.86 * g) * g;  // degR
  return degR_of_degF(degF) > 0.96 * critical + limit_tolerance;
}

bool out_of_range(double g, double degF) noexcept {
  return outside(g, 0.350, 0.637) || outside(degF, -50.0, 140.0) || near_critical(g, degF);
}

Outcome factor(const Compression& in, Compressed& out) noexcept {
  if (const Outcome outcome = check(in); !outcome.good()) return outcome;
  out.out_of_range = out_of_range(in.density, in.temperature);
  return factor_psi(in.density, in.temperature, in.pressure - in.equilibrium_pressure, out);
}

Outcome factor_metric(const Compression& in, Compressed& out) noexcept {
  if (const Outcome outcome = check(in); !outcome.good()) return outcome;
  double g;
  const Solution solution =
      API_11_2_4::relative_density_60(water_2004.relative_of_density(in.density), base_15C_in_degF, g);
  if (!solution.found()) return outcome_of(solution, in.density, 1.0 / water_2004.density);
  const double degF = degF_of_degC(in.temperature);
  out.out_of_range =
      outside(in.density, 350.0, 637.0) || outside(in.temperature, -46.0, 60.0) || near_critical(g, degF);
  const Outcome outcome = factor_psi(g, degF, psi_of_bar(in.pressure - in.equilibrium_pressure), out);
  out.f /= kPa_per_psi;
  return outcome;
}

}  // namespace norvane::API_11_2_2
