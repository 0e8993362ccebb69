// Ethylene_IUPAC_M, Ethylene_IUPAC_C: thermodynamic properties of ethylene.
#include <array>

#include "core/coefficients.h"
#include "math/fluid/ethylene_iupac.h"
#include "math/fluid/ethylene_iupac_table.h"
#include "math/fluid/fluid_records.h"

namespace norvane::functions {

extern const record::Function Ethylene_IUPAC_M, Ethylene_IUPAC_C;

namespace {

using namespace Ethylene_IUPAC;
using namespace fluid_records;

constexpr std::array<record::Input, 3> inputs(const UnitSet& units, const Limits& p, const Limits& T) {
  return {record::name_input(), pressure<&Arguments::pressure>(units, p),
          temperature<&Arguments::temperature>(units, T)};
}

constexpr std::array<record::Output, 9> outputs(const UnitSet& units) {
  return {
      record::status_output(),
      compressibility<&Result::z>(),
      mass_density<&Result::density>(units),
      result<&Result::enthalpy>(u"enthalpy", u"Enthalpy", u"Specific enthalpy.", units.energy, u"ENTHALPY"),
      result<&Result::entropy>(u"entropy", u"Entropy", u"Specific entropy.", units.heat_capacity, u"ENTROPY"),
      result<&Result::cp>(u"cp", u"Isobaric Heat cap.", u"Isobaric heat capacity (Cp).", units.heat_capacity, u"CP"),
      result<&Result::cv>(u"cv", u"Isochoric Heat cap.", u"Isochoric heat capacity (Cv).", units.heat_capacity,
                          u"CV"),
      result<&Result::speed_of_sound>(u"sos", u"Speed of Sound", u"Speed of sound.", units.velocity, u"SOS"),
      range_status<&Result::range>(enumeration::rangestatus)};
}

constexpr auto inputs_metric = inputs(metric, {0, 2700, 1.01325}, {-170, 250, 20});
constexpr auto inputs_customary = inputs(customary, {0, 39160, 14.696}, {-274, 482, 60});
constexpr auto outputs_metric = outputs(metric), outputs_customary = outputs(customary);

constexpr std::u16string_view notes =
    u"Source: M. Jahangiri, R. T Jacobsen, R. B. Stewart, R. D. McCarty, J. Phys. Chem. Ref. Data 15 (1986) 593, the "
    u"equation behind the IUPAC tables of ethylene (1988). Valid from the freezing line (triple point 103.986 K) to "
    u"450 K and to 2600 bar; range status 1 outside. Uncertainty told by the authors: 0.1 % in density, 3 % in heat "
    u"capacities, 1 % in the speed of sound.\n"
    u"Enthalpy and entropy of the ideal gas at 298.15 K and 101.325 kPa are 29610.08 J/mol and 219.2234 J/(mol K), "
    u"which reproduces the tables to their last digit.\n"
    u"The phase is the stable one: the equation's own saturation pressure decides, by equal Gibbs energies. On the "
    u"saturation line the liquid is answered. The equation's critical temperature is 282.32 K, 0.02 K below that of "
    u"the substance.\n";

constexpr const CoefficientSet* coefficients_used[] = {&Ethylene_IUPAC::coefficient_set};

}  // namespace

const record::Function Ethylene_IUPAC_M = {
    .id = u"Ethylene_IUPAC_M",
    .display = u"IUPAC Ethylene",
    .description = u"Thermodynamic properties of ethylene according to IUPAC.",
    .subcategory = u"IUPAC",
    .keywords = u"metric,liquid,iupac",
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes = notes,
};

const record::Function Ethylene_IUPAC_C = {
    .id = u"Ethylene_IUPAC_C",
    .display = u"IUPAC Ethylene",
    .description = u"Thermodynamic properties of ethylene according to IUPAC.",
    .subcategory = u"IUPAC",
    .keywords = u"customary,liquid,iupac",
    .name_input = 0,
    .inputs = inputs_customary,
    .outputs = outputs_customary,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes = notes,
};

}  // namespace norvane::functions
