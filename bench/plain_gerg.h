// GERG-2008 transcribed as the paper prints it, with the C library's functions: the baseline of the ratios. It keeps what
// depends on the composition and on the temperature and shares tau^t and delta^d among fluids of one form; it does not
// fold terms, nor check anything.
#pragma once

#include <cmath>
#include <cstddef>
#include <iterator>

#include "bench/plain_helmholtz.h"
#include "math/gas/gerg.h"

namespace norvane::bench {

class PlainGerg {
 public:
  PlainGerg() {
    for (std::size_t i = 0; i < count; ++i) cube_root_[i] = std::pow(GERG2008::components[i].rho_c, -1.0 / 3.0);
    take(0, GERG2008::light_form, GERG2008::light_members, GERG2008::light_n);
    take(1, GERG2008::carbon_dioxide_form, GERG2008::carbon_dioxide_members, GERG2008::carbon_dioxide_n);
    take(2, GERG2008::simple_form, GERG2008::simple_members, GERG2008::simple_n);
    take(3, GERG2008::water_form, GERG2008::water_members, GERG2008::water_n);
    take(4, GERG2008::hydrogen_form, GERG2008::hydrogen_members, GERG2008::hydrogen_n);
    take(5, GERG2008::helium_form, GERG2008::helium_members, GERG2008::helium_n);
  }

  void set_composition(const GERG2008::Composition& x) {
    x_ = x;
    M_ = T_r_ = v_r_ = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
      const GERG2008::Component& c = GERG2008::components[i];
      M_ += x[i] * c.M;
      T_r_ += x[i] * x[i] * c.T_c;
      v_r_ += x[i] * x[i] / c.rho_c;
    }
    for (const GERG2008::Pair& pair : GERG2008::pairs) {
      const double a = x[pair.i], b = x[pair.j];
      if (a == 0.0 || b == 0.0) continue;
      const double sum = cube_root_[pair.i] + cube_root_[pair.j];
      T_r_ += 2.0 * a * b * pair.beta_T * pair.gamma_T * (a + b) / (pair.beta_T * pair.beta_T * a + b) *
              std::sqrt(GERG2008::components[pair.i].T_c * GERG2008::components[pair.j].T_c);
      v_r_ += 2.0 * a * b * pair.beta_v * pair.gamma_v * (a + b) / (pair.beta_v * pair.beta_v * a + b) * sum * sum *
              sum / 8.0;
    }
  }

  void set_temperature(double T) {
    T_ = T;
    const double tau = T_r_ / T;
    for (std::size_t f = 0; f < forms; ++f)
      for (std::size_t k = 0; k < size_[f]; ++k) tau_t_[f][k] = std::pow(tau, form_[f][k].t);
    for (std::size_t k = 0; k < departure_count; ++k)
      departure_tau_t_[k] = std::pow(tau, GERG2008::departure_terms[k].t);
  }

  // [kmol/m3] of a vapour at p [MPa], by Newton's method in the logarithm of the volume from the ideal gas.
  double density(double p) const {
    const double RT = GERG2008::R * T_;
    double rho = p / RT;
    for (int i = 0; i < 50; ++i) {
      const PlainHelmholtz a = residual(rho);
      const double z = 1.0 + a.d, change = std::log(p / (rho * RT * z)) * z / (1.0 + 2.0 * a.d + a.dd);
      rho *= std::exp(change);
      if (std::fabs(change) < 1e-8) break;
    }
    return rho;
  }

  double molar_mass() const { return M_; }
  double z(double rho) const { return 1.0 + residual(rho).d; }

  // The ideal gas's enthalpy and entropy are left out: the speed of sound and the isentropic exponent need its heat
  // capacity only.
  PlainState properties(double rho) const {
    constexpr double R = 8.314472, R_ideal = 8.31451;
    double cp0 = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
      if (x_[i] == 0.0) continue;
      const GERG2008::Ideal& g = GERG2008::ideal_gases[i];
      const auto vibration = [this](double n, double theta, double (*f)(double)) {
        if (n == 0.0) return 0.0;
        const double y = theta / T_, below = f(y);
        return n * (y / below) * (y / below);
      };
      cp0 += x_[i] * (g.n3 - 1.0 + vibration(g.n4, g.theta4, std::sinh) + vibration(g.n5, g.theta5, std::cosh) +
                      vibration(g.n6, g.theta6, std::sinh) + vibration(g.n7, g.theta7, std::cosh));
    }
    return {residual(rho), R, T_, R + R_ideal * cp0, 0.0, 0.0, 1.0};
  }

  PlainHelmholtz residual(double rho) const {
    const PlainDensity at(rho * v_r_);
    const double delta = at.delta, y = delta - GERG2008::departure_centre;
    PlainHelmholtz sum;
    for (std::size_t i = 0; i < count; ++i) {
      if (x_[i] == 0.0) continue;
      const Fluid& fluid = fluid_[i];
      for (std::size_t k = 0; k < size_[fluid.form]; ++k) {
        const GERG2008::Exponents& term = form_[fluid.form][k];
        sum.add(x_[i] * fluid.n[k] * tau_t_[fluid.form][k], term.d, term.t, term.c, at);
      }
    }
    for (const GERG2008::Departure& pair : GERG2008::departures) {
      const double weight = x_[pair.i] * x_[pair.j] * pair.F;
      if (weight == 0.0) continue;
      for (std::size_t k = 0; k < departure_count; ++k) {
        const GERG2008::DepartureTerm& term = GERG2008::departure_terms[k];
        if (term.function != pair.function) continue;
        double value = weight * term.n * departure_tau_t_[k] * at.power[term.d], q = 0.0;
        if (term.eta != 0.0 || term.beta != 0.0) {
          value *= std::exp(-(term.eta * y + term.beta) * y);
          q = delta * (2.0 * term.eta * y + term.beta);
        }
        const double D = term.d - q;
        sum.add(value, D, D * (D - 1.0) - q - 2.0 * term.eta * delta * delta, term.t);
      }
    }
    return sum;
  }

 private:
  static constexpr std::size_t count = GERG2008::component_count, forms = 6, longest = 24,
                               departure_count = std::size(GERG2008::departure_terms);
  struct Fluid {
    std::size_t form;
    const double* n;
  };

  template <std::size_t size, std::size_t members>
  void take(std::size_t f, const GERG2008::Exponents (&form)[size], const std::size_t (&member)[members],
            const double (&n)[members][size]) {
    form_[f] = form;
    size_[f] = size;
    for (std::size_t m = 0; m < members; ++m) fluid_[member[m]] = {f, n[m]};
  }

  double cube_root_[count];
  const GERG2008::Exponents* form_[forms];
  std::size_t size_[forms];
  Fluid fluid_[count];
  GERG2008::Composition x_{};
  double M_ = 0, T_r_ = 0, v_r_ = 0, T_ = 0;
  double tau_t_[forms][longest], departure_tau_t_[departure_count];
};

}  // namespace norvane::bench
