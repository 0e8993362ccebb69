// Units by the names people type: the catalogue's keys ("bar_a") and symbols ("bar(a)").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "units/unit_catalogue.h"

namespace norvane::cli {

// Every unit that the text may name, best match first: by key, by symbol, by symbol in any case.
std::vector<const Unit_CEntry*> units_named(const Unit_CTypeAndUnitContainer& units, std::string_view text);

// "; did you mean ..." for a text that names no unit.
std::string unit_suggestion(const Unit_CTypeAndUnitContainer& units, std::string_view text);

// "bar(a)" and "absolutepressure": symbol of a unit code, display name of its quantity.
std::string symbol_of(const Unit_CTypeAndUnitContainer& units, std::uint32_t code);
std::string quantity_of(const Unit_CTypeAndUnitContainer& units, std::uint32_t unit);

// The unit of the quantity of `wanted` that the text names. Throws UsageError, which begins with `what` and
// tells the quantity of what was given, when the text names no unit or only units of other quantities.
std::uint32_t unit_like(const Unit_CTypeAndUnitContainer& units, std::string_view text, std::uint32_t wanted,
                        const std::string& what);

}  // namespace norvane::cli
