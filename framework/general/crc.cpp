// Checksums of cell ranges: CRC16 and CRC32.
#include <bit>
#include <cstdint>

#include "core/crc32.h"
#include "framework/context.h"
#include "framework/general/arguments.h"
#include "framework/records.h"

namespace norvane::functions {
namespace {

// One element of any kind. False when it is an error, which ends the checksum.
bool add_element(Function_CContext& context, const FUNCTION_ARG& element, std::uint32_t& state) noexcept {
  if (element.kind == ARG_ERROR) return false;
  double number = 0.0;
  std::u16string_view text;
  if (context.ReadNumber(&element, number)) {
    state = crc32_word(state, std::bit_cast<std::uint64_t>(number));
  } else if (context.ReadText(&element, text)) {
    for (char16_t unit : text) state = crc32_step(crc32_step(state, unit & 0xFFu), unit >> 8);
  }
  return true;
}

// The register starts at 0 and is not inverted at the end.
std::uint32_t checksum(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  FUNCTION_ARG::Array range{};
  if (!read_range(context, {args, count}, 0, range)) return ERROR_VALUE;
  const auto bits = [](const FUNCTION_ARG& number) { return std::bit_cast<std::uint64_t>(number.number); };
  const FUNCTION_ARG* element = range.elements;
  std::uint32_t state = 0;
  for (std::uint64_t left = std::uint64_t{range.columns} * range.rows; left != 0;) {
    if (left >= 2 && element[0].kind == ARG_NUMBER && element[1].kind == ARG_NUMBER) [[likely]] {
      state = crc32_words(state, bits(element[0]), bits(element[1]));
      element += 2;
      left -= 2;
      continue;
    }
    if (!add_element(context, *element, state)) {
      context.ReportError(0, u"has a cell that holds an error");
      return element->error;
    }
    ++element;
    --left;
  }
  output = FUNCTION_ARG::Number(state);
  return ERROR_OK;
}

constexpr record::Input inputs[] = {
    record::input(u"range", u"Range", u"range to work on", data_type::any).required().range(),
};
constexpr record::Output outputs[] = {
    record::output(u"CRC", u"CRC", u"Checksum of the range", data_type::num, u""),
};

constexpr std::u16string_view notes =
    u"The reflected CRC-32 (polynomial EDB88320 hexadecimal) with start value 0 and without a final inversion, "
    u"over the cells row by row: a number, or a text that reads as a number, as the 8 bytes of its IEEE 754 double, "
    u"lowest byte first; an empty cell as the number 0; any other text as its UTF-16 characters, low byte first.\n"
    u"A cell that holds an error ends the calculation with that error.\n";

}  // namespace

extern const record::Function CRC16;
const record::Function CRC16 = {
    .group = GroupId::Extended,
    .id = u"CRC16",
    .description = u"Calculates the CRC of a range of cells",
    .category = u"General",
    .subcategory = u"Extended",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .inputs = inputs,
    .outputs = outputs,
    // CRC16 has always answered with the 32-bit checksum of CRC32, and stored checksums depend on it. Intended.
    .implementation = checksum,
    .notes = u"The same 32-bit checksum as CRC32, where the method is described.\n",
};

extern const record::Function CRC32;
const record::Function CRC32 = {
    .group = GroupId::Extended,
    .id = u"CRC32",
    .description = u"Calculates the 32-bit CRC of a range of cells",
    .category = u"General",
    .subcategory = u"Extended",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .inputs = inputs,
    .outputs = outputs,
    .implementation = checksum,
    .notes = notes,
};

}  // namespace norvane::functions
