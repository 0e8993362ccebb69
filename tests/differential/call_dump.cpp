// Prints what every function answers to random and hostile calls, one line a call, so that two builds of the library
// can be compared byte by byte:
//
//   norvane_call_dump [--calls N] [--messages | --texts] [function id ...]
//   norvane_call_dump --hash [--calls N] [function id ...]
//   norvane_call_dump --expect FILE [--calls N]
//
// --hash prints one line a function, "id calls hash": a hash (64-bit FNV-1a) of the lines that would be printed. It is
// the same from every compiler, optimisation, processor and system. --expect holds the hashes of a file against those of
// this build: the lines of that number of calls.
//
// A line is: function, number of the call, status, flags, output. A number is printed as the 16 hexadecimal digits
// of its bits. --messages makes the calls with messages switched on; --texts prints the messages as well.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
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
  bool messages = false, texts = false, hash = false;
  std::string expect;
};

struct Hash {
  std::uint64_t value = 14695981039346656037u;
  void add(const std::string& text) noexcept {
    for (const char unit : text) value = (value ^ static_cast<unsigned char>(unit)) * 1099511628211u;
  }
};

// Every function has a context of its own: what it remembers does not depend on the functions asked for.
template <class Take>
void call(const Function_CLibrary& library, const Function_CFunctionSpec& spec, const Options& options, Take take) {
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
    char flag_digits[9];
    std::snprintf(flag_digits, sizeof flag_digits, "%08x", static_cast<unsigned>(flags));
    take(to_utf8(spec.id) + " " + std::to_string(n) + " " + std::to_string(status) + " " + flag_digits + " " +
         test::bits_of(output) + (options.texts ? to_utf8(context.messages) : "") + "\n");
  }
}

std::string hash_line(const Function_CLibrary& library, const Function_CFunctionSpec& spec, const Options& options) {
  Hash hash;
  call(library, spec, options, [&](const std::string& line) { hash.add(line); });
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash.value));
  return to_utf8(spec.id) + " " + std::to_string(options.calls) + " " + digits;
}

// The lines of the file for this number of calls are those of this build.
int compare(const Function_CLibrary& library, const Options& options) {
  std::map<std::string, std::string> expected;
  std::ifstream file(options.expect);
  std::string id, calls, hash;
  while (file >> id >> calls >> hash)
    if (calls == std::to_string(options.calls)) expected[id] = id + " " + calls + " " + hash;
  int differ = 0;
  for (const auto& node : library.Entries()) {
    const std::string line = hash_line(library, *node.value, options);
    const std::string& wanted = expected[to_utf8(node.value->id)];
    if (line == wanted) continue;
    ++differ;
    std::printf("%s, expected is %s\n", line.c_str(), wanted.empty() ? "nothing" : wanted.c_str());
  }
  if (differ != 0)
    std::printf(
        "%d functions answer with other bits than before. When that is what the change was made for, declare it in\n"
        "CHANGELOG.md (\"Changes of numbers\": function, old value, new value, why) and write the file anew:\n"
        "  for n in 1000 10000; do norvane_call_dump --hash --calls $n; done > tests/data/bits.txt\n"
        "When only one compiler or system differs, it calculates differently, and that is the fault.\n",
        differ);
  return differ == 0 && !expected.empty() ? 0 : 1;
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
    else if (word == "--expect" && i + 1 < argc)
      options.expect = argv[++i];
    else if (word == "--hash")
      options.hash = true;
    else if (word == "--messages" || word == "--texts")
      options.messages = true, options.texts = word == "--texts";
    else
      ids.push_back(word);
  }
  Function_CLibrary library;
  catalogue::register_extended(library);
  catalogue::register_math(library);
  catalogue::register_gerg_math(library);
  if (!options.expect.empty()) return compare(library, options);
  for (const auto& node : library.Entries()) {
    const Function_CFunctionSpec& spec = *node.value;
    if (!ids.empty() && std::find(ids.begin(), ids.end(), to_utf8(spec.id)) == ids.end()) continue;
    if (options.hash)
      std::printf("%s\n", hash_line(library, spec, options).c_str());
    else
      call(library, spec, options, [](const std::string& line) { std::fputs(line.c_str(), stdout); });
  }
}
