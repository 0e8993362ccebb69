// FunctionTest: compares the outputs of a function with reference values.
#include <cmath>
#include <cstdint>

#include "core/variant.h"
#include "framework/context.h"
#include "framework/general/arguments.h"
#include "framework/records.h"

namespace norvane::functions {
namespace {

bool same_shape(const FUNCTION_ARG::Array& a, const FUNCTION_ARG::Array& b) noexcept {
  return a.columns == b.columns && a.rows == b.rows;
}

// By value: numbers as numbers, texts exactly, a number and a text never equal.
bool equal_values(Function_CContext& context, const FUNCTION_ARG& value, const FUNCTION_ARG& reference) noexcept {
  Core_CVariant a;
  Core_CVariant b;
  return context.ToVariant(a, value) && context.ToVariant(b, reference) && a == b;
}

// Relative to the function's value; a value of 0 and a precision of exactly 1 ask for the very same number.
bool within_precision(double value, double reference, double precision) noexcept {
  if (value != 0.0 && precision != 1.0) return precision > std::fabs(value - reference) / std::fabs(value);
  return value == reference;
}

bool item_passes(Function_CContext& context, const FUNCTION_ARG& value, const FUNCTION_ARG& reference,
                 const FUNCTION_ARG* precision) noexcept {
  if (reference.kind == ARG_ERROR && reference.error == ERROR_NA) return true;  // not to be compared
  if (precision == nullptr) return equal_values(context, value, reference);
  double f = 0.0;
  double r = 0.0;
  double p = 0.0;
  return context.ReadNumber(&value, f) && context.ReadNumber(&reference, r) && context.ReadNumber(precision, p) &&
         within_precision(f, r, p);
}

void report_failure(Function_CContext& context, const FUNCTION_ARG* name_arg) noexcept {
  if (!context.messages_enabled()) return;
  constexpr std::u16string_view complaint = u" - Test Failed";
  std::u16string_view name;
  if (!context.ReadText(name_arg, name, u"")) name = {};
  const std::size_t length = name.size() + complaint.size();
  auto* text = context.arena().AllocateArray<char16_t>(length);
  if (text == nullptr) return;
  name.copy(text, name.size());
  complaint.copy(text + name.size(), complaint.size());
  context.ReportError(std::u16string_view{text, length});
}

std::uint32_t function_test(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  const Arguments arg{args, count};
  FUNCTION_ARG::Array values{};
  FUNCTION_ARG::Array references{};
  FUNCTION_ARG::Array precisions{};
  if (!read_range(context, arg, 1, values) || !read_range(context, arg, 2, references)) return ERROR_VALUE;
  // Only an omitted argument means "no precisions": one that is there and empty is a mistake.
  const bool precise = arg[3] != nullptr && arg[3]->kind != ARG_MISSING;
  if (precise && !read_range(context, arg, 3, precisions)) return ERROR_VALUE;
  if (!same_shape(values, references) || (precise && !same_shape(values, precisions))) {
    context.ReportError(u"all ranges should have the same dimensions");
    return ERROR_VALUE;
  }
  const std::uint32_t n = values.columns == 1 ? values.rows : values.columns;
  if ((values.columns != 1 && values.rows != 1) || n == UINT32_MAX) {
    context.ReportError(u"ranges should be 1-dimensional");
    return ERROR_VALUE;
  }
  if (!context.SetArray(output, 1, n + 1)) return ERROR_VALUE;
  FUNCTION_ARG* const results = output.array.elements;
  bool all = true;
  for (std::uint32_t k = 0; k < n; ++k) {
    const bool passes =
        item_passes(context, values.elements[k], references.elements[k], precise ? &precisions.elements[k] : nullptr);
    results[k + 1] = FUNCTION_ARG::Boolean(passes);
    all = all && passes;
  }
  results[0] = FUNCTION_ARG::Boolean(all);
  if (!all) report_failure(context, arg[0]);
  return ERROR_OK;
}

constexpr record::Input inputs[] = {
    record::name_input(),
    record::input(u"function_range", u"Function range", u"Range where the function is defined", data_type::any)
        .required()
        .range(),
    record::input(u"reference_range", u"Reference range",
                  u"Range of reference values which are compared to the function outputs (range should be same size "
                  u"as function_range)",
                  data_type::any)
        .required()
        .range(),
    record::input(u"precision_range", u"Precision range",
                  u"Range of precisions used in comparing the function outputs against the reference values",
                  data_type::any)
        .range(),
};
constexpr record::StatusValue result_values[] = {{0.0, u"TSTERR", u"Test Failed"}};
constexpr record::Output outputs[] = {
    record::output(u"result", u"Result", u"Test result (0=failed, 1=Success)", data_type::integer, u"")
        .meaning(result_values),
};

}  // namespace

extern const record::Function FunctionTest;
const record::Function FunctionTest = {
    .group = GroupId::Extended,
    .id = u"FunctionTest",
    .description = u"Compares the outputs of a function with reference values",
    .category = u"General",
    .subcategory = u"Extended",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .implementation = function_test,
    .notes =
        u"The first value answers for all items, the others for one item each.\n"
        u"Without precisions an item passes when value and reference are equal: numbers (booleans among them) "
        u"compare by value, texts exactly, and a number and a text are never equal.\n"
        u"With precisions all three must be numbers, and an item passes when |value - reference| / |value| "
        u"is below the precision. A value of 0, and a precision of exactly 1, ask for the very same number.\n"
        u"A reference of #N/A leaves its item out. The ranges are one row or one column of the same size.\n",
};

}  // namespace norvane::functions
