// GPA 2145: properties of 21 components at 60 degF and 14.696 psia (customary) and at 15 degC and 101.325 kPa (metric),
// in the component order of AGA-8. Water's gross value is its heat of condensation, its net value is 0.
//
// Columns: molar mass (lb/lbmol, kg/kmol), ideal relative density (-), gross heating value by volume (Btu/ft3, MJ/m3),
// gross heating value by mass (Btu/lbm, MJ/kg), net heating value by volume, summation factor (psia^-1/2, kPa^-1/2).
//
// GPA 2145-16 is tabulated as printed; its argon row, absent from the print, is 39.948 kg/kmol with the relative
// density M/28.9625 and the summation factor of ISO 6976. The 2009 edition carries the same figures.
//
// Of the 2003 edition the molar masses of methane to n-hexane, nitrogen and carbon dioxide (and, metric,
// their values by mass) differ in the last digit; the customary table of 2000 is the older family, its values
// by mass follow from those by volume with 379.4826 ft3/lbmol, and its summation factor of n-decane is unconfirmed.
// No separate metric table of 2000 is known: it is that of 2003.
#pragma once

#include <cstddef>
#include <iterator>

#include "core/coefficients.h"

namespace norvane::GPA2145 {

inline constexpr std::size_t n_components = 21;

struct Component {
  double molar_mass, ideal_relative_density, gross_volume, gross_mass, net_volume, summation;
};

// clang-format off

inline constexpr Component customary_2000[] = {
    { 16.043,  0.55392, 1010,    23891,    909.4,  0.0116},  // methane
    { 28.0134, 0.96723,    0,        0,      0,    0.0044},  // nitrogen
    { 44.010,  1.5196,     0,        0,      0,    0.0197},  // carbon dioxide
    { 30.070,  1.0382,  1769.7,  22334,   1618.7,  0.0239},  // ethane
    { 44.097,  1.5226,  2516.1,  21653,   2314.9,  0.0344},  // propane
    { 18.0153, 0.62202,   50.31,  1059.8,    0,    0.0623},  // water
    { 34.082,  1.1767,   637.1,   7094,    586.8,  0.0253},  // hydrogen sulfide
    {  2.0159, 0.0696,   324.2,  61029,    273.93, 0     },  // hydrogen
    { 28.010,  0.96711,  320.5,   4342,    320.5,  0.0053},  // carbon monoxide
    { 31.9988, 1.1048,     0,        0,      0,    0.0073},  // oxygen
    { 58.123,  2.0068,  3251.9,  21232,   3000.4,  0.0458},  // isobutane
    { 58.123,  2.0068,  3262.3,  21299,   3010.8,  0.0478},  // n-butane
    { 72.150,  2.4912,  4000.9,  21043,   3699,    0.0581},  // isopentane
    { 72.150,  2.4912,  4008.9,  21085,   3706.9,  0.0631},  // n-pentane
    { 86.177,  2.9755,  4755.9,  20943,   4403.8,  0.0802},  // n-hexane
    {100.204,  3.4598,  5502.5,  20839,   5100.3,  0.0944},  // n-heptane
    {114.231,  3.9441,  6248.9,  20759,   5796.1,  0.1137},  // n-octane
    {128.258,  4.4284,  6996.5,  20701,   6493.4,  0.1331},  // n-nonane
    {142.285,  4.9127,  7742.9,  20651,   7189.6,  0.1538},  // n-decane
    {  4.0026, 0.1382,     0,        0,      0,    0     },  // helium
    { 39.948,  1.3793,     0,        0,      0,    0.0071},  // argon
};

inline constexpr Component customary_2003[] = {
    { 16.042,  0.5539,  1010,    23892,    909.4,  0.0116 },  // methane
    { 28.0135, 0.9672,     0,        0,      0,    0.00442},  // nitrogen
    { 44.010,  1.5195,     0,        0,      0,    0.0195 },  // carbon dioxide
    { 30.069,  1.0382,  1769.7,  22334,   1619,    0.0238 },  // ethane
    { 44.096,  1.5225,  2516.1,  21654,   2315,    0.0347 },  // propane
    { 18.0153, 0.62202,   50.31,  1059.8,    0,    0.0651 },  // water
    { 34.0809, 1.1767,   637.1,   7094,    586.79, 0.0239 },  // hydrogen sulfide
    {  2.0159, 0.0696,   324.2,  61022,    273.9,  0      },  // hydrogen
    { 28.0101, 0.9671,   320.5,   4342,    320.5,  0.0056 },  // carbon monoxide
    { 31.9988, 1.1048,     0,        0,      0,    0.0072 },  // oxygen
    { 58.122,  2.0068,  3251.9,  21232,   3000,    0.0441 },  // isobutane
    { 58.122,  2.0068,  3262.3,  21300,   3011,    0.047  },  // n-butane
    { 72.149,  2.4911,  4000.9,  21044,   3699,    0.0576 },  // isopentane
    { 72.149,  2.4911,  4008.7,  21085,   3707,    0.0606 },  // n-pentane
    { 86.175,  2.9754,  4755.9,  20943,   4404,    0.0776 },  // n-hexane
    {100.2019, 3.4597,  5502.6,  20839,   5100,    0.0951 },  // n-heptane
    {114.2285, 3.9440,  6249,    20760,   5796,    0.1128 },  // n-octane
    {128.2551, 4.4283,  6996.3,  20701,   6493,    0.1307 },  // n-nonane
    {142.2817, 4.9126,  7742.9,  20651,   7190,    0.1556 },  // n-decane
    {  4.0026, 0.1382,     0,        0,      0,    0      },  // helium
    { 39.948,  1.3793,     0,        0,      0,    0.0071 },  // argon
};

// Also of the 2009 edition.
inline constexpr Component customary_2016[] = {
    { 16.0425, 0.5539,  1010,    23892,    909.4,  0.0116 },  // methane
    { 28.0134, 0.9672,     0,        0,      0,    0.00442},  // nitrogen
    { 44.0095, 1.5195,     0,        0,      0,    0.0195 },  // carbon dioxide
    { 30.069,  1.0382,  1769.7,  22334,   1619,    0.0238 },  // ethane
    { 44.0956, 1.5225,  2516.1,  21654,   2315,    0.0347 },  // propane
    { 18.0153, 0.62202,   50.31,  1059.8,    0,    0.0651 },  // water
    { 34.0809, 1.1767,   637.1,   7094,    586.79, 0.0239 },  // hydrogen sulfide
    {  2.0159, 0.0696,   324.2,  61022,    273.9,  0      },  // hydrogen
    { 28.0101, 0.9671,   320.5,   4342,    320.5,  0.0056 },  // carbon monoxide
    { 31.9988, 1.1048,     0,        0,      0,    0.0072 },  // oxygen
    { 58.1222, 2.0068,  3251.9,  21232,   3000,    0.0441 },  // isobutane
    { 58.1222, 2.0068,  3262.3,  21300,   3011,    0.047  },  // n-butane
    { 72.1488, 2.4911,  4000.9,  21044,   3699,    0.0576 },  // isopentane
    { 72.1488, 2.4911,  4008.7,  21085,   3707,    0.0606 },  // n-pentane
    { 86.1754, 2.9754,  4755.9,  20943,   4404,    0.0776 },  // n-hexane
    {100.2019, 3.4597,  5502.6,  20839,   5100,    0.0951 },  // n-heptane
    {114.2285, 3.9440,  6249,    20760,   5796,    0.1128 },  // n-octane
    {128.2551, 4.4283,  6996.3,  20701,   6493,    0.1307 },  // n-nonane
    {142.2817, 4.9126,  7742.9,  20651,   7190,    0.1556 },  // n-decane
    {  4.0026, 0.1382,     0,        0,      0,    0      },  // helium
    { 39.948,  1.3793,     0,        0,      0,    0.0071 },  // argon
};

// Also of the 2000 edition.
inline constexpr Component metric_2003[] = {
    { 16.042,  0.5539,   37.706,  55.576,   33.95,  0.00442},  // methane
    { 28.0135, 0.9672,    0,       0,        0,     0.0017 },  // nitrogen
    { 44.010,  1.5195,    0,       0,        0,     0.00745},  // carbon dioxide
    { 30.069,  1.0382,   66.066,  51.952,   60.43,  0.0091 },  // ethane
    { 44.096,  1.5225,   93.934,  50.37,    86.42,  0.0132 },  // propane
    { 18.0153, 0.62202,   1.879,   2.4662,   0,     0.02495},  // water
    { 34.0809, 1.1767,   23.784,  16.501,   21.905, 0.00913},  // hydrogen sulfide
    {  2.0159, 0.0696,   12.102, 141.95,    10.223, 0      },  // hydrogen
    { 28.0101, 0.9671,   11.965,  10.1,     11.965, 0.00216},  // carbon monoxide
    { 31.9988, 1.1048,    0,       0,        0,     0.00275},  // oxygen
    { 58.122,  2.0068,  121.4,    49.389,  112,     0.0168 },  // isobutane
    { 58.122,  2.0068,  121.79,   49.547,  112.4,   0.0179 },  // n-butane
    { 72.149,  2.4911,  149.36,   48.95,   138.1,   0.022  },  // isopentane
    { 72.149,  2.4911,  149.65,   49.046,  138.4,   0.0232 },  // n-pentane
    { 86.175,  2.9754,  177.55,   48.717,  164.39,  0.0296 },  // n-hexane
    {100.2019, 3.4597,  205.42,   48.474,  190.39,  0.0364 },  // n-heptane
    {114.2285, 3.9440,  233.29,   48.29,   216.38,  0.0431 },  // n-octane
    {128.2551, 4.4283,  261.19,   48.152,  242.4,   0.05   },  // n-nonane
    {142.2817, 4.9126,  289.06,   48.037,  268.39,  0.0595 },  // n-decane
    {  4.0026, 0.1382,    0,       0,        0,     0      },  // helium
    { 39.948,  1.3793,    0,       0,        0,     0.00271},  // argon
};

// Also of the 2009 edition.
inline constexpr Component metric_2016[] = {
    { 16.0425, 0.5539,   37.706,  55.575,   33.95,  0.00442},  // methane
    { 28.0134, 0.9672,    0,       0,        0,     0.0017 },  // nitrogen
    { 44.0095, 1.5195,    0,       0,        0,     0.00745},  // carbon dioxide
    { 30.069,  1.0382,   66.066,  51.951,   60.43,  0.0091 },  // ethane
    { 44.0956, 1.5225,   93.934,  50.369,   86.42,  0.0132 },  // propane
    { 18.0153, 0.62202,   1.879,   2.4662,   0,     0.02495},  // water
    { 34.0809, 1.1767,   23.784,  16.501,   21.905, 0.00913},  // hydrogen sulfide
    {  2.0159, 0.0696,   12.102, 141.95,    10.223, 0      },  // hydrogen
    { 28.0101, 0.9671,   11.965,  10.1,     11.965, 0.00216},  // carbon monoxide
    { 31.9988, 1.1048,    0,       0,        0,     0.00275},  // oxygen
    { 58.1222, 2.0068,  121.4,    49.388,  112,     0.0168 },  // isobutane
    { 58.1222, 2.0068,  121.79,   49.546,  112.4,   0.0179 },  // n-butane
    { 72.1488, 2.4911,  149.36,   48.95,   138.1,   0.022  },  // isopentane
    { 72.1488, 2.4911,  149.65,   49.045,  138.4,   0.0232 },  // n-pentane
    { 86.1754, 2.9754,  177.55,   48.715,  164.39,  0.0296 },  // n-hexane
    {100.2019, 3.4597,  205.42,   48.474,  190.39,  0.0364 },  // n-heptane
    {114.2285, 3.9440,  233.29,   48.29,   216.38,  0.0431 },  // n-octane
    {128.2551, 4.4283,  261.19,   48.152,  242.4,   0.05   },  // n-nonane
    {142.2817, 4.9126,  289.06,   48.037,  268.39,  0.0595 },  // n-decane
    {  4.0026, 0.1382,    0,       0,        0,     0      },  // helium
    { 39.948,  1.3793,    0,       0,        0,     0.00271},  // argon
};

// clang-format on

static_assert(std::size(customary_2000) == n_components);
static_assert(std::size(customary_2003) == n_components);
static_assert(std::size(customary_2016) == n_components);
static_assert(std::size(metric_2003) == n_components);
static_assert(std::size(metric_2016) == n_components);

inline constexpr CoefficientTable coefficient_tables[] = {
    rows("customary_2000", customary_2000), rows("customary_2003", customary_2003),
    rows("customary_2016", customary_2016), rows("metric_2003", metric_2003),
    rows("metric_2016", metric_2016),
};
inline constinit const CoefficientSet coefficient_set{
    "GPA 2145",
    "GPA 2145 of 2000, 2003, 2009 and 2016 (which rows are derived or unconfirmed stands at the head of the table file)",
    coefficient_tables};

}  // namespace norvane::GPA2145
