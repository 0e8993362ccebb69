// The detail equation and its properties transcribed as the reports print them, with the C library's functions and
// tables of powers: the baseline of the ratios. It keeps what depends on the composition and on the temperature, as any
// program would; it does not fold terms, nor check anything.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "math/gas/aga10_table.h"
#include "math/gas/aga8.h"

namespace norvane::bench {

class PlainDetail {
 public:
  PlainDetail() {
    for (std::size_t i = 0; i < count; ++i)
      for (std::size_t j = 0; j < count; ++j) {
        AGA8::Pair pair{i, j, 1.0, 1.0, 1.0, 1.0};
        for (const AGA8::Pair& listed : AGA8::pairs)
          if ((listed.i == i && listed.j == j) || (listed.i == j && listed.j == i)) pair = listed;
        const AGA8::Component &a = AGA8::components[i], &b = AGA8::components[j];
        K5_[i][j] = (std::pow(pair.K, 5) - 1.0) * std::pow(a.K * b.K, 2.5);
        U5_[i][j] = (std::pow(pair.U, 5) - 1.0) * std::pow(a.E * b.E, 2.5);
        G_pair_[i][j] = (pair.G - 1.0) * (a.G + b.G);
        const double E = pair.E * std::sqrt(a.E * b.E), G = pair.G * (a.G + b.G) / 2.0;
        for (std::size_t n = 0; n < 18; ++n) {
          const AGA8::Term& t = AGA8::terms[n];
          B_pair_[n][i][j] = t.a * std::pow(G + 1 - t.g, t.g) * std::pow(a.Q * b.Q + 1 - t.q, t.q) *
                             std::pow(std::sqrt(a.F * b.F) + 1 - t.f, t.f) * std::pow(a.S * b.S + 1 - t.s, t.s) *
                             std::pow(a.W * b.W + 1 - t.w, t.w) * std::pow(E, t.u) * std::pow(a.K * b.K, 1.5);
        }
      }
  }

  void set_composition(const AGA8::Composition& x) {
    x_ = x;
    double K = 0, U = 0, G = 0, Q = 0, F = 0;
    M_ = 0.0;
    for (std::size_t n = 0; n < 18; ++n) B_[n] = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
      if (x[i] == 0.0) continue;
      const AGA8::Component& c = AGA8::components[i];
      K += x[i] * std::pow(c.K, 2.5);
      U += x[i] * std::pow(c.E, 2.5);
      G += x[i] * c.G;
      Q += x[i] * c.Q;
      F += x[i] * x[i] * c.F;
      M_ += x[i] * c.M;
    }
    K *= K;
    U *= U;
    for (std::size_t i = 0; i < count; ++i) {
      if (x[i] == 0.0) continue;
      for (std::size_t j = i; j < count; ++j) {
        if (x[j] == 0.0) continue;
        const double xx = i == j ? x[i] * x[j] : 2.0 * x[i] * x[j];
        if (i != j) {
          K += xx * K5_[i][j];
          U += xx * U5_[i][j];
          G += 0.5 * xx * G_pair_[i][j];
        }
        for (std::size_t n = 0; n < 18; ++n) B_[n] += xx * B_pair_[n][i][j];
      }
    }
    K3_ = std::pow(K, 0.6);
    U = std::pow(U, 0.2);
    for (std::size_t n = 12; n < AGA8::term_count; ++n) {
      const AGA8::Term& t = AGA8::terms[n];
      C_[n] = t.a * std::pow(U, t.u);
      if (t.g != 0) C_[n] *= G;
      if (t.q != 0) C_[n] *= Q * Q;
      if (t.f != 0) C_[n] *= F;
    }
  }

  void set_temperature(double T) {
    T_ = T;
    for (std::size_t n = 0; n < AGA8::term_count; ++n) T_u_[n] = std::pow(T, -AGA8::terms[n].u);
  }

  double molar_mass() const { return M_; }  // [kg/kmol]

  // [kmol/m3] at p [MPa], by Newton's method.
  double density(double p) const {
    double rho = p / (AGA8::R * T_);
    for (int i = 0; i < 50; ++i) {
      const Derivatives a = residual(rho, false);
      const double step = (p - rho * AGA8::R * T_ * (1.0 + a.d)) / (AGA8::R * T_ * (1.0 + 2.0 * a.d + a.dd));
      rho += step;
      if (std::fabs(step) < 1e-11 * rho) break;
    }
    return rho;
  }

  struct State {
    double z, cp, cv, h, s, w, kappa;
  };
  State properties(double rho) const {
    constexpr double R = 8.31451, calorie = 4.184;
    const Derivatives a = residual(rho, true);
    double cp0 = 0, h0 = 0, s0 = 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (x_[i] == 0.0) continue;
      const AGA10::IdealGas& g = AGA10::ideal_gases[i];
      double cp = g.B, h = g.A + g.B * T_, s = g.K + g.B * std::log(T_);
      const double weight[4] = {g.C, g.E, g.G, g.I}, theta[4] = {g.D, g.F, g.H, g.J};
      for (std::size_t m = 0; m < 4; ++m) {
        if (weight[m] == 0.0) continue;
        const double y = theta[m] / T_, sinh = std::sinh(y), cosh = std::cosh(y);
        if (m % 2 == 0) {
          cp += weight[m] * (y / sinh) * (y / sinh);
          h += weight[m] * theta[m] * cosh / sinh;
          s += weight[m] * (y * cosh / sinh - std::log(std::fabs(sinh)));
        } else {
          cp += weight[m] * (y / cosh) * (y / cosh);
          h -= weight[m] * theta[m] * sinh / cosh;
          s -= weight[m] * (y * sinh / cosh - std::log(cosh));
        }
      }
      cp0 += x_[i] * cp * calorie;
      h0 += x_[i] * h * calorie;
      s0 += x_[i] * (s * calorie - R * std::log(x_[i]));
    }
    const double dp_dT = 1.0 + a.d - a.dt, dp_drho = 1.0 + 2.0 * a.d + a.dd;
    State now;
    now.z = 1.0 + a.d;
    now.cv = cp0 - R - R * a.tt;
    now.cp = now.cv + R * dp_dT * dp_dT / dp_drho;
    now.h = h0 + R * T_ * (a.d + a.t);
    now.s = s0 - R * (std::log(rho * R * T_ / 101.325) + a.ar - a.t);
    const double Mw2 = now.cp / now.cv * R * T_ * dp_drho;
    now.w = std::sqrt(1000.0 * Mw2 / M_);
    now.kappa = Mw2 / (now.z * R * T_);
    return now;
  }

 private:
  static constexpr std::size_t count = AGA8::component_count;

  struct Derivatives {
    double ar = 0, d = 0, dd = 0, t = 0, tt = 0, dt = 0;
  };
  Derivatives residual(double rho, bool all) const {
    Derivatives sum;
    const double r = K3_ * rho;
    double power[10], e[5], q[5];
    power[0] = 1.0;
    for (int b = 1; b < 10; ++b) power[b] = power[b - 1] * r;
    e[0] = 1.0;
    q[0] = 0.0;
    for (int k = 1; k < 5; ++k) {
      q[k] = k * power[k];
      e[k] = std::exp(-power[k]);
    }
    for (std::size_t n = 0; n < AGA8::term_count; ++n) {
      const AGA8::Term& t = AGA8::terms[n];
      if (n < 18) {
        const double term = rho * B_[n] * T_u_[n] - (n >= 12 ? r * C_[n] * T_u_[n] : 0.0);
        sum.d += term;
        if (all) {
          sum.ar += term;
          sum.t += t.u * term;
          sum.tt += t.u * (t.u - 1.0) * term;
          sum.dt += t.u * term;
        }
      }
      if (n < 12) continue;
      const double term = C_[n] * T_u_[n] * power[t.b] * e[t.k], D = t.b - q[t.k];
      sum.d += term * D;
      sum.dd += term * (D * (D - 1.0) - t.k * q[t.k]);
      if (all) {
        sum.ar += term;
        sum.t += t.u * term;
        sum.tt += t.u * (t.u - 1.0) * term;
        sum.dt += t.u * term * D;
      }
    }
    return sum;
  }

  double K5_[count][count], U5_[count][count], G_pair_[count][count], B_pair_[18][count][count];
  AGA8::Composition x_{};
  double M_ = 0, K3_ = 0, T_ = 0;
  std::array<double, 18> B_{};
  std::array<double, AGA8::term_count> C_{}, T_u_{};
};

}  // namespace norvane::bench
