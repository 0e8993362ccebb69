// Unit codes: one 32-bit number that says what kind of value a slot of a function holds.
//
//   bits 24-31  kind: 0 plain data type, 1 unit, 2 enumeration value, 3 quantity type, 4 enumeration type
//   bits  8-23  type number (the quantity type of kinds 1 and 3, the enumeration type of kinds 2 and 4)
//   bits  0-7   member number within the type, from 1; 0 in a type's own code
//
// The constants come from the same rows as the catalogue, so that a record cannot name a unit that is not there.
#pragma once

#include <cstdint>

namespace norvane {

enum class CodeKind : std::uint32_t {
  data_type = 0,
  unit = 1,
  enumeration_value = 2,
  quantity = 3,
  enumeration = 4,
  invalid = 255
};

constexpr std::uint32_t make_code(CodeKind kind, std::uint32_t type, std::uint32_t member = 0) {
  return static_cast<std::uint32_t>(kind) << 24 | type << 8 | member;
}

constexpr CodeKind kind_of_code(std::uint32_t code) {
  const std::uint32_t kind = code >> 24;
  return kind <= 4 ? static_cast<CodeKind>(kind) : CodeKind::invalid;
}

constexpr std::uint32_t type_number(std::uint32_t code) { return (code >> 8) & 0xFFFF; }
constexpr std::uint32_t member_number(std::uint32_t code) { return code & 0xFF; }

// Plain data types.
namespace data_type {
inline constexpr std::uint32_t any = 0, text = 1, num = 2, date = 3, boolean = 4, integer = 5, unit = 6,
                               enumeration = 7, ipaddr = 8;
}

// unit::bar_a, unit::degC, ...
namespace unit {
#define NV_QUANTITY(type, key, name)
#define NV_UNIT(type, member, key, symbol, factor, offset, long_name) \
  inline constexpr std::uint32_t key = make_code(CodeKind::unit, type, member);
#include "units/unit_table.def"
#undef NV_QUANTITY
#undef NV_UNIT
}  // namespace unit

// quantity::pressure, quantity::temperature, ...
namespace quantity {
#define NV_QUANTITY(type, key, name) inline constexpr std::uint32_t key = make_code(CodeKind::quantity, type);
#define NV_UNIT(type, member, key, symbol, factor, offset, long_name)
#include "units/unit_table.def"
#undef NV_QUANTITY
#undef NV_UNIT
}  // namespace quantity

// enumeration::rangestatus2, enumeration::compneoc5mode, ...
namespace enumeration {
#define NV_ENUMERATION(type, key, name) inline constexpr std::uint32_t key = make_code(CodeKind::enumeration, type);
#define NV_VALUE(type, member, key, text, value)
#include "units/enumeration_table.def"
#undef NV_ENUMERATION
#undef NV_VALUE
}  // namespace enumeration

}  // namespace norvane
