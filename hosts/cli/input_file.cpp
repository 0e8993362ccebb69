#include "hosts/cli/input_file.h"

#include "hosts/cli/csv.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/output.h"
#include "hosts/cli/platform.h"

namespace norvane::cli {
namespace {

// A range of a million cells takes some twenty million characters.
constexpr std::size_t largest_file = std::size_t{256} << 20;

}  // namespace

std::string read_text_file(const std::string& path) {
  const OpenInput input(path);
  std::string text;
  constexpr std::size_t step = 1 << 16;
  for (;;) {
    const std::size_t size = text.size();
    text.resize(size + step);
    const std::size_t count = read_some(input.descriptor(), text.data() + size, step, shown_path(path));
    text.resize(size + count);
    if (count == 0) break;
    if (text.size() > largest_file) throw UsageError(shown_path(path) + ": the file is too large");
  }
  text = as_utf8(std::move(text));
  if (text.starts_with(byte_order_mark)) text.erase(0, byte_order_mark.size());
  return text;
}

void write_file(const std::string& path, std::string_view text) {
  ReplacedFile file(path);
  tell(file.note());
  write_all(file.descriptor(), text, path);
  file.commit();
}

std::string shown_path(const std::string& path) { return path.empty() || path == "-" ? "standard input" : path; }

OpenInput::OpenInput(const std::string& path)
    : descriptor_(path.empty() || path == "-" ? standard_input : open_input(path)) {}

OpenInput::~OpenInput() {
  if (descriptor_ != standard_input) close_file(descriptor_);
}

}  // namespace norvane::cli
