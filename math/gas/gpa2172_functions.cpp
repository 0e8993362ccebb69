// GPA2172_M, GPA2172_C, GPA2172_96_M, GPA2172_96_C: heating values, relative density and compressibility by GPA 2172.
#include "math/gas/gpa2172.h"

#include <array>
#include <cstddef>
#include <iterator>

#include "framework/call.h"
#include "framework/records.h"

namespace norvane::functions {

extern const record::Function GPA2172_M, GPA2172_C, GPA2172_96_M, GPA2172_96_C;

namespace {

using namespace GPA2172;

constexpr record::StatusValue statuses[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"COMPERR", u"composition error"},
};

enum class In : std::size_t { Name, composition, edition, neo_c5_mode, count };

// clang-format off
constexpr record::Input composition_input =
    record::input(u"composition", u"Composition",
                  u"Gas composition (array of 22 numbers; sum of all numbers must be 1).", data_type::num).range();

constexpr record::Input edition_metric =
    record::input(u"edition", u"GPA-2145 Edition",
                  u"Base conditions (15\u00B0C, 1.01325 bar(a)) and editions of the GPA-2145 values. Note that these "
                  u"base conditions are used for both the density and the heating value.; 1: 2000; 2: 2003; 3: 2009; "
                  u"4: 2016", data_type::integer).within(1, 4).otherwise(2);

constexpr record::Input edition_customary =
    edition_metric.described(
                  u"Base conditions (60\u00B0F, 14.696 psi(a)) and editions of the GPA-2145 values. Note that these "
                  u"base conditions are used for both the density and the heating value.; 1: 2000; 2: 2003; 3: 2009; "
                  u"4: 2016");

constexpr record::Input neo_c5_mode =
    record::input(u"neo-c5 mode", u"neo-Pentane Mode",
                  u"Determines what to do when component neo-Pentane (C5) is larger than 0.",
                  enumeration::compneoc5mode).within(1, 3).otherwise(2);

constexpr record::Input inputs_metric[] = {
    record::name_input(), composition_input, edition_metric, neo_c5_mode,
};
constexpr record::Input inputs_customary[] = {
    record::name_input(), composition_input, edition_customary, neo_c5_mode,
};
static_assert(std::size(inputs_metric) == static_cast<std::size_t>(In::count));
static_assert(std::size(inputs_customary) == static_cast<std::size_t>(In::count));

constexpr std::size_t n_outputs = 22, n_basis = 7;

// The status, then seven values of the wet, the dry and the saturated gas.
constexpr std::array<record::Output, n_outputs> outputs(std::uint32_t volume, std::uint32_t molar, std::uint32_t mass) {
  return {{
      record::status_output(statuses),
      record::output(u"wet ghv vol",    u"Wet GHV",              u"Wet gross heating value (volume).",       volume,         u"VOLGHV_WET"),
      record::output(u"wet molar mass", u"Wet Molar Mass",       u"Wet molecular mass.",                     molar,          u"MOLMASS_WET"),
      record::output(u"wet ideal sg",   u"Wet Ideal Spec. Grav.", u"Wet ideal specific gravity.",            data_type::num, u"ISG_WET"),
      record::output(u"wet real rd",    u"Wet Real Rel. Dens.",  u"Wet real relative density.",              data_type::num, u"RRD_WET"),
      record::output(u"wet compr",      u"Wet Compressibility",  u"Wet compressibility factor.",             data_type::num, u"Z_WET"),
      record::output(u"wet ghv mass",   u"Wet GHV",              u"Wet gross heating value (mass).",         mass,           u"MASGHV_WET"),
      record::output(u"wet nhv",        u"Wet NHV",              u"Wet net heating value (volume).",         volume,         u"VOLNHV_WET"),
      record::output(u"dry ghv vol",    u"Dry GHV",              u"Dry gross heating value (volume).",       volume,         u"VOLGHV_DRY"),
      record::output(u"dry molar mass", u"Dry Molar Mass",       u"Dry molecular mass.",                     molar,          u"MOLMASS_DRY"),
      record::output(u"dry ideal sg",   u"Dry Ideal Spec. Grav.", u"Dry ideal specific gravity.",            data_type::num, u"ISG_DRY"),
      record::output(u"dry real rd",    u"Dry Real Rel. Dens.",  u"Dry real relative density.",              data_type::num, u"RRD_DRY"),
      record::output(u"dry compr",      u"Dry Compressibility",  u"Dry compressibility factor.",             data_type::num, u"Z_DRY"),
      record::output(u"dry ghv mass",   u"Dry GHV",              u"Dry gross heating value (mass).",         mass,           u"MASGHV_DRY"),
      record::output(u"dry nhv",        u"Dry NHV",              u"Dry net heating value (volume).",         volume,         u"VOLNHV_DRY"),
      record::output(u"sat ghv vol",    u"Sat. GHV",             u"Saturated gross heating value (volume).", volume,         u"VOLGHV_SAT"),
      record::output(u"sat molar mass", u"Sat. Molar Mass",      u"Saturated molecular mass.",               molar,          u"MOLMASS_SAT"),
      record::output(u"sat ideal sg",   u"Sat. Ideal Spec. Grav.", u"Saturated ideal specific gravity.",     data_type::num, u"ISG_SAT"),
      record::output(u"sat real rd",    u"Sat. Real Rel. Dens.", u"Saturated real relative density.",        data_type::num, u"RRD_SAT"),
      record::output(u"sat compr",      u"Sat. Compressibility", u"Saturated compressibility factor.",       data_type::num, u"Z_SAT"),
      record::output(u"sat ghv mass",   u"Sat. GHV",             u"Saturated gross heating value (mass).",   mass,           u"MASGHV_SAT"),
      record::output(u"sat nhv",        u"Sat. NHV",             u"Saturated net heating value (volume).",   volume,         u"VOLNHV_SAT"),
  }};
}
// clang-format on

constexpr auto outputs_metric = outputs(unit::MJ_m3, unit::kg_kmol, unit::MJ_kg);
constexpr auto outputs_customary = outputs(unit::Btu_scf, unit::lb_lbmol, unit::Btu_lbm);

void write(Call& call, std::size_t first, const Basis& basis) noexcept {
  const double values[n_basis] = {
      basis.gross_volume,
      basis.molar_mass,
      basis.ideal_relative_density,
      basis.real_relative_density,
      basis.compressibility,
      basis.gross_mass,
      basis.net_volume,
  };
  for (std::size_t i = 0; i < n_basis; ++i) call.set(first + i, values[i]);
}

template <Units units>
std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const std::array<double, n_fractions> fractions = call.numbers<n_fractions>(In::composition);
  const int edition = call.option(In::edition);
  const int mode = call.option(In::neo_c5_mode);
  if (call.failed()) return call.error();

  const Result result = calculate(fractions, units, edition, static_cast<NeoPentane>(mode));
  if (result.status != Status::ok) return call.status_only(static_cast<int>(result.status));
  call.set_integer(0, 0);
  write(call, 1, result.wet);
  write(call, 1 + n_basis, result.dry);
  write(call, 1 + 2 * n_basis, result.saturated);
  return call.done();
}

constexpr std::u16string_view notes =
    u"GPA Standard 2172, Calculation of gross heating value, relative density, compressibility "
    u"and theoretical hydrocarbon liquid content for natural gas mixtures, with the component properties "
    u"of GPA Standard 2145. The edition selects the component table and the summation factor of air; "
    u"the metric tables of 2000 and 2003 are one, and the tables of 2009 are those of 2016.\n"
    u"Wet is the gas as analysed, dry the gas without its water, saturated the dry gas saturated with water at base "
    u"conditions. Water enters with its own row: a net value of 0, a gross value of its heat of condensation.\n"
    u"The gross heating value by mass is the mole fraction-weighted sum of the components' values by mass, "
    u"not the mass-weighted mean: it is exact for a pure gas and differs by 2 to 4 % for ordinary mixtures. "
    u"Divide the ideal gross value by volume by the ideal gas density where the physical value is wanted.\n"
    u"The 22 fractions must sum to 1 within 0.0001 (status 3 otherwise, also for percent); "
    u"an edition or a neo-pentane mode outside its list is status 1, a negative fraction or a gas of nothing "
    u"but water status 2. Edition 2 and neo-pentane mode 2 are the defaults.";

constexpr std::u16string_view notes_1996 =
    u"GPA Standard 2172-96, Calculation of gross heating value, relative density and compressibility factor for "
    u"natural gas mixtures from compositional analysis: the same calculation and tables as GPA2172_M and GPA2172_C.\n"
    u"The gross heating value by mass is the mole fraction-weighted sum of the components' values by mass, "
    u"not the mass-weighted mean.";

}  // namespace

const record::Function GPA2172_M = {
    .group = GroupId::Math,
    .id = u"GPA2172_M",
    .display = u"GPA-2172",
    .description = u"Gas Compressibility according to GPA-2172.",
    .category = u"Math",
    .subcategory = u"GPA",
    .keywords = u"metric,gas,gpa",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .implementation = run<Units::metric>,
    .notes = notes,
};

const record::Function GPA2172_C = {
    .group = GroupId::Math,
    .id = u"GPA2172_C",
    .display = u"GPA-2172",
    .description = u"Gas Compressibility according to GPA-2172.",
    .category = u"Math",
    .subcategory = u"GPA",
    .keywords = u"customary,gas,gpa",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_customary,
    .outputs = outputs_customary,
    .implementation = run<Units::customary>,
    .notes = notes,
};

const record::Function GPA2172_96_M = {
    .group = GroupId::Math,
    .id = u"GPA2172_96_M",
    .display = u"GPA-2172 (1996)",
    .description = u"Gas Compressibility according to GPA-2172 (1996).",
    .category = u"Math",
    .subcategory = u"Math",
    .keywords = u"",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_metric,
    .outputs = outputs_metric,
    .implementation = run<Units::metric>,
    .notes = notes_1996,
};

const record::Function GPA2172_96_C = {
    .group = GroupId::Math,
    .id = u"GPA2172_96_C",
    .display = u"GPA-2172 (1996)",
    .description = u"Gas Compressibility according to GPA-2172 (1996).",
    .category = u"Math",
    .subcategory = u"Math",
    .keywords = u"",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_customary,
    .outputs = outputs_customary,
    .implementation = run<Units::customary>,
    .notes = notes_1996,
};

}  // namespace norvane::functions
