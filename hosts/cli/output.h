// Standard output with a buffer: every failure to write is noticed and ends the program with its own exit code.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "hosts/cli/platform.h"

namespace norvane::cli {

// A message for whoever runs the program; when standard error cannot take it, there is nobody left to tell.
void tell(std::string_view text) noexcept;

// Width of the terminal that standard output is; 0 when it is none, and text is not wrapped.
std::size_t page_width();

class Output {
 public:
  explicit Output(int descriptor = standard_output, std::string name = "standard output")
      : descriptor_(descriptor), name_(std::move(name)) {}

  // To append to directly; call settle() now and then.
  std::string& buffer() { return buffer_; }
  void write(std::string_view text) {
    buffer_ += text;
    settle();
  }
  // Writes when there is much to write.
  void settle() {
    if (buffer_.size() >= 1 << 16) flush();
  }
  // Throws InputOutputError.
  void flush() {
    write_all(descriptor_, buffer_, name_);
    buffer_.clear();
  }

 private:
  int descriptor_;
  std::string name_;
  std::string buffer_;
};

}  // namespace norvane::cli
