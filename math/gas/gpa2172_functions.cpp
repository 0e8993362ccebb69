// GPA2172_M, GPA2172_C, GPA2172_96_M, GPA2172_96_C: heating values, relative density and compressibility by GPA 2172.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/gas_records.h"
#include "math/gas/gpa2145_table.h"
#include "math/gas/gpa2172.h"

namespace norvane::functions {

extern const record::Function GPA2172_M, GPA2172_C, GPA2172_96_M, GPA2172_96_C;

namespace {

using namespace GPA2172;
using record::input;
using record::output;

constexpr record::Option editions[] = {{1, u"2000"}, {2, u"2003"}, {3, u"2009"}, {4, u"2016"}};

// clang-format off
constexpr std::array<record::Input, 4> inputs(std::u16string_view base_conditions) {
  return {
      record::name_input(),
      in<&Gas::fractions>(record::composition_input()),
      in<&Gas::edition>(input(u"edition", u"GPA-2145 Edition", base_conditions, data_type::integer)
          .options(editions).otherwise(2)).unless(record::Misfit::pass),
      in<&Gas::mode>(record::neo_pentane_input().otherwise(2)).unless(record::Misfit::pass),
  };
}
constexpr auto inputs_metric = inputs(
    u"Base conditions (15\u00B0C, 1.01325 bar(a)) and editions of the GPA-2145 values. Note that these base conditions "
    u"are used for both the density and the heating value.");
constexpr auto inputs_customary = inputs(
    u"Base conditions (60\u00B0F, 14.696 psi(a)) and editions of the GPA-2145 values. Note that these base conditions "
    u"are used for both the density and the heating value.");

// The status, then seven values of the wet, the dry and the saturated gas.
constexpr std::array<record::Output, 22> outputs(std::uint32_t volume, std::uint32_t molar, std::uint32_t mass) {
  return {
      record::status_output(record::calorific_statuses),
      out<&Result::wet, &Basis::gross_volume>(output(u"wet ghv vol", u"Wet GHV", u"Wet gross heating value (volume).", volume, u"VOLGHV_WET")),
      out<&Result::wet, &Basis::molar_mass>(output(u"wet molar mass", u"Wet Molar Mass", u"Wet molecular mass.", molar, u"MOLMASS_WET")),
      out<&Result::wet, &Basis::ideal_relative_density>(output(u"wet ideal sg", u"Wet Ideal Spec. Grav.", u"Wet ideal specific gravity.", data_type::num, u"ISG_WET")),
      out<&Result::wet, &Basis::real_relative_density>(output(u"wet real rd", u"Wet Real Rel. Dens.", u"Wet real relative density.", data_type::num, u"RRD_WET")),
      out<&Result::wet, &Basis::compressibility>(output(u"wet compr", u"Wet Compressibility", u"Wet compressibility factor.", data_type::num, u"Z_WET")),
      out<&Result::wet, &Basis::gross_mass>(output(u"wet ghv mass", u"Wet GHV", u"Wet gross heating value (mass).", mass, u"MASGHV_WET")),
      out<&Result::wet, &Basis::net_volume>(output(u"wet nhv", u"Wet NHV", u"Wet net heating value (volume).", volume, u"VOLNHV_WET")),
      out<&Result::dry, &Basis::gross_volume>(output(u"dry ghv vol", u"Dry GHV", u"Dry gross heating value (volume).", volume, u"VOLGHV_DRY")),
      out<&Result::dry, &Basis::molar_mass>(output(u"dry molar mass", u"Dry Molar Mass", u"Dry molecular mass.", molar, u"MOLMASS_DRY")),
      out<&Result::dry, &Basis::ideal_relative_density>(output(u"dry ideal sg", u"Dry Ideal Spec. Grav.", u"Dry ideal specific gravity.", data_type::num, u"ISG_DRY")),
      out<&Result::dry, &Basis::real_relative_density>(output(u"dry real rd", u"Dry Real Rel. Dens.", u"Dry real relative density.", data_type::num, u"RRD_DRY")),
      out<&Result::dry, &Basis::compressibility>(output(u"dry compr", u"Dry Compressibility", u"Dry compressibility factor.", data_type::num, u"Z_DRY")),
      out<&Result::dry, &Basis::gross_mass>(output(u"dry ghv mass", u"Dry GHV", u"Dry gross heating value (mass).", mass, u"MASGHV_DRY")),
      out<&Result::dry, &Basis::net_volume>(output(u"dry nhv", u"Dry NHV", u"Dry net heating value (volume).", volume, u"VOLNHV_DRY")),
      out<&Result::saturated, &Basis::gross_volume>(output(u"sat ghv vol", u"Sat. GHV", u"Saturated gross heating value (volume).", volume, u"VOLGHV_SAT")),
      out<&Result::saturated, &Basis::molar_mass>(output(u"sat molar mass", u"Sat. Molar Mass", u"Saturated molecular mass.", molar, u"MOLMASS_SAT")),
      out<&Result::saturated, &Basis::ideal_relative_density>(output(u"sat ideal sg", u"Sat. Ideal Spec. Grav.", u"Saturated ideal specific gravity.", data_type::num, u"ISG_SAT")),
      out<&Result::saturated, &Basis::real_relative_density>(output(u"sat real rd", u"Sat. Real Rel. Dens.", u"Saturated real relative density.", data_type::num, u"RRD_SAT")),
      out<&Result::saturated, &Basis::compressibility>(output(u"sat compr", u"Sat. Compressibility", u"Saturated compressibility factor.", data_type::num, u"Z_SAT")),
      out<&Result::saturated, &Basis::gross_mass>(output(u"sat ghv mass", u"Sat. GHV", u"Saturated gross heating value (mass).", mass, u"MASGHV_SAT")),
      out<&Result::saturated, &Basis::net_volume>(output(u"sat nhv", u"Sat. NHV", u"Saturated net heating value (volume).", volume, u"VOLNHV_SAT")),
  };
}
// clang-format on

constexpr auto outputs_metric = outputs(unit::MJ_m3, unit::kg_kmol, unit::MJ_kg);
constexpr auto outputs_customary = outputs(unit::Btu_scf, unit::lb_lbmol, unit::Btu_lbm);

constexpr std::u16string_view notes =
    u"GPA Standard 2172, Calculation of gross heating value, relative density, compressibility "
    u"and theoretical hydrocarbon liquid content for natural gas mixtures, with the component properties "
    u"of GPA Standard 2145. The edition selects the component table and the summation factor of air; "
    u"the metric tables of 2000 and 2003 are one, and the tables of 2009 are those of 2016.\n"
    u"Wet is the gas as analysed, dry the gas without its water, saturated the dry gas saturated with water at base "
    u"conditions. Water enters with its own row: a net value of 0, a gross value of its heat of condensation.\n"
    u"The gross heating value by mass is the mole fraction-weighted sum of the components' values by mass, "
    u"not the mass-weighted mean: it is exact for a pure gas and differs by 2 to 4 % for ordinary mixtures. "
    u"Divide the ideal gross value by volume by the ideal gas density where the physical value is wanted.\n"
    u"The 22 fractions must sum to 1 within 0.0001 (status 3 otherwise, also for percent); "
    u"an edition or a neo-pentane mode outside its list is status 1, a negative fraction or a gas of nothing "
    u"but water status 2. Edition 2 and neo-pentane mode 2 are the defaults.";

constexpr std::u16string_view notes_1996 =
    u"GPA Standard 2172-96, Calculation of gross heating value, relative density and compressibility factor for "
    u"natural gas mixtures from compositional analysis: the same calculation and tables as GPA2172_M and GPA2172_C.\n"
    u"The gross heating value by mass is the mole fraction-weighted sum of the components' values by mass, "
    u"not the mass-weighted mean.";

constexpr const CoefficientSet* coefficients_used[] = {&GPA2145::coefficient_set};

// Both pairs are the same calculation; the older names stand in no subcategory of their own.
constexpr record::Function function(std::u16string_view id, bool of_1996, bool in_metric) {
  return {
      .id = id,
      .display = of_1996 ? u"GPA-2172 (1996)" : u"GPA-2172",
      .description = of_1996 ? u"Gas Compressibility according to GPA-2172 (1996)."
                             : u"Gas Compressibility according to GPA-2172.",
      .subcategory = of_1996 ? u"Math" : u"GPA",
      .keywords = of_1996     ? u""
                  : in_metric ? u"metric,gas,gpa"
                              : u"customary,gas,gpa",
      .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
      .name_input = 0,
      .inputs = in_metric ? inputs_metric : inputs_customary,
      .outputs = in_metric ? outputs_metric : outputs_customary,
      .binding = in_metric ? &bound<metric> : &bound<customary>,
      .coefficients = coefficients_used,
      .notes = of_1996 ? notes_1996 : notes,
  };
}

}  // namespace

constexpr record::Function GPA2172_M = function(u"GPA2172_M", false, true);
constexpr record::Function GPA2172_C = function(u"GPA2172_C", false, false);
constexpr record::Function GPA2172_96_M = function(u"GPA2172_96_M", true, true);
constexpr record::Function GPA2172_96_C = function(u"GPA2172_96_C", true, false);

}  // namespace norvane::functions
