// SGERG-88, ISO 12213-3.
//
//   x1 CH, x2 N2, x3 CO2, x5 H2, x7 CO   mole fractions [-]; CH is all hydrocarbons as one gas
//   H    molar calorific value of CH [MJ/kmol]       Hs   superior calorific value [MJ/m3]
//   M    molar mass [kg/kmol]                        d    relative density [-]
//   V_m  molar volume at reference conditions        B    second, C third virial coefficient
//   rho  molar density [kmol/m3]                     Z    compressibility factor [-]
//
//   p = rho R T (1 + B rho + C rho^2)
//
//   x1 H + 285.83 x5 + 282.98 x7 = Hs V_m            (calorific value)
//   x1 M_CH + x2 M_N2 + x3 M_CO2 + x5 M_H2 + x7 M_CO = d rho_air V_m   (mass)
//   x1 + x2 + x3 + x5 + x7 = 1,  x7 = 0.0964 x5,  M_CH = -2.709328 + 0.021062199 H
//
// For a given V_m the balances are linear in x1 and x1 H, whatever the two unknowns; V_m follows from B of the
// composition found, and must be the same. The reference program does the same in two nested loops that stop at
// 1e-6 kg/m3 and 1e-4 MJ/m3; carried to the end the composition is a smooth function of the properties, up to 3e-6 in
// Z away.
#include "math/gas/sgerg.h"

#include <cmath>

#include "math/common/cube_root.h"
#include "math/common/virial_root.h"

namespace norvane::SGERG {
namespace {

// ---- Reference conditions ----------------------------------------------------------------------------------------

constexpr double kelvin(double celsius) { return celsius + 273.15; }

struct ReferenceState {
  double ideal_volume;  // R T/p [m3/kmol]
  double air_density;   // [kg/m3]
  double combustion;    // calorific value at 25 degC over that at the temperature of combustion
  SecondVirial second;  // at the temperature of the volume
};

// The calorific value falls by 1.027e-4 of itself a kelvin (AGA Report No. 8 Part 1, gross method).
constexpr double at_25(double combustion) { return 1.0 + 1.027e-4 * (combustion - 25.0); }

constexpr double atmosphere = 1.01325;  // [bar]

constexpr ReferenceState reference_state(double combustion, double T, double air_density) {
  return {R * T / atmosphere, air_density, at_25(combustion), SecondVirial(coefficients, T)};
}

// Air at any other reference conditions, AGA Report No. 8 Part 1.
constexpr double air_density(double T, double p) {
  const double B_air = -0.12527 + 5.91e-4 * T - 6.62e-7 * T * T;
  return 28.9625 * p / (R * T * (1.0 + B_air * p / (R * T)));
}
constexpr ReferenceState base_60F() {
  constexpr double t = (60.0 - 32.0) / 1.8, T = kelvin(t), p = 14.73 * 0.0689476;
  return {R * T / p, air_density(T, p), at_25(t), SecondVirial(coefficients, T)};
}
constexpr ReferenceState normal_conditions(double combustion) {
  ReferenceState state = reference_state(combustion, kelvin(0.0), 1.292923);
  state.ideal_volume = ideal_volume;  // as printed
  return state;
}

// In the order of Reference. Densities of dry air of ISO 6976.
constexpr double air_15 = 1.225410, air_20 = 1.204449;
constexpr ReferenceState references[] = {
    normal_conditions(25.0),
    normal_conditions(0.0),
    reference_state(15.0, kelvin(15.0), air_15),
    reference_state(25.0, kelvin(15.0), air_15),
    reference_state(20.0, kelvin(20.0), air_20),
    reference_state(25.0, kelvin(20.0), air_20),
    base_60F(),
};
static_assert(sizeof references / sizeof references[0] == static_cast<int>(Reference::f60_60));

// ---- Composition -------------------------------------------------------------------------------------------------

constexpr bool knows_calorific_value(InputSet set) { return set != InputSet::density_co2_n2; }
constexpr bool knows_density(InputSet set) { return set != InputSet::calorific_co2_n2; }
constexpr bool knows_carbon_dioxide(InputSet set) { return set != InputSet::calorific_density_n2; }
constexpr bool knows_nitrogen(InputSet set) { return set != InputSet::calorific_density_co2; }

double calorific_sum(const Mixture& x) noexcept { return x.CH * x.H + H2_calorific * x.H2 + CO_calorific * x.CO; }

double mass_without_CH(const Mixture& x) noexcept {
  return N2_molar_mass * x.N2 + CO2_molar_mass * x.CO2 + H2_molar_mass * x.H2 + CO_molar_mass * x.CO;
}
double molar_mass(const Mixture& x) noexcept {
  return x.CH * (CH_molar_mass + CH_mass_per_H * x.H) + mass_without_CH(x);
}

// The balances with what is known put in: x1 and x1 H as linear functions of V_m. What is left over is nitrogen, carbon
// dioxide or nothing.
struct Balances {
  double CH, CH_per_V;       // x1 = CH + CH_per_V V_m
  double CHH, CHH_per_V;     // x1 H [MJ/kmol]
  double Mixture::*unknown;  // null: both inert gases are known
  double remainder;          // fraction of hydrocarbons and unknown

  Balances(const Arguments& in, const ReferenceState& reference, const Mixture& known) noexcept {
    const double calorific = in.calorific_value * reference.combustion;  // at 25 degC [MJ/m3]
    const double mass = in.relative_density * reference.air_density;     // [kg/m3]
    const double others = mass_without_CH(known);                        // [kg/kmol]
    remainder = 1.0 - known.H2 - known.CO - known.CO2 - known.N2;
    CHH = -(H2_calorific * known.H2 + CO_calorific * known.CO);
    CHH_per_V = calorific;
    CH = remainder;
    CH_per_V = 0.0;
    unknown = nullptr;
    if (!knows_calorific_value(in.input_set)) {
      CHH = -(others + CH_molar_mass * CH) / CH_mass_per_H;
      CHH_per_V = mass / CH_mass_per_H;
    } else if (knows_density(in.input_set)) {
      // From the mass, if all that is left over were the unknown gas.
      unknown = knows_nitrogen(in.input_set) ? &Mixture::CO2 : &Mixture::N2;
      const double its_mass = knows_nitrogen(in.input_set) ? CO2_molar_mass : N2_molar_mass;
      const double lighter = 1.0 / (CH_molar_mass - its_mass);
      CH = (-CH_mass_per_H * CHH - others - its_mass * remainder) * lighter;
      CH_per_V = (mass - CH_mass_per_H * calorific) * lighter;
    }
  }
  void solve(double V, Mixture& x) const noexcept {
    x.CH = CH + CH_per_V * V;
    x.H = (CHH + CHH_per_V * V) / x.CH;
    if (unknown != nullptr) x.*unknown = remainder - x.CH;
  }
};

// Steps of the secant method on the change of B, from the reference program's start. Each change is some 1e-4 times
// the product of the two before: one below the tolerance leaves 1e-15 m3/kmol, a unit in the last place of V_m.
constexpr double B_start = -0.065;    // [m3/kmol]
constexpr double B_tolerance = 1e-9;  // [m3/kmol]
constexpr int max_steps = 50;

Outcome find_mixture(const Arguments& in, const ReferenceState& reference, Mixture& x, double& V) noexcept {
  const Balances balances(in, reference, x);
  double B = B_start, earlier_B = 0.0, earlier_change = 0.0;
  bool settled = false;
  for (int step = 0; step < max_steps; ++step) {
    V = reference.ideal_volume + B;
    balances.solve(V, x);
    if (!(x.CH > 0.0))
      return failure(calculation_error, u"the properties contradict each other: hydrocarbons come to a fraction of %",
                     x.CH);
    if (settled) return {};
    double B_of_x;
    if (!reference.second.of(x, B_of_x))
      return failure(calculation_error,
                     u"the properties contradict each other: no second virial coefficient with hydrocarbons of % "
                     u"MJ/kmol",
                     x.H);
    const double change = B_of_x - B;
    const double slope = step == 0 ? -1.0 : (change - earlier_change) / (B - earlier_B);
    settled = std::fabs(change) <= B_tolerance;
    earlier_B = B;
    earlier_change = change;
    B = slope < -0.1 ? B - change / slope : B_of_x;  // the slope is near -1 unless B leaves all sense
  }
  return failure(no_convergence, u"the composition does not settle within % steps", max_steps);
}

// The reference program's tests for properties that contradict each other.
Outcome check_mixture(const Mixture& x, double relative_density) noexcept {
  if (!(x.N2 >= -0.01 && x.N2 <= 0.5))
    return failure(calculation_error,
                   u"the properties contradict each other: nitrogen comes to a fraction of %, not -0.01 to 0.5",
                   x.N2);
  if (!(x.CO2 >= -0.01))  // as for nitrogen, where carbon dioxide is the one that is left
    return failure(calculation_error,
                   u"the properties contradict each other: carbon dioxide comes to a fraction of %, below -0.01",
                   x.CO2);
  if (!(x.N2 + x.CO2 <= 0.5))
    return failure(calculation_error,
                   u"the properties contradict each other: nitrogen and carbon dioxide come to a fraction of %, "
                   u"above 0.5",
                   x.N2 + x.CO2);
  const double least = 0.55 + 0.4 * std::fmax(x.N2, 0.0) + 0.97 * x.CO2 - 0.45 * x.H2;
  if (!(relative_density >= least))
    return failure(calculation_error,
                   u"the properties contradict each other: a relative density of % (0 degC), and at least % with "
                   u"these fractions",
                   relative_density, least);
  return {};
}

// ---- Arguments and range -----------------------------------------------------------------------------------------

template <class Option>
bool is_one_of(Option option, Option first, Option last) noexcept {
  return option >= first && option <= last;
}
bool is_fraction(double x) noexcept { return x >= 0.0 && x <= 1.0; }

Outcome check_arguments(const Arguments& in) noexcept {
  constexpr auto not_fraction = u"must be from % to %";
  if (!is_one_of(in.input_set, InputSet::calorific_density_co2, InputSet::density_co2_n2))
    return blame(in.input_set, argument_error, u"is not an input set (% to %)", 1, 4);
  if (!is_one_of(in.reference, Reference::c25_0, Reference::f60_60))
    return blame(in.reference, argument_error, u"is not a reference condition (% to %)", 1, 7);
  if (!(in.pressure >= 0.0) || !std::isfinite(in.pressure))
    return blame(in.pressure, argument_error, u"must not be below %", 0.0);
  if (!(in.temperature > 0.0) || !std::isfinite(in.temperature))
    return blame(in.temperature, argument_error, u"must be above %", 0.0);
  if (knows_calorific_value(in.input_set) && !(in.calorific_value > 0.0 && std::isfinite(in.calorific_value)))
    return blame(in.calorific_value, argument_error, u"must be above %", 0.0);
  if (knows_density(in.input_set) && !(in.relative_density > 0.0 && std::isfinite(in.relative_density)))
    return blame(in.relative_density, argument_error, u"must be above %", 0.0);
  double sum = in.hydrogen * (1.0 + carbon_monoxide);
  if (!is_fraction(in.hydrogen)) return blame(in.hydrogen, argument_error, not_fraction, 0.0, 1.0);
  if (knows_carbon_dioxide(in.input_set)) {
    if (!is_fraction(in.carbon_dioxide)) return blame(in.carbon_dioxide, argument_error, not_fraction, 0.0, 1.0);
    sum += in.carbon_dioxide;
  }
  if (knows_nitrogen(in.input_set)) {
    if (!is_fraction(in.nitrogen)) return blame(in.nitrogen, argument_error, not_fraction, 0.0, 1.0);
    sum += in.nitrogen;
  }
  if (sum > 1.0) return failure(argument_error, u"the fractions sum to %, above %", sum, 1.0);
  return {};
}

struct Limit {
  double low, high;
  bool holds(double value) const noexcept { return value >= low && value <= high; }
};
struct Limits {
  Limit p, T, Hs, d, CO2, N2, H2;
  bool hold(const Arguments& in, const Result& r) const noexcept {
    return p.holds(in.pressure) && T.holds(in.temperature) && Hs.holds(r.calorific_value) &&
           d.holds(r.relative_density) && CO2.holds(r.mixture.CO2) && N2.holds(r.mixture.N2) &&
           H2.holds(r.mixture.H2);
  }
};
// Nitrogen or carbon dioxide as the difference of the others may come out a little below zero.
constexpr double remainder = -0.01;
// Pipeline quality gas of ISO 12213-3, and the ranges that the reference program accepts.
constexpr Limits normal = {
    {0, 120}, {kelvin(-10.0), kelvin(65.0)}, {30, 45}, {0.55, 0.80}, {remainder, 0.20}, {remainder, 0.20}, {0, 0.10}};
constexpr Limits extended = {
    {0, 120}, {kelvin(-23.0), kelvin(65.0)}, {20, 48}, {0.55, 0.90}, {remainder, 0.30}, {remainder, 0.50}, {0, 0.10}};

}  // namespace

// ---- The virial equation -----------------------------------------------------------------------------------------

bool SecondVirial::of(const Mixture& x, double& B) const noexcept {
  const double b11 = B11[0] + x.H * (B11[1] + x.H * B11[2]);
  const double product = b11 * B33;
  if (!(product >= 0.0) && x.CO2 != 0.0) return false;
  const double b13 = product >= 0.0 ? -0.865 * std::sqrt(product) : 0.0;
  B = x.CH * (x.CH * b11 + x.N2 * z12 * (b11 + B22) + 2.0 * x.CO2 * b13) + x.N2 * (x.N2 * B22 + 2.0 * x.CO2 * B23) +
      x.CO2 * x.CO2 * B33;
  if (x.H2 != 0.0)  // and carbon monoxide with it
    B += 2.0 * (x.CH * (x.H2 * B15 + x.CO * B17) + x.N2 * x.H2 * B25) + x.H2 * x.H2 * B55 + x.CO * x.CO * B77;
  return std::isfinite(B);
}

bool third_virial(const Coefficients& c, double T, const Mixture& x, double& C) noexcept {
  const double C111 = c.C111[0].at(T) + x.H * (c.C111[1].at(T) + x.H * c.C111[2].at(T));
  // Cube roots of the pure gases' coefficients, a cross coefficient being a factor times three of them; NaN where a
  // coefficient is negative.
  const double r1 = cube_root(C111), r2 = x.N2 != 0.0 ? cube_root(c.C222.at(T)) : 0.0;
  const double r3 = x.CO2 != 0.0 ? cube_root(c.C333.at(T)) : 0.0;
  const double y12 = 0.92 + 0.0013 * (T - 270.0);
  constexpr double y13 = 0.92, y123 = 1.10, y15 = 1.20;
  const double CH2 = x.CH * x.CH, N22 = x.N2 * x.N2, CO22 = x.CO2 * x.CO2;
  C = CH2 * x.CH * C111 + N22 * x.N2 * c.C222.at(T) + CO22 * x.CO2 * c.C333.at(T) +
      3.0 * (x.CH * x.N2 * y12 * r1 * r2 * (x.CH * r1 + x.N2 * r2) +
             x.CH * x.CO2 * y13 * r1 * r3 * (x.CH * r1 + x.CO2 * r3) + N22 * x.CO2 * c.C223.at(T) +
             x.N2 * CO22 * c.C233.at(T)) +
      6.0 * x.CH * x.N2 * x.CO2 * y123 * r1 * r2 * r3;
  if (x.H2 != 0.0) {
    const double C555 = c.C555.at(T), r5 = cube_root(C555);
    C += x.H2 * x.H2 * x.H2 * C555 + 3.0 * CH2 * (x.H2 * y15 * r1 * r1 * r5 + x.CO * c.C117.at(T));
  }
  return std::isfinite(C);
}

Outcome calculate(const Arguments& in, Result& out) noexcept {
  if (const Outcome bad = check_arguments(in); !bad.good()) return bad;
  const ReferenceState& reference = references[static_cast<int>(in.reference) - 1];
  const ReferenceState& normal_state = references[0];

  out = Result{};
  Mixture& x = out.mixture;
  x.H2 = in.hydrogen;
  x.CO = carbon_monoxide * in.hydrogen;
  if (knows_nitrogen(in.input_set)) x.N2 = in.nitrogen;
  if (knows_carbon_dioxide(in.input_set)) x.CO2 = in.carbon_dioxide;
  double V0;  // molar volume at 0 degC and 1.01325 bar
  if (const Outcome bad = find_mixture(in, reference, x, V0); !bad.good()) return bad;
  if (in.reference > Reference::c0_0) {
    double B0;
    if (!normal_state.second.of(x, B0))
      return failure(calculation_error, u"the properties have no second virial coefficient at 0 degC");
    V0 = normal_state.ideal_volume + B0;
  }
  const double M = molar_mass(x);
  out.calorific_value = calorific_sum(x) / V0;
  out.relative_density = M / (normal_state.air_density * V0);
  // What was given comes back as it was, so that a value on a limit stays on it.
  if (in.reference == Reference::c25_0) {
    if (knows_calorific_value(in.input_set)) out.calorific_value = in.calorific_value;
    if (knows_density(in.input_set)) out.relative_density = in.relative_density;
  }
  if (const Outcome bad = check_mixture(x, out.relative_density); !bad.good()) return bad;

  const double T = in.temperature;
  double B, C;
  if (!SecondVirial(coefficients, T).of(x, B) || !third_virial(coefficients, T, x, C))
    return blame(in.temperature, calculation_error, u"has no virial coefficients with this gas");
  double& rho = out.molar_density;
  if (!virial_root(in.pressure / (R * T), B, C, rho))
    return blame(in.pressure, calculation_error, u"is reached by no gas density at this temperature");
  out.z = 1.0 + rho * (B + C * rho);
  out.mass_density = rho * M;
  if (!(out.z > 0.0) || !std::isfinite(out.z) || !std::isfinite(out.mass_density))
    return failure(calculation_error, u"the compressibility factor is no positive number");
  out.range = normal.hold(in, out) ? Range::normal : extended.hold(in, out) ? Range::extended : Range::out_of_range;
  return {};
}

}  // namespace norvane::SGERG
