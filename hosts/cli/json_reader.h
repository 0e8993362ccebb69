// Reads the JSON that programs write, as fast as its numbers can be read: an event for everything it meets, to a
// receiver that may refuse it.
//
// It gives up at whatever is not strict JSON, at what the receiver refuses, and at what hardly anybody writes: texts
// with \u, whole numbers of more than 18 digits, numbers beyond a double's range, nesting beyond reason. A parser of the
// whole language then has the word; it finds the same events and can tell what is wrong.
//
// A receiver that has met a list before may say so (repeated_list: how many characters of what follows it knows) and is
// told how a list was written when it has ended (list_ended; from the last bracket that was opened).
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "hosts/cli/encoding.h"
#include "hosts/cli/quantity_text.h"

namespace norvane::cli {

class JsonReader {
 public:
  explicit JsonReader(std::string_view text) : text_(text), at_(text.data()), end_(at_ + text.size()) {}

  // True when the text is one JSON value and the receiver has taken all of it.
  template <class Receiver>
  bool read(Receiver& receiver);

 private:
  static constexpr int deepest = 60;

  void skip_blanks() {
    while (at_ != end_ && (*at_ == ' ' || *at_ == '\t' || *at_ == '\n' || *at_ == '\r')) ++at_;
  }
  // The next character that is no blank; 0 at the end, which no JSON text holds.
  char next() {
    skip_blanks();
    return at_ != end_ ? *at_ : '\0';
  }
  bool literal(std::string_view word) {
    if (static_cast<std::size_t>(end_ - at_) < word.size() || std::memcmp(at_, word.data(), word.size()) != 0)
      return false;
    at_ += word.size();
    return true;
  }
  bool quoted(std::string_view& value);
  bool escaped(std::string_view& value);
  template <class Receiver>
  bool number(Receiver& receiver);
  template <class Receiver>
  bool name(Receiver& receiver) {
    std::string_view key;
    if (next() != '"' || !quoted(key) || !receiver.name(key) || next() != ':') return false;
    ++at_;
    return true;
  }
  template <class Receiver>
  bool scalar(Receiver& receiver, char first) {
    std::string_view value;
    switch (first) {
      case '"': return quoted(value) && receiver.text(value);
      case 't': return literal("true") && receiver.boolean(true);
      case 'f': return literal("false") && receiver.boolean(false);
      case 'n': return literal("null") && receiver.null();
      default: return number(receiver);
    }
  }

  std::string_view text_;
  const char* at_;
  const char* end_;
  const char* list_ = nullptr;  // where the last list, or what is in it, began
  bool known_as_utf8_ = false;
  std::string unescaped_;
};

template <class Receiver>
bool JsonReader::read(Receiver& receiver) {
  std::uint64_t objects = 0;  // a bit a level, the innermost lowest: object or list
  int depth = 0;
  for (;;) {
    const char first = next();
    const std::size_t repeated =
        first == '[' ? receiver.repeated_list({at_, static_cast<std::size_t>(end_ - at_)}) : 0;
    if (repeated != 0) {
      at_ += repeated;
      if (depth == 0) break;
    } else if (first == '{' || first == '[') {
      const bool object = first == '{';
      list_ = at_;
      if (++depth > deepest || !(object ? receiver.start_object(0) : receiver.start_array(0))) return false;
      objects = objects << 1 | (object ? 1u : 0u);
      ++at_;
      if (next() != (object ? '}' : ']')) {
        if (object && !name(receiver)) return false;
        continue;
      }
    } else {
      if (!scalar(receiver, first)) return false;
      if (depth == 0) break;
    }
    // Behind a value: another one, or the end of what it is in.
    for (;;) {
      const bool object = (objects & 1) != 0;
      const char after = next();
      if (after == ',') {
        ++at_;
        if (object && !name(receiver)) return false;
        break;
      }
      if (after != (object ? '}' : ']') || !(object ? receiver.end_object() : receiver.end_array())) return false;
      ++at_;
      if (!object) receiver.list_ended({list_, static_cast<std::size_t>(at_ - list_)});
      objects >>= 1;
      if (--depth == 0) break;
    }
    if (depth == 0) break;
  }
  skip_blanks();
  return at_ == end_;
}

inline bool JsonReader::quoted(std::string_view& value) {
  const char* const first = ++at_;
  for (; at_ != end_; ++at_) {
    const auto c = static_cast<unsigned char>(*at_);
    if (c == '"') {
      value = {first, static_cast<std::size_t>(at_ - first)};
      ++at_;
      return true;
    }
    if (c == '\\') {
      unescaped_.assign(first, at_);
      return escaped(value);
    }
    if (c < 0x20) return false;
    if (c >= 0x80 && !known_as_utf8_) {
      known_as_utf8_ = is_utf8(text_);
      if (!known_as_utf8_) return false;
    }
  }
  return false;
}

// The rest of a text from its first reverse solidus on.
inline bool JsonReader::escaped(std::string_view& value) {
  constexpr std::string_view letters = "\"\\/bfnrt", meant = "\"\\/\b\f\n\r\t";
  for (; at_ != end_; ++at_) {
    const auto c = static_cast<unsigned char>(*at_);
    if (c == '"') {
      value = unescaped_;
      ++at_;
      return true;
    }
    if (c < 0x20) return false;
    if (c >= 0x80 && !known_as_utf8_) {
      known_as_utf8_ = is_utf8(text_);
      if (!known_as_utf8_) return false;
    }
    if (c != '\\') {
      unescaped_ += *at_;
      continue;
    }
    const std::size_t letter = ++at_ != end_ ? letters.find(*at_) : std::string_view::npos;
    if (letter == std::string_view::npos) return false;
    unescaped_ += meant[letter];
  }
  return false;
}

template <class Receiver>
bool JsonReader::number(Receiver& receiver) {
  const char* const first = at_;
  const bool negative = at_ != end_ && *at_ == '-';
  if (negative) ++at_;
  std::uint64_t digits = 0;
  const auto take_digits = [&] {
    const char* const from = at_;
    for (; at_ != end_ && static_cast<unsigned char>(*at_ - '0') < 10; ++at_)
      digits = digits * 10 + static_cast<unsigned char>(*at_ - '0');
    return static_cast<std::size_t>(at_ - from);
  };
  const char lead = at_ != end_ ? *at_ : '\0';
  const std::size_t whole = take_digits();
  if (whole == 0 || (whole > 1 && lead == '0')) return false;
  const bool point = at_ != end_ && *at_ == '.';
  std::size_t fraction = 0;
  if (point) {
    ++at_;
    fraction = take_digits();
    if (fraction == 0) return false;
  }
  const bool exponent = at_ != end_ && (*at_ == 'e' || *at_ == 'E');
  if (!point && !exponent) {
    if (whole > 18) return false;
    return negative ? receiver.number_integer(-static_cast<std::int64_t>(digits)) : receiver.number_unsigned(digits);
  }
  double value = 0.0;
  if (exponent) {
    if (++at_ != end_ && (*at_ == '+' || *at_ == '-')) ++at_;
    if (take_digits() == 0) return false;
  }
  if (exponent || !exact_quotient(digits, whole + fraction, fraction, value)) {
    const std::from_chars_result result = std::from_chars(first, at_, value);
    if (result.ec != std::errc() || result.ptr != at_) return false;
  } else if (negative) {
    value = -value;
  }
  return receiver.real(value, {first, static_cast<std::size_t>(at_ - first)});
}

}  // namespace norvane::cli
