// AGA10_M, AGA10ex_M: speed of sound and thermodynamic properties by AGA Report No. 10.
#include <span>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/conversions.h"
#include "math/common/gas_records.h"
#include "math/gas/aga10.h"
#include "math/gas/aga10_table.h"

namespace norvane::functions {

extern const record::Function AGA10_M, AGA10ex_M;

namespace {

using namespace AGA10;
using record::input;
using record::Misfit;
using record::output;

constexpr record::StatusValue range_statuses[] = {{2.0, u"OOR", u"calc. range"}};
constexpr record::Option critical_flow_modes[] = {{1, u"Don't calculate (fast)"}, {2, u"Calculate (slow)"}};

// clang-format off
constexpr record::Input inputs_extended[] = {
    record::name_input(),
    in<&Gas::pressure>(input(u"pressure", u"Pressure", u"Observed pressure.", unit::bar_a).within(0, 2000).otherwise(1.01325).through(conversion::bar_to_MPa)),
    in<&Gas::temperature>(input(u"temperature", u"Temperature", u"Observed temperature.", unit::degC).within(-200, 400).otherwise(0)),
    in<&Gas::composition>(record::composition_input().within(0, 1)),
    in<&Gas::neo_pentane>(record::neo_pentane_input().unless(Misfit::refuse)),
    in<&Gas::critical_flow>(input(u"critical flow", u"Critical Flow", u"Critical flow calculation mode.", data_type::integer)
        .options(critical_flow_modes).otherwise(1).unless(Misfit::refuse)),
};
// The plain function has no critical flow input.
constexpr std::span<const record::Input> inputs_plain{inputs_extended, std::size(inputs_extended) - 1};

// A property is a place in the list of values.
template <Property which>
void* value_of(void* answer) {
  return &static_cast<Answer*>(answer)->values[static_cast<std::size_t>(which)];
}
template <Property which>
constexpr record::Output property(std::u16string_view key, std::u16string_view display, std::u16string_view description,
                                  std::uint32_t type, std::u16string_view tag) {
  record::Output line = output(key, display, description, type, tag);
  line.field = binding::field_of<Answer, double>(&value_of<which>);
  return line;
}

constexpr record::Output speed_of_sound_output =
    property<Property::speed_of_sound>(u"sos", u"Speed of Sound", u"Speed of sound.", unit::m_s, u"SOS");
constexpr record::Output range_output =
    out<&Answer::range>(output(u"oor", u"Range Status", u"Range status of the composition, temperature and pressure.",
                               enumeration::rangestatus2, u"OOR").meaning(range_statuses));

constexpr record::Output outputs_plain[] = {
    record::status_output(record::statuses_with_composition),
    speed_of_sound_output,
    range_output,
};
constexpr record::Output outputs_extended[] = {
    record::status_output(record::statuses_with_composition),
    property<Property::molar_mass>(u"molar mass", u"Molar Mass", u"Molecular weight.", unit::kg_kmol, u"MOLMASS"),
    property<Property::base_molar_density>(u"base dens molar", u"Base Density", u"Molar density at base conditions.", unit::mol_m3, u"MOLDENSB"),
    property<Property::flowing_molar_density>(u"flow dens molar", u"Flowing Density", u"Molar density at flowing conditions.", unit::mol_m3, u"MOLDENSF"),
    property<Property::base_density>(u"base dens", u"Base Density", u"Mass density at base conditions.", unit::kg_m3, u"MASSDENSB"),
    property<Property::flowing_density>(u"flow dens", u"Flowing Density", u"Mass density at flowing conditions.", unit::kg_m3, u"MASSDENSF"),
    property<Property::ideal_relative_density>(u"ideal rd", u"Ideal rel. Density", u"Ideal gas relative density.", data_type::num, u"IRD"),
    property<Property::real_relative_density>(u"real rd", u"Real rel. Density", u"Real gas relative density.", data_type::num, u"RRD"),
    speed_of_sound_output,
    property<Property::base_z>(u"base z", u"Base Compressibility", u"Compressibility (Z) at base conditions.", data_type::num, u"ZB"),
    property<Property::flowing_z>(u"flow z", u"Flowing Compressibility", u"Compressibility (Z) at flowing conditions.", data_type::num, u"ZF"),
    property<Property::supercompressibility>(u"fpv", u"Fpv (supercompr.)", u"Supercompressibility (Fpv).", data_type::num, u"FPV"),
    property<Property::ideal_enthalpy>(u"ideal h", u"Ideal spec. Enthalpy", u"Ideal gas specific enthalpy.", unit::kJ_kg, u"MASSH0"),
    property<Property::enthalpy>(u"real h", u"Real spec. Enthalpy", u"Real gas specific enthalpy.", unit::kJ_kg, u"MASSH"),
    property<Property::entropy>(u"real s", u"Real spec. Entropy", u"Real gas specific entropy.", unit::kJ_kg_degC, u"MASSS"),
    property<Property::ideal_cp>(u"ideal cp", u"Ideal isobaric Heat cap.", u"Ideal gas isobaric heat capacity (Cp).", unit::kJ_kg_degC, u"MASSCP0"),
    property<Property::cp>(u"real cp", u"Real isobaric Heat cap.", u"Real gas isobaric heat capacity (Cp).", unit::kJ_kg_degC, u"MASSCP"),
    property<Property::cv>(u"real cv", u"Real isochoric Heat cap.", u"Real gas isochoric heat capacity (Cv).", unit::kJ_kg_degC, u"MASSCV"),
    property<Property::ideal_molar_cp>(u"ideal cp molar", u"Ideal isobaric Heat cap.", u"Ideal gas isobaric heat capacity (Cp) (molar).", unit::kJ_kmol_degC, u"MOLCP0"),
    property<Property::molar_cp>(u"real cp molar", u"Real isobaric Heat cap.", u"Real gas isobaric heat capacity (Cp) (molar).", unit::kJ_kmol_degC, u"MOLCP"),
    property<Property::molar_cv>(u"real cv molar", u"Ideal isochoric Heat cap.", u"Real gas isochoric heat capacity (Cv) (molar).", unit::kJ_kmol_degC, u"MOLCV"),
    property<Property::cp_over_cv>(u"cp_cv", u"Specific Heats Ratio", u"Ratio of specific heats.", data_type::num, u"CPCV"),
    property<Property::isentropic_exponent>(u"kappa", u"Isentropic Exponent", u"Isentropic exponent.", data_type::num, u"KAPPA"),
    property<Property::critical_flow_factor>(u"crit", u"Critical flow factor (C*)", u"Critical flow factor.", data_type::num, u"CRITC"),
    property<Property::ideal_molar_enthalpy>(u"ideal h molar", u"Ideal spec. Enthalpy", u"Ideal gas specific enthalpy (H) (molar).", unit::kJ_kmol, u"MOLH0"),
    property<Property::molar_enthalpy>(u"real h molar", u"Real spec. Enthalpy", u"Real gas specific enthalpy (H) (molar).", unit::kJ_kmol, u"MOLH"),
    property<Property::ideal_gas_flow_factor>(u"ideal s", u"Isentropic ideal C*", u"Isentropic ideal gas critical flow factor.", data_type::num, u"CI"),
    property<Property::isentropic_flow_factor>(u"cri", u"Isentropic real C*", u"Isentropic real gas critical flow factor.", data_type::num, u"CRI"),
    range_output,
};
// clang-format on

// clang-format off
#define NOTES_STANDARD \
    u"Standard: AGA Report No. 10, Speed of Sound in Natural Gas and Other Related Hydrocarbon Gases (2003), with the " \
    u"detail equation of AGA Report No. 8 (1994) and its analytical derivatives.\n"
#define NOTES_STATUS \
    u"Status 3 is answered when no density is found, at pressure 0 too; status 2 for a state without speed of sound " \
    u"(inside a two-phase region) and when no nozzle throat is found.\n" \
    u"What composition, temperature and pressure make is kept by name or calling place and made anew when they change.\n"
constexpr std::u16string_view notes_plain = NOTES_STANDARD NOTES_STATUS;
constexpr std::u16string_view notes_extended =
    NOTES_STANDARD
    u"Enthalpies are zero for the ideal gases at 0 K, entropies absolute at 101.325 kPa with the entropy of mixing. "
    u"Base conditions are 0 \u00B0C and 1.01325 bar. Relative densities: molar mass of air 28.9625 kg/kmol, its "
    u"compressibility from the second virial coefficient of AGA Report No. 8.\n"
    u"The critical flow factor C* is that of the isentropic expansion from the flowing state to the speed of sound. The "
    u"isentropic factors are those of a perfect gas: with the ideal gas's ratio of heat capacities, and with the "
    u"isentropic exponent, divided by the square root of Z. All three are 0 in mode 1.\n"
    NOTES_STATUS;
#undef NOTES_STANDARD
#undef NOTES_STATUS
// clang-format on

constexpr const CoefficientSet* coefficients_used[] = {&AGA8::coefficient_set, &AGA10::coefficient_set};

}  // namespace

const record::Function AGA10_M = {
    .id = u"AGA10_M",
    .display = u"AGA-10",
    .description = u"Speed of Sound according to AGA-10.",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .name_input = 0,
    .inputs = inputs_plain,
    .outputs = outputs_plain,
    .binding = &bound<speed_of_sound, speed_of_sound_rows>,
    .coefficients = coefficients_used,
    .notes = notes_plain,
};

const record::Function AGA10ex_M = {
    .id = u"AGA10ex_M",
    .display = u"AGA-10 (extended)",
    .description = u"Thermodynamic Properties according to AGA-10.",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .name_input = 0,
    .inputs = inputs_extended,
    .outputs = outputs_extended,
    .binding = &bound<all_properties, all_properties_rows>,
    .coefficients = coefficients_used,
    .notes = notes_extended,
};

}  // namespace norvane::functions
