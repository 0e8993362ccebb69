// Solartron_Gas_M, Solartron_Liquid_M and Solartron_SG: records and implementations.
#include <iterator>

#include "framework/call.h"
#include "framework/records.h"
#include "math/densitometer/solartron.h"
#include "math/densitometer/switches.h"

namespace norvane::functions {

extern const record::Function Solartron_Gas_M;
extern const record::Function Solartron_Liquid_M;
extern const record::Function Solartron_SG;

namespace {

using densitometer::correction_switch;
using densitometer::Switches;
using record::input;
using record::output;
using Solartron::Outcome;

constexpr int argument_error = static_cast<int>(Outcome::argument_error);

// A constant of the calibration certificate.
constexpr record::Input constant(std::u16string_view key, std::u16string_view display) {
  return input(key, display, u"", data_type::num);
}
constexpr record::Input density_constant(std::u16string_view key, std::u16string_view display) {
  return constant(key, display).within(-1e9, 1e9);
}

namespace gas {
enum class In : std::size_t {
  name,
  period,
  temperature_correction,
  sound_correction,
  temperature,
  ref_temperature,
  k0,
  k1,
  k2,
  k18,
  k19,
  k3,
  k4,
  calibration_gas,
  method,
  gas_value,
  relative_density,
  specific_heat_ratio,
  count
};
enum class Out : std::size_t { status, corrected, temperature_corrected, uncorrected, count };

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    input(u"periodic time", u"Periodic Time", u"", unit::us).within(0, 1000000).otherwise(657.2723),
    correction_switch(u"temp cor", u"Temperature Corr.", u"Temperature correction."),
    correction_switch(u"vos cor", u"VOS Correction", u""),
    input(u"temperature", u"Temperature", u"Temperature at densitometer.", unit::degC).otherwise(20),
    input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).otherwise(20),
    density_constant(u"k0", u"K0").otherwise(-109.934),
    density_constant(u"k1", u"K1").otherwise(-0.0035718),
    density_constant(u"k2", u"K2").otherwise(0.000432733),
    density_constant(u"k18", u"K18").otherwise(-1.7973e-5),
    density_constant(u"k19", u"K19").otherwise(3.4502e-4),
    density_constant(u"k3", u"K3").otherwise(665),
    density_constant(u"k4", u"K4").otherwise(112),
    input(u"calib gas const", u"Calib. Gas Const.", u"Calibration gas constant.", data_type::num)
        .within(0, 1).otherwise(0.00236),
    input(u"g value method", u"G Value Method", u"G value method.; 1: Use 'G Value'; 2: Use SG and CP cv Ratio", data_type::integer)
        .within(1, 2).otherwise(1),
    input(u"g value", u"G Value", u"", data_type::num).within(0, 100).otherwise(0.49),
    input(u"sg", u"Specific Gravity", u"", data_type::num).within(0, 2).otherwise(0.64),
    input(u"cp cv ratio", u"Specific Heats Ratio", u"Ratio of specific heats.", data_type::num)
        .within(0, 10).otherwise(1.3),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    output(u"cor density", u"Corrected Dens.", u"", unit::kg_m3, u"CORDENS"),
    output(u"t cor dens", u"Temp. Corr. Dens.", u"", unit::kg_m3, u"TEMPCORDENS"),
    output(u"uncor dens", u"Uncorrected Dens.", u"", unit::kg_m3, u"UNCORDENS"),
};
// clang-format on
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& out) {
  Call call(context, args, count, out);
  Switches switches(call);
  Solartron::GasMeter meter{};
  meter.period = call.number(In::period);
  meter.temperature_correction = switches.read(In::temperature_correction);
  meter.sound_correction = switches.read(In::sound_correction);
  meter.temperature = call.number(In::temperature);
  meter.ref_temperature = call.number(In::ref_temperature);
  meter.k0 = call.number(In::k0);
  meter.k1 = call.number(In::k1);
  meter.k2 = call.number(In::k2);
  meter.k18 = call.number(In::k18);
  meter.k19 = call.number(In::k19);
  meter.k3 = call.number(In::k3);
  meter.k4 = call.number(In::k4);
  meter.calibration_gas = call.number(In::calibration_gas);
  meter.method = static_cast<Solartron::GasValue>(call.option(In::method));
  meter.gas_value = call.number(In::gas_value);
  meter.relative_density = call.number(In::relative_density);
  meter.specific_heat_ratio = call.number(In::specific_heat_ratio);
  if (call.failed()) return call.error();
  if (switches.outside_list()) return call.status_only(argument_error);

  Solartron::GasDensity density{};
  const Outcome outcome = Solartron::gas_density(meter, density);
  if (outcome != Outcome::ok) return call.status_only(static_cast<int>(outcome));
  call.set_integer(Out::status, 0);
  call.set(Out::corrected, density.corrected);
  call.set(Out::temperature_corrected, density.temperature_corrected);
  call.set(Out::uncorrected, density.uncorrected);
  return call.done();
}
}  // namespace gas

namespace liquid {
enum class In : std::size_t {
  name,
  period,
  temperature,
  pressure,
  temperature_correction,
  pressure_correction,
  sound_correction,
  ref_temperature,
  ref_pressure,
  k0,
  k1,
  k2,
  k18,
  k19,
  k20a,
  k20b,
  k21a,
  k21b,
  kr,
  kj,
  velocity_of_sound,
  count
};
enum class Out : std::size_t { status, corrected, temperature_corrected, pressure_corrected, uncorrected, count };

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(50),
    input(u"temperature", u"Temperature", u"Temperature at the densitometer.", unit::degC).otherwise(20),
    input(u"pressure", u"Pressure", u"Pressure at the densitometer.", unit::bar_g).otherwise(0),
    correction_switch(u"temp corr", u"Temperature Correction", u""),
    correction_switch(u"pres corr", u"Pressure Correction", u""),
    input(u"vos corr", u"VOS Correction", u"VOS Correction.; 0: Disabled; 1: Based on Kr/Kj; 2: Based on input VOS", data_type::integer)
        .within(0, 2).otherwise(2),
    input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).otherwise(20),
    input(u"ref pres", u"Ref. Pressure", u"Reference pressure.", unit::bar_g).otherwise(1),
    constant(u"k0", u"K0").otherwise(174.18),
    constant(u"k1", u"K1").otherwise(-1.10493),
    constant(u"k2", u"K2").otherwise(0.0003703268),
    constant(u"k18", u"K18").otherwise(-0.0006415),
    constant(u"k19", u"K19").otherwise(-0.5674),
    constant(u"k20a", u"K20A").otherwise(0.0002888),
    constant(u"k20b", u"K20B").otherwise(-0.000005581),
    constant(u"k21a", u"K21A").otherwise(-0.4467),
    constant(u"k21b", u"K21B").otherwise(-0.008633),
    constant(u"kr", u"Kr").within(-1, 1).otherwise(0.1),
    input(u"kj", u"Kj", u"", unit::kg_m3).within(0, 2000).otherwise(100),
    input(u"liquid vos", u"Liquid VOS", u"", unit::m_s).within(0, 2000).otherwise(1200),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    output(u"cor density", u"Corrected Dens.", u"Corrected density.", unit::kg_m3, u"CORDENS"),
    output(u"t cor density", u"Temp. Corr. Dens.", u"Temperature corrected density.", unit::kg_m3, u"TCORDENS"),
    output(u"pt cor density", u"PT Corr. Dens.", u"PT corrected density.", unit::kg_m3, u"PTCORDENS"),
    output(u"uncor density", u"Uncorrected Dens.", u"Uncorrected density.", unit::kg_m3, u"UNCDENS"),
};
// clang-format on
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& out) {
  Call call(context, args, count, out);
  Switches switches(call);
  Solartron::LiquidMeter meter{};
  meter.period = call.number(In::period);
  meter.temperature = call.number(In::temperature);
  meter.pressure = call.number(In::pressure);
  meter.temperature_correction = switches.read(In::temperature_correction);
  meter.pressure_correction = switches.read(In::pressure_correction);
  const double sound_correction = call.number(In::sound_correction);
  meter.ref_temperature = call.number(In::ref_temperature);
  meter.ref_pressure = call.number(In::ref_pressure);
  meter.k0 = call.number(In::k0);
  meter.k1 = call.number(In::k1);
  meter.k2 = call.number(In::k2);
  meter.k18 = call.number(In::k18);
  meter.k19 = call.number(In::k19);
  meter.k20a = call.number(In::k20a);
  meter.k20b = call.number(In::k20b);
  meter.k21a = call.number(In::k21a);
  meter.k21b = call.number(In::k21b);
  meter.kr = call.number(In::kr);
  meter.kj = call.number(In::kj);
  meter.velocity_of_sound = call.number(In::velocity_of_sound);
  if (call.failed()) return call.error();
  // Not through an option, which reads a NaN as 0: here 0 is a member of the list.
  if (switches.outside_list() || !(sound_correction >= 0.0 && sound_correction <= 2.0)) {
    return call.status_only(argument_error);
  }
  meter.sound_correction = static_cast<Solartron::SoundCorrection>(static_cast<int>(sound_correction));

  Solartron::LiquidDensity density{};
  const Outcome outcome = Solartron::liquid_density(meter, density);
  if (outcome != Outcome::ok) return call.status_only(static_cast<int>(outcome));
  call.set_integer(Out::status, 0);
  call.set(Out::corrected, density.corrected);
  call.set(Out::temperature_corrected, density.temperature_corrected);
  call.set(Out::pressure_corrected, density.pressure_corrected);
  call.set(Out::uncorrected, density.uncorrected);
  return call.done();
}
}  // namespace liquid

namespace gravity {
enum class In : std::size_t { name, period, k0, k2, count };
enum class Out : std::size_t { status, sg, count };

constexpr record::Input inputs[] = {
    record::name_input(),
    input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(548),
    constant(u"k0", u"K0").within(-10000, 0).otherwise(-2.1103037),
    constant(u"k2", u"K2").within(0, 1).otherwise(9.3080093e-6),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    output(u"sg", u"Specific Gravity", u"", data_type::num, u"SG"),
};
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& out) {
  Call call(context, args, count, out);
  const double period = call.number(In::period);
  const double k0 = call.number(In::k0);
  const double k2 = call.number(In::k2);
  if (call.failed()) return call.error();

  double sg = 0.0;
  const Outcome outcome = Solartron::specific_gravity(period, k0, k2, sg);
  if (outcome != Outcome::ok) return call.status_only(static_cast<int>(outcome));
  call.set_integer(Out::status, 0);
  call.set(Out::sg, sg);
  return call.done();
}
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
    .implementation = gas::run,
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
    .implementation = liquid::run,
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
    .implementation = gravity::run,
    .notes =
        u"Relative density transducers 3096 and 3098, calibrated with two gases: manuals of the 3096 and 3098. "
        u"Any finite result is answered.\n"
        u"Defaults: illustrative, from no certificate: the two-gas formula with methane and nitrogen over air "
        u"and assumed periods of 535 and 575 \u00B5s. Give the constants of your own certificate.\n"};

}  // namespace norvane::functions
