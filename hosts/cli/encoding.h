// Text of files in the encodings that spreadsheets write: UTF-8, UTF-16 with its byte order mark, Windows-1252.
#pragma once

#include <string>
#include <string_view>

namespace norvane::cli {

bool is_utf8(std::string_view text);

// Of Latin-1 and what Windows put in its gaps.
std::string from_windows_1252(std::string_view bytes);

// UTF-16 that arrives in pieces.
class Utf16Decoder {
 public:
  // 0: the bytes do not begin with a byte order mark of UTF-16, else 'L' or 'B' for the end they begin with.
  static char endian_of(std::string_view bytes);
  explicit Utf16Decoder(char endian) : endian_(endian) {}
  // Appends the characters that are complete. Unpaired halves become U+FFFD.
  void decode(std::string_view bytes, std::string& out);

 private:
  char endian_;
  std::string rest_;  // bytes of a character that is not complete
};

// A whole file as UTF-8.
std::string as_utf8(std::string bytes);

}  // namespace norvane::cli
