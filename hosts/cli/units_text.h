// Units by the names people type: the catalogue's keys ("bar_a"), symbols ("bar(a)"), and the spellings of daily life
// ("bara", "kg/h", "C").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "units/unit_catalogue.h"

namespace norvane::cli {

// Every unit of the catalogue, in its order.
const std::vector<const Unit_CEntry*>& all_units();

// Every unit that the text may name, best match first: by key, by symbol, by symbol in any case, by another spelling.
// Case never tells milli from mega: "mJ" is no "MJ".
std::vector<const Unit_CEntry*> units_named(std::string_view text);

// "; did you mean ..." for a text that names no unit.
std::string unit_suggestion(std::string_view text);

// "bar(a)" and "absolutepressure": symbol of a unit code, display name of its quantity.
std::string symbol_of(std::uint32_t code);
std::string quantity_of(std::uint32_t unit);

// What is worth a remark about a unit, empty for most.
std::string unit_note(const Unit_CEntry& unit);

// The unit of the quantity of `wanted` that the text names, 0 when it names none. Remembers what it has found.
std::uint32_t known_unit(std::string_view text, std::uint32_t wanted, bool gauge_and_absolute);

// The unit of the quantity of `wanted` that the text names; with `gauge_and_absolute` the gauge or absolute unit of
// the other kind will do too. Throws UsageError, which begins with `what` and tells the quantity of what was given,
// when the text names no unit or only units of other quantities.
std::uint32_t unit_like(std::string_view text, std::uint32_t wanted, bool gauge_and_absolute,
                        const std::string& what);

}  // namespace norvane::cli
