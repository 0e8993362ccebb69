// The 22 components of a natural gas, in the order in which every composition of the catalogue is given: the 21 of
// AGA Report No. 8, ISO 12213-2 and ISO 20765 in the order of AGA-8, and neo-pentane.
//
// Molar masses and other properties stand with each standard: no two editions agree on them.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace norvane::component {

enum Index : std::size_t {
  methane,
  nitrogen,
  carbon_dioxide,
  ethane,
  propane,
  water,
  hydrogen_sulfide,
  hydrogen,
  carbon_monoxide,
  oxygen,
  i_butane,
  n_butane,
  i_pentane,
  n_pentane,
  n_hexane,
  n_heptane,
  n_octane,
  n_nonane,
  n_decane,
  helium,
  argon,
  neo_pentane
};
inline constexpr std::size_t count = 22;

struct Component {
  std::string_view name;
  std::string_view formula;
  // What laboratories, chromatographs and other standards write instead; blanks, hyphens, underscores and case count
  // for nothing where a name is looked up. The first is the short form, such as "nC4".
  std::array<std::string_view, 4> synonyms{};
};

// clang-format off
inline constexpr std::array<Component, count> table = {{
    {"methane",          "CH4",    {"C1"}},
    {"nitrogen",         "N2",     {}},
    {"carbon dioxide",   "CO2",    {}},
    {"ethane",           "C2H6",   {"C2"}},
    {"propane",          "C3H8",   {"C3"}},
    {"water",            "H2O",    {"water vapour", "water vapor"}},
    {"hydrogen sulfide", "H2S",    {"hydrogen sulphide"}},
    {"hydrogen",         "H2",     {}},
    {"carbon monoxide",  "CO",     {}},
    {"oxygen",           "O2",     {}},
    {"i-butane",         "i-C4H10", {"iC4", "isobutane", "2-methylpropane"}},
    {"n-butane",         "n-C4H10", {"nC4", "butane"}},
    {"i-pentane",        "i-C5H12", {"iC5", "isopentane", "2-methylbutane"}},
    {"n-pentane",        "n-C5H12", {"nC5", "pentane"}},
    {"n-hexane",         "C6H14",  {"nC6", "C6", "hexane"}},
    {"n-heptane",        "C7H16",  {"nC7", "C7", "heptane"}},
    {"n-octane",         "C8H18",  {"nC8", "C8", "octane"}},
    {"n-nonane",         "C9H20",  {"nC9", "C9", "nonane"}},
    {"n-decane",         "C10H22", {"nC10", "C10", "decane"}},
    {"helium",           "He",     {}},
    {"argon",            "Ar",     {}},
    {"neo-pentane",      "neo-C5H12", {"neoC5", "2,2-dimethylpropane"}},
}};
// clang-format on
static_assert(neo_pentane + 1 == count && table[neo_pentane].name == "neo-pentane" && table[helium].name == "helium");

}  // namespace norvane::component
