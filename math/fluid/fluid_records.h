// Lines that the records of the pure fluids share.
#pragma once

#include <cstdint>

#include "framework/binding.h"
#include "math/common/conversions.h"

namespace norvane::fluid_records {

// What a line is in: its unit, and the conversion into the calculation's unit when that is another.
struct Quantity {
  std::uint32_t unit;
  const record::Conversion* conversion = nullptr;
};

struct UnitSet {
  Quantity pressure, temperature, density, energy, heat_capacity, velocity, viscosity;
};

inline constexpr record::Conversion Btu_lbm_to_kJ_kg{[](double Btu_lbm) noexcept { return Btu_lbm * 2.326; },
                                                     [](double kJ_kg) noexcept { return kJ_kg / 2.326; }};
inline constexpr record::Conversion Btu_lbm_degF_to_kJ_kg_K{[](double Btu) noexcept { return Btu * 4.1868; },
                                                            [](double kJ) noexcept { return kJ / 4.1868; }};
inline constexpr record::Conversion ft_s_to_m_s{[](double ft_s) noexcept { return ft_s * 0.3048; },
                                                [](double m_s) noexcept { return m_s / 0.3048; }};
inline constexpr record::Conversion lbm_ft_s_to_Pa_s{
    [](double lbm_ft_s) noexcept { return lbm_ft_s * 1.48816394356955; },
    [](double Pa_s) noexcept { return Pa_s / 1.48816394356955; }};

// The unit catalogue has no quantity for specific entropy; the heat capacity has the same dimension.
inline constexpr UnitSet metric{{unit::bar_a, &conversion::bar_to_MPa},
                                {unit::degC, &conversion::degC_to_K},
                                {unit::kg_m3},
                                {unit::kJ_kg},
                                {unit::kJ_kg_degC},
                                {unit::m_s},
                                {unit::Pa_s}};
inline constexpr UnitSet customary{{unit::psia, &conversion::psi_to_MPa},
                                   {unit::degF, &conversion::degF_to_K},
                                   {unit::lb_ft3, &conversion::lb_ft3_to_kg_m3},
                                   {unit::Btu_lbm, &Btu_lbm_to_kJ_kg},
                                   {unit::Btu_lbm_degF, &Btu_lbm_degF_to_kJ_kg_K},
                                   {unit::ft_s, &ft_s_to_m_s},
                                   {unit::lbm_ft_s, &lbm_ft_s_to_Pa_s}};

// The limits and the default of an input, in its unit.
struct Limits {
  double low, high, otherwise;
};

template <auto member>
constexpr record::Input pressure(const UnitSet& units, const Limits& limits) {
  record::Input line = record::input(u"pressure", u"Pressure", u"Observed pressure.", units.pressure.unit)
                           .within(limits.low, limits.high)
                           .otherwise(limits.otherwise);
  return in<member>(line.through(*units.pressure.conversion));
}

template <auto member>
constexpr record::Input temperature(const UnitSet& units, const Limits& limits) {
  record::Input line = record::input(u"temperature", u"Temperature", u"Observed temperature.", units.temperature.unit)
                           .within(limits.low, limits.high)
                           .otherwise(limits.otherwise);
  return in<member>(line.through(*units.temperature.conversion));
}

template <auto member>
constexpr record::Output result(std::u16string_view key, std::u16string_view display, std::u16string_view description,
                                const Quantity& quantity, std::u16string_view tag) {
  record::Output line = record::output(key, display, description, quantity.unit, tag);
  line.field.conversion = quantity.conversion;
  return out<member>(line);
}

template <auto member>
constexpr record::Output mass_density(const UnitSet& units) {
  return result<member>(u"mass density", u"Mass Density", u"Mass density.", units.density, u"MASDENS");
}

template <auto member>
constexpr record::Output compressibility() {
  return result<member>(u"z", u"Compressibility", u"Compressibility factor (Z).", {data_type::num}, u"Z");
}

template <auto member>
constexpr record::Output range_status(std::uint32_t enumeration) {
  return result<member>(u"oor", u"Range Status", u"Range status of the temperature and pressure.", {enumeration},
                        u"RANGE");
}

}  // namespace norvane::fluid_records
