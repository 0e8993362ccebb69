// The values of a call: conversions between kinds, typed readers, outputs in the arena.
#include <cmath>
#include <cstring>
#include <limits>

#include "core/text.h"
#include "framework/context.h"

namespace norvane {
namespace {

// Nesting of arrays inside arrays that is followed; a host's sheet knows one level.
constexpr int max_nesting = 8;

std::int32_t truncate_to_32_bits(double value) noexcept {
  // Saturates, and a NaN is 0: a conversion that the language leaves undefined must not reach a caller.
  if (std::isnan(value)) return 0;
  if (value <= static_cast<double>(std::numeric_limits<std::int32_t>::min()))
    return std::numeric_limits<std::int32_t>::min();
  if (value >= static_cast<double>(std::numeric_limits<std::int32_t>::max()))
    return std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(value);
}

bool is_absent(const FUNCTION_ARG* arg) noexcept {
  return arg == nullptr || arg->kind == ARG_MISSING || arg->kind == ARG_EMPTY;
}

}  // namespace

// ---- Conversions -------------------------------------------------------------------------------------------------

bool Function_CContext::ConvertArgument(FUNCTION_ARG& out, const FUNCTION_ARG& in, std::uint32_t kind) noexcept {
  if (&out == &in) {
    const FUNCTION_ARG copy = in;
    return ConvertArgument(out, copy, kind);
  }
  out.kind = kind;
  switch (kind) {
    case ARG_NUMBER: return ConvertToNumber(out, in);
    case ARG_INTEGER: return ConvertToInteger(out, in);
    case ARG_BOOLEAN: return ConvertToBoolean(out, in);
    case ARG_STRING: return ConvertToString(out, in);
    case ARG_ARRAY: return ConvertToArray(out, in);
    case ARG_MISSING:
    case ARG_EMPTY: return true;
    case ARG_ERROR:
      if (in.kind != ARG_ERROR) return FailConversion(ERROR_VALUE);
      out.error = in.error;
      return true;
    default: return FailConversion(ERROR_VALUE);
  }
}

// The first scalar of an array, or null: an array without elements fails without a code.
const FUNCTION_ARG* Function_CContext::FirstElement(const FUNCTION_ARG& array) noexcept {
  const FUNCTION_ARG* element = &array;
  for (int depth = 0; element->kind == ARG_ARRAY; ++depth) {
    if (depth == max_nesting || element->count() == 0 || element->array.elements == nullptr) return nullptr;
    element = element->array.elements;
  }
  return element;
}

bool Function_CContext::ConvertToNumber(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept {
  switch (in.kind) {
    case ARG_NUMBER: out.number = in.number; return true;
    case ARG_INTEGER: out.number = in.integer; return true;
    case ARG_BOOLEAN: out.number = in.boolean != 0 ? 1.0 : 0.0; return true;
    case ARG_STRING: return parse_number(in.text(), out.number) || FailConversion(ERROR_VALUE);
    case ARG_ARRAY: {
      const FUNCTION_ARG* first = FirstElement(in);
      return first != nullptr && ConvertArgument(out, *first, ARG_NUMBER);
    }
    case ARG_EMPTY: out.number = 0.0; return true;
    case ARG_ERROR: return FailConversion(in.error);
    default: return FailConversion(ERROR_VALUE);
  }
}

bool Function_CContext::ConvertToInteger(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept {
  switch (in.kind) {
    case ARG_NUMBER: out.integer = truncate_to_32_bits(in.number); return true;
    case ARG_INTEGER: out.integer = in.integer; return true;
    case ARG_BOOLEAN: out.integer = in.boolean != 0 ? 1 : 0; return true;
    case ARG_STRING: return parse_integer(in.text(), out.integer) || FailConversion(ERROR_VALUE);
    case ARG_ARRAY: {
      const FUNCTION_ARG* first = FirstElement(in);
      return first != nullptr && ConvertArgument(out, *first, ARG_INTEGER);
    }
    case ARG_EMPTY: out.integer = 0; return true;
    case ARG_ERROR: return FailConversion(in.error);
    default: return FailConversion(ERROR_VALUE);
  }
}

bool Function_CContext::ConvertToBoolean(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept {
  const auto set = [&out](bool value) {
    out.boolean = value ? 1 : 0;
    return true;
  };
  switch (in.kind) {
    case ARG_NUMBER: return set(in.number != 0.0);
    case ARG_INTEGER: return set(in.integer != 0);
    case ARG_BOOLEAN: return set(in.boolean != 0);
    case ARG_STRING: {
      if (equal_ignoring_case(in.text(), u"TRUE")) return set(true);
      if (equal_ignoring_case(in.text(), u"FALSE")) return set(false);
      double number = 0.0;
      if (!parse_number(in.text(), number)) return FailConversion(ERROR_VALUE);
      return set(number != 0.0);
    }
    case ARG_ARRAY: {
      const FUNCTION_ARG* first = FirstElement(in);
      return first != nullptr && ConvertArgument(out, *first, ARG_BOOLEAN);
    }
    case ARG_EMPTY: return set(false);
    case ARG_ERROR: return FailConversion(in.error);
    default: return FailConversion(ERROR_VALUE);
  }
}

bool Function_CContext::ConvertToString(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept {
  constexpr std::size_t number_buffer = 64;
  constexpr std::size_t integer_buffer = 32;
  switch (in.kind) {
    case ARG_STRING: out.string = in.string; return true;
    case ARG_BOOLEAN:
      out.string = in.boolean != 0 ? FUNCTION_ARG::Text{u"TRUE", 4} : FUNCTION_ARG::Text{u"FALSE", 5};
      return true;
    case ARG_NUMBER:
    case ARG_INTEGER: {
      char16_t digits[max_number_text + 1];
      const bool whole = in.kind == ARG_INTEGER;
      const std::size_t length = whole ? format_integer(in.integer, digits) : format_number(in.number, digits);
      const std::size_t room = whole ? integer_buffer : number_buffer;
      char16_t* text = length < room ? arena_.AllocateArray<char16_t>(room) : nullptr;
      if (text == nullptr) return FailConversion(ERROR_VALUE);
      std::memcpy(text, digits, (length + 1) * sizeof(char16_t));
      out.string = {text, length};
      return true;
    }
    case ARG_ARRAY: {
      const FUNCTION_ARG* first = FirstElement(in);
      return first != nullptr && ConvertArgument(out, *first, ARG_STRING);
    }
    case ARG_EMPTY: out.string = {u"", 0}; return true;
    case ARG_ERROR: return FailConversion(in.error);
    default: return FailConversion(ERROR_VALUE);
  }
}

bool Function_CContext::ConvertToArray(FUNCTION_ARG& out, const FUNCTION_ARG& in) noexcept {
  switch (in.kind) {
    case ARG_ARRAY: out.array = in.array; return true;
    case ARG_NUMBER:
    case ARG_INTEGER:
    case ARG_BOOLEAN:
    case ARG_STRING: {
      auto* element = arena_.AllocateArray<FUNCTION_ARG>(1);
      if (element == nullptr) return FailConversion(ERROR_VALUE);
      *element = in;
      out.array = {1, 1, element};
      return true;
    }
    // A cell's error, like every other thing that is no array, is a wrong argument here and keeps no code.
    default: return FailConversion(ERROR_VALUE);
  }
}

bool Function_CContext::FromVariant(FUNCTION_ARG& out, const Core_CVariant& value) noexcept {
  switch (value.tag()) {
    case Core_CVariant::EMPTY: out = FUNCTION_ARG::Empty(); return true;
    case Core_CVariant::BOOL: out = FUNCTION_ARG::Boolean(value.AsBool()); return true;
    case Core_CVariant::STRING:
    case Core_CVariant::BORROWED_STRING: return SetText(out, value.AsText());
    case Core_CVariant::ERROR_CODE: out = FUNCTION_ARG::Error(value.AsError()); return true;
    default: {
      double number = 0.0;
      const bool numeric = value.tag() >= Core_CVariant::INT8 && value.tag() <= Core_CVariant::DOUBLE;
      const bool good = numeric && value.ToDouble(number) == CORE_RESULT_OK;
      out = FUNCTION_ARG::Number(good ? number : 0.0);
      return good;
    }
  }
}

bool Function_CContext::ToVariant(Core_CVariant& out, const FUNCTION_ARG& value) noexcept {
  switch (value.kind) {
    case ARG_NUMBER: out.SetDouble(value.number); return true;
    case ARG_INTEGER: out.SetInt32(value.integer); return true;
    case ARG_BOOLEAN: out.SetBool(value.boolean != 0); return true;
    case ARG_STRING: return out.SetText(value.text(), false) == CORE_RESULT_OK;
    case ARG_MISSING:
    case ARG_EMPTY: out.Clear(); return true;
    // An error becomes its number, not an error value: comparisons of outputs rely on it.
    case ARG_ERROR: out.SetInt32(static_cast<std::int32_t>(value.error)); return true;
    case ARG_ARRAY: {
      const FUNCTION_ARG* first = FirstElement(value);
      return first != nullptr ? ToVariant(out, *first) : FailConversion(ERROR_VALUE);
    }
    default: return FailConversion(ERROR_VALUE);
  }
}

// ---- Readers and writers -----------------------------------------------------------------------------------------

bool Function_CContext::GetString(const FUNCTION_ARG& in, std::u16string_view& text) noexcept {
  if (in.kind == ARG_STRING) {
    text = in.text();
    return true;
  }
  text = {};
  if (in.kind == ARG_MISSING || in.kind == ARG_EMPTY) return true;
  FUNCTION_ARG converted{};
  if (!ConvertArgument(converted, in, ARG_STRING)) return false;
  text = converted.text();
  return true;
}

bool Function_CContext::GetText(const FUNCTION_ARG& in, std::u16string_view& text, bool allow_empty) noexcept {
  return GetString(in, text) && (allow_empty || !text.empty());
}

bool Function_CContext::ReadNumber(const FUNCTION_ARG* arg, double& value) noexcept {
  if (arg == nullptr) return FailConversion(ERROR_VALUE);
  if (arg->kind == ARG_NUMBER) {
    value = arg->number;
    return true;
  }
  FUNCTION_ARG converted{};
  if (!ConvertArgument(converted, *arg, ARG_NUMBER)) return false;
  value = converted.number;
  return true;
}

bool Function_CContext::ReadNumber(const FUNCTION_ARG* arg, double& value, double fallback) noexcept {
  if (!is_absent(arg)) return ReadNumber(arg, value);
  value = fallback;
  return true;
}

bool Function_CContext::ReadInteger(const FUNCTION_ARG* arg, std::int32_t& value) noexcept {
  if (arg == nullptr) return FailConversion(ERROR_VALUE);
  FUNCTION_ARG converted{};
  if (!ConvertArgument(converted, *arg, ARG_INTEGER)) return false;
  value = converted.integer;
  return true;
}

bool Function_CContext::ReadInteger(const FUNCTION_ARG* arg, std::int32_t& value, std::int32_t fallback) noexcept {
  if (!is_absent(arg)) return ReadInteger(arg, value);
  value = fallback;
  return true;
}

bool Function_CContext::ReadUnsigned(const FUNCTION_ARG* arg, std::uint32_t& value) noexcept {
  double number = 0.0;
  if (!ReadNumber(arg, number)) return false;
  if (!(number >= 0.0 && number <= 4294967295.0)) return FailConversion(ERROR_NUM);
  value = static_cast<std::uint32_t>(number);
  return true;
}

bool Function_CContext::ReadBoolean(const FUNCTION_ARG* arg, bool& value) noexcept {
  if (arg == nullptr) return FailConversion(ERROR_VALUE);
  FUNCTION_ARG converted{};
  if (!ConvertArgument(converted, *arg, ARG_BOOLEAN)) return false;
  value = converted.boolean != 0;
  return true;
}

bool Function_CContext::ReadBoolean(const FUNCTION_ARG* arg, bool& value, bool fallback) noexcept {
  if (!is_absent(arg)) return ReadBoolean(arg, value);
  value = fallback;
  return true;
}

bool Function_CContext::ReadText(const FUNCTION_ARG* arg, std::u16string_view& text) noexcept {
  if (arg == nullptr) return FailConversion(ERROR_VALUE);
  FUNCTION_ARG converted{};
  if (!ConvertArgument(converted, *arg, ARG_STRING)) return false;
  text = converted.text();
  return true;
}

bool Function_CContext::ReadText(const FUNCTION_ARG* arg, std::u16string_view& text,
                                 std::u16string_view fallback) noexcept {
  if (!is_absent(arg)) return ReadText(arg, text);
  text = fallback;
  return true;
}

bool Function_CContext::ReadArray(const FUNCTION_ARG* arg, FUNCTION_ARG::Array& array) noexcept {
  if (arg == nullptr) return FailConversion(ERROR_VALUE);
  FUNCTION_ARG converted{};
  if (!ConvertArgument(converted, *arg, ARG_ARRAY)) return false;
  array = converted.array;
  // A count without elements is a caller's mistake: nothing is read through it.
  if (array.elements == nullptr && std::uint64_t{array.columns} * array.rows != 0) return FailConversion(ERROR_VALUE);
  return true;
}

bool Function_CContext::ReadError(const FUNCTION_ARG* arg, std::uint32_t& code) noexcept {
  if (arg == nullptr) return FailConversion(ERROR_VALUE);
  FUNCTION_ARG converted{};
  if (!ConvertArgument(converted, *arg, ARG_ERROR)) return false;
  code = converted.error;
  return true;
}

bool Function_CContext::ReadIdentifier(const FUNCTION_ARG* arg, std::uint32_t& code) noexcept {
  if (arg == nullptr) return FailConversion(ERROR_VALUE);
  if (arg->kind == ARG_NUMBER || arg->kind == ARG_INTEGER) {
    std::int32_t value = 0;
    if (!ReadInteger(arg, value)) return false;
    code = static_cast<std::uint32_t>(value);
    return true;
  }
  if (arg->kind == ARG_ARRAY || arg->kind > ARG_EMPTY) {
    // Cells, or a host's own kind (a reference of cells): the first of the values decides.
    FUNCTION_ARG::Array cells;
    if (ReadArray(arg, cells) && std::uint64_t{cells.columns} * cells.rows != 0 &&
        cells.elements->kind <= ARG_EMPTY && cells.elements->kind != ARG_ARRAY)
      return ReadIdentifier(cells.elements, code);
  }
  std::u16string_view text;
  if (!ReadText(arg, text)) return false;
  return units_->CodeOfText(text, code) || FailConversion(ERROR_VALUE);
}

bool Function_CContext::SetText(FUNCTION_ARG& output, std::u16string_view text) noexcept {
  output = FUNCTION_ARG::Missing();
  if (text.data() == nullptr) return true;
  char16_t* copy = arena_.AllocateArray<char16_t>(text.size() + 1);
  if (copy == nullptr) return FailConversion(ERROR_VALUE);
  if (!text.empty()) std::memcpy(copy, text.data(), text.size() * sizeof(char16_t));
  copy[text.size()] = u'\0';
  output = FUNCTION_ARG::String(copy, text.size());
  return true;
}

bool Function_CContext::SetArray(FUNCTION_ARG& output, std::uint32_t columns, std::uint32_t rows) noexcept {
  const std::uint64_t count = std::uint64_t{columns} * rows;
  auto* elements = arena_.AllocateArray<FUNCTION_ARG>(static_cast<std::size_t>(count));
  if (elements == nullptr) {
    output = FUNCTION_ARG::Missing();
    return FailConversion(ERROR_VALUE);
  }
  for (std::uint64_t i = 0; i < count; ++i) elements[i].kind = ARG_EMPTY;
  output = FUNCTION_ARG::OfArray(columns, rows, elements);
  return true;
}

}  // namespace norvane
