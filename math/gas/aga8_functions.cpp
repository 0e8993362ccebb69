// AGA8_M, AGA8_C: compressibility and density by the detail characterisation method of AGA Report No. 8.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/conversions.h"
#include "math/common/gas_records.h"
#include "math/gas/aga8.h"
#include "math/gas/aga8_table.h"

namespace norvane::functions {

extern const record::Function AGA8_M, AGA8_C;

namespace {

using namespace AGA8;
using record::input;
using record::Misfit;
using record::output;

constexpr record::StatusValue range_statuses[] = {{2.0, u"OOR", u"component out of range"}};
constexpr record::Option editions[] = {{1, u"1994"}, {2, u"2017"}};

// clang-format off
constexpr record::Input composition = in<&Gas::composition>(record::composition_input());
constexpr record::Input neo_pentane = in<&Gas::neo_pentane>(record::neo_pentane_input().unless(Misfit::refuse));

constexpr record::Input inputs_metric[] = {
    record::name_input(),
    in<&Gas::pressure>(input(u"pressure", u"Pressure", u"Observed pressure.", unit::bar_a).otherwise(1.01325).through(conversion::bar_to_MPa)),
    in<&Gas::temperature>(input(u"temperature", u"Temperature", u"Observed temperature.", unit::degC).otherwise(0)),
    composition,
    neo_pentane,
    in<&Gas::edition>(input(u"edition", u"Edition", u"Year of edition.", data_type::integer)
        .options(editions).otherwise(1).unless(Misfit::refuse)),
};
constexpr record::Input inputs_customary[] = {
    record::name_input(),
    in<&Gas::pressure>(input(u"pressure", u"Pressure", u"Observed pressure.", unit::psia).within(0, 40000).otherwise(14.696).through(conversion::psi_to_MPa)),
    in<&Gas::temperature>(input(u"temperature", u"Temperature", u"Observed temperature.", unit::degF).within(-250, 800).otherwise(60).through(conversion::degF_to_degC)),
    composition,
    neo_pentane,
};

constexpr std::array<record::Output, 6> outputs(std::uint32_t mass_density, std::uint32_t molar_density, std::uint32_t molar_mass,
                                                const record::Conversion* density) {
  std::array<record::Output, 6> lines = {
      record::status_output(record::statuses_with_composition),
      out<&Answer::state, &State::z>(output(u"z", u"Compressibility", u"Compressibility factor (Z).", data_type::num, u"Z")),
      out<&Answer::state, &State::mass_density>(output(u"mass density", u"Mass Density", u"Mass density.", mass_density, u"MASDENS")),
      out<&Answer::state, &State::molar_density>(output(u"molar density", u"Molar Density", u"Molar density.", molar_density, u"MOLDENS")),
      out<&Answer::state, &State::molar_mass>(output(u"molar mass", u"Molar Mass", u"Molar mass.", molar_mass, u"MOLMASS")),
      out<&Answer::range>(output(u"oor", u"Range Status", u"Range status of the composition, temperature and pressure.",
                                 enumeration::rangestatus2, u"RANGE").meaning(range_statuses)),
  };
  lines[2].field.conversion = lines[3].field.conversion = density;
  return lines;
}
// clang-format on

constexpr auto outputs_metric = outputs(unit::kg_m3, unit::kmol_m3, unit::kg_kmol, nullptr);
constexpr auto outputs_customary =
    outputs(unit::lb_ft3, unit::lbmol_ft3, unit::lb_lbmol, &conversion::lb_ft3_to_kg_m3);

constexpr std::u16string_view notes =
    u"Standard: AGA Report No. 8, Compressibility Factors of Natural Gas and Other Related Hydrocarbon Gases, "
    u"2nd edition, 2nd printing (1994), detail characterisation method; the equation is the same in AGA Report "
    u"No. 8 Part 1 (2017) and ISO 12213-2. Gas constant 8.31451 J/(mol K).\n"
    u"The density is searched from the ideal gas upwards and refined by Brent's method to 1e-11. "
    u"Status 2 is answered where the pressure falls with density before it reaches the given one, "
    u"as inside the two-phase region, and at pressure 0. Code 3 is never answered.\n"
    u"An unchanged composition, temperature and pressure of the same name or calling place answers from memory.\n";

constexpr const CoefficientSet* coefficients_used[] = {&AGA8::coefficient_set};

}  // namespace

const record::Function AGA8_M = {
    .id = u"AGA8_M",
    .display = u"AGA-8",
    .description = u"Compressibility (Z) and Density according to AGA-8 DC (Detail Characterization method).",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .binding = &bound<state_of, state_of_rows>,
    .coefficients = coefficients_used,
    .notes = notes,
};

const record::Function AGA8_C = {
    .id = u"AGA8_C",
    .display = u"AGA-8",
    .description = u"Compressibility (Z) and Density according to AGA-8 DC (Detail Characterization method).",
    .subcategory = u"AGA",
    .keywords = u"customary,gas,aga",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_customary,
    .outputs = outputs_customary,
    .binding = &bound<state_of_unlimited, state_of_unlimited_rows>,
    .coefficients = coefficients_used,
    .notes = notes,
};

}  // namespace norvane::functions
