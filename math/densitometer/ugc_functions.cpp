// UGC_M: record and implementation.
#include <iterator>

#include "framework/call.h"
#include "framework/records.h"
#include "math/densitometer/switches.h"
#include "math/densitometer/ugc.h"

namespace norvane::functions {

extern const record::Function UGC_M;

namespace {

using densitometer::correction_switch;
using densitometer::Switches;
using record::input;
using record::output;
using UGC::Outcome;

enum class In : std::size_t {
  name,
  period,
  temperature,
  pressure,
  temperature_correction,
  pressure_correction,
  ref_temperature,
  ref_pressure,
  k0,
  k1,
  k2,
  kt0,
  kt1,
  kt2,
  kp0,
  kp1,
  kp2,
  count
};
enum class Out : std::size_t { status, corrected, uncorrected, count };

constexpr record::Input constant(std::u16string_view key, std::u16string_view display) {
  return input(key, display, u"", data_type::num).within(-1e9, 1e9);
}

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(650),
    input(u"temperature", u"Temperature", u"Temperature at densitometer.", unit::degC).otherwise(15),
    input(u"pressure", u"Pressure", u"Pressure at densitometer.", unit::bar_g).otherwise(1),
    correction_switch(u"temp cor", u"Temperature Correction", u"Temperature correction."),
    correction_switch(u"pres cor", u"Pressure Correction", u"Pressure correction."),
    input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).otherwise(15),
    input(u"ref pres", u"Ref. Pressure", u"Reference pressure.", unit::bar_g).otherwise(1),
    constant(u"k0", u"K0").otherwise(-220),
    constant(u"k1", u"K1").otherwise(0.015),
    constant(u"k2", u"K2").otherwise(0.00072),
    constant(u"kt0", u"Kt0").otherwise(0.012),
    constant(u"kt1", u"Kt1").otherwise(-2.5e-5),
    constant(u"kt2", u"Kt2").otherwise(3e-9),
    constant(u"kp0", u"Kp0").otherwise(-0.004),
    constant(u"kp1", u"Kp1").otherwise(1.6e-5),
    constant(u"kp2", u"Kp2").otherwise(-2e-9),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    output(u"cor density", u"Corrected Dens.", u"Corrected density.", unit::kg_m3, u"CORDENS"),
    output(u"uncor dens", u"Uncorrected Dens.", u"Uncorrected density.", unit::kg_m3, u"UNCDENS"),
};
// clang-format on
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& out) {
  Call call(context, args, count, out);
  Switches switches(call);
  UGC::Meter meter{};
  meter.period = call.number(In::period);
  meter.temperature = call.number(In::temperature);
  meter.pressure = call.number(In::pressure);
  meter.temperature_correction = switches.read(In::temperature_correction);
  meter.pressure_correction = switches.read(In::pressure_correction);
  meter.ref_temperature = call.number(In::ref_temperature);
  meter.ref_pressure = call.number(In::ref_pressure);
  meter.k0 = call.number(In::k0);
  meter.k1 = call.number(In::k1);
  meter.k2 = call.number(In::k2);
  meter.kt0 = call.number(In::kt0);
  meter.kt1 = call.number(In::kt1);
  meter.kt2 = call.number(In::kt2);
  meter.kp0 = call.number(In::kp0);
  meter.kp1 = call.number(In::kp1);
  meter.kp2 = call.number(In::kp2);
  if (call.failed()) return call.error();
  if (switches.outside_list()) return call.status_only(static_cast<int>(Outcome::argument_error));

  UGC::Density density{};
  const Outcome outcome = UGC::density(meter, density);
  if (outcome != Outcome::ok) return call.status_only(static_cast<int>(outcome));
  call.set_integer(Out::status, 0);
  call.set(Out::corrected, density.corrected);
  call.set(Out::uncorrected, density.uncorrected);
  return call.done();
}

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
    .implementation = run,
    .notes =
        u"A parabola of the period, corrected for temperature and pressure by parabolas of the uncorrected density. "
        u"The result is not held within limits: any finite number is answered, also a negative one.\n"
        u"Defaults: illustrative, from no certificate; no public source of the maker's was found. "
        u"Give the constants of your own certificate.\n"};

}  // namespace norvane::functions
