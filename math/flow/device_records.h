// The lines that the records of all differential-pressure elements share: the block of locations, the states at the three
// points.
#pragma once

#include <array>

#include "framework/binding.h"
#include "math/flow/differential_pressure.h"

namespace norvane::device_records {

using differential_pressure::Device;
using differential_pressure::Geometry;
using differential_pressure::Measurement;
using differential_pressure::ThreePoints;

template <auto member>
constexpr record::Input measured(record::Input line) {
  return in<&Device::measured, member>(line);
}
template <auto member>
constexpr record::Input geometry(record::Input line) {
  return in<&Device::geometry, member>(line);
}

// The block of locations, after the geometry and the element's configuration.
// clang-format off
inline constexpr std::array<record::Input, 7> location_inputs = {
    measured<&Measurement::pressure_location>(record::input(u"p loc", u"Pressure Location", u"", enumeration::densitytemplocation).within(1, 2).otherwise(1).unless(record::Misfit::refuse)),
    measured<&Measurement::temperature_location>(record::input(u"t loc", u"Temperature Loc.", u"Temperature location.", enumeration::densitytemplocation).otherwise(1)),
    measured<&Measurement::temperature_correction>(record::input(u"t cor", u"Temperature Corr.", u"Temperature correction.", enumeration::temperaturecorrection).otherwise(1)),
    measured<&Measurement::temperature_exponent>(record::input(u"t exp", u"Temperature Exp.", u"Temperature exponent.", data_type::num).within(-1000000, 1000000).otherwise(0)),
    measured<&Measurement::density_location>(record::input(u"d loc", u"Density Location", u"", enumeration::densitytemplocation).otherwise(1)),
    measured<&Measurement::density_exponent>(record::input(u"d exp", u"Density Exponent", u"", data_type::num).within(-1000000, 1000000).otherwise(0)),
    measured<&Measurement::fluid>(record::input(u"fluid", u"Fluid", u"", enumeration::fluidstate).within(1, 2).otherwise(1).unless(record::Misfit::refuse)),
};

// Outputs 5 to 13. The description of the downstream density is the catalogue's.
template <class Result>
constexpr std::array<record::Output, 9> state_outputs(std::uint32_t pressure, std::uint32_t temperature, std::uint32_t density) {
  return {
      out<&Result::pressure, &ThreePoints::upstream>(record::output(u"upstream pres", u"Upstream Pres.", u"Pressure at upstream tapping.", pressure, u"PRESUP")),
      out<&Result::pressure, &ThreePoints::downstream>(record::output(u"downstream pres", u"Downstream Pres.", u"Pressure at downstream tapping.", pressure, u"PRESDN")),
      out<&Result::pressure, &ThreePoints::recovered>(record::output(u"recovered pres", u"Recovered Pres.", u"Fully recovered downstream pressure.", pressure, u"PRESREC")),
      out<&Result::temperature, &ThreePoints::upstream>(record::output(u"upstream temp", u"Upstream Temp.", u"Temperature at upstream tapping.", temperature, u"TEMPUP")),
      out<&Result::temperature, &ThreePoints::downstream>(record::output(u"downstream temp", u"Downstream Temp.", u"Temperature at downstream tapping.", temperature, u"TEMPDN")),
      out<&Result::temperature, &ThreePoints::recovered>(record::output(u"recovered temp", u"Recovered Temp.", u"'Fully recovered' downstream temperature.", temperature, u"TEMPREC")),
      out<&Result::density, &ThreePoints::upstream>(record::output(u"upstream dens", u"Upstream Dens.", u"Density at upstream tapping.", density, u"DENSUP")),
      out<&Result::density, &ThreePoints::downstream>(record::output(u"downstream dens", u"Downstream Dens.", u"Pressure at downstream tapping.", density, u"DENSDN")),
      out<&Result::density, &ThreePoints::recovered>(record::output(u"recovered dens", u"Recovered Dens.", u"'Fully recovered' downstream density.", density, u"DENSREC")),
  };
}
// clang-format on

}  // namespace norvane::device_records
