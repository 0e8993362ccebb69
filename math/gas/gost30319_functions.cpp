// GOST30319, GOST30319_SGERG91mod, GOST30319_AGA8: properties of natural gas by GOST 30319-96.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/conversions.h"
#include "math/common/gas_records.h"
#include "math/gas/aga8_table.h"
#include "math/gas/gost30319.h"
#include "math/gas/sgerg_table.h"

namespace norvane::functions {

extern const record::Function GOST30319, GOST30319_SGERG91mod, GOST30319_AGA8;

namespace {

using namespace norvane::GOST30319;
using record::Input;
using record::input;
using record::Output;
using record::output;

constexpr record::Option methods[] = {{1, u"NX19 mod."}, {2, u"GERG-91 mod."}};
constexpr record::Option known_properties[] = {{1, u"Standard density"}, {2, u"Superior heating value"}};

// clang-format off
template <class In>
constexpr std::array<Input, 3> state = {
    record::name_input(),
    in<&In::pressure>(input(u"pressure", u"Pressure", u"Absolute pressure.", unit::bar_a).otherwise(1.01325).through(conversion::bar_to_MPa)),
    in<&In::temperature>(input(u"temperature", u"Temperature", u"Temperature of the gas.", unit::degC).otherwise(20).through(conversion::degC_to_K)),
};
constexpr Input density_input(std::u16string_view description) {
  return input(u"dens", u"Standard Density", description, unit::kg_sm3_c).within(0, 10).otherwise(0.6799);
}
template <class In>
constexpr std::array<Input, 2> inerts = {
    in<&In::nitrogen>(input(u"n2", u"Nitrogen", u"Nitrogen.", unit::mole_mole).within(0, 1).otherwise(0)),
    in<&In::carbon_dioxide>(input(u"co2", u"Carbon Dioxide", u"Carbon dioxide.", unit::mole_mole).within(0, 1).otherwise(0)),
};

constexpr auto inputs = join(
    state<Arguments>,
    std::array<Input, 1>{in<&Arguments::density>(density_input(u"Density at 20 \u00B0C and 101.325 kPa."))},
    inerts<Arguments>,
    std::array<Input, 1>{in<&Arguments::method>(input(u"method", u"Method", u"Calculation method.", data_type::integer).options(methods).otherwise(1))});

constexpr auto inputs_gerg91 = join(
    state<Gerg91Arguments>,
    std::array<Input, 2>{
        in<&Gerg91Arguments::density>(density_input(u"Density at 20 \u00B0C and 101.325 kPa (input mode 1).")),
        in<&Gerg91Arguments::calorific_value>(input(u"hv", u"Superior Heating Value", u"Superior calorific value at 20 \u00B0C and 101.325 kPa (input mode 2).", unit::MJ_sm3_c).within(0, 100).otherwise(37))},
    inerts<Gerg91Arguments>,
    std::array<Input, 1>{in<&Gerg91Arguments::known>(input(u"input mode", u"Input Mode", u"Known property.", data_type::integer).options(known_properties).otherwise(1))});

constexpr std::array<Output, 8> leading = {
    record::status_output(),
    out<&Result::k>(output(u"k", u"Compressibility Coef.", u"Compressibility coefficient (Z/Zc).", data_type::num, u"K")),
    out<&Result::z>(output(u"z", u"Compressibility", u"Compressibility factor (Z).", data_type::num, u"Z")),
    out<&Result::zc>(output(u"zc", u"Std. Compressibility", u"Compressibility factor at 20 \u00B0C and 101.325 kPa (Zc).", data_type::num, u"ZC")),
    out<&Result::mass_density>(output(u"mass density", u"Mass Density", u"Mass density.", unit::kg_m3, u"MASDENS")),
    out<&Result::isentropic_exponent>(output(u"kappa", u"Isentropic Exponent", u"Isentropic exponent (kappa).", data_type::num, u"KAPPA")),
    out<&Result::speed_of_sound>(output(u"sos", u"Speed of Sound", u"Speed of sound.", unit::m_s, u"SOS")),
    out<&Result::viscosity>(output(u"viscosity", u"Dyn. Viscosity", u"Dynamic viscosity.", unit::Pa_s, u"VISC")),
};
constexpr std::array<Output, 3> of_the_gas = {
    out<&Result::superior_calorific_value>(output(u"hv sup", u"Superior Heating Value", u"Superior calorific value at 20 \u00B0C and 101.325 kPa.", unit::MJ_sm3_c, u"HVSUP")),
    out<&Result::inferior_calorific_value>(output(u"hv inf", u"Inferior Heating Value", u"Inferior calorific value at 20 \u00B0C and 101.325 kPa.", unit::MJ_sm3_c, u"HVINF")),
    out<&Result::molar_mass>(output(u"molar mass", u"Molar Mass", u"Molar mass.", unit::kg_kmol, u"MOLMASS")),
};
constexpr std::array<Output, 1> range = {
    out<&Result::out_of_range>(output(u"oor", u"Range Status", u"Range status of the gas, temperature and pressure.", enumeration::rangestatus, u"RANGE")),
};
constexpr auto outputs = join(leading, of_the_gas, range);
constexpr auto outputs_gerg91 = join(leading, range);

constexpr auto inputs_detail = join(
    state<DetailArguments>,
    std::array<Input, 4>{
        in<&DetailArguments::composition>(record::composition_input()),
        in<&DetailArguments::neo_pentane>(record::neo_pentane_input()),
        in<&DetailArguments::base_pressure>(input(u"base pressure", u"Base Pressure", u"Absolute pressure of Zc.", unit::bar_a).otherwise(1.01325).through(conversion::bar_to_MPa)),
        in<&DetailArguments::base_temperature>(input(u"base temperature", u"Base Temperature", u"Temperature of Zc.", unit::degC).otherwise(20).through(conversion::degC_to_K))});
constexpr Output outputs_detail[] = {
    record::status_output(record::statuses_with_composition),
    out<&DetailResult::k>(output(u"k", u"Compressibility Coef.", u"Compressibility coefficient (Z/Zc).", data_type::num, u"K")),
    out<&DetailResult::z>(output(u"z", u"Compressibility", u"Compressibility factor (Z).", data_type::num, u"Z")),
    out<&DetailResult::zc>(output(u"zc", u"Base Compressibility", u"Compressibility factor at base conditions (Zc).", data_type::num, u"ZC")),
    out<&DetailResult::mass_density>(output(u"mass density", u"Mass Density", u"Mass density.", unit::kg_m3, u"MASDENS")),
};

#define NV_GOST30319_PROPERTIES                                                                                        \
  u"GOST 30319.1-96 and 30319.2-96, Natural gas - Methods of calculation of physical properties. Standard conditions " \
  u"are 20 \u00B0C and 101.325 kPa; K = Z/Zc.\n"                                                                       \
  u"Isentropic exponent, speed of sound, viscosity and calorific values are those of part 1, from the standard "       \
  u"density, nitrogen and carbon dioxide; the pressure term of the viscosity acts from 0 bar on.\n"
#define NV_GOST30319_GERG91                                                                                            \
  u"GERG-91 mod. is solved for the density that the gas reaches from zero pressure on. It equals the closed form of "  \
  u"the standard to the last digits, but where that form loses its digits, at high pressure in cold, rich gas. Status 2 " \
  u"is answered where such gas would condense, and where density and inert gases leave no hydrocarbon that the equation " \
  u"has coefficients for.\n"
// clang-format on

constexpr const CoefficientSet* coefficients_used[] = {&AGA8::coefficient_set};

constexpr const CoefficientSet* of_sgerg[] = {&SGERG::coefficient_set};

}  // namespace

const record::Function GOST30319 = {
    .id = u"GOST30319",
    .display = u"GOST 30319.2-96",
    .description = u"Natural gas properties according to GOST 30319-96 (NX19 mod. or GERG-91 mod.).",
    .subcategory = u"GOST",
    .keywords = u"metric,gas,gost",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<calculate>,
    .coefficients = of_sgerg,
    .notes = NV_GOST30319_PROPERTIES NV_GOST30319_GERG91
    u"Range status 0: 1 to 120 bar, 250 to 340 K, 0.66 to 1.05 kg/m3, superior calorific value 32 to 40 MJ/m3 and "
    u"nitrogen and carbon dioxide up to 0.15 each (NX19 mod.), 20 to 48 MJ/m3 and up to 0.20 each (GERG-91 mod.). "
    u"Outside the regions of NX19 mod. the answer is status 2.\n",
};

const record::Function GOST30319_SGERG91mod = {
    .id = u"GOST30319_SGERG91mod",
    .display = u"GOST 30319.2 SGERG-91 mod",
    .description = u"Natural gas properties according to GOST 30319-96 (GERG-91 mod.).",
    .subcategory = u"GOST",
    .keywords = u"metric,gas,gost",
    .name_input = 0,
    .inputs = inputs_gerg91,
    .outputs = outputs_gerg91,
    .binding = &bound<calculate_gerg91>,
    .coefficients = of_sgerg,
    .notes = NV_GOST30319_PROPERTIES NV_GOST30319_GERG91
    u"Input mode 2 takes the standard density from the superior calorific value, by the formula of part 1.\n"
    u"Range status 0: 1 to 120 bar, 250 to 340 K, 0.66 to 1.05 kg/m3, 20 to 48 MJ/m3, nitrogen and carbon dioxide up "
    u"to 0.20 each.\n",
};

const record::Function GOST30319_AGA8 = {
    .id = u"GOST30319_AGA8",
    .display = u"GOST 30319.2 - AGA8-92DC",
    .description = u"Natural gas compressibility and density according to GOST 30319.2-96 (AGA8-92DC).",
    .subcategory = u"GOST",
    .keywords = u"metric,gas,gost",
    .name_input = 0,
    .inputs = inputs_detail,
    .outputs = outputs_detail,
    .binding = &bound<calculate_detail>,
    .coefficients = coefficients_used,
    .notes =
        u"GOST 30319.2-96, method AGA8-92DC: Z and Zc of the detail equation of AGA Report No. 8, K = Z/Zc.\n"
        u"At pressure 0 Z is 1. Status 2 is answered where no gas density reaches the pressure.\n"
        u"An unchanged composition, temperature and pressure of the same name or calling place answers from memory.\n",
};
#undef NV_GOST30319_PROPERTIES
#undef NV_GOST30319_GERG91

}  // namespace norvane::functions
