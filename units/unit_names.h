// Units by the names people type: the catalogue's keys ("bar_a"), symbols ("bar(a)"), and the spellings of daily life
// ("bara", "kg/h", "C"). Names are UTF-8.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "units/unit_catalogue.h"

namespace norvane {

// Every unit of the catalogue, in its order.
const std::vector<const Unit_CEntry*>& all_units();

// Every unit that the text may name, best match first: by key, by symbol, by symbol in any case, by another spelling.
// Case never tells milli from mega: "mJ" is no "MJ".
std::vector<const Unit_CEntry*> units_named(std::string_view text);

// True for a unit of gauge pressure and one of absolute pressure: the pressure of the atmosphere lies between them.
bool is_gauge_and_absolute(std::uint32_t a, std::uint32_t b) noexcept;

// The scale of mole fractions under a heading: 1 for "mol/mol", 0.01 for "%" and "mol%", 1e-6 for "ppm"; 0 for a text
// that says none of these.
double fraction_scale(std::string_view text);

}  // namespace norvane
