// Files of comma-separated values as "norvane batch" takes them. The answers are the same in one block and in blocks of
// a record, and with every field in quotation marks, which keeps a row from being calculated together with others.
#include <sys/mman.h>
#include <unistd.h>

#include "catalogue/catalogue.h"
#include "fuzz/fuzz.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/record_reader.h"
#include "hosts/cli/row_calls.h"

namespace norvane::fuzz {
namespace {

using namespace cli;

std::string in_marks(std::string_view record, char delimiter) {
  std::vector<std::string> fields;
  if (is_blank(record) || is_comment(record) || !split_record(record, delimiter, fields)) return std::string(record);
  std::string line;
  for (const std::string& field : fields) {
    line += line.empty() ? "\"" : std::string(1, delimiter) + '"';
    for (const char c : field) line.append(c == '"' ? 2 : 1, c);
    line += '"';
  }
  return line.append(record.substr(without_line_end(record).size()));
}

struct File {
  explicit File(std::string_view bytes) : descriptor(memfd_create("input", 0)) {
    write_all(descriptor, bytes, "input");
    lseek(descriptor, 0, SEEK_SET);
  }
  ~File() { close(descriptor); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  int descriptor;
};

void answer(const BatchOptions& options, std::string_view bytes, std::size_t block_size) {
  const Reading reading = reading_of(options.reading);
  const File file(bytes);
  RecordReader reader(file.descriptor, "input");
  reader.read_head();
  std::vector<std::string> header;
  const char delimiter = reader.delimiter();
  if (!split_record(reader.header(), delimiter, header)) return;
  const Function_CFunctionSpec& spec = *catalogue::find(to_utf16(options.id));
  const BatchColumns columns(spec, header, options, reading);
  const RowFormat format{delimiter, reading.decimal, options.precision, reader.line_end()};
  RowCalls together(spec, columns, reading, format), alone(spec, columns, reading, format);
  std::string block;
  std::uint64_t first = 0, line = 1;
  while (reader.next(block, first, block_size)) {
    std::string all, single, marked;
    Tally tally, single_tally, marked_tally;
    together.answer(block, first, all, tally);
    RecordEnds ends(delimiter);
    line = first;
    for (std::size_t from = 0; from < block.size();) {
      const std::size_t end = std::min(ends.next(block, from), block.size());
      const std::string record = block.substr(from, end - from);
      from = end;
      alone.answer(record, line, single, single_tally);
      alone.answer(in_marks(record, delimiter), line, marked, marked_tally);
      line += lines_of(record);
    }
    expect(all == single, "rows are answered otherwise alone: " + block, all, single);
    expect(all == marked, "rows are answered otherwise in quotation marks: " + block, all, marked);
    expect(summary(tally) == summary(single_tally), "two summaries", summary(tally), summary(single_tally));
    expect(is_utf8(all), "the answer is no text", all);
  }
}

}  // namespace

void csv(Input& in) {
  BatchOptions options;
  const auto specs = catalogue::specifications();
  options.id = to_utf8(specs[in.below(specs.size())]->id);
  const std::size_t choices = in.below(256);
  if ((choices & 1) != 0) options.reading.blank = "default";
  options.reading.no_defaults = (choices & 2) != 0;
  if ((choices & 4) != 0) options.reading.decimal = ",";
  if ((choices & 8) != 0) options.reading.c6plus = "50,30,20";
  if ((choices & 16) != 0) options.reading.atmosphere = "1.01325 bar";
  options.precision = (choices & 32) != 0 ? 5 : 0;
  options.only_outputs = true;
  try {
    answer(options, in.rest(), (choices & 64) != 0 ? 1 : 1 << 14);
  } catch (const UsageError& error) {
    expect(is_utf8(error.what()) && error.what()[0] != '\0', "a message is no text", error.what());
  }
}

}  // namespace norvane::fuzz
