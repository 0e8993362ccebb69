// ISO5167_Orifice, ISO5167_ISA1932, ISO5167_LongRadius, ISO5167_VenturiNozzle, ISO5167_Venturi.
#include "framework/call.h"
#include "framework/records.h"
#include "math/flow/device_call.h"
#include "math/flow/iso5167.h"

namespace norvane::functions {

extern const record::Function ISO5167_Orifice;
extern const record::Function ISO5167_ISA1932;
extern const record::Function ISO5167_LongRadius;
extern const record::Function ISO5167_VenturiNozzle;
extern const record::Function ISO5167_Venturi;

namespace {

using device_call::join;
using record::Input;
using record::Output;
template <std::size_t N>
using Inputs = std::array<Input, N>;

// ---- Records -----------------------------------------------------------------------------------------------------

// clang-format off
// Inputs 0 to 12, with the orifice's defaults.
constexpr Inputs<13> leading = {
    record::name_input(),
    record::input(u"dp", u"Diff. Pressure", u"Differential pressure.", unit::mbar).within(0, 10000).otherwise(390),
    record::input(u"pres", u"Pressure", u"", unit::bar_a).within(0, 2000).otherwise(60),
    record::input(u"temp", u"Temperature", u"", unit::degC).within(-240, 1000).otherwise(20),
    record::input(u"dens", u"Density", u"", unit::kg_m3).within(0, 2000).otherwise(50),
    record::input(u"visc", u"Dyn. Viscosity", u"Dynamic viscosity of the fluid.", unit::Pa_s).within(0, 1).otherwise(0.00015),
    record::input(u"kappa", u"Isentropic Exponent", u"Isentropic exponent (kappa).", data_type::num).within(0, 10).otherwise(1.5),
    record::input(u"pipe diam", u"Pipe Diameter", u"Internal pipe diameter.", unit::mm).within(0, 2000).otherwise(900),
    record::input(u"pipe exp coef", u"Pipe Expansion", u"Pipe thermal expansion coefficient.", unit::per_degC).within(0, 1).otherwise(0.000011),
    record::input(u"pipe ref temp", u"Pipe ref. Temp.", u"Pipe reference temperature.", unit::degC).within(-300, 1000).otherwise(20),
    record::input(u"dev diam", u"Device Diameter", u"Device diameter at reference temperature.", unit::mm).within(0, 2000).otherwise(360),
    record::input(u"dev exp coef", u"Device Expansion", u"Device thermal expansion coefficient.", unit::per_degC).within(0, 1).otherwise(0.000011),
    record::input(u"dev ref temp", u"Device ref. Temp.", u"Device reference temperature.", unit::degC).within(-300, 1000).otherwise(20),
};
// clang-format on

template <class Index>
constexpr std::size_t at(Index index) {
  return static_cast<std::size_t>(index);
}

struct Defaults {
  double dp, pressure, temperature, pipe_diameter, device_diameter, device_expansion;
};

constexpr Inputs<13> with_defaults(Inputs<13> inputs, const Defaults& defaults) {
  using device_call::In;
  const auto set = [&inputs](In index, double value) { inputs[at(index)] = inputs[at(index)].otherwise(value); };
  set(In::dp, defaults.dp);
  set(In::pressure, defaults.pressure);
  set(In::temperature, defaults.temperature);
  set(In::pipe_diameter, defaults.pipe_diameter);
  set(In::device_diameter, defaults.device_diameter);
  set(In::device_expansion, defaults.device_expansion);
  return inputs;
}

// The keys of the classical Venturi are shorter, and its isentropic exponent has no description.
constexpr Inputs<13> with_short_keys(Inputs<13> inputs) {
  using device_call::In;
  const auto rename = [&inputs](In index, std::u16string_view key) { inputs[at(index)].key = key; };
  rename(In::pressure, u"p");
  rename(In::temperature, u"t");
  rename(In::pipe_diameter, u"pip diam");
  rename(In::pipe_expansion, u"pip exp cf");
  rename(In::pipe_reference, u"pip ref t");
  rename(In::device_expansion, u"dev exp cf");
  rename(In::device_reference, u"dev ref t");
  inputs[at(In::kappa)].description = u"";
  return inputs;
}

constexpr Defaults nozzle_defaults{1200, 100, 30, 300, 100, 0.000016};
constexpr Defaults venturi_defaults{1200, 100, 30, 600, 200, 0.000016};

// clang-format off
constexpr Inputs<1> tappings_input = {
    record::input(u"config", u"Configuration",
                  u"Pressure tappings configuration.; 1: Corner Tappings; 2: D/D2 Tappings; 3: Flange Tappings; "
                  u"4: Quarter Circle Tappings (ISO/TR 15377); 5: Conical Entrance Tappings (ISO/TR 15377)",
                  data_type::integer).within(1, 5).otherwise(1),
};
constexpr Inputs<1> venturi_type_input = {
    record::input(u"config", u"Configuration",
                  u"Type of Venturi tube.; 1: As cast; 2: Rough-welded sheet-iron; 3: Machined; 4: Custom",
                  data_type::integer).within(1, 4).otherwise(1),
};
constexpr Inputs<1> edition_input = {
    record::input(u"edition", u"Edition", u"Year of edition.; 1: 1991; 2: 1998; 3: 2003", data_type::integer)
        .within(1, 3).otherwise(3),
};
constexpr Inputs<1> drain_hole_input = {
    record::input(u"drain hole", u"Drain Hole", u"", unit::mm).within(0, 2000).otherwise(0),
};
// In mbar or percent, as the mode says.
constexpr Inputs<2> pressure_loss_inputs(double value) {
  return {
      record::input(u"p loss mod", u"Pres. Loss Mode",
                    u"Pressure loss mode.; 1: Input pressure loss value; 2: Perc. of diff. pressure",
                    data_type::integer).within(1, 2).otherwise(1),
      record::input(u"p loss val", u"Pressure Loss", u"Pressure loss value.", data_type::num)
          .within(0, 2000).otherwise(value),
  };
}
constexpr Inputs<1> coefficient_input = {
    record::input(u"dis coef", u"Dischange Coef.", u"Discharge coefficient.", data_type::num).within(0, 2).otherwise(0.8),
};

constexpr std::array<Output, 21> outputs(std::u16string_view beta, const Output& device, std::u16string_view reynolds) {
  return join(
      std::array<Output, 5>{
          record::status_output(),
          record::output(u"mass rate", u"Mass Flow Rate", u"", unit::kg_s, u"MASSR"),
          record::output(u"beta", u"Beta Ratio", beta, data_type::num, u"BETARATIO"),
          device,
          record::output(u"pipe diam", u"Pipe Diameter", u"Pipe diameter at the upstream temperature.", unit::mm, u"PIPEDIAM"),
      },
      device_call::state_outputs(unit::bar_a, unit::degC, unit::kg_m3),
      std::array<Output, 7>{
          record::output(u"reynolds", u"Reynolds Number", reynolds, data_type::num, u"REYNOLDS"),
          record::output(u"dis coef", u"Dischange Coef.", u"Discharge coefficient.", data_type::num, u"DISCOEF"),
          record::output(u"exp factor", u"Expansion Factor", u"", data_type::num, u"EXPFACTOR"),
          record::output(u"vel of approach", u"Velocity of Appr.", u"Velocity of approach.", data_type::num, u"VOA"),
          record::output(u"pressure oor", u"Pressure Range Status", u"Pressure out of range status.", enumeration::rangestatus, u"PRESOOR"),
          record::output(u"reynolds oor", u"Reynolds Range Status", u"Reynolds out of range status.", enumeration::rangestatus, u"REYNOOR"),
          record::output(u"diameter oor", u"Diameter Range Status", u"Diameter out of range status.", enumeration::rangestatus, u"DIAMOOR"),
      });
}

constexpr Output nozzle_diameter = record::output(
    u"nozzle diam", u"Nozzle Diameter", u"Nozzle diameter at the upstream temperature.", unit::mm, u"NOZZLEDIAM");

constexpr auto orifice_inputs = join(leading, tappings_input, device_call::location_inputs, edition_input, drain_hole_input);
constexpr auto nozzle_inputs = join(with_defaults(leading, nozzle_defaults), device_call::location_inputs, edition_input);
constexpr auto venturi_nozzle_inputs =
    join(with_defaults(leading, nozzle_defaults), device_call::location_inputs, pressure_loss_inputs(100));
constexpr auto venturi_inputs = join(with_short_keys(with_defaults(leading, venturi_defaults)), venturi_type_input,
                                     device_call::location_inputs, pressure_loss_inputs(144), coefficient_input);

constexpr auto orifice_outputs = outputs(
    u"Orifice to pipe ratio at upstream temperature.",
    record::output(u"orif diam", u"Orifice Diameter", u"Orifice diameter at the upstream temperature.", unit::mm, u"ORIFDIAM"),
    u"The pipe Reynolds number (this is the Reynolds number upstream of the orifice and not the one within the device "
    u"throat itself).");
constexpr auto isa1932_outputs = outputs(
    u"Nozzle to pipe ratio at upstream temperature.", nozzle_diameter,
    u"The pipe Reynolds number (this is the Reynolds number upstream of the ISA1932 Nozzle and not the one within the "
    u"device throat itself).");
constexpr auto long_radius_outputs = outputs(
    u"Nozzle to pipe ratio at upstream temperature.", nozzle_diameter,
    u"The pipe Reynolds number (this is the Reynolds number upstream of the Long Radius Nozzle and not the one within "
    u"the device throat itself).");
constexpr auto venturi_nozzle_outputs = outputs(
    u"Venturi nozzle to pipe ratio at upstream temperature.",
    record::output(u"venturi diam", u"Venturi Nozzle Diam.", u"Venturi nozzle diameter at the upstream temperature.", unit::mm, u"VENTDIAM"),
    u"The pipe Reynolds number (this is the Reynolds number upstream of the Venturi nozzle and not the one within the "
    u"device throat itself).");
constexpr auto venturi_outputs = outputs(
    u"Venturi to pipe ratio at upstream temperature.",
    record::output(u"venturi diam", u"Venturi Diameter", u"Venturi diameter at the upstream temperature.", unit::mm, u"VENTDIAM"),
    u"The pipe Reynolds number (this is the Reynolds number upstream of the Venturi and not the one within the device "
    u"throat itself).");
// clang-format on

// ---- Implementations ---------------------------------------------------------------------------------------------

// Where the inputs behind the geometry stand. The nozzles have no configuration.
enum class OrificeIn : std::size_t { config = 13, locations = 14, edition = 21, drain_hole, count };
enum class NozzleIn : std::size_t { locations = 13, edition = 20, count };
enum class VenturiNozzleIn : std::size_t { locations = 13, loss_mode = 20, loss_value, count };
enum class VenturiIn : std::size_t { config = 13, locations = 14, loss_mode = 21, loss_value, coefficient, count };
enum class Out : std::size_t {
  velocity_of_approach = static_cast<std::size_t>(device_call::Out::after_expansion),
  pressure_oor,
  reynolds_oor,
  diameter_oor,
  count
};
static_assert(orifice_inputs.size() == static_cast<std::size_t>(OrificeIn::count));
static_assert(nozzle_inputs.size() == static_cast<std::size_t>(NozzleIn::count));
static_assert(venturi_nozzle_inputs.size() == static_cast<std::size_t>(VenturiNozzleIn::count));
static_assert(venturi_inputs.size() == static_cast<std::size_t>(VenturiIn::count));
static_assert(orifice_outputs.size() == static_cast<std::size_t>(Out::count));

using ISO5167::Code;

// Says which argument a code is about; the code itself goes into the status.
void explain(Call& call, Code code) noexcept {
  using device_call::In;
  Function_CContext& context = call.context();
  const auto blame = [&context](In index, std::u16string_view text) { context.ReportError(at(index), text); };
  switch (code) {
    case Code::viscosity: return blame(In::viscosity, u"must be greater than 0");
    case Code::density: return blame(In::density, u"must be greater than 0");
    case Code::pressure: return blame(In::pressure, u"must be greater than 0");
    case Code::differential_pressure: return blame(In::dp, u"must not be negative");
    case Code::isentropic_exponent: return blame(In::kappa, u"must be greater than 1");
    case Code::configuration: return blame(In::after_geometry, u"asks for edition 3");
    case Code::argument: context.ReportError(u"an argument is not a finite number"); return;
    case Code::no_convergence: context.ReportError(u"the mass rate does not settle within 25 rounds"); return;
    default:
      context.ReportError(
          u"a diameter, pressure or coefficient is zero or below, or the device is as wide as the pipe");
  }
}

constexpr int status_of(Code code) noexcept {
  return code == Code::no_convergence ? 3 : code == Code::division_by_zero ? 2 : 1;
}

std::uint32_t answer(Call& call, Code code, const ISO5167::Result& result) noexcept {
  if (!ISO5167::delivered(code)) {
    explain(call, code);
    return call.status_only(status_of(code));
  }
  using Common = device_call::Out;
  call.set_integer(Common::status, 0);
  call.set(Common::mass_rate, result.mass_rate);
  call.set(Common::beta, result.beta);
  call.set(Common::device_diameter, result.device_diameter);
  call.set(Common::pipe_diameter, result.pipe_diameter);
  device_call::write_states(call, result.pressure, result.temperature, result.density);
  call.set(Common::reynolds, result.reynolds);
  call.set(Common::discharge_coefficient, result.discharge_coefficient);
  call.set(Common::expansion, result.expansibility);
  call.set(Out::velocity_of_approach, result.velocity_of_approach);
  call.set_integer(Out::pressure_oor, result.pressure_out_of_range);
  call.set_integer(Out::reynolds_oor, result.reynolds_out_of_range);
  call.set_integer(Out::diameter_oor, result.diameter_out_of_range);
  return call.done();
}

// The arguments of one call, read until the first that is not fit.
struct Arguments {
  explicit Arguments(Call& to_read, std::size_t locations) noexcept : call(to_read) {
    good = device_call::read(call, locations, measured, geometry, error) &&
           device_call::device_fits(call, geometry, error);
  }
  int option(std::size_t index, int last) noexcept {
    int value = 1;
    good = good && device_call::read_option(call, index, last, value, error);
    return value;
  }
  double number(std::size_t index) noexcept {
    const double value = call.number(index);
    if (good && call.failed()) {
      good = false;
      error = call.error();
    }
    return value;
  }
  ISO5167::Edition edition(std::size_t index) noexcept { return static_cast<ISO5167::Edition>(option(index, 3) - 1); }
  ISO5167::PressureLoss loss(std::size_t mode) noexcept {
    const auto loss_mode = static_cast<ISO5167::PressureLoss::Mode>(option(mode, 2));
    return {loss_mode, number(mode + 1)};
  }

  Call& call;
  ISO5167::Measurement measured;
  ISO5167::Geometry geometry;
  std::uint32_t error = ERROR_OK;
  bool good = false;
};

std::uint32_t run_orifice(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  Arguments arguments(call, at(OrificeIn::locations));
  const auto config = static_cast<ISO5167::Tappings>(arguments.option(at(OrificeIn::config), 5) - 1);
  const ISO5167::Edition year = arguments.edition(at(OrificeIn::edition));
  const double hole = arguments.number(at(OrificeIn::drain_hole));
  if (!arguments.good) return arguments.error;
  ISO5167::Result result;
  const Code code = ISO5167::orifice(arguments.measured, arguments.geometry, config, year, hole, result);
  return answer(call, code, result);
}

template <Code (*nozzle)(const ISO5167::Measurement&, const ISO5167::Geometry&, ISO5167::Edition, ISO5167::Result&)>
std::uint32_t run_nozzle(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  Arguments arguments(call, at(NozzleIn::locations));
  const ISO5167::Edition year = arguments.edition(at(NozzleIn::edition));
  if (!arguments.good) return arguments.error;
  ISO5167::Result result;
  const Code code = nozzle(arguments.measured, arguments.geometry, year, result);
  return answer(call, code, result);
}

std::uint32_t run_venturi_nozzle(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                                 FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  Arguments arguments(call, at(VenturiNozzleIn::locations));
  const ISO5167::PressureLoss loss = arguments.loss(at(VenturiNozzleIn::loss_mode));
  if (!arguments.good) return arguments.error;
  ISO5167::Result result;
  const Code code = ISO5167::venturi_nozzle(arguments.measured, arguments.geometry, loss, result);
  return answer(call, code, result);
}

std::uint32_t run_venturi(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  Arguments arguments(call, at(VenturiIn::locations));
  const auto type = static_cast<ISO5167::VenturiType>(arguments.option(at(VenturiIn::config), 4));
  const ISO5167::PressureLoss loss = arguments.loss(at(VenturiIn::loss_mode));
  const double custom = arguments.number(at(VenturiIn::coefficient));
  if (!arguments.good) return arguments.error;
  ISO5167::Result result;
  const Code code = ISO5167::venturi(arguments.measured, arguments.geometry, type, loss, custom, result);
  return answer(call, code, result);
}

// clang-format off
// What all five notes end with.
#define NV_ISO5167_REMARKS \
  u"A liquid's temperature and density are delivered at the points where they are given and are 0 elsewhere. A " \
  u"differential pressure of 0 is no error: nothing flows and no range is tested. Roughness, straight lengths and " \
  u"p2/p1 are not checked.\n" \
  u"Status 1: an argument is not positive, not finite or outside its list (kappa must exceed 1). Status 2: a " \
  u"diameter or pressure of zero or below, or a device as wide as the pipe. Status 3: no convergence in 25 rounds. " \
  u"A range status of 1 comes with a good result outside the limits of use.\n"

constexpr std::u16string_view orifice_notes =
    u"ISO 5167-1:1991, clause 8, with Amendment 1:1998; ISO 5167-2:2003, clause 5; ISO/TR 15377 for the quarter-circle "
    u"and conical-entrance plates, which go with edition 3 only.\n"
    u"Editions 1998 and 2003 share the Reader-Harris/Gallagher equation with its terms for Reynolds numbers below "
    u"3700. The pressure loss is that of 2003 in all editions. The quarter-circle plate has no upper Reynolds limit. "
    u"The drain hole enlarges the bore by 1 + 0.55 (hole/bore)^2.\n"
    NV_ISO5167_REMARKS;
constexpr std::u16string_view isa1932_notes =
    u"ISO 5167-3:2003, 5.1. The edition decides on the pressure loss.\n"
    u"A flow that has not converged is delivered when it lies outside the limits of use.\n"
    NV_ISO5167_REMARKS;
constexpr std::u16string_view long_radius_notes =
    u"ISO 5167-3:2003, 5.2. The edition decides on the pressure loss.\n"
    u"A flow that has not converged is delivered when it lies outside the limits of use.\n"
    NV_ISO5167_REMARKS;
constexpr std::u16string_view venturi_nozzle_notes =
    u"ISO 5167-3:2003, 5.3.\n"
    u"The pressure loss is given, in mbar (mode 1) or in percent of the differential pressure (mode 2).\n"
    NV_ISO5167_REMARKS;
constexpr std::u16string_view venturi_notes =
    u"ISO 5167-4:2003, clause 5.\n"
    u"`dis coef` applies to config=4, which has no limits of use.\n"
    u"The pressure loss is given, in mbar (mode 1) or in percent of the differential pressure (mode 2).\n"
    NV_ISO5167_REMARKS;
#undef NV_ISO5167_REMARKS
// clang-format on

constexpr record::Function element(std::u16string_view id, std::u16string_view display,
                                   std::u16string_view description, std::span<const Input> inputs,
                                   std::span<const Output> outputs_, Function_Implementation implementation,
                                   std::u16string_view notes) {
  return {
      .group = GroupId::Math,
      .id = id,
      .display = display,
      .description = description,
      .category = u"Math",
      .subcategory = u"ISO",
      .keywords = u"metric,flow,iso",
      .flags = FUNCTION_FALLBACK,
      .name_input = 0,
      .inputs = inputs,
      .outputs = outputs_,
      .implementation = implementation,
      .notes = notes,
  };
}

}  // namespace

constexpr record::Function ISO5167_Orifice =
    element(u"ISO5167_Orifice", u"ISO-5167 Orifice", u"Orifice Mass Flow Rate according to ISO-5167.", orifice_inputs,
            orifice_outputs, run_orifice, orifice_notes);

constexpr record::Function ISO5167_ISA1932 =
    element(u"ISO5167_ISA1932", u"ISO-5167 ISA 1932 Nozzle", u"ISA 1932 Nozzle Mass Flow Rate according to ISO-5167.",
            nozzle_inputs, isa1932_outputs, run_nozzle<&ISO5167::isa1932_nozzle>, isa1932_notes);

constexpr record::Function ISO5167_LongRadius =
    element(u"ISO5167_LongRadius", u"ISO-5167 Long Radius Nozzle",
            u"Long Radius Nozzle Mass Flow Rate according to ISO-5167.", nozzle_inputs, long_radius_outputs,
            run_nozzle<&ISO5167::long_radius_nozzle>, long_radius_notes);

constexpr record::Function ISO5167_VenturiNozzle = element(
    u"ISO5167_VenturiNozzle", u"ISO-5167 Venturi Nozzle", u"Venturi Nozzle Mass Flow Rate according to ISO-5167.",
    venturi_nozzle_inputs, venturi_nozzle_outputs, run_venturi_nozzle, venturi_nozzle_notes);

constexpr record::Function ISO5167_Venturi =
    element(u"ISO5167_Venturi", u"ISO-5167 Classical Venturi", u"Venturi Mass Flow Rate according to ISO-5167.",
            venturi_inputs, venturi_outputs, run_venturi, venturi_notes);

}  // namespace norvane::functions
