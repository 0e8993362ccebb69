// API 2540 (1980): the records of Tables 5, 6, 23, 24, 53 and 54.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/liquid/api_11_1_1980_records.h"

namespace norvane::functions {
namespace {

using namespace API_11_1_1980;
using liquid::customary;
using liquid::customary_words;
using liquid::metric;
using liquid::metric_words;
using liquid::Quantity;
using liquid::Units;

constexpr Quantity gravity = liquid::gravity.through(of_gravity);
constexpr Quantity gravity_60 = liquid::gravity_60.through(of_gravity);
constexpr Quantity relative = liquid::relative.through(of_relative);
constexpr Quantity relative_60 = liquid::relative_60.through(of_relative);

// Tables 5, 23 and 53.
constexpr std::array<record::Input, 6> observed_inputs(const Units& units, const Quantity& q, double low, double high,
                                                       double otherwise) {
  return {
      record::name_input(),
      in<&Observation::density>(liquid::given(q, low, high, otherwise)),
      in<&Observation::temperature>(liquid::temperature_input(units)),
      in<&Observation::product>(liquid::product_input()),
      in<&Observation::hydrometer>(liquid::hydrometer_input()),
      in<&Observation::rounding>(rounding_input()),
  };
}
constexpr auto table5_inputs = observed_inputs(customary, gravity, -20, 180, 30);
constexpr auto table23_inputs = observed_inputs(customary, relative, 0, 1.3, 0.9);
constexpr auto table53_inputs = observed_inputs(metric, liquid::density, 0, 1300, 850);

// Tables 6, 24 and 54.
constexpr std::array<record::Input, 5> base_inputs(const Units& units, const Quantity& q, double low, double high,
                                                   double otherwise) {
  return {
      record::name_input(),
      in<&Observation::density>(liquid::given(q, low, high, otherwise)),
      in<&Observation::temperature>(liquid::temperature_input(units)),
      in<&Observation::product>(liquid::product_input()),
      in<&Observation::rounding>(rounding_input()),
  };
}
constexpr auto table6_inputs = base_inputs(customary, gravity_60, -20, 120, 30);
constexpr auto table24_inputs = base_inputs(customary, relative_60, 0, 1.3, 0.9);
constexpr auto table54_inputs = base_inputs(metric, liquid::density_15, 0, 1300, 850);

constexpr std::array<record::Output, 7> factor_outputs(const Units& units) {
  return join(std::array{out<&Correction::ctl>(liquid::ctl_output())}, constant_outputs(units),
              std::array{out<&Correction::product>(liquid::product_output()),
                         out<&Correction::range>(extended_range_output(u"oor"))});
}
constexpr std::array<record::Output, 8> base_outputs(const Units& units) {
  return join(std::array{record::status_output()}, factor_outputs(units));
}
constexpr std::array<record::Output, 9> observed_outputs(const Units& units, const Quantity& result) {
  return join(std::array{record::status_output(), out<&Correction::base_density>(liquid::answered(result))},
              factor_outputs(units));
}
constexpr auto table5_outputs = observed_outputs(customary, gravity_60);
constexpr auto table23_outputs = observed_outputs(customary, relative_60);
constexpr auto table53_outputs = observed_outputs(metric, liquid::density_15);
constexpr auto outputs_60F = base_outputs(customary);
constexpr auto outputs_15C = base_outputs(metric);

// clang-format off
#define NOTES_ITERATION \
  u"The base density is solved for in full: base density times CTL is the observed density, after the hydrometer " \
  u"correction where it is asked for. Where two groups meet, an observed value may belong to two base values or to " \
  u"none: the answer is then the largest density that does not exceed it, and in a gap the edge itself.\n"
// clang-format on
constexpr std::u16string_view notes_to_base =
    u"API 2540 (1980) (ASTM D1250-80, IP 200/80).\n" NV_NOTES_1980 NOTES_ITERATION;
constexpr std::u16string_view notes_from_base = u"API 2540 (1980) (ASTM D1250-80, IP 200/80).\n" NV_NOTES_1980;
#undef NOTES_ITERATION

constexpr const CoefficientSet* coefficients_used[] = {&API_11_1_1980::coefficient_set};

constexpr record::Function table(std::u16string_view id, std::u16string_view display, std::u16string_view description,
                                 std::u16string_view keywords, std::span<const record::Input> inputs,
                                 std::span<const record::Output> outputs, const record::Binding& binding,
                                 std::u16string_view notes) {
  return liquid::function(id, display, description, u"API 11.1 (1980)", keywords, inputs, outputs, binding, notes)
      .with(coefficients_used);
}

}  // namespace

extern const record::Function API_Table5_1980, API_Table6_1980, API_Table23_1980, API_Table24_1980, API_Table53_1980,
    API_Table54_1980;

const record::Function API_Table5_1980 =
    table(u"API_Table5_1980", u"API Table-5 (1980)",
          u"API gravity at 60 \u00B0F of an observed API gravity according to API 2540 (1980) Table 5.",
          customary_words, table5_inputs, table5_outputs, bound<to_60F>, notes_to_base);

const record::Function API_Table6_1980 =
    table(u"API_Table6_1980", u"API Table-6 (1980)",
          u"CTL (correction factor for temperature) to 60 \u00B0F according to API 2540 (1980) Table 6.",
          customary_words, table6_inputs, outputs_60F, bound<from_60F>, notes_from_base);

const record::Function API_Table23_1980 =
    table(u"API_Table23_1980", u"API Table-23 (1980)",
          u"Relative density at 60 \u00B0F of an observed relative density according to API 2540 (1980) Table 23.",
          customary_words, table23_inputs, table23_outputs, bound<to_60F>, notes_to_base);

const record::Function API_Table24_1980 =
    table(u"API_Table24_1980", u"API Table-24 (1980)",
          u"CTL (correction factor for temperature) to 60 \u00B0F according to API 2540 (1980) Table 24.",
          customary_words, table24_inputs, outputs_60F, bound<from_60F>, notes_from_base);

const record::Function API_Table53_1980 =
    table(u"API_Table53_1980", u"API Table-53 (1980)",
          u"Density at 15 \u00B0C of an observed density according to API 2540 (1980) Table 53.", metric_words,
          table53_inputs, table53_outputs, bound<to_15C>, notes_to_base);

const record::Function API_Table54_1980 =
    table(u"API_Table54_1980", u"API Table-54 (1980)",
          u"CTL (correction factor for temperature) to 15 \u00B0C according to API 2540 (1980) Table 54.",
          metric_words, table54_inputs, outputs_15C, bound<from_15C>, notes_from_base);

}  // namespace norvane::functions
