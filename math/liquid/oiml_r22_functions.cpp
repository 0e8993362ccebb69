// OIML R 22: the record.
#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/liquid/liquid_records.h"
#include "math/liquid/oiml_r22.h"

namespace norvane::functions {

extern const record::Function OIML_R22_1975;

namespace {

using OIML_R22::Arguments;
using OIML_R22::Result;
using record::input;
using record::output;

constexpr record::Option modes[] = {
    {1, u"Density -> content"}, {2, u"Mass content -> density"}, {3, u"Volume content -> density"}};

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Arguments::mode>(input(u"mode", u"Mode", u"What is given and what is calculated.", data_type::integer).options(modes).otherwise(1)),
    in<&Arguments::density>(input(u"density", u"Density", u"Density at the temperature; read in mode 1.", unit::kg_m3).within(770, 1000).otherwise(950)),
    in<&Arguments::temperature>(input(u"temperature", u"Temperature", u"Temperature of the mixture.", unit::degC).within(-30, 50).otherwise(20)),
    in<&Arguments::mass_content>(input(u"mass content", u"Mass content", u"Mass content of ethanol; read in mode 2.", unit::perc_mass).within(0, 100).otherwise(0)),
    in<&Arguments::volume_content>(input(u"volume content", u"Volume content", u"Volume content of ethanol at 20 \u00B0C; read in mode 3.", unit::perc_vol).within(0, 100).otherwise(0)),
    in<&Arguments::hydrometer>(liquid::switch_input(u"hydrometer", u"Hydrometer correction", u"The density is the reading of a glass hydrometer; other than disabled is refused, see the notes.")),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Result::density>(output(u"density", u"Density", u"Density at the temperature.", unit::kg_m3, u"DENS")),
    out<&Result::mass_content>(output(u"mass content", u"Mass content", u"Mass content of ethanol.", unit::perc_mass, u"MASSCONT")),
    out<&Result::volume_content>(output(u"volume content", u"Volume content", u"Volume content of ethanol at 20 \u00B0C.", unit::perc_vol, u"VOLCONT")),
    out<&Result::density_20>(output(u"density 20", u"Density @20\u00B0C", u"Density of the mixture at 20 \u00B0C.", unit::kg_m3, u"DENS20")),
    out<&Result::ctl>(output(u"ctl", u"CTL", u"Density over density at 20 \u00B0C.", data_type::num, u"CTL")),
    out<&Result::out_of_range>(liquid::range_output()),
};
// clang-format on

constexpr const CoefficientSet* coefficients_used[] = {&OIML_R22::coefficient_set};

}  // namespace

const record::Function OIML_R22_1975 =
    liquid::function(
        u"OIML_R22_1975", u"OIML R22 1975",
        u"Density and content of mixtures of ethanol and water according to OIML R 22 (1975).", u"OIML",
        u"metric,liquid,oiml", inputs, outputs, bound<OIML_R22::calculate>,
        u"OIML R 22 (1975), general formula, -20 to 40 \u00B0C. Range status 1: the formula is extrapolated beyond, in modes "
        u"2 and 3 only; mode 1 answers status 1 there, as a density may then belong to several contents. Status 2 for a "
        u"density above that of water or below that of ethanol at the temperature.\n"
        u"The volume content is the mass content times the density at 20 \u00B0C over 789.24 kg/m3; pure ethanol has 99.9999 % "
        u"by it.\n"
        u"A hydrometer correction is refused with status 1: the expansion of alcohol hydrometers is not part of this "
        u"build. Correct the reading first.\n")
        .with(coefficients_used);

}  // namespace norvane::functions
