// What the command says about units; their names are found in units/unit_names.h.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "units/unit_names.h"

namespace norvane::cli {

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
