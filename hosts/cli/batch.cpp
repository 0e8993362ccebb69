#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "core/text.h"
#include "hosts/cli/batch_columns.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/names.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/session.h"
#include "hosts/cli/values.h"

namespace norvane::cli {
namespace {

constexpr std::size_t read_size = 1 << 16;
// Rows are handed to the workers in blocks of about this size: small enough to keep all of them busy with a
// short file, large enough that handing over costs nothing.
constexpr std::size_t block_size = 1 << 14;
// A longer record is a quotation mark that was never closed.
constexpr std::size_t longest_record = std::size_t{16} << 20;
constexpr std::size_t most_details = 20;

// Cuts the input into blocks of whole records.
class RecordReader {
 public:
  RecordReader(int descriptor, std::string name) : descriptor_(descriptor), name_(std::move(name)) {}

  // The header record; an empty text when there is none. A byte order mark is taken away.
  std::string header() {
    std::string text;
    // The delimiter decides where a quoted field begins, and the first line says which it is.
    while (pending_.find('\n') == std::string::npos && fill()) check_length();
    if (pending_.starts_with(byte_order_mark)) pending_.erase(0, byte_order_mark.size());
    delimiter_ = delimiter_of(std::string_view(pending_).substr(0, pending_.find('\n')));
    ends_ = RecordEnds(delimiter_);
    next(text, 1);
    return text;
  }
  // Whole records of about `target` characters; false at the end of the input.
  bool next(std::string& block, std::size_t target) {
    std::size_t end = 0;
    for (;;) {
      while (end < target && scanned_ < pending_.size()) {
        const std::size_t found = ends_.next(pending_, scanned_);
        scanned_ = found == std::string::npos ? pending_.size() : found;
        if (found != std::string::npos) end = found;
      }
      if (end >= target) break;
      if (!fill()) {
        end = pending_.size();
        break;
      }
      if (end == 0) check_length();
    }
    block.assign(pending_, 0, end);
    pending_.erase(0, end);
    scanned_ -= std::min(scanned_, end);
    return !block.empty();
  }
  char delimiter() const { return delimiter_; }
  std::uint64_t bytes_read() const { return bytes_read_; }

 private:
  bool fill() {
    const std::size_t size = pending_.size();
    pending_.resize(size + read_size);
    const std::size_t count = read_some(descriptor_, pending_.data() + size, read_size, name_);
    pending_.resize(size + count);
    bytes_read_ += count;
    return count != 0;
  }
  void check_length() const {
    if (pending_.size() > longest_record)
      throw UsageError(name_ + ": a record is longer than " + std::to_string(longest_record >> 20) +
                       " MiB; is a quoted field not closed?");
  }

  int descriptor_;
  std::string name_;
  std::string pending_;
  std::size_t scanned_ = 0;
  std::uint64_t bytes_read_ = 0;
  char delimiter_ = ',';
  RecordEnds ends_{','};
};

struct FailedRow {
  std::uint64_t row;
  std::string reason;
};

struct Tally {
  std::uint64_t rows = 0;
  std::uint64_t failed = 0;      // a status other than 0
  std::uint64_t unreadable = 0;  // no call was made
  std::vector<FailedRow> details;

  void note(std::uint64_t row, std::string reason) {
    if (details.size() < most_details) details.push_back({row, std::move(reason)});
  }
  void add(const Tally& other) {
    rows += other.rows;
    failed += other.failed;
    unreadable += other.unreadable;
    for (const FailedRow& detail : other.details) note(detail.row, detail.reason);
  }
};

void append_cell(std::string& out, const FUNCTION_ARG& value, char delimiter) {
  switch (value.kind) {
    case ARG_NUMBER:
      if (std::isfinite(value.number))
        append_number(out, value.number);
      else
        out += "#NUM!";
      return;
    case ARG_INTEGER: append_integer(out, value.integer); return;
    case ARG_BOOLEAN: out += value.boolean != 0 ? "TRUE" : "FALSE"; return;
    case ARG_STRING: append_field(out, to_utf8(value.text()), delimiter); return;
    case ARG_ERROR: out += to_utf8(error_text(value.error)); return;
    case ARG_ARRAY: {
      // A function whose one output is a list: its cells in one field.
      std::string list, cell;
      for (std::uint64_t i = 0; i < value.count() && value.array.elements[i].kind != ARG_ARRAY; ++i) {
        cell.clear();
        append_cell(cell, value.array.elements[i], '\0');
        list.append(i == 0 ? "" : " ").append(cell);
      }
      append_field(out, list, delimiter);
      return;
    }
    default: return;
  }
}

// One worker's calls.
class RowCalls {
 public:
  RowCalls(const Function_CFunctionSpec& spec, const BatchColumns& columns, char delimiter)
      : spec_(spec), columns_(columns), delimiter_(delimiter), ends_(delimiter) {}

  // Answers every record of the block. Blank lines give nothing.
  void answer(std::string_view records, std::string& out, Tally& tally) {
    for (std::size_t from = 0; from < records.size();) {
      std::size_t end = ends_.next(records, from);
      if (end == std::string_view::npos) end = records.size();
      const std::string_view record = records.substr(from, end - from);
      from = end;
      if (record.find_first_not_of(" \t\r\n") == std::string_view::npos) continue;
      row(record, out, tally);
    }
    ends_ = RecordEnds(delimiter_);
  }

 private:
  void row(std::string_view record, std::string& out, Tally& tally) {
    ++tally.rows;
    std::string problem;
    session_.begin(spec_);
    try {
      if (!split_record(record, delimiter_, cells_)) throw UsageError("a quoted field is not closed");
      columns_.read(session_, cells_);
    } catch (const UsageError& error) {
      problem = error.what();
    }
    // A row with too few or too many cells keeps the columns of the others.
    cells_.resize(columns_.count());
    for (const std::string& cell : cells_) {
      append_field(out, cell, delimiter_);
      out += delimiter_;
    }
    if (problem.empty()) session_.run();
    for (std::size_t i = 0; i < spec_.output_count; ++i) {
      if (problem.empty()) append_cell(out, session_.output(i), delimiter_);
      out += delimiter_;
    }
    std::string messages = problem;
    if (problem.empty()) {
      for (const Message& message : session_.messages())
        messages.append(messages.empty() ? "" : " | ").append(to_utf8(message.text));
      if (session_.status() != ERROR_OK)
        messages.append(messages.empty() ? "" : " | ").append(to_utf8(error_text(session_.status())));
    }
    append_field(out, messages, delimiter_);
    out += '\n';
    if (!problem.empty()) {
      ++tally.unreadable;
      tally.note(tally.rows, problem);
    } else if (!session_.good()) {
      ++tally.failed;
      tally.note(tally.rows, messages.empty() ? status_text() : messages);
    }
  }
  // "status 2 (calculation error)".
  std::string status_text() const {
    for (std::size_t i = 0; i < spec_.output_count; ++i) {
      const FUNCTION_ARG& value = session_.output(i);
      if (spec_.outputs[i].role != 1 || (value.kind != ARG_NUMBER && value.kind != ARG_INTEGER)) continue;
      const double status = value.kind == ARG_NUMBER ? value.number : value.integer;
      const std::string meaning = meaning_of(session_.units(), spec_.outputs[i], status);
      return "status " + number_text(status) + (meaning.empty() ? "" : " (" + meaning + ")");
    }
    return session_.fallback() ? "the call failed; the outputs are fallback values" : "failed";
  }

  const Function_CFunctionSpec& spec_;
  const BatchColumns& columns_;
  char delimiter_;
  RecordEnds ends_;
  Session session_;
  std::vector<std::string> cells_;
};

// Blocks of rows go round a ring: filled by the caller, answered by any worker, written by the caller in their order.
class Pipeline {
 public:
  struct Block {
    std::string records;
    std::string answers;
    Tally tally;
    std::exception_ptr failure;
    bool answered = false;
  };

  Pipeline(unsigned jobs, const Function_CFunctionSpec& spec, const BatchColumns& columns, char delimiter)
      : ring_(std::size_t{jobs} * 4) {
    try {
      for (unsigned i = 0; i < jobs; ++i)
        workers_.emplace_back([this, &spec, &columns, delimiter] { work(spec, columns, delimiter); });
    } catch (const std::system_error&) {
      // Fewer threads than asked for do the same work.
      if (workers_.empty()) throw;
    }
  }
  ~Pipeline() {
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
      taken_ = filled_;
    }
    work_.notify_all();
    for (std::thread& worker : workers_) worker.join();
  }
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  bool full() const { return filled_ - written_ == ring_.size(); }
  bool idle() const { return filled_ == written_; }
  // A block to fill; only while the ring is not full.
  Block& next() { return ring_[filled_ % ring_.size()]; }
  void hand_over() {
    {
      const std::lock_guard lock(mutex_);
      next().answered = false;
      ++filled_;
    }
    work_.notify_one();
  }
  // The oldest block, once it is answered; null when it is not and `wait` is false.
  Block* oldest(bool wait) {
    std::unique_lock lock(mutex_);
    if (filled_ == written_) return nullptr;
    Block& block = ring_[written_ % ring_.size()];
    if (wait) answered_.wait(lock, [&] { return block.answered; });
    return block.answered ? &block : nullptr;
  }
  void written() {
    const std::lock_guard lock(mutex_);
    ++written_;
  }

 private:
  void work(const Function_CFunctionSpec& spec, const BatchColumns& columns, char delimiter) {
    std::unique_ptr<RowCalls> calls;
    for (;;) {
      Block* block = nullptr;
      {
        std::unique_lock lock(mutex_);
        work_.wait(lock, [this] { return closed_ || taken_ < filled_; });
        if (taken_ == filled_) return;
        block = &ring_[taken_++ % ring_.size()];
      }
      block->answers.clear();
      block->tally = Tally{};
      block->failure = nullptr;
      try {
        if (calls == nullptr) calls = std::make_unique<RowCalls>(spec, columns, delimiter);
        calls->answer(block->records, block->answers, block->tally);
      } catch (...) {
        block->failure = std::current_exception();
      }
      {
        const std::lock_guard lock(mutex_);
        block->answered = true;
      }
      answered_.notify_one();
    }
  }

  std::vector<Block> ring_;
  std::uint64_t filled_ = 0, taken_ = 0, written_ = 0;
  bool closed_ = false;
  std::mutex mutex_;
  std::condition_variable work_, answered_;
  std::vector<std::thread> workers_;
};

// A bar on a terminal, at most ten times a second; nothing elsewhere.
class Progress {
 public:
  Progress(bool shown, std::uint64_t bytes) : shown_(shown), bytes_(bytes) {}
  ~Progress() { clear(); }

  void show(std::uint64_t done, std::uint64_t rows) {
    const auto now = std::chrono::steady_clock::now();
    if (!shown_ || now - last_ < std::chrono::milliseconds(100)) return;
    last_ = now;
    std::string text = "\r";
    if (bytes_ != 0) {
      constexpr std::size_t width = 30;
      const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(bytes_));
      const auto full = static_cast<std::size_t>(part * static_cast<double>(width));
      text.append("[").append(full, '#').append(width - full, '.').append("] ");
      text.append(std::to_string(static_cast<int>(part * 100.0))).append(" %  ");
    }
    text += std::to_string(rows) + " rows";
    tell(text);
    drawn_ = true;
  }
  void clear() {
    if (drawn_) tell("\r\x1B[K");
    drawn_ = false;
  }

 private:
  bool shown_;
  bool drawn_ = false;
  std::uint64_t bytes_;
  std::chrono::steady_clock::time_point last_{};
};

std::string header_line(const Function_CFunctionSpec& spec, const std::vector<std::string>& inputs,
                        const Unit_CTypeAndUnitContainer& units, char delimiter) {
  std::string line;
  for (const std::string& title : inputs) {
    append_field(line, title, delimiter);
    line += delimiter;
  }
  for (const Function_COutput& output : spec.output_records()) {
    const std::string unit = unit_text(units, output.type);
    append_field(line, to_utf8(output.key) + (unit.empty() ? "" : " [" + unit + "]"), delimiter);
    line += delimiter;
  }
  return line + "messages\n";
}

std::string summary(const Tally& tally) {
  std::string text = std::to_string(tally.rows) + (tally.rows == 1 ? " row, " : " rows, ");
  const std::uint64_t failed = tally.failed + tally.unreadable;
  if (failed == 0) return text + "all good\n";
  text += std::to_string(failed) + " failed";
  if (tally.unreadable != 0) text += " (" + std::to_string(tally.unreadable) + " of them could not be read)";
  text += "\n";
  for (const FailedRow& detail : tally.details)
    text += "  row " + std::to_string(detail.row) + ": " + printable(detail.reason, 300) + "\n";
  if (failed > tally.details.size()) text += "  and " + std::to_string(failed - tally.details.size()) + " more\n";
  return text;
}

class OpenInput {
 public:
  explicit OpenInput(const std::string& path)
      : descriptor_(path.empty() || path == "-" ? standard_input : open_input(path)) {}
  ~OpenInput() {
    if (descriptor_ != standard_input) close_file(descriptor_);
  }
  OpenInput(const OpenInput&) = delete;
  OpenInput& operator=(const OpenInput&) = delete;
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace

ExitCode batch(const BatchOptions& options, Output& standard) {
  const Function_CFunctionSpec& spec = find_function(options.id);
  // Arguments that are the same for every row live in a call of their own, which is never run.
  Session fixed;
  fixed.begin(spec);
  read_assignments(fixed, options.inputs);

  const OpenInput input(options.in);
  const std::string input_name = input.descriptor() == standard_input ? "standard input" : options.in;
  RecordReader reader(input.descriptor(), input_name);
  std::vector<std::string> header;
  const std::string header_record = reader.header();
  if (header_record.find_first_not_of(" \t\r\n") == std::string::npos)
    throw UsageError(input_name + ": there is no header line");
  if (!split_record(header_record, reader.delimiter(), header))
    throw UsageError(input_name + ": a quoted field of the header is not closed");
  const BatchColumns columns(spec, header, fixed);

  std::unique_ptr<ReplacedFile> file;
  if (!options.out.empty() && options.out != "-") file = std::make_unique<ReplacedFile>(options.out);
  Output to_file(file ? file->descriptor() : standard_output, file ? file->path() : "standard output");
  Output& out = file ? to_file : standard;
  out.write(header_line(spec, header, fixed.units(), reader.delimiter()));

  Tally total;
  {
    Progress progress(is_terminal(standard_error) && (file || !is_terminal(standard_output)),
                      file_size(input.descriptor()));
    const unsigned processors = std::max(1u, std::thread::hardware_concurrency());
    Pipeline pipeline(options.jobs == 0 ? processors : options.jobs, spec, columns, reader.delimiter());
    bool more = true;
    while (more || !pipeline.idle()) {
      if (more && !pipeline.full()) {
        more = reader.next(pipeline.next().records, block_size);
        if (more) pipeline.hand_over();
      }
      while (Pipeline::Block* block = pipeline.oldest(!more || pipeline.full())) {
        if (block->failure) std::rethrow_exception(block->failure);
        out.write(block->answers);
        // Rows of a block are numbered from 1.
        for (FailedRow& detail : block->tally.details) detail.row += total.rows;
        total.add(block->tally);
        pipeline.written();
        progress.show(reader.bytes_read(), total.rows);
      }
    }
  }
  out.flush();
  if (file) file->commit();
  tell(summary(total));
  if (total.unreadable != 0) return exit_usage;
  return total.failed != 0 ? exit_calculation : exit_good;
}

}  // namespace norvane::cli
