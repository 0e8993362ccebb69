#include <memory>

#include "hosts/cli/commands.h"
#include "hosts/cli/json_call.h"
#include "hosts/cli/pipeline.h"

namespace norvane::cli {
namespace {

constexpr std::size_t read_size = 1 << 16;
// A range of a million cells takes some twenty million characters.
constexpr std::size_t longest_line = std::size_t{64} << 20;

// Whole lines, and perhaps one behind them that is longer than any call and was not kept.
struct LineBlock {
  std::string lines;
  bool too_long = false;
  std::string answers;
  ExitCode code = exit_good;
};

// Cuts standard input into blocks of the lines that are there.
class LineReader {
 public:
  // False at the end.
  bool next(LineBlock& block) {
    block.lines.clear();
    block.too_long = false;
    while (!ended_) {
      const std::size_t before = pending_.size();
      pending_.resize(before + read_size);
      const std::size_t count = read_some(standard_input, pending_.data() + before, read_size, "standard input");
      pending_.resize(before + count);
      ended_ = count == 0;
      if (skipping_) {
        // The rest of the line that was too long, which is answered already.
        const std::size_t first = pending_.find('\n');
        skipping_ = first == std::string::npos;
        pending_.erase(0, skipping_ ? pending_.size() : first + 1);
      }
      // Lines end in what is new, or nowhere.
      const std::string_view fresh = std::string_view(pending_).substr(std::min(before, pending_.size()));
      const std::size_t last = fresh.rfind('\n');
      std::size_t end = last == std::string_view::npos ? 0 : pending_.size() - fresh.size() + last + 1;
      if (ended_) end = pending_.size();
      block.lines.assign(pending_, 0, end);
      pending_.erase(0, end);
      block.too_long = pending_.size() > longest_line;
      if (block.too_long) {
        skipping_ = true;
        pending_.clear();
        pending_.shrink_to_fit();
      }
      if (!block.lines.empty() || block.too_long) return true;
    }
    return false;
  }

 private:
  std::string pending_;
  bool skipping_ = false;
  bool ended_ = false;
};

// A line that cannot be read weighs more than a calculation that failed.
ExitCode worse(ExitCode a, ExitCode b) { return std::max(a, b); }

void answer(JsonCalls& calls, LineBlock& block, bool strict) {
  block.answers.clear();
  block.code = exit_good;
  std::string_view text = block.lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const JsonCalls::Answer answer = calls.answer(text.substr(0, end), block.answers);
    if (answer == JsonCalls::Answer::unreadable)
      block.code = worse(block.code, exit_usage);
    else if (answer == JsonCalls::Answer::calculation_failed || (strict && calls.verdict() != Verdict::good))
      block.code = worse(block.code, exit_calculation);
    block.answers += '\n';
    text.remove_prefix(std::min(text.size(), end + 1));
  }
  if (!block.too_long) return;
  append_failure(block.answers, "the line is longer than " + std::to_string(longest_line >> 20) + " MiB");
  block.answers += '\n';
  block.code = exit_usage;
}

}  // namespace

ExitCode eval(const EvalOptions& options, Output& out) {
  const Reading reading = reading_of(options.reading);
  if (is_terminal(standard_input))
    tell(
        "norvane eval: reading one call a line from the terminal, for example\n"
        "  {\"function\":\"BitTest\",\"inputs\":{\"number\":5,\"bit\":2}}\n"
        "End with Ctrl-D.\n");
  LineReader reader;
  ExitCode code = exit_good;
  if (options.jobs <= 1) {
    JsonCalls calls(reading);
    for (LineBlock block; reader.next(block);) {
      answer(calls, block, options.strict);
      code = worse(code, block.code);
      // Whoever waits for an answer before the next question gets it now.
      out.write(block.answers);
      out.flush();
    }
    return code;
  }
  Pipeline<LineBlock> pipeline(options.jobs, [&] {
    const auto calls = std::make_shared<JsonCalls>(reading);
    return [calls, &options](LineBlock& block) { answer(*calls, block, options.strict); };
  });
  bool more = true;
  while (more || !pipeline.idle()) {
    const bool ready = more && is_readable(standard_input);
    if (more && !pipeline.full() && (ready || pipeline.idle())) {
      if (!ready) out.flush();
      more = reader.next(pipeline.next());
      if (more) pipeline.hand_over();
    }
    while (LineBlock* block = pipeline.oldest(!more || pipeline.full() || !is_readable(standard_input))) {
      code = worse(code, block->code);
      out.write(block->answers);
      pipeline.delivered();
    }
  }
  out.flush();
  return code;
}

}  // namespace norvane::cli
