// A context that collects messages, and small functions to run in it.
#pragma once

#include <string>
#include <vector>

#include "framework/call.h"
#include "framework/context.h"
#include "framework/function_spec.h"

namespace norvane::test {

class TestContext : public Function_CContext {
 public:
  TestContext() : Function_CContext(EmptyLibrary(), Unit_CTypeAndUnitContainer::Instance()) {}
  const Function_CCallerInfo* FetchCallerInfo() noexcept override { return &caller; }
  void ReportMessage(std::uint32_t level, std::u16string_view text) noexcept override {
    messages.push_back((level == MESSAGE_ERROR ? u"E " : u"W ") + std::u16string(text));
  }

  // Runs with a fresh arena; the output stays valid until the next call.
  std::uint32_t Run(const Function_CFunctionSpec& spec, std::vector<FUNCTION_ARG> args) {
    Reset();
    messages.clear();
    arguments_of_call = std::move(args);
    output = FUNCTION_ARG::Missing();
    return Execute(spec, arguments_of_call.data(), arguments_of_call.size(), output, flags, slot);
  }

  Function_CCallerInfo caller{};
  std::vector<std::u16string> messages;
  std::vector<FUNCTION_ARG> arguments_of_call;
  FUNCTION_ARG output{};
  std::uint32_t flags = 0;
  std::uint64_t* slot = nullptr;

 private:
  static const Function_CLibrary& EmptyLibrary() {
    static const Function_CLibrary library;
    return library;
  }
};

inline FUNCTION_ARG text(const char16_t* value) {
  return FUNCTION_ARG::String(value, std::u16string_view(value).size());
}

}  // namespace norvane::test
