#include "core/result.h"

#include <iterator>

namespace norvane {

std::u16string_view core_result_name(std::uint32_t result) noexcept {
  static constexpr std::u16string_view names[] = {
      u"CORE_RESULT_OK",
      u"CORE_RESULT_FAILED",
      u"CORE_RESULT_BUFFER_TOO_SMALL",
      u"CORE_RESULT_UNKNOWN_ERROR",
      u"CORE_RESULT_INVALID_ARG",
      u"CORE_RESULT_CONVERSION_ERROR",
      u"CORE_RESULT_DOES_NOT_EXIST",
      u"CORE_RESULT_CANNOT_OPEN",
      u"CORE_RESULT_READ_ERROR",
      u"CORE_RESULT_WRITE_ERROR",
      u"CORE_RESULT_NOT_OPEN",
      u"CORE_RESULT_MISMATCH",
      u"CORE_RESULT_ALREADY_EXIST",
      u"CORE_RESULT_ALREADY_INITIALIZED",
      u"CORE_RESULT_NOT_INITIALIZED",
      u"CORE_RESULT_OUF_OF_BOUNDS",
      u"CORE_RESULT_NOT_SUPPORTED",
      u"CORE_RESULT_END_REACHED",
      u"CORE_RESULT_NOT_IMPLEMENTED",
      u"CORE_RESULT_NO_MEMORY",
      u"CORE_RESULT_CORRUPT_MEMORY",
      u"CORE_RESULT_SOCKET_ERROR",
      u"CORE_RESULT_TIMEOUT",
      u"CORE_RESULT_SSL_ERROR",
      u"CORE_RESULT_WAIT_CANCELLED",
      u"CORE_RESULT_SYSTEM_ERROR",
      u"CORE_RESULT_ALREADY_RUNNING",
  };
  static_assert(std::size(names) == CORE_RESULT_ALREADY_RUNNING + 1);
  return result < std::size(names) ? names[result] : u"???";
}

}  // namespace norvane
