#include "framework/function_arg.h"

#include <iterator>

namespace norvane {

std::u16string_view error_text(std::uint32_t code) noexcept {
  static constexpr std::u16string_view texts[] = {
      u"OK",         u"#NULL!",  u"#DIV/0!",   u"#VALUE!",          u"#REF!",      u"#NAME?", u"#NUM!", u"#N/A",
      u"#ARGCOUNT!", u"#ERROR!", u"#WARNING!", u"#OUTPUTMISMATCH!", u"#ACCESSOR!",
  };
  static_assert(std::size(texts) == ERROR_ACCESSOR + 1);
  return code < std::size(texts) ? texts[code] : u"#UNKNOWN!";
}

}  // namespace norvane
