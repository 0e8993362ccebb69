// GasViscosity_2004: dynamic viscosity of natural gas.
#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/conversions.h"
#include "math/common/gas_records.h"
#include "math/gas/aga8_table.h"
#include "math/gas/gas_viscosity.h"

namespace norvane::functions {

extern const record::Function GasViscosity_2004;

namespace {

using namespace ISO20765_5;
using record::input;
using record::output;

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Arguments::pressure>(input(u"pressure", u"Pressure", u"Absolute pressure.", unit::bar_a).otherwise(1.01325).through(conversion::bar_to_MPa)),
    in<&Arguments::temperature>(input(u"temperature", u"Temperature", u"Temperature of the gas.", unit::degC).otherwise(0).through(conversion::degC_to_K)),
    in<&Arguments::composition>(record::composition_input()),
};
constexpr record::Output outputs[] = {
    record::status_output(record::statuses_with_composition),
    out<&Result::viscosity>(output(u"viscosity", u"Dyn. Viscosity", u"Dynamic viscosity.", unit::Pa_s, u"VISC")),
    out<&Result::out_of_range>(output(u"oor", u"Range Status", u"Range status of the temperature and pressure.", enumeration::rangestatus, u"RANGE")),
};
// clang-format on

constexpr const CoefficientSet* coefficients_used[] = {&AGA8::coefficient_set, &ISO20765_5::coefficient_set};

}  // namespace

const record::Function GasViscosity_2004 = {
    .id = u"GasViscosity_2004",
    .display = u"Natural gas dynamic viscosity",
    .description = u"Natural gas dynamic viscosity.",
    .subcategory = u"Viscosity",
    .keywords = u"metric,gas",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes =
        u"Equations: ISO 20765-5, Natural gas - Calculation of thermodynamic properties - Part 5: Calculation of "
        u"viscosity, Joule-Thomson coefficient, and isentropic exponent; viscosities of the pure gases at low pressure "
        u"by Stiel and Thodos, mixed after Herning and Zipperer, the excess of the dense gas by Jossi, Stiel and "
        u"Thodos, all on the molar density of AGA Report No. 8. It is this library's choice of a viscosity for the "
        u"Reynolds number of a flow meter; it is not the correlation of a publication of 2004.\n"
        u"Against measured viscosities of methane the equations run some 1 % high at low pressure and 3 to 4 % low at "
        u"100 bar. No published value of the whole calculation was at hand.\n"
        u"Neo-pentane counts as i-pentane. At pressure 0 the viscosity is that of the dilute gas. Range status 1: "
        u"outside -20 to 40 \u00B0C or above 100 bar.\n"
        u"An unchanged composition, temperature and pressure of the same name or calling place takes its density from "
        u"memory.\n"};

}  // namespace norvane::functions
