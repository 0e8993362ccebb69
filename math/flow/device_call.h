// What the calls of all differential-pressure elements have in common: inputs 1 to 12 and the block of
// locations in one order, outputs 5 to 13 for the three points.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "framework/call.h"
#include "framework/records.h"
#include "math/flow/differential_pressure.h"

namespace norvane::device_call {

// ---- Records -----------------------------------------------------------------------------------------------------

template <class Record, std::size_t... N>
constexpr auto join(const std::array<Record, N>&... parts) {
  std::array<Record, (N + ...)> all{};
  std::size_t next = 0;
  const auto append = [&](const auto& part) {
    for (const Record& record : part) all[next++] = record;
  };
  (append(parts), ...);
  return all;
}

// The block of locations, after the geometry and the element's configuration.
// clang-format off
inline constexpr std::array<record::Input, 7> location_inputs = {
    record::input(u"p loc", u"Pressure Location", u"", enumeration::densitytemplocation).within(1, 2).otherwise(1),
    record::input(u"t loc", u"Temperature Loc.", u"Temperature location.", enumeration::densitytemplocation).otherwise(1),
    record::input(u"t cor", u"Temperature Corr.", u"Temperature correction.", enumeration::temperaturecorrection).otherwise(1),
    record::input(u"t exp", u"Temperature Exp.", u"Temperature exponent.", data_type::num).within(-1000000, 1000000).otherwise(0),
    record::input(u"d loc", u"Density Location", u"", enumeration::densitytemplocation).otherwise(1),
    record::input(u"d exp", u"Density Exponent", u"", data_type::num).within(-1000000, 1000000).otherwise(0),
    record::input(u"fluid", u"Fluid", u"", enumeration::fluidstate).within(1, 2).otherwise(1),
};

// Outputs 5 to 13. The description of the downstream density is the catalogue's.
constexpr std::array<record::Output, 9> state_outputs(std::uint32_t pressure, std::uint32_t temperature,
                                                      std::uint32_t density) {
  return {
      record::output(u"upstream pres", u"Upstream Pres.", u"Pressure at upstream tapping.", pressure, u"PRESUP"),
      record::output(u"downstream pres", u"Downstream Pres.", u"Pressure at downstream tapping.", pressure, u"PRESDN"),
      record::output(u"recovered pres", u"Recovered Pres.", u"Fully recovered downstream pressure.", pressure, u"PRESREC"),
      record::output(u"upstream temp", u"Upstream Temp.", u"Temperature at upstream tapping.", temperature, u"TEMPUP"),
      record::output(u"downstream temp", u"Downstream Temp.", u"Temperature at downstream tapping.", temperature, u"TEMPDN"),
      record::output(u"recovered temp", u"Recovered Temp.", u"'Fully recovered' downstream temperature.", temperature, u"TEMPREC"),
      record::output(u"upstream dens", u"Upstream Dens.", u"Density at upstream tapping.", density, u"DENSUP"),
      record::output(u"downstream dens", u"Downstream Dens.", u"Pressure at downstream tapping.", density, u"DENSDN"),
      record::output(u"recovered dens", u"Recovered Dens.", u"'Fully recovered' downstream density.", density, u"DENSREC"),
  };
}
// clang-format on

// ---- Arguments and outputs ---------------------------------------------------------------------------------------

// Positions that all elements share.
enum class In : std::size_t {
  Name,
  dp,
  pressure,
  temperature,
  density,
  viscosity,
  kappa,
  pipe_diameter,
  pipe_expansion,
  pipe_reference,
  device_diameter,
  device_expansion,
  device_reference,
  after_geometry
};
enum class Out : std::size_t {
  status,
  mass_rate,
  beta,
  device_diameter,
  pipe_diameter,
  pressure,
  temperature = 8,
  density = 11,
  reynolds = 14,
  discharge_coefficient,
  expansion,
  after_expansion
};

// The first of the location inputs is `first_location`. False when an argument cannot be read or an option is
// outside its list: `error` is then the call's answer.
bool read(Call& call, std::size_t first_location, differential_pressure::Measurement& measured,
          differential_pressure::Geometry& geometry, std::uint32_t& error) noexcept;

// An option of the element's own, 1 to `last`. False, with `error`, for any other number.
bool read_option(Call& call, std::size_t index, int last, int& value, std::uint32_t& error) noexcept;

// Refuses a device wider than its pipe. True when the diameters are fit.
bool device_fits(Call& call, const differential_pressure::Geometry& geometry, std::uint32_t& error) noexcept;

void write_states(Call& call, const differential_pressure::ThreePoints& pressure,
                  const differential_pressure::ThreePoints& temperature,
                  const differential_pressure::ThreePoints& density) noexcept;

}  // namespace norvane::device_call
