// Units whose factors are kept although they are not the physical ones, because results in service depend on them.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "units/unit_codes.h"

namespace norvane {

struct Unit_COddity {
  std::uint32_t code;
  double physical;  // the factor it would have, base units in one unit
};

std::span<const Unit_COddity> unit_oddities() noexcept;

// What is to be known before a number in this unit is converted: "1 in3 counts as 16387060 m3, but is 1.6387064e-05 m3
// (the factor is kept ...)"; empty for most units.
std::u16string unit_warning(std::uint32_t code);

// The same of a conversion between two units of one quantity, which may be right although both are odd (kg/kmol to
// lb/lbmol); empty when it is.
std::u16string conversion_warning(std::uint32_t from, std::uint32_t to);

}  // namespace norvane
