// Arguments of a call and what they point to, and a source of numbers that is the same on every machine.
#pragma once

#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text.h"
#include "framework/function_arg.h"

namespace norvane::test {

// splitmix64, started by a number or by a text and two numbers.
class Random {
 public:
  explicit Random(std::uint64_t seed) : Random(u"", seed, 0) {}
  Random(std::u16string_view text, std::uint64_t a, std::uint64_t b) {
    for (char16_t unit : text) state_ = (state_ ^ unit) * 0x100000001B3u;
    state_ += a * 0x9E3779B97F4A7C15u + b * 0xD1B54A32D192ED03u;
    next();
  }
  std::uint64_t next() {
    state_ += 0x9E3779B97F4A7C15u;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }
  double within(double low, double high) { return low + (high - low) * unit(); }
  // From 0 to n - 1.
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }
  // One in eight is a number that breaks careless code.
  double hostile(double low, double high) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double bad[] = {0.0,
                              -0.0,
                              -1.0,
                              1e-310,
                              1e-12,
                              1.0,
                              273.15,
                              1e12,
                              -1e308,
                              1e308,
                              infinity,
                              -infinity,
                              std::numeric_limits<double>::quiet_NaN()};
    return below(8) != 0 ? within(low, high) : bad[below(std::size(bad))];
  }
  int whole(int low, int high) { return low + static_cast<int>(below(static_cast<std::size_t>(high - low + 1))); }

 private:
  std::uint64_t state_ = 0xCBF29CE484222325u;
};

inline double bits(std::uint64_t pattern) { return std::bit_cast<double>(pattern); }

// A value as text that tells all its bits: numbers as 16 hexadecimal digits, "-" for what was not written.
inline std::string bits_of(const FUNCTION_ARG& value) {
  char text[40];
  switch (value.kind) {
    case ARG_NUMBER:
      std::snprintf(text, sizeof text, "%016" PRIx64, std::bit_cast<std::uint64_t>(value.number));
      return text;
    case ARG_INTEGER: return std::string("i").append(std::to_string(value.integer));
    case ARG_BOOLEAN: return value.boolean != 0 ? "true" : "false";
    case ARG_STRING: return std::string("\"").append(to_utf8(value.text())).append("\"");
    case ARG_MISSING: return "missing";
    case ARG_EMPTY: return "-";
    case ARG_ERROR: return to_utf8(error_text(value.error));
    case ARG_ARRAY: {
      std::snprintf(text, sizeof text, "%ux%u", value.array.columns, value.array.rows);
      std::string all = text;
      for (std::uint64_t i = 0; value.array.elements != nullptr && i < value.count(); ++i)
        all.append(" ").append(bits_of(value.array.elements[i]));
      return all;
    }
    default: return std::string("kind ").append(std::to_string(value.kind));
  }
}

// Whether a value, or every value in it, is a finite number or no number at all.
inline bool all_finite(const FUNCTION_ARG& value) {
  if (value.kind != ARG_ARRAY) return value.kind != ARG_NUMBER || std::isfinite(value.number);
  for (std::uint64_t i = 0; i < value.count(); ++i)
    if (!all_finite(value.array.elements[i])) return false;
  return true;
}

class Arguments {
 public:
  std::vector<FUNCTION_ARG> values;

  FUNCTION_ARG text(std::u16string value) {
    const std::u16string& kept = texts_.emplace_back(std::move(value));
    return FUNCTION_ARG::String(kept.c_str(), kept.size());
  }
  // One column, or as many columns as asked for.
  FUNCTION_ARG cells(std::vector<FUNCTION_ARG> elements, std::uint32_t columns = 1) {
    auto& kept = cells_.emplace_back(std::move(elements));
    return FUNCTION_ARG::OfArray(columns, static_cast<std::uint32_t>(kept.size()) / columns, kept.data());
  }
  FUNCTION_ARG numbers(const std::vector<double>& values_of_cells) {
    std::vector<FUNCTION_ARG> elements;
    for (double value : values_of_cells) elements.push_back(FUNCTION_ARG::Number(value));
    return cells(std::move(elements));
  }

 private:
  std::deque<std::u16string> texts_;
  std::deque<std::vector<FUNCTION_ARG>> cells_;
};

}  // namespace norvane::test
