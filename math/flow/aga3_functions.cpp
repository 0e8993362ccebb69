// AGA3_C.
#include <array>

#include "math/flow/aga3.h"
#include "math/flow/device_records.h"

namespace norvane::functions {

extern const record::Function AGA3_C;

namespace {

using namespace AGA3;
using device_records::geometry;
using device_records::location_inputs;
using device_records::measured;
using device_records::Measurement;
using record::Input;
using record::Output;

constexpr record::Conversion lbm_ft_s_to_cP{[](double lbm_ft_s) noexcept { return lbm_ft_s * 1488.16394356955; },
                                            [](double cP) noexcept { return cP / 1488.16394356955; }};
constexpr record::Conversion klbm_to_lbm{[](double klbm) noexcept { return klbm * 1000.0; },
                                         [](double lbm) noexcept { return lbm / 1000.0; }};

// clang-format off
constexpr std::array<Input, 13> leading = {
    record::name_input(),
    measured<&Measurement::dp>(record::input(u"dp", u"Diff. Pressure",
                  u"Differential pressure over the primary flow device measured at the up- and downstream pressure "
                  u"tappings, which need to be in the positions as specified in the standard.",
                  unit::inH2O_60_degF).within(0, 1000).otherwise(24.88)),
    measured<&Measurement::pressure>(record::input(u"pressure", u"Pressure", u"Down- or upstream pressure value of the fluid at metering conditions.",
                  unit::psia).within(0, 30000).otherwise(492.9)),
    measured<&Measurement::temperature>(record::input(u"temperature", u"Temperature",
                  u"Down- or upstream temperature of the fluid at metering conditions.",
                  unit::degF).within(-400, 2000).otherwise(131)),
    measured<&Measurement::density>(record::input(u"density", u"Density", u"Down or upstream density of the fluid at metering conditions.",
                  unit::lb_ft3).within(0, 200).otherwise(1.407)),
    measured<&Measurement::viscosity>(record::input(u"viscosity", u"Dyn. Viscosity", u"Dynamic viscosity of the fluid.",
                  unit::lbm_ft_s).within(0, 10).otherwise(0.0000069).through(lbm_ft_s_to_cP)),
    measured<&Measurement::kappa>(record::input(u"isen exp", u"Isentropic Exponent",
                  u"Also referred to as K (kappa). For an ideal gas this coefficient is equal to the ratio of the "
                  u"specific heat capacity at constant pressure to the specific heat at constant volume. This ratio is "
                  u"commonly used when the real value is unknown.",
                  data_type::num).within(0, 10).otherwise(1.3)),
    geometry<&Geometry::pipe_diameter>(record::input(u"pipe diam", u"Pipe Diameter", u"Internal diameter of the pipe at reference temperature.",
                  unit::in).within(0, 100).otherwise(11.811)),
    geometry<&Geometry::pipe_expansion>(record::input(u"pipe exp coef", u"Pipe Expansion", u"The thermal expansion coefficient of the pipe material.",
                  unit::per_degF).within(0, 1).otherwise(0.0000062)),
    geometry<&Geometry::pipe_reference_temperature>(record::input(u"pipe ref temp", u"Pipe ref. Temp.",
                  u"The reference temperature that corresponds to the 'Pipe Diameter' input.",
                  unit::degF).within(-400, 2000).otherwise(68)),
    geometry<&Geometry::device_diameter>(record::input(u"orif diam", u"Orifice Diameter", u"Orifice diameter at reference temperature.",
                  unit::in).within(0, 100).otherwise(7.087)),
    geometry<&Geometry::device_expansion>(record::input(u"orif exp coef", u"Orifice Expansion",
                  u"The thermal expansion coefficient of the orifice material.",
                  unit::per_degF).within(0, 1).otherwise(0.00000925)),
    geometry<&Geometry::device_reference_temperature>(record::input(u"orif ref temp", u"Orifice ref. Temp.",
                  u"The reference temperature that corresponds to the 'Orifice Diameter' input.",
                  unit::degF).within(0, 150).otherwise(68)),
};

constexpr std::array<Input, 7> locations = {
    location_inputs[0],
    location_inputs[1].otherwise(3),
    location_inputs[2],
    location_inputs[3].within(-100000000, 100000000)
        .described(u"Temperature exponent to correct the temperature from down- to upstream conditions (or vice versa) "
                   u"the formula (K-1)/K (isentropic expansion) will be used when the input value is set to 0, else the "
                   u"input value will be used."),
    location_inputs[4]
        .described(u"The density location specifies if and how the density should be corrected from downstream to "
                   u"upstream conditions."),
    location_inputs[5].within(-100000000, 100000000)
        .described(u"This factor is used when density correction is enabled. The formula 1/K will be used when the "
                   u"input value is set to 0, else the input value will be used."),
    location_inputs[6]
        .described(u"Type of Fluid being measured. For liquid the expansion factor is set to 1, i.e. the fluid is "
                   u"considered to be incompressible."),
};

constexpr record::Option editions[] = {{1, u"1992"}, {2, u"2012"}};

constexpr std::array<Input, 3> trailing = {
    in<&Arguments::drain_hole>(record::input(u"drain hole", u"Drain hole Diam.",
                  u"Drain hole diameter. When input is > 0 then an additional correction on the orifice diameter will be "
                  u"applied to account for the drain hole, as explained further on.",
                  unit::in).within(0, 100).otherwise(0)),
    in<&Arguments::gravity_correction>(record::input(u"fpwl", u"Fpwl (Grav. cor. factor)",
                  u"Local Gravitational Correction Factor for Deadweight Calibrators used to calibrate differential and "
                  u"static pressure Instruments. Directly applied on the calculated mass flow rate within each "
                  u"iteration.",
                  data_type::num).within(0.9, 1.1).otherwise(1)),
    in<&Arguments::edition>(record::input(u"edition", u"Edition", u"Year of edition.", data_type::integer)
        .options(editions).otherwise(1)),
};

constexpr auto inputs = join(within<&Arguments::device>(leading), within<&Arguments::device>(locations), trailing);

constexpr record::Option codes[] = {
    {0, u"No errors"},
    {1, u"Pipe diameter <= 0"},
    {2, u"Density <= 0"},
    {3, u"Pressure <= 0"},
    {4, u"Invalid pressure location"},
    {5, u"DeltaP < 0"},
    {6, u"Kappa <= 0"},
    {7, u"No convergence"},
    {8, u"Flow rate < 0"},
    {9, u"Pressure downstream = 0"},
    {10, u"Recovered"},
    {11, u"Math error"},
};

constexpr auto outputs = join(
    std::array<Output, 5>{
        record::status_output(),
        out<&Result::mass_rate>(record::output(u"mass rate", u"Mass Flow Rate", u"", unit::klbm_hr, u"MASSR").through(klbm_to_lbm)),
        out<&Result::beta>(record::output(u"beta", u"Beta Ratio", u"Orifice to pipe diameter ratio at upstream temperature.", data_type::num, u"BETA")),
        out<&Result::orifice_diameter>(record::output(u"cor orifice diam", u"Orifice Diameter", u"Orifice diameter at the upstream temperature.", unit::in, u"ORIFUP")),
        out<&Result::pipe_diameter>(record::output(u"cor pipe diam", u"Pipe Diameter", u"Pipe diameter at the upstream temperature.", unit::in, u"PIPEUP")),
    },
    device_records::state_outputs<Result>(unit::psia, unit::degF, unit::lb_ft3),
    std::array<Output, 10>{
        out<&Result::reynolds>(record::output(u"reynolds", u"Reynolds Number",
                       u"The pipe Reynolds number (i.e. the Reynolds number upstream of the orifice and not the one within "
                       u"the device throat itself).", data_type::num, u"REYN")),
        out<&Result::discharge_coefficient>(record::output(u"discharge coef", u"Discharge Coef.", u"", data_type::num, u"DISCF")),
        out<&Result::expansion_factor>(record::output(u"exp factor", u"Expansion Factor", u"", data_type::num, u"EXPFAC")),
        out<&Result::velocity_of_approach>(record::output(u"vel of approach", u"Velocity of Appr.", u"", data_type::num, u"VOA")),
        out<&Result::pressure_out_of_range>(record::output(u"pressure oor", u"Pressure Range Status", u"Pressure range status.", enumeration::rangestatus, u"PRESOOR")),
        out<&Result::reynolds_out_of_range>(record::output(u"reynolds oor", u"Reynolds Range Status", u"Reynolds number range status.", enumeration::rangestatus, u"REYNOOR")),
        out<&Result::diameter_out_of_range>(record::output(u"diameter oor", u"Diameter Range Status", u"Diameter range status.", enumeration::rangestatus, u"DIAMOOR")),
        out<&Result::code>(record::output(u"aga3 status", u"Status Details", u"AGA-3 specific error status.", data_type::integer, u"")
            .options(codes).always()),
        out<&Result::raw_mass_rate>(record::output(u"raw mass rate", u"Raw Mass Rate", u"Raw mass rate.", unit::lbm_hr, u"")),
        out<&Result::raw_previous_mass_rate>(record::output(u"raw prev mass rate", u"Raw Prev. Mass Rate", u"Raw previous mass rate.", unit::lbm_hr, u"")),
    });

constexpr std::u16string_view notes =
    u"AGA Report No. 3 (API MPMS 14.3), Part 1 (1992 and 2012) and Part 4 (1992), 4.3.2: flange tappings.\n"
    u"The editions differ in the expansion factor, which is that of the upstream tapping. The recovered pressure is the "
    u"downstream pressure. `t exp` 0 leaves the temperature alone where the correction is by exponent. `fpwl` multiplies "
    u"the mass rate once; Reynolds number, discharge coefficient and the raw mass rates (of the last step of the iteration "
    u"and of the one before) are without it. The limits of use are tested on the diameters at flowing temperature.\n"
    u"A negative expansion factor is status 2. Status 1 and 2 come with `aga3 status` and nothing else; with status 3 the result that has not converged is "
    u"delivered.\n";
// clang-format on

}  // namespace

const record::Function AGA3_C = {
    .id = u"AGA3_C",
    .display = u"AGA-3",
    .description = u"Orifice Mass Flow Rate according to AGA-3.",
    .subcategory = u"AGA",
    .keywords = u"customary,gas,flow,aga",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<orifice_flow>,
    .notes = notes,
};

}  // namespace norvane::functions
