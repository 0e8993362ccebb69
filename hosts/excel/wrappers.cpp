#include "hosts/excel/wrappers.h"

#include "hosts/excel/convert.h"
#include "hosts/excel/excel_context.h"
#include "hosts/module/module.h"

namespace norvane::excel {
namespace {

template <class Record>
Record* run(Dialect dialect, std::size_t position, Record* const* args, std::size_t count) noexcept {
  const host::FloatingPointGuard guard;
  // A host may recalculate cells of this thread while a call asks it for others.
  host::HeldContext held(nullptr);
  const Function_CFunctionSpec* known = catalogue::specification(position);
  if (!held || known == nullptr) return nullptr;
  const Function_CFunctionSpec& spec = *known;
  // Every context of this image comes from make_context.
  auto& context = static_cast<XLL_CFunctionContext&>(held.context());
  Record* result = context.arena().AllocateArray<Record>(1);
  FUNCTION_ARG* values = context.arena().AllocateArray<FUNCTION_ARG>(count);
  if (result == nullptr || values == nullptr) return nullptr;
  for (std::size_t i = 0; i < count; ++i)
    if (!to_argument(context, args[i], values[i])) return nullptr;
  FUNCTION_ARG output = FUNCTION_ARG::Empty();
  const std::uint32_t status = context.Run(dialect, spec, values, count, output, held.state().slot(spec));
  if (status == ERROR_OK) return to_record(context, output, *result) ? result : nullptr;
  *result = Record{};
  result->error = static_cast<decltype(result->error)>(error_of_code(status));
  result->type = XL_ERROR;
  return result;
}

}  // namespace

XlRecord12* call_12(std::size_t position, XlRecord12* const* args, std::size_t count) noexcept {
  return run(Dialect::excel12, position, args, count);
}

XlRecord4* call_4(std::size_t position, XlRecord4* const* args, std::size_t count) noexcept {
  return run(Dialect::excel4, position, args, count);
}

}  // namespace norvane::excel
