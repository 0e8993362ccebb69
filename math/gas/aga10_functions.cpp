// AGA10_M, AGA10ex_M: speed of sound and thermodynamic properties by AGA Report No. 10.
#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <span>

#include "framework/call.h"
#include "framework/records.h"
#include "math/gas/aga10.h"

namespace norvane::functions {

extern const record::Function AGA10_M, AGA10ex_M;

namespace {

using AGA10::Property;

constexpr record::StatusValue statuses[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"NOCONV", u"no convergency"},
    {4.0, u"COMPERR", u"composition error"},
};
constexpr record::StatusValue range_statuses[] = {{2.0, u"OOR", u"calc. range"}};

enum Status : int { success = 0, calculation_error = 2, no_convergence = 3 };

// The plain function has no critical flow input.
enum class In : std::size_t { Name, pressure, temperature, composition, neo_c5_mode, critical_flow, count };

// clang-format off
constexpr record::Input inputs_extended[] = {
    record::name_input(),
    record::input(u"pressure", u"Pressure", u"Observed pressure.", unit::bar_a).within(0, 2000).otherwise(1.01325),
    record::input(u"temperature", u"Temperature", u"Observed temperature.", unit::degC).within(-200, 400).otherwise(0),
    record::input(u"composition", u"Composition",
                  u"Gas composition (array of 22 numbers; sum of all numbers must be 1).", data_type::num).within(0, 1).range(),
    record::input(u"neo-c5 mode", u"neo-Pentane Mode",
                  u"Determines what to do when component neo-Pentane (C5) is larger than 0.",
                  enumeration::compneoc5mode).within(1, 3).otherwise(1),
    record::input(u"critical flow", u"Critical Flow",
                  u"Critical flow calculation mode.; 1: Don't calculate (fast); 2: Calculate (slow)",
                  data_type::integer).within(1, 2).otherwise(1),
};
static_assert(std::size(inputs_extended) == static_cast<std::size_t>(In::count));
constexpr std::span<const record::Input> inputs_plain{inputs_extended, static_cast<std::size_t>(In::critical_flow)};

constexpr record::Output speed_of_sound_output =
    record::output(u"sos", u"Speed of Sound", u"Speed of sound.", unit::m_s, u"SOS");
constexpr record::Output range_output =
    record::output(u"oor", u"Range Status", u"Range status of the composition, temperature and pressure.",
                   enumeration::rangestatus2, u"OOR").meaning(range_statuses);

enum class Out : std::size_t { status, sos, oor, count };
constexpr record::Output outputs_plain[] = {
    record::status_output(statuses),
    speed_of_sound_output,
    range_output,
};
static_assert(std::size(outputs_plain) == static_cast<std::size_t>(Out::count));

// The status, the properties in the order of their codes, the range status.
constexpr record::Output outputs_extended[] = {
    record::status_output(statuses),
    record::output(u"molar mass",      u"Molar Mass",               u"Molecular weight.",                             unit::kg_kmol,      u"MOLMASS"),
    record::output(u"base dens molar", u"Base Density",             u"Molar density at base conditions.",             unit::mol_m3,       u"MOLDENSB"),
    record::output(u"flow dens molar", u"Flowing Density",          u"Molar density at flowing conditions.",          unit::mol_m3,       u"MOLDENSF"),
    record::output(u"base dens",       u"Base Density",             u"Mass density at base conditions.",              unit::kg_m3,        u"MASSDENSB"),
    record::output(u"flow dens",       u"Flowing Density",          u"Mass density at flowing conditions.",           unit::kg_m3,        u"MASSDENSF"),
    record::output(u"ideal rd",        u"Ideal rel. Density",       u"Ideal gas relative density.",                   data_type::num,     u"IRD"),
    record::output(u"real rd",         u"Real rel. Density",        u"Real gas relative density.",                    data_type::num,     u"RRD"),
    speed_of_sound_output,
    record::output(u"base z",          u"Base Compressibility",     u"Compressibility (Z) at base conditions.",       data_type::num,     u"ZB"),
    record::output(u"flow z",          u"Flowing Compressibility",  u"Compressibility (Z) at flowing conditions.",    data_type::num,     u"ZF"),
    record::output(u"fpv",             u"Fpv (supercompr.)",        u"Supercompressibility (Fpv).",                   data_type::num,     u"FPV"),
    record::output(u"ideal h",         u"Ideal spec. Enthalpy",     u"Ideal gas specific enthalpy.",                  unit::kJ_kg,        u"MASSH0"),
    record::output(u"real h",          u"Real spec. Enthalpy",      u"Real gas specific enthalpy.",                   unit::kJ_kg,        u"MASSH"),
    record::output(u"real s",          u"Real spec. Entropy",       u"Real gas specific entropy.",                    unit::kJ_kg_degC,   u"MASSS"),
    record::output(u"ideal cp",        u"Ideal isobaric Heat cap.", u"Ideal gas isobaric heat capacity (Cp).",        unit::kJ_kg_degC,   u"MASSCP0"),
    record::output(u"real cp",         u"Real isobaric Heat cap.",  u"Real gas isobaric heat capacity (Cp).",         unit::kJ_kg_degC,   u"MASSCP"),
    record::output(u"real cv",         u"Real isochoric Heat cap.", u"Real gas isochoric heat capacity (Cv).",        unit::kJ_kg_degC,   u"MASSCV"),
    record::output(u"ideal cp molar",  u"Ideal isobaric Heat cap.", u"Ideal gas isobaric heat capacity (Cp) (molar).", unit::kJ_kmol_degC, u"MOLCP0"),
    record::output(u"real cp molar",   u"Real isobaric Heat cap.",  u"Real gas isobaric heat capacity (Cp) (molar).", unit::kJ_kmol_degC, u"MOLCP"),
    record::output(u"real cv molar",   u"Ideal isochoric Heat cap.", u"Real gas isochoric heat capacity (Cv) (molar).", unit::kJ_kmol_degC, u"MOLCV"),
    record::output(u"cp_cv",           u"Specific Heats Ratio",     u"Ratio of specific heats.",                      data_type::num,     u"CPCV"),
    record::output(u"kappa",           u"Isentropic Exponent",      u"Isentropic exponent.",                          data_type::num,     u"KAPPA"),
    record::output(u"crit",            u"Critical flow factor (C*)", u"Critical flow factor.",                        data_type::num,     u"CRITC"),
    record::output(u"ideal h molar",   u"Ideal spec. Enthalpy",     u"Ideal gas specific enthalpy (H) (molar).",      unit::kJ_kmol,      u"MOLH0"),
    record::output(u"real h molar",    u"Real spec. Enthalpy",      u"Real gas specific enthalpy (H) (molar).",       unit::kJ_kmol,      u"MOLH"),
    record::output(u"ideal s",         u"Isentropic ideal C*",      u"Isentropic ideal gas critical flow factor.",    data_type::num,     u"CI"),
    record::output(u"cri",             u"Isentropic real C*",       u"Isentropic real gas critical flow factor.",     data_type::num,     u"CRI"),
    range_output,
};
// clang-format on

constexpr std::size_t property_count = static_cast<std::size_t>(Property::count);
constexpr std::size_t range_place = property_count + 1;
static_assert(std::size(outputs_extended) == range_place + 1);

constexpr bool of_critical_flow(Property property) {
  return property == Property::critical_flow_factor || property == Property::ideal_gas_flow_factor ||
         property == Property::isentropic_flow_factor;
}

// The property codes in output order, with or without the critical flow factors.
template <bool critical_flow>
constexpr auto requested = [] {
  std::array<Property, property_count - (critical_flow ? 0 : 3)> list{};
  std::size_t n = 0;
  for (std::size_t i = 0; i < property_count; ++i) {
    const auto property = static_cast<Property>(i);
    if (critical_flow || !of_critical_flow(property)) list[n++] = property;
  }
  return list;
}();

// What is done in either function up to the outputs. True when the values are there;
// else `result` is what the implementation returns.
bool compute(Call& call, std::span<const Property> properties, AGA10::Properties& values, int& range,
             std::uint32_t& result) noexcept {
  const double p = call.number(In::pressure);
  const double t = call.number(In::temperature);
  const int mode = call.option(In::neo_c5_mode);
  const AGA8::CompositionInput composition = call.numbers<AGA8::component_count + 1>(In::composition);
  const auto refuse = [&](In input, std::u16string_view why) {
    result = call.refuse(static_cast<std::size_t>(input), why);
    return false;
  };
  if (call.failed()) {
    result = call.error();
    return false;
  }
  if (!std::all_of(composition.begin(), composition.end(), [](double x) { return x >= 0.0 && x <= 1.0; }))
    return refuse(In::composition, u"has a cell outside 0 to 1");
  if (mode < AGA8::add_to_i_pentane || mode > AGA8::neglect)
    return refuse(In::neo_c5_mode, u"is not a neo-pentane mode (1, 2 or 3)");

  const auto fail = [&](int status) {
    result = call.status_only(status);
    return false;
  };
  AGA8::Composition x;
  const int prepared = AGA8::prepare(composition, static_cast<AGA8::NeoPentaneMode>(mode), x);
  if (prepared != AGA8::composition_good) return fail(prepared);
  range = std::max(AGA8::composition_range_1994(x), AGA8::state_limits_1994(t, p));
  switch (AGA10::calculate(x, {p * 100000.0, t + 273.15}, AGA10::base_conditions, properties, values)) {
    case AGA10::success: return true;
    case AGA10::flowing_density_failed:
    case AGA10::base_density_failed: return fail(no_convergence);
    default: return fail(calculation_error);
  }
}

std::uint32_t run_plain(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  constexpr Property speed_of_sound[] = {Property::speed_of_sound};
  Call call(context, args, count, output);
  AGA10::Properties values{};
  int range = 0;
  std::uint32_t result = 0;
  if (!compute(call, speed_of_sound, values, range, result)) return result;
  call.set_integer(Out::status, success);
  call.set(Out::sos, values[static_cast<std::size_t>(Property::speed_of_sound)]);
  call.set_integer(Out::oor, range);
  return call.done();
}

std::uint32_t run_extended(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const int mode = call.option(In::critical_flow);
  if (call.failed()) return call.error();
  if (mode != 1 && mode != 2)
    return call.refuse(static_cast<std::size_t>(In::critical_flow), u"is not a mode (1 or 2)");
  const std::span<const Property> properties =
      mode == 2 ? std::span<const Property>(requested<true>) : std::span<const Property>(requested<false>);
  AGA10::Properties values{};
  int range = 0;
  std::uint32_t result = 0;
  if (!compute(call, properties, values, range, result)) return result;
  call.set_integer(0, success);
  for (std::size_t i = 0; i < property_count; ++i) call.set(i + 1, values[i]);
  call.set_integer(range_place, range);
  return call.done();
}

// clang-format off
#define NOTES_STANDARD \
    u"Standard: AGA Report No. 10, Speed of Sound in Natural Gas and Other Related Hydrocarbon Gases (2003), with the " \
    u"detail equation of AGA Report No. 8 (1994) and its analytical derivatives.\n"
#define NOTES_STATUS \
    u"Status 3 is answered when no density is found, at pressure 0 too; status 2 for a state without speed of sound " \
    u"(inside a two-phase region) and when no nozzle throat is found.\n"
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

}  // namespace

const record::Function AGA10_M = {
    .group = GroupId::Math,
    .id = u"AGA10_M",
    .display = u"AGA-10",
    .description = u"Speed of Sound according to AGA-10.",
    .category = u"Math",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_plain,
    .outputs = outputs_plain,
    .implementation = run_plain,
    .notes = notes_plain,
};

const record::Function AGA10ex_M = {
    .group = GroupId::Math,
    .id = u"AGA10ex_M",
    .display = u"AGA-10 (extended)",
    .description = u"Thermodynamic Properties according to AGA-10.",
    .category = u"Math",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_extended,
    .outputs = outputs_extended,
    .implementation = run_extended,
    .notes = notes_extended,
};

}  // namespace norvane::functions
