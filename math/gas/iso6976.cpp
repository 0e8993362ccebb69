// ISO 6976:1995 and ISO 6976:2016, Natural gas - Calculation of calorific values, density, relative density
// and Wobbe index from composition. Check values: 2016 edition, annex D.
//
//   x_i  mole fraction [-]                             M_i, M  molar mass, of the mixture [kg/kmol]
//   s_i  summation factor, sqrt(b_i) in 1995 [-]       Z       compression factor of the mixture [-]
//   t1   combustion temperature [degC]                 t2      metering temperature [degC]
//   d    relative density of the real gas [-]          rho     density of the real gas [kg/m3]
//   H    calorific value: molar [kJ/mol = MJ/kmol], mass [MJ/kg], volume [MJ/m3];
//        superior = gross, inferior = net
#include "math/gas/iso6976.h"

#include <cmath>

#include "math/common/composition.h"
#include "math/gas/iso6976_1995_table.h"
#include "math/gas/iso6976_2016_table.h"

namespace norvane::ISO6976 {
namespace {

constexpr double reference_pressure = 101.325;  // kPa, both editions
constexpr double zero_celsius = 273.15;         // K

// What the standard fixes for a metering temperature.
struct Metering {
  std::size_t column;          // of the summation factors
  double ideal_molar_density;  // p/(R T2), kmol/m3
  double z_air;                // compression factor of dry air
};

// A reference option: the columns of its two temperatures.
struct Reference {
  std::size_t combustion;  // column of the calorific values
  std::size_t metering;    // index into the edition's Metering table
};

// One edition's tables for N of its components, one array a column: what is summed lies side by side.
template <std::size_t N, std::size_t Summations, std::size_t Temperatures>
struct Columns {
  std::array<std::array<double, N>, 2> molar_mass;  // from atoms, tabulated
  std::array<std::array<double, N>, Summations> s;
  std::array<std::array<double, N>, Temperatures> superior;  // molar
  std::array<std::array<double, N>, Temperatures> inferior;
};

template <std::size_t N>
consteval std::array<std::size_t, N> rows_of() {
  if constexpr (N == n_common) {
    return common_rows;
  } else {
    std::array<std::size_t, N> rows{};
    for (std::size_t i = 0; i < N; ++i) rows[i] = i;
    return rows;
  }
}

constexpr double mass_of_atoms(const int (&atoms)[5], double monatomic, const double (&atomic_mass)[5]) {
  double mass = monatomic;
  for (std::size_t k = 0; k < 5; ++k) mass += atoms[k] * atomic_mass[k];
  return mass;
}

// The four sums over the composition that both editions rest on.
struct Sums {
  double M = 0.0, s = 0.0, superior = 0.0, inferior = 0.0;
};

template <std::size_t N>
Sums sum(std::span<const double, N> x, const std::array<double, N>& molar_mass, const std::array<double, N>& s,
         const std::array<double, N>& superior, const std::array<double, N>& inferior) noexcept {
  Sums sums;
  for (std::size_t i = 0; i < N; ++i) {
    sums.M += x[i] * molar_mass[i];
    sums.s += x[i] * s[i];
    sums.superior += x[i] * superior[i];
    sums.inferior += x[i] * inferior[i];
  }
  return sums;
}

template <std::size_t N>
double dot(std::span<const double, N> x, const std::array<double, N>& y) noexcept {
  double sum = 0.0;
  for (std::size_t i = 0; i < N; ++i) sum += x[i] * y[i];
  return sum;
}

double wobbe_index(const Properties& gas) noexcept { return gas.superior_volume / std::sqrt(gas.relative_density); }

// The definitive method: everything from the molar values. A mixture heavy enough for Z to reach 0 or less
// has no gas density; the components' factors allow it in the 2016 edition only (n-tetradecane, n-pentadecane).
bool definitive(const Sums& sums, const Metering& at, double molar_mass_of_air, Properties& gas) noexcept {
  const double Z = 1.0 - sums.s * sums.s;
  if (!(Z > 0.0) || !(sums.M > 0.0)) return false;
  const double molar_density = at.ideal_molar_density / Z;  // kmol/m3
  gas.compressibility = Z;
  gas.molar_mass = sums.M;
  gas.density = sums.M * molar_density;
  gas.relative_density = sums.M / molar_mass_of_air * at.z_air / Z;
  gas.superior_molar = sums.superior;
  gas.inferior_molar = sums.inferior;
  gas.superior_mass = sums.superior / sums.M;
  gas.inferior_mass = sums.inferior / sums.M;
  gas.superior_volume = sums.superior * molar_density;
  gas.inferior_volume = sums.inferior * molar_density;
  gas.wobbe = wobbe_index(gas);
  return true;
}

Outcome no_gas_density() noexcept {
  return failure(calculation_error, u"the mixture is too heavy: its compressibility factor is not above %", 0.0);
}

// Rows of the components that have a window of their own.
constexpr std::size_t row_methane = 0, row_ethane = 1, row_nitrogen = 51, row_carbon_dioxide = 53;
constexpr double methane_minimum = 0.5;

constexpr double maximum_of(std::size_t row) {
  switch (row) {
    case row_methane: return 1.0;
    case row_ethane: return 0.15;
    case row_nitrogen: return 0.3;
    case row_carbon_dioxide: return 0.15;
    default: return 0.05;
  }
}

template <std::size_t N>
Range range_of(std::span<const double, N> x) noexcept {
  static constexpr auto rows = rows_of<N>();
  static constexpr auto maxima = [] {
    std::array<double, N> limits{};
    for (std::size_t i = 0; i < N; ++i) limits[i] = maximum_of(rows[i]);
    return limits;
  }();
  if (!(x[row_methane] >= methane_minimum)) return {static_cast<int>(row_methane), methane_minimum};
  for (std::size_t i = 1; i < N; ++i) {
    if (!(x[i] <= maxima[i])) return {static_cast<int>(rows[i]), maxima[i]};
  }
  return {};
}

// ---- 1995 edition ------------------------------------------------------------------------------------------------

namespace year1995 {

constexpr double R = 8.31451;                                                    // J/(mol K)
constexpr double molar_mass_of_air = 28.9626;                                    // kg/kmol
constexpr double atomic_mass[5] = {12.011, 1.00794, 15.9994, 14.00674, 32.066};  // C, H, O, N, S

constexpr double ideal_molar_density(double t) { return reference_pressure / (R * (t + zero_celsius)); }

enum : std::size_t { metering_0, metering_15, metering_20 };
constexpr Metering meterings[] = {
    {0, ideal_molar_density(0.0), 0.99941},
    {1, ideal_molar_density(15.0), 0.99958},
    {2, ideal_molar_density(20.0), 0.99963},
};

enum : std::size_t { combustion_25, combustion_20, combustion_15, combustion_0 };
constexpr Reference references[] = {
    {combustion_15, metering_15}, {combustion_0, metering_0},   {combustion_15, metering_0},
    {combustion_25, metering_0},  {combustion_20, metering_20}, {combustion_25, metering_20},
};

// The rounded tables of the alternative method beside the common columns.
template <std::size_t N>
struct Table : Columns<N, 3, 4> {
  std::array<std::array<double, N>, 4> superior_mass, inferior_mass;
  std::array<std::array<double, N>, 6> superior_volume, inferior_volume;
};

template <std::size_t N>
consteval Table<N> build() {
  Table<N> table{};
  constexpr auto rows = rows_of<N>();
  for (std::size_t i = 0; i < N; ++i) {
    const auto& component = edition1995::table1[rows[i]];
    const auto& summation = edition1995::table2[rows[i]];
    const auto& molar = edition1995::table3[rows[i]];
    const auto& mass = edition1995::table4[rows[i]];
    const auto& volume = edition1995::table5[rows[i]];
    table.molar_mass[0][i] = mass_of_atoms(component.atoms, component.monatomic, atomic_mass);
    table.molar_mass[1][i] = component.molar_mass;
    for (std::size_t k = 0; k < 3; ++k) table.s[k][i] = summation.sqrt_b[k];
    for (std::size_t k = 0; k < 4; ++k) {
      table.superior[k][i] = molar.superior[k];
      table.inferior[k][i] = molar.inferior[k];
      table.superior_mass[k][i] = mass.superior[k];
      table.inferior_mass[k][i] = mass.inferior[k];
    }
    for (std::size_t k = 0; k < 6; ++k) {
      table.superior_volume[k][i] = volume.superior[k];
      table.inferior_volume[k][i] = volume.inferior[k];
    }
  }
  return table;
}

template <std::size_t N>
Result calculate(std::span<const double, N> x, int option, MolarMassMethod mass, CalorificMethod method) noexcept {
  static constexpr Table<N> table = build<N>();
  Result result;
  if (option < 1 || option > static_cast<int>(std::size(references))) {
    result.outcome = failure(argument_error, u"the reference temperature must be one of 1 to %",
                             static_cast<double>(std::size(references)));
    return result;
  }
  const auto index = static_cast<std::size_t>(option - 1);
  const Reference& reference = references[index];
  const Metering& at = meterings[reference.metering];
  const auto& molar_mass = table.molar_mass[mass == MolarMassMethod::table ? 1 : 0];
  const Sums sums = sum<N>(x, molar_mass, table.s[at.column], table.superior[reference.combustion],
                           table.inferior[reference.combustion]);
  Properties& gas = result.properties;
  if (!definitive(sums, at, molar_mass_of_air, gas)) {
    result.outcome = no_gas_density();
    return result;
  }

  if (method == CalorificMethod::alternative) {
    std::array<double, N> mass_of;  // x_i M_i: of each component in one kmol of the mixture, kg
    for (std::size_t i = 0; i < N; ++i) mass_of[i] = x[i] * molar_mass[i];
    const std::span<const double, N> w(mass_of);
    gas.superior_mass = dot<N>(w, table.superior_mass[reference.combustion]) / sums.M;
    gas.inferior_mass = dot<N>(w, table.inferior_mass[reference.combustion]) / sums.M;
    gas.superior_volume = dot<N>(x, table.superior_volume[index]) / gas.compressibility;
    gas.inferior_volume = dot<N>(x, table.inferior_volume[index]) / gas.compressibility;
    gas.wobbe = wobbe_index(gas);
  }
  result.range = range_of<N>(x);
  return result;
}

}  // namespace year1995

// ---- 2016 edition ------------------------------------------------------------------------------------------------

namespace year2016 {

constexpr double R = 8.3144621;                                                  // J/(mol K)
constexpr double molar_mass_of_air = 28.96546;                                   // kg/kmol
constexpr double atomic_mass[5] = {12.0107, 1.00794, 15.9994, 14.0067, 32.065};  // C, H, O, N, S
// Enthalpy of vaporisation of water at 0, 15, 15.55, 20, 25 degC, kJ/mol.
constexpr double vaporisation[5] = {45.064, 44.431, 44.408, 44.222, 44.013};
constexpr double minimum_compressibility = 0.9;  // volume-based results are for Z above it

constexpr double ideal_molar_density(double t) { return reference_pressure / (R * (t + zero_celsius)); }

enum : std::size_t { metering_0, metering_15, metering_60F, metering_20 };
constexpr Metering meterings[] = {
    {0, ideal_molar_density(0.0), 0.999419},
    {1, ideal_molar_density(15.0), 0.999595},
    {2, ideal_molar_density(15.55), 0.999601},
    {3, ideal_molar_density(20.0), 0.999645},
};

enum : std::size_t { combustion_0, combustion_15, combustion_60F, combustion_20, combustion_25 };
constexpr Reference references[] = {
    {combustion_15, metering_15},   {combustion_0, metering_0},   {combustion_15, metering_0},
    {combustion_25, metering_0},    {combustion_20, metering_20}, {combustion_25, metering_20},
    {combustion_60F, metering_60F},
};

template <std::size_t N>
consteval Columns<N, 4, 5> build() {
  Columns<N, 4, 5> table{};
  constexpr auto rows = rows_of<N>();
  for (std::size_t i = 0; i < N; ++i) {
    const auto& component = edition2016::table1[rows[i]];
    table.molar_mass[0][i] = mass_of_atoms(component.atoms, component.monatomic, atomic_mass);
    table.molar_mass[1][i] = component.molar_mass;
    for (std::size_t k = 0; k < 4; ++k) table.s[k][i] = edition2016::table2[rows[i]].s[k];
    for (std::size_t k = 0; k < 5; ++k) {
      table.superior[k][i] = edition2016::table3[rows[i]].gross[k];
      table.inferior[k][i] = table.superior[k][i] - component.atoms[1] / 2.0 * vaporisation[k];
    }
  }
  return table;
}

template <std::size_t N>
Result calculate(std::span<const double, N> x, int option, MolarMassMethod mass) noexcept {
  static constexpr auto table = build<N>();
  Result result;
  if (option < 1 || option > static_cast<int>(std::size(references))) {
    result.outcome = failure(argument_error, u"the reference temperature must be one of 1 to %",
                             static_cast<double>(std::size(references)));
    return result;
  }
  const Reference& reference = references[static_cast<std::size_t>(option - 1)];
  const Metering& at = meterings[reference.metering];
  const Sums sums = sum<N>(x, table.molar_mass[mass == MolarMassMethod::table ? 1 : 0], table.s[at.column],
                           table.superior[reference.combustion], table.inferior[reference.combustion]);
  if (!definitive(sums, at, molar_mass_of_air, result.properties)) {
    result.outcome = no_gas_density();
    return result;
  }
  result.range = range_of<N>(x);
  if (result.range.ok() && !(result.properties.compressibility > minimum_compressibility)) {
    result.range = {Range::compressibility, minimum_compressibility};
  }
  return result;
}

}  // namespace year2016
}  // namespace

Result edition_1995(std::span<const double, n_common> x, int reference, MolarMassMethod mass,
                    CalorificMethod method) noexcept {
  return year1995::calculate<n_common>(x, reference, mass, method);
}

Result edition_1995(std::span<const double, n_1995> x, int reference, MolarMassMethod mass,
                    CalorificMethod method) noexcept {
  return year1995::calculate<n_1995>(x, reference, mass, method);
}

Result edition_2016(std::span<const double, n_common> x, int reference, MolarMassMethod mass) noexcept {
  return year2016::calculate<n_common>(x, reference, mass);
}

Result edition_2016(std::span<const double, n_2016> x, int reference, MolarMassMethod mass) noexcept {
  return year2016::calculate<n_2016>(x, reference, mass);
}

std::string_view component_name(std::size_t row) noexcept {
  return row < n_2016 ? edition2016::table1[row].name : std::string_view{};
}

static_assert(edition1995::n_components == n_1995 && edition2016::n_components == n_2016);

// ---- A gas as it is given ----------------------------------------------------------------------------------------

namespace {

// Rows of the standard's tables that the further arrays hold.
constexpr std::array<std::size_t, 4> alkanes = {9, 10, 11, 12};
constexpr std::array<std::size_t, 9> alkanes_2016 = {9, 10, 11, 12, 55, 56, 57, 58, 59};
constexpr std::array<std::size_t, 11> alkenes = {17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27};
constexpr std::array<std::size_t, 6> cycloalkanes = {28, 29, 30, 31, 32, 33};
constexpr std::array<std::size_t, 4> aromatics = {34, 35, 36, 37};
constexpr std::array<std::size_t, 10> ring_compounds = {28, 29, 30, 31, 32, 33, 34, 35, 36, 37};
constexpr std::array<std::size_t, 8> others = {38, 39, 43, 44, 46, 47, 49, 54};

// Every row stands in exactly one array.
template <std::size_t N>
consteval bool covered(auto... arrays) {
  std::array<int, N> hits{};
  const auto count = [&hits](const auto& rows) {
    for (std::size_t row : rows) ++hits[row];
  };
  count(common_rows);
  (count(arrays), ...);
  for (int hit : hits)
    if (hit != 1) return false;
  return true;
}
static_assert(covered<n_1995>(alkanes, alkenes, cycloalkanes, aromatics, others));
static_assert(covered<n_2016>(alkanes_2016, alkenes, ring_compounds, others));

template <std::size_t Rows, std::size_t N>
void place(const std::array<double, Rows>& amounts, const std::array<std::size_t, Rows>& rows,
           std::array<double, N>& x) noexcept {
  for (std::size_t i = 0; i < Rows; ++i) x[rows[i]] = amounts[i];
}

template <std::size_t N>
std::array<double, N> in_rows(const std::array<double, n_common>& composition) noexcept {
  std::array<double, N> x{};
  for (std::size_t i = 0; i < n_common; ++i) x[common_rows[i]] = composition[common_places[i]];
  return x;
}

// The list to look at when the amounts together are none of a gas: the first that holds an amount below 0 or no number,
// else the one with the largest amount.
const void* culprit_of(const auto&... lists) noexcept {
  const void* found = nullptr;
  double largest = -1.0;
  const auto look = [&](const auto& list) {
    for (double amount : list) {
      if (amount >= 0.0 && !(amount > largest)) continue;
      if (std::isnan(largest)) return;
      largest = amount >= 0.0 ? amount : std::nan("");
      found = &list;
    }
  };
  (look(lists), ...);
  return found;
}
const void* culprit(const Gas22& gas) noexcept { return culprit_of(gas.composition); }
const void* culprit(const Gas55& gas) noexcept {
  return culprit_of(gas.composition, gas.alkanes, gas.alkenes, gas.cycloalkanes, gas.aromatics, gas.others);
}
const void* culprit(const Gas60& gas) noexcept {
  return culprit_of(gas.composition, gas.alkanes, gas.alkenes, gas.ring_compounds, gas.others);
}

// Normalises x, which holds all of the gas, and calculates: calculate(x) is the edition's.
template <class Gas, std::size_t N, class Calculate>
Outcome deliver(const Gas& gas, std::array<double, N>& x, Delivered& delivered, Calculate calculate) noexcept {
  const double sum = composition::sum_of(x);
  const Outcome judged = composition::judge(composition::normalise(x), gas.composition, sum, composition_error);
  if (!judged.good()) {
    Outcome blamed = judged;
    blamed.member = culprit(gas);
    return blamed;
  }
  const Result result = calculate(x);
  if (result.outcome.status == argument_error)
    return blame(gas.options.reference, argument_error, u"must be within 1 to %", result.outcome.limits[0]);
  if (!result.outcome.good()) return result.outcome;
  delivered = {result.properties, !result.range.ok()};
  if (result.range.ok()) return {};
  if (result.range.first_outside == Range::compressibility)
    return remark(u"The gas is outside the range of application of the standard: compressibility factor not above %",
                  result.range.limit);
  return remark(result.range.first_outside == 0
                    ? u"The gas is outside the range of application of the standard: $ below %"
                    : u"The gas is outside the range of application of the standard: $ above %",
                result.range.limit)
      .naming(component_name(static_cast<std::size_t>(result.range.first_outside)));
}

// The 22 amounts are normalised in the order they are given in, and only then put into the standard's.
std::array<double, n_common> in_standard_order(const std::array<double, n_common>& composition) noexcept {
  std::array<double, n_common> x;
  for (std::size_t i = 0; i < n_common; ++i) x[i] = composition[common_places[i]];
  return x;
}

}  // namespace

Outcome of_1995(const Gas22& gas, Delivered& result) noexcept {
  std::array<double, n_common> given = gas.composition;
  return deliver(gas, given, result, [&gas](const std::array<double, n_common>& x) {
    return edition_1995(std::span<const double, n_common>(in_standard_order(x)), gas.options.reference,
                        gas.options.molar_mass, gas.options.calorific);
  });
}

Outcome of_2016(const Gas22& gas, Delivered& result) noexcept {
  std::array<double, n_common> given = gas.composition;
  return deliver(gas, given, result, [&gas](const std::array<double, n_common>& x) {
    return edition_2016(std::span<const double, n_common>(in_standard_order(x)), gas.options.reference,
                        gas.options.molar_mass);
  });
}

Outcome of_1995_all(const Gas55& gas, Delivered& result) noexcept {
  std::array<double, n_1995> all = in_rows<n_1995>(gas.composition);
  place(gas.alkanes, alkanes, all);
  place(gas.alkenes, alkenes, all);
  place(gas.cycloalkanes, cycloalkanes, all);
  place(gas.aromatics, aromatics, all);
  place(gas.others, others, all);
  return deliver(gas, all, result, [&gas](const std::array<double, n_1995>& x) {
    return edition_1995(std::span(x), gas.options.reference, gas.options.molar_mass, gas.options.calorific);
  });
}

Outcome of_2016_all(const Gas60& gas, Delivered& result) noexcept {
  std::array<double, n_2016> all = in_rows<n_2016>(gas.composition);
  place(gas.alkanes, alkanes_2016, all);
  place(gas.alkenes, alkenes, all);
  place(gas.ring_compounds, ring_compounds, all);
  place(gas.others, others, all);
  return deliver(gas, all, result, [&gas](const std::array<double, n_2016>& x) {
    return edition_2016(std::span(x), gas.options.reference, gas.options.molar_mass);
  });
}

Outcome of_1983(const Gas22&, Delivered&) noexcept {
  return failure(calculation_error, u"the tables of this standard are not part of this build");
}

}  // namespace norvane::ISO6976
