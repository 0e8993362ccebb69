// Conversion of numbers between units by their names, for callers that hold their values in other units.
#include <cstring>
#include <string>
#include <string_view>

#include "core/text.h"
#include "hosts/module/export.h"
#include "hosts/module/module.h"
#include "units/unit_names.h"
#include "units/unit_oddities.h"

namespace norvane::exports {
namespace {

constexpr std::uint32_t not_run = 0xFFFFFFFF;
constexpr std::size_t longest_name = 64;

using Named = std::vector<const Unit_CEntry*>;

std::string text_of(std::uint32_t code) {
  std::u16string_view text;
  return Unit_CTypeAndUnitContainer::Instance().TextOfCode(code, text) == UNIT_OK ? to_utf8(text) : std::string();
}

// "psi(g) is a unit of gauge pressure".
std::string said_of(const Unit_CEntry& unit) {
  std::uint32_t type = 0;
  Unit_CTypeAndUnitContainer::TypeOfUnit(unit.code, type);
  return to_utf8(unit.text) + " is a unit of " + text_of(type);
}

struct Conversion {
  const Unit_CEntry* from = nullptr;
  const Unit_CEntry* to = nullptr;
  double scale = 0.0;   // of mole fractions, which are no units of the catalogue
  std::string message;  // why there is none, or what is to be known of it
  bool found = false;
};

Conversion conversion(std::string_view from, std::string_view to) {
  Conversion made;
  const double from_scale = fraction_scale(from), to_scale = fraction_scale(to);
  if (from_scale != 0.0 && to_scale != 0.0) {
    made.scale = from_scale / to_scale;
    made.found = true;
    return made;
  }
  const Named given = units_named(from), wanted = units_named(to);
  if (given.empty() || wanted.empty()) {
    // Whatever the bytes are, what is said of them is UTF-8.
    made.message = '"' + to_utf8(to_utf16(given.empty() ? from : to)) + "\" is no unit";
    return made;
  }
  // A symbol alone may name units of several quantities.
  for (const Unit_CEntry* target : wanted)
    for (const Unit_CEntry* source : given)
      if (!made.found && type_number(source->code) == type_number(target->code)) {
        made.from = source;
        made.to = target;
        made.found = true;
      }
  if (made.found) {
    made.message = to_utf8(conversion_warning(made.from->code, made.to->code));
    return made;
  }
  made.message = said_of(*given.front()) + ", but " + said_of(*wanted.front());
  if (is_gauge_and_absolute(given.front()->code, wanted.front()->code))
    made.message += ": the pressure of the atmosphere lies between them";
  return made;
}

// Text that lives until the thread converts again.
const char* kept(std::string text) {
  host::ThreadState* state = host::thread_state();
  return state != nullptr ? (state->unit_text = std::move(text)).c_str() : "not enough memory for a text";
}

std::uint32_t convert(std::string_view from, std::string_view to, double* values, std::size_t count,
                      const char*& message) {
  Conversion wanted = conversion(from, to);
  if (!wanted.message.empty()) message = kept(std::move(wanted.message));
  if (!wanted.found) return not_run;
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  for (std::size_t i = 0; i < count; ++i) {
    if (wanted.from == nullptr) {
      values[i] *= wanted.scale;
    } else {
      units.Convert(wanted.from->code, wanted.to->code, values[i]);
    }
  }
  return 0;
}

bool is_name(const char* text) noexcept {
  return text != nullptr && std::memchr(text, '\0', longest_name + 1) != nullptr;
}

}  // namespace
}  // namespace norvane::exports

NORVANE_EXPORT std::uint32_t norvane_convert(const char* from, const char* to, double* values, std::size_t count,
                                             const char** message) {
  using namespace norvane::exports;
  const char* text = "";
  std::uint32_t result = not_run;
  if (!is_name(from) || !is_name(to)) {
    text = "the name of a unit is a text of at most 64 bytes";
  } else if (values == nullptr && count > 0) {
    text = "values is null";
  } else {
    try {
      const norvane::host::FloatingPointGuard guard;
      result = convert(from, to, values, count, text);
    } catch (...) {
      text = "not enough memory";
      result = not_run;
    }
  }
  if (message != nullptr) *message = text;
  return result;
}
