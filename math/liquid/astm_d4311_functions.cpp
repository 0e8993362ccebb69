// ASTM D4311: the records.
#include <array>

#include "framework/binding.h"
#include "math/liquid/astm_d4311.h"
#include "math/liquid/liquid_records.h"

namespace norvane::functions {
namespace {

using ASTM_D4311::Arguments;
using ASTM_D4311::Result;

constexpr std::array<record::Input, 3> inputs_of(const record::Input& value, const liquid::Units& units, double low,
                                                 double high) {
  return {record::name_input(), in<&Arguments::value>(value),
          in<&Arguments::temperature>(liquid::temperature_input(units).within(low, high))};
}
constexpr auto inputs_60F = inputs_of(liquid::given(liquid::gravity_60, 0, 34.9, 10), liquid::customary, 0, 500);
constexpr auto inputs_15C = inputs_of(liquid::given(liquid::density_15, 850, 1300, 1000), liquid::metric, -25, 275);
constexpr record::Output outputs[] = {record::status_output(), out<&Result::ctl>(liquid::ctl_output())};

// clang-format off
#define NOTES_COMMON \
  u"CTL is a quadratic of the temperature, in the full precision of the metric equations; the printed tables have four " \
  u"decimals. "
// clang-format on

constexpr record::Function table(std::u16string_view id, std::u16string_view description,
                                 std::u16string_view keywords, std::span<const record::Input> inputs,
                                 const record::Binding& binding, std::u16string_view notes) {
  return liquid::function(id, u"ASTM D4311M (2009)", description, u"ASTM", keywords, inputs, outputs, binding, notes);
}

}  // namespace

extern const record::Function ASTM_D4311M_09_C, ASTM_D4311M_09_M;

const record::Function ASTM_D4311M_09_C =
    table(u"ASTM_D4311M_09_C", u"Volume correction factor of asphalt to 60 \u00B0F according to ASTM D4311.",
          u"customary,liquid,astm", inputs_60F, bound<ASTM_D4311::factor_60F>,
          u"ASTM D4311, customary tables: Table A below 15.0 \u00B0API, Table B from there. " NOTES_COMMON
          u"They are the metric equations re-based to 60 \u00B0F, which give the printed customary coefficients to every "
          u"digit; the rounded coefficients differ by up to 4e-5.\n");

const record::Function ASTM_D4311M_09_M = table(
    u"ASTM_D4311M_09_M", u"Volume correction factor of asphalt to 15 \u00B0C according to ASTM D4311.",
    u"metric,liquid,astm", inputs_15C, bound<ASTM_D4311::factor_15C>,
    u"ASTM D4311, metric tables: Table A from 966 kg/m3 at 15 \u00B0C, Table B below. " NOTES_COMMON u"At 15 \u00B0C they miss 1 by 3e-8.\n");
#undef NOTES_COMMON

}  // namespace norvane::functions
