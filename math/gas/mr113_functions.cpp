// MR113: properties of moist petroleum gas by an external library.
#include "framework/binding.h"
#include "math/common/conversions.h"
#include "math/gas/mr113.h"

namespace norvane::functions {

extern const record::Function MR113;

namespace {

using namespace norvane::MR113;
using record::input;
using record::output;

constexpr record::StatusValue statuses[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"NOCONV", u"no convergency"},
    {4.0, u"LIBERR", u"library not available"},
};

// clang-format off
constexpr record::Input fraction(std::u16string_view key, std::u16string_view display, double value) {
  return input(key, display, u"Mole fraction in the dry gas.", unit::mole_mole).within(0, 1).otherwise(value);
}
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Arguments::pressure>(input(u"pressure", u"Pressure", u"Absolute pressure.", unit::bar_a).otherwise(1.01325).through(conversion::bar_to_MPa)),
    in<&Arguments::temperature>(input(u"temperature", u"Temperature", u"Temperature of the gas.", unit::degC).otherwise(20).through(conversion::degC_to_K)),
    in<&Arguments::humidity>(input(u"humidity", u"Relative Humidity", u"Relative humidity (0 to 1).", data_type::num).within(0, 1).otherwise(0)),
    in<&Arguments::methane>(fraction(u"c1", u"Methane", 1)),
    in<&Arguments::ethane>(fraction(u"c2", u"Ethane", 0)),
    in<&Arguments::propane>(fraction(u"c3", u"Propane", 0)),
    in<&Arguments::butanes>(fraction(u"c4", u"Butanes", 0)),
    in<&Arguments::pentanes>(fraction(u"c5", u"Pentanes", 0)),
    in<&Arguments::hexanes_plus>(fraction(u"c6+", u"Hexanes Plus", 0)),
    in<&Arguments::nitrogen>(fraction(u"n2", u"Nitrogen", 0)),
    in<&Arguments::carbon_dioxide>(fraction(u"co2", u"Carbon Dioxide", 0)),
    in<&Arguments::hydrogen_sulfide>(fraction(u"h2s", u"Hydrogen Sulfide", 0)),
};
constexpr record::Output outputs[] = {
    record::status_output(statuses),
    out<&Result::z>(output(u"z", u"Compressibility", u"Compressibility factor (Z).", data_type::num, u"Z")),
    out<&Result::zc>(output(u"zc", u"Std. Compressibility", u"Compressibility factor at 20 \u00B0C and 101.325 kPa (Zc).", data_type::num, u"ZC")),
    out<&Result::k>(output(u"k", u"Compressibility Coef.", u"Compressibility coefficient (Z/Zc).", data_type::num, u"K")),
    out<&Result::mass_density>(output(u"mass density", u"Mass Density", u"Mass density.", unit::kg_m3, u"MASDENS")),
    out<&Result::standard_density>(output(u"std density", u"Standard Density", u"Density at 20 \u00B0C and 101.325 kPa.", unit::kg_sm3_c, u"STDDENS")),
    out<&Result::dry_standard_density>(output(u"std density dry", u"Dry Std. Density", u"Density of the dry gas at 20 \u00B0C and 101.325 kPa.", unit::kg_sm3_c, u"STDDENSDRY")),
    out<&Result::isentropic_exponent>(output(u"kappa", u"Isentropic Exponent", u"Isentropic exponent (kappa).", data_type::num, u"KAPPA")),
    out<&Result::viscosity>(output(u"viscosity", u"Dyn. Viscosity", u"Dynamic viscosity.", unit::Pa_s, u"VISC")),
    out<&Result::molar_mass>(output(u"molar mass", u"Molar Mass", u"Molar mass.", unit::kg_kmol, u"MOLMASS")),
    out<&Result::water_content>(output(u"water content", u"Water Content", u"Water in the moist gas.", unit::mole_mole, u"WATER")),
    out<&Result::speed_of_sound>(output(u"sos", u"Speed of Sound", u"Speed of sound.", unit::m_s, u"SOS")),
    out<&Result::relative_density>(output(u"rel density", u"Relative Density", u"Relative density.", data_type::num, u"RD")),
    out<&Result::superior_calorific_value>(output(u"hv sup", u"Superior Heating Value", u"Superior calorific value at 20 \u00B0C and 101.325 kPa.", unit::MJ_sm3_c, u"HVSUP")),
    out<&Result::inferior_calorific_value>(output(u"hv inf", u"Inferior Heating Value", u"Inferior calorific value at 20 \u00B0C and 101.325 kPa.", unit::MJ_sm3_c, u"HVINF")),
    out<&Result::out_of_range>(output(u"oor", u"Range Status", u"Range status of the gas, temperature and pressure.", enumeration::rangestatus, u"RANGE")),
};
// clang-format on

}  // namespace

const record::Function MR113 = {
    .id = u"MR113",
    .display = u"GSSSD MR113 Gas",
    .description = u"Properties of moist petroleum gas according to GSSSD MR 113-03, by an external library.",
    .subcategory = u"GOST",
    .keywords = u"metric,gas,gost",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<calculate>,
    .notes =
        u"GSSSD MR 113-03. The method's equations are not part of this build. On Windows the library mr113_3.dll is "
        u"looked for once, in the folder of this module and nowhere else; how its entry MR113_CalcValues is called is "
        u"not public, so that the function answers status 4 with and without it. The inputs and outputs are "
        u"provisional until then.\n"};

}  // namespace norvane::functions
