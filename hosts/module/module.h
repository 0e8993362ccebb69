// What the hosts of one process share: the catalogues, built once, and the context of the calling thread.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "catalogue/catalogue.h"
#include "framework/context.h"

namespace norvane::host {

// The catalogues of the process, built on first use (a host that is loaded as a library asks for them while
// it is loaded) and read-only afterwards. Never throws; null when building them failed for want of memory.
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

// What one thread owns: its context, and one data slot a function for callers without cells.
class ThreadState {
 public:
  ThreadState(std::unique_ptr<Function_CContext> context, std::size_t functions)
      : context_(std::move(context)), slots_(std::make_unique<std::uint64_t[]>(functions)) {}

  Function_CContext& context() noexcept { return *context_; }
  std::uint64_t* slot(const Function_CFunctionSpec& spec) noexcept { return &slots_[spec.position]; }

 private:
  std::unique_ptr<Function_CContext> context_;
  std::unique_ptr<std::uint64_t[]> slots_;
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

// Destroys the calling thread's state: from DllMain's thread detach, by itself on other systems.
void thread_ended() noexcept;

// Masks floating-point traps and puts the caller's floating-point environment back: one at every host's door.
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
