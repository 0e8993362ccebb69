// NIST_CO2_M, NIST_CO2_C: density of carbon dioxide.
#include <array>

#include "core/coefficients.h"
#include "math/fluid/fluid_records.h"
#include "math/fluid/nist_co2.h"
#include "math/fluid/nist_co2_table.h"

namespace norvane::functions {

extern const record::Function NIST_CO2_M, NIST_CO2_C;

namespace {

using namespace NIST_CO2;
using namespace fluid_records;

constexpr std::array<record::Input, 3> inputs(const UnitSet& units, const Limits& p, const Limits& T) {
  return {record::name_input(), pressure<&Arguments::pressure>(units, p),
          temperature<&Arguments::temperature>(units, T)};
}

constexpr std::array<record::Output, 3> outputs(const UnitSet& units) {
  return {record::status_output(), mass_density<&Result::density>(units),
          range_status<&Result::range>(enumeration::rangestatus)};
}

constexpr auto inputs_metric = inputs(metric, {0, 8000, 1.01325}, {-60, 1100, 20});
constexpr auto inputs_customary = inputs(customary, {0, 116030, 14.696}, {-76, 2012, 60});
constexpr auto outputs_metric = outputs(metric), outputs_customary = outputs(customary);

constexpr std::u16string_view notes =
    u"Source: R. Span, W. Wagner, J. Phys. Chem. Ref. Data 25 (1996) 1509, the reference equation behind NIST's data "
    u"for carbon dioxide. Valid from the triple point (216.592 K) to 1100 K and to 8000 bar in the fluid; range "
    u"status 1 outside, and above the melting pressure, where the density is that of the continued liquid.\n"
    u"Uncertainty told by the authors: 0.03 % to 0.05 % in density up to 523 K and 300 bar.\n"
    u"The phase is the stable one: the equation's own saturation pressure decides, by equal Gibbs energies. On the "
    u"saturation line the liquid is answered.\n";

constexpr const CoefficientSet* coefficients_used[] = {&NIST_CO2::coefficient_set};

}  // namespace

const record::Function NIST_CO2_M = {
    .id = u"NIST_CO2_M",
    .display = u"NIST CO2",
    .description = u"Density of carbon dioxide according to NIST (Span and Wagner).",
    .subcategory = u"NIST",
    .keywords = u"metric,liquid,nist",
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes = notes,
};

const record::Function NIST_CO2_C = {
    .id = u"NIST_CO2_C",
    .display = u"NIST CO2",
    .description = u"Density of carbon dioxide according to NIST (Span and Wagner).",
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
