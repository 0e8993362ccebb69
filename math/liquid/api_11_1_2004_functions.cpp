// API MPMS Chapter 11.1:2004: the records of Tables 5, 6, 23, 24, 53, 54, 59 and 60.
#include <array>

#include "framework/binding.h"
#include "math/liquid/api_11_1_2004.h"

namespace norvane::functions {
namespace {

using namespace API_11_1_2004;
using record::input;
using record::output;

struct Units {
  std::uint32_t temperature;
  double temperature_low, temperature_high;
  std::uint32_t pressure;
  double pressure_low, pressure_high;
  std::uint32_t alpha;
  std::uint32_t f;
};
constexpr Units customary = {unit::degF, -100, 400, unit::psig, -10, 2000, unit::per_degF, unit::per_psi};
constexpr Units metric = {unit::degC, -100, 200, unit::bar_g, -1, 250, unit::per_degC, unit::per_kPa};

// The first input or output: texts of a quantity, and its ranges and defaults table by table.
struct Quantity {
  std::u16string_view key, display, description;
  std::uint32_t type;
  std::u16string_view tag;
  const record::Conversion* to_density = nullptr;
};

constexpr record::Conversion gravity_to_density{[](double api) noexcept { return density_of_gravity(api); },
                                                [](double rho) noexcept { return gravity_of_density(rho); }};
constexpr record::Conversion relative_to_density{[](double rd) noexcept { return density_of_relative(rd); },
                                                 [](double rho) noexcept { return relative_of_density(rho); }};
constexpr Quantity gravity = {u"api gravity", u"API Gravity", u"", data_type::num, u"API", &gravity_to_density};
constexpr Quantity gravity_60 = {
    u"api gravity 60", u"API Gravity @60\u00B0F", u"API gravity at 60 \u00B0F.", data_type::num,
    u"API60",          &gravity_to_density};
constexpr Quantity relative = {u"rel density", u"Relative Density", u"Observed relative density.", data_type::num,
                               u"RD",          &relative_to_density};
constexpr Quantity relative_60 = {
    u"rel density 60", u"Rel. Density @60\u00B0F", u"Relative density at 60 \u00B0F and 0 psig.", data_type::num,
    u"RD60",           &relative_to_density};
constexpr Quantity density = {u"density", u"Density", u"Observed density.", unit::kg_m3, u"DENS"};
constexpr Quantity density_15 = {u"density 15", u"Density @15\u00B0C", u"Density at 15 \u00B0C and 0 bar(g).",
                                 unit::kg_m3, u"DENS15"};
constexpr Quantity density_20 = {u"density 20", u"Density @20\u00B0C", u"Density at 20 \u00B0C and 0 bar(g).",
                                 unit::kg_m3, u"DENS20"};

// Every table has the same lines but for its first value and its units.
// clang-format off
constexpr std::array<record::Input, 6> inputs_of(const Units& units, double default_temperature, const Quantity& given,
                                                 double low, double high, double otherwise) {
  record::Input first = input(given.key, given.display, given.description, given.type).within(low, high).otherwise(otherwise);
  first.field.conversion = given.to_density;
  return {
      record::name_input(),
      in<&Observation::density>(first),
      in<&Observation::temperature>(input(u"temperature", u"Temperature", u"Observed temperature.", units.temperature)
          .within(units.temperature_low, units.temperature_high).otherwise(default_temperature)),
      in<&Observation::pressure>(input(u"pressure", u"Pressure", u"Observed pressure.", units.pressure)
          .within(units.pressure_low, units.pressure_high).otherwise(0)),
      in<&Observation::product>(input(u"product", u"Product", u"", enumeration::apiproduct).otherwise(1)),
      in<&Observation::rounding>(input(u"api rnd", u"API Rounding", u"API rounding and truncating.", data_type::boolean).otherwise(false)),
  };
}

template <auto density>
constexpr std::array<record::Output, 12> outputs_of(const Units& units, const Quantity& result) {
  record::Output first = output(result.key, result.display, result.description, result.type, result.tag);
  first.field.conversion = result.to_density;
  return {
      record::status_output(),
      out<density>(first),
      out<&Correction::ctl>(output(u"ctl", u"CTL", u"Volume correction factor for temperature.", data_type::num, u"CTL")),
      out<&Correction::cpl>(output(u"cpl", u"CPL", u"Volume correction factor for pressure.", data_type::num, u"CPL")),
      out<&Correction::ctpl>(output(u"ctpl", u"CTPL", u"Combined volume correction factor (CTPL = CTL * CPL).", data_type::num, u"CTPL")),
      out<&Correction::k, &Constants::k0>(output(u"k0", u"K0", u"Actual value of constant K0 used for CTL calculation.", data_type::num, u"K0")),
      out<&Correction::k, &Constants::k1>(output(u"k1", u"K1", u"Actual value of constant K1 used for CTL calculation.", data_type::num, u"K1")),
      out<&Correction::k, &Constants::k2>(output(u"k2", u"K2", u"Actual value of constant K2 used for CTL calculation.", data_type::num, u"K2")),
      out<&Correction::alpha>(output(u"alpha", u"Thermal Expansion", u"Thermal expansion factor (alpha).", units.alpha, u"ALPHA")),
      out<&Correction::f>(output(u"f", u"Compressibility", u"Compressibility factor (F).", units.f, u"F")),
      out<&Correction::group>(output(u"product", u"",
          u"When input 'Product' is 'Auto select', then the output is set to the actual selected product of the used "
          u"table, else the output is set equal to input 'Product'.", enumeration::apiproduct, u"PRDCUR")),
      out<&Correction::out_of_range>(output(u"oor", u"Range Status", u"", enumeration::rangestatus, u"OOR")),
  };
}
// clang-format on

// Units, default temperature; range and default of the first input.
constexpr auto table5_inputs = inputs_of(customary, 90, gravity, -20, 180, 30);
constexpr auto table6_inputs = inputs_of(customary, 90, gravity_60, -20, 120, 30);
constexpr auto table23_inputs = inputs_of(customary, 90, relative, 0, 1.3, 0.9);
constexpr auto table24_inputs = inputs_of(customary, 90, relative_60, 0, 1.3, 0.7);
constexpr auto table53_inputs = inputs_of(metric, 20, density, 0, 1300, 1000);
constexpr auto table54_inputs = inputs_of(metric, 25, density_15, 0, 1300, 1000);
constexpr auto table59_inputs = inputs_of(metric, 25, density, 0, 1300, 1000);
constexpr auto table60_inputs = inputs_of(metric, 90, density_20, 0, 1300, 1000);

constexpr auto table5_outputs = outputs_of<&Correction::base_density>(customary, gravity_60);
constexpr auto table6_outputs = outputs_of<&Correction::observed_density>(customary, gravity);
constexpr auto table23_outputs = outputs_of<&Correction::base_density>(customary, relative_60);
constexpr auto table24_outputs = outputs_of<&Correction::observed_density>(customary, relative);
constexpr auto table53_outputs = outputs_of<&Correction::base_density>(metric, density_15);
constexpr auto table54_outputs = outputs_of<&Correction::observed_density>(metric, density);
constexpr auto table59_outputs = outputs_of<&Correction::base_density>(metric, density_20);
constexpr auto table60_outputs = outputs_of<&Correction::observed_density>(metric, density);

// Notes for the reference, by direction and base.
// clang-format off
#define NOTES_COMMON \
  u"'Refined, auto' takes its constants by the density at 60 \u00B0F: gasoline below 770.352, transition zone below " \
  u"787.5195, jet fuel below 838.3127 kg/m3, fuel oil from there.\n" \
  u"Range status 1: temperature outside -58 to 302 \u00B0F (-50 to 150 \u00B0C), pressure outside 0 to 1500 psig " \
  u"(103.42 bar(g)), density at 60 \u00B0F outside 610.6 to 1163.5 kg/m3 (lubricating oil 800.9 to 1163.5), or " \
  u"observed density outside 470.5 to 1201.8 (crude oil), 470.4 to 1209.5 (refined products), 714.3 to 1208.3 kg/m3 " \
  u"(lubricating oil). The calculation is carried out all the same.\n" \
  u"A negative gauge pressure gives a CPL of exactly 1. Inputs are not rounded; API rounding rounds the CTPL to 5 " \
  u"decimals, half away from zero, and nothing else.\n"
#define NOTES_ITERATION \
  u"Status 3 when 15 steps do not meet the observed density within 1e-6 kg/m3. Crude oil, lubricating oil and " \
  u"'Refined, auto' converge within the limits, except in a gap of less than 0.0001 kg/m3 where two refined groups " \
  u"meet. A refined group that is named can fail outside its own densities, the transition zone also at high and " \
  u"low temperatures within them: prefer 'Refined, auto' there. A result is refined until base density times CTL " \
  u"times CPL gives the observed density within 1e-10 of it.\n"
#define NOTES_SECOND_SOLUTION \
  u"Below about 680 kg/m3, above about 220 \u00B0F (105 \u00B0C) and under pressure, an observed density has a second " \
  u"solution of a lower base density. The iteration starts at the observed density and can end there: the base " \
  u"density then lies outside the limits and the range status is 1.\n"
#define NOTES_METRIC \
  u"CTL, CTPL and CPL belong to the table's own base: volumes go through 60 \u00B0F, CTL is the ratio of the factors " \
  u"at the observed and at the base temperature.\n"
// clang-format on

constexpr std::u16string_view notes_to_60F =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.6.2.\n" NOTES_COMMON NOTES_ITERATION
        NOTES_SECOND_SOLUTION;
constexpr std::u16string_view notes_from_60F =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.6.1.\n" NOTES_COMMON;
constexpr std::u16string_view notes_to_metric =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.7.2.\n" NOTES_COMMON NOTES_METRIC NOTES_ITERATION
        NOTES_SECOND_SOLUTION;
constexpr std::u16string_view notes_from_metric =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.7.1.\n" NOTES_COMMON NOTES_METRIC NOTES_ITERATION;
#undef NOTES_COMMON
#undef NOTES_ITERATION
#undef NOTES_SECOND_SOLUTION
#undef NOTES_METRIC

constexpr record::Function table(std::u16string_view id, std::u16string_view display, std::u16string_view description,
                                 std::u16string_view keywords, std::span<const record::Input> inputs,
                                 std::span<const record::Output> outputs, const record::Binding& binding,
                                 std::u16string_view notes) {
  return {.id = id,
          .display = display,
          .description = description,
          .subcategory = u"API 11.1 (2004)",
          .keywords = keywords,
          .name_input = 0,
          .inputs = inputs,
          .outputs = outputs,
          .binding = &binding,
          .notes = notes};
}
constexpr std::u16string_view customary_words = u"customary,liquid,api";
constexpr std::u16string_view metric_words = u"metric,liquid,api";

}  // namespace

extern const record::Function API_Table5_2004, API_Table6_2004, API_Table23_2004, API_Table24_2004, API_Table53_2004,
    API_Table54_2004, API_Table59_2004, API_Table60_2004;

const record::Function API_Table5_2004 =
    table(u"API_Table5_2004", u"API Table-5 (2004)",
          u"API Gravity at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, typically 0 psig) according to "
          u"API MPMS Chapter 11.1:2004 Table 5.",
          customary_words, table5_inputs, table5_outputs, bound<to_60F>, notes_to_60F);

const record::Function API_Table6_2004 =
    table(u"API_Table6_2004", u"API Table-6 (2004)",
          u"CTL (Correction Factor for Temperature) at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, "
          u"typically 0 psig) according to API MPMS Chapter 11.1:2004 Table 6.",
          customary_words, table6_inputs, table6_outputs, bound<from_60F>, notes_from_60F);

const record::Function API_Table23_2004 =
    table(u"API_Table23_2004", u"API Table-23 (2004)",
          u"Relative Density at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, typically 0 psig) "
          u"according to API MPMS Chapter 11.1:2004 Table 23.",
          customary_words, table23_inputs, table23_outputs, bound<to_60F>, notes_to_60F);

const record::Function API_Table24_2004 =
    table(u"API_Table24_2004", u"API Table-24 (2004)",
          u"CTL (Correction Factor for Temperature) at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, "
          u"typically 0 psig) according to API MPMS Chapter 11.1:2004 Table 24.",
          customary_words, table24_inputs, table24_outputs, bound<from_60F>, notes_from_60F);

const record::Function API_Table53_2004 =
    table(u"API_Table53_2004", u"API Table-53 (2004)",
          u"Density at 15 \u00B0C and EVP (Equilibrium Vapor Pressure, typically 0 bar(g)) according to "
          u"API MPMS Chapter 11.1:2004 Table 53.",
          metric_words, table53_inputs, table53_outputs, bound<to_15C>, notes_to_metric);

const record::Function API_Table54_2004 =
    table(u"API_Table54_2004", u"API Table-54 (2004)",
          u"CTL (Correction Factor for Temperature) at 15 \u00B0C and EVP (Equilibrium Vapor Pressure, "
          u"typically 0 bar(g)) according to API MPMS Chapter 11.1:2004 Table 54.",
          metric_words, table54_inputs, table54_outputs, bound<from_15C>, notes_from_metric);

// "psig" in a metric table is the established text.
const record::Function API_Table59_2004 =
    table(u"API_Table59_2004", u"API Table-59 (2004)",
          u"Density at 20 \u00B0C and EVP (Equilibrium Vapor Pressure, typically 0 psig) according to "
          u"API MPMS Chapter 11.1:2004 Table 59.",
          metric_words, table59_inputs, table59_outputs, bound<to_20C>, notes_to_metric);

const record::Function API_Table60_2004 =
    table(u"API_Table60_2004", u"API Table-60 (2004)",
          u"CTL (Correction Factor for Temperature) at 20 \u00B0C and EVP (Equilibrium Vapor Pressure, "
          u"typically 0 bar(g)) according to API MPMS Chapter 11.1:2004 Table 60.",
          metric_words, table60_inputs, table60_outputs, bound<from_20C>, notes_from_metric);

}  // namespace norvane::functions
