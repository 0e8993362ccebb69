#include "math/flow/device_call.h"

namespace norvane::device_call {

namespace dp = differential_pressure;

bool read_option(Call& call, std::size_t index, int last, int& value, std::uint32_t& error) noexcept {
  value = call.option(index);
  if (call.failed()) {
    error = call.error();
    return false;
  }
  if (value >= 1 && value <= last) return true;
  error = call.refuse(index, u"is not one of the options");
  return false;
}

bool read(Call& call, std::size_t first_location, dp::Measurement& m, dp::Geometry& g,
          std::uint32_t& error) noexcept {
  m.dp = call.number(In::dp);
  m.pressure = call.number(In::pressure);
  m.temperature = call.number(In::temperature);
  m.density = call.number(In::density);
  m.viscosity = call.number(In::viscosity);
  m.kappa = call.number(In::kappa);
  g.pipe_diameter = call.number(In::pipe_diameter);
  g.pipe_expansion = call.number(In::pipe_expansion);
  g.pipe_reference_temperature = call.number(In::pipe_reference);
  g.device_diameter = call.number(In::device_diameter);
  g.device_expansion = call.number(In::device_expansion);
  g.device_reference_temperature = call.number(In::device_reference);
  m.temperature_exponent = call.number(first_location + 3);
  m.density_exponent = call.number(first_location + 5);

  int p_loc = 0, t_loc = 0, t_cor = 0, d_loc = 0, fluid = 0;
  if (!read_option(call, first_location, 2, p_loc, error) ||
      !read_option(call, first_location + 1, 3, t_loc, error) ||
      !read_option(call, first_location + 2, 3, t_cor, error) ||
      !read_option(call, first_location + 4, 3, d_loc, error) ||
      !read_option(call, first_location + 6, 2, fluid, error))
    return false;
  m.pressure_location = static_cast<dp::Location>(p_loc);
  m.temperature_location = static_cast<dp::Location>(t_loc);
  m.temperature_correction = static_cast<dp::TemperatureCorrection>(t_cor);
  m.density_location = static_cast<dp::Location>(d_loc);
  m.fluid = static_cast<dp::Fluid>(fluid);
  return true;
}

bool device_fits(Call& call, const dp::Geometry& geometry, std::uint32_t& error) noexcept {
  if (!(geometry.device_diameter > geometry.pipe_diameter)) return true;
  error = call.refuse(static_cast<std::size_t>(In::device_diameter), u"is larger than the pipe diameter");
  return false;
}

void write_states(Call& call, const dp::ThreePoints& pressure, const dp::ThreePoints& temperature,
                  const dp::ThreePoints& density) noexcept {
  const auto write = [&call](Out first, const dp::ThreePoints& points) {
    const auto index = static_cast<std::size_t>(first);
    call.set(index, points.upstream);
    call.set(index + 1, points.downstream);
    call.set(index + 2, points.recovered);
  };
  write(Out::pressure, pressure);
  write(Out::temperature, temperature);
  write(Out::density, density);
}

}  // namespace norvane::device_call
