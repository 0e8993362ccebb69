// Lines that the records of the 1980 tables share with those of the composites built on them.
#pragma once

#include <array>

#include "framework/binding.h"
#include "math/liquid/api_11_1_1980.h"
#include "math/liquid/liquid_records.h"

namespace norvane::API_11_1_1980 {

inline constexpr const record::Conversion& of_gravity = liquid::gravity_to_density<liquid::water_1980>;
inline constexpr const record::Conversion& of_relative = liquid::relative_to_density<liquid::water_1980>;

inline constexpr record::Option roundings[] = {
    {0, u"Disabled"}, {1, u"Enabled"}, {2, u"Enabled (table values)"}, {3, u"Enabled (5 decimal places)"}};
constexpr record::Input rounding_input() {
  return record::input(u"api rnd", u"API Rounding",
                       u"API rounding and truncating; other than disabled is refused, see the notes.",
                       data_type::integer)
      .options(roundings)
      .otherwise(0);
}

constexpr std::array<record::Output, 4> constant_outputs(const liquid::Units& units) {
  return {out<&Correction::k, &liquid::Constants::k0>(liquid::k0_output()),
          out<&Correction::k, &liquid::Constants::k1>(liquid::k1_output()),
          out<&Correction::k, &liquid::Constants::k2>(liquid::k2_output()),
          out<&Correction::alpha>(liquid::alpha_output(units))};
}

constexpr record::Output extended_range_output(std::u16string_view key) {
  return record::output(key, u"Range Status CTL", u"Base value and temperature against the extent of the table.",
                        enumeration::rangestatus2, u"OORCTL");
}

// clang-format off
#define NV_NOTES_1980 \
  u"Full precision: the stepwise rounding and truncating of the printed tables is not part of this build, as no " \
  u"printed value was at hand to prove it; a rounding other than 'Disabled' is refused with status 1.\n" \
  u"'Refined, auto' takes its constants by the base value: fuel oil up to 37.0, jet fuel below 48.0, transition zone " \
  u"up to 52.0 \u00B0API, else gasoline; at 15 \u00B0C gasoline below 770.355, transition zone up to 787.522, jet fuel " \
  u"below 838.933 kg/m3, else fuel oil. CTL jumps there by 3e-5 (jet fuel to fuel oil) and 4e-6 at most from 10 to " \
  u"170 \u00B0F.\n" \
  u"Range status: in range from 0 \u00B0API to 100 (crude oil) or 85 (refined products) and 0 \u00B0F to 250 " \
  u"(up to 40 \u00B0API), 200 (up to 50) or 150 \u00B0F; extended for the 50 \u00B0F beyond. The metric tables have the " \
  u"same limits, refined products 653 to 1075 kg/m3. Lubricating oil: 800 to 1164 kg/m3, -20 to 150 \u00B0C. The limits " \
  u"of crude and of lubricating oil could not be checked against the print. The calculation is carried out all the same.\n" \
  u"Water at 60 \u00B0F is 999.012 kg/m3.\n"
// clang-format on

}  // namespace norvane::API_11_1_1980
