// GERG-2008 and GERG-2004 written out as the papers print them, term by term in extended precision: what the
// calculation is held against. Shares nothing with it but the tables.
#pragma once

#include <cmath>

#include "math/gas/gerg.h"
#include "math/gas/gerg2004_table.h"

namespace norvane::test {

class GergReference {
 public:
  using Real = long double;
  using Moles = std::array<Real, GERG2008::component_count>;

  explicit GergReference(GERG2008::Edition edition) : earlier_(edition == GERG2008::Edition::gerg_2004) {}

  // Residual Helmholtz energy over R T of these moles [kmol] at a temperature [K] in a volume [m3].
  Real energy(const Moles& n, Real T, Real V) const {
    using namespace GERG2008;
    Real total = 0;
    for (Real amount : n) total += amount;
    Moles x;
    for (std::size_t i = 0; i < component_count; ++i) x[i] = n[i] / total;
    Real T_r = 0, v_r = 0;
    for (std::size_t i = 0; i < component_count; ++i) {
      T_r += x[i] * x[i] * fluid(i).T_c;
      v_r += x[i] * x[i] / fluid(i).rho_c;
    }
    for (const Pair& printed : pairs) {
      const Pair& p = pair(printed);
      const Real x_i = x[p.i], x_j = x[p.j];
      if (x_i * x_j == 0) continue;
      const Real bT = p.beta_T, bv = p.beta_v;
      const Real root = std::cbrt(1 / Real(fluid(p.i).rho_c)) + std::cbrt(1 / Real(fluid(p.j).rho_c));
      T_r += 2 * x_i * x_j * bT * p.gamma_T * (x_i + x_j) / (bT * bT * x_i + x_j) *
             std::sqrt(Real(fluid(p.i).T_c) * fluid(p.j).T_c);
      v_r += 2 * x_i * x_j * bv * p.gamma_v * (x_i + x_j) / (bv * bv * x_i + x_j) * root * root * root / 8;
    }
    const Real delta = total / V * v_r, tau = T_r / T;
    Real ar = 0;
    const auto form = [&](const auto& terms, const auto& members, const auto& coefficients) {
      for (std::size_t m = 0; m < std::size(members); ++m) {
        if (x[members[m]] == 0) continue;
        const double* row = other(members[m]) != nullptr ? other(members[m])->n : coefficients[m];
        for (std::size_t k = 0; k < std::size(terms); ++k)
          ar += x[members[m]] * row[k] * std::pow(delta, Real(terms[k].d)) * std::pow(tau, Real(terms[k].t)) *
                (terms[k].c == 0 ? 1 : std::exp(-std::pow(delta, Real(terms[k].c))));
      }
    };
    form(light_form, light_members, light_n);
    form(carbon_dioxide_form, carbon_dioxide_members, carbon_dioxide_n);
    form(simple_form, simple_members, simple_n);
    form(water_form, water_members, water_n);
    form(hydrogen_form, hydrogen_members, hydrogen_n);
    form(helium_form, helium_members, helium_n);
    for (const Departure& departure : departures) {
      const Real weight = x[departure.i] * x[departure.j] * departure.F;
      if (weight == 0) continue;
      for (const DepartureTerm& term : departure_terms) {
        if (term.function != departure.function) continue;
        const Real y = delta - Real(0.5);
        ar += weight * term.n * std::pow(delta, Real(term.d)) * std::pow(tau, Real(term.t)) *
              std::exp(-term.eta * y * y - term.beta * y);
      }
    }
    return total * ar;
  }

 private:
  GERG2008::Component fluid(std::size_t i) const {
    GERG2008::Component printed = GERG2008::components[i];
    if (const GERG2008::edition_2004::Fluid* changed = other(i)) {
      printed.rho_c = changed->rho_c;
      printed.T_c = changed->T_c;
    }
    return printed;
  }
  const GERG2008::edition_2004::Fluid* other(std::size_t i) const {
    for (const auto& changed : GERG2008::edition_2004::fluids)
      if (earlier_ && changed.component == i) return &changed;
    return nullptr;
  }
  const GERG2008::Pair& pair(const GERG2008::Pair& printed) const {
    for (const auto& changed : GERG2008::edition_2004::pairs)
      if (earlier_ && changed.i == printed.i && changed.j == printed.j) return changed;
    return printed;
  }

  bool earlier_;
};

}  // namespace norvane::test
