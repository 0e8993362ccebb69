// API MPMS Chapter 11.1:2004: the records of Tables 5, 6, 23, 24, 53, 54, 59 and 60.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/liquid/api_11_1_2004.h"
#include "math/liquid/liquid_records.h"

namespace norvane::functions {
namespace {

using namespace API_11_1_2004;
using liquid::answered;
using liquid::customary;
using liquid::density;
using liquid::density_15;
using liquid::density_20;
using liquid::metric;
using liquid::Quantity;
using liquid::Units;

constexpr const record::Conversion& of_gravity = liquid::gravity_to_density<liquid::water_2004>;
constexpr const record::Conversion& of_relative = liquid::relative_to_density<liquid::water_2004>;
constexpr Quantity gravity = liquid::gravity.through(of_gravity);
constexpr Quantity gravity_60 = liquid::gravity_60.through(of_gravity);
constexpr Quantity relative = liquid::relative.through(of_relative);
constexpr Quantity relative_60 = liquid::relative_60.through(of_relative);

// Every table has the same lines but for its first value and its units.
constexpr std::array<record::Input, 6> inputs_of(const Units& units, double default_temperature, const Quantity& q,
                                                 double low, double high, double otherwise) {
  return {
      record::name_input(),
      in<&Observation::density>(liquid::given(q, low, high, otherwise)),
      in<&Observation::temperature>(liquid::temperature_input(units, default_temperature)),
      in<&Observation::pressure>(liquid::pressure_input(units)),
      in<&Observation::product>(liquid::product_input()),
      in<&Observation::rounding>(liquid::rounding_input()),
  };
}

template <auto density>
constexpr std::array<record::Output, 12> outputs_of(const Units& units, const Quantity& result) {
  return {
      record::status_output(),
      out<density>(answered(result)),
      out<&Correction::ctl>(liquid::ctl_output()),
      out<&Correction::cpl>(liquid::cpl_output()),
      out<&Correction::ctpl>(liquid::ctpl_output()),
      out<&Correction::k, &Constants::k0>(liquid::k0_output()),
      out<&Correction::k, &Constants::k1>(liquid::k1_output()),
      out<&Correction::k, &Constants::k2>(liquid::k2_output()),
      out<&Correction::alpha>(liquid::alpha_output(units)),
      out<&Correction::f>(liquid::f_output(units)),
      out<&Correction::group>(liquid::product_output()),
      out<&Correction::out_of_range>(liquid::range_output()),
  };
}

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

constexpr const CoefficientSet* coefficients_used[] = {&API_11_1_2004::coefficient_set};

constexpr record::Function table(std::u16string_view id, std::u16string_view display, std::u16string_view description,
                                 std::u16string_view keywords, std::span<const record::Input> inputs,
                                 std::span<const record::Output> outputs, const record::Binding& binding,
                                 std::u16string_view notes) {
  return liquid::function(id, display, description, u"API 11.1 (2004)", keywords, inputs, outputs, binding, notes)
      .with(coefficients_used);
}
using liquid::customary_words;
using liquid::metric_words;

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
