// The records of the composites: 1980, 1952, and natural gas liquids and liquefied petroleum gases.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/liquid/api_11_1_1952_records.h"
#include "math/liquid/api_11_1_1980_records.h"
#include "math/liquid/composites.h"
#include "math/liquid/liquid_records.h"

namespace norvane::functions {
namespace {

using namespace composite;
using liquid::customary;
using liquid::metric;
using liquid::Quantity;
using liquid::Units;
using record::input;
using record::output;

// ---- Lines of all composites -------------------------------------------------------------------------------------

// clang-format off
// The first output is at the base or observed, as the conversion says.
constexpr Quantity converted_gravity = {u"converted gravity", u"Converted API Gravity", u"API gravity at 60 \u00B0F, or observed, as the conversion method says.", data_type::num, u"CONVAPI"};
constexpr Quantity converted_relative = {u"converted rel density", u"Converted Relative Density", u"Relative density at 60 \u00B0F, or observed, as the conversion method says.", data_type::num, u"CONVRD"};
constexpr Quantity converted_specific = {u"converted rel density", u"Converted Specific Gravity", u"Specific gravity at 60 \u00B0F, or observed, as the conversion method says.", data_type::num, u"CONVSG"};
constexpr Quantity converted_density = {u"converted density", u"Converted Density", u"Density at the base temperature, or observed, as the conversion method says.", unit::kg_m3, u"CONVDENS"};

// The given value is observed or at the base.
constexpr Quantity given_gravity = {u"api gravity", u"API Gravity", u"Observed API gravity, or that at 60 \u00B0F, as the conversion method says.", data_type::num, u""};
constexpr Quantity given_relative = {u"rel density", u"Relative Density", u"Observed relative density, or that at 60 \u00B0F, as the conversion method says.", data_type::num, u""};
constexpr Quantity given_specific = {u"rel density", u"Specific Gravity", u"Observed specific gravity, or that at 60 \u00B0F, as the conversion method says.", data_type::num, u""};
constexpr Quantity given_density = {u"density", u"Density", u"Observed density, or that at the base temperature, as the conversion method says.", unit::kg_m3, u""};
// clang-format on

constexpr record::Option conversions[] = {{1, u"Observed -> Standard"}, {2, u"Standard -> Observed"}};

// Value, temperature, pressure and conversion method begin every composite.
constexpr std::array<record::Input, 4> flow_lines(const Units& units, const record::Input& value) {
  return {
      in<&Flow::density>(value),
      in<&Flow::temperature>(liquid::temperature_input(units)),
      in<&Flow::pressure>(liquid::pressure_input(units)),
      in<&Flow::conversion>(input(u"conversion", u"Conversion method", u"Conversion method.", data_type::integer)
                                .options(conversions)
                                .otherwise(1)),
  };
}
constexpr record::Input f_rounding_line(std::u16string_view display) {
  return in<&Flow::f_rounding>(liquid::refused_rounding_input(u"f rnd", display));
}
constexpr record::Input equilibrium_line(const Units& units) {
  return in<&Flow::equilibrium_pressure>(liquid::equilibrium_pressure_input(units));
}
constexpr record::Input hydrometer_line() { return in<&Flow::hydrometer>(liquid::hydrometer_input()); }

constexpr record::Output range_line(std::u16string_view key, std::u16string_view display,
                                    std::u16string_view description, std::u16string_view tag) {
  return output(key, display, description, enumeration::rangestatus, tag);
}
constexpr record::Output ctl_range_line() {
  return range_line(u"oor ctl", u"Range Status CTL", u"Base value and temperature against the extent of the table.",
                    u"OORCTL");
}
constexpr record::Output cpl_range_line() {
  return out<&Converted::f_out_of_range>(
      range_line(u"oor cpl", u"Range Status CPL",
                 u"Base value and temperature against the limits of the compressibility.", u"OORCPL"));
}

// Lines written for a part of the results or arguments.
template <auto part, class Line>
constexpr Line of(const Line& line) {
  return within<part>(std::array{line})[0];
}

// ---- 1980 --------------------------------------------------------------------------------------------------------

constexpr std::array<record::Input, 10> inputs_1980(const Units& units, const Quantity& q, double low, double high,
                                                    double otherwise, std::u16string_view f_rounding) {
  constexpr auto flow = &Arguments1980::flow;
  return join(std::array{record::name_input()},
              within<flow>(flow_lines(units, liquid::given(q, low, high, otherwise))),
              std::array{
                  in<&Arguments1980::product>(liquid::product_input()),
                  of<flow>(hydrometer_line()),
                  in<&Arguments1980::rounding>(API_11_1_1980::rounding_input()),
                  of<flow>(f_rounding_line(f_rounding)),
                  of<flow>(equilibrium_line(units)),
              });
}
constexpr auto gravity_1980_inputs =
    inputs_1980(customary, given_gravity.through(API_11_1_1980::of_gravity), -20, 180, 30, u"API 11.2.1 rounding");
constexpr auto relative_1980_inputs =
    inputs_1980(customary, given_relative.through(API_11_1_1980::of_relative), 0, 1.3, 0.9, u"API 11.2.1 rounding");
constexpr auto density_1980_inputs = inputs_1980(metric, given_density, 0, 1300, 850, u"API 11.2.1M rounding");

constexpr std::array<record::Output, 13> outputs_1980(const Units& units, const Quantity& result) {
  constexpr auto converted = &Result1980::converted;
  constexpr auto table = &Result1980::table;
  using Table = API_11_1_1980::Correction;
  return join(
      std::array{
          record::status_output(),
          of<converted>(out<&Converted::density>(liquid::answered(result))),
          of<table>(out<&Table::ctl>(liquid::ctl_output())),
          of<converted>(out<&Converted::cpl>(liquid::cpl_output())),
          of<converted>(out<&Converted::ctpl>(liquid::ctpl_output())),
      },
      within<table>(API_11_1_1980::constant_outputs(units)),
      std::array{
          of<converted>(out<&Converted::f>(liquid::f_output(units))),
          of<table>(out<&Table::product>(liquid::product_output())),
          of<table>(out<&Table::range>(API_11_1_1980::extended_range_output(u"oor ctl"))),
          of<converted>(cpl_range_line()),
      });
}
constexpr auto gravity_1980_outputs = outputs_1980(customary, converted_gravity.through(API_11_1_1980::of_gravity));
constexpr auto relative_1980_outputs =
    outputs_1980(customary, converted_relative.through(API_11_1_1980::of_relative));
constexpr auto density_1980_outputs = outputs_1980(metric, converted_density);

// ---- 1952 --------------------------------------------------------------------------------------------------------

constexpr std::array<record::Input, 7> inputs_1952(const Units& units, const Quantity& q, double low, double high,
                                                   double otherwise, std::u16string_view f_rounding) {
  constexpr auto flow = &Arguments1952::flow;
  return join(std::array{record::name_input()},
              within<flow>(flow_lines(units, liquid::given(q, low, high, otherwise))),
              within<flow>(std::array{f_rounding_line(f_rounding), equilibrium_line(units)}));
}
constexpr auto gravity_1952_inputs =
    inputs_1952(customary, given_gravity.through(liquid::gravity_to_relative), -20, 180, 30, u"API 11.2.1 rounding");
constexpr auto specific_1952_inputs = inputs_1952(customary, given_specific, 0, 1.3, 0.9, u"API 11.2.1 rounding");
constexpr auto density_1952_inputs = inputs_1952(metric, given_density, 0, 1300, 850, u"API 11.2.1M rounding");

constexpr std::array<record::Output, 8> outputs_1952(const Units& units, const Quantity& result) {
  constexpr auto converted = &Result1952::converted;
  constexpr auto table = &Result1952::table;
  using Table = API_11_1_1952::Correction;
  return {
      record::status_output(),
      of<converted>(out<&Converted::density>(liquid::answered(result))),
      of<table>(out<&Table::ctl>(liquid::ctl_output())),
      of<converted>(out<&Converted::cpl>(liquid::cpl_output())),
      of<converted>(out<&Converted::ctpl>(liquid::ctpl_output())),
      of<converted>(out<&Converted::f>(liquid::f_output(units))),
      of<table>(out<&Table::out_of_range>(ctl_range_line())),
      of<converted>(cpl_range_line()),
  };
}
constexpr auto gravity_1952_outputs = outputs_1952(customary, converted_gravity.through(liquid::gravity_to_relative));
constexpr auto specific_1952_outputs = outputs_1952(customary, converted_specific);
constexpr auto density_1952_outputs = outputs_1952(metric, converted_density);

// ---- NGL and LPG -------------------------------------------------------------------------------------------------

constexpr record::Option equilibrium_modes[] = {{1, u"Override"}, {2, u"Calculate (TP-15)"}};

constexpr std::array<record::Input, 12> inputs_ngl(const Units& units, const Quantity& q, double low, double high,
                                                   double otherwise, double p100_high,
                                                   std::u16string_view f_rounding) {
  constexpr auto flow = &ArgumentsNgl::flow;
  return join(
      std::array{record::name_input()}, within<flow>(flow_lines(units, liquid::given(q, low, high, otherwise))),
      std::array{
          in<&ArgumentsNgl::rounding>(liquid::refused_rounding_input(u"api rnd", u"API 11.2.4 rounding")),
          of<flow>(f_rounding_line(f_rounding)),
          in<&ArgumentsNgl::equilibrium>(input(u"eq mode", u"Equilibrium pressure mode",
                                               u"Whether the equilibrium pressure is given or calculated.",
                                               data_type::integer)
                                             .options(equilibrium_modes)
                                             .otherwise(2)),
          of<flow>(equilibrium_line(units)),
          in<&ArgumentsNgl::tp15_rounding>(liquid::refused_rounding_input(u"tp15 rnd", u"GPA TP-15 rounding")),
          in<&ArgumentsNgl::p100_known>(liquid::p100_known_input()),
          in<&ArgumentsNgl::p100>(liquid::p100_input(units, p100_high)),
      });
}
constexpr auto relative_ngl_inputs =
    join(inputs_ngl(customary, given_relative, 0.2, 0.75, 0.5, 300, u"API 11.2.2 rounding"),
         std::array{of<&ArgumentsNgl::flow>(hydrometer_line())});
constexpr auto density_ngl_inputs = inputs_ngl(metric, given_density, 200, 750, 500, 20, u"API 11.2.2M rounding");

constexpr std::array<record::Output, 10> outputs_ngl(const Units& units, const Quantity& result) {
  constexpr auto converted = &ResultNgl::converted;
  constexpr auto table = &ResultNgl::table;
  using Table = API_11_2_4::Correction;
  return {
      record::status_output(),
      of<converted>(out<&Converted::density>(liquid::answered(result))),
      of<table>(out<&Table::ctl>(liquid::ctl_output())),
      of<converted>(out<&Converted::cpl>(liquid::cpl_output())),
      of<converted>(out<&Converted::ctpl>(liquid::ctpl_output())),
      of<converted>(out<&Converted::f>(liquid::f_output(units))),
      out<&ResultNgl::equilibrium_pressure>(output(u"eq pressure", u"Equilibrium pressure",
                                                   u"Equilibrium pressure that was used, gauge.", units.pressure,
                                                   u"PE")),
      of<table>(out<&Table::out_of_range>(ctl_range_line())),
      of<converted>(cpl_range_line()),
      out<&ResultNgl::equilibrium_out_of_range>(
          range_line(u"oor eq pressure", u"Range Status Pe",
                     u"Base value and temperature against the limits of GPA TP-15.", u"OORPE")),
  };
}
constexpr auto relative_ngl_outputs = outputs_ngl(customary, converted_relative);
constexpr auto density_ngl_outputs = outputs_ngl(metric, converted_density);

// ---- Notes -------------------------------------------------------------------------------------------------------

// clang-format off
#define NOTES_COMMON \
  u"Base density times CTL times CPL is the observed density, to every digit: CTL, CPL and F belong to the base value, " \
  u"which is solved for in full. CTPL is not rounded. CPL = 1/(1 - F (pressure - equilibrium pressure)), both gauge; at " \
  u"or below the equilibrium pressure CPL is 1 and F is still answered. Status 2 where F times the pressure reaches 1, " \
  u"and where no base value of the table has the observed one.\n" \
  u"Rounding of the printed chapters is not part of this build and is refused with status 1.\n"
#define NOTES_HYDROMETER \
  u"With the hydrometer correction the observed value is the reading: the glass correction multiplies its density, and " \
  u"from base to observed divides it.\n"
#define NOTES_NGL \
  u"The tables of API MPMS 11.2.4 (GPA TP-27), the compressibility of API MPMS 11.2.2 and the equilibrium pressure of " \
  u"GPA TP-15, or a given one. The compressibility and the equilibrium pressure stand on one public source each: see " \
  u"API_MPMS_11_2_2 (F within 6 % of reference equations of state) and GPA_TP15 (3 % for propane).\n" \
  u"TP-15 is absolute: 14.696 psi (1.01325 bar) is taken off, not below 0. Outside relative density 0.350 to 0.676 its " \
  u"nearest band is evaluated at that limit. Where its bands meet, the equilibrium pressure jumps by 0.1 % at most; of " \
  u"two base values the larger is answered, in a gap the edge itself.\n" \
  u"A known vapour pressure at 100 \u00B0F is refused with status 1: its equation is not part of this build.\n"
// clang-format on
constexpr std::u16string_view notes_1980 =
    u"Tables 5, 6, 23 and 24 of API 2540 (1980) and API MPMS 11.2.1.\n" NOTES_COMMON NOTES_HYDROMETER NV_NOTES_1980;
constexpr std::u16string_view notes_1980_metric =
    u"Tables 53 and 54 of API 2540 (1980) and API MPMS 11.2.1M.\n" NOTES_COMMON NOTES_HYDROMETER NV_NOTES_1980;
constexpr std::u16string_view notes_1952 =
    u"Tables 5, 6, 23 and 24 of ASTM D1250-52 and API MPMS 11.2.1 (its water at 60 \u00B0F, 999.012 "
    u"kg/m3).\n" NOTES_COMMON NV_NOTES_1952;
constexpr std::u16string_view notes_1952_metric =
    u"Tables 53 and 54 of ASTM D1250-52 and API MPMS 11.2.1M.\n" NOTES_COMMON NV_NOTES_1952;
constexpr std::u16string_view notes_ngl = NOTES_NGL NOTES_COMMON NOTES_HYDROMETER;
constexpr std::u16string_view notes_ngl_metric = NOTES_NGL
    NOTES_COMMON u"Volumes go through 60 \u00B0F; F is that of 11.2.2 at the relative density at 60 \u00B0F, divided by 6.894757.\n";
#undef NOTES_COMMON
#undef NOTES_HYDROMETER
#undef NOTES_NGL

constexpr std::u16string_view group_1980 = u"API 11.1 (1980)";
constexpr std::u16string_view group_1952 = u"API 11.1 (1952)";
constexpr std::u16string_view group_ngl = u"API Table E NGL/LPG (TP-27)";

constexpr const CoefficientSet* tables_1980[] = {&API_11_1_1980::coefficient_set};
constexpr const CoefficientSet* tables_1952[] = {&API_11_1_1952::coefficient_set};
constexpr const CoefficientSet* tables_ngl[] = {&API_11_2_4::coefficient_set};

}  // namespace

extern const record::Function API_Gravity60F_1980, API_RD60F_1980, API_Dens15C_1980, API_Gravity60F_1952,
    API_SG60F_1952, API_Dens15C_1952, API_RD60F_NGL_LPG, API_Dens15C_NGL_LPG, API_Dens20C_NGL_LPG;

const record::Function API_Gravity60F_1980 =
    liquid::function(
        u"API_Gravity60F_1980", u"API Gravity @60\u00B0F (1980)",
        u"API gravity at 60 \u00B0F and equilibrium pressure, or observed, according to API 2540 (1980) and API MPMS 11.2.1.",
        group_1980, liquid::customary_words, gravity_1980_inputs, gravity_1980_outputs, bound<dens60F_1980>,
        notes_1980)
        .with(tables_1980);

const record::Function API_RD60F_1980 =
    liquid::function(
        u"API_RD60F_1980", u"API Rel. Density @60\u00B0F (1980)",
        u"Relative density at 60 \u00B0F and equilibrium pressure, or observed, according to API 2540 (1980) and API MPMS "
        u"11.2.1.",
        group_1980, liquid::customary_words, relative_1980_inputs, relative_1980_outputs, bound<dens60F_1980>,
        notes_1980)
        .with(tables_1980);

const record::Function API_Dens15C_1980 =
    liquid::function(
        u"API_Dens15C_1980", u"API Density @15\u00B0C (1980)",
        u"Density at 15 \u00B0C and equilibrium pressure, or observed, according to API 2540 (1980) and API MPMS 11.2.1M.",
        group_1980, liquid::metric_words, density_1980_inputs, density_1980_outputs, bound<dens15C_1980>,
        notes_1980_metric)
        .with(tables_1980);

const record::Function API_Gravity60F_1952 =
    liquid::function(
        u"API_Gravity60F_1952", u"API Gravity @60\u00B0F (1952)",
        u"API gravity at 60 \u00B0F and equilibrium pressure, or observed, according to ASTM D1250-52 and API MPMS 11.2.1.",
        group_1952, liquid::customary_words, gravity_1952_inputs, gravity_1952_outputs, bound<rd60F_1952>, notes_1952)
        .with(tables_1952);

const record::Function API_SG60F_1952 =
    liquid::function(
        u"API_SG60F_1952", u"API Specific Gravity @60\u00B0F (1952)",
        u"Specific gravity at 60 \u00B0F and equilibrium pressure, or observed, according to ASTM D1250-52 and API MPMS "
        u"11.2.1.",
        group_1952, liquid::customary_words, specific_1952_inputs, specific_1952_outputs, bound<rd60F_1952>,
        notes_1952)
        .with(tables_1952);

const record::Function API_Dens15C_1952 =
    liquid::function(
        u"API_Dens15C_1952", u"API Density @15\u00B0C (1952)",
        u"Density at 15 \u00B0C and equilibrium pressure, or observed, according to ASTM D1250-52 and API MPMS 11.2.1M.",
        group_1952, liquid::metric_words, density_1952_inputs, density_1952_outputs, bound<dens15C_1952>,
        notes_1952_metric)
        .with(tables_1952);

// All of the group carry the customary keyword, the metric ones too.
const record::Function API_RD60F_NGL_LPG =
    liquid::function(
        u"API_RD60F_NGL_LPG", u"API Rel. Density @60\u00B0F NGL/LPG",
        u"Relative density of NGL and LPG at 60 \u00B0F and equilibrium pressure, or observed, according to API MPMS 11.2.4 "
        u"and 11.2.2.",
        group_ngl, liquid::customary_words, relative_ngl_inputs, relative_ngl_outputs, bound<rd60F_ngl>, notes_ngl)
        .with(tables_ngl);

const record::Function API_Dens15C_NGL_LPG =
    liquid::function(
        u"API_Dens15C_NGL_LPG", u"API Density @15\u00B0C NGL/LPG",
        u"Density of NGL and LPG at 15 \u00B0C and equilibrium pressure, or observed, according to API MPMS 11.2.4 and "
        u"11.2.2M.",
        group_ngl, liquid::customary_words, density_ngl_inputs, density_ngl_outputs, bound<dens15C_ngl>,
        notes_ngl_metric)
        .with(tables_ngl);

const record::Function API_Dens20C_NGL_LPG =
    liquid::function(
        u"API_Dens20C_NGL_LPG", u"API Density @20\u00B0C NGL/LPG",
        u"Density of NGL and LPG at 20 \u00B0C and equilibrium pressure, or observed, according to API MPMS 11.2.4 and "
        u"11.2.2M.",
        group_ngl, liquid::customary_words, density_ngl_inputs, density_ngl_outputs, bound<dens20C_ngl>,
        notes_ngl_metric)
        .with(tables_ngl);

}  // namespace norvane::functions
