// Every factor of the unit table derived a second time, from the definitions of the units.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "core/text.h"
#include "units/unit_catalogue.h"
#include "units/unit_oddities.h"

namespace norvane {
namespace {

// clang-format off
// Definitions: international yard and pound, standard gravity, International Table calorie and Btu, gallons.
constexpr double in = 0.0254, ft = 12 * in, in3 = in * in * in, lb = 0.45359237, g0 = 9.80665;
constexpr double cal = 4.1868, Btu = lb * 1000 * cal / 1.8, gal_us = 231 * in3, gal_uk = 4.54609e-3;
constexpr double h = 3600, d = 24 * h, degF = 1 / 1.8;
constexpr double mercury = 13595.1 * g0, water = 1000 * g0;  // columns [Pa/m], conventional

// What the table holds in rounded digits: the figure, one of its last digit, and what it stands for.
struct Rounded {
  double kept, digit, exact;
};
constexpr Rounded rounded[] = {
    {6894.76, 1e-2, lb* g0 / (in * in)},
    {0.00014503768079, 1e-14, 1 / 6894.76},
    {47.8803, 1e-4, lb* g0 / (ft * ft)},
    {4.448221615, 1e-9, lb* g0},
    {133.3223874, 1e-7, mercury / 1000},
    {3386.38864, 1e-5, mercury* in},
    {3386.38, 1e-2, mercury* in},             // at 32 degF
    {3376.85, 1e-2, 13556.8 * g0 * in},      // at 60 degF
    {249.08891, 1e-5, water* in},
    {249.082, 1e-3, 999.972 * g0 * in},       // at 39.2 degF
    {248.84, 1e-2, 999.016 * g0 * in},        // at 60 degF
    {248.64108, 1e-5, 998.20209 * g0 * in},   // at 68 degF
    {0.02831685, 1e-8, ft* ft* ft},
    {0.0283168, 1e-7, ft* ft* ft},
    {0.158987295, 1e-9, 42 * gal_us},
    {16.01846337, 1e-8, lb / (ft * ft * ft)},
    {0.4535924, 1e-7, lb},
    {907.1847, 1e-4, 2000 * lb},
    {16018.46337, 1e-5, 1e3 * lb / (ft * ft * ft)},
    {35314.66247, 1e-5, 1e3 / 0.02831685},
    {1.63871e-5, 1e-10, in3},
    {1016.046909, 1e-6, 2240 * lb},
    {31556926, 1, 365.24219879 * d},
    {0.27777777778, 1e-11, 1000 / h},
    {0.51444444444, 1e-11, 1852 / h},
};
constexpr double psi = 6894.76, ft3 = 0.02831685, ft3_6 = 0.0283168, in3_6 = 1.63871e-5, lb_7 = 0.4535924, ton_7 = 907.1847;
constexpr double bbl = 0.158987295, long_ton = 1016.046909, inH2O_60 = 248.84;

// Factors and the keys of their units.
struct Line {
  double factor;
  const char* keys;
};
const Line lines[] = {
    {1, "W_s J_nm3 J_sm3_c J_nm3_c kJ_kmol kg_nm3 kg_sm3_c kg_nm3_c nm3 sm3_c nm3_c nm3_s sm3_s_c nm3_s_c"},
    {1, "per_degC kJ_kmol_degC degC"},
    {1e3, "km_s2 kJ kJ_kg kJ_mol MJ_kmol kJ_m3 kJ_sm3 kJ_nm3 kJ_sm3_c kJ_nm3_c km tonne g_cc g_scc g_ncc g_scc_c g_ncc_c"},
    {1e3, "kmol mol_l kmol_m3 kW kPa kPa_a kPa_g kPa_kg kPa_d pulses_g pulses_lb km_s km3 ksm3 knm3 ksm3_c knm3_c"},
    {1e3, "km3_s ksm3_s knm3_s ksm3_s_c knm3_s_c kJ_kg_degC kV kA kOhm kilobyte"},
    {1e6, "km2 MJ MJ_kg MJ_mol MJ_m3 MJ_sm3 MJ_nm3 MJ_sm3_c MJ_nm3_c mol_cc kmol_l MW MPa_kg pulses_cc Mm3 Msm3 Mnm3"},
    {1e6, "Msm3_c Mnm3_c megabyte"},
    {1e9, "GJ kmol_cc GW gigabyte"},
    {1e12, "TJ terabyte"},
    {1e-1, "poise"},
    {1e-2, "perc cm cm_degC perc_mass perc_mole perc_vol"},
    {1e-3, "cP mm mm_degC g g_pulse ms l l_pulse per_kPa mV mA mOhm"},
    {1e-4, "cm2 St"},
    {1e-6, "mm2 ppm mm2_s cSt u mg us cc cc_pulse per_MPa uV uA uOhm"},
    {1e-9, "ns"},
    {in, "in in_s2 in_degC"}, {in / degF, "in_degF"}, {in * in, "in2"},
    {ft, "ft ft_s2 ft_s ft_degC"}, {ft / degF, "ft_degF"}, {ft * ft, "ft2"},
    {1 / degF, "m_degF per_degF per_R"}, {1e-2 / degF, "cm_degF"}, {1e-3 / degF, "mm_degF"},
    {degF, "degF R"},
    // Force and pressure.
    {g0, "kgf kgf_s_m2 kgf_m2 kgf_m2_d mmH2O mmH2Oa mmH2Og mmH2O_d"}, {1e4 * g0, "kgf_cm2 kgf_cm2_d"},
    {4.448221615, "lbf"}, {47.8803, "lbf_ft2 lbf_ft2_d"}, {lb / ft, "lbm_ft_s"},
    {psi, "psi psia psig psi_kg psi_d"}, {0.00014503768079, "per_psi"},
    {1e5, "bar bar_a bar_g bar_kg bar_d"}, {1e2, "mbar mbar_a mbar_g mbar_d"}, {1e-5, "per_bar"},
    {133.3223874, "mmHg mmHga mmHgg mmHg_d"}, {3386.38864, "inHg_con inHga_con inHgg_con inHg_con_d"},
    {3386.38, "inHg_32_degF inHga_32_degF inHgg_32_degF inHg_32_degF_d"},
    {3376.85, "inHg_60_degF inHga_60_degF inHgg_60_degF inHg_60_degF_d"},
    {249.08891, "inH2O_con inH20a_con inH2Og_con inH2O_con_d"},
    {249.082, "inH2O_39_2_degF inH20a_39_2_degF inH2Og_39_2_degF inH2O_39_2_degF_d"},
    {inH2O_60, "inH2O_60_degF inH20a_60_degF inH2Og_60_degF inH2O_60_degF_d"},
    {248.64108, "inH2O_68_degF inH2O_68_degF_d"},
    {inH2O_60 / 25.4, "mmH2O_60_degF mmH2Oa_60_degF mmH2Og_60_degF mmH2O_60_degF_d"},
    // Energy and power.
    {h, "W_h"}, {1e3 * h, "kW_h"}, {Btu, "Btu"}, {1e3 * Btu, "kBtu"}, {1e6 * Btu, "MMBtu dT"},
    {cal, "cal cal_kg cal_mol cal_m3 cal_sm3 cal_nm3 cal_sm3_c cal_nm3_c"},
    {1e3 * cal, "kcal kcal_kg kcal_mol kcal_m3 kcal_sm3 kcal_nm3 kcal_sm3_c kcal_nm3_c"},
    {1e6 * cal, "MMcal_kg Mcal_mol"}, {1e9 * cal, "Mcal"},
    {Btu / lb, "Btu_lbm"}, {1e3 * Btu / lb, "kBtu_lbm"}, {Btu / lb / degF, "Btu_lbm_degF"},
    {Btu / ft3, "Btu_ft3 Btu_scf"}, {1e3 * Btu / ft3, "kBtu_ft3 kBtu_scf"},
    {2326.01, "Btu_lbmol"}, {2326010, "kBtu_lbmol"}, {2326 / 1.8, "Btu_lbmol_degF"},
    {1e6 / h, "MJ_hr Mm3_hr Msm3_hr Mnm3_hr Msm3_hr_c Mnm3_hr_c"}, {1e9 / h, "GJ_hr"},
    {1e6 / d, "MJ_d Mm3_d Msm3_d Mnm3_d Msm3_d_c Mnm3_d_c"}, {1e9 / d, "GJ_d"},
    {1e3 * Btu / h, "kBtu_hr"}, {1e6 * Btu / h, "MMBtu_hr"}, {1e3 * Btu / d, "kBtu_d"}, {1e6 * Btu / d, "MMBtu_d"},
    {1e6 * cal / h, "Mcal_hr"}, {1e9 * cal / h, "Gcal_hr"}, {1e6 * cal / d, "Mcal_d"}, {1e9 * cal / d, "Gcal_d"},
    // Mass and amount of substance.
    {lb, "lbm lbmol"}, {1e3 * lb, "klbm klbmol"}, {1e6 * lb, "Mlbm"}, {2000 * lb, "short_ton"}, {long_ton, "long_ton"},
    {1e3, "kg_kmol g_mol lb_lbmol klb_klbmol"}, {lb_7, "lbm_pulse"}, {1 / lb_7, "pulses_lbm"},
    {1 / h, "kg_hr m3_hr sm3_hr nm3_hr sm3_hr_c nm3_hr_c"}, {1 / d, "kg_d m3_d sm3_d nm3_d sm3_d_c nm3_d_c"},
    {1e3 / h, "tonne_hr km3_hr ksm3_hr knm3_hr ksm3_hr_c knm3_hr_c"},
    {1e3 / d, "tonne_d km3_d ksm3_d knm3_d ksm3_d_c knm3_d_c"},
    {ton_7 / h, "short_ton_hr"}, {ton_7 / d, "short_ton_d"}, {long_ton / h, "long_ton_hr"},
    {long_ton / d, "long_ton_d"}, {lb_7 / h, "lbm_hr"}, {1e3 * lb_7 / h, "klbm_hr"}, {lb_7 / d, "lbm_d"}, {1e3 * lb_7 / d, "klbm_d"},
    {16.01846337, "lb_ft3 lb_scf"}, {35314.66247, "kmol_ft3"}, {16018.46337, "lbmol_ft3"},
    // Volume, time, speed.
    {16387060, "in3"}, {1.64e-5, "in3_pulse"}, {1 / in3_6, "pulses_in"}, {ft3_6, "ft3_pulse"}, {1 / ft3_6, "pulses_ft3"},
    {ft3, "ft3 scf"}, {1e3 * ft3, "kft3 kscf"}, {1e6 * ft3, "MMft3 MMscf"},
    {ft3 / h, "ft3_hr scf_hr"}, {1e3 * ft3 / h, "kft3_hr kscf_hr"}, {1e6 * ft3 / h, "MMft3_hr MMscf_hr"},
    {ft3 / d, "ft3_d scf_d"}, {1e3 * ft3 / d, "kft3_d kscf_d"}, {1e6 * ft3 / d, "MMft3_d MMscf_d"},
    {bbl, "bbl sbbl"}, {bbl / h, "bbl_hr sbbl_hr"}, {bbl / d, "bbl_d sbbl_d"}, {gal_us, "US_gal"}, {gal_uk, "UK_gal"},
    {60, "min"}, {h, "h"}, {d, "d"}, {31556926, "y"}, {0.27777777778, "km_hr"}, {0.51444444444, "knot"},
};

// What the kept factors above would be.
const Line odd_lines[] = {
    {1e6 * cal, "Mcal"}, {Btu / (1e3 * lb), "Btu_lbmol"}, {Btu / lb, "kBtu_lbmol"}, {Btu / (1e3 * lb) / degF, "Btu_lbmol_degF"},
    {1e-3, "kg_kmol g_mol lb_lbmol klb_klbmol"}, {1e3 * lb, "lbmol"}, {1e6 * lb, "klbmol"}, {in3, "in3 in3_pulse"},
    {999.016 * g0 / 1000, "mmH2O_60_degF mmH2Oa_60_degF mmH2Og_60_degF mmH2O_60_degF_d"},
};

// clang-format on

std::map<std::string, double> by_key(std::span<const Line> list) {
  std::map<std::string, double> factors;
  for (const Line& line : list) {
    std::istringstream keys(line.keys);
    for (std::string key; keys >> key;) EXPECT_TRUE(factors.emplace(key, line.factor).second) << key << " twice";
  }
  return factors;
}

std::vector<const Unit_CEntry*> all_units() {
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  std::vector<std::uint32_t> codes;
  units.ListMembers(CodeKind::unit, 0, codes);
  std::vector<const Unit_CEntry*> entries(codes.size());
  for (std::size_t i = 0; i < codes.size(); ++i) EXPECT_EQ(units.UnitDetails(codes[i], entries[i]), UNIT_OK);
  return entries;
}

// Fifteen printed digits at worst: a change of any digit of any factor is seen.
TEST(UnitFactors, FollowFromTheDefinitions) {
  for (const Rounded& r : rounded) EXPECT_LT(std::fabs(r.kept - r.exact), r.digit) << r.kept;
  std::map<std::string, double> factors = by_key(lines);
  for (const Unit_CEntry* unit : all_units()) {
    if (member_number(unit->code) == 1) {
      EXPECT_EQ(unit->factor, 1.0);
      continue;
    }
    const auto found = factors.find(to_utf8(unit->key));
    if (found == factors.end()) {
      ADD_FAILURE() << to_utf8(unit->key);
      continue;
    }
    EXPECT_NEAR(unit->factor / found->second, 1.0, 1e-14) << to_utf8(unit->key);
    factors.erase(found);
    const double zero = unit->code == unit::degC ? 273.15 : unit->code == unit::degF ? 459.67 * degF : 0.0;
    EXPECT_NEAR(unit->offset, zero, 5e-13) << to_utf8(unit->key);
  }
  EXPECT_TRUE(factors.empty()) << factors.begin()->first << " is no unit";
}

TEST(UnitFactors, OddOnesWarn) {
  const std::map<std::string, double> physical = by_key(odd_lines);
  EXPECT_EQ(unit_oddities().size(), physical.size());
  for (const Unit_CEntry* unit : all_units()) {
    const auto odd = std::find_if(unit_oddities().begin(), unit_oddities().end(),
                                  [&](const Unit_COddity& oddity) { return oddity.code == unit->code; });
    EXPECT_EQ(unit_warning(unit->code).empty(), odd == unit_oddities().end());
    if (odd == unit_oddities().end()) continue;
    EXPECT_NEAR(odd->physical / physical.at(to_utf8(unit->key)), 1.0, 1e-14) << to_utf8(unit->key);
    EXPECT_GT(std::fabs(unit->factor / odd->physical - 1.0), 1e-5) << to_utf8(unit->key);
  }
  EXPECT_EQ(unit_warning(unit::in3),
            u"1 in3 counts as 16387060 m3, but is 1.6387064e-05 m3 "
            u"(the factor is kept because results in service depend on it)");
  EXPECT_TRUE(conversion_warning(unit::kg_kmol, unit::lb_lbmol).empty());
  EXPECT_FALSE(conversion_warning(unit::kg_kmol, unit::kg_mol).empty());
  EXPECT_FALSE(conversion_warning(unit::Pa_d, unit::mmH2O_60_degF_d).empty());
  EXPECT_TRUE(conversion_warning(unit::in3, unit::in3).empty());
  EXPECT_TRUE(conversion_warning(unit::ft3, unit::bbl).empty());
}

}  // namespace
}  // namespace norvane
