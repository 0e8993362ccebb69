// ASTM D1250-52: the records of Tables 5, 6, 23, 24, 53 and 54.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/liquid/api_11_1_1952_records.h"

namespace norvane::functions {
namespace {

using namespace API_11_1_1952;
using liquid::customary;
using liquid::customary_words;
using liquid::metric;
using liquid::metric_words;
using liquid::Quantity;
using liquid::Units;

constexpr Quantity gravity = liquid::gravity.through(liquid::gravity_to_relative);
constexpr Quantity gravity_60 = liquid::gravity_60.through(liquid::gravity_to_relative);

constexpr std::array<record::Input, 3> inputs_of(const Units& units, const Quantity& q, double low, double high,
                                                 double otherwise) {
  return {
      record::name_input(),
      in<&Observation::density>(liquid::given(q, low, high, otherwise)),
      in<&Observation::temperature>(liquid::temperature_input(units)),
  };
}
constexpr auto table5_inputs = inputs_of(customary, gravity, -20, 180, 30);
constexpr auto table6_inputs = inputs_of(customary, gravity_60, -20, 120, 30);
constexpr auto table23_inputs = inputs_of(customary, liquid::relative, 0, 1.3, 0.9);
constexpr auto table24_inputs = inputs_of(customary, liquid::relative_60, 0, 1.3, 0.9);
constexpr auto table53_inputs = inputs_of(metric, liquid::density, 0, 1300, 850);
constexpr auto table54_inputs = inputs_of(metric, liquid::density_15, 0, 1300, 850);

template <auto member>
constexpr std::array<record::Output, 3> outputs_of(const record::Output& line) {
  return {record::status_output(), out<member>(line), out<&Correction::out_of_range>(liquid::range_output())};
}
constexpr auto table5_outputs = outputs_of<&Correction::base_density>(liquid::answered(gravity_60));
constexpr auto table23_outputs = outputs_of<&Correction::base_density>(liquid::answered(liquid::relative_60));
constexpr auto table53_outputs = outputs_of<&Correction::base_density>(liquid::answered(liquid::density_15));
constexpr auto factor_outputs = outputs_of<&Correction::ctl>(liquid::ctl_output());

constexpr std::u16string_view notes = u"ASTM D1250-52 (IP 200/52).\n" NV_NOTES_1952;

constexpr const CoefficientSet* coefficients_used[] = {&API_11_1_1952::coefficient_set};

constexpr record::Function table(std::u16string_view id, std::u16string_view display, std::u16string_view description,
                                 std::u16string_view keywords, std::span<const record::Input> inputs,
                                 std::span<const record::Output> outputs, const record::Binding& binding) {
  return liquid::function(id, display, description, u"API 11.1 (1952)", keywords, inputs, outputs, binding, notes)
      .with(coefficients_used);
}

}  // namespace

extern const record::Function API_Table5_1952, API_Table6_1952, API_Table23_1952, API_Table24_1952, API_Table53_1952,
    API_Table54_1952;

const record::Function API_Table5_1952 =
    table(u"API_Table5_1952", u"API Table-5 (1952)",
          u"API gravity at 60 \u00B0F of an observed API gravity according to ASTM D1250-52 Table 5.",
          customary_words, table5_inputs, table5_outputs, bound<to_60F>);

const record::Function API_Table6_1952 =
    table(u"API_Table6_1952", u"API Table-6 (1952)",
          u"CTL (correction factor for temperature) to 60 \u00B0F according to ASTM D1250-52 Table 6.",
          customary_words, table6_inputs, factor_outputs, bound<from_60F>);

const record::Function API_Table23_1952 =
    table(u"API_Table23_1952", u"API Table-23 (1952)",
          u"Relative density at 60 \u00B0F of an observed relative density according to ASTM D1250-52 Table 23.",
          customary_words, table23_inputs, table23_outputs, bound<to_60F>);

const record::Function API_Table24_1952 =
    table(u"API_Table24_1952", u"API Table-24 (1952)",
          u"CTL (correction factor for temperature) to 60 \u00B0F according to ASTM D1250-52 Table 24.",
          customary_words, table24_inputs, factor_outputs, bound<from_60F>);

const record::Function API_Table53_1952 =
    table(u"API_Table53_1952", u"API Table-53 (1952)",
          u"Density at 15 \u00B0C of an observed density according to ASTM D1250-52 Table 53.", metric_words,
          table53_inputs, table53_outputs, bound<to_15C>);

const record::Function API_Table54_1952 =
    table(u"API_Table54_1952", u"API Table-54 (1952)",
          u"CTL (correction factor for temperature) to 15 \u00B0C according to ASTM D1250-52 Table 54.", metric_words,
          table54_inputs, factor_outputs, bound<from_15C>);

}  // namespace norvane::functions
