// A session: one call context and one calling place a function, and the call that runs in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"
#include "hosts/module/recording_context.h"

namespace norvane::cli {

using host::Message;

class Session {
 public:
  // Throws std::bad_alloc when the catalogues cannot be built.
  Session();

  // Starts a call: every input is omitted until its argument is set. What the arguments refer to lives in the
  // context's arena, from here to the next begin().
  void begin(const Function_CFunctionSpec& spec);
  FUNCTION_ARG& argument(std::size_t input) { return arguments_[input]; }
  // A text or an array of blank cells of this call. Throws std::bad_alloc.
  FUNCTION_ARG text(std::string_view utf8);
  FUNCTION_ARG text(std::u16string_view text);
  FUNCTION_ARG array(std::size_t columns, std::size_t rows);
  // What the user should know about an argument before the call runs; becomes its first messages.
  void remark(std::size_t input, std::u16string_view text);
  void run();

  const Function_CFunctionSpec& function() const { return *spec_; }
  std::uint32_t status() const { return status_; }
  std::uint32_t flags() const { return flags_; }
  // ARG_EMPTY when the output was not written; the error when the call failed and its outputs would not tell.
  const FUNCTION_ARG& output(std::size_t index) const;
  std::span<const Message> messages() const { return context_->messages(); }
  // How many of the messages are remarks.
  std::size_t remarks() const { return remarks_; }
  // The call failed and its outputs are the fallback values of the record.
  bool fallback() const { return status_ == ERROR_OK && (flags_ & (FLAG_OUTPUT_FALLBACK & 0xFFFFFF)) != 0; }
  // False when the call failed, or a status output answered with anything but 0.
  bool good() const;

  const Unit_CTypeAndUnitContainer& units() const { return module_.units; }

 private:
  static host::ThreadState new_state(const host::Module& module, host::RecordingContext*& context);

  const host::Module& module_;
  host::RecordingContext* context_ = nullptr;  // of the state
  host::ThreadState state_;
  const Function_CFunctionSpec* spec_ = nullptr;
  std::vector<FUNCTION_ARG> arguments_;
  FUNCTION_ARG output_ = FUNCTION_ARG::Empty();
  FUNCTION_ARG error_ = FUNCTION_ARG::Empty();  // in place of every output
  std::uint32_t status_ = ERROR_OK;
  std::uint32_t flags_ = 0;
  std::size_t remarks_ = 0;
};

// The worksheet error code of a text such as "#N/A"; 0 for any other text.
std::uint32_t error_of_text(std::string_view text);

}  // namespace norvane::cli
