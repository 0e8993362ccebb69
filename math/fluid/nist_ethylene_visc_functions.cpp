// NIST_Ethylene_Visc_M, NIST_Ethylene_Visc_C: dynamic viscosity of ethylene.
#include <array>

#include "core/coefficients.h"
#include "math/fluid/ethylene_nist1045_table.h"
#include "math/fluid/fluid_records.h"
#include "math/fluid/nist_ethylene_visc.h"

namespace norvane::functions {

extern const record::Function NIST_Ethylene_Visc_M, NIST_Ethylene_Visc_C;

namespace {

using namespace NIST_Ethylene_Visc;
using namespace fluid_records;

constexpr std::array<record::Input, 3> inputs(const UnitSet& units, const Limits& p, const Limits& T) {
  return {record::name_input(), pressure<&Arguments::pressure>(units, p),
          temperature<&Arguments::temperature>(units, T)};
}

constexpr std::array<record::Output, 3> outputs(const UnitSet& units) {
  return {record::status_output(),
          result<&Result::viscosity>(u"visc", u"Dyn. Viscosity", u"Dynamic viscosity.", units.viscosity, u"VISC"),
          range_status<&Result::range>(enumeration::rangestatus)};
}

constexpr auto inputs_metric = inputs(metric, {0, 500, 1.01325}, {-170, 250, 20});
constexpr auto inputs_customary = inputs(customary, {0, 7252, 14.696}, {-274, 482, 60});
constexpr auto outputs_metric = outputs(metric), outputs_customary = outputs(customary);

constexpr std::u16string_view notes =
    u"Source: P. M. Holland, B. E. Eaton, H. J. M. Hanley, J. Phys. Chem. Ref. Data 12 (1983) 917, with the density "
    u"of NBS Technical Note 1045 for the stable phase. Tabulated from 110 K to 500 K and to 500 bar; range status 1 "
    u"outside. The density equation is continued above 450 K and 400 bar, as the source does.\n"
    u"There is no term for the rise of the viscosity next to the critical point.\n";

constexpr const CoefficientSet* coefficients_used[] = {&Ethylene_NIST1045::coefficient_set,
                                                       &NIST_Ethylene_Visc::coefficient_set};

}  // namespace

const record::Function NIST_Ethylene_Visc_M = {
    .id = u"NIST_Ethylene_Visc_M",
    .display = u"NIST Ethylene viscosity",
    .description = u"Dynamic viscosity of ethylene according to NIST.",
    .subcategory = u"NIST",
    .keywords = u"metric,liquid,nist",
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes = notes,
};

const record::Function NIST_Ethylene_Visc_C = {
    .id = u"NIST_Ethylene_Visc_C",
    .display = u"NIST Ethylene viscosity",
    .description = u"Dynamic viscosity of ethylene according to NIST.",
    .subcategory = u"NIST",
    .keywords = u"customary,liquid,nist",
    .name_input = 0,
    .inputs = inputs_customary,
    .outputs = outputs_customary,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes = notes,
};

}  // namespace norvane::functions
