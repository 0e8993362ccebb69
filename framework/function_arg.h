// FUNCTION_ARG: one argument or output value of a call, and the error codes a call answers with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace norvane {

enum ARG_KIND : std::uint32_t {
  ARG_NUMBER = 1,
  ARG_INTEGER = 2,
  ARG_BOOLEAN = 3,
  ARG_STRING = 4,
  ARG_ARRAY = 5,
  ARG_MISSING = 6,  // omitted by the caller; an optional input's default takes its place
  ARG_ERROR = 7,
  ARG_EMPTY = 8  // a blank cell; converts to 0, false or ""
  // 9 to 12 are references of a spreadsheet host, known to its contexts only.
};

// 24 bytes of payload and the kind. Owns nothing: texts and elements live in the arena of the call's context
// and vanish when that is reset. Array elements stand row by row: (column, row) is number row * columns + column.
struct FUNCTION_ARG {
  struct Text {
    const char16_t* data;  // NUL-terminated
    std::uint64_t length;  // in UTF-16 code units
  };
  struct Array {
    std::uint32_t columns;
    std::uint32_t rows;
    FUNCTION_ARG* elements;
  };
  union {
    double number;
    std::int32_t integer;
    std::uint8_t boolean;
    Text string;
    Array array;
    std::uint32_t error;
    unsigned char payload[24];
  };
  std::uint32_t kind;

  static FUNCTION_ARG Number(double value) noexcept {
    FUNCTION_ARG arg;
    arg.number = value;
    arg.kind = ARG_NUMBER;
    return arg;
  }
  static FUNCTION_ARG Integer(std::int32_t value) noexcept {
    FUNCTION_ARG arg;
    arg.integer = value;
    arg.kind = ARG_INTEGER;
    return arg;
  }
  static FUNCTION_ARG Boolean(bool value) noexcept {
    FUNCTION_ARG arg;
    arg.boolean = value ? 1 : 0;
    arg.kind = ARG_BOOLEAN;
    return arg;
  }
  // The text must be NUL-terminated and outlive the value.
  static FUNCTION_ARG String(const char16_t* data, std::uint64_t length) noexcept {
    FUNCTION_ARG arg;
    arg.string = {data, length};
    arg.kind = ARG_STRING;
    return arg;
  }
  static FUNCTION_ARG OfArray(std::uint32_t columns, std::uint32_t rows, FUNCTION_ARG* elements) noexcept {
    FUNCTION_ARG arg;
    arg.array = {columns, rows, elements};
    arg.kind = ARG_ARRAY;
    return arg;
  }
  static FUNCTION_ARG Error(std::uint32_t code) noexcept {
    FUNCTION_ARG arg;
    arg.error = code;
    arg.kind = ARG_ERROR;
    return arg;
  }
  static FUNCTION_ARG Missing() noexcept {
    FUNCTION_ARG arg;
    arg.kind = ARG_MISSING;
    return arg;
  }
  static FUNCTION_ARG Empty() noexcept {
    FUNCTION_ARG arg;
    arg.kind = ARG_EMPTY;
    return arg;
  }

  // The text of an ARG_STRING.
  std::u16string_view text() const noexcept { return {string.data, static_cast<std::size_t>(string.length)}; }
  // Number of elements of an ARG_ARRAY.
  std::uint64_t count() const noexcept { return std::uint64_t{array.columns} * array.rows; }
};

static_assert(sizeof(FUNCTION_ARG) == 32);

// Worksheet error codes: the status of a call and the payload of ARG_ERROR.
enum WORKSHEET_ERROR : std::uint32_t {
  ERROR_OK = 0,
  ERROR_NULL = 1,
  ERROR_DIV0 = 2,
  ERROR_VALUE = 3,  // an argument could not be converted or failed validation
  ERROR_REF = 4,
  ERROR_NAME = 5,
  ERROR_NUM = 6,  // a result is not a finite number
  ERROR_NA = 7,   // a named function or item does not exist
  ERROR_ARGCOUNT = 8,
  ERROR_ERROR = 9,     // an error message was reported
  ERROR_WARNING = 10,  // a warning message was reported
  ERROR_OUTPUTMISMATCH = 11,
  ERROR_ACCESSOR = 12  // retentive data of the call could not be accessed
};

// "OK", "#NULL!", ... "#ACCESSOR!"; "#UNKNOWN!" for any other code.
std::u16string_view error_text(std::uint32_t code) noexcept;

// Status flags word, OR-ed together during one call.
enum STATUS_FLAGS : std::uint32_t {
  FLAG_INPUT_INVALID = 0x01000001,
  FLAG_IMPLEMENTATION_FAILED = 0x01000002,
  FLAG_OUTPUT_NOT_FINITE = 0x01000003,
  FLAG_OUTPUT_TRANSPOSED = 0x04010000,
  FLAG_OUTPUT_FALLBACK = 0x04020000
};

}  // namespace norvane
