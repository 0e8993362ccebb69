// AGA Report No. 8 (1994), detail characterisation method, and AGA Report No. 10 (2003), as the reports print them.
// Shares the tables with the library and nothing else.
#pragma once

#include <array>
#include <vector>

#include "math/gas/aga10_table.h"
#include "math/gas/aga8_table.h"
#include "tests/referee/helmholtz_reference.h"

namespace norvane::referee {

class Aga8Reference {
 public:
  static constexpr std::size_t count = AGA8::component_count;
  using Composition = std::array<double, count>;

  struct Mixture {
    Real K3, U, G, Q, F, M;
    Real beta[18];  // a_n sum x_i x_j B*_nij E_ij^u_n (K_i K_j)^1.5
  };

  Real R() const { return 8.31451_r; }  // [J/(mol K)]

  Mixture mixture(const Composition& given) const {
    std::array<Real, count> x;
    std::copy(given.begin(), given.end(), x.begin());
    Mixture m{};
    Real K5 = 0, U5 = 0;
    for (std::size_t i = 0; i < count; ++i) {
      K5 += x[i] * pow(K[i], 2.5_r);
      U5 += x[i] * pow(E[i], 2.5_r);
      m.G += x[i] * G[i];
      m.Q += x[i] * Q[i];
      m.F += x[i] * x[i] * F[i];
      m.M += x[i] * printed(AGA8::components[i].M);
    }
    K5 *= K5;
    U5 *= U5;
    for (const AGA8::Pair& p : AGA8::pairs) {
      K5 += 2 * x[p.i] * x[p.j] * (pow(printed(p.K), 5) - 1) * pow(K[p.i] * K[p.j], 2.5_r);
      U5 += 2 * x[p.i] * x[p.j] * (pow(printed(p.U), 5) - 1) * pow(E[p.i] * E[p.j], 2.5_r);
      m.G += x[p.i] * x[p.j] * (printed(p.G) - 1) * (G[p.i] + G[p.j]);
    }
    m.K3 = pow(K5, 0.6_r);
    m.U = pow(U5, 0.2_r);
    for (std::size_t n = 0; n < 18; ++n)
      for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j < count; ++j) m.beta[n] += x[i] * x[j] * pair_term[n][i][j];
    return m;
  }

  // Residual Helmholtz energy over R T, a function of ln T [K] and ln rho [kmol/m3].
  Jet energy(const Mixture& m, const Jet& T, const Jet& rho) const {
    Jet B, sum;
    const Jet r = rho * m.K3;
    for (std::size_t n = 0; n < AGA8::term_count; ++n) {
      const AGA8::Term& term = AGA8::terms[n];
      const Jet t = pow(T, -printed(term.u));
      if (n < 18) B += t * m.beta[n];
      if (n < 12) continue;
      const Real g = term.g ? m.G : 1, q = term.q ? m.Q * m.Q : 1, f = term.f ? m.F : 1;
      const Jet C = t * (printed(term.a) * g * q * f * pow(m.U, printed(term.u)));
      if (n < 18) sum = sum - r * C;
      const Jet exponential = term.k > 0 ? exp(-pow(r, term.k)) : Jet(1);
      sum += C * pow(r, term.b) * exponential;
    }
    return rho * B + sum;
  }
  HelmholtzState residual(const Mixture& m, Real T, Real rho) const {
    return HelmholtzState::of([&](const Jet& t, const Jet& d) { return energy(m, t, d); }, T, rho, R());
  }

  // cp0 [J/(mol K)], h0 [J/mol] and s0 [J/(mol K)] of AGA Report No. 10.
  IdealState ideal(const Composition& x, Real T) const {
    IdealState sum;
    const Real calorie = 4.184_r;
    for (std::size_t i = 0; i < count; ++i) {
      if (x[i] == 0) continue;
      const AGA10::IdealGas& g = AGA10::ideal_gases[i];
      Real cp = printed(g.B), h = printed(g.A) + printed(g.B) * T, s = printed(g.K) + printed(g.B) * log(T);
      const auto add = [&](double factor, double theta, bool hyperbolic_sine) {
        if (factor == 0) return;
        const Real w = printed(factor), y = printed(theta) / T;
        const Real tanh = sinh(y) / cosh(y);
        cp += w * square(y / (hyperbolic_sine ? sinh(y) : cosh(y)));
        h += hyperbolic_sine ? w * printed(theta) / tanh : -w * printed(theta) * tanh;
        s += hyperbolic_sine ? w * (y / tanh - log(sinh(y))) : -w * (y * tanh - log(cosh(y)));
      };
      add(g.C, g.D, true);
      add(g.E, g.F, false);
      add(g.G, g.H, true);
      add(g.I, g.J, false);
      sum.cp += x[i] * cp * calorie;
      sum.h += x[i] * h * calorie;
      sum.s += x[i] * (s * calorie - R() * log(Real(x[i])));
    }
    return sum;
  }

  Aga8Reference() : pair_term(18) {
    for (std::size_t i = 0; i < count; ++i) {
      const AGA8::Component& c = AGA8::components[i];
      E[i] = printed(c.E);
      K[i] = printed(c.K);
      G[i] = printed(c.G);
      Q[i] = printed(c.Q);
      F[i] = printed(c.F);
    }
    for (std::size_t n = 0; n < 18; ++n) {
      const AGA8::Term& term = AGA8::terms[n];
      for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
          Real E_star = 1, G_star = 1;
          for (const AGA8::Pair& p : AGA8::pairs)
            if ((p.i == i && p.j == j) || (p.i == j && p.j == i)) {
              E_star = printed(p.E);
              G_star = printed(p.G);
            }
          const AGA8::Component &a = AGA8::components[i], &b = AGA8::components[j];
          Real B = 1;
          if (term.g) B *= G_star * (G[i] + G[j]) / 2;
          if (term.q) B *= Q[i] * Q[j];
          if (term.f) B *= sqrt(F[i] * F[j]);
          if (term.s) B *= printed(a.S) * printed(b.S);
          if (term.w) B *= printed(a.W) * printed(b.W);
          if (B != 0) B *= pow(E_star * sqrt(E[i] * E[j]), printed(term.u)) * pow(K[i] * K[j], 1.5_r);
          pair_term[n][i][j] = printed(term.a) * B;
        }
      }
    }
  }

 private:
  std::array<Real, count> E, K, G, Q, F;
  std::vector<std::array<std::array<Real, count>, count>> pair_term;
};

}  // namespace norvane::referee
