// Results of core routines: the CORE_RESULT_* codes and a value-or-result wrapper.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <variant>

namespace norvane {

enum CORE_RESULT : std::uint32_t {
  CORE_RESULT_OK = 0,
  CORE_RESULT_FAILED,
  CORE_RESULT_BUFFER_TOO_SMALL,
  CORE_RESULT_UNKNOWN_ERROR,
  CORE_RESULT_INVALID_ARG,
  CORE_RESULT_CONVERSION_ERROR,
  CORE_RESULT_DOES_NOT_EXIST,
  CORE_RESULT_CANNOT_OPEN,
  CORE_RESULT_READ_ERROR,
  CORE_RESULT_WRITE_ERROR,
  CORE_RESULT_NOT_OPEN,
  CORE_RESULT_MISMATCH,
  CORE_RESULT_ALREADY_EXIST,
  CORE_RESULT_ALREADY_INITIALIZED,
  CORE_RESULT_NOT_INITIALIZED,
  CORE_RESULT_OUF_OF_BOUNDS,  // the name callers know; spelt so since the first release
  CORE_RESULT_NOT_SUPPORTED,
  CORE_RESULT_END_REACHED,
  CORE_RESULT_NOT_IMPLEMENTED,
  CORE_RESULT_NO_MEMORY,
  CORE_RESULT_CORRUPT_MEMORY,
  CORE_RESULT_SOCKET_ERROR,
  CORE_RESULT_TIMEOUT,
  CORE_RESULT_SSL_ERROR,
  CORE_RESULT_WAIT_CANCELLED,
  CORE_RESULT_SYSTEM_ERROR,
  CORE_RESULT_ALREADY_RUNNING
};

// "CORE_RESULT_OK" ...; "???" for a value outside the list.
std::u16string_view core_result_name(std::uint32_t result) noexcept;

// A value, or the result that says why there is none. Reading the value of a failure is a programming error.
template <class Value>
class Core_CExpected {
 public:
  Core_CExpected(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
  Core_CExpected(CORE_RESULT failure) : content_(std::in_place_index<1>, failure) {}

  explicit operator bool() const noexcept { return content_.index() == 0; }
  CORE_RESULT result() const noexcept { return content_.index() == 0 ? CORE_RESULT_OK : std::get<1>(content_); }
  const Value& value() const {
    if (content_.index() != 0) throw std::logic_error("attempt to access value() while the expected is invalid");
    return std::get<0>(content_);
  }

 private:
  std::variant<Value, CORE_RESULT> content_;
};

}  // namespace norvane
