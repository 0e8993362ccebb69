// Solartron_Gas_M, Solartron_Liquid_M and Solartron_SG.
#include "framework/binding.h"
#include "math/densitometer/densitometer_records.h"
#include "math/densitometer/solartron.h"

namespace norvane::functions {

extern const record::Function Solartron_Gas_M;
extern const record::Function Solartron_Liquid_M;
extern const record::Function Solartron_SG;

namespace {

using densitometer::correction_switch;
using record::input;
using record::output;

constexpr record::Option gas_value_methods[] = {{1, u"Use 'G Value'"}, {2, u"Use SG and CP cv Ratio"}};
constexpr record::Option sound_corrections[] = {{0, u"Disabled"}, {1, u"Based on Kr/Kj"}, {2, u"Based on input VOS"}};

// A constant of the calibration certificate.
constexpr record::Input constant(std::u16string_view key, std::u16string_view display) {
  return input(key, display, u"", data_type::num);
}
constexpr record::Input density_constant(std::u16string_view key, std::u16string_view display) {
  return constant(key, display).within(-1e9, 1e9);
}

namespace gas {

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Solartron::GasMeter::period>(input(u"periodic time", u"Periodic Time", u"", unit::us).within(0, 1000000).otherwise(657.2723)),
    in<&Solartron::GasMeter::temperature_correction>(correction_switch(u"temp cor", u"Temperature Corr.", u"Temperature correction.")),
    in<&Solartron::GasMeter::sound_correction>(correction_switch(u"vos cor", u"VOS Correction", u"")),
    in<&Solartron::GasMeter::temperature>(input(u"temperature", u"Temperature", u"Temperature at densitometer.", unit::degC).otherwise(20)),
    in<&Solartron::GasMeter::ref_temperature>(input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).otherwise(20)),
    in<&Solartron::GasMeter::k0>(density_constant(u"k0", u"K0").otherwise(-109.934)),
    in<&Solartron::GasMeter::k1>(density_constant(u"k1", u"K1").otherwise(-0.0035718)),
    in<&Solartron::GasMeter::k2>(density_constant(u"k2", u"K2").otherwise(0.000432733)),
    in<&Solartron::GasMeter::k18>(density_constant(u"k18", u"K18").otherwise(-1.7973e-5)),
    in<&Solartron::GasMeter::k19>(density_constant(u"k19", u"K19").otherwise(3.4502e-4)),
    in<&Solartron::GasMeter::k3>(density_constant(u"k3", u"K3").otherwise(665)),
    in<&Solartron::GasMeter::k4>(density_constant(u"k4", u"K4").otherwise(112)),
    in<&Solartron::GasMeter::calibration_gas>(input(u"calib gas const", u"Calib. Gas Const.", u"Calibration gas constant.", data_type::num)
        .within(0, 1).otherwise(0.00236)),
    in<&Solartron::GasMeter::method>(input(u"g value method", u"G Value Method", u"G value method.", data_type::integer)
        .options(gas_value_methods).otherwise(1)),
    in<&Solartron::GasMeter::gas_value>(input(u"g value", u"G Value", u"", data_type::num).within(0, 100).otherwise(0.49)),
    in<&Solartron::GasMeter::relative_density>(input(u"sg", u"Specific Gravity", u"", data_type::num).within(0, 2).otherwise(0.64)),
    in<&Solartron::GasMeter::specific_heat_ratio>(input(u"cp cv ratio", u"Specific Heats Ratio", u"Ratio of specific heats.", data_type::num)
        .within(0, 10).otherwise(1.3)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Solartron::GasDensity::corrected>(output(u"cor density", u"Corrected Dens.", u"", unit::kg_m3, u"CORDENS")),
    out<&Solartron::GasDensity::temperature_corrected>(output(u"t cor dens", u"Temp. Corr. Dens.", u"", unit::kg_m3, u"TEMPCORDENS")),
    out<&Solartron::GasDensity::uncorrected>(output(u"uncor dens", u"Uncorrected Dens.", u"", unit::kg_m3, u"UNCORDENS")),
};
// clang-format on
}  // namespace gas

namespace liquid {

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Solartron::LiquidMeter::period>(input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(50)),
    in<&Solartron::LiquidMeter::temperature>(input(u"temperature", u"Temperature", u"Temperature at the densitometer.", unit::degC).otherwise(20)),
    in<&Solartron::LiquidMeter::pressure>(input(u"pressure", u"Pressure", u"Pressure at the densitometer.", unit::bar_g).otherwise(0)),
    in<&Solartron::LiquidMeter::temperature_correction>(correction_switch(u"temp corr", u"Temperature Correction", u"")),
    in<&Solartron::LiquidMeter::pressure_correction>(correction_switch(u"pres corr", u"Pressure Correction", u"")),
    in<&Solartron::LiquidMeter::sound_correction>(input(u"vos corr", u"VOS Correction", u"VOS Correction.", data_type::integer)
        .options(sound_corrections).otherwise(2)),
    in<&Solartron::LiquidMeter::ref_temperature>(input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).otherwise(20)),
    in<&Solartron::LiquidMeter::ref_pressure>(input(u"ref pres", u"Ref. Pressure", u"Reference pressure.", unit::bar_g).otherwise(1)),
    in<&Solartron::LiquidMeter::k0>(constant(u"k0", u"K0").otherwise(174.18)),
    in<&Solartron::LiquidMeter::k1>(constant(u"k1", u"K1").otherwise(-1.10493)),
    in<&Solartron::LiquidMeter::k2>(constant(u"k2", u"K2").otherwise(0.0003703268)),
    in<&Solartron::LiquidMeter::k18>(constant(u"k18", u"K18").otherwise(-0.0006415)),
    in<&Solartron::LiquidMeter::k19>(constant(u"k19", u"K19").otherwise(-0.5674)),
    in<&Solartron::LiquidMeter::k20a>(constant(u"k20a", u"K20A").otherwise(0.0002888)),
    in<&Solartron::LiquidMeter::k20b>(constant(u"k20b", u"K20B").otherwise(-0.000005581)),
    in<&Solartron::LiquidMeter::k21a>(constant(u"k21a", u"K21A").otherwise(-0.4467)),
    in<&Solartron::LiquidMeter::k21b>(constant(u"k21b", u"K21B").otherwise(-0.008633)),
    in<&Solartron::LiquidMeter::kr>(constant(u"kr", u"Kr").within(-1, 1).otherwise(0.1)),
    in<&Solartron::LiquidMeter::kj>(input(u"kj", u"Kj", u"", unit::kg_m3).within(0, 2000).otherwise(100)),
    in<&Solartron::LiquidMeter::velocity_of_sound>(input(u"liquid vos", u"Liquid VOS", u"", unit::m_s).within(0, 2000).otherwise(1200)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Solartron::LiquidDensity::corrected>(output(u"cor density", u"Corrected Dens.", u"Corrected density.", unit::kg_m3, u"CORDENS")),
    out<&Solartron::LiquidDensity::temperature_corrected>(output(u"t cor density", u"Temp. Corr. Dens.", u"Temperature corrected density.", unit::kg_m3, u"TCORDENS")),
    out<&Solartron::LiquidDensity::pressure_corrected>(output(u"pt cor density", u"PT Corr. Dens.", u"PT corrected density.", unit::kg_m3, u"PTCORDENS")),
    out<&Solartron::LiquidDensity::uncorrected>(output(u"uncor density", u"Uncorrected Dens.", u"Uncorrected density.", unit::kg_m3, u"UNCDENS")),
};
// clang-format on
}  // namespace liquid

namespace gravity {

constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Solartron::GravityMeter::period>(input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(548)),
    in<&Solartron::GravityMeter::k0>(constant(u"k0", u"K0").within(-10000, 0).otherwise(-2.1103037)),
    in<&Solartron::GravityMeter::k2>(constant(u"k2", u"K2").within(0, 1).otherwise(9.3080093e-6)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Solartron::Gravity::sg>(output(u"sg", u"Specific Gravity", u"", data_type::num, u"SG").expected(0, 10)),
};
}  // namespace gravity

}  // namespace

const record::Function Solartron_Gas_M = {
    .id = u"Solartron_Gas_M",
    .display = u"Solartron Gas",
    .description = u"Solartron Gas Densitometer.",
    .subcategory = u"Solartron",
    .keywords = u"metric,densitometer",
    .name_input = 0,
    .inputs = gas::inputs,
    .outputs = gas::outputs,
    .binding = &bound<Solartron::gas_density>,
    .notes =
        u"Gas density meters GDM and 7812: manuals of April 2016 (GDM) and 2012 (7812). "
        u"The absolute temperature of the velocity-of-sound correction is temperature + 273.\n"
        u"Status 2 for a zero divisor or an uncorrected, temperature corrected or corrected density outside "
        u"0 to 3000 kg/m3; a ratio of specific heats of 0 is one with G value method 2, "
        u"also without the correction.\n"
        u"Defaults: periodic time, K0, K1, K2, K18 and K19 are a published calibration point of the gas density "
        u"meter (public repository equinor/pvtlib); the calibration gas constant is that of nitrogen. "
        u"K3 and K4 are no certificate's: they are derived from the sensor constant 2.1e4 of the 7812 manual. "
        u"Give the constants of your own certificate.\n"};

const record::Function Solartron_Liquid_M = {
    .id = u"Solartron_Liquid_M",
    .display = u"Solartron Liquid",
    .description = u"Solartron Liquid Densitometer.",
    .subcategory = u"Solartron",
    .keywords = u"metric,densitometer",
    .name_input = 0,
    .inputs = liquid::inputs,
    .outputs = liquid::outputs,
    .binding = &bound<Solartron::liquid_density>,
    .notes =
        u"Liquid density meters 7835, 7845, 7846 and 7847: their manual, velocity of sound in section 6.24. "
        u"The correction by a given velocity of sound is made from 300 to 1400 kg/m3, outside these "
        u"the density stays as it is and the velocity is not read.\n"
        u"Status 2 for a zero divisor or an uncorrected, temperature corrected or corrected density outside "
        u"0 to 3000 kg/m3; the density after the pressure correction is not tested.\n"
        u"Defaults: example constants, not those of an instrument. Give the constants of your own certificate.\n"};

const record::Function Solartron_SG = {
    .id = u"Solartron_SG",
    .display = u"Solartron Specific Gravity",
    .description = u"Solartron Specific Gravity transducer.",
    .subcategory = u"Solartron",
    .keywords = u"customary,densitometer",
    .name_input = 0,
    .inputs = gravity::inputs,
    .outputs = gravity::outputs,
    .binding = &bound<Solartron::specific_gravity>,
    .notes =
        u"Relative density transducers 3096 and 3098, calibrated with two gases: manuals of the 3096 and 3098. "
        u"Any finite result is answered.\n"
        u"Defaults: illustrative, from no certificate: the two-gas formula with methane and nitrogen over air "
        u"and assumed periods of 535 and 575 \u00B5s. Give the constants of your own certificate.\n"};

}  // namespace norvane::functions
