#include "hosts/cli/record_reader.h"

#include <algorithm>

#include "hosts/cli/errors.h"
#include "hosts/cli/platform.h"

namespace norvane::cli {
namespace {

constexpr std::size_t read_size = 1 << 16;
// A longer record is a quotation mark that was never closed.
constexpr std::size_t longest_record = std::size_t{16} << 20;

bool is_blank(std::string_view line) { return line.find_first_not_of(" \t\r\n") == std::string_view::npos; }

}  // namespace

bool RecordReader::fill() {
  if (!utf16_) {
    const std::size_t size = pending_.size();
    pending_.resize(size + read_size);
    const std::size_t count = read_some(descriptor_, pending_.data() + size, read_size, name_);
    pending_.resize(size + count);
    bytes_read_ += count;
    return count != 0;
  }
  bytes_.resize(read_size);
  const std::size_t count = read_some(descriptor_, bytes_.data(), read_size, name_);
  bytes_read_ += count;
  utf16_->decode(std::string_view(bytes_.data(), count), pending_);
  return count != 0;
}

// Until a whole line is pending, or all that is left.
bool RecordReader::fill_line() {
  while (pending_.find('\n') == std::string::npos && fill()) check_length();
  return !pending_.empty();
}

void RecordReader::check_length() const {
  if (pending_.size() > longest_record)
    throw UsageError(name_ + ": a record is longer than " + std::to_string(longest_record >> 20) +
                     " MiB; is a quoted field not closed?");
}

std::string RecordReader::take(std::size_t count) {
  std::string text = pending_.substr(0, count);
  pending_.erase(0, count);
  line_ += static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
  return text;
}

std::string RecordReader::in_utf8(std::string text) {
  if (is_utf8(text)) return text;
  encoding_note_ = "note: " + name_ + " is not UTF-8 and was read as Windows-1252; the answer is UTF-8\n";
  return from_windows_1252(text);
}

void RecordReader::read_head() {
  while (pending_.size() < byte_order_mark.size() && fill()) {
  }
  if (const char endian = Utf16Decoder::endian_of(pending_); endian != '\0') {
    utf16_.emplace(endian);
    const std::string bytes = std::move(pending_);
    pending_.clear();
    utf16_->decode(bytes, pending_);
    while (pending_.size() < byte_order_mark.size() && fill()) {
    }
    encoding_note_ = "note: " + name_ + " is UTF-16; the answer is UTF-8\n";
  }
  if (pending_.starts_with(byte_order_mark)) before_header_ = take(byte_order_mark.size());

  bool stated = false;
  for (bool first = true; fill_line(); first = false) {
    const std::size_t end = pending_.find('\n');
    const std::size_t size = end == std::string::npos ? pending_.size() : end + 1;
    const std::string_view line = std::string_view(pending_).substr(0, size);
    if (const char separator = first ? separator_line(line) : '\0'; separator != '\0') {
      delimiter_ = separator;
      stated = true;
    } else if (!is_blank(line) && !is_comment(line)) {
      // The delimiter decides where a quoted field begins, and the header's first line says which it is.
      if (!stated) delimiter_ = delimiter_of(line);
      break;
    }
    before_header_ += in_utf8(take(size));
  }
  ends_ = RecordEnds(delimiter_);
  std::uint64_t line = 0;
  if (!next(header_, line, 1)) throw UsageError(name_ + ": there is no header line");
  if (header_.ends_with("\r\n")) line_end_ = "\r\n";
  while (header_.ends_with('\n') || header_.ends_with('\r')) header_.pop_back();
  header_ = in_utf8(std::move(header_));
}

bool RecordReader::next(std::string& block, std::uint64_t& first_line, std::size_t target) {
  std::size_t end = 0;
  for (;;) {
    while (end < target && scanned_ < pending_.size()) {
      const std::size_t found = ends_.next(pending_, scanned_);
      scanned_ = found == std::string::npos ? pending_.size() : found;
      if (found != std::string::npos) end = found;
    }
    // Records are not held back for others that may be long in coming.
    if (end >= target || (end != 0 && !is_readable(descriptor_))) break;
    if (!fill()) {
      end = pending_.size();
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
