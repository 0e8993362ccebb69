// What the records of the 1952 tables share with those of the composites built on them.
#pragma once

#include "math/liquid/api_11_1_1952.h"
#include "math/liquid/liquid_records.h"

// clang-format off
#define NV_NOTES_1952 \
  u"The equation from which the tables of 1952 were printed, for relative densities at 60 \u00B0F from 0.600 (600 kg/m3 " \
  u"at 15 \u00B0C) to 1.100; beyond, the tables are not part of this build and the status is 2. Fifteen of sixteen printed " \
  u"factors near 0.60 that were at hand are met to half a unit of the fourth decimal; above 0.75 none was at hand.\n" \
  u"Observed values are true ones: the printed Tables 5, 23 and 53 include the expansion of a glass hydrometer, this " \
  u"equation does not.\n" \
  u"The constants change at fifteen bands of the relative density. At 0.750, 0.790 and 0.900 the observed relative " \
  u"density jumps by up to 7e-7 of itself per \u00B0F from 60; of two base values the larger is answered, in a gap the " \
  u"edge itself.\n" \
  u"Range status 1: relative density at 60 \u00B0F outside 0.600 to 1.076, temperature outside 0 to 150 \u00B0F; density " \
  u"at 15 \u00B0C outside 600 to 1075 kg/m3, temperature outside -18 to 65 \u00B0C. The calculation is carried out all the " \
  u"same.\n"
// clang-format on
