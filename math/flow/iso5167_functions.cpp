// ISO5167_Orifice, ISO5167_ISA1932, ISO5167_LongRadius, ISO5167_VenturiNozzle, ISO5167_Venturi.
#include <array>

#include "math/flow/device_records.h"
#include "math/flow/iso5167.h"

namespace norvane::functions {

extern const record::Function ISO5167_Orifice;
extern const record::Function ISO5167_ISA1932;
extern const record::Function ISO5167_LongRadius;
extern const record::Function ISO5167_VenturiNozzle;
extern const record::Function ISO5167_Venturi;

namespace {

using namespace ISO5167;
using device_records::geometry;
using device_records::measured;
using device_records::Measurement;
using record::Input;
using record::Misfit;
using record::Output;
template <std::size_t N>
using Inputs = std::array<Input, N>;

// ---- Records -----------------------------------------------------------------------------------------------------

// clang-format off
// Inputs 0 to 12, with the orifice's defaults.
constexpr Inputs<13> leading = {
    record::name_input(),
    measured<&Measurement::dp>(record::input(u"dp", u"Diff. Pressure", u"Differential pressure.", unit::mbar).within(0, 10000).otherwise(390)),
    measured<&Measurement::pressure>(record::input(u"pres", u"Pressure", u"", unit::bar_a).within(0, 2000).otherwise(60)),
    measured<&Measurement::temperature>(record::input(u"temp", u"Temperature", u"", unit::degC).within(-240, 1000).otherwise(20)),
    measured<&Measurement::density>(record::input(u"dens", u"Density", u"", unit::kg_m3).within(0, 2000).otherwise(50)),
    measured<&Measurement::viscosity>(record::input(u"visc", u"Dyn. Viscosity", u"Dynamic viscosity of the fluid.", unit::Pa_s).within(0, 1).otherwise(0.00015)),
    measured<&Measurement::kappa>(record::input(u"kappa", u"Isentropic Exponent", u"Isentropic exponent (kappa).", data_type::num).within(0, 10).otherwise(1.5)),
    geometry<&Geometry::pipe_diameter>(record::input(u"pipe diam", u"Pipe Diameter", u"Internal pipe diameter.", unit::mm).within(0, 2000).otherwise(900)),
    geometry<&Geometry::pipe_expansion>(record::input(u"pipe exp coef", u"Pipe Expansion", u"Pipe thermal expansion coefficient.", unit::per_degC).within(0, 1).otherwise(0.000011)),
    geometry<&Geometry::pipe_reference_temperature>(record::input(u"pipe ref temp", u"Pipe ref. Temp.", u"Pipe reference temperature.", unit::degC).within(-300, 1000).otherwise(20)),
    geometry<&Geometry::device_diameter>(record::input(u"dev diam", u"Device Diameter", u"Device diameter at reference temperature.", unit::mm).within(0, 2000).otherwise(360)),
    geometry<&Geometry::device_expansion>(record::input(u"dev exp coef", u"Device Expansion", u"Device thermal expansion coefficient.", unit::per_degC).within(0, 1).otherwise(0.000011)),
    geometry<&Geometry::device_reference_temperature>(record::input(u"dev ref temp", u"Device ref. Temp.", u"Device reference temperature.", unit::degC).within(-300, 1000).otherwise(20)),
};
// clang-format on

// Places in that table.
enum At : std::size_t {
  dp = 1,
  pressure,
  temperature,
  density,
  viscosity,
  kappa,
  pipe_diameter,
  pipe_expansion,
  pipe_reference,
  device_diameter,
  device_expansion,
  device_reference
};

struct Defaults {
  double dp, pressure, temperature, pipe_diameter, device_diameter, device_expansion;
};

constexpr Inputs<13> with_defaults(Inputs<13> inputs, const Defaults& defaults) {
  const auto set = [&inputs](At at, double value) { inputs[at] = inputs[at].otherwise(value); };
  set(At::dp, defaults.dp);
  set(At::pressure, defaults.pressure);
  set(At::temperature, defaults.temperature);
  set(At::pipe_diameter, defaults.pipe_diameter);
  set(At::device_diameter, defaults.device_diameter);
  set(At::device_expansion, defaults.device_expansion);
  return inputs;
}

// The keys of the classical Venturi are shorter, and its isentropic exponent has no description.
constexpr Inputs<13> with_short_keys(Inputs<13> inputs) {
  inputs[At::pressure].key = u"p";
  inputs[At::temperature].key = u"t";
  inputs[At::pipe_diameter].key = u"pip diam";
  inputs[At::pipe_expansion].key = u"pip exp cf";
  inputs[At::pipe_reference].key = u"pip ref t";
  inputs[At::device_expansion].key = u"dev exp cf";
  inputs[At::device_reference].key = u"dev ref t";
  inputs[At::kappa].description = u"";
  return inputs;
}

constexpr Defaults nozzle_defaults{1200, 100, 30, 300, 100, 0.000016};
constexpr Defaults venturi_defaults{1200, 100, 30, 600, 200, 0.000016};

// clang-format off
constexpr record::Option tappings[] = {
    {1, u"Corner Tappings"},
    {2, u"D/D2 Tappings"},
    {3, u"Flange Tappings"},
    {4, u"Quarter Circle Tappings (ISO/TR 15377)"},
    {5, u"Conical Entrance Tappings (ISO/TR 15377)"},
};
constexpr record::Option venturi_types[] = {{1, u"As cast"}, {2, u"Rough-welded sheet-iron"}, {3, u"Machined"}, {4, u"Custom"}};
constexpr record::Option editions[] = {{1, u"1991"}, {2, u"1998"}, {3, u"2003"}};
constexpr record::Option loss_modes[] = {{1, u"Input pressure loss value"}, {2, u"Perc. of diff. pressure"}};

constexpr Inputs<1> tappings_input = {
    in<&OrificeArguments::tappings>(record::input(u"config", u"Configuration", u"Pressure tappings configuration.", data_type::integer)
        .options(tappings).otherwise(1).unless(Misfit::refuse)),
};
constexpr Inputs<1> venturi_type_input = {
    in<&VenturiArguments::type>(record::input(u"config", u"Configuration", u"Type of Venturi tube.", data_type::integer)
        .options(venturi_types).otherwise(1).unless(Misfit::refuse)),
};
template <class Arguments>
constexpr Inputs<1> edition_input = {
    in<&Arguments::edition>(record::input(u"edition", u"Edition", u"Year of edition.", data_type::integer)
        .options(editions).otherwise(3).unless(Misfit::refuse)),
};
constexpr Inputs<1> drain_hole_input = {
    in<&OrificeArguments::drain_hole>(record::input(u"drain hole", u"Drain Hole", u"", unit::mm).within(0, 2000).otherwise(0)),
};
// In mbar or percent, as the mode says.
template <class Arguments>
constexpr Inputs<2> pressure_loss_inputs(double value) {
  return {
      in<&Arguments::loss, &PressureLoss::mode>(record::input(u"p loss mod", u"Pres. Loss Mode", u"Pressure loss mode.", data_type::integer)
          .options(loss_modes).otherwise(1).unless(Misfit::refuse)),
      in<&Arguments::loss, &PressureLoss::value>(record::input(u"p loss val", u"Pressure Loss", u"Pressure loss value.", data_type::num)
          .within(0, 2000).otherwise(value)),
  };
}
constexpr Inputs<1> coefficient_input = {
    in<&VenturiArguments::custom_coefficient>(record::input(u"dis coef", u"Dischange Coef.", u"Discharge coefficient.", data_type::num).within(0, 2).otherwise(0.8)),
};

constexpr std::array<Output, 21> outputs(std::u16string_view beta, const Output& device, std::u16string_view reynolds) {
  return join(
      std::array<Output, 5>{
          record::status_output(),
          out<&Result::mass_rate>(record::output(u"mass rate", u"Mass Flow Rate", u"", unit::kg_s, u"MASSR")),
          out<&Result::beta>(record::output(u"beta", u"Beta Ratio", beta, data_type::num, u"BETARATIO")),
          out<&Result::device_diameter>(device),
          out<&Result::pipe_diameter>(record::output(u"pipe diam", u"Pipe Diameter", u"Pipe diameter at the upstream temperature.", unit::mm, u"PIPEDIAM")),
      },
      device_records::state_outputs<Result>(unit::bar_a, unit::degC, unit::kg_m3),
      std::array<Output, 7>{
          out<&Result::reynolds>(record::output(u"reynolds", u"Reynolds Number", reynolds, data_type::num, u"REYNOLDS")),
          out<&Result::discharge_coefficient>(record::output(u"dis coef", u"Dischange Coef.", u"Discharge coefficient.", data_type::num, u"DISCOEF")),
          out<&Result::expansibility>(record::output(u"exp factor", u"Expansion Factor", u"", data_type::num, u"EXPFACTOR")),
          out<&Result::velocity_of_approach>(record::output(u"vel of approach", u"Velocity of Appr.", u"Velocity of approach.", data_type::num, u"VOA")),
          out<&Result::pressure_out_of_range>(record::output(u"pressure oor", u"Pressure Range Status", u"Pressure out of range status.", enumeration::rangestatus, u"PRESOOR")),
          out<&Result::reynolds_out_of_range>(record::output(u"reynolds oor", u"Reynolds Range Status", u"Reynolds out of range status.", enumeration::rangestatus, u"REYNOOR")),
          out<&Result::diameter_out_of_range>(record::output(u"diameter oor", u"Diameter Range Status", u"Diameter out of range status.", enumeration::rangestatus, u"DIAMOOR")),
      });
}

constexpr Output nozzle_diameter = record::output(
    u"nozzle diam", u"Nozzle Diameter", u"Nozzle diameter at the upstream temperature.", unit::mm, u"NOZZLEDIAM");

// The lines of the device and its locations, as part of an element's arguments.
template <class Arguments, std::size_t N>
constexpr auto of(const std::array<Input, N>& lines) {
  return within<&Arguments::device>(lines);
}
template <class Arguments>
constexpr auto locations = of<Arguments>(device_records::location_inputs);

constexpr auto orifice_inputs = join(of<OrificeArguments>(leading), tappings_input, locations<OrificeArguments>,
                                     edition_input<OrificeArguments>, drain_hole_input);
constexpr auto nozzle_inputs = join(of<NozzleArguments>(with_defaults(leading, nozzle_defaults)), locations<NozzleArguments>,
                                    edition_input<NozzleArguments>);
constexpr auto venturi_nozzle_inputs = join(of<VenturiNozzleArguments>(with_defaults(leading, nozzle_defaults)),
                                            locations<VenturiNozzleArguments>, pressure_loss_inputs<VenturiNozzleArguments>(100));
constexpr auto venturi_inputs = join(of<VenturiArguments>(with_short_keys(with_defaults(leading, venturi_defaults))), venturi_type_input,
                                     locations<VenturiArguments>, pressure_loss_inputs<VenturiArguments>(144), coefficient_input);

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

// ---- Functions ---------------------------------------------------------------------------------------------------

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
                                   std::span<const Output> outputs_, const record::Binding& binding,
                                   std::u16string_view notes) {
  return {
      .id = id,
      .display = display,
      .description = description,
      .subcategory = u"ISO",
      .keywords = u"metric,flow,iso",
      .name_input = 0,
      .inputs = inputs,
      .outputs = outputs_,
      .binding = &binding,
      .notes = notes,
  };
}

}  // namespace

constexpr record::Function ISO5167_Orifice =
    element(u"ISO5167_Orifice", u"ISO-5167 Orifice", u"Orifice Mass Flow Rate according to ISO-5167.", orifice_inputs,
            orifice_outputs, bound<orifice_flow>, orifice_notes);

constexpr record::Function ISO5167_ISA1932 =
    element(u"ISO5167_ISA1932", u"ISO-5167 ISA 1932 Nozzle", u"ISA 1932 Nozzle Mass Flow Rate according to ISO-5167.",
            nozzle_inputs, isa1932_outputs, bound<isa1932_nozzle_flow>, isa1932_notes);

constexpr record::Function ISO5167_LongRadius =
    element(u"ISO5167_LongRadius", u"ISO-5167 Long Radius Nozzle",
            u"Long Radius Nozzle Mass Flow Rate according to ISO-5167.", nozzle_inputs, long_radius_outputs,
            bound<long_radius_nozzle_flow>, long_radius_notes);

constexpr record::Function ISO5167_VenturiNozzle = element(
    u"ISO5167_VenturiNozzle", u"ISO-5167 Venturi Nozzle", u"Venturi Nozzle Mass Flow Rate according to ISO-5167.",
    venturi_nozzle_inputs, venturi_nozzle_outputs, bound<venturi_nozzle_flow>, venturi_nozzle_notes);

constexpr record::Function ISO5167_Venturi =
    element(u"ISO5167_Venturi", u"ISO-5167 Classical Venturi", u"Venturi Mass Flow Rate according to ISO-5167.",
            venturi_inputs, venturi_outputs, bound<venturi_flow>, venturi_notes);

}  // namespace norvane::functions
