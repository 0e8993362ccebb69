// AGA8_M, AGA8_C: compressibility and density by the detail characterisation method of AGA Report No. 8.
#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "framework/call.h"
#include "framework/records.h"
#include "framework/retentive.h"
#include "math/gas/aga8.h"

namespace norvane::functions {

extern const record::Function AGA8_M, AGA8_C;

namespace {

constexpr record::StatusValue statuses[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"NOCONV", u"no convergency"},
    {4.0, u"COMPERR", u"composition error"},
};
constexpr record::StatusValue range_statuses[] = {{2.0, u"OOR", u"component out of range"}};

enum Status : int { success = 0, argument_error = 1, calculation_error = 2 };

// The customary function has no edition.
enum class In : std::size_t { Name, pressure, temperature, composition, neo_c5_mode, edition, count };
enum class Out : std::size_t { status, z, mass_density, molar_density, molar_mass, oor, count };

// clang-format off
constexpr record::Input composition_input =
    record::input(u"composition", u"Composition",
                  u"Gas composition (array of 22 numbers; sum of all numbers must be 1).", data_type::num).range();
constexpr record::Input neo_c5_mode_input =
    record::input(u"neo-c5 mode", u"neo-Pentane Mode",
                  u"Determines what to do when component neo-Pentane (C5) is larger than 0.",
                  enumeration::compneoc5mode).within(1, 3).otherwise(1);

constexpr record::Input inputs_metric[] = {
    record::name_input(),
    record::input(u"pressure", u"Pressure", u"Observed pressure.", unit::bar_a).otherwise(1.01325),
    record::input(u"temperature", u"Temperature", u"Observed temperature.", unit::degC).otherwise(0),
    composition_input,
    neo_c5_mode_input,
    record::input(u"edition", u"Edition", u"Year of edition.; 1: 1994; 2: 2017", data_type::integer).within(1, 2).otherwise(1),
};
constexpr record::Input inputs_customary[] = {
    record::name_input(),
    record::input(u"pressure", u"Pressure", u"Observed pressure.", unit::psia).within(0, 40000).otherwise(14.696),
    record::input(u"temperature", u"Temperature", u"Observed temperature.", unit::degF).within(-250, 800).otherwise(60),
    composition_input,
    neo_c5_mode_input,
};
static_assert(std::size(inputs_metric) == static_cast<std::size_t>(In::count));
static_assert(std::size(inputs_customary) == static_cast<std::size_t>(In::edition));

constexpr std::array<record::Output, 6> outputs(std::uint32_t mass_density, std::uint32_t molar_density,
                                                std::uint32_t molar_mass) {
  return {{
      record::status_output(statuses),
      record::output(u"z", u"Compressibility", u"Compressibility factor (Z).", data_type::num, u"Z"),
      record::output(u"mass density", u"Mass Density", u"Mass density.", mass_density, u"MASDENS"),
      record::output(u"molar density", u"Molar Density", u"Molar density.", molar_density, u"MOLDENS"),
      record::output(u"molar mass", u"Molar Mass", u"Molar mass.", molar_mass, u"MOLMASS"),
      record::output(u"oor", u"Range Status", u"Range status of the composition, temperature and pressure.",
                     enumeration::rangestatus2, u"RANGE").meaning(range_statuses),
  }};
}
// clang-format on

constexpr auto outputs_metric = outputs(unit::kg_m3, unit::kmol_m3, unit::kg_kmol);
constexpr auto outputs_customary = outputs(unit::lb_ft3, unit::lbmol_ft3, unit::lb_lbmol);
static_assert(outputs_metric.size() == static_cast<std::size_t>(Out::count));

// What a named or calling place keeps between calls.
struct Cache final : Function_CData {
  AGA8::CDetail detail;
};
const Function_CTypeOf<Cache> cache_metric(u"AGA8_M");
const Function_CTypeOf<Cache> cache_customary(u"AGA8_C");

std::uint32_t refuse_mode(Call& call) noexcept {
  return call.refuse(static_cast<std::size_t>(In::neo_c5_mode), u"is not a neo-pentane mode (1, 2 or 3)");
}

bool known_mode(int mode) noexcept { return mode >= AGA8::add_to_i_pentane && mode <= AGA8::neglect; }

void write(Call& call, const AGA8::State& state, double density_unit, int range) noexcept {
  call.set_integer(Out::status, success);
  call.set(Out::z, state.z);
  call.set(Out::mass_density, state.mass_density / density_unit);
  call.set(Out::molar_density, state.molar_density / density_unit);
  call.set(Out::molar_mass, state.molar_mass);
  call.set_integer(Out::oor, range);
}

std::uint32_t run_metric(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const double p = call.number(In::pressure);
  const double t = call.number(In::temperature);
  const int mode = call.option(In::neo_c5_mode);
  const int edition = call.option(In::edition);
  const AGA8::CompositionInput composition = call.numbers<AGA8::component_count + 1>(In::composition);
  const std::u16string_view name = call.text(In::Name);
  if (call.failed()) return call.error();
  if (edition != 1 && edition != 2)
    return call.refuse(static_cast<std::size_t>(In::edition), u"is not an edition (1 or 2)");
  if (!known_mode(mode)) return refuse_mode(call);
  Function_CDataAccessor accessor;
  if (!accessor.Open(context, cache_metric, name)) return ERROR_ACCESSOR;

  AGA8::Composition x;
  const int result = AGA8::prepare(composition, static_cast<AGA8::NeoPentaneMode>(mode), x);
  if (result != AGA8::composition_good) return call.status_only(result);
  const int range = edition == 1 ? std::max(AGA8::composition_range_1994(x), AGA8::state_range_1994(t, p))
                                 : AGA8::range_2017(x, t, p);
  AGA8::State state;
  switch (accessor.as<Cache>().detail.calculate(x, t + 273.15, p, true, state)) {
    case AGA8::converged: break;
    case AGA8::out_of_range: return call.status_only(argument_error);
    default: return call.status_only(calculation_error);
  }
  write(call, state, 1.0, range);
  return call.done();
}

std::uint32_t run_customary(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  constexpr double bar_per_psi = 0.0689476;
  constexpr double lb_ft3 = 16.01846337;  // [kg/m3], and lbmol/ft3 in kmol/m3
  Call call(context, args, count, output);
  const double p = call.number(In::pressure) * bar_per_psi;
  const double t = (call.number(In::temperature) - 32.0) / 1.8;
  const int mode = call.option(In::neo_c5_mode);
  const AGA8::CompositionInput composition = call.numbers<AGA8::component_count + 1>(In::composition);
  const std::u16string_view name = call.text(In::Name);
  if (call.failed()) return call.error();
  if (!known_mode(mode)) return refuse_mode(call);
  Function_CDataAccessor accessor;
  if (!accessor.Open(context, cache_customary, name)) return ERROR_ACCESSOR;

  AGA8::Composition x;
  const int result = AGA8::prepare(composition, static_cast<AGA8::NeoPentaneMode>(mode), x);
  if (result != AGA8::composition_good) return call.status_only(result);
  // The normal limits of temperature and pressure play no part here, only those of the equation as a whole.
  const int range = std::max(AGA8::composition_range_1994(x), AGA8::state_limits_1994(t, p));
  AGA8::State state;
  if (accessor.as<Cache>().detail.calculate(x, t + 273.15, p, false, state) != AGA8::converged)
    return call.status_only(calculation_error);
  write(call, state, lb_ft3, range);
  return call.done();
}

constexpr std::u16string_view notes =
    u"Standard: AGA Report No. 8, Compressibility Factors of Natural Gas and Other Related Hydrocarbon Gases, "
    u"2nd edition, 2nd printing (1994), detail characterisation method; the equation is the same in AGA Report "
    u"No. 8 Part 1 (2017) and ISO 12213-2. Gas constant 8.31451 J/(mol K).\n"
    u"The density is searched from the ideal gas upwards and refined by Brent's method to 1e-11. "
    u"Status 2 is answered where the pressure falls with density before it reaches the given one, "
    u"as inside the two-phase region, and at pressure 0. Code 3 is never answered.\n"
    u"An unchanged composition, temperature and pressure of the same name or calling place answers from memory.\n";

}  // namespace

const record::Function AGA8_M = {
    .group = GroupId::Math,
    .id = u"AGA8_M",
    .display = u"AGA-8",
    .description = u"Compressibility (Z) and Density according to AGA-8 DC (Detail Characterization method).",
    .category = u"Math",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .implementation = run_metric,
    .notes = notes,
};

const record::Function AGA8_C = {
    .group = GroupId::Math,
    .id = u"AGA8_C",
    .display = u"AGA-8",
    .description = u"Compressibility (Z) and Density according to AGA-8 DC (Detail Characterization method).",
    .category = u"Math",
    .subcategory = u"AGA",
    .keywords = u"customary,gas,aga",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_customary,
    .outputs = outputs_customary,
    .implementation = run_customary,
    .notes = notes,
};

}  // namespace norvane::functions
