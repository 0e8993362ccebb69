#include "hosts/cli/commands.h"
#include "hosts/cli/json_call.h"

namespace norvane::cli {
namespace {

constexpr std::size_t read_size = 1 << 16;
// A range of a million cells takes some twenty million characters.
constexpr std::size_t longest_line = std::size_t{64} << 20;

}  // namespace

ExitCode eval(Output& out) {
  JsonCalls calls;
  ExitCode code = exit_good;
  const auto note = [&](JsonCalls::Answer answer) {
    if (answer == JsonCalls::Answer::unreadable) code = exit_usage;
    if (answer == JsonCalls::Answer::calculation_failed && code == exit_good) code = exit_calculation;
    out.buffer() += '\n';
    out.settle();
  };
  const auto refuse_long_line = [&] {
    append_failure(out.buffer(), "the line is longer than " + std::to_string(longest_line >> 20) + " MiB");
    note(JsonCalls::Answer::unreadable);
  };

  std::string pending;  // the beginning of a line whose end has not come yet
  std::string block(read_size, '\0');
  bool skipping = false;  // inside a line that is too long, already answered
  for (;;) {
    // Whoever waits for an answer before the next question gets it now.
    out.flush();
    const std::size_t count = read_some(standard_input, block.data(), block.size(), "standard input");
    if (count == 0) break;
    std::string_view text(block.data(), count);
    for (;;) {
      const std::size_t end = text.find('\n');
      if (end == std::string_view::npos) break;
      const std::string_view rest_of_line = text.substr(0, end);
      if (skipping) {
        skipping = false;
      } else if (pending.empty()) {
        note(calls.answer(rest_of_line, out.buffer()));
      } else {
        pending += rest_of_line;
        note(calls.answer(pending, out.buffer()));
        pending.clear();
      }
      text.remove_prefix(end + 1);
    }
    if (skipping) continue;
    pending += text;
    if (pending.size() > longest_line) {
      refuse_long_line();
      pending.clear();
      pending.shrink_to_fit();
      skipping = true;
    }
  }
  if (!pending.empty()) note(calls.answer(pending, out.buffer()));
  out.flush();
  return code;
}

}  // namespace norvane::cli
