// Texts where a name or a number is expected: units, functions, components, inputs of the command line.
#include <norvane.h>

#include <array>
#include <cmath>

#include "catalogue/catalogue.h"
#include "fuzz/fuzz.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/target.h"
#include "units/unit_names.h"

namespace norvane::fuzz {
namespace {

// The C library reads what is left between blanks and tabs; it takes whatever the "C" locale's isspace does as well.
void check_number(const std::u16string& text) {
  double value = 0.0;
  std::int32_t integer = 0;
  const std::string narrow = to_utf8(text);
  const std::string trimmed(cli::trimmed(narrow));
  const bool read = parse_number(text, value);
  parse_integer(text, integer);
  char* end = nullptr;
  const double want = std::strtod(trimmed.c_str(), &end);
  const bool whole =
      !trimmed.empty() && end == trimmed.c_str() + trimmed.size() && std::strchr("\n\v\f\r", trimmed[0]) == nullptr;
  const bool is_nan = trimmed.find_first_of("nN") != std::string::npos;  // a nan's payload is nobody's business
  expect(is_nan || (read == whole && (!read || value == want)), "a number is read otherwise than by the C library",
         narrow);
  char16_t digits[max_number_text + 1];
  if (read && std::isfinite(value)) {
    double back = 0.0;
    expect(parse_number({digits, format_number(value, digits)}, back) &&
               (std::fabs(back - value) <= 1e-13 * std::fabs(value) || std::isinf(back)),
           "a number that is written is not read", narrow);
  }
}

void check_units(const std::string& from, const std::string& to, double value) {
  const char* message = nullptr;
  double values[2] = {value, value};
  const bool done = norvane_convert(from.c_str(), to.c_str(), values, 2, &message) == 0;
  expect(message != nullptr && (done || message[0] != '\0'), "no message says why units are not converted", from, to);
  expect(std::memcmp(&values[0], &values[1], sizeof value) == 0, "one number is converted in two ways", from, to);
  expect(done || std::memcmp(&values[0], &value, sizeof value) == 0, "a refused number is altered", from, to);
  const std::string what(message);
  expect(cli::is_utf8(what), "a message is no text", what);
  if (done && values[0] != value && std::fabs(value) < 1e200 && std::fabs(values[0]) < 1e200) {
    const double there = values[0];
    expect(norvane_convert(to.c_str(), from.c_str(), values, 1, nullptr) == 0 &&
               std::fabs(values[0] - value) <= 1e-9 * (std::fabs(value) + std::fabs(there) + 1e3),
           "units are not converted back", from, to);
  }
}

}  // namespace

void names(Input& in) {
  const double value = in.number();
  const auto specs = catalogue::specifications();
  const Function_CFunctionSpec& spec = *specs[in.below(specs.size())];
  const std::string first(in.text()), second(in.rest());
  const std::u16string wide = to_utf16(first);
  expect(to_utf16(to_utf8(wide)) == wide, "a text does not come back", first);
  check_number(wide);
  // Texts of C end at their first zero.
  check_units(first.c_str(), second.substr(0, 80).c_str(), value);

  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  std::uint32_t code = 0;
  std::u16string_view text;
  expect(!units.CodeOfText(wide, code) || code == 0 || units.TextOfCode(code, text) == UNIT_OK,
         "a code without a text", first);
  for (const Unit_CEntry* unit : units_named(first)) expect(units.IsKnown(unit->code), "no such unit", first);
  expect(norvane_status_text(first.c_str(), code % 40, code) != nullptr, "no text at all");
  std::uint32_t status = 0;
  norvane_column column{&value, 0, 1, 0};
  double* output = nullptr;
  norvane_batch(first.c_str(), 1, &column, 1, &output, 1, &status);

  using namespace cli;
  Quantity quantity;
  if (read_quantity(first, '.', quantity)) fraction_scale(quantity.unit);
  expect(cli::is_utf8(in_quotes(first)) && cli::is_utf8(printable(second, 30)), "a quotation is no text", first,
         second);
  expect(component_named(first) <= component::count, "no such component", first);
  try {
    find_function(first);
  } catch (const UsageError& error) {
    expect(cli::is_utf8(error.what()), "a message is no text", error.what());
  }
  try {
    Targets(spec).add(second, {}, "input ");
  } catch (const UsageError& error) {
    expect(error.what()[0] != '\0', "an error without a message", second);
  }
}

}  // namespace norvane::fuzz
