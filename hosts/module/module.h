// What the hosts of one process share: the catalogues, built once, and the context of the calling thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "catalogue/catalogue.h"
#include "framework/context.h"

namespace norvane::host {

// The catalogues of the process, made on first use and read-only afterwards; what they hold is built when it is asked
// for, so that a first call pays for its own function. Never throws; null when there is no memory for them.
struct Module {
  Function_CLibrary library;
  const Unit_CTypeAndUnitContainer& units;
};
const Module* module() noexcept;

// A context of a caller that has no cells: command line, plain exports.
class Module_CFunctionContext : public Function_CContext {
 public:
  using Function_CContext::Function_CContext;
  const Function_CCallerInfo* FetchCallerInfo() noexcept override { return &caller_; }

 private:
  Function_CCallerInfo caller_{};
};

class RecordingContext;
struct BatchMemory;
struct FunctionState;
struct Signature;

// How the last typed call of a thread ended, to be told when somebody asks.
struct LastCall {
  static constexpr std::size_t no_record = static_cast<std::size_t>(-1);
  enum class End : std::uint8_t { none, ran, busy, no_context, no_memory, null_output, bad_argument, no_batch };
  End end = End::none;
  const Function_CFunctionSpec* spec = nullptr;
  FUNCTION_ARG* arguments = nullptr;  // ran: in the memory of the context, until the thread's next call
  std::size_t index = 0;              // null_output, bad_argument, no_batch: of its record
  const char16_t* text = u"";         // no_batch: why, with % for the number
  std::size_t number = 0;
};

// What one thread owns: its context, and one data slot a function for callers without cells.
class ThreadState {
 public:
  ThreadState(std::unique_ptr<Function_CContext> context, std::size_t functions);
  ~ThreadState();
  ThreadState(ThreadState&&) noexcept;
  ThreadState& operator=(ThreadState&&) noexcept;

  Function_CContext& context() noexcept { return *context_; }
  std::uint64_t* slot(const Function_CFunctionSpec& spec) noexcept { return &slots_[spec.position]; }
  // What the thread keeps of the function at this position, null before its first typed call.
  FunctionState* known_state(std::size_t position) noexcept { return function_states_[position].get(); }
  // The same, made when there is none or another function's; null when memory is refused.
  FunctionState* function_state(const Signature& signature) noexcept;
  // Where the thread's batches are calculated; null when memory is refused.
  BatchMemory* batch_memory() noexcept;
  // A second context that takes down messages, made on first use; null when memory is refused.
  RecordingContext* recorder() noexcept;
  // One call at a time: false while another is under way on this thread.
  bool enter() noexcept { return !std::exchange(busy_, true); }
  void leave() noexcept { busy_ = false; }

  LastCall last_call;
  // Texts handed out to callers that want a pointer, one a kind: each until the thread asks for the next.
  std::string last_message;
  std::string status_text;
  std::string unit_text;
  std::string identity;

 private:
  std::unique_ptr<Function_CContext> context_;
  std::unique_ptr<std::uint64_t[]> slots_;
  std::unique_ptr<std::unique_ptr<FunctionState>[]> function_states_;
  std::unique_ptr<BatchMemory> batch_memory_;
  std::unique_ptr<RecordingContext> recorder_;
  bool busy_ = false;
};

// Makes the contexts of this image; the spreadsheet host sets its own before the first call.
using ContextFactory = std::unique_ptr<Function_CContext> (*)(const Module& module);
void set_context_factory(ContextFactory factory) noexcept;

// Process-wide set-up and tear-down of the thread slot: when the image is loaded and unloaded. A plain
// program needs neither: the first thread_state() sets up.
bool attach() noexcept;
void detach() noexcept;

// The calling thread's state, made on its first call; null when it cannot be had.
ThreadState* thread_state() noexcept;

// The calling thread's context, held for one call from before its arguments are converted until its outputs have
// left. A call that arrives on the same thread meanwhile (a host that recalculates while it is asked for a cell) gets
// none: it would run over the memory of the call that it interrupts.
class HeldContext {
 public:
  // Resets the context for a caller at this place; null lets the context ask for it.
  explicit HeldContext(const Function_CCallerInfo* caller) noexcept;
  ~HeldContext() {
    if (held_) state_->leave();
  }
  HeldContext(const HeldContext&) = delete;
  HeldContext& operator=(const HeldContext&) = delete;

  // False when the thread can have no context, or has one in use.
  explicit operator bool() const noexcept { return held_; }
  ThreadState& state() noexcept { return *state_; }
  Function_CContext& context() noexcept { return state_->context(); }

 private:
  ThreadState* state_;
  bool held_ = false;
};

// Destroys the calling thread's state: from DllMain's thread detach, by itself on other systems.
void thread_ended() noexcept;

// Masks floating-point traps and puts the caller's rounding and traps back: one at every host's door.
class FloatingPointGuard {
 public:
  FloatingPointGuard() noexcept;
  ~FloatingPointGuard();
  FloatingPointGuard(const FloatingPointGuard&) = delete;
  FloatingPointGuard& operator=(const FloatingPointGuard&) = delete;

 private:
  std::uint32_t saved_ = 0;
};

}  // namespace norvane::host
