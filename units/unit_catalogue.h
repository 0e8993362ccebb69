// The catalogue of quantity types, units, enumeration types and unit systems.
//
// Built once from constant tables (that of the process when it is first asked: a call of a calculation asks it nothing),
// read-only afterwards and free of locks. Operations answer with the result numbers of UnitResult. Where the catalogue of
// the process finds no memory for its tables it knows no code until it is asked again; only what hands out lists throws.
// Texts are static and outlive it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "core/once.h"
#include "core/string_map.h"
#include "units/unit_codes.h"

namespace norvane {

enum UnitResult : std::uint32_t {
  UNIT_OK = 0,
  UNIT_ALREADY_EXISTS = 2,  // entry or system key exists, or a pair's from-unit is mapped already
  UNIT_MEMBER_EXISTS = 3,
  UNIT_UNKNOWN_CODE = 4,  // unknown code, or a member whose owner is unknown
  UNIT_UNKNOWN_UNIT = 5,  // conversion between units of which one is unknown
  UNIT_MISMATCH = 6,      // different quantity types, or no enumeration value of that number
  UNIT_NOT_A_UNIT = 7,    // conversion of something that is no unit
  UNIT_WRONG_KIND = 8,    // code of another kind than the operation asks for
  UNIT_BAD_ARGUMENT = 9   // missing text or bad kind byte
};

// One row of the catalogue: a quantity type, a unit, an enumeration type or an enumeration value.
struct Unit_CEntry {
  std::uint32_t code = 0;
  std::u16string_view key;        // lookup key without blanks, for example "inH2O_60_degF"
  std::u16string_view text;       // symbol of a unit, display name of a type or value
  std::u16string_view long_name;  // "kilograms per cubic meter"; units and unit systems only
  double factor = 0.0;            // unit: base = value * factor + offset; enumeration value: its number
  double offset = 0.0;
  std::vector<std::uint32_t> members;  // types: codes of the members, in table order
};

// A rate unit as quantity per time: kg_s = kg per s.
struct Unit_CRateRelation {
  std::uint32_t rate_unit = 0;
  std::uint32_t relation = 1;  // 1 = per
  std::uint32_t time_unit = 0;
  std::uint32_t quantity_unit = 0;
};

class Unit_CTypeAndUnitContainer {
 public:
  Unit_CTypeAndUnitContainer();
  ~Unit_CTypeAndUnitContainer();
  Unit_CTypeAndUnitContainer(const Unit_CTypeAndUnitContainer&) = delete;
  Unit_CTypeAndUnitContainer& operator=(const Unit_CTypeAndUnitContainer&) = delete;

  // The one catalogue of the process.
  static const Unit_CTypeAndUnitContainer& Instance();

  // Last non-zero result met while the tables were entered; 0 when every row was good.
  std::uint32_t BuildResult() const noexcept;

  // Answered from the constant tables, without a catalogue. False for what they do not hold.
  // Factor and offset of a unit: base = value * factor + offset.
  static bool ScaleOf(std::uint32_t unit, double& factor, double& offset) noexcept;
  // The numbers of an enumeration's members as bits; false also when one of them is no whole number from 0 to 63.
  static bool MemberBits(std::uint32_t type, std::uint64_t& bits) noexcept;

  // Data type name, unit symbol, display text of an enumeration value or of a type.
  std::uint32_t TextOfCode(std::uint32_t code, std::u16string_view& text) const noexcept;
  // The entry of a unit (kind 1), of a type (kinds 3 and 4), of an enumeration value (kind 2).
  std::uint32_t UnitDetails(std::uint32_t code, const Unit_CEntry*& entry) const noexcept;
  std::uint32_t TypeDetails(std::uint32_t code, const Unit_CEntry*& entry) const noexcept;
  std::uint32_t EnumerationValueDetails(std::uint32_t code, const Unit_CEntry*& entry) const noexcept;
  // First member of an enumeration type whose number equals value exactly.
  std::uint32_t EnumerationValueByNumber(std::uint32_t type, double value, std::uint32_t& code) const noexcept;
  // Key (any case) of a unit or type, or data type name (exact case). False and code 0 when
  // not found; an empty text gives code 0 and true.
  bool CodeOfText(std::u16string_view text, std::uint32_t& code) const noexcept;
  // Whether at least one unit bears this symbol, in any case. Walks through the units.
  bool IsSymbol(std::u16string_view text) const noexcept;
  // type 0: every entry of that kind in map order; otherwise the type's members of that kind in their order.
  std::uint32_t ListMembers(CodeKind kind, std::uint32_t type, std::vector<std::uint32_t>& codes) const;
  static std::uint32_t KindOfCode(std::uint32_t code) noexcept;
  static std::uint32_t TypeOfUnit(std::uint32_t unit, std::uint32_t& type) noexcept;
  // Converts value in place; leaves it untouched when the units are the same or on failure.
  std::uint32_t Convert(std::uint32_t from, std::uint32_t to, double& value) const noexcept;
  bool IsKnown(std::uint32_t code) const noexcept { return Find(code) != nullptr; }

  // Unit systems: 1 metric, 2 customary. A code that the system does not hold is returned as it is.
  std::uint32_t SystemDetails(std::uint32_t system, const Unit_CEntry*& entry) const noexcept;
  std::uint32_t UnitInSystem(std::uint32_t system, std::uint32_t code) const noexcept;

  std::span<const Unit_CRateRelation> RateRelations() const noexcept;

  // Building steps, also used to extend a catalogue in a test.
  std::uint32_t Add(CodeKind kind, std::uint32_t type, std::uint32_t member, std::u16string_view key,
                    std::u16string_view text, std::u16string_view long_name, double factor, double offset);
  std::uint32_t AddRateRelation(std::uint32_t rate_unit, std::uint32_t time_unit, std::uint32_t quantity_unit);
  struct Pair {
    std::uint32_t from = 0, to = 0;
  };
  std::uint32_t AddSystem(std::uint32_t system, std::u16string_view key, std::u16string_view text,
                          std::u16string_view long_name, std::span<const Pair> pairs);

 private:
  const Unit_CEntry* Find(std::uint32_t code) const noexcept;
  std::uint32_t Details(std::uint32_t code, const Unit_CEntry*& entry) const noexcept;

  struct Tables;
  struct WhenAsked {};
  explicit Unit_CTypeAndUnitContainer(WhenAsked) noexcept;
  void Build();
  const Tables* tables() const noexcept;

  bool when_asked_ = false;
  mutable Once asked_;
  std::unique_ptr<Tables> tables_;
  std::uint32_t build_result_ = 0;
};

}  // namespace norvane
