// AGA5_C: heating value from specific gravity and diluents by AGA-5.
#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/gas_records.h"
#include "math/gas/aga5.h"

namespace norvane::functions {

extern const record::Function AGA5_C;

namespace {

using record::input;
using record::output;

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&AGA5::Gas::fractions>(record::composition_input()),
    in<&AGA5::Gas::specific_gravity>(input(u"specific gravity", u"Specific Gravity",
        u"Molar Mass Ratio, i.e. ratio of the molar mass of the gas and of the molar mass of air (specified in "
        u"AGA-5 as 28.9644 kg/kmol (lbm/lbmol)).", data_type::num).within(0, 1).otherwise(0.7)),
};
constexpr record::Output outputs[] = {
    record::status_output(record::statuses_without_convergence),
    out<&AGA5::Result::mass_based>(output(u"cal. value mass", u"Calorific Value", u"Mass based calorific value.", unit::Btu_lbm, u"CV_MASS")),
    out<&AGA5::Result::volume_based>(output(u"cal. value volume", u"Calorific Value", u"Volume based calorific value.", unit::Btu_scf, u"CV_VOL")),
};
// clang-format on

constexpr const CoefficientSet* coefficients_used[] = {&AGA5::coefficient_set};

}  // namespace

const record::Function AGA5_C = {
    .id = u"AGA5_C",
    .display = u"AGA-5",
    .description = u"Calorific Value according to AGA-5.",
    .subcategory = u"AGA",
    .keywords = u"customary,gas,aga",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .binding = &bound<AGA5::calculate>,
    .coefficients = coefficients_used,
    .notes =
        u"AGA Report No. 5, Natural gas energy measurement: heating value from the specific gravity and "
        u"the fractions of nitrogen, carbon dioxide, oxygen, helium, carbon monoxide, hydrogen sulfide, "
        u"water and hydrogen.\n"
        u"The composition is taken as fractions and is not normalised: status 1 when these eight exceed 1 in sum, "
        u"as percent does, or when one of them is negative; status 2 for a specific gravity below 1e-6. "
        u"For pure methane the correlation lies 0.2 to 0.4 % above the tabulated value by volume.",
};

}  // namespace norvane::functions
