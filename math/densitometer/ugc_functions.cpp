// UGC_M.
#include "framework/binding.h"
#include "math/densitometer/densitometer_records.h"
#include "math/densitometer/ugc.h"

namespace norvane::functions {

extern const record::Function UGC_M;

namespace {

using densitometer::correction_switch;
using record::input;
using record::output;

constexpr record::Input constant(std::u16string_view key, std::u16string_view display) {
  return input(key, display, u"", data_type::num).within(-1e9, 1e9);
}

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&UGC::Meter::period>(input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(650)),
    in<&UGC::Meter::temperature>(input(u"temperature", u"Temperature", u"Temperature at densitometer.", unit::degC).otherwise(15)),
    in<&UGC::Meter::pressure>(input(u"pressure", u"Pressure", u"Pressure at densitometer.", unit::bar_g).otherwise(1)),
    in<&UGC::Meter::temperature_correction>(correction_switch(u"temp cor", u"Temperature Correction", u"Temperature correction.")),
    in<&UGC::Meter::pressure_correction>(correction_switch(u"pres cor", u"Pressure Correction", u"Pressure correction.")),
    in<&UGC::Meter::ref_temperature>(input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).otherwise(15)),
    in<&UGC::Meter::ref_pressure>(input(u"ref pres", u"Ref. Pressure", u"Reference pressure.", unit::bar_g).otherwise(1)),
    in<&UGC::Meter::k0>(constant(u"k0", u"K0").otherwise(-220)),
    in<&UGC::Meter::k1>(constant(u"k1", u"K1").otherwise(0.015)),
    in<&UGC::Meter::k2>(constant(u"k2", u"K2").otherwise(0.00072)),
    in<&UGC::Meter::kt0>(constant(u"kt0", u"Kt0").otherwise(0.012)),
    in<&UGC::Meter::kt1>(constant(u"kt1", u"Kt1").otherwise(-2.5e-5)),
    in<&UGC::Meter::kt2>(constant(u"kt2", u"Kt2").otherwise(3e-9)),
    in<&UGC::Meter::kp0>(constant(u"kp0", u"Kp0").otherwise(-0.004)),
    in<&UGC::Meter::kp1>(constant(u"kp1", u"Kp1").otherwise(1.6e-5)),
    in<&UGC::Meter::kp2>(constant(u"kp2", u"Kp2").otherwise(-2e-9)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&UGC::Density::corrected>(output(u"cor density", u"Corrected Dens.", u"Corrected density.", unit::kg_m3, u"CORDENS")),
    out<&UGC::Density::uncorrected>(output(u"uncor density", u"Uncorrected Dens.", u"Uncorrected density.", unit::kg_m3, u"UNCDENS")),
};
// clang-format on

}  // namespace

const record::Function UGC_M = {
    .id = u"UGC_M",
    .display = u"UGC",
    .description = u"UGC Densitometer.",
    .subcategory = u"UGC",
    .keywords = u"metric,densitometer",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<UGC::density>,
    .notes =
        u"A parabola of the period, corrected for temperature and pressure by parabolas of the uncorrected density. "
        u"The result is not held within limits: any finite number is answered, also a negative one.\n"
        u"Defaults: illustrative, from no certificate; no public source of the maker's was found. "
        u"Give the constants of your own certificate.\n"};

}  // namespace norvane::functions
