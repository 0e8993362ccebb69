// What a cell holds, and how it stands in the records of either dialect: shared by the programs that stand in for a
// spreadsheet.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/text.h"
#include "hosts/excel/xl_types.h"

namespace sheet {

// A rectangle of a sheet, rows and columns from 0, both ends included.
struct Place {
  int sheet = 0;
  int row = 0;
  int column = 0;
  int end_row = 0;
  int end_column = 0;

  static Place Cell(int sheet, int row, int column) { return {sheet, row, column, row, column}; }
  int rows() const { return end_row - row + 1; }
  int columns() const { return end_column - column + 1; }
  bool operator==(const Place&) const = default;
};

enum class Kind { blank, number, integer, boolean, text, error, array, missing, reference, null };

struct Value {
  Kind kind = Kind::blank;
  double number = 0.0;  // also the value of an integer, a boolean or an error
  std::u16string text{};
  int rows = 0;
  int columns = 0;
  std::vector<Value> elements{};
  Place place{};

  // Numbers by their bits.
  bool operator==(const Value& other) const {
    return kind == other.kind && std::bit_cast<std::uint64_t>(number) == std::bit_cast<std::uint64_t>(other.number) &&
           text == other.text && rows == other.rows && columns == other.columns && elements == other.elements &&
           place == other.place;
  }
};

inline Value Blank() { return {}; }
inline Value Missing() { return {Kind::missing}; }
inline Value Number(double number) { return {Kind::number, number}; }
inline Value Integer(int number) { return {Kind::integer, static_cast<double>(number)}; }
inline Value Boolean(bool truth) { return {Kind::boolean, truth ? 1.0 : 0.0}; }
inline Value Error(int code) { return {Kind::error, static_cast<double>(code)}; }
inline Value Text(std::u16string text) { return {Kind::text, 0.0, std::move(text)}; }
inline Value Array(int rows, int columns, std::vector<Value> elements) {
  return {Kind::array, 0.0, {}, rows, columns, std::move(elements)};
}
inline Value Reference(Place place) { return {Kind::reference, 0.0, {}, 0, 0, {}, place}; }

inline void PrintTo(const Value& value, std::ostream* out) {
  static const char* const names[] = {"blank", "number", "integer", "boolean",   "text",
                                      "error", "array",  "missing", "reference", "null"};
  *out << names[static_cast<int>(value.kind)] << " ";
  if (value.kind == Kind::text) {
    *out << "'" << norvane::to_utf8(value.text) << "'";
  } else if (value.kind == Kind::array) {
    *out << value.rows << "x" << value.columns << " {";
    for (const Value& element : value.elements) PrintTo(element, &(*out << " "));
    *out << " }";
  } else {
    out->precision(17);
    *out << value.number;
  }
}

// Memory of records: a call's arguments, or blocks that the add-in must give back.
class Memory {
 public:
  virtual ~Memory() = default;
  virtual void* Take(std::size_t size) = 0;
  template <class T>
  T* Make(std::size_t count) {
    return static_cast<T*>(Take(sizeof(T) * (count > 0 ? count : 1)));
  }
};

class CallMemory final : public Memory {
 public:
  void* Take(std::size_t size) override { return blocks_.emplace_back(std::make_unique<char[]>(size)).get(); }

 private:
  std::vector<std::unique_ptr<char[]>> blocks_;
};

inline void SetText(norvane::excel::XlRecord12& record, const std::u16string& text, Memory& memory) {
  record.string = memory.Make<char16_t>(text.size() + 1);
  record.string[0] = static_cast<char16_t>(text.size());
  std::memcpy(record.string + 1, text.data(), text.size() * sizeof(char16_t));
}
// The older dialect's texts: on Windows ISO 8859-1 is enough for what the tests write, elsewhere they are UTF-8.
inline std::string Narrow(const std::u16string& text, std::size_t longest) {
#if defined(_WIN32)
  std::string bytes;
  for (const char16_t unit : text.substr(0, longest)) bytes += static_cast<char>(unit <= 0xFF ? unit : u'?');
  return bytes;
#else
  std::string bytes = norvane::to_utf8(text);
  std::size_t end = bytes.size() < longest ? bytes.size() : longest;
  while (end < bytes.size() && (bytes[end] & 0xC0) == 0x80) --end;
  return bytes.substr(0, end);
#endif
}
inline std::u16string Widen(const char* bytes, std::size_t length) {
#if defined(_WIN32)
  std::u16string text;
  for (std::size_t i = 0; i < length; ++i) text += static_cast<unsigned char>(bytes[i]);
  return text;
#else
  return norvane::to_utf16({bytes, length});
#endif
}
inline void SetText(norvane::excel::XlRecord4& record, const std::u16string& text, Memory& memory) {
  const std::string bytes = Narrow(text, 255);
  record.string = memory.Make<unsigned char>(bytes.size() + 1);
  record.string[0] = static_cast<unsigned char>(bytes.size());
  std::memcpy(record.string + 1, bytes.data(), bytes.size());
}
inline std::u16string GetText(const norvane::excel::XlRecord12& record) {
  return {record.string + 1, record.string[0]};
}
inline std::u16string GetText(const norvane::excel::XlRecord4& record) {
  return Widen(reinterpret_cast<const char*>(record.string + 1), record.string[0]);
}

template <class Area>
void SetArea(Area& area, const Place& place) {
  area.first_row = static_cast<decltype(area.first_row)>(place.row);
  area.last_row = static_cast<decltype(area.last_row)>(place.end_row);
  area.first_column = static_cast<decltype(area.first_column)>(place.column);
  area.last_column = static_cast<decltype(area.last_column)>(place.end_column);
}
template <class Area>
Place GetArea(const Area& area, int sheet) {
  return {sheet, area.first_row, area.first_column, area.last_row, area.last_column};
}

template <class Record>
void Write(const Value& value, Record& record, Memory& memory, int current_sheet = 0) {
  using namespace norvane::excel;
  record = Record{};
  switch (value.kind) {
    case Kind::blank: record.type = XL_NIL; break;
    case Kind::missing:
    case Kind::null: record.type = XL_MISSING; break;
    case Kind::number:
      record.number = value.number;
      record.type = XL_NUMBER;
      break;
    case Kind::integer:
      record.integer = static_cast<decltype(record.integer)>(value.number);
      record.type = XL_INTEGER;
      break;
    case Kind::boolean:
      record.boolean = value.number != 0.0;
      record.type = XL_BOOLEAN;
      break;
    case Kind::error:
      record.error = static_cast<decltype(record.error)>(value.number);
      record.type = XL_ERROR;
      break;
    case Kind::text:
      SetText(record, value.text, memory);
      record.type = XL_STRING;
      break;
    case Kind::array: {
      auto* elements = memory.Make<Record>(value.elements.size());
      for (std::size_t i = 0; i < value.elements.size(); ++i)
        Write(value.elements[i], elements[i], memory, current_sheet);
      record.array.elements = elements;
      record.array.rows = static_cast<decltype(record.array.rows)>(value.rows);
      record.array.columns = static_cast<decltype(record.array.columns)>(value.columns);
      record.type = XL_ARRAY;
      break;
    }
    case Kind::reference:
      if (value.place.sheet == current_sheet) {
        record.reference.count = 1;
        SetArea(record.reference.area, value.place);
        record.type = XL_REFERENCE;
      } else {
        using Areas = std::remove_pointer_t<decltype(record.multi.areas)>;
        record.multi.areas = memory.Make<Areas>(1);
        record.multi.areas->count = 1;
        SetArea(record.multi.areas->areas[0], value.place);
        record.multi.sheet = static_cast<std::uintptr_t>(value.place.sheet) + 1;
        record.type = XL_MULTI_REFERENCE;
      }
      break;
  }
}

// A flag beside the type, on every record that the host wants back.
inline constexpr std::uint32_t host_frees = 0x1000;

// A type that there is not reads as an error of its negative.
template <class Record>
Value Read(const Record& record, int current_sheet = 0) {
  using namespace norvane::excel;
  const auto type = static_cast<std::uint32_t>(record.type) & ~host_frees;
  switch (type) {
    case XL_NUMBER: return Number(record.number);
    case XL_INTEGER: return Integer(record.integer);
    case XL_BOOLEAN: return Boolean(record.boolean != 0);
    case XL_ERROR: return Error(record.error);
    case XL_STRING: return Text(GetText(record));
    case XL_MISSING: return Missing();
    case XL_NIL: return Blank();
    case XL_REFERENCE: return Reference(GetArea(record.reference.area, current_sheet));
    case XL_MULTI_REFERENCE:
      return Reference(GetArea(record.multi.areas->areas[0], static_cast<int>(record.multi.sheet) - 1));
    case XL_ARRAY: {
      const int rows = record.array.rows, columns = record.array.columns;
      std::vector<Value> elements;
      for (int i = 0; i < rows * columns; ++i) elements.push_back(Read(record.array.elements[i], current_sheet));
      return Array(rows, columns, std::move(elements));
    }
    default: return Error(-static_cast<int>(type));
  }
}

}  // namespace sheet
