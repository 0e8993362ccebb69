// AGA3_C.
#include "framework/call.h"
#include "framework/records.h"
#include "math/flow/aga3.h"
#include "math/flow/device_call.h"

namespace norvane::functions {

extern const record::Function AGA3_C;

namespace {

using device_call::join;
using record::Input;
using record::Output;

// ---- Record ------------------------------------------------------------------------------------------------------

// clang-format off
constexpr std::array<Input, 13> leading = {
    record::name_input(),
    record::input(u"dp", u"Diff. Pressure",
                  u"Differential pressure over the primary flow device measured at the up- and downstream pressure "
                  u"tappings, which need to be in the positions as specified in the standard.",
                  unit::inH2O_60_degF).within(0, 1000).otherwise(24.88),
    record::input(u"pressure", u"Pressure", u"Down- or upstream pressure value of the fluid at metering conditions.",
                  unit::psia).within(0, 30000).otherwise(492.9),
    record::input(u"temperature", u"Temperature",
                  u"Down- or upstream temperature of the fluid at metering conditions.",
                  unit::degF).within(-400, 2000).otherwise(131),
    record::input(u"density", u"Density", u"Down or upstream density of the fluid at metering conditions.",
                  unit::lb_ft3).within(0, 200).otherwise(1.407),
    record::input(u"viscosity", u"Dyn. Viscosity", u"Dynamic viscosity of the fluid.",
                  unit::lbm_ft_s).within(0, 10).otherwise(0.0000069),
    record::input(u"isen exp", u"Isentropic Exponent",
                  u"Also referred to as K (kappa). For an ideal gas this coefficient is equal to the ratio of the "
                  u"specific heat capacity at constant pressure to the specific heat at constant volume. This ratio is "
                  u"commonly used when the real value is unknown.",
                  data_type::num).within(0, 10).otherwise(1.3),
    record::input(u"pipe diam", u"Pipe Diameter", u"Internal diameter of the pipe at reference temperature.",
                  unit::in).within(0, 100).otherwise(11.811),
    record::input(u"pipe exp coef", u"Pipe Expansion", u"The thermal expansion coefficient of the pipe material.",
                  unit::per_degF).within(0, 1).otherwise(0.0000062),
    record::input(u"pipe ref temp", u"Pipe ref. Temp.",
                  u"The reference temperature that corresponds to the 'Pipe Diameter' input.",
                  unit::degF).within(-400, 2000).otherwise(68),
    record::input(u"orif diam", u"Orifice Diameter", u"Orifice diameter at reference temperature.",
                  unit::in).within(0, 100).otherwise(7.087),
    record::input(u"orif exp coef", u"Orifice Expansion",
                  u"The thermal expansion coefficient of the orifice material.",
                  unit::per_degF).within(0, 1).otherwise(0.00000925),
    record::input(u"orif ref temp", u"Orifice ref. Temp.",
                  u"The reference temperature that corresponds to the 'Orifice Diameter' input.",
                  unit::degF).within(0, 150).otherwise(68),
};

constexpr std::array<Input, 7> location_inputs = {
    device_call::location_inputs[0],
    device_call::location_inputs[1].otherwise(3),
    device_call::location_inputs[2],
    device_call::location_inputs[3].within(-100000000, 100000000)
        .described(u"Temperature exponent to correct the temperature from down- to upstream conditions (or vice versa) "
                   u"the formula (K-1)/K (isentropic expansion) will be used when the input value is set to 0, else the "
                   u"input value will be used."),
    device_call::location_inputs[4]
        .described(u"The density location specifies if and how the density should be corrected from downstream to "
                   u"upstream conditions."),
    device_call::location_inputs[5].within(-100000000, 100000000)
        .described(u"This factor is used when density correction is enabled. The formula 1/K will be used when the "
                   u"input value is set to 0, else the input value will be used."),
    device_call::location_inputs[6]
        .described(u"Type of Fluid being measured. For liquid the expansion factor is set to 1, i.e. the fluid is "
                   u"considered to be incompressible."),
};

constexpr std::array<Input, 3> trailing = {
    record::input(u"drain hole", u"Drain hole Diam.",
                  u"Drain hole diameter. When input is > 0 then an additional correction on the orifice diameter will be "
                  u"applied to account for the drain hole, as explained further on.",
                  unit::in).within(0, 100).otherwise(0),
    record::input(u"fpwl", u"Fpwl (Grav. cor. factor)",
                  u"Local Gravitational Correction Factor for Deadweight Calibrators used to calibrate differential and "
                  u"static pressure Instruments. Directly applied on the calculated mass flow rate within each "
                  u"iteration.",
                  data_type::num).within(0.9, 1.1).otherwise(1),
    record::input(u"edition", u"Edition", u"Year of edition.; 1: 1992; 2: 2012", data_type::integer)
        .within(1, 2).otherwise(1),
};

constexpr auto inputs = join(leading, location_inputs, trailing);

constexpr auto outputs = join(
    std::array<Output, 5>{
        record::status_output(),
        record::output(u"mass rate", u"Mass Flow Rate", u"", unit::klbm_hr, u"MASSR"),
        record::output(u"beta", u"Beta Ratio", u"Orifice to pipe diameter ratio at upstream temperature.", data_type::num, u"BETA"),
        record::output(u"cor orifice diam", u"Orifice Diameter", u"Orifice diameter at the upstream temperature.", unit::in, u"ORIFUP"),
        record::output(u"cor pipe diam", u"Pipe Diameter", u"Pipe diameter at the upstream temperature.", unit::in, u"PIPEUP"),
    },
    device_call::state_outputs(unit::psia, unit::degF, unit::lb_ft3),
    std::array<Output, 10>{
        record::output(u"reynolds", u"Reynolds Number",
                       u"The pipe Reynolds number (i.e. the Reynolds number upstream of the orifice and not the one within "
                       u"the device throat itself).", data_type::num, u"REYN"),
        record::output(u"discharge coef", u"Discharge Coef.", u"", data_type::num, u"DISCF"),
        record::output(u"exp factor", u"Expansion Factor", u"", data_type::num, u"EXPFAC"),
        record::output(u"vel of approach", u"Velocity of Appr.", u"", data_type::num, u"VOA"),
        record::output(u"pressure oor", u"Pressure Range Status", u"Pressure range status.", enumeration::rangestatus, u"PRESOOR"),
        record::output(u"reynolds oor", u"Reynolds Range Status", u"Reynolds number range status.", enumeration::rangestatus, u"REYNOOR"),
        record::output(u"diameter oor", u"Diameter Range Status", u"Diameter range status.", enumeration::rangestatus, u"DIAMOOR"),
        record::output(u"aga3 status", u"Status Details",
                       u"AGA-3 specific error status.; 0: No errors; 1: Pipe diameter <= 0; 2: Density <= 0; 3: Pressure <= 0; "
                       u"4: Invalid pressure location; 5: DeltaP < 0; 6: Kappa <= 0; 7: No convergence; 8: Flow rate < 0; "
                       u"9: Pressure downstream = 0; 10: Recovered; 11: Math error", data_type::integer, u""),
        record::output(u"raw mass rate", u"Raw Mass Rate", u"Raw mass rate.", unit::lbm_hr, u""),
        record::output(u"raw prev mass rate", u"Raw Prev. Mass Rate", u"Raw previous mass rate.", unit::lbm_hr, u""),
    });

constexpr std::u16string_view notes =
    u"AGA Report No. 3 (API MPMS 14.3), Part 1 (1992 and 2012) and Part 4 (1992), 4.3.2: flange tappings.\n"
    u"The editions differ in the expansion factor, which is that of the upstream tapping. The recovered pressure is the "
    u"downstream pressure. `t exp` 0 leaves the temperature alone where the correction is by exponent. `fpwl` multiplies "
    u"the mass rate once; Reynolds number, discharge coefficient and the raw mass rates (of the last step of the iteration "
    u"and of the one before) are without it. The limits of use are tested on the diameters at flowing temperature.\n"
    u"Status 1 and 2 come with `aga3 status` and nothing else; with status 3 the result that has not converged is "
    u"delivered.\n";
// clang-format on

// ---- Implementation ----------------------------------------------------------------------------------------------

enum class In : std::size_t {
  locations = static_cast<std::size_t>(device_call::In::after_geometry),
  drain_hole = 20,
  gravity_correction,
  edition,
  count
};
enum class Out : std::size_t {
  velocity_of_approach = static_cast<std::size_t>(device_call::Out::after_expansion),
  pressure_oor,
  reynolds_oor,
  diameter_oor,
  code,
  raw_mass_rate,
  raw_previous_mass_rate,
  count
};
static_assert(inputs.size() == static_cast<std::size_t>(In::count));
static_assert(outputs.size() == static_cast<std::size_t>(Out::count));

using AGA3::Code;

constexpr double cP_per_lbm_ft_s = 1488.16394356955;

// Says which argument a code is about.
void explain(Call& call, Code code) noexcept {
  Function_CContext& context = call.context();
  const auto blame = [&context](device_call::In index, std::u16string_view text) {
    context.ReportError(static_cast<std::size_t>(index), text);
  };
  using Common = device_call::In;
  switch (code) {
    case Code::ok: return;
    case Code::diameter:
      return blame(Common::device_diameter, u"must be greater than 0 and less than the pipe diameter");
    case Code::density: return blame(Common::density, u"must be greater than 0");
    case Code::pressure: return blame(Common::pressure, u"must be greater than 0");
    case Code::differential_pressure: return blame(Common::dp, u"must not be negative");
    case Code::isentropic_exponent: return blame(Common::kappa, u"must be greater than 0");
    case Code::downstream_pressure: return blame(Common::dp, u"leaves no downstream pressure");
    case Code::no_convergence:
      context.ReportError(u"the discharge coefficient does not settle within 20 steps");
      return;
    case Code::negative_flow: context.ReportError(u"the expansion factor is below 0"); return;
    default: context.ReportError(u"an argument or result is no finite number"); return;
  }
}

constexpr int status_of(Code code) noexcept {
  switch (code) {
    case Code::ok: return 0;
    case Code::no_convergence: return 3;
    case Code::density:
    case Code::pressure:
    case Code::pressure_location:
    case Code::differential_pressure:
    case Code::isentropic_exponent: return 1;
    default: return 2;
  }
}

// Status and detail, and no other output.
std::uint32_t fail(Call& call, int status, Code detail) noexcept {
  call.set_integer(device_call::Out::status, status);
  call.set_integer(Out::code, static_cast<int>(detail));
  return call.done();
}

// What is refused before the algorithm runs. A comparison with a NaN counts as violated.
bool arguments_fit(Call& call, const AGA3::Geometry& geometry, double drain_hole) noexcept {
  const auto refuse = [&call](std::size_t index, std::u16string_view text) {
    call.context().ReportError(index, text);
    return false;
  };
  const double D = geometry.pipe_diameter;
  const double d = geometry.device_diameter;
  if (!(D > 0.0)) return refuse(static_cast<std::size_t>(device_call::In::pipe_diameter), u"must be greater than 0");
  if (!(d <= D))
    return refuse(static_cast<std::size_t>(device_call::In::device_diameter), u"is larger than the pipe diameter");
  if (!(drain_hole <= (D - d) / 2.0))
    return refuse(static_cast<std::size_t>(In::drain_hole), u"does not fit between the bore and the pipe");
  return true;
}

std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  AGA3::Measurement measured;
  AGA3::Geometry geometry;
  std::uint32_t error = ERROR_OK;
  if (!device_call::read(call, static_cast<std::size_t>(In::locations), measured, geometry, error)) return error;
  const double drain_hole = call.number(In::drain_hole);
  const double gravity_correction = call.number(In::gravity_correction);
  const int edition = call.option(In::edition);
  if (call.failed()) return call.error();
  if (!arguments_fit(call, geometry, drain_hole)) return fail(call, 1, Code::diameter);
  if (edition != 1 && edition != 2) {
    context.ReportError(static_cast<std::size_t>(In::edition), u"is not one of the options");
    return fail(call, 1, Code::ok);
  }

  measured.viscosity *= cP_per_lbm_ft_s;
  AGA3::Result result;
  const Code code =
      AGA3::orifice(measured, geometry, static_cast<AGA3::Edition>(edition), drain_hole, gravity_correction, result);
  explain(call, code);
  const int status = status_of(code);
  if (status == 1 || status == 2) return fail(call, status, code);

  using Common = device_call::Out;
  call.set_integer(Common::status, status);
  call.set(Common::mass_rate, result.mass_rate / 1000.0);
  call.set(Common::beta, result.beta);
  call.set(Common::device_diameter, result.orifice_diameter);
  call.set(Common::pipe_diameter, result.pipe_diameter);
  device_call::write_states(call, result.pressure, result.temperature, result.density);
  call.set(Common::reynolds, result.reynolds);
  call.set(Common::discharge_coefficient, result.discharge_coefficient);
  call.set(Common::expansion, result.expansion_factor);
  call.set(Out::velocity_of_approach, result.velocity_of_approach);
  call.set_integer(Out::pressure_oor, result.pressure_out_of_range);
  call.set_integer(Out::reynolds_oor, result.reynolds_out_of_range);
  call.set_integer(Out::diameter_oor, result.diameter_out_of_range);
  call.set_integer(Out::code, static_cast<int>(code));
  call.set(Out::raw_mass_rate, result.raw_mass_rate);
  call.set(Out::raw_previous_mass_rate, result.raw_previous_mass_rate);
  return call.done();
}

}  // namespace

const record::Function AGA3_C = {
    .group = GroupId::Math,
    .id = u"AGA3_C",
    .display = u"AGA-3",
    .description = u"Orifice Mass Flow Rate according to AGA-3.",
    .category = u"Math",
    .subcategory = u"AGA",
    .keywords = u"customary,gas,flow,aga",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .implementation = run,
    .notes = notes,
};

}  // namespace norvane::functions
