// ISO6976_1995_M, ISO6976_2016_M, ISO6976ex_1995_M, ISO6976ex_2016_M: calorific values, density,
// relative density and Wobbe index by ISO 6976.
#include <array>
#include <cstddef>
#include <iterator>
#include <span>

#include "core/text.h"
#include "framework/call.h"
#include "framework/records.h"
#include "math/common/composition.h"
#include "math/gas/iso6976.h"

namespace norvane::functions {

extern const record::Function ISO6976_1995_M, ISO6976_2016_M, ISO6976ex_1995_M, ISO6976ex_2016_M;

namespace {

using namespace ISO6976;  // the standard's algorithm, not to be confused with the records' names

// ---- Records -----------------------------------------------------------------------------------------------------

constexpr record::StatusValue statuses[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"COMPERR", u"composition error"},
};
constexpr int composition_error = 3, calculation_error = 2;

enum class Out : std::size_t {
  status,
  sup_cal_value,
  density,
  compressibility,
  rel_density,
  molar_mass,
  sup_cal_val_mass,
  sup_cal_val_mole,
  inf_cal_value,
  inf_cal_val_mass,
  inf_cal_val_mole,
  wobbe,
  oor,
  count
};

// clang-format off
constexpr record::Output outputs[] = {
    record::status_output(statuses),
    record::output(u"sup cal value", u"Sup. Calorific Val.",
                   u"Real superior calorific value on volume basis at the reference conditions of temperature and "
                   u"pressure.", unit::MJ_m3, u"SCV"),
    record::output(u"density", u"Density", u"Density at the reference conditions of temperature and pressure.",
                   unit::kg_m3, u"DENS"),
    record::output(u"compressibility", u"Compressibility", u"", data_type::num, u"Z"),
    record::output(u"rel density", u"Relative Density", u"", data_type::num, u"RD"),
    record::output(u"molar mass", u"Molar Mass", u"", unit::kg_kmol, u"MM"),
    record::output(u"sup cal val mass", u"Sup. Calorific Val.",
                   u"Real superior calorific value on mass basis at the reference conditions of temperature and "
                   u"pressure (mass).", unit::MJ_kg, u"SCV_MASS"),
    record::output(u"sup cal val mole", u"Sup. Calorific Val.",
                   u"Real superior calorific value on mass basis at the reference conditions of temperature and "
                   u"pressure (molecular).", unit::MJ_kmol, u"SVC_MOLE"),
    record::output(u"inf cal value", u"Inf. Calorific Val.",
                   u"Real inferior calorific value on volume basis at the reference conditions of temperature and "
                   u"pressure (volume).", unit::MJ_m3, u"ICV"),
    record::output(u"inf cal val mass", u"Inf. Calorific Val.",
                   u"Real inferior calorific value on volume basis at the reference conditions of temperature and "
                   u"pressure (mass).", unit::MJ_kg, u"ICV_MASS"),
    record::output(u"inf cal val mole", u"Inf. Calorific Val.",
                   u"Real inferior calorific value on volume basis at the reference conditions of temperature and "
                   u"pressure (molecular).", unit::MJ_kmol, u"ICV_MOLE"),
    record::output(u"wobbe", u"Wobbe Index", u"", unit::MJ_m3, u"WOBBE"),
    record::output(u"oor", u"RangeStatus", u"", enumeration::rangestatus, u"OOR"),
};
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

constexpr record::Input composition_input =
    record::input(u"composition", u"Composition",
                  u"Gas composition (array of 22 numbers; sum of all numbers must be 1).", data_type::num).range();

constexpr record::Input reference_1995 =
    record::input(u"ref temp", u"Ref. Temperature",
                  u"Reference temperature (combustion / metering / ref-temp).; 1: 15 / 15 / 15 \u00B0C; "
                  u"2: 0 / 0 / 0 \u00B0C; 3: 15 / 0 / 0 \u00B0C; 4: 25 / 0 / 0 \u00B0C; 5: 20 / 20 / 20 \u00B0C; "
                  u"6: 25 / 20 / 20 \u00B0C", data_type::integer).within(1, 6).otherwise(1);

constexpr record::Input reference_2016 =
    reference_1995.described(
                  u"Reference temperature (combustion / metering / ref-temp).; 1: 15 / 15 / 15 \u00B0C; "
                  u"2: 0 / 0 / 0 \u00B0C; 3: 15 / 0 / 0 \u00B0C; 4: 25 / 0 / 0 \u00B0C; 5: 20 / 20 / 20 \u00B0C; "
                  u"6: 25 / 20 / 20 \u00B0C; 7: 60 F / 60 F / 60 \u00B0F").within(1, 7);

constexpr record::Input molar_mass_input =
    record::input(u"molar mass method", u"Molar Mass Method",
                  u"Method used for calcuting the molar mass.; 1: Calculate; 2: Use table", data_type::integer)
        .within(1, 2).otherwise(1);

constexpr record::Input method_input =
    record::input(u"cv method", u"Calorific Val. Method",
                  u"Calorific value calculation method.; 1: Definitive; 2: Alternative", data_type::integer)
        .within(1, 2).otherwise(1);

constexpr record::Input alkenes_input =
    record::input(u"alkenes", u"Alkenes",
                  u"Gas composition, alkenes (array of 11 numbers: ethylene, propylene, 1-butene, cis-2-butene, "
                  u"trans-2-butene, 2-methylpropene, 1-pentene, propadiene, 1,2-butadiene, 1,3-butadiene, acetylene).",
                  data_type::num).range();

constexpr record::Input others_input =
    record::input(u"others", u"Other Components",
                  u"Gas composition, other components (array of 8 numbers: methanol, methanethiol, ammonia, hydrogen "
                  u"cyanide, carbonyl sulfide, carbon disulfide, neon, sulfur dioxide).", data_type::num).range();

// The gas of 22 components, either edition.
enum class In : std::size_t { Name, composition, ref_temp, molar_mass_method, cv_method, count };

constexpr record::Input inputs_1995[] = {
    record::name_input(), composition_input, reference_1995, molar_mass_input, method_input,
};
constexpr record::Input inputs_2016[] = {
    record::name_input(), composition_input, reference_2016, molar_mass_input, method_input,
};
static_assert(std::size(inputs_1995) == static_cast<std::size_t>(In::count));
static_assert(std::size(inputs_2016) == static_cast<std::size_t>(In::count));

// All 55 components.
enum class In55 : std::size_t {
  Name, composition, alkanes, alkenes, cycloalkanes, aromatics, others, ref_temp, molar_mass_method, cv_method, count
};

constexpr record::Input inputs_55[] = {
    record::name_input(),
    composition_input,
    record::input(u"alkanes", u"Alkanes",
                  u"Gas composition, alkanes (array of 4 numbers: 2-methylpentane, 3-methylpentane, 2,2-dimethylbutane, "
                  u"2,3-dimethylbutane).", data_type::num).range(),
    alkenes_input,
    record::input(u"cycloalkanes", u"Cycloalkanes",
                  u"Gas composition, cycloalkanes (array of 6 numbers: cyclopentane, methylcyclopentane, "
                  u"ethylcyclopentane, cyclohexane, methylcyclohexane, ethylcyclohexane).", data_type::num).range(),
    record::input(u"aromatics", u"Aromatics",
                  u"Gas composition, aromatics (array of 4 numbers: benzene, toluene, ethylbenzene, o-xylene).",
                  data_type::num).range(),
    others_input,
    reference_1995,
    molar_mass_input,
    method_input,
};
static_assert(std::size(inputs_55) == static_cast<std::size_t>(In55::count));

// All 60 components.
enum class In60 : std::size_t {
  Name, composition, alkanes, alkenes, ring_compounds, others, ref_temp, molar_mass_method, cv_method, count
};

constexpr record::Input inputs_60[] = {
    record::name_input(),
    composition_input,
    record::input(u"alkanes", u"Alkanes",
                  u"Gas composition, alkanes (array of 9 numbers: 2-methylpentane, 3-methylpentane, 2,2-dimethylbutane, "
                  u"2,3-dimethylbutane, n-undecane, n-dodecane, n-tridecane, n-tetradecane, n-pentadecane).",
                  data_type::num).range(),
    alkenes_input,
    record::input(u"ring compounds", u"Ring Compounds",
                  u"Gas composition, ring compounds (array of 10 numbers: cyclopentane, methylcyclopentane, "
                  u"ethylcyclopentane, cyclohexane, methylcyclohexane, ethylcyclohexane, benzene, toluene, "
                  u"ethylbenzene, o-xylene).", data_type::num).range(),
    others_input,
    reference_2016,
    molar_mass_input,
    method_input,
};
static_assert(std::size(inputs_60) == static_cast<std::size_t>(In60::count));
// clang-format on

// ---- Implementation ----------------------------------------------------------------------------------------------

struct Options {
  int reference;
  int molar_mass_method;
  int cv_method;

  MolarMassMethod molar_mass() const { return static_cast<MolarMassMethod>(molar_mass_method); }
  CalorificMethod calorific() const { return static_cast<CalorificMethod>(cv_method); }
};

template <class Inputs>
Options read_options(Call& call) noexcept {
  return {call.option(Inputs::ref_temp), call.option(Inputs::molar_mass_method), call.option(Inputs::cv_method)};
}

// A method that is neither of the two ends the call; an unknown reference is the algorithm's
// to find. The result is 0 when both methods are good.
template <class Inputs>
std::uint32_t refuse_methods(Call& call, const Options& options) noexcept {
  const auto good = [](int method) { return method == 1 || method == 2; };
  if (!good(options.molar_mass_method))
    return call.refuse(static_cast<std::size_t>(Inputs::molar_mass_method), u"should be 1 or 2");
  if (!good(options.cv_method)) return call.refuse(static_cast<std::size_t>(Inputs::cv_method), u"should be 1 or 2");
  return ERROR_OK;
}

// Status of a composition that is not right, else 0.
int normalise(std::span<double> x) noexcept {
  switch (composition::normalise(x)) {
    case composition::ok: return 0;
    case composition::sum_off: return composition_error;
    default: return calculation_error;
  }
}

std::array<double, n_common> in_standard_order(const std::array<double, n_common>& composition) noexcept {
  std::array<double, n_common> x;
  for (std::size_t i = 0; i < n_common; ++i) x[i] = composition[common_places[i]];
  return x;
}

// Rows of the standard's tables that the further arrays hold.
constexpr std::array<std::size_t, 4> alkanes = {9, 10, 11, 12};
constexpr std::array<std::size_t, 9> alkanes_2016 = {9, 10, 11, 12, 55, 56, 57, 58, 59};
constexpr std::array<std::size_t, 11> alkenes = {17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27};
constexpr std::array<std::size_t, 6> cycloalkanes = {28, 29, 30, 31, 32, 33};
constexpr std::array<std::size_t, 4> aromatics = {34, 35, 36, 37};
constexpr std::array<std::size_t, 10> ring_compounds = {28, 29, 30, 31, 32, 33, 34, 35, 36, 37};
constexpr std::array<std::size_t, 8> others = {38, 39, 43, 44, 46, 47, 49, 54};

// Every row stands in exactly one array.
template <std::size_t N>
consteval bool covered(auto... arrays) {
  std::array<int, N> hits{};
  const auto count = [&hits](const auto& rows) {
    for (std::size_t row : rows) ++hits[row];
  };
  count(common_rows);
  (count(arrays), ...);
  for (int hit : hits)
    if (hit != 1) return false;
  return true;
}
static_assert(covered<n_1995>(alkanes, alkenes, cycloalkanes, aromatics, others));
static_assert(covered<n_2016>(alkanes_2016, alkenes, ring_compounds, others));

bool omitted(const FUNCTION_ARG* arg) noexcept {
  return arg == nullptr || arg->kind == ARG_MISSING || arg->kind == ARG_EMPTY ||
         (arg->kind == ARG_ARRAY && arg->count() == 0);
}

// One of the further arrays into its rows; an omitted one counts as zeros. The rows' argument is noted for messages.
template <std::size_t Rows, class Inputs, std::size_t N>
void place(Call& call, Inputs input, const std::array<std::size_t, Rows>& rows, std::array<double, N>& x) noexcept {
  if (omitted(call.argument(input))) return;
  const std::array<double, Rows> values = call.numbers<Rows>(input);
  for (std::size_t i = 0; i < Rows; ++i) x[rows[i]] = values[i];
}

template <class Inputs, std::size_t N>
void place_common(Call& call, std::array<double, N>& x) noexcept {
  const std::array<double, n_common> composition = call.numbers<n_common>(Inputs::composition);
  for (std::size_t i = 0; i < n_common; ++i) x[common_rows[i]] = composition[common_places[i]];
}

void warn_of_range(Call& call, const Range& range) noexcept {
  Function_CContext& context = call.context();
  if (!context.messages_enabled()) return;
  char16_t text[160];
  std::size_t length = 0;
  const auto append = [&](auto part) {
    for (auto unit : part)
      if (length < std::size(text)) text[length++] = static_cast<char16_t>(unit);
  };
  append(std::u16string_view{u"The gas is outside the range of application of the standard: "});
  if (range.first_outside == Range::compressibility) {
    append(std::u16string_view{u"compressibility factor not above "});
  } else {
    append(component_name(static_cast<std::size_t>(range.first_outside)));
    append(std::u16string_view{range.first_outside == 0 ? u" below " : u" above "});
  }
  char16_t digits[max_number_text + 1];
  append(std::u16string_view{digits, format_number(range.limit, digits)});
  context.ReportWarning(std::u16string_view{text, length});
}

// The outputs, or the status alone. A gas outside the range of application is a warning, never an error: a
// status of the call would make the context replace good numbers by fallback outputs.
std::uint32_t answer(Call& call, const Result& result) noexcept {
  if (result.status != Status::ok) return call.status_only(static_cast<int>(result.status));
  if (!result.range.ok()) warn_of_range(call, result.range);
  const Properties& gas = result.properties;
  call.set_integer(Out::status, 0);
  call.set(Out::sup_cal_value, gas.superior_volume);
  call.set(Out::density, gas.density);
  call.set(Out::compressibility, gas.compressibility);
  call.set(Out::rel_density, gas.relative_density);
  call.set(Out::molar_mass, gas.molar_mass);
  call.set(Out::sup_cal_val_mass, gas.superior_mass);
  call.set(Out::sup_cal_val_mole, gas.superior_molar);
  call.set(Out::inf_cal_value, gas.inferior_volume);
  call.set(Out::inf_cal_val_mass, gas.inferior_mass);
  call.set(Out::inf_cal_val_mole, gas.inferior_molar);
  call.set(Out::wobbe, gas.wobbe);
  call.set_integer(Out::oor, result.range.ok() ? 0 : 1);
  return call.done();
}

// calculate(x, options) is the edition's calculation for the gas x in the standard's order.
template <class Calculate>
std::uint32_t run_common(Call& call, Calculate calculate) noexcept {
  std::array<double, n_common> composition = call.numbers<n_common>(In::composition);
  const Options options = read_options<In>(call);
  if (call.failed()) return call.error();
  if (const std::uint32_t error = refuse_methods<In>(call, options); error != ERROR_OK) return error;
  if (const int status = normalise(composition); status != 0) return call.status_only(status);
  return answer(call, calculate(in_standard_order(composition), options));
}

template <class Inputs, std::size_t N, class Calculate>
std::uint32_t run_extended(Call& call, std::array<double, N>& x, Calculate calculate) noexcept {
  const Options options = read_options<Inputs>(call);
  if (call.failed()) return call.error();
  if (const std::uint32_t error = refuse_methods<Inputs>(call, options); error != ERROR_OK) return error;
  if (const int status = normalise(x); status != 0) return call.status_only(status);
  return answer(call, calculate(x, options));
}

std::uint32_t run_1995(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  return run_common(call, [](const std::array<double, n_common>& x, const Options& options) {
    return edition_1995(std::span(x), options.reference, options.molar_mass(), options.calorific());
  });
}

std::uint32_t run_2016(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  return run_common(call, [](const std::array<double, n_common>& x, const Options& options) {
    return edition_2016(std::span(x), options.reference, options.molar_mass());
  });
}

std::uint32_t run_1995_all(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  std::array<double, n_1995> x{};
  place_common<In55>(call, x);
  place(call, In55::alkanes, alkanes, x);
  place(call, In55::alkenes, alkenes, x);
  place(call, In55::cycloalkanes, cycloalkanes, x);
  place(call, In55::aromatics, aromatics, x);
  place(call, In55::others, others, x);
  return run_extended<In55>(call, x, [](const std::array<double, n_1995>& gas, const Options& options) {
    return edition_1995(std::span(gas), options.reference, options.molar_mass(), options.calorific());
  });
}

std::uint32_t run_2016_all(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  std::array<double, n_2016> x{};
  place_common<In60>(call, x);
  place(call, In60::alkanes, alkanes_2016, x);
  place(call, In60::alkenes, alkenes, x);
  place(call, In60::ring_compounds, ring_compounds, x);
  place(call, In60::others, others, x);
  return run_extended<In60>(call, x, [](const std::array<double, n_2016>& gas, const Options& options) {
    return edition_2016(std::span(gas), options.reference, options.molar_mass());
  });
}

// ---- Notes -------------------------------------------------------------------------------------------------------

#define NV_NOTES_1995                                                                                         \
  u"ISO 6976:1995, Natural gas - Calculation of calorific values, density, relative density and Wobbe index " \
  u"from composition; tables 1 to 5. R = 8.31451 J/(mol K), 101.325 kPa, dry air 28.9626 kg/kmol.\n"          \
  u"The definitive method divides molar values by the molar mass and the molar volume of the real gas; "      \
  u"the alternative method sums the standard's rounded values by mass and by volume. "                        \
  u"The last digit of those rounded values was derived from the molar ones.\n"

#define NV_NOTES_2016                                                                                           \
  u"ISO 6976:2016, Natural gas - Calculation of calorific values, density, relative density and Wobbe indices " \
  u"from composition; tables 1 to 3. R = 8.3144621 J/(mol K), 101.325 kPa, dry air 28.96546 kg/kmol.\n"         \
  u"The edition has one calculation method: both values of the method input give the same numbers. "            \
  u"Superior and inferior are its gross and net. Reference 7 is tabulated at 15.55 \u00B0C.\n"

#define NV_NOTES_COMPOSITION                                                                                      \
  u"The composition may be given in fractions or in percent and is normalised; "                                  \
  u"a sum outside 0.9999 to 1.0001 and 99.99 to 100.01 is a composition error, "                                  \
  u"a negative amount a calculation error.\n"                                                                     \
  u"Range status 1, with a warning and valid results: methane below 0.5, ethane above 0.15, nitrogen above 0.3, " \
  u"carbon dioxide above 0.15, or any other component above 0.05"

#define NV_NOTES_ARRAYS                                                                                            \
  u"The 22 common components stand in the composition (AGA-8 order plus neo-pentane), the rest of the standard's " \
  u"components in arrays of their own; an omitted array counts as zeros. All are normalised together.\n"

}  // namespace

const record::Function ISO6976_1995_M = {
    .group = GroupId::Math,
    .id = u"ISO6976_1995_M",
    .display = u"ISO-6976 (1995)",
    .description = u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (1995).",
    .category = u"Math",
    .subcategory = u"ISO",
    .keywords = u"metric,gas,iso",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_1995,
    .outputs = outputs,
    .implementation = run_1995,
    .notes = NV_NOTES_1995 NV_NOTES_COMPOSITION u".",
};

const record::Function ISO6976_2016_M = {
    .group = GroupId::Math,
    .id = u"ISO6976_2016_M",
    .display = u"ISO-6976 (2016)",
    .description = u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (2016).",
    .category = u"Math",
    .subcategory = u"ISO",
    .keywords = u"metric,gas,iso",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_2016,
    .outputs = outputs,
    .implementation = run_2016,
    .notes = NV_NOTES_2016 NV_NOTES_COMPOSITION u", or a compressibility factor of 0.9 or less.",
};

const record::Function ISO6976ex_1995_M = {
    .group = GroupId::Math,
    .id = u"ISO6976ex_1995_M",
    .display = u"ISO-6976 (1995) all 55 components",
    .description =
        u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (1995), "
        u"for all 55 components.",
    .category = u"Math",
    .subcategory = u"Math",
    .keywords = u"",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_55,
    .outputs = outputs,
    .implementation = run_1995_all,
    .notes = NV_NOTES_1995 NV_NOTES_ARRAYS NV_NOTES_COMPOSITION u".",
};

const record::Function ISO6976ex_2016_M = {
    .group = GroupId::Math,
    .id = u"ISO6976ex_2016_M",
    .display = u"ISO-6976 (2016) all 60 components",
    .description =
        u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (2016), "
        u"for all 60 components.",
    .category = u"Math",
    .subcategory = u"Math",
    .keywords = u"",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_60,
    .outputs = outputs,
    .implementation = run_2016_all,
    .notes = NV_NOTES_2016 NV_NOTES_ARRAYS NV_NOTES_COMPOSITION u", or a compressibility factor of 0.9 or less.",
};

}  // namespace norvane::functions
