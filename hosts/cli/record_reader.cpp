#include "hosts/cli/record_reader.h"

#include <algorithm>

#include "hosts/cli/errors.h"
#include "hosts/cli/platform.h"

namespace norvane::cli {
namespace {

constexpr std::size_t read_size = 1 << 16;
// A longer record is a quotation mark that was never closed.
constexpr std::size_t longest_record = std::size_t{16} << 20;

}  // namespace

bool RecordReader::fill() {
  buffer_.erase(0, taken_);
  taken_ = 0;
  if (!utf16_) {
    const std::size_t size = buffer_.size();
    buffer_.resize(size + read_size);
    const std::size_t count = read_some(descriptor_, buffer_.data() + size, read_size, name_);
    buffer_.resize(size + count);
    bytes_read_ += count;
    return count != 0;
  }
  bytes_.resize(read_size);
  const std::size_t count = read_some(descriptor_, bytes_.data(), read_size, name_);
  bytes_read_ += count;
  utf16_->decode(std::string_view(bytes_.data(), count), buffer_);
  return count != 0;
}

// Until a whole line is pending, or all that is left.
bool RecordReader::fill_line() {
  while (pending().find('\n') == std::string::npos && fill()) check_length();
  return !pending().empty();
}

void RecordReader::check_length() const {
  if (pending().size() > longest_record)
    throw UsageError(name_ + ": a record is longer than " + std::to_string(longest_record >> 20) +
                     " MiB; is a quoted field not closed?");
}

// Good until more is read.
std::string_view RecordReader::take(std::size_t count) {
  const std::string_view text = pending().substr(0, count);
  taken_ += count;
  line_ += static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
  return text;
}

std::string RecordReader::in_utf8(std::string_view text) {
  if (is_utf8(text)) return std::string(text);
  encoding_note_ = "note: " + name_ + " is not UTF-8 and was read as Windows-1252; the answer is UTF-8\n";
  return from_windows_1252(text);
}

void RecordReader::read_head() {
  while (buffer_.size() < byte_order_mark.size() && fill()) {
  }
  if (const char endian = Utf16Decoder::endian_of(buffer_); endian != '\0') {
    utf16_.emplace(endian);
    const std::string bytes = std::move(buffer_);
    buffer_.clear();
    utf16_->decode(bytes, buffer_);
    while (buffer_.size() < byte_order_mark.size() && fill()) {
    }
    encoding_note_ = "note: " + name_ + " is UTF-16; the answer is UTF-8\n";
  }
  if (buffer_.starts_with(byte_order_mark)) before_header_ = take(byte_order_mark.size());

  bool stated = false;
  for (bool first = true; fill_line(); first = false) {
    const std::size_t feed = pending().find('\n');
    const std::string_view line = pending().substr(0, feed == std::string_view::npos ? feed : feed + 1);
    if (const char separator = first ? separator_line(line) : '\0'; separator != '\0') {
      delimiter_ = separator;
      stated = true;
    } else if (!is_blank(line) && !is_comment(line)) {
      // The delimiter decides where a quoted field begins, and the header's first line says which it is.
      if (!stated) delimiter_ = delimiter_of(line);
      break;
    }
    before_header_ += in_utf8(take(line.size()));
  }
  ends_ = RecordEnds(delimiter_);
  std::uint64_t line = 0;
  if (!next(header_, line, 1)) throw UsageError(name_ + ": there is no header line");
  if (header_.ends_with("\r\n")) line_end_ = "\r\n";
  while (header_.ends_with('\n') || header_.ends_with('\r')) header_.pop_back();
  header_ = in_utf8(header_);
}

bool RecordReader::next(std::string& block, std::uint64_t& first_line, std::size_t target) {
  std::size_t end = 0;
  for (;;) {
    const std::string_view text = pending();
    while (end < target && scanned_ < text.size()) {
      const std::size_t found = ends_.next(text, scanned_);
      scanned_ = std::min(found, text.size());
      if (found != std::string::npos) end = found;
    }
    // Records are not held back for others that may be long in coming.
    if (end >= target || (end != 0 && !is_readable(descriptor_))) break;
    if (!fill()) {
      end = pending().size();
      break;
    }
    if (end == 0) check_length();
  }
  first_line = line_;
  block = take(end);
  scanned_ -= std::min(scanned_, end);
  return !block.empty();
}

}  // namespace norvane::cli
