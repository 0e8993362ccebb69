// The records a spreadsheet host and an add-in exchange, in both dialects of its C interface (64-bit processes).
//
// "4" is the older dialect: 8-bit strings in the code page of the host, 16-bit counts. "12" is the newer one:
// UTF-16 strings, 32-bit counts. Strings are counted, not terminated: their first unit is the length. Rows
// and columns of references count from 0. Array elements stand row by row.
#pragma once

#include <cstddef>
#include <cstdint>

namespace norvane::excel {

enum XlType : std::uint32_t {
  XL_NUMBER = 0x0001,
  XL_STRING = 0x0002,
  XL_BOOLEAN = 0x0004,
  XL_MULTI_REFERENCE = 0x0008,
  XL_ERROR = 0x0010,
  XL_ARRAY = 0x0040,
  XL_MISSING = 0x0080,
  XL_NIL = 0x0100,
  XL_REFERENCE = 0x0400,
  XL_INTEGER = 0x0800,
  // The two flags (host frees, add-in frees) are not part of the type.
  XL_TYPE_MASK = 0x0FFF
};

// Error values of cells.
enum XlError : std::int32_t {
  XL_ERROR_NULL = 0,
  XL_ERROR_DIV0 = 7,
  XL_ERROR_VALUE = 15,
  XL_ERROR_REF = 23,
  XL_ERROR_NAME = 29,
  XL_ERROR_NUM = 36,
  XL_ERROR_NA = 42
};

// Answers of a call of the host, bits.
enum XlReturn : int {
  XL_RETURN_SUCCESS = 0,
  XL_RETURN_ABORT = 1,
  XL_RETURN_INVALID_FUNCTION = 2,
  XL_RETURN_FAILED = 32,
  XL_RETURN_UNCALCULATED = 64
};

// Functions of the host.
enum XlFunction : int {
  XL_FREE = 0x4000,
  XL_COERCE = 0x4002,
  XL_SHEET_NAME = 0x4005,
  XL_GET_NAME = 0x4009,
  XLF_CALLER = 89,
  XLF_REGISTER = 149,
  XLF_ADD_COMMAND = 153,
  XLF_DELETE_COMMAND = 159
};

struct XlArea4 {
  std::uint16_t first_row;
  std::uint16_t last_row;
  std::uint8_t first_column;
  std::uint8_t last_column;
};
struct XlAreas4 {
  std::uint16_t count;
  XlArea4 areas[1];  // as many as counted
};
struct XlArea12 {
  std::int32_t first_row;
  std::int32_t last_row;
  std::int32_t first_column;
  std::int32_t last_column;
};
struct XlAreas12 {
  std::uint16_t count;
  XlArea12 areas[1];  // as many as counted
};
static_assert(sizeof(XlArea4) == 6 && sizeof(XlAreas4) == 8 && offsetof(XlAreas4, areas) == 2);
static_assert(sizeof(XlArea12) == 16 && sizeof(XlAreas12) == 20 && offsetof(XlAreas12, areas) == 4);

struct XlRecord4 {
  union {
    double number;
    unsigned char* string;
    std::uint16_t boolean;
    std::uint16_t error;
    std::int16_t integer;
    struct {
      std::uint16_t count;  // always 1
      XlArea4 area;
    } reference;
    struct {
      XlAreas4* areas;
      std::uintptr_t sheet;
    } multi;
    struct {
      XlRecord4* elements;
      std::uint16_t rows;
      std::uint16_t columns;
    } array;
  };
  std::uint16_t type;
};

struct XlRecord12 {
  union {
    double number;
    char16_t* string;
    std::int32_t boolean;
    std::int32_t error;
    std::int32_t integer;
    struct {
      std::uint16_t count;  // always 1
      XlArea12 area;
    } reference;
    struct {
      XlAreas12* areas;
      std::uintptr_t sheet;
    } multi;
    struct {
      XlRecord12* elements;
      std::int32_t rows;
      std::int32_t columns;
    } array;
    unsigned char payload[24];
  };
  std::uint32_t type;
};

static_assert(sizeof(XlRecord4) == 24 && offsetof(XlRecord4, type) == 16);
static_assert(offsetof(XlRecord4, reference.area) == 2 && offsetof(XlRecord4, multi.sheet) == 8);
static_assert(offsetof(XlRecord4, array.rows) == 8 && offsetof(XlRecord4, array.columns) == 10);
static_assert(sizeof(XlRecord12) == 32 && offsetof(XlRecord12, type) == 24);
static_assert(offsetof(XlRecord12, reference.area) == 4 && offsetof(XlRecord12, multi.sheet) == 8);
static_assert(offsetof(XlRecord12, array.rows) == 8 && offsetof(XlRecord12, array.columns) == 12);

// A full sheet of the newer dialect.
inline constexpr std::int32_t sheet_rows = 1048576;
inline constexpr std::int32_t sheet_columns = 16384;

// Longest texts: the first unit of a host string is its length.
inline constexpr std::size_t max_text12 = 32767;
inline constexpr std::size_t max_text4 = 255;

// The two ways into the host. Both call conventions are the platform's own.
using XlEntry4 = int (*)(int function, XlRecord4* result, int count, XlRecord4** args);
using XlEntry12 = int (*)(int function, int count, XlRecord12** args, XlRecord12* result);

}  // namespace norvane::excel
