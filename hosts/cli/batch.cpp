#include <memory>
#include <thread>

#include "hosts/cli/batch_columns.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/input_file.h"
#include "hosts/cli/names.h"
#include "hosts/cli/pipeline.h"
#include "hosts/cli/progress.h"
#include "hosts/cli/record_reader.h"
#include "hosts/cli/row_calls.h"

namespace norvane::cli {
namespace {

// Rows are handed to the workers in blocks of about this size: small enough to keep all of them busy with a
// short file, large enough that handing over costs nothing.
constexpr std::size_t block_size = 1 << 14;

struct RowBlock {
  std::string records;
  std::uint64_t first_line = 0;
  std::string answers;
  Tally tally;
};

// Everything that concerns the rows: reads, answers and writes them.
class Run {
 public:
  Run(const BatchOptions& options, RecordReader& reader, const BatchColumns& columns, const Reading& reading,
      const RowFormat& format, Output& out)
      : reader_(reader),
        out_(out),
        pipeline_(options.jobs == 0 ? std::max(1u, std::thread::hardware_concurrency()) : options.jobs,
                  [&options, &columns, &reading, format] {
                    const Function_CFunctionSpec& spec = find_function(options.id);
                    const auto calls = std::make_shared<RowCalls>(spec, columns, reading, format);
                    return [calls](RowBlock& block) {
                      block.answers.clear();
                      block.tally = Tally{};
                      calls->answer(block.records, block.first_line, block.answers, block.tally);
                    };
                  }) {}

  void rows(Progress& progress) {
    bool more = true;
    while (more || !pipeline_.idle()) {
      const bool waits = more && pipeline_.idle() && !reader_.is_ready();
      if (waits) out_.flush();
      if (more && !pipeline_.full() && (waits || reader_.is_ready())) {
        RowBlock& block = pipeline_.next();
        more = reader_.next(block.records, block.first_line, block_size);
        if (more) pipeline_.hand_over();
      }
      while (RowBlock* block = pipeline_.oldest(!more || pipeline_.full() || !reader_.is_ready())) {
        out_.write(block->answers);
        total.add(block->tally);
        pipeline_.delivered();
        progress.show(reader_.bytes_read(), total.rows);
        Interruption::check();
      }
    }
  }

  Tally total;

 private:
  RecordReader& reader_;
  Output& out_;
  Pipeline<RowBlock> pipeline_;
};

void tell_notes(const Tally& total, const RecordReader& reader, const BatchColumns& columns) {
  Session session;
  session.begin(columns.function());
  std::string text = reader.encoding_note() + defaults_note(total, session);
  for (const std::string& warning : columns.warnings()) text += "warning: " + warning + "\n";
  if (total.reencoded != 0 && reader.encoding_note().empty())
    text += "note: lines that are not UTF-8 (" + std::to_string(total.reencoded) +
            ") were read as Windows-1252; the answer is UTF-8\n";
  tell(text);
}

}  // namespace

ExitCode batch(const BatchOptions& options, Output& standard) {
  const Function_CFunctionSpec& spec = find_function(options.id);
  const Reading reading = reading_of(options.reading);
  const OpenInput input(options.in);
  const std::string input_name = shown_path(options.in);
  if (is_terminal(input.descriptor()))
    tell("norvane batch: reading a CSV file from the terminal; --in FILE reads a file (end with Ctrl-D)\n");
  RecordReader reader(input.descriptor(), input_name);
  reader.read_head();
  std::vector<std::string> header;
  if (!split_record(reader.header(), reader.delimiter(), header))
    throw UsageError(input_name + ": a quoted field of the header is not closed");
  const BatchColumns columns(spec, header, options, reading);
  const RowFormat format = {reader.delimiter(), reading.decimal, options.precision, reader.line_end()};

  // From before the file is there: whoever ends the program then is told what became of it.
  const Interruption interruption;
  std::unique_ptr<ReplacedFile> file;
  if (!options.out.empty() && options.out != "-") {
    file = std::make_unique<ReplacedFile>(options.out);
    tell(file->note());
  }
  Output to_file(file ? file->descriptor() : standard_output, file ? file->path() : "standard output");
  Output& out = file ? to_file : standard;
  out.write(reader.before_header() + columns.answer_header(format.delimiter) + std::string(format.line_end));

  Run run(options, reader, columns, reading, format, out);
  try {
    Progress progress(is_terminal(standard_error) && (file || !is_terminal(standard_output)),
                      file_size(input.descriptor()));
    run.rows(progress);
    out.flush();
    if (file) file->commit();
  } catch (const Interrupted&) {
    if (!file) out.flush();
    tell("norvane: interrupted; " + (file ? options.out + " is not written, answered were " : "written are ") +
         summary(run.total));
    file.reset();
    Interruption::end_program();
  }
  tell_notes(run.total, reader, columns);
  tell(summary(run.total));
  if (run.total.refused != 0) return exit_usage;
  const bool off_range = run.total.extended + run.total.outside != 0;
  return run.total.failed != 0 || (options.strict && off_range) ? exit_calculation : exit_good;
}

}  // namespace norvane::cli
