// The AGA-8 detail equation written out as the report prints it, term by term in extended precision: what the
// calculation is held against. Shares nothing with it but the tables.
#pragma once

#include <cmath>
#include <initializer_list>
#include <utility>
#include <vector>

#include "math/gas/aga8.h"

namespace norvane::test {

class DetailReference {
 public:
  using Real = long double;

  DetailReference(const AGA8::Composition& composition, Real temperature) : x_(composition), T_(temperature) {
    K_ = std::pow(fifth_power(&AGA8::Component::K, &AGA8::Pair::K), 0.2L);
    U_ = std::pow(fifth_power(&AGA8::Component::E, &AGA8::Pair::U), 0.2L);
    for (std::size_t i = 0; i < AGA8::component_count; ++i) {
      const AGA8::Component& a = AGA8::components[i];
      G_ += x_[i] * a.G;
      Q_ += x_[i] * a.Q;
      F_ += x_[i] * x_[i] * a.F;
      for (std::size_t j = i + 1; j < AGA8::component_count; ++j)
        G_ += x_[i] * x_[j] * (interaction(i, j).G - 1) * (static_cast<Real>(a.G) + AGA8::components[j].G);
      for (std::size_t j = 0; j < AGA8::component_count; ++j) B_ += virial(i, j);
    }
    for (std::size_t n = 12; n < AGA8::term_count; ++n) C_[n] = coefficient(AGA8::terms[n]);
  }

  Real K() const { return K_; }
  Real U() const { return U_; }
  Real B() const { return B_; }

  // Residual Helmholtz energy over R T.
  Real helmholtz(Real rho) const {
    const Real r = K_ * K_ * K_ * rho;
    Real sum = rho * B_;
    for (std::size_t n = 12; n < AGA8::term_count; ++n) {
      const AGA8::Term& term = AGA8::terms[n];
      if (n < 18) sum -= r * C_[n];
      sum += C_[n] * power(r, term.b) * (term.k != 0 ? std::exp(-power(r, term.k)) : 1.0L);
    }
    return sum;
  }

  // Compressibility factor, and the sum of the sizes of its terms: what rounding errors are measured by.
  struct Z {
    Real value, size;
  };
  Z z(Real rho) const {
    const Real r = K_ * K_ * K_ * rho;
    Z sum{1 + rho * B_, 1 + std::fabs(rho * B_)};
    const auto add = [&sum](Real term) {
      sum.value += term;
      sum.size += std::fabs(term);
    };
    for (std::size_t n = 12; n < AGA8::term_count; ++n) {
      const AGA8::Term& term = AGA8::terms[n];
      if (n < 18) add(-r * C_[n]);
      const Real rk = term.k != 0 ? power(r, term.k) : 0.0L;
      add(C_[n] * term.b * power(r, term.b) * std::exp(-rk));
      add(-C_[n] * term.k * rk * power(r, term.b) * std::exp(-rk));
    }
    return sum;
  }

 private:
  static AGA8::Pair interaction(std::size_t i, std::size_t j) {
    for (const AGA8::Pair& pair : AGA8::pairs) {
      if ((pair.i == i && pair.j == j) || (pair.i == j && pair.j == i)) return pair;
    }
    return {i, j, 1.0, 1.0, 1.0, 1.0};
  }
  static Real power(Real value, double exponent) { return std::pow(value, static_cast<Real>(exponent)); }
  static Real flagged(Real value, int flag) { return power(value + 1 - flag, flag); }

  // (sum x_i v_i^2.5)^2 + 2 sum x_i x_j (v_ij^5 - 1)(v_i v_j)^2.5, the fifth power of K or U.
  Real fifth_power(double AGA8::Component::*v, double AGA8::Pair::*v_ij) const {
    Real sum = 0, pair_sum = 0;
    for (std::size_t i = 0; i < AGA8::component_count; ++i) {
      const Real a = AGA8::components[i].*v;
      sum += x_[i] * power(a, 2.5);
      for (std::size_t j = i + 1; j < AGA8::component_count; ++j) {
        const Real b = AGA8::components[j].*v;
        pair_sum += x_[i] * x_[j] * (power(interaction(i, j).*v_ij, 5) - 1) * power(a * b, 2.5);
      }
    }
    return sum * sum + 2 * pair_sum;
  }

  Real virial(std::size_t i, std::size_t j) const {
    if (x_[i] == 0.0 || x_[j] == 0.0) return 0;
    const AGA8::Component& a = AGA8::components[i];
    const AGA8::Component& b = AGA8::components[j];
    const Real E = interaction(i, j).E * std::sqrt(static_cast<Real>(a.E) * b.E);
    const Real G = interaction(i, j).G * (static_cast<Real>(a.G) + b.G) / 2;
    Real sum = 0;
    for (std::size_t n = 0; n < 18; ++n) {
      const AGA8::Term& term = AGA8::terms[n];
      const Real structure = flagged(G, term.g) * flagged(static_cast<Real>(a.Q) * b.Q, term.q) *
                             flagged(std::sqrt(static_cast<Real>(a.F) * b.F), term.f) *
                             flagged(static_cast<Real>(a.S) * b.S, term.s) *
                             flagged(static_cast<Real>(a.W) * b.W, term.w);
      sum += term.a * structure * power(E / T_, term.u) * power(static_cast<Real>(a.K) * b.K, 1.5);
    }
    return x_[i] * x_[j] * sum;
  }

  Real coefficient(const AGA8::Term& term) const {
    return term.a * flagged(G_, term.g) * flagged(Q_ * Q_, term.q) * flagged(F_, term.f) * power(U_ / T_, term.u);
  }

  AGA8::Composition x_;
  Real T_, K_ = 0, U_ = 0, G_ = 0, Q_ = 0, F_ = 0, B_ = 0;
  Real C_[AGA8::term_count] = {};
};

// The gases of the tests; every component is in at least one of them.
inline AGA8::Composition gas(std::initializer_list<std::pair<AGA8::ComponentIndex, double>> fractions) {
  AGA8::Composition x{};
  for (const auto& [component, fraction] : fractions) x[component] = fraction;
  return x;
}
inline const AGA8::Composition gas_of_21 = {0.8629, 0.02,   0.005,  0.05,   0.03,   0.0001, 0.001,
                                            0.0001, 0.0001, 0.0002, 0.011,  0.009,  0.0035, 0.0025,
                                            0.002,  0.001,  0.0005, 0.0002, 0.0001, 0.0004, 0.0004};
inline const AGA8::Composition gulf_coast = gas({{AGA8::methane, 0.965222},
                                                 {AGA8::nitrogen, 0.002595},
                                                 {AGA8::carbon_dioxide, 0.005956},
                                                 {AGA8::ethane, 0.018186},
                                                 {AGA8::propane, 0.004596},
                                                 {AGA8::i_butane, 0.000977},
                                                 {AGA8::n_butane, 0.001007},
                                                 {AGA8::i_pentane, 0.000473},
                                                 {AGA8::n_pentane, 0.000324},
                                                 {AGA8::n_hexane, 0.000664}});
inline const AGA8::Composition coke_oven =
    gas({{AGA8::methane, 0.30}, {AGA8::hydrogen, 0.50}, {AGA8::carbon_monoxide, 0.12}, {AGA8::nitrogen, 0.08}});
inline const AGA8::Composition sour =
    gas({{AGA8::methane, 0.60}, {AGA8::carbon_dioxide, 0.20}, {AGA8::hydrogen_sulfide, 0.15}, {AGA8::water, 0.05}});

// 21 fractions and neo-pentane.
inline std::vector<double> with_neo_pentane(const AGA8::Composition& x, double neo_pentane = 0.0) {
  std::vector<double> result(x.begin(), x.end());
  result.push_back(neo_pentane);
  return result;
}

}  // namespace norvane::test
