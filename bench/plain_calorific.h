// ISO 6976:1995 and 2016 transcribed as the standards print them, for the 22 common components, 15 degC/15 degC, molar
// masses from the tables: the baseline of the ratios. Nothing is checked.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "math/gas/iso6976.h"
#include "math/gas/iso6976_1995_table.h"
#include "math/gas/iso6976_2016_table.h"

namespace norvane::bench {

// The gas in the order of AGA-8 with neo-pentane behind; amounts are normalised. The results are in the order of the
// function's outputs.
inline std::array<double, 11> plain_iso6976(const std::array<double, 22>& gas, bool of_2016) {
  namespace old = ISO6976::edition1995;
  namespace recent = ISO6976::edition2016;
  double sum = 0.0;
  for (double amount : gas) sum += amount;
  double M = 0.0, s = 0.0, superior = 0.0, inferior = 0.0;
  for (std::size_t i = 0; i < gas.size(); ++i) {
    const std::size_t row = ISO6976::common_rows[i];
    const double x = gas[ISO6976::common_places[i]] / sum;
    if (of_2016) {
      const double H = recent::table3[row].gross[1];
      M += x * recent::table1[row].molar_mass;
      s += x * recent::table2[row].s[1];
      superior += x * H;
      inferior += x * (H - recent::table1[row].atoms[1] / 2.0 * 44.431);
    } else {
      M += x * old::table1[row].molar_mass;
      s += x * old::table2[row].sqrt_b[1];
      superior += x * old::table3[row].superior[2];
      inferior += x * old::table3[row].inferior[2];
    }
  }
  const double R = of_2016 ? 8.3144621 : 8.31451, M_air = of_2016 ? 28.96546 : 28.9626,
               Z_air = of_2016 ? 0.999595 : 0.99958;
  const double Z = 1.0 - s * s, V = Z * R * 288.15 / 101.325;
  const double d = M / M_air * Z_air / Z;
  return {superior / V,
          M / V,
          Z,
          d,
          M,
          superior / M,
          superior,
          inferior / V,
          inferior / M,
          inferior,
          superior / V / std::sqrt(d)};
}

}  // namespace norvane::bench
