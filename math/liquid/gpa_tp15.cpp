#include "math/liquid/gpa_tp15.h"

#include <iterator>

#include "math/liquid/compressibility.h"

namespace norvane::GPA_TP15 {

using namespace liquid;

static_assert(std::size(edges) == std::size(bands) + 1);

std::size_t band_of(double g) noexcept {
  std::size_t band = 0;
  while (band + 1 < std::size(bands) && g >= edges[band + 1]) ++band;
  return band;
}

bool out_of_range(double g, double degF) noexcept {
  const double hottest = g < 0.425 ? 695.51 * g - 155.51 : 140.0;
  return outside(g, edges[0], edges[7]) || outside(degF, -50.0, hottest);
}

Outcome pressure(const Arguments& in, Result& out) noexcept {
  if (!positive(in.relative_density)) return blame(in.relative_density, argument_error, not_a_density);
  if (!(in.temperature >= coldest && std::isfinite(in.temperature)))
    return blame(in.temperature, argument_error, u"must not be below % and must be finite", coldest);
  if (in.rounding) return blame(in.rounding, argument_error, no_chapter_rounding);
  if (in.p100_known) return blame(in.p100_known, argument_error, no_p100);
  out.equilibrium_pressure = equilibrium_pressure(band_of(in.relative_density), in.relative_density, in.temperature);
  out.out_of_range = out_of_range(in.relative_density, in.temperature);
  if (!positive(out.equilibrium_pressure))
    return failure(calculation_error, u"the equation gives no pressure at this temperature");
  return {};
}

}  // namespace norvane::GPA_TP15
