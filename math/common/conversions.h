// Conversions between a record's unit and the unit of a calculation, for `through`.
#pragma once

#include "framework/records.h"

namespace norvane::conversion {

// Units that are not the calculation's, each in what it is converted into. The factors are those that the function's
// standard works with, not always the unit catalogue's.
inline constexpr record::Conversion bar_to_MPa{[](double bar) noexcept { return bar / 10.0; },
                                               [](double MPa) noexcept { return MPa * 10.0; }};
inline constexpr record::Conversion psi_to_MPa{[](double psi) noexcept { return psi * 0.0689476 / 10.0; },
                                               [](double MPa) noexcept { return MPa * 10.0 / 0.0689476; }};
// lb/ft3 in kg/m3, and lbmol/ft3 in kmol/m3.
inline constexpr record::Conversion lb_ft3_to_kg_m3{[](double density) noexcept { return density * 16.01846337; },
                                                    [](double density) noexcept { return density / 16.01846337; }};
inline constexpr record::Conversion degF_to_degC{[](double F) noexcept { return (F - 32.0) / 1.8; },
                                                 [](double C) noexcept { return C * 1.8 + 32.0; }};
inline constexpr record::Conversion degC_to_K{[](double C) noexcept { return C + 273.15; },
                                              [](double K) noexcept { return K - 273.15; }};
inline constexpr record::Conversion degF_to_K{[](double F) noexcept { return (F - 32.0) / 1.8 + 273.15; },
                                              [](double K) noexcept { return (K - 273.15) * 1.8 + 32.0; }};
inline constexpr record::Conversion Pa_s_to_mPa_s{[](double Pa_s) noexcept { return Pa_s * 1000.0; },
                                                  [](double mPa_s) noexcept { return mPa_s / 1000.0; }};

}  // namespace norvane::conversion
