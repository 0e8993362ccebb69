// API MPMS 11.2.4 (GPA TP-27): the records of Tables 23E, 24E, 53E, 54E, 59E and 60E.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/liquid/api_11_2_4.h"
#include "math/liquid/liquid_records.h"

namespace norvane::functions {
namespace {

using namespace API_11_2_4;
using liquid::customary;
using liquid::metric;
using liquid::Quantity;
using liquid::Units;

constexpr std::array<record::Input, 4> inputs_of(const Units& units, const Quantity& q, double low, double high) {
  return {
      record::name_input(),
      in<&Observation::density>(liquid::given(q, low, high, units.pressure == unit::psig ? 0.5 : 500)),
      in<&Observation::temperature>(liquid::temperature_input(units)),
      in<&Observation::rounding>(liquid::rounding_input()),
  };
}
constexpr auto table23E_inputs = inputs_of(customary, liquid::relative, 0.2, 0.75);
constexpr auto table24E_inputs = inputs_of(customary, liquid::relative_60, 0.3, 0.75);
constexpr auto observed_inputs = inputs_of(metric, liquid::density, 200, 750);
constexpr auto table54E_inputs = inputs_of(metric, liquid::density_15, 200, 750);
constexpr auto table60E_inputs = inputs_of(metric, liquid::density_20, 200, 750);

constexpr std::array<record::Output, 2> factor_lines = {out<&Correction::ctl>(liquid::ctl_output()),
                                                        out<&Correction::out_of_range>(liquid::range_output())};
constexpr std::array<record::Output, 4> observed_outputs(const Quantity& result) {
  return join(std::array{record::status_output(), out<&Correction::base_density>(liquid::answered(result))},
              factor_lines);
}
constexpr auto table23E_outputs = observed_outputs(liquid::relative_60);
constexpr auto table53E_outputs = observed_outputs(liquid::density_15);
constexpr auto table59E_outputs = observed_outputs(liquid::density_20);
constexpr auto factor_outputs = join(std::array{record::status_output()}, factor_lines);

// clang-format off
#define NOTES_COMMON \
  u"API MPMS Chapter 11.2.4 (GPA TP-27). The liquid lies between two of twelve reference fluids, both at the reduced " \
  u"temperature of the mixture. Status 2 outside relative density 0.325022 to 0.688039 at 60 \u00B0F and above the " \
  u"critical temperature of the liquid.\n" \
  u"Range status 1: relative density at 60 \u00B0F outside 0.3500 to 0.6880, temperature outside -50.8 to 199.4 " \
  u"\u00B0F (-46 to 93 \u00B0C), observed relative density outside 0.2100 to 0.7400. The calculation is carried out all " \
  u"the same.\n"
#define NOTES_ROUNDING \
  u"API rounding as printed: arguments to 0.0001 and 0.1 \u00B0F (0.1 kg/m3 and 0.05 \u00B0C), CTL to 0.00001."
#define NOTES_OBSERVED \
  u" An observed value is solved for in full; with rounding the base value is then rounded as the arguments are, and " \
  u"CTL belongs to the rounded one.\n"
#define NOTES_METRIC \
  u"Relative density is density/999.016. Volumes go through 60 \u00B0F, CTL is the ratio of the factors at the observed " \
  u"and at the base temperature. No worked example of the metric tables was at hand; the factors that they are made of " \
  u"meet the published examples of Table 24E.\n"
// clang-format on
constexpr std::u16string_view notes_23E = NOTES_COMMON NOTES_ROUNDING NOTES_OBSERVED;
constexpr std::u16string_view notes_24E = NOTES_COMMON NOTES_ROUNDING u"\n";
constexpr std::u16string_view notes_observed = NOTES_COMMON NOTES_METRIC NOTES_ROUNDING NOTES_OBSERVED;
constexpr std::u16string_view notes_base = NOTES_COMMON NOTES_METRIC NOTES_ROUNDING u"\n";
#undef NOTES_COMMON
#undef NOTES_ROUNDING
#undef NOTES_OBSERVED
#undef NOTES_METRIC

constexpr const CoefficientSet* coefficients_used[] = {&API_11_2_4::coefficient_set};

// All of the group carry the customary keyword, the metric ones too.
constexpr record::Function table(std::u16string_view id, std::u16string_view display, std::u16string_view description,
                                 std::span<const record::Input> inputs, std::span<const record::Output> outputs,
                                 const record::Binding& binding, std::u16string_view notes) {
  return liquid::function(id, display, description, u"API Table E NGL/LPG (TP-27)", liquid::customary_words, inputs,
                          outputs, binding, notes)
      .with(coefficients_used);
}

}  // namespace

extern const record::Function API_Table23E, API_Table24E, API_Table53E, API_Table54E, API_Table59E, API_Table60E;

const record::Function API_Table23E = table(
    u"API_Table23E", u"API Table-23E",
    u"Relative density at 60 \u00B0F of NGL and LPG from an observed one according to API MPMS 11.2.4 Table 23E.",
    table23E_inputs, table23E_outputs, bound<to_60F>, notes_23E);

const record::Function API_Table24E = table(
    u"API_Table24E", u"API Table-24E",
    u"CTL (correction factor for temperature) of NGL and LPG to 60 \u00B0F according to API MPMS 11.2.4 Table 24E.",
    table24E_inputs, factor_outputs, bound<from_60F>, notes_24E);

const record::Function API_Table53E =
    table(u"API_Table53E", u"API Table-53E",
          u"Density at 15 \u00B0C of NGL and LPG from an observed one according to API MPMS 11.2.4 Table 53E.",
          observed_inputs, table53E_outputs, bound<to_15C>, notes_observed);

const record::Function API_Table54E = table(
    u"API_Table54E", u"API Table-54E",
    u"CTL (correction factor for temperature) of NGL and LPG to 15 \u00B0C according to API MPMS 11.2.4 Table 54E.",
    table54E_inputs, factor_outputs, bound<from_15C>, notes_base);

const record::Function API_Table59E =
    table(u"API_Table59E", u"API Table-59E",
          u"Density at 20 \u00B0C of NGL and LPG from an observed one according to API MPMS 11.2.4 Table 59E.",
          observed_inputs, table59E_outputs, bound<to_20C>, notes_observed);

const record::Function API_Table60E = table(
    u"API_Table60E", u"API Table-60E",
    u"CTL (correction factor for temperature) of NGL and LPG to 20 \u00B0C according to API MPMS 11.2.4 Table 60E.",
    table60E_inputs, factor_outputs, bound<from_20C>, notes_base);

}  // namespace norvane::functions
