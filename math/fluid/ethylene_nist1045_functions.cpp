// Ethylene_NIST1045: density of ethylene.
#include "core/coefficients.h"
#include "math/fluid/ethylene_nist1045.h"
#include "math/fluid/ethylene_nist1045_table.h"
#include "math/fluid/fluid_records.h"

namespace norvane::functions {

extern const record::Function Ethylene_NIST1045;

namespace {

using fluid_records::metric;
using norvane::Ethylene_NIST1045::Arguments;
using norvane::Ethylene_NIST1045::Result;

constexpr record::Option phases[] = {{1, u"Automatic"}, {2, u"Liquid"}, {3, u"Gas"}};

constexpr record::Input inputs[] = {
    record::name_input(),
    fluid_records::pressure<&Arguments::pressure>(metric, {0, 500, 1.01325}),
    fluid_records::temperature<&Arguments::temperature>(metric, {-170, 250, 20}),
    in<&Arguments::phase>(
        record::input(u"phase", u"Phase", u"Phase selection.", data_type::integer).options(phases).otherwise(1)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    fluid_records::compressibility<&Result::z>(),
    fluid_records::mass_density<&Result::density>(metric),
    fluid_records::result<&Result::molar_density>(u"molar density", u"Molar Density", u"Molar density.",
                                                  {unit::kmol_m3}, u"MOLDENS"),
    fluid_records::range_status<&Result::range>(enumeration::rangestatus2),
};

constexpr const CoefficientSet* coefficients_used[] = {&Ethylene_NIST1045::coefficient_set};

}  // namespace

const record::Function Ethylene_NIST1045 = {
    .id = u"Ethylene_NIST1045",
    .display = u"NIST-1045 Ethylene",
    .description = u"Density of ethylene according to NIST-1045.",
    .subcategory = u"NIST",
    .keywords = u"metric,liquid,nist",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<norvane::Ethylene_NIST1045::calculate>,
    .coefficients = coefficients_used,
    .notes =
        u"Source: R. D. McCarty, R. T Jacobsen, NBS Technical Note 1045 (1981), a 32-term equation. Valid from the "
        u"freezing line (triple point 103.986 K) to 450 K and to 400 bar; range status 2 outside. Range status 1 "
        u"where the temperature is within 5 % and the density within 30 % of the critical ones: by the Note itself "
        u"the density may be 10 % off there.\n"
        u"The phase is the stable one: the equation's own saturation pressure decides, by equal Gibbs energies. On "
        u"the saturation line the liquid is answered. Phase 2 or 3 takes the liquid or the gas also where it is not "
        u"stable, with a warning; status 3 where that phase does not exist, and in the solid at 104 K above "
        u"300 bar.\n",
};

}  // namespace norvane::functions
