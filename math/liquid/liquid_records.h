// Lines that the records of the liquid functions share. The calculation's own file says which member each one fills.
#pragma once

#include <cstdint>
#include <string_view>

#include "framework/records.h"
#include "math/liquid/liquid.h"

namespace norvane::liquid {

// The units of customary and of metric functions, with the bounds of the two conditions that all have.
struct Units {
  std::uint32_t temperature;
  double temperature_low, temperature_high, temperature_default;
  std::uint32_t pressure;
  double pressure_low, pressure_high;
  double equilibrium_high;
  std::uint32_t alpha;
  std::uint32_t f;
};
// clang-format off
inline constexpr Units customary = {unit::degF, -100, 400, 60, unit::psig, -10, 2000, 2000, unit::per_degF, unit::per_psi};
inline constexpr Units metric = {unit::degC, -100, 200, 15, unit::bar_g, -1, 250, 150, unit::per_degC, unit::per_kPa};
// clang-format on

inline constexpr std::u16string_view customary_words = u"customary,liquid,api";
inline constexpr std::u16string_view metric_words = u"metric,liquid,api";

// Gravity and relative density into the density that a calculation takes.
template <const Water& water>
inline constexpr record::Conversion gravity_to_density{
    [](double api) noexcept { return water.density_of_gravity(api); },
    [](double rho) noexcept { return water.gravity_of_density(rho); }};
template <const Water& water>
inline constexpr record::Conversion relative_to_density{
    [](double g) noexcept { return water.density_of_relative(g); },
    [](double rho) noexcept { return water.relative_of_density(rho); }};
// Gravity into the relative density that a calculation takes.
inline constexpr record::Conversion gravity_to_relative{[](double api) noexcept { return relative_of_gravity(api); },
                                                        [](double g) noexcept { return gravity_of_relative(g); }};

// What a function is given or answers: the texts of a quantity, and its way into the calculation.
struct Quantity {
  std::u16string_view key, display, description;
  std::uint32_t type;
  std::u16string_view tag;
  const record::Conversion* conversion = nullptr;

  constexpr Quantity through(const record::Conversion& way) const {
    Quantity copy = *this;
    copy.conversion = &way;
    return copy;
  }
};
// clang-format off
inline constexpr Quantity gravity = {u"api gravity", u"API Gravity", u"", data_type::num, u"API"};
inline constexpr Quantity gravity_60 = {u"api gravity 60", u"API Gravity @60\u00B0F", u"API gravity at 60 \u00B0F.", data_type::num, u"API60"};
inline constexpr Quantity relative = {u"rel density", u"Relative Density", u"Observed relative density.", data_type::num, u"RD"};
inline constexpr Quantity relative_60 = {u"rel density 60", u"Rel. Density @60\u00B0F", u"Relative density at 60 \u00B0F and 0 psig.", data_type::num, u"RD60"};
inline constexpr Quantity density = {u"density", u"Density", u"Observed density.", unit::kg_m3, u"DENS"};
inline constexpr Quantity density_15 = {u"density 15", u"Density @15\u00B0C", u"Density at 15 \u00B0C and 0 bar(g).", unit::kg_m3, u"DENS15"};
inline constexpr Quantity density_20 = {u"density 20", u"Density @20\u00B0C", u"Density at 20 \u00B0C and 0 bar(g).", unit::kg_m3, u"DENS20"};
// clang-format on

constexpr record::Input given(const Quantity& q, double low, double high, double otherwise) {
  record::Input line = record::input(q.key, q.display, q.description, q.type).within(low, high).otherwise(otherwise);
  line.field.conversion = q.conversion;
  return line;
}
constexpr record::Output answered(const Quantity& q) {
  record::Output line = record::output(q.key, q.display, q.description, q.type, q.tag);
  line.field.conversion = q.conversion;
  return line;
}

// Inputs.
constexpr record::Input temperature_input(const Units& units, double otherwise) {
  return record::input(u"temperature", u"Temperature", u"Observed temperature.", units.temperature)
      .within(units.temperature_low, units.temperature_high)
      .otherwise(otherwise);
}
constexpr record::Input temperature_input(const Units& units) {
  return temperature_input(units, units.temperature_default);
}
constexpr record::Input pressure_input(const Units& units) {
  return record::input(u"pressure", u"Pressure", u"Observed pressure.", units.pressure)
      .within(units.pressure_low, units.pressure_high)
      .otherwise(0);
}
constexpr record::Input equilibrium_pressure_input(const Units& units) {
  return record::input(u"eq pressure", u"Equilibrium pressure",
                       u"Equilibrium pressure of the liquid at the observed temperature.", units.pressure)
      .within(0, units.equilibrium_high)
      .otherwise(0);
}
constexpr record::Input product_input() {
  return record::input(u"product", u"Product", u"", enumeration::apiproduct).otherwise(1);
}
constexpr record::Input switch_input(std::u16string_view key, std::u16string_view display,
                                     std::u16string_view description) {
  return record::input(key, display, description, data_type::boolean).otherwise(false);
}
constexpr record::Input rounding_input() {
  return switch_input(u"api rnd", u"API Rounding", u"API rounding and truncating.");
}
// Options that a function has for completeness and refuses.
constexpr record::Input refused_rounding_input(std::u16string_view key, std::u16string_view display) {
  return switch_input(key, display, u"Rounding as printed; other than disabled is refused, see the notes.");
}
constexpr record::Input p100_known_input() {
  return switch_input(u"p100 known", u"Vapour pressure known",
                      u"The vapour pressure at 100 \u00B0F is known; other than disabled is refused, see the notes.");
}
constexpr record::Input p100_input(const Units& units, double high) {
  return record::input(u"p100", u"Vapour pressure @100\u00B0F",
                       u"Vapour pressure at 100 \u00B0F; read when it is known.", units.pressure)
      .within(0, high)
      .otherwise(0);
}
constexpr record::Input hydrometer_input() {
  return switch_input(u"hydrometer", u"Hydrometer correction",
                      u"The observed value is the reading of a glass hydrometer.");
}

// Outputs.
// clang-format off
constexpr record::Output ctl_output() {
  return record::output(u"ctl", u"CTL", u"Volume correction factor for temperature.", data_type::num, u"CTL");
}
constexpr record::Output cpl_output() {
  return record::output(u"cpl", u"CPL", u"Volume correction factor for pressure.", data_type::num, u"CPL");
}
constexpr record::Output ctpl_output() {
  return record::output(u"ctpl", u"CTPL", u"Combined volume correction factor (CTPL = CTL * CPL).", data_type::num, u"CTPL");
}
constexpr record::Output k0_output() {
  return record::output(u"k0", u"K0", u"Actual value of constant K0 used for CTL calculation.", data_type::num, u"K0");
}
constexpr record::Output k1_output() {
  return record::output(u"k1", u"K1", u"Actual value of constant K1 used for CTL calculation.", data_type::num, u"K1");
}
constexpr record::Output k2_output() {
  return record::output(u"k2", u"K2", u"Actual value of constant K2 used for CTL calculation.", data_type::num, u"K2");
}
constexpr record::Output alpha_output(const Units& units) {
  return record::output(u"alpha", u"Thermal Expansion", u"Thermal expansion factor (alpha).", units.alpha, u"ALPHA");
}
constexpr record::Output f_output(const Units& units) {
  return record::output(u"f", u"Compressibility", u"Compressibility factor (F).", units.f, u"F");
}
constexpr record::Output product_output() {
  return record::output(
      u"product", u"",
      u"When input 'Product' is 'Auto select', then the output is set to the actual selected product of the used "
      u"table, else the output is set equal to input 'Product'.", enumeration::apiproduct, u"PRDCUR");
}
constexpr record::Output range_output() {
  return record::output(u"oor", u"Range Status", u"", enumeration::rangestatus, u"OOR");
}
// clang-format on

// A function of the group, with the lines that all have in common.
constexpr record::Function function(std::u16string_view id, std::u16string_view display,
                                    std::u16string_view description, std::u16string_view subcategory,
                                    std::u16string_view keywords, std::span<const record::Input> inputs,
                                    std::span<const record::Output> outputs, const record::Binding& binding,
                                    std::u16string_view notes) {
  return {.id = id,
          .display = display,
          .description = description,
          .subcategory = subcategory,
          .keywords = keywords,
          .name_input = 0,
          .inputs = inputs,
          .outputs = outputs,
          .binding = &binding,
          .notes = notes};
}

}  // namespace norvane::liquid
