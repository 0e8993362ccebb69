// Between the records of a spreadsheet host and call values. Everything made lives in the context's arena.
#pragma once

#include <cstdint>

#include "framework/context.h"
#include "hosts/excel/xl_types.h"

namespace norvane::excel {

// Kinds of call values that only the contexts of spreadsheets know: references of cells. The payload is the host's.
enum REFERENCE_KIND : std::uint32_t {
  ARG_MULTI_REFERENCE4 = 9,
  ARG_REFERENCE4 = 10,
  ARG_MULTI_REFERENCE12 = 11,
  ARG_REFERENCE12 = 12
};
constexpr bool is_reference(std::uint32_t kind) { return kind >= ARG_MULTI_REFERENCE4 && kind <= ARG_REFERENCE12; }

// Result code of a cell's error value (1 to 7, 3 for an unknown one) and back (#VALUE! for any other code).
std::uint32_t code_of_error(std::int32_t error) noexcept;
std::int32_t error_of_code(std::uint32_t code) noexcept;

// Host record to call value. False for an unknown type, a null pointer where one is needed,
// counts that no sheet has, or when memory is refused.
bool to_argument(Function_CContext& context, const XlRecord12* record, FUNCTION_ARG& arg) noexcept;
bool to_argument(Function_CContext& context, const XlRecord4* record, FUNCTION_ARG& arg) noexcept;

// Call value to host record, without flag bits: the memory is the thread's.
bool to_record(Function_CContext& context, const FUNCTION_ARG& arg, XlRecord12& record) noexcept;
bool to_record(Function_CContext& context, const FUNCTION_ARG& arg, XlRecord4& record) noexcept;

// The host's reference in a call value of that dialect.
bool reference_record(const FUNCTION_ARG& arg, XlRecord12& record) noexcept;
bool reference_record(const FUNCTION_ARG& arg, XlRecord4& record) noexcept;

}  // namespace norvane::excel
