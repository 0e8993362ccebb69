// GERG-2008 and GERG-2004 as the papers print them. Shares the tables with the library and nothing else.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "math/gas/gerg2004_table.h"
#include "tests/referee/helmholtz_reference.h"

namespace norvane::referee {

class GergReferee {
 public:
  static constexpr std::size_t count = GERG2008::component_count;
  using Composition = std::array<double, count>;

  explicit GergReferee(bool edition_2004) {
    using namespace GERG2008;
    const auto form = [&](const auto& exponents, const auto& members, const auto& table) {
      for (std::size_t m = 0; m < std::size(members); ++m) {
        const double* row = table[m];
        if (edition_2004)
          for (const edition_2004::Fluid& fluid : edition_2004::fluids)
            if (fluid.component == members[m]) row = fluid.n;
        for (std::size_t k = 0; k < std::size(exponents); ++k)
          fluid_[members[m]].push_back({printed(row[k]), printed(exponents[k].t), exponents[k].d, exponents[k].c});
      }
    };
    form(light_form, light_members, light_n);
    form(carbon_dioxide_form, carbon_dioxide_members, carbon_dioxide_n);
    form(simple_form, simple_members, simple_n);
    form(water_form, water_members, water_n);
    form(hydrogen_form, hydrogen_members, hydrogen_n);
    form(helium_form, helium_members, helium_n);
    for (std::size_t i = 0; i < count; ++i) {
      T_c_[i] = printed(components[i].T_c);
      v_c_[i] = 1 / printed(components[i].rho_c);
    }
    if (edition_2004)
      for (const edition_2004::Fluid& fluid : edition_2004::fluids) {
        T_c_[fluid.component] = printed(fluid.T_c);
        v_c_[fluid.component] = 1 / printed(fluid.rho_c);
      }
    for (const Pair& of_2008 : GERG2008::pairs) {
      Pair pair = of_2008;
      if (edition_2004)
        for (const Pair& other : edition_2004::pairs)
          if (other.i == pair.i && other.j == pair.j) pair = other;
      const Real root = pow(v_c_[pair.i], 1_r / 3) + pow(v_c_[pair.j], 1_r / 3);
      const Real b_v = printed(pair.beta_v), b_T = printed(pair.beta_T);
      pairs_.push_back({pair.i, pair.j, b_v, b_T, 2 * b_v * printed(pair.gamma_v) * root * root * root / 8,
                        2 * b_T * printed(pair.gamma_T) * sqrt(T_c_[pair.i] * T_c_[pair.j])});
    }
  }

  Real R() const { return 8.314472_r; }  // [J/(mol K)]

  // Residual Helmholtz energy over R T.
  Jet energy(const Composition& x, const Jet& T, const Jet& rho) const {
    using namespace GERG2008;
    Real T_r = 0, v_r = 0;
    for (std::size_t i = 0; i < count; ++i) {
      T_r += Real(x[i]) * x[i] * T_c_[i];
      v_r += Real(x[i]) * x[i] * v_c_[i];
    }
    for (const ReducingPair& p : pairs_) {
      const Real x_i = x[p.i], x_j = x[p.j];
      if (x_i == 0 || x_j == 0) continue;
      v_r += p.c_v * x_i * x_j * (x_i + x_j) / (p.b_v * p.b_v * x_i + x_j);
      T_r += p.c_T * x_i * x_j * (x_i + x_j) / (p.b_T * p.b_T * x_i + x_j);
    }
    const Jet delta = rho * v_r, tau = Jet(T_r) / T;
    Jet power_of_delta[9] = {Jet(1)}, exponential[7] = {Jet(1)};
    for (int d = 1; d <= 8; ++d) power_of_delta[d] = power_of_delta[d - 1] * delta;
    for (int c = 1; c <= 6; ++c) exponential[c] = exp(-power_of_delta[c]);
    Jet sum;
    for (std::size_t i = 0; i < count; ++i) {
      if (x[i] == 0) continue;
      for (const FluidTerm& term : fluid_[i])
        sum += pow(tau, term.t) * power_of_delta[term.d] * exponential[term.c] * (x[i] * term.n);
    }
    for (const Departure& pair : departures) {
      const Real weight = Real(x[pair.i]) * x[pair.j] * printed(pair.F);
      if (weight == 0) continue;
      for (const DepartureTerm& term : departure_terms) {
        if (term.function != pair.function) continue;
        Jet value = pow(tau, printed(term.t)) * power_of_delta[term.d] * (weight * printed(term.n));
        if (term.eta != 0 || term.beta != 0) {
          const Jet y = delta - Jet(0.5_r);
          value = value * exp(-(y * y * printed(term.eta) + y * printed(term.beta)));
        }
        sum += value;
      }
    }
    return sum;
  }

  // cp0 only: no function answers an enthalpy.
  IdealState ideal(const Composition& x, Real T) const {
    IdealState sum;
    for (std::size_t i = 0; i < count; ++i) {
      if (x[i] == 0) continue;
      const GERG2008::Ideal& g = GERG2008::ideal_gases[i];
      Real cp = printed(g.n3) - 1;
      const auto add = [&](double n, double theta, bool hyperbolic_sine) {
        if (n == 0) return;
        const Real y = printed(theta) / T;
        cp += printed(n) * square(y / (hyperbolic_sine ? sinh(y) : cosh(y)));
      };
      add(g.n4, g.theta4, true);
      add(g.n5, g.theta5, false);
      add(g.n6, g.theta6, true);
      add(g.n7, g.theta7, false);
      sum.cp += x[i] * (R() + 8.31451_r * cp);
    }
    return sum;
  }

 private:
  struct FluidTerm {
    Real n, t;
    int d, c;
  };
  struct ReducingPair {
    std::size_t i, j;
    Real b_v, b_T, c_v, c_T;
  };
  std::array<std::vector<FluidTerm>, count> fluid_;
  std::array<Real, count> T_c_, v_c_;
  std::vector<ReducingPair> pairs_;
};

}  // namespace norvane::referee
