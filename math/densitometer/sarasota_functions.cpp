// Sarasota_M.
#include "framework/binding.h"
#include "math/densitometer/densitometer_records.h"
#include "math/densitometer/sarasota.h"

namespace norvane::functions {

extern const record::Function Sarasota_M;

namespace {

using densitometer::correction_switch;
using record::input;
using record::output;

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Sarasota::Meter::period>(input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(540)),
    in<&Sarasota::Meter::temperature>(input(u"temperature", u"Temperature", u"Temperature at densitometer.", unit::degC)
        .within(-273.15, 500).otherwise(15)),
    in<&Sarasota::Meter::pressure>(input(u"pressure", u"Pressure", u"Pressure at densitometer.", unit::bar_g).within(0, 200).otherwise(1)),
    in<&Sarasota::Meter::temperature_correction>(correction_switch(u"temp cor", u"Temperature Correction", u"")),
    in<&Sarasota::Meter::pressure_correction>(correction_switch(u"pres cor", u"Pressure Correction", u"")),
    in<&Sarasota::Meter::ref_temperature>(input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).within(0, 100).otherwise(15)),
    in<&Sarasota::Meter::ref_pressure>(input(u"ref pres", u"Ref. Pressure", u"Reference pressure.", unit::bar_g).within(0, 100).otherwise(1)),
    in<&Sarasota::Meter::d0>(input(u"d0", u"D0", u"", unit::kg_m3).within(0, 3000).otherwise(230)),
    in<&Sarasota::Meter::t0>(input(u"t0", u"T0", u"", unit::us).within(0, 1000000).otherwise(500)),
    in<&Sarasota::Meter::k>(input(u"k", u"K", u"", data_type::num).within(0, 3000).otherwise(0.9)),
    in<&Sarasota::Meter::temperature_coefficient>(input(u"temp coef", u"Temperature Coef.", u"Temperature coefficient.", data_type::num)
        .within(-1000000, 1000000).otherwise(0.003)),
    in<&Sarasota::Meter::pressure_coefficient>(input(u"pres coef", u"Pressure Coef.", u"Pressure coefficient.", data_type::num)
        .within(-1000000, 1000000).otherwise(-0.0004)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Sarasota::Density::density>(output(u"density", u"Density", u"", unit::kg_m3, u"CORDENS")),
};
// clang-format on

}  // namespace

const record::Function Sarasota_M = {
    .id = u"Sarasota_M",
    .display = u"Sarasota",
    .description = u"Sarasota Densitometer.",
    .subcategory = u"Sarasota",
    .keywords = u"metric,densitometer",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<Sarasota::density>,
    .notes =
        u"Density from the period and the constants D0, T0 and K, with T0 corrected for temperature and pressure "
        u"(equations as in the public calculation help of Kelton, C135).\n"
        u"Status 2 for a corrected T0 of 0 and for a density outside 0 to 3000 kg/m3; "
        u"a period equal to T0 is a density of 0.\n"
        u"Defaults: illustrative, from no certificate. Give the constants of your own certificate.\n"};

}  // namespace norvane::functions
