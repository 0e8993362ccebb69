// ISO6976_1983_M, ISO6976_1995_M, ISO6976_2016_M, ISO6976ex_1995_M, ISO6976ex_2016_M: calorific values, density,
// relative density and Wobbe index by ISO 6976.
#include <algorithm>
#include <array>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/gas_records.h"
#include "math/gas/iso6976.h"
#include "math/gas/iso6976_1995_table.h"
#include "math/gas/iso6976_2016_table.h"

namespace norvane::functions {

extern const record::Function ISO6976_1983_M, ISO6976_1995_M, ISO6976_2016_M, ISO6976ex_1995_M, ISO6976ex_2016_M;

namespace {

using namespace ISO6976;
using record::input;
using record::Misfit;
using record::output;

// clang-format off
constexpr record::Output outputs[] = {
    record::status_output(record::calorific_statuses),
    out<&Delivered::properties, &Properties::superior_volume>(output(u"sup cal value", u"Sup. Calorific Val.", u"Real superior calorific value on volume basis at the reference conditions of temperature and " u"pressure.", unit::MJ_m3, u"SCV")),
    out<&Delivered::properties, &Properties::density>(output(u"density", u"Density", u"Density at the reference conditions of temperature and pressure.", unit::kg_m3, u"DENS")),
    out<&Delivered::properties, &Properties::compressibility>(output(u"compressibility", u"Compressibility", u"", data_type::num, u"Z")),
    out<&Delivered::properties, &Properties::relative_density>(output(u"rel density", u"Relative Density", u"", data_type::num, u"RD")),
    out<&Delivered::properties, &Properties::molar_mass>(output(u"molar mass", u"Molar Mass", u"", unit::kg_kmol, u"MM")),
    out<&Delivered::properties, &Properties::superior_mass>(output(u"sup cal val mass", u"Sup. Calorific Val.", u"Real superior calorific value on mass basis at the reference conditions of temperature and " u"pressure (mass).", unit::MJ_kg, u"SCV_MASS")),
    out<&Delivered::properties, &Properties::superior_molar>(output(u"sup cal val mole", u"Sup. Calorific Val.", u"Real superior calorific value on mass basis at the reference conditions of temperature and " u"pressure (molecular).", unit::MJ_kmol, u"SVC_MOLE")),
    out<&Delivered::properties, &Properties::inferior_volume>(output(u"inf cal value", u"Inf. Calorific Val.", u"Real inferior calorific value on volume basis at the reference conditions of temperature and " u"pressure (volume).", unit::MJ_m3, u"ICV")),
    out<&Delivered::properties, &Properties::inferior_mass>(output(u"inf cal val mass", u"Inf. Calorific Val.", u"Real inferior calorific value on volume basis at the reference conditions of temperature and " u"pressure (mass).", unit::MJ_kg, u"ICV_MASS")),
    out<&Delivered::properties, &Properties::inferior_molar>(output(u"inf cal val mole", u"Inf. Calorific Val.", u"Real inferior calorific value on volume basis at the reference conditions of temperature and " u"pressure (molecular).", unit::MJ_kmol, u"ICV_MOLE")),
    out<&Delivered::properties, &Properties::wobbe>(output(u"wobbe", u"Wobbe Index", u"", unit::MJ_m3, u"WOBBE")),
    out<&Delivered::out_of_range>(output(u"oor", u"RangeStatus", u"", enumeration::rangestatus, u"OOR")),
};

// Temperatures of combustion, metering and reference; the last is the 2016 edition's alone.
constexpr record::Option references[] = {
    {1, u"15 / 15 / 15 \u00B0C"}, {2, u"0 / 0 / 0 \u00B0C"},    {3, u"15 / 0 / 0 \u00B0C"},     {4, u"25 / 0 / 0 \u00B0C"},
    {5, u"20 / 20 / 20 \u00B0C"}, {6, u"25 / 20 / 20 \u00B0C"}, {7, u"60 F / 60 F / 60 \u00B0F"},
};
constexpr std::span<const record::Option> references_1995(references, 6), references_2016(references);
constexpr record::Option molar_mass_methods[] = {{1, u"Calculate"}, {2, u"Use table"}};
constexpr record::Option methods[] = {{1, u"Definitive"}, {2, u"Alternative"}};

template <class Gas>
constexpr std::array<record::Input, 3> options(std::span<const record::Option> references_of_edition) {
  return {
      in<&Gas::options, &Options::reference>(
          input(u"ref temp", u"Ref. Temperature", u"Reference temperature (combustion / metering / ref-temp).", data_type::integer)
              .options(references_of_edition).otherwise(1).unless(Misfit::pass)),
      in<&Gas::options, &Options::molar_mass>(
          input(u"molar mass method", u"Molar Mass Method", u"Method used for calcuting the molar mass.", data_type::integer)
              .options(molar_mass_methods).otherwise(1).unless(Misfit::refuse)),
      in<&Gas::options, &Options::calorific>(
          input(u"cv method", u"Calorific Val. Method", u"Calorific value calculation method.", data_type::integer)
              .options(methods).otherwise(1).unless(Misfit::refuse)),
  };
}

template <class Gas>
constexpr std::array<record::Input, 2> leading = {
    record::name_input(),
    in<&Gas::composition>(record::composition_input()),
};

// A list of rarer components, which counts as zeros when it is left out.
constexpr record::Input further(std::u16string_view key, std::u16string_view display, std::u16string_view description) {
  return input(key, display, description, data_type::num).range().left_out_as_zeros();
}

template <class Gas>
constexpr record::Input alkenes = in<&Gas::alkenes>(further(u"alkenes", u"Alkenes",
        u"Gas composition, alkenes (array of 11 numbers: ethylene, propylene, 1-butene, cis-2-butene, trans-2-butene, 2-methylpropene, 1-pentene, propadiene, 1,2-butadiene, 1,3-butadiene, acetylene)."));
template <class Gas>
constexpr record::Input others = in<&Gas::others>(further(u"others", u"Other Components",
        u"Gas composition, other components (array of 8 numbers: methanol, methanethiol, ammonia, hydrogen cyanide, carbonyl sulfide, carbon disulfide, neon, sulfur dioxide)."));

constexpr auto inputs_1995 = join(leading<Gas22>, options<Gas22>(references_1995));
constexpr auto inputs_2016 = join(leading<Gas22>, options<Gas22>(references_2016));

constexpr std::array<record::Input, 5> further_55 = {
    in<&Gas55::alkanes>(further(u"alkanes", u"Alkanes",
        u"Gas composition, alkanes (array of 4 numbers: 2-methylpentane, 3-methylpentane, 2,2-dimethylbutane, 2,3-dimethylbutane).")),
    alkenes<Gas55>,
    in<&Gas55::cycloalkanes>(further(u"cycloalkanes", u"Cycloalkanes",
        u"Gas composition, cycloalkanes (array of 6 numbers: cyclopentane, methylcyclopentane, ethylcyclopentane, cyclohexane, methylcyclohexane, ethylcyclohexane).")),
    in<&Gas55::aromatics>(further(u"aromatics", u"Aromatics",
        u"Gas composition, aromatics (array of 4 numbers: benzene, toluene, ethylbenzene, o-xylene).")),
    others<Gas55>,
};
constexpr auto inputs_55 = join(leading<Gas55>, further_55, options<Gas55>(references_1995));

constexpr std::array<record::Input, 4> further_60 = {
    in<&Gas60::alkanes>(further(u"alkanes", u"Alkanes",
        u"Gas composition, alkanes (array of 9 numbers: 2-methylpentane, 3-methylpentane, 2,2-dimethylbutane, 2,3-dimethylbutane, n-undecane, n-dodecane, n-tridecane, n-tetradecane, n-pentadecane).")),
    alkenes<Gas60>,
    in<&Gas60::ring_compounds>(further(u"ring compounds", u"Ring Compounds",
        u"Gas composition, ring compounds (array of 10 numbers: cyclopentane, methylcyclopentane, ethylcyclopentane, cyclohexane, methylcyclohexane, ethylcyclohexane, benzene, toluene, ethylbenzene, o-xylene).")),
    others<Gas60>,
};
constexpr auto inputs_60 = join(leading<Gas60>, further_60, options<Gas60>(references_2016));
// clang-format on

// The first edition has no choice of a calculation and no more than the properties by volume.
constexpr auto inputs_1983 = [] {
  std::array<record::Input, 4> lines{};
  std::copy_n(inputs_1995.begin(), lines.size(), lines.begin());
  return lines;
}();
constexpr std::span<const record::Output> outputs_1983(outputs, 6);

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

constexpr const CoefficientSet* tables_1995[] = {&ISO6976::edition1995::coefficient_set};

constexpr const CoefficientSet* tables_2016[] = {&ISO6976::edition2016::coefficient_set};

}  // namespace

const record::Function ISO6976_1983_M = {
    .id = u"ISO6976_1983_M",
    .display = u"ISO-6976 (1983)",
    .description = u"Gas Calorific Value, Density and Relative Density according to ISO-6976 (1983).",
    .subcategory = u"ISO",
    .keywords = u"metric,gas,iso",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_1983,
    .outputs = outputs_1983,
    .binding = &bound<of_1983>,
    .notes =
        u"ISO 6976:1983. The tables of this edition are not part of this build: the answer is status 2. The inputs "
        u"and outputs are those of the edition of 1995 and provisional.",
};

const record::Function ISO6976_1995_M = {
    .id = u"ISO6976_1995_M",
    .display = u"ISO-6976 (1995)",
    .description = u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (1995).",
    .subcategory = u"ISO",
    .keywords = u"metric,gas,iso",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_1995,
    .outputs = outputs,
    .binding = &bound<of_1995>,
    .coefficients = tables_1995,
    .notes = NV_NOTES_1995 NV_NOTES_COMPOSITION u".",
};

const record::Function ISO6976_2016_M = {
    .id = u"ISO6976_2016_M",
    .display = u"ISO-6976 (2016)",
    .description = u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (2016).",
    .subcategory = u"ISO",
    .keywords = u"metric,gas,iso",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_2016,
    .outputs = outputs,
    .binding = &bound<of_2016>,
    .coefficients = tables_2016,
    .notes = NV_NOTES_2016 NV_NOTES_COMPOSITION u", or a compressibility factor of 0.9 or less.",
};

const record::Function ISO6976ex_1995_M = {
    .id = u"ISO6976ex_1995_M",
    .display = u"ISO-6976 (1995) all 55 components",
    .description =
        u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (1995), "
        u"for all 55 components.",
    .subcategory = u"Math",
    .keywords = u"",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs_55,
    .outputs = outputs,
    .binding = &bound<of_1995_all>,
    .coefficients = tables_1995,
    .notes = NV_NOTES_1995 NV_NOTES_ARRAYS NV_NOTES_COMPOSITION u".",
};

const record::Function ISO6976ex_2016_M = {
    .id = u"ISO6976ex_2016_M",
    .display = u"ISO-6976 (2016) all 60 components",
    .description =
        u"Gas Calorific Value, Density, Relative Density and Wobbe Index according to ISO-6976 (2016), "
        u"for all 60 components.",
    .subcategory = u"Math",
    .keywords = u"",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs_60,
    .outputs = outputs,
    .binding = &bound<of_2016_all>,
    .coefficients = tables_2016,
    .notes = NV_NOTES_2016 NV_NOTES_ARRAYS NV_NOTES_COMPOSITION u", or a compressibility factor of 0.9 or less.",
};

}  // namespace norvane::functions
