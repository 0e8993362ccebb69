#include "hosts/exports/runner.h"

#include <cstring>

#include "catalogue/identity.h"
#include "core/kernel.h"
#include "core/text.h"
#include "hosts/module/batch.h"
#include "hosts/module/direct_call.h"
#include "hosts/module/export.h"
#include "hosts/module/meaning.h"
#include "hosts/module/typed_call.h"

namespace norvane::exports {
namespace {

using host::Parameter;
using host::Signature;
using host::TypedAnswer;
using host::TypedCall;

constexpr std::uint32_t not_run = 0xFFFFFFFF;
constexpr std::uint32_t no_output = 0xFFFFFFFE;
constexpr std::size_t longest_text = 32767;

// Lists are pointers with a count, texts are UTF-8 and end with a NUL.
class Caller final : public host::ValueCaller {
 public:
  using ValueCaller::ValueCaller;

 private:
  bool take_list(TypedCall& call, const Parameter& input, const norvane_value& value) override {
    return call.set_list(input, static_cast<const double*>(value.data), value.count);
  }
  bool take_text(TypedCall& call, const Parameter& input, const norvane_value& value) override {
    const auto* text = static_cast<const char*>(value.data);
    if (text == nullptr) return true;  // its default
    const void* end = std::memchr(text, '\0', longest_text + 1);
    if (end == nullptr) return false;
    return call.set_text(input, to_utf16({text, static_cast<std::size_t>(static_cast<const char*>(end) - text)}));
  }
  bool give_text(TypedCall& call, std::u16string_view wide, void* target) override {
    const std::string text = to_utf8(wide);
    char* copy = call.context().arena().AllocateArray<char>(text.size() + 1);
    if (copy == nullptr) return false;
    std::memcpy(copy, text.c_str(), text.size() + 1);
    *static_cast<const char**>(target) = copy;
    return true;
  }
};

std::uint32_t run(const Signature& signature, const norvane_value* in, void* const* out) {
  for (std::size_t i = 0; i < signature.outputs.size(); ++i) {
    if (out[i] != nullptr) continue;
    host::note_null_output(signature, i);
    return not_run;
  }
  Caller caller(in, out);
  std::uint32_t status = 0;
  switch (TypedCall::make(signature, caller, status)) {
    case TypedAnswer::delivered: return status;
    case TypedAnswer::undelivered: return no_output;
    default: return not_run;
  }
}

std::size_t run_batch(const Signature* signature, std::size_t rows, const host::Column* inputs,
                      std::size_t input_count, double* const* outputs, std::size_t output_count,
                      std::uint32_t* statuses) noexcept {
  if (signature == nullptr) return host::refuse_unknown_batch();
  return host::run_batch(*signature, rows, {inputs, input_count}, {outputs, output_count}, statuses);
}

constexpr std::size_t longest_id = 63;

// By the function's name as a caller writes it; null for none.
const Signature* signature_of(const char* function) {
  if (function == nullptr || std::memchr(function, '\0', longest_id + 1) == nullptr) return nullptr;
  return host::find_signature(to_utf16(function));
}

// Text that lives until the thread asks for the next of its kind.
const char* kept(std::string host::ThreadState::*place, std::u16string_view text) noexcept {
  try {
    host::ThreadState* state = host::thread_state();
    if (state != nullptr) return (state->*place = to_utf8(text)).c_str();
  } catch (...) {
  }
  return "not enough memory for a text";
}

}  // namespace
}  // namespace norvane::exports

namespace {

// What a direct call does not end.
[[gnu::noinline]] std::uint32_t run_by_context(const norvane::host::Signature* signature, const norvane_value* in,
                                               void* const* out) noexcept {
  try {
    return norvane::exports::run(*signature, in, out);
  } catch (...) {
    norvane::host::note_no_memory();
    return norvane::exports::not_run;
  }
}

}  // namespace

std::uint32_t norvane_run(std::uint32_t id, const norvane_value* in, std::size_t in_count, void* const* out,
                          std::size_t out_count) {
  const norvane::host::Signature* signature = norvane::host::find_signature(id);
  if (signature == nullptr) {  // an export is there because its function is
    norvane::host::note_no_memory();
    return norvane::exports::not_run;
  }
  if (signature->inputs.size() != in_count || signature->outputs.size() != out_count) return norvane::exports::not_run;
  return norvane::host::direct_call(*signature, in, out) ? 0 : run_by_context(signature, in, out);
}

std::size_t norvane_run_batch(std::uint32_t id, std::size_t rows, const norvane_column* inputs,
                              std::size_t input_count, double* const* outputs, std::size_t output_count,
                              std::uint32_t* statuses) {
  return norvane::exports::run_batch(norvane::host::find_signature(id), rows, inputs, input_count, outputs,
                                     output_count, statuses);
}

NORVANE_EXPORT std::size_t norvane_batch(const char* function, std::size_t rows, const norvane_column* inputs,
                                         std::size_t input_count, double* const* outputs, std::size_t output_count,
                                         std::uint32_t* statuses) {
  try {
    return norvane::exports::run_batch(norvane::exports::signature_of(function), rows, inputs, input_count, outputs,
                                       output_count, statuses);
  } catch (...) {
    return norvane::host::batch_refused;
  }
}

NORVANE_EXPORT const char* norvane_version(void) { return NORVANE_VERSION; }

NORVANE_EXPORT const char* norvane_identity(void) {
  using namespace norvane;
  try {
    host::ThreadState* state = host::thread_state();
    if (state != nullptr) return (state->identity = catalogue::identity_text()).c_str();
  } catch (...) {
  }
  return "not enough memory for a text";
}

NORVANE_EXPORT const char* norvane_kernel(void) { return norvane::name_of(norvane::instructions_in_use()); }

NORVANE_EXPORT const char* norvane_last_message(void) {
  try {
    return norvane::exports::kept(&norvane::host::ThreadState::last_message, norvane::host::last_message());
  } catch (...) {
    return "not enough memory for a text";
  }
}

NORVANE_EXPORT const char* norvane_status_text(const char* function, std::uint32_t output, std::uint32_t code) {
  using namespace norvane;
  try {
    const host::Signature* signature = exports::signature_of(function);
    if (signature == nullptr || output >= signature->spec->output_count) return "";
    if (output == 0 && code == exports::not_run) return "nothing was calculated";
    if (output == 0 && code == exports::no_output) return "an output could not be delivered";
    const auto number = static_cast<std::int32_t>(code);
    return exports::kept(&host::ThreadState::status_text, host::meaning_of(signature->spec->outputs[output], number));
  } catch (...) {
    return "not enough memory for a text";
  }
}
