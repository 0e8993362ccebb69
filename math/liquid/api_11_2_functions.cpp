// API MPMS 11.2.1, 11.2.1M, 11.2.2 and 11.2.2M: the records.
#include <array>

#include "framework/binding.h"
#include "math/liquid/api_11_2_1.h"
#include "math/liquid/api_11_2_2.h"
#include "math/liquid/liquid_records.h"

namespace norvane::functions {
namespace {

using liquid::Compressed;
using liquid::Compression;
using liquid::customary;
using liquid::metric;
using liquid::Quantity;
using liquid::Units;

constexpr std::array<record::Input, 6> inputs_of(const Units& units, const Quantity& q, double low, double high,
                                                 double otherwise) {
  return {
      record::name_input(),
      in<&Compression::density>(liquid::given(q, low, high, otherwise)),
      in<&Compression::temperature>(liquid::temperature_input(units)),
      in<&Compression::pressure>(liquid::pressure_input(units)),
      in<&Compression::equilibrium_pressure>(liquid::equilibrium_pressure_input(units)),
      in<&Compression::rounding>(liquid::refused_rounding_input(u"api rnd", u"API Rounding")),
  };
}
constexpr auto inputs_11_2_1 =
    inputs_of(customary, liquid::gravity_60.through(liquid::gravity_to_density<liquid::water_1980>), 0, 90, 30);
constexpr auto inputs_11_2_1M = inputs_of(metric, liquid::density_15, 638, 1074, 850);
constexpr auto inputs_11_2_2 = inputs_of(customary, liquid::relative_60, 0.35, 0.637, 0.5);
constexpr auto inputs_11_2_2M = inputs_of(metric, liquid::density_15, 350, 637, 500);

constexpr std::array<record::Output, 4> outputs_of(const Units& units) {
  return {
      record::status_output(),
      out<&Compressed::cpl>(liquid::cpl_output()),
      out<&Compressed::f>(liquid::f_output(units)),
      out<&Compressed::out_of_range>(liquid::range_output()),
  };
}
constexpr auto customary_outputs = outputs_of(customary);
constexpr auto metric_outputs = outputs_of(metric);

// clang-format off
#define NOTES_COMMON \
  u"CPL = 1/(1 - F (pressure - equilibrium pressure)), both gauge; at or below the equilibrium pressure CPL is 1 and F " \
  u"is still answered. Status 2 where F times the pressure reaches 1.\n" \
  u"Full precision: the rounding of the printed chapter is not part of this build and is refused with status 1.\n"
#define NOTES_11_2_1 \
  u"The temperatures are those of API MPMS 11.1:2004, which took the equation over; the printed tables of the chapter " \
  u"end earlier, where could not be checked.\n"
#define NOTES_11_2_2 \
  u"The constants come from one public source. Against reference equations of state of propane, n-butane and " \
  u"n-pentane F agrees within 6 % from 20 to 130 \u00B0F and 200 to 1000 psi above saturation; with CPL near 1.02 that " \
  u"is 0.001 of the volume.\n"
// clang-format on
constexpr std::u16string_view notes_11_2_1 =
    u"API MPMS Chapter 11.2.1. Range status 1 outside 0 to 90 \u00B0API and -58 to 302 \u00B0F.\n" NOTES_11_2_1
        NOTES_COMMON;
constexpr std::u16string_view notes_11_2_1M =
    u"API MPMS Chapter 11.2.1M. Range status 1 outside 638 to 1074 kg/m3 and -50 to 150 \u00B0C.\n" NOTES_11_2_1
        NOTES_COMMON;
constexpr std::u16string_view notes_11_2_2 =
    u"API MPMS Chapter 11.2.2. Range status 1 outside relative density 0.350 to 0.637 and -50 to 140 \u00B0F, and above "
    u"0.96 of the chapter's critical temperature.\n" NOTES_COMMON NOTES_11_2_2;
constexpr std::u16string_view notes_11_2_2M =
    u"API MPMS Chapter 11.2.2M. Range status 1 outside 350 to 637 kg/m3 and -46 to 60 \u00B0C, and above 0.96 of the "
    u"critical temperature by Chapter 11.2.2.\n"
    u"The metric chapter prints the correlation of 11.2.2. The way from the density at 15 \u00B0C to the relative density "
    u"at 60 \u00B0F is ours, Table 23E at 59 \u00B0F (15 \u00B0C): the printed table can differ in its last "
    u"digit.\n" NOTES_COMMON NOTES_11_2_2;
#undef NOTES_COMMON
#undef NOTES_11_2_1
#undef NOTES_11_2_2

constexpr record::Function chapter(std::u16string_view id, std::u16string_view display,
                                   std::u16string_view description, std::u16string_view keywords,
                                   std::span<const record::Input> inputs, std::span<const record::Output> outputs,
                                   const record::Binding& binding, std::u16string_view notes) {
  return liquid::function(id, display, description, u"API 11.2/12.2", keywords, inputs, outputs, binding, notes);
}

}  // namespace

extern const record::Function API_MPMS_11_2_1, API_MPMS_11_2_1M, API_MPMS_11_2_2, API_MPMS_11_2_2M;

const record::Function API_MPMS_11_2_1 =
    chapter(u"API_MPMS_11_2_1", u"API MPMS 11.2.1",
            u"Compressibility factor and CPL of hydrocarbons, 0 to 90 \u00B0API, according to API MPMS 11.2.1.",
            liquid::customary_words, inputs_11_2_1, customary_outputs, bound<API_11_2_1::factor>, notes_11_2_1);

const record::Function API_MPMS_11_2_1M =
    chapter(u"API_MPMS_11_2_1M", u"API MPMS 11.2.1M",
            u"Compressibility factor and CPL of hydrocarbons, 638 to 1074 kg/m3, according to API MPMS 11.2.1M.",
            liquid::metric_words, inputs_11_2_1M, metric_outputs, bound<API_11_2_1::factor_metric>, notes_11_2_1M);

const record::Function API_MPMS_11_2_2 = chapter(
    u"API_MPMS_11_2_2", u"API MPMS 11.2.2",
    u"Compressibility factor and CPL of hydrocarbons, relative density 0.350 to 0.637, according to API MPMS 11.2.2.",
    liquid::customary_words, inputs_11_2_2, customary_outputs, bound<API_11_2_2::factor>, notes_11_2_2);

const record::Function API_MPMS_11_2_2M =
    chapter(u"API_MPMS_11_2_2M", u"API MPMS 11.2.2M",
            u"Compressibility factor and CPL of hydrocarbons, 350 to 637 kg/m3, according to API MPMS 11.2.2M.",
            liquid::metric_words, inputs_11_2_2M, metric_outputs, bound<API_11_2_2::factor_metric>, notes_11_2_2M);

}  // namespace norvane::functions
