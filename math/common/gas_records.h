// Lines that the records of the gas functions share.
#pragma once

#include <span>

#include "framework/records.h"

namespace norvane::record {

// Status lists of the gas functions.
inline constexpr std::span<const StatusValue> statuses_with_composition{status_values, 4};
inline constexpr std::span<const StatusValue> statuses_without_convergence{status_values, 2};
// Calorific functions: there is no iteration, and 3 is the composition.
inline constexpr StatusValue calorific_statuses[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"COMPERR", u"composition error"},
};

// The 22 amounts of a gas, in the order of math/common/components.h.
constexpr Input composition_input() {
  Input line = input(u"composition", u"Composition",
                     u"Gas composition (array of 22 numbers; sum of all numbers must be 1).", data_type::num)
                   .range();
  line.composition = true;
  return line;
}

// Where neo-pentane goes, which most gas equations do not know.
constexpr Input neo_pentane_input() {
  return input(u"neo-c5 mode", u"neo-Pentane Mode",
               u"Determines what to do when component neo-Pentane (C5) is larger than 0.", enumeration::compneoc5mode)
      .within(1, 3)
      .otherwise(1);
}

}  // namespace norvane::record
