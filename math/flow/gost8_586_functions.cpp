// GOST8_586_2005_EdgeRadius, _MassFlowRate, _Roughness, _SteelExpansionFactor: orifice plates by GOST 8.586-2005.
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/flow/gost8_586.h"
#include "math/flow/gost8_586_table.h"

namespace norvane::functions {

extern const record::Function GOST8_586_2005_EdgeRadius, GOST8_586_2005_MassFlowRate, GOST8_586_2005_Roughness,
    GOST8_586_2005_SteelExpansionFactor;

namespace {

using namespace GOST_8_586_2005;
using record::input;
using record::Option;
using record::output;

constexpr Option radius_modes[] = {{1, u"Mean over the interval between checks"}, {2, u"After time of operation"}};
constexpr Option tappings[] = {{1, u"Corner Tappings"}, {2, u"D/D2 Tappings"}, {3, u"Flange Tappings"}};

// The rows of the tables are the options.
template <std::size_t N>
constexpr std::array<Option, N> numbered(const Steel (&rows)[N]) {
  std::array<Option, N> options{};
  for (std::size_t i = 0; i < N; ++i) options[i] = {static_cast<int>(i + 1), rows[i].grade};
  return options;
}
template <std::size_t N>
constexpr std::array<Option, N> numbered(const PipeWall (&rows)[N]) {
  std::array<Option, N> options{};
  for (std::size_t i = 0; i < N; ++i) options[i] = {static_cast<int>(i + 1), rows[i].wall};
  return options;
}
constexpr auto grades = numbered(steels);
constexpr auto pipes = numbered(pipe_walls);

// clang-format off
constexpr record::Input edge_inputs[] = {
    record::name_input(),
    in<&EdgeArguments::initial_radius>(input(u"init radius", u"Initial Radius", u"Initial radius of the edge.", unit::mm).within(0, 10).otherwise(0.05)),
    in<&EdgeArguments::time>(input(u"time", u"Time", u"Time of operation, or between checks.", unit::y).within(0, 100).otherwise(1)),
    in<&EdgeArguments::mode>(input(u"mode", u"Mode", u"Calculation mode.", data_type::integer).options(radius_modes).otherwise(1)),
    in<&EdgeArguments::limit_radius>(input(u"limit radius", u"Limit Radius", u"Radius that the edge tends to.", unit::mm).within(0, 10).otherwise(0.195)),
};
constexpr record::Output edge_outputs[] = {
    record::status_output(),
    out<&EdgeResult::radius>(output(u"radius", u"Edge Radius", u"Radius of the edge.", unit::mm, u"EDGERAD")),
};

constexpr record::Input flow_inputs[] = {
    record::name_input(),
    in<&Arguments::measured, &Measurement::dp>(input(u"dp", u"Diff. Pressure", u"Differential pressure.", unit::mbar).within(0, 10000).otherwise(390)),
    in<&Arguments::measured, &Measurement::pressure>(input(u"pres", u"Pressure", u"Absolute pressure at the upstream tapping.", unit::bar_a).within(0, 2000).otherwise(60)),
    in<&Arguments::measured, &Measurement::temperature>(input(u"temp", u"Temperature", u"Temperature at the upstream tapping.", unit::degC).within(-240, 1000).otherwise(20)),
    in<&Arguments::measured, &Measurement::density>(input(u"dens", u"Density", u"Density at the upstream tapping.", unit::kg_m3).within(0, 2000).otherwise(50)),
    in<&Arguments::measured, &Measurement::viscosity>(input(u"visc", u"Dyn. Viscosity", u"Dynamic viscosity of the fluid.", unit::Pa_s).within(0, 1).otherwise(0.000012)),
    in<&Arguments::measured, &Measurement::kappa>(input(u"kappa", u"Isentropic Exponent", u"Isentropic exponent (kappa).", data_type::num).within(0, 10).otherwise(1.3)),
    in<&Arguments::geometry, &Geometry::pipe_diameter>(input(u"pipe diam", u"Pipe Diameter", u"Internal pipe diameter at 20 \u00B0C.", unit::mm).within(0, 2000).otherwise(300)),
    in<&Arguments::geometry, &Geometry::pipe_expansion>(input(u"pipe exp coef", u"Pipe Expansion", u"Pipe thermal expansion coefficient.", unit::per_degC).within(0, 1).otherwise(0.0000112)),
    in<&Arguments::roughness>(input(u"roughness", u"Pipe Roughness", u"Equivalent roughness of the pipe.", unit::mm).within(0, 10).otherwise(0.1)),
    in<&Arguments::geometry, &Geometry::device_diameter>(input(u"orif diam", u"Orifice Diameter", u"Orifice diameter at 20 \u00B0C.", unit::mm).within(0, 2000).otherwise(150)),
    in<&Arguments::geometry, &Geometry::device_expansion>(input(u"orif exp coef", u"Orifice Expansion", u"Orifice thermal expansion coefficient.", unit::per_degC).within(0, 1).otherwise(0.0000163)),
    in<&Arguments::edge_radius>(input(u"edge radius", u"Edge Radius", u"Radius of the edge of the orifice.", unit::mm).within(0, 10).otherwise(0.05)),
    in<&Arguments::tappings>(input(u"config", u"Configuration", u"Pressure tappings configuration.", data_type::integer).options(tappings).otherwise(1)),
    in<&Arguments::measured, &Measurement::fluid>(input(u"fluid", u"Fluid", u"", enumeration::fluidstate).within(1, 2).otherwise(1)),
};
constexpr record::Output flow_outputs[] = {
    record::status_output(),
    out<&Result::mass_rate>(output(u"mass rate", u"Mass Flow Rate", u"Mass flow rate.", unit::kg_s, u"MASSR")),
    out<&Result::beta>(output(u"beta", u"Beta Ratio", u"Diameter ratio at the temperature.", data_type::num, u"BETARATIO")),
    out<&Result::orifice_diameter>(output(u"orif diam", u"Orifice Diameter", u"Orifice diameter at the temperature.", unit::mm, u"ORIFDIAM")),
    out<&Result::pipe_diameter>(output(u"pipe diam", u"Pipe Diameter", u"Internal pipe diameter at the temperature.", unit::mm, u"PIPEDIAM")),
    out<&Result::reynolds>(output(u"reynolds", u"Reynolds Number", u"Pipe Reynolds number.", data_type::num, u"REYNOLDS")),
    out<&Result::discharge_coefficient>(output(u"dis coef", u"Discharge Coef.", u"Discharge coefficient, without the two factors.", data_type::num, u"DISCOEF")),
    out<&Result::expansibility>(output(u"exp factor", u"Expansion Factor", u"Expansion factor.", data_type::num, u"EXPFACTOR")),
    out<&Result::velocity_of_approach>(output(u"vel of approach", u"Velocity of Appr.", u"Velocity of approach factor.", data_type::num, u"VOA")),
    out<&Result::roughness_factor>(output(u"rough factor", u"Roughness Factor", u"Correction for the roughness of the pipe.", data_type::num, u"ROUGHFAC")),
    out<&Result::edge_factor>(output(u"edge factor", u"Edge Factor", u"Correction for the radius of the edge.", data_type::num, u"EDGEFAC")),
    out<&Result::pressure_out_of_range>(output(u"pressure oor", u"Pres. out of Range", u"Pressure ratio below 0.75.", enumeration::rangestatus, u"PRESOOR")),
    out<&Result::reynolds_out_of_range>(output(u"reynolds oor", u"Reyn. out of Range", u"Reynolds number below its limit.", enumeration::rangestatus, u"REYNOOR")),
    out<&Result::diameter_out_of_range>(output(u"diameter oor", u"Diam. out of Range", u"A diameter or their ratio outside its limits.", enumeration::rangestatus, u"DIAMOOR")),
};

constexpr record::Input roughness_inputs[] = {
    record::name_input(),
    in<&RoughnessArguments::pipe>(input(u"pipe type", u"Pipe Type", u"Pipe and its state.", data_type::integer).options(pipes).otherwise(4)),
};
constexpr record::Output roughness_outputs[] = {
    record::status_output(),
    out<&RoughnessResult::roughness>(output(u"roughness", u"Equiv. Roughness", u"Equivalent roughness.", unit::mm, u"ROUGH")),
    out<&RoughnessResult::average_roughness>(output(u"avg roughness", u"Avg. Roughness (Ra)", u"Arithmetic mean deviation of the profile (Ra).", unit::mm, u"RA")),
};

constexpr record::Input steel_inputs[] = {
    record::name_input(),
    in<&SteelArguments::grade>(input(u"material", u"Material", u"Steel grade.", data_type::integer).options(grades).otherwise(3)),
    in<&SteelArguments::temperature>(input(u"temperature", u"Temperature", u"Temperature of the steel.", unit::degC).otherwise(20)),
};
constexpr record::Output steel_outputs[] = {
    record::status_output(),
    out<&SteelResult::expansion>(output(u"exp coef", u"Expansion Coefficient", u"Mean coefficient of linear expansion from 20 \u00B0C.", unit::per_degC, u"EXPCOEF")),
};
// clang-format on

constexpr const CoefficientSet* coefficients_used[] = {&GOST_8_586_2005::coefficient_set};

constexpr record::Function function(std::u16string_view id, std::u16string_view display,
                                    std::u16string_view description, std::span<const record::Input> inputs,
                                    std::span<const record::Output> outputs, const record::Binding& binding,
                                    std::u16string_view notes) {
  return {
      .id = id,
      .display = display,
      .description = description,
      .subcategory = u"GOST",
      .keywords = u"metric,flow,gost",
      .name_input = 0,
      .inputs = inputs,
      .outputs = outputs,
      .binding = &binding,
      .coefficients = coefficients_used,
      .notes = notes,
  };
}

constexpr record::Function without_range_check(record::Function function) {
  function.flags |= FUNCTION_NO_RANGE_CHECK;
  return function;
}

}  // namespace

constexpr record::Function GOST8_586_2005_EdgeRadius = function(
    u"GOST8_586_2005_EdgeRadius", u"GOST8-586 Edge radius (2005)",
    u"Radius of the edge of an orifice plate according to GOST 8.586.2-2005.", edge_inputs, edge_outputs,
    bound<edge_radius>,
    u"GOST 8.586.2-2005, formulas (5.14) to (5.16). The radius nears its limit with a time constant of three years; mode "
    u"1 is the mean over the time since the last check, mode 2 the value at its end.\n");

constexpr record::Function GOST8_586_2005_MassFlowRate = function(
    u"GOST8_586_2005_MassFlowRate", u"GOST8-586 Mass flow rate (2005)",
    u"Orifice mass flow rate according to GOST 8.586-2005.", flow_inputs, flow_outputs, bound<calculate>,
    u"GOST 8.586.2-2005 and 8.586.5-2005. The equations of the discharge coefficient and the expansion factor and the "
    u"limits of use are those of ISO 5167-2:2003, without terms for Reynolds numbers below the limits; the "
    u"coefficient is corrected for the roughness of the pipe, formulas (5.9) to (5.12), and the radius of the edge, "
    u"formula (5.13).\n"
    u"The loop on the mass rate goes to 1e-12 kg/s, further than the 0.001 % of the standard. The roughness limits are "
    u"not rounded, which makes up to 2e-4 of the factor; above a Reynolds number of 1e8 they stay as they are there.\n"
    u"Without a differential pressure the mass rate, the Reynolds number and the discharge coefficient are 0. Range "
    u"outputs: pressure, below 0.75 of the upstream pressure at the downstream tapping (gas); Reynolds number, below "
    u"5000 or the limit of the tappings; diameters, orifice below 12.5 mm, pipe outside 50 to 1000 mm, ratio outside "
    u"0.1 to 0.75.\n");

constexpr record::Function GOST8_586_2005_Roughness = without_range_check(
    function(u"GOST8_586_2005_Roughness", u"GOST8-586 Roughness (2005)",
             u"Equivalent roughness of a pipe according to GOST 8.586.1-2005.", roughness_inputs, roughness_outputs,
             bound<pipe_roughness>,
             u"GOST 8.586.1-2005, table D.1. The figures of row 21 are not part of this build (status 2).\n"));

constexpr record::Function GOST8_586_2005_SteelExpansionFactor = function(
    u"GOST8_586_2005_SteelExpansionFactor", u"GOST8-586 Steel expansion factor (2005)",
    u"Thermal expansion of a steel according to GOST 8.586.1-2005.", steel_inputs, steel_outputs,
    bound<steel_expansion>,
    u"GOST 8.586.1-2005, table G.1; the coefficient is the mean from 20 \u00B0C to the temperature. The polynomial of "
    u"row 13 is not part of this build (status 1). For row 30 two prints differ in one coefficient (18.64 and 13.64, "
    u"0.25e-6 at 50 \u00B0C); the first is used, with a warning. Row 38 carries a warning, as its polynomial is "
    u"attributed by its place.\n");

}  // namespace norvane::functions
