// Sarasota_M: record and implementation.
#include <iterator>

#include "framework/call.h"
#include "framework/records.h"
#include "math/densitometer/sarasota.h"
#include "math/densitometer/switches.h"

namespace norvane::functions {

extern const record::Function Sarasota_M;

namespace {

using densitometer::correction_switch;
using densitometer::Switches;
using record::input;
using record::output;
using Sarasota::Outcome;

enum class In : std::size_t {
  name,
  period,
  temperature,
  pressure,
  temperature_correction,
  pressure_correction,
  ref_temperature,
  ref_pressure,
  d0,
  t0,
  k,
  temperature_coefficient,
  pressure_coefficient,
  count
};
enum class Out : std::size_t { status, density, count };

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(540),
    input(u"temperature", u"Temperature", u"Temperature at densitometer.", unit::degC)
        .within(-273.15, 500).otherwise(15),
    input(u"pressure", u"Pressure", u"Pressure at densitometer.", unit::bar_g).within(0, 200).otherwise(1),
    correction_switch(u"temp cor", u"Temperature Correction", u""),
    correction_switch(u"pres cor", u"Pressure Correction", u""),
    input(u"ref temp", u"Ref. Temperature", u"Reference temperature.", unit::degC).within(0, 100).otherwise(15),
    input(u"ref pres", u"Ref. Pressure", u"Reference pressure.", unit::bar_g).within(0, 100).otherwise(1),
    input(u"d0", u"D0", u"", unit::kg_m3).within(0, 3000).otherwise(230),
    input(u"t0", u"T0", u"", unit::us).within(0, 1000000).otherwise(500),
    input(u"k", u"K", u"", data_type::num).within(0, 3000).otherwise(0.9),
    input(u"temp coef", u"Temperature Coef.", u"Temperature coefficient.", data_type::num)
        .within(-1000000, 1000000).otherwise(0.003),
    input(u"pres coef", u"Pressure Coef.", u"Pressure coefficient.", data_type::num)
        .within(-1000000, 1000000).otherwise(-0.0004),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    output(u"density", u"Density", u"", unit::kg_m3, u"CORDENS"),
};
// clang-format on
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& out) {
  Call call(context, args, count, out);
  Switches switches(call);
  Sarasota::Meter meter{};
  meter.period = call.number(In::period);
  meter.temperature = call.number(In::temperature);
  meter.pressure = call.number(In::pressure);
  meter.temperature_correction = switches.read(In::temperature_correction);
  meter.pressure_correction = switches.read(In::pressure_correction);
  meter.ref_temperature = call.number(In::ref_temperature);
  meter.ref_pressure = call.number(In::ref_pressure);
  meter.d0 = call.number(In::d0);
  meter.t0 = call.number(In::t0);
  meter.k = call.number(In::k);
  meter.temperature_coefficient = call.number(In::temperature_coefficient);
  meter.pressure_coefficient = call.number(In::pressure_coefficient);
  if (call.failed()) return call.error();
  if (switches.outside_list()) return call.status_only(static_cast<int>(Outcome::argument_error));

  double density = 0.0;
  const Outcome outcome = Sarasota::density(meter, density);
  if (outcome != Outcome::ok) return call.status_only(static_cast<int>(outcome));
  call.set_integer(Out::status, 0);
  call.set(Out::density, density);
  return call.done();
}

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
    .implementation = run,
    .notes =
        u"Density from the period and the constants D0, T0 and K, with T0 corrected for temperature and pressure "
        u"(equations as in the public calculation help of Kelton, C135).\n"
        u"Status 2 for a corrected T0 of 0 and for a density outside 0 to 3000 kg/m3; "
        u"a period equal to T0 is a density of 0.\n"
        u"Defaults: illustrative, from no certificate. Give the constants of your own certificate.\n"};

}  // namespace norvane::functions
