#include "hosts/exports/runner.h"

#include <cstring>

#include "core/text.h"
#include "hosts/module/export.h"
#include "hosts/module/typed_call.h"

namespace norvane::exports {
namespace {

using host::Parameter;
using host::Passing;
using host::Signature;
using host::TypedCall;

constexpr std::uint32_t not_run = 0xFFFFFFFF;
constexpr std::uint32_t no_output = 0xFFFFFFFE;
constexpr std::size_t longest_text = 32767;

bool take_text(TypedCall& call, const Parameter& input, const char* text) {
  if (text == nullptr) return true;  // its default
  const void* end = std::memchr(text, '\0', longest_text + 1);
  if (end == nullptr) return false;
  return call.set_text(input, to_utf16({text, static_cast<std::size_t>(static_cast<const char*>(end) - text)}));
}

bool take(TypedCall& call, const Parameter& input, const norvane_value& value) {
  switch (input.passing) {
    case Passing::number: call.set_number(input, value.number); return true;
    case Passing::option: call.set_option(input, value.option); return true;
    case Passing::range: return call.set_list(input, static_cast<const double*>(value.data), value.option);
    case Passing::text: return take_text(call, input, static_cast<const char*>(value.data));
  }
  return false;
}

bool give_text(TypedCall& call, std::size_t output, const char** target) {
  std::u16string_view wide;
  if (!call.fetch(output, wide)) return false;
  const std::string text = to_utf8(wide);
  char* copy = call.context().arena().AllocateArray<char>(text.size() + 1);
  if (copy == nullptr) return false;
  std::memcpy(copy, text.c_str(), text.size() + 1);
  *target = copy;
  return true;
}

bool give(TypedCall& call, const Parameter& output, void* target) {
  switch (output.passing) {
    case Passing::number: return call.fetch(output.index, *static_cast<double*>(target));
    case Passing::option: return call.fetch(output.index, *static_cast<std::uint32_t*>(target));
    case Passing::text: return give_text(call, output.index, static_cast<const char**>(target));
    case Passing::range: break;  // outputs are single values
  }
  return false;
}

std::uint32_t run(const Signature& signature, const norvane_value* in, void* const* out) {
  for (std::size_t i = 0; i < signature.outputs.size(); ++i)
    if (out[i] == nullptr) return not_run;
  TypedCall call;
  if (!call.begin(signature)) return not_run;
  for (std::size_t i = 0; i < signature.inputs.size(); ++i)
    if (!take(call, signature.inputs[i], in[i])) return not_run;
  if (!call.run()) return not_run;
  std::uint32_t status = 0;
  if (!call.fetch(0, status)) return no_output;
  for (std::size_t i = 0; i < signature.outputs.size(); ++i)
    if (!give(call, signature.outputs[i], out[i])) return no_output;
  return status;
}

}  // namespace
}  // namespace norvane::exports

std::uint32_t norvane_run(std::uint32_t id, const norvane_value* in, std::size_t in_count, void* const* out,
                          std::size_t out_count) {
  try {
    const norvane::host::Signature* signature = norvane::host::find_signature(id);
    if (signature == nullptr || signature->inputs.size() != in_count || signature->outputs.size() != out_count)
      return norvane::exports::not_run;
    return norvane::exports::run(*signature, in, out);
  } catch (...) {
    return norvane::exports::not_run;
  }
}

NORVANE_EXPORT const char* norvane_version(void) { return NORVANE_VERSION; }
