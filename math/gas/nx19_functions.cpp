// NX19_M: compressibility by NX-19.
#include "framework/binding.h"
#include "math/common/gas_records.h"
#include "math/gas/nx19.h"

namespace norvane::functions {

extern const record::Function NX19_M;

namespace {

using namespace NX19;
using record::input;
using record::output;

constexpr record::Option methods[] = {{1, u"Specific gravity"}, {2, u"Methane"}};

// The report counts in psi and degF.
constexpr record::Conversion bar_to_psi{[](double bar) noexcept { return bar * 1e5 / 6894.76; },
                                        [](double psi) noexcept { return psi * 6894.76 / 1e5; }};
constexpr record::Conversion degC_to_degF{[](double C) noexcept { return C * 1.8 + 32.0; },
                                          [](double F) noexcept { return (F - 32.0) / 1.8; }};

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Arguments::pressure>(input(u"pressure", u"Pressure", u"Absolute pressure.", unit::bar_a).otherwise(1.01325).through(bar_to_psi)),
    in<&Arguments::temperature>(input(u"temperature", u"Temperature", u"Temperature of the gas.", unit::degC).otherwise(15).through(degC_to_degF)),
    in<&Arguments::specific_gravity>(input(u"rd", u"Relative Density", u"Specific gravity of the gas (air = 1).", data_type::num).within(0, 2).otherwise(0.6)),
    in<&Arguments::carbon_dioxide>(input(u"co2", u"Carbon Dioxide", u"Carbon dioxide.", unit::mole_mole).within(0, 1).otherwise(0)),
    in<&Arguments::nitrogen>(input(u"n2", u"Nitrogen", u"Nitrogen.", unit::mole_mole).within(0, 1).otherwise(0)),
    in<&Arguments::methane>(input(u"ch4", u"Methane", u"Methane (method 2 only).", unit::mole_mole).within(0, 1).otherwise(1)),
    in<&Arguments::method>(input(u"method", u"Method", u"Adjustment of pressure and temperature.", data_type::integer).options(methods).otherwise(1)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Result::z>(output(u"z", u"Compressibility", u"Compressibility factor relative to 14.7 psia and 60 \u00B0F (1/Fpv squared).", data_type::num, u"Z")),
    out<&Result::out_of_range>(output(u"oor", u"Range Status", u"Range status of the gas and temperature.", enumeration::rangestatus, u"RANGE")),
};
// clang-format on

}  // namespace

const record::Function NX19_M = {
    .id = u"NX19_M",
    .display = u"NX-19",
    .description = u"Compressibility (Z) according to NX-19.",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<calculate>,
    .notes =
        u"Source: American Gas Association, Manual for the determination of supercompressibility factors for natural "
        u"gas (NX-19, 1962), specific gravity method and methane method.\n"
        u"The value is 1/Fpv squared, the ratio of the compressibility factors at flowing and at base conditions: 1.0000 "
        u"at atmospheric pressure. Gauge pressure is absolute pressure less 14.7 psi.\n"
        u"The equations for reduced pressures up to 2 (some 138 bar) and reduced temperatures from 0.84 to 1.4 are "
        u"part of this build; status 2 is answered beyond them.\n"
        u"Range status 1: a temperature outside -40 to 240 \u00B0F, or with the specific gravity method a specific "
        u"gravity above 0.75 or more than 0.15 of carbon dioxide or nitrogen. The methane method is for such gas; its "
        u"constants have a single public source.\n"};

}  // namespace norvane::functions
