#include "units/unit_catalogue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace norvane {
namespace {

const Unit_CTypeAndUnitContainer& catalogue() { return Unit_CTypeAndUnitContainer::Instance(); }

double converted(std::uint32_t from, std::uint32_t to, double value) {
  EXPECT_EQ(catalogue().Convert(from, to, value), UNIT_OK);
  return value;
}

std::vector<std::uint32_t> members(CodeKind kind, std::uint32_t type) {
  std::vector<std::uint32_t> codes;
  EXPECT_EQ(catalogue().ListMembers(kind, type, codes), UNIT_OK);
  return codes;
}

TEST(UnitCatalogue, EveryRowIsEntered) {
  EXPECT_EQ(catalogue().BuildResult(), 0u);
  EXPECT_EQ(members(CodeKind::quantity, 0).size(), 51u);
  EXPECT_EQ(members(CodeKind::unit, 0).size(), 398u);
  EXPECT_EQ(members(CodeKind::enumeration, 0).size(), 48u);
  EXPECT_EQ(catalogue().RateRelations().size(), 4u);
  // Every key finds its own row again, in any case.
  for (CodeKind kind : {CodeKind::unit, CodeKind::quantity, CodeKind::enumeration}) {
    for (std::uint32_t code : members(kind, 0)) {
      const Unit_CEntry* entry = nullptr;
      ASSERT_EQ(kind == CodeKind::unit ? catalogue().UnitDetails(code, entry) : catalogue().TypeDetails(code, entry),
                UNIT_OK);
      std::u16string upper(entry->key);
      for (char16_t& c : upper) c = fold_ascii_upper(c);
      std::uint32_t found = 0;
      EXPECT_TRUE(catalogue().CodeOfText(upper, found));
      EXPECT_EQ(found, code);
    }
  }
}

TEST(UnitCatalogue, EveryEnumerationHasDistinctNumbers) {
  for (std::uint32_t type : members(CodeKind::enumeration, 0)) {
    const auto values = members(CodeKind::enumeration_value, type);
    EXPECT_FALSE(values.empty()) << std::hex << type;
    for (std::uint32_t value : values) {
      const Unit_CEntry* entry = nullptr;
      ASSERT_EQ(catalogue().EnumerationValueDetails(value, entry), UNIT_OK);
      std::uint32_t found = 0;
      EXPECT_EQ(catalogue().EnumerationValueByNumber(type, entry->factor, found), UNIT_OK);
      EXPECT_EQ(found, value) << "number " << entry->factor << " repeats in type " << std::hex << type;
    }
  }
}

TEST(UnitCatalogue, ConvertsThroughTheBaseUnit) {
  EXPECT_EQ(converted(unit::degC, unit::degF, 0.0), 32.00000000000032);
  EXPECT_EQ(converted(unit::degC, unit::degF, 100.0), 212.00000000000017);
  EXPECT_EQ(converted(unit::bar_a, unit::psia, 1.0), 100000.0 / 6894.76);
  // The same unit leaves every bit alone, also of what is no number.
  const double odd = std::nextafter(0.1, 1.0);
  EXPECT_EQ(converted(unit::degF, unit::degF, odd), odd);
  EXPECT_TRUE(std::isnan(converted(unit::K, unit::K, std::numeric_limits<double>::quiet_NaN())));
}

// Factors that are not the physical ones and stay, because results in service depend on them.
TEST(UnitCatalogue, KeepsTheFactorsInService) {
  EXPECT_EQ(converted(unit::in3, unit::m3, 1.0), 16387060.0);
  EXPECT_EQ(converted(unit::g_mol, unit::kg_mol, 1.0), 1000.0);
  EXPECT_EQ(converted(unit::kg_kmol, unit::lb_lbmol, 16.04), 16.04);
  EXPECT_EQ(converted(unit::Btu_lbmol_degF, unit::kJ_kmol_degC, 1.0), 1292.22222222222);
  EXPECT_EQ(converted(unit::pulses_lb, unit::pulses_m3, 1.0), 1000.0);
  EXPECT_EQ(converted(unit::in3_pulse, unit::m3_pulse, 1.0), 1.64e-05);
  for (std::uint32_t water : {unit::mmH2O_60_degF, unit::mmH2Oa_60_degF, unit::mmH2Og_60_degF, unit::mmH2O_60_degF_d})
    EXPECT_EQ(converted(water, make_code(CodeKind::unit, type_number(water), 1), 1.0), 9.79685039370079);
}

TEST(UnitCatalogue, RefusedConversionsLeaveTheValue) {
  struct Case {
    std::uint32_t from, to, result;
  };
  const Case cases[] = {
      {unit::psia, unit::bar_g, UNIT_MISMATCH},        {unit::Pa, unit::Pa_d, UNIT_MISMATCH},
      {quantity::pressure, unit::Pa, UNIT_NOT_A_UNIT}, {unit::Pa, data_type::num, UNIT_NOT_A_UNIT},
      {unit::Pa, unit::Pa + 200, UNIT_UNKNOWN_UNIT},   {unit::Pa + 200, unit::Pa + 200, UNIT_UNKNOWN_UNIT},
      {0xFFFFFFFFu, unit::Pa, UNIT_NOT_A_UNIT},
  };
  for (const Case& c : cases) {
    double value = 7.5;
    EXPECT_EQ(catalogue().Convert(c.from, c.to, value), c.result);
    EXPECT_EQ(value, 7.5);
  }
}

TEST(UnitCatalogue, FindsCodesOfTexts) {
  const auto code_of = [](std::u16string_view text) {
    std::uint32_t code = 99;
    return catalogue().CodeOfText(text, code) ? std::int64_t{code} : -1;
  };
  EXPECT_EQ(code_of(u"PSI"), unit::psi);
  EXPECT_EQ(code_of(u"MSm3"), unit::Msm3);
  EXPECT_EQ(code_of(u"AbsolutePressure"), quantity::absolutepressure);
  EXPECT_EQ(code_of(u"rangestatus2"), enumeration::rangestatus2);
  EXPECT_EQ(code_of(u"num"), data_type::num);
  EXPECT_EQ(code_of(u""), 0);
  // Data type names keep their case; symbols, enumeration values and characters beyond Latin-1 are no keys.
  for (std::u16string_view text : {u"Num", u"kg/m3", u"normal", u"\u0170Pa", u"\u3050", u"xyz", u"Pa "})
    EXPECT_EQ(code_of(text), -1);
}

TEST(UnitCatalogue, TextsOfCodes) {
  const auto text_of = [](std::uint32_t code) {
    std::u16string_view text = u"?";
    const std::uint32_t result = catalogue().TextOfCode(code, text);
    return result == UNIT_OK ? std::u16string(text) : std::u16string(1, static_cast<char16_t>(u'0' + result));
  };
  EXPECT_EQ(text_of(0), u"");
  EXPECT_EQ(text_of(data_type::ipaddr), u"ipaddr");
  EXPECT_EQ(text_of(9), u"8");
  EXPECT_EQ(text_of(0x01001D08), u"mbar");
  EXPECT_EQ(text_of(unit::degC), u"\u00B0C");
  EXPECT_EQ(text_of(quantity::energyperstandardvolume), u"energy per standard volume");
  EXPECT_EQ(text_of(enumeration::mathfunctionstatus), u"Math function status");
  EXPECT_EQ(text_of(0x02000E02), u"Argument out of range");
  EXPECT_EQ(text_of(0x010000FF), u"4");
  EXPECT_EQ(text_of(0x05000000), u"4");

  const Unit_CEntry* entry = nullptr;
  ASSERT_EQ(catalogue().UnitDetails(unit::inH2O_39_2_degF, entry), UNIT_OK);
  EXPECT_EQ(entry->long_name, u"inch of water @ 39.2\u00B0f (4\u00B0c)");
  ASSERT_EQ(catalogue().UnitDetails(unit::pulses_lb, entry), UNIT_OK);
  EXPECT_EQ(entry->text, u"pulses/lb");
  EXPECT_EQ(entry->long_name, u"pulses per litre");
  EXPECT_EQ(catalogue().UnitDetails(quantity::mass, entry), UNIT_WRONG_KIND);
  EXPECT_EQ(catalogue().TypeDetails(unit::kg, entry), UNIT_WRONG_KIND);
  EXPECT_EQ(catalogue().EnumerationValueDetails(enumeration::parity, entry), UNIT_WRONG_KIND);
  EXPECT_EQ(catalogue().TypeDetails(make_code(CodeKind::quantity, 2), entry), UNIT_UNKNOWN_CODE);
}

TEST(UnitCatalogue, EnumerationValuesByNumber) {
  std::uint32_t code = 0;
  EXPECT_EQ(catalogue().EnumerationValueByNumber(enumeration::rangestatus2, 1.0, code), UNIT_OK);
  EXPECT_EQ(code, make_code(CodeKind::enumeration_value, type_number(enumeration::rangestatus2), 2));
  EXPECT_EQ(catalogue().EnumerationValueByNumber(enumeration::rangestatus2, 1.5, code), UNIT_MISMATCH);
  EXPECT_EQ(catalogue().EnumerationValueByNumber(enumeration::rangestatus2, std::nan(""), code), UNIT_MISMATCH);
  EXPECT_EQ(catalogue().EnumerationValueByNumber(unit::kg, 1.0, code), UNIT_WRONG_KIND);
}

TEST(UnitCatalogue, ListsMembers) {
  EXPECT_EQ(members(CodeKind::unit, quantity::temperature),
            (std::vector<std::uint32_t>{unit::K, unit::degC, unit::degF, unit::R}));
  EXPECT_TRUE(members(CodeKind::enumeration_value, quantity::temperature).empty());
  std::vector<std::uint32_t> codes;
  EXPECT_EQ(catalogue().ListMembers(CodeKind::unit, unit::K, codes), UNIT_WRONG_KIND);
  EXPECT_EQ(catalogue().ListMembers(CodeKind::unit, make_code(CodeKind::quantity, 2), codes), UNIT_UNKNOWN_CODE);
  EXPECT_EQ(Unit_CTypeAndUnitContainer::KindOfCode(0x05000000), 255u);
}

TEST(UnitCatalogue, UnitSystemsMapUnitsAndTypes) {
  const auto metric = [](std::uint32_t code) { return catalogue().UnitInSystem(1, code); };
  const auto customary = [](std::uint32_t code) { return catalogue().UnitInSystem(2, code); };
  EXPECT_EQ(metric(unit::psia), unit::bar_a);
  EXPECT_EQ(metric(unit::bar_a), unit::bar_a);
  EXPECT_EQ(metric(quantity::absolutepressure), unit::bar_a);
  EXPECT_EQ(customary(unit::mm), unit::in);
  // Two pairs of one type: the first gives the type its unit.
  EXPECT_EQ(metric(quantity::dynamicviscosity), unit::Pa_s);
  EXPECT_EQ(customary(quantity::dynamicviscosity), unit::lbm_ft_s);
  EXPECT_EQ(metric(unit::cP), unit::cP);
  EXPECT_EQ(metric(quantity::time), quantity::time);
  // What a system does not hold stays as it is.
  EXPECT_EQ(metric(unit::kPa_a), unit::kPa_a);
  EXPECT_EQ(catalogue().UnitInSystem(3, unit::psia), unit::psia);
  const Unit_CEntry* entry = nullptr;
  ASSERT_EQ(catalogue().SystemDetails(2, entry), UNIT_OK);
  EXPECT_EQ(entry->text, u"U.S. Customary");
  EXPECT_EQ(catalogue().SystemDetails(3, entry), UNIT_UNKNOWN_CODE);
}

TEST(UnitCatalogue, RefusesBadRows) {
  Unit_CTypeAndUnitContainer units;
  const auto add = [&units](CodeKind kind, std::uint32_t type, std::uint32_t member) {
    return units.Add(kind, type, member, u"new_key", u"new", u"", 2.0, 0.0);
  };
  EXPECT_EQ(add(CodeKind::unit, 2, 1), UNIT_UNKNOWN_CODE);
  EXPECT_EQ(add(CodeKind::quantity, 2, 0), UNIT_OK);
  EXPECT_EQ(add(CodeKind::quantity, 2, 0), UNIT_ALREADY_EXISTS);
  EXPECT_EQ(add(CodeKind::unit, 2, 1), UNIT_OK);
  EXPECT_EQ(add(CodeKind::unit, 2, 1), UNIT_MEMBER_EXISTS);
  EXPECT_EQ(add(CodeKind::data_type, 2, 2), UNIT_BAD_ARGUMENT);
  EXPECT_EQ(add(CodeKind::unit, 2, 256), UNIT_BAD_ARGUMENT);

  using Pair = Unit_CTypeAndUnitContainer::Pair;
  const auto system = [&units](std::uint32_t code, std::vector<Pair> pairs) {
    return units.AddSystem(code, u"own", u"Own", u"Own", pairs);
  };
  EXPECT_EQ(system(1, {}), UNIT_ALREADY_EXISTS);
  EXPECT_EQ(system(3, {{unit::psia, unit::bar_g}}), UNIT_MISMATCH);
  EXPECT_EQ(system(3, {{unit::psia, unit::bar_a}, {unit::psia, unit::kPa_a}}), UNIT_ALREADY_EXISTS);
  EXPECT_EQ(system(3, {{quantity::time, quantity::time}, {quantity::time, quantity::time}}), UNIT_ALREADY_EXISTS);
  EXPECT_EQ(units.UnitInSystem(3, unit::psia), unit::psia);  // a refused system leaves nothing behind
  // From 0 stands for the type of the target.
  EXPECT_EQ(system(3, {{0, unit::kPa_a}}), UNIT_OK);
  EXPECT_EQ(units.UnitInSystem(3, quantity::absolutepressure), unit::kPa_a);
  EXPECT_EQ(units.AddRateRelation(unit::kg_hr, quantity::time, unit::kg), UNIT_WRONG_KIND);
}

}  // namespace
}  // namespace norvane
