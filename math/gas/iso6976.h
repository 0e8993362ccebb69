// ISO 6976: calorific values, density, relative density and Wobbe index of a natural gas
// from its composition; editions 1995 and 2016.
//
// Fractions stand in the standard's component order (n_components of the edition's tables) and sum to 1. The
// gas of 22 components, common in flow computers, stands in the same order with the rare components left out.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "core/outcome.h"

namespace norvane::ISO6976 {

inline constexpr std::size_t n_common = 22;
inline constexpr std::size_t n_1995 = 55;
inline constexpr std::size_t n_2016 = 60;

// Rows (from 0) of the standard's tables that the gas of 22 components consists of, in the order of the
// tables: methane to n-hexane, n-heptane to n-decane, hydrogen, water, hydrogen sulfide, carbon monoxide,
// helium, argon, nitrogen, oxygen, carbon dioxide.
inline constexpr std::array<std::size_t, n_common> common_rows = {0,  1,  2,  3,  4,  5,  6,  7,  8,  13, 14,
                                                                  15, 16, 40, 41, 42, 45, 48, 50, 51, 52, 53};

// Where each of these stands in the component order of AGA-8 with neo-pentane behind (methane, nitrogen,
// carbon dioxide, ethane, propane, water, ...).
inline constexpr std::array<std::size_t, n_common> common_places = {0,  3,  4, 11, 10, 13, 12, 21, 14, 15, 16,
                                                                    17, 18, 7, 5,  6,  8,  19, 20, 1,  9,  2};

enum class MolarMassMethod : int { calculate = 1, table = 2 };         // from atoms; tabulated
enum class CalorificMethod : int { definitive = 1, alternative = 2 };  // from molar values; from the rounded tables

inline constexpr int composition_error = 3;  // status

struct Properties {
  double superior_volume = 0.0;   // real gas, MJ/m3 at metering temperature and 101.325 kPa
  double density = 0.0;           // kg/m3
  double compressibility = 0.0;   // Z, -
  double relative_density = 0.0;  // real gas, -
  double molar_mass = 0.0;        // kg/kmol
  double superior_mass = 0.0;     // MJ/kg
  double superior_molar = 0.0;    // MJ/kmol (= kJ/mol)
  double inferior_volume = 0.0;   // MJ/m3
  double inferior_mass = 0.0;     // MJ/kg
  double inferior_molar = 0.0;    // MJ/kmol
  double wobbe = 0.0;             // superior, MJ/m3
};

// Range of application: methane at least 0.5, ethane at most 0.15, nitrogen at most 0.3, carbon dioxide at most 0.15,
// any other component at most 0.05; by the 2016 edition also Z above 0.9. Results outside are still valid numbers.
struct Range {
  static constexpr int inside = -1;
  static constexpr int compressibility = -2;
  int first_outside = inside;  // row of the first component outside, in the standard's order
  double limit = 0.0;          // the limit it breaks

  bool ok() const noexcept { return first_outside == inside; }
};

struct Result {
  Outcome outcome{};
  Properties properties{};
  Range range{};
};

// What a calculation of a gas as it is given delivers.
struct Delivered {
  Properties properties{};
  bool out_of_range = false;  // outside the range of application
};

struct Options {
  int reference;  // see edition_1995 and edition_2016
  MolarMassMethod molar_mass;
  CalorificMethod calorific;
};

// A gas as it is given: amounts in fractions or percent, in the order of math/common/components.h, normalised together
// with the further components (rows of the standard's tables in the order that their inputs name).
struct Gas22 {
  std::array<double, n_common> composition;
  Options options;
};
struct Gas55 {
  std::array<double, n_common> composition;
  std::array<double, 4> alkanes;
  std::array<double, 11> alkenes;
  std::array<double, 6> cycloalkanes;
  std::array<double, 4> aromatics;
  std::array<double, 8> others;
  Options options;
};
struct Gas60 {
  std::array<double, n_common> composition;
  std::array<double, 9> alkanes;
  std::array<double, 11> alkenes;
  std::array<double, 10> ring_compounds;
  std::array<double, 8> others;
  Options options;
};

// Statuses: argument_error for an unknown reference, calculation_error for a negative amount, for nothing at all and for a
// mixture without a gas density, composition_error for a sum that is neither 1 nor 100. A gas outside the range of
// application is a remark.
Outcome of_1995(const Gas22& gas, Delivered& result) noexcept;
Outcome of_1995_all(const Gas55& gas, Delivered& result) noexcept;
Outcome of_2016(const Gas22& gas, Delivered& result) noexcept;
Outcome of_2016_all(const Gas60& gas, Delivered& result) noexcept;
// The first edition, whose tables are not part of this build: calculation_error for any gas.
Outcome of_1983(const Gas22& gas, Delivered& result) noexcept;

// Reference option, temperatures of combustion / metering in degC: 1: 15/15, 2: 0/0, 3: 15/0, 4: 25/0,
// 5: 20/20, 6: 25/20. Any other option is an argument_error.
Result edition_1995(std::span<const double, n_common> x, int reference, MolarMassMethod mass,
                    CalorificMethod method) noexcept;
Result edition_1995(std::span<const double, n_1995> x, int reference, MolarMassMethod mass,
                    CalorificMethod method) noexcept;

// The same options and 7: 60 degF / 60 degF, tabulated at 15.55 degC.
// The edition has one calculation, the definitive.
Result edition_2016(std::span<const double, n_common> x, int reference, MolarMassMethod mass) noexcept;
Result edition_2016(std::span<const double, n_2016> x, int reference, MolarMassMethod mass) noexcept;

// Name of a component by its row in the standard's tables (the same in both editions); empty beyond the last row.
std::string_view component_name(std::size_t row) noexcept;

}  // namespace norvane::ISO6976
