// The status outputs of a function that was not run.
#include "framework/context.h"

namespace norvane {
namespace {

// Number of the enumeration value "function disabled", which stands for a status that was never calculated.
constexpr std::uint32_t disabled_status =
    make_code(CodeKind::enumeration_value, type_number(enumeration::mathfunctionstatus), 6);
static_assert(disabled_status == 0x02000E06);

}  // namespace

std::uint32_t default_status_filler(Function_CContext& context, const Function_CFunctionSpec& spec,
                                    FUNCTION_ARG& output) {
  if (spec.has(FUNCTION_FALLBACK) && !context.WriteFallbackOutputs(spec, output)) return ERROR_OUTPUTMISMATCH;
  bool filled = false;
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    if (spec.outputs[i].role != 1) continue;
    const Unit_CEntry* entry = nullptr;
    if (context.units().EnumerationValueDetails(disabled_status, entry) != UNIT_OK) break;
    const FUNCTION_ARG value = FUNCTION_ARG::Integer(static_cast<std::int32_t>(entry->factor));
    if (spec.output_count == 1) {
      output = value;
    } else if (output.kind == ARG_ARRAY && i < output.count()) {
      output.array.elements[i] = value;
    } else {
      continue;
    }
    filled = true;
  }
  return filled ? ERROR_OK : ERROR_OUTPUTMISMATCH;
}

}  // namespace norvane
