// Prints what every function answers to random and hostile calls, one line a call, so that two builds of the library
// can be compared byte by byte:
//
//   norvane_call_dump [--calls N] [--messages | --texts] [function id ...]
//
// A line is: function, number of the call, status, flags, output. A number is printed as the 16 hexadecimal digits
// of its bits. --messages makes the calls with messages switched on; --texts prints the messages as well.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "framework/context.h"
#include "tests/support/random_calls.h"

namespace norvane {
namespace {

class Context final : public Function_CContext {
 public:
  using Function_CContext::Function_CContext;
  const Function_CCallerInfo* FetchCallerInfo() noexcept override { return &caller_; }
  void ReportMessage(std::uint32_t level, std::u16string_view text) noexcept override {
    messages.append(level == MESSAGE_ERROR ? u"\n  E " : u"\n  W ").append(text);
  }
  std::u16string messages;

 private:
  Function_CCallerInfo caller_{};
};

struct Options {
  std::uint64_t calls = 2000;
  bool messages = false, texts = false;
};

// Every function has a context of its own: what it remembers does not depend on the functions asked for.
void dump(const Function_CLibrary& library, const Function_CFunctionSpec& spec, const Options& options) {
  Context context(library, Unit_CTypeAndUnitContainer::Instance());
  context.EnableMessages(options.messages);
  std::uint64_t slot = 0;
  for (std::uint64_t n = 0; n < options.calls; ++n) {
    test::Arguments arguments;
    test::RandomCall(spec, n, arguments);
    context.Reset();
    context.messages.clear();
    FUNCTION_ARG output = FUNCTION_ARG::Missing();
    std::uint32_t flags = 0;
    const std::uint32_t status =
        context.Execute(spec, arguments.values.data(), arguments.values.size(), output, flags, &slot);
    std::printf("%s %llu %u %08x %s%s\n", to_utf8(spec.id).c_str(), static_cast<unsigned long long>(n), status, flags,
                test::bits_of(output).c_str(), options.texts ? to_utf8(context.messages).c_str() : "");
  }
}

}  // namespace
}  // namespace norvane

int main(int argc, char** argv) {
  using namespace norvane;
  Options options;
  std::vector<std::string> ids;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--calls" && i + 1 < argc)
      options.calls = std::strtoull(argv[++i], nullptr, 10);
    else if (word == "--messages" || word == "--texts")
      options.messages = true, options.texts = word == "--texts";
    else
      ids.push_back(word);
  }
  Function_CLibrary library;
  catalogue::register_extended(library);
  catalogue::register_math(library);
  catalogue::register_gerg_math(library);
  for (const auto& node : library.Entries()) {
    bool wanted = ids.empty();
    for (const std::string& id : ids) wanted = wanted || id == to_utf8(node.value->id);
    if (wanted) dump(library, *node.value, options);
  }
}
