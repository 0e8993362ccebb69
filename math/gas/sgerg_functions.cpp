// SGERG_M, SGERG_C: compressibility and density by SGERG-88, ISO 12213-3.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/conversions.h"
#include "math/common/gas_records.h"
#include "math/gas/sgerg.h"
#include "math/gas/sgerg_table.h"

namespace norvane::functions {

extern const record::Function SGERG_M, SGERG_C;

namespace {

using namespace SGERG;
using record::Conversion;
using record::input;
using record::output;

constexpr record::StatusValue range_statuses[] = {{2.0, u"OOR", u"out of range"}};
constexpr record::Option input_sets[] = {
    {1, u"Heating value, relative density, CO2"},
    {2, u"Heating value, relative density, N2"},
    {3, u"Heating value, CO2, N2"},
    {4, u"Relative density, CO2, N2"},
};
constexpr record::Option references[] = {
    {1, u"25/0 \u00B0C"},
    {2, u"0/0 \u00B0C"},
    {3, u"15/15 \u00B0C"},
    {4, u"25/15 \u00B0C"},
    {5, u"20/20 \u00B0C"},
    {6, u"25/20 \u00B0C"},
    {7, u"60/60 \u00B0F at 14.73 psia"},
};

constexpr Conversion psi_to_bar{[](double psi) noexcept { return psi * 0.0689476; },
                                [](double bar) noexcept { return bar / 0.0689476; }};
constexpr Conversion degF_to_K{[](double F) noexcept { return (F - 32.0) / 1.8 + 273.15; },
                               [](double K) noexcept { return (K - 273.15) * 1.8 + 32.0; }};
constexpr Conversion Btu_scf_to_MJ_m3{[](double Btu) noexcept { return Btu * 0.0372589413236289; },
                                      [](double MJ) noexcept { return MJ / 0.0372589413236289; }};
constexpr Conversion lb_ft3_to_kg_m3{[](double lb) noexcept { return lb * 16.01846337; },
                                     [](double kg) noexcept { return kg / 16.01846337; }};

// clang-format off
constexpr record::Input fraction(std::u16string_view key, std::u16string_view display, std::u16string_view description, double value) {
  return input(key, display, description, unit::mole_mole).within(0, 1).otherwise(value);
}

constexpr auto inputs(const record::Input& pressure, const record::Input& temperature, const record::Input& hv, int reference) {
  return std::array<record::Input, 10>{
      record::name_input(),
      in<&Arguments::pressure>(pressure),
      in<&Arguments::temperature>(temperature),
      in<&Arguments::calorific_value>(hv),
      in<&Arguments::relative_density>(input(u"rd", u"Relative Density", u"Relative density at the reference conditions (not in input set 3).", data_type::num).within(0, 2).otherwise(0.581)),
      in<&Arguments::carbon_dioxide>(fraction(u"co2", u"Carbon Dioxide", u"Carbon dioxide (not in input set 2).", 0.006)),
      in<&Arguments::nitrogen>(fraction(u"n2", u"Nitrogen", u"Nitrogen (not in input set 1).", 0)),
      in<&Arguments::hydrogen>(fraction(u"h2", u"Hydrogen", u"Hydrogen.", 0)),
      in<&Arguments::input_set>(input(u"input set", u"Input Set", u"Known properties.", data_type::integer).options(input_sets).otherwise(1)),
      in<&Arguments::reference>(input(u"ref cond", u"Reference Cond.", u"Reference temperature of combustion / of volume, at 1.01325 bar.", data_type::integer)
          .options(references).otherwise(reference)),
  };
}
constexpr std::u16string_view hv_text = u"Superior calorific value at the reference conditions (not in input set 4).";

constexpr auto inputs_metric = inputs(
    input(u"pressure", u"Pressure", u"Absolute pressure.", unit::bar_a).otherwise(1.01325),
    input(u"temperature", u"Temperature", u"Temperature of the gas.", unit::degC).otherwise(0).through(conversion::degC_to_K),
    input(u"hv", u"Heating Value", hv_text, unit::MJ_sm3_c).within(0, 100).otherwise(40.66), 1);
constexpr auto inputs_customary = inputs(
    input(u"pressure", u"Pressure", u"Absolute pressure.", unit::psia).otherwise(14.696).through(psi_to_bar),
    input(u"temperature", u"Temperature", u"Temperature of the gas.", unit::degF).otherwise(60).through(degF_to_K),
    input(u"hv", u"Heating Value", hv_text, unit::Btu_scf).within(0, 2700).otherwise(1050).through(Btu_scf_to_MJ_m3), 7);

constexpr auto outputs(const record::Output& density) {
  return std::array<record::Output, 4>{
      record::status_output(),
      out<&Result::z>(output(u"z", u"Compressibility", u"Compressibility factor (Z).", data_type::num, u"Z")),
      out<&Result::mass_density>(density),
      out<&Result::range>(output(u"oor", u"Range Status", u"Range status of the gas, temperature and pressure.", enumeration::rangestatus2, u"RANGE").meaning(range_statuses)),
  };
}
constexpr auto outputs_metric = outputs(output(u"mass density", u"Mass Density", u"Mass density.", unit::kg_m3, u"MASDENS"));
constexpr auto outputs_customary = outputs(output(u"mass density", u"Mass Density", u"Mass density.", unit::lb_ft3, u"MASDENS").through(lb_ft3_to_kg_m3));
// clang-format on

constexpr std::u16string_view notes =
    u"Standard: ISO 12213-3, Natural gas - Calculation of compression factor - Part 3: Calculation using physical "
    u"properties (SGERG-88).\n"
    u"The composition is found to full convergence; the reference program stops earlier, which makes up to 3e-6 of "
    u"the compressibility factor. Carbon monoxide is 0.0964 of the hydrogen. Calorific values are converted between "
    u"temperatures of combustion with 1.027e-4 per kelvin; air at 60 \u00B0F and 14.73 psia is that of AGA Report "
    u"No. 8 Part 1. The pressure of 1.01325 bar goes with reference conditions 1 to 6.\n"
    u"Range status 0: 0 to 120 bar, -10 to 65 \u00B0C, calorific value (25/0 \u00B0C) 30 to 45 MJ/m3, relative "
    u"density (0 \u00B0C) 0.55 to 0.80, carbon dioxide and nitrogen up to 0.20, hydrogen up to 0.10. Range status 1: "
    u"0 to 120 bar, -23 to 65 \u00B0C, 20 to 48 MJ/m3, 0.55 to 0.90, carbon dioxide up to 0.30, nitrogen up to 0.50, "
    u"hydrogen up to 0.10. Beyond these the equation is still evaluated, with range status 2.\n"
    u"Status 2 is answered for properties that contradict each other, by the tests of the reference program, and "
    u"where no gas density reaches the pressure.\n";

constexpr const CoefficientSet* coefficients_used[] = {&SGERG::coefficient_set};

constexpr record::Function function(std::u16string_view id, std::u16string_view keywords,
                                    std::span<const record::Input> lines, std::span<const record::Output> results) {
  return {
      .id = id,
      .display = u"SGERG",
      .description = u"Compressibility (Z) and density according to SGERG-88 (ISO 12213-3).",
      .subcategory = u"GERG",
      .keywords = keywords,
      .name_input = 0,
      .inputs = lines,
      .outputs = results,
      .binding = &bound<calculate>,
      .coefficients = coefficients_used,
      .notes = notes,
  };
}

}  // namespace

constexpr record::Function SGERG_M = function(u"SGERG_M", u"metric,gas,gerg", inputs_metric, outputs_metric);
constexpr record::Function SGERG_C = function(u"SGERG_C", u"customary,gas,gerg", inputs_customary, outputs_customary);

}  // namespace norvane::functions
