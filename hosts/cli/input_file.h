// Files as whole texts.
#pragma once

#include <string>
#include <string_view>

namespace norvane::cli {

// A file, "-" for standard input, as UTF-8 without a byte order mark. Throws UsageError when it cannot be opened or is
// larger than any that is meant to be read as a whole.
std::string read_text_file(const std::string& path);

// Complete under its name or not at all. Throws InputOutputError.
void write_file(const std::string& path, std::string_view text);

// "standard input" for "-".
std::string shown_path(const std::string& path);

// Open for reading, closed again; an empty name or "-" is standard input.
class OpenInput {
 public:
  explicit OpenInput(const std::string& path);
  ~OpenInput();
  OpenInput(const OpenInput&) = delete;
  OpenInput& operator=(const OpenInput&) = delete;
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace norvane::cli
