#include "catalogue/identity.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "catalogue/catalogue.h"
#include "core/crc32.h"
#include "core/seal.h"
#include "units/unit_catalogue.h"

namespace norvane::catalogue {
namespace {

// Numbers go in as 64 bits, texts with their length, so that nothing can move from one field into the next.
class Sum {
 public:
  void add(std::uint64_t value) noexcept { state_ = crc32_word(state_, value); }
  void add(double value) noexcept { add(std::bit_cast<std::uint64_t>(value)); }
  void add(std::u16string_view text) noexcept {
    add(std::uint64_t{text.size()});
    for (const char16_t unit : text) add(std::uint64_t{unit});
  }
  void add(std::string_view text) noexcept {
    add(std::uint64_t{text.size()});
    for (const char unit : text) add(std::uint64_t{static_cast<unsigned char>(unit)});
  }
  void add(const Core_CVariant& value) noexcept {
    add(static_cast<std::uint64_t>(value.tag()));
    double number = 0.0;
    if (value.tag() == Core_CVariant::STRING || value.tag() == Core_CVariant::BORROWED_STRING)
      add(value.AsText());
    else if (value.ToDouble(number) == CORE_RESULT_OK)
      add(number);
  }
  std::uint32_t value() const noexcept { return ~state_; }

 private:
  std::uint32_t state_ = ~std::uint32_t{0};
};

std::uint64_t bits(std::int64_t value) noexcept { return static_cast<std::uint64_t>(value); }

void add_options(Sum& sum, std::span<const record::Option> choices) noexcept {
  sum.add(std::uint64_t{choices.size()});
  for (const record::Option& choice : choices) sum.add(bits(choice.number));
}

void add_record(Sum& sum, const Function_CFunctionSpec& spec) noexcept {
  sum.add(spec.id);
  sum.add(std::uint64_t{spec.flags});
  sum.add(bits(spec.name_input));
  sum.add(std::uint64_t{spec.input_count});
  for (const Function_CInput& input : spec.input_records()) {
    sum.add(input.key);
    sum.add(std::uint64_t{input.type});
    sum.add(std::uint64_t{input.flags});
    sum.add(std::uint64_t{input.role});
    sum.add(input.minimum);
    sum.add(input.maximum);
    sum.add(input.default_value);
    add_options(sum, input.choices);
    sum.add(static_cast<std::uint64_t>(input.misfit));
    sum.add(std::uint64_t{input.composition});
    sum.add(std::uint64_t{input.may_be_left_out});
  }
  sum.add(std::uint64_t{spec.output_count});
  for (const Function_COutput& output : spec.output_records()) {
    sum.add(output.key);
    sum.add(std::uint64_t{output.type});
    sum.add(std::uint64_t{output.role});
    sum.add(bits(output.unit_input));
    sum.add(output.fallback);
    add_options(sum, output.choices);
    sum.add(std::uint64_t{output.with_any_status});
    sum.add(std::uint64_t{output.status_value_count});
    for (const Function_CStatusValue& value : output.values()) sum.add(value.value);
  }
}

void add_units(Sum& sum) {
  const Unit_CTypeAndUnitContainer& units = Unit_CTypeAndUnitContainer::Instance();
  std::vector<std::uint32_t> codes;
  if (units.ListMembers(CodeKind::unit, 0, codes) != UNIT_OK) return;
  std::sort(codes.begin(), codes.end());
  for (const std::uint32_t code : codes) {
    const Unit_CEntry* unit = nullptr;
    if (units.UnitDetails(code, unit) != UNIT_OK) continue;
    sum.add(std::uint64_t{code});
    sum.add(unit->key);
    sum.add(unit->factor);
    sum.add(unit->offset);
  }
}

// Content and equations in one.
std::uint32_t with_equations(std::uint32_t content) noexcept {
  Sum sum;
  sum.add(std::uint64_t{content});
  sum.add(seal().equations);
  return sum.value();
}

}  // namespace

std::vector<const CoefficientSet*> coefficient_sets() {
  std::vector<const CoefficientSet*> sets;
  for (const Function_CFunctionSpec* spec : specifications())
    for (const CoefficientSet* set : spec->coefficients)
      if (std::find(sets.begin(), sets.end(), set) == sets.end()) sets.push_back(set);
  return sets;
}

std::uint32_t content_checksum() {
  Sum sum;
  for (const Function_CFunctionSpec* spec : specifications()) add_record(sum, *spec);
  for (const CoefficientSet* set : coefficient_sets()) {
    sum.add(set->standard());
    sum.add(std::uint64_t{set->checksum()});
  }
  add_units(sum);
  return sum.value();
}

Identity identity() {
  for (const CoefficientSet* set : coefficient_sets()) set->verify();
  return {NORVANE_VERSION, seal().commit, with_equations(content_checksum()), with_equations(seal().content)};
}

std::string checksum_text(std::uint32_t checksum) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text(8, '0');
  for (std::size_t i = text.size(); i-- > 0; checksum >>= 4) text[i] = digits[checksum & 0xF];
  return text;
}

std::string identity_text() {
  const Identity id = identity();
  std::string text =
      std::string(id.version) + ", commit " + std::string(id.commit) + ", checksum " + checksum_text(id.checksum);
  if (!id.intact()) text += " (DOES NOT MATCH: built with " + checksum_text(id.built) + ")";
  return text;
}

}  // namespace norvane::catalogue
