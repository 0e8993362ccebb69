// IAPWS_IF97_M, IAPWS_IF97_C: water and steam.
#include <array>

#include "core/coefficients.h"
#include "math/fluid/fluid_records.h"
#include "math/fluid/iapws_if97.h"
#include "math/fluid/iapws_if97_table.h"

namespace norvane::functions {

extern const record::Function IAPWS_IF97_M, IAPWS_IF97_C;

namespace {

using namespace IAPWS_IF97;
using namespace fluid_records;

constexpr record::Option phases[] = {{1, u"Automatic"}, {2, u"Liquid"}, {3, u"Steam"}};

constexpr std::array<record::Input, 4> inputs(const UnitSet& units, const Limits& p, const Limits& T) {
  return {
      record::name_input(), pressure<&Arguments::pressure>(units, p), temperature<&Arguments::temperature>(units, T),
      in<&Arguments::phase>(
          record::input(u"phase", u"Phase", u"Phase selection.", data_type::integer).options(phases).otherwise(1))};
}

constexpr std::array<record::Output, 6> outputs(const UnitSet& units) {
  return {record::status_output(),
          mass_density<&Result::density>(units),
          result<&Result::enthalpy>(u"enthalpy", u"Enthalpy", u"Specific enthalpy.", units.energy, u"ENTHALPY"),
          result<&Result::entropy>(u"entropy", u"Entropy", u"Specific entropy.", units.heat_capacity, u"ENTROPY"),
          result<&Result::isentropic_exponent>(u"kappa", u"Isentropic Exponent", u"Isentropic exponent (kappa).",
                                               {data_type::num}, u"KAPPA"),
          result<&Result::region>(u"region", u"Region", u"IAPWS-IF97 region (1, 2, 3 or 5).", {data_type::integer},
                                  u"REGION")};
}

constexpr auto inputs_metric = inputs(metric, {0, 1000, 1.01325}, {0, 2000, 20});
constexpr auto inputs_customary = inputs(customary, {0, 14504, 14.696}, {32, 3632, 60});
constexpr auto outputs_metric = outputs(metric), outputs_customary = outputs(customary);

constexpr std::u16string_view notes =
    u"Standard: IAPWS R7-97(2012), Industrial Formulation 1997 for the Thermodynamic Properties of Water and Steam, "
    u"regions 1, 2, 3 and 5 with the saturation line of region 4 and the equation for metastable vapour. Valid from "
    u"0 \u00B0C to 800 \u00B0C up to 1000 bar and to 2000 \u00B0C up to 500 bar; a state beyond is status 1. "
    u"Enthalpy and entropy are zero for the saturated liquid at the triple point, the enthalpy within 0.001 kJ/kg.\n"
    u"In region 3 the density is the exact root of the basic equation. On the saturation line the liquid is "
    u"answered. The regions meet with the jumps that the formulation has, up to 0.02 % in density.\n"
    u"Phase 2 or 3 continues the equation of liquid or steam across the saturation line, for water or steam that is "
    u"measured a little on the wrong side of it; a warning says so. Status 3 where the phase does not exist (above "
    u"350 \u00B0C), status 2 where its equation has lost its meaning.\n"
    u"Kappa is w\u00B2/(p v), the exponent that differential pressure devices need.\n";

constexpr const CoefficientSet* coefficients_used[] = {&IAPWS_IF97::coefficient_set};

}  // namespace

const record::Function IAPWS_IF97_M = {
    .id = u"IAPWS_IF97_M",
    .display = u"IAPWS-IF97",
    .description = u"Density, enthalpy and entropy of water and steam according to IAPWS-IF97.",
    .subcategory = u"IAPWS",
    .keywords = u"metric,gas,iapws",
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes = notes,
};

const record::Function IAPWS_IF97_C = {
    .id = u"IAPWS_IF97_C",
    .display = u"IAPWS-IF97",
    .description = u"Density, enthalpy and entropy of water and steam according to IAPWS-IF97.",
    .subcategory = u"IAPWS",
    .keywords = u"customary,gas,iapws",
    .name_input = 0,
    .inputs = inputs_customary,
    .outputs = outputs_customary,
    .binding = &bound<calculate>,
    .coefficients = coefficients_used,
    .notes = notes,
};

}  // namespace norvane::functions
