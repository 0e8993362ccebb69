#include "framework/function_spec.h"

#include <cmath>
#include <iterator>
#include <stdexcept>
#include <string>

#include "core/text.h"
#include "framework/retentive.h"
#include "units/unit_catalogue.h"

namespace norvane {
namespace {

constexpr Function_CKeyword math_keywords[] = {
    {u"metric", u"Metric", u"Functions using metric units", u"Units"},
    {u"customary", u"U.S. Customary", u"Functions using U.S. customary units", u"Units"},
    {u"liquid", u"Liquid", u"Functions for hydrocarbon liquids", u"States"},
    {u"gas", u"Gas", u"Functions for hydrocarbon gases and steam", u"States"},
    {u"flow", u"Flow", u"Functions for differential pressure flow meters", u"States"},
    {u"aga", u"AGA", u"American Gas Association", u"Standards"},
    {u"api", u"API", u"American Petroleum Institute", u"Standards"},
    {u"astm", u"ASTM", u"American Society for Testing and Materials", u"Standards"},
    {u"gerg", u"GERG", u"European Gas Research Group standards", u"Standards"},
    {u"gost", u"GOST", u"GOST", u"Standards"},
    {u"gpa", u"GPA", u"Gas Processors Association", u"Standards"},
    {u"iapws", u"IAPWS", u"IAPWS-IF97 calculations for water and steam", u"Standards"},
    {u"iso", u"ISO", u"International Organization for Standardization", u"Standards"},
    {u"iupac", u"IUPAC", u"International Union of Pure and Applied Chemistry", u"Standards"},
    {u"nist", u"NIST", u"National Institute of Standards and Technology", u"Standards"},
    {u"densitometer", u"Densitometer", u"Functions for densitometers", u"Misc"},
};
static_assert(std::size(math_keywords) == 16);

constexpr Function_CGroup extended_group{u"Extended", u"General purpose functions", u"nv", 1, {}};
constexpr Function_CGroup math_group{u"Math", u"Mathematical functions", u"nv", 1, math_keywords};
constexpr Function_CGroup gerg_math_group{u"GergMath", u"Mathematical functions", u"nv", 1, {}};

Core_CVariant to_variant(const record::Value& value) {
  Core_CVariant out;
  switch (value.kind) {
    case record::Value::Kind::none: break;
    case record::Value::Kind::number: out.SetDouble(value.number); break;
    case record::Value::Kind::boolean: out.SetBool(value.number != 0.0); break;
    case record::Value::Kind::integer: out.SetInt32(static_cast<std::int32_t>(value.number)); break;
    // The variant owns its default, as every value of a record that is not a number.
    case record::Value::Kind::text:
      if (out.SetText(value.text, true) != CORE_RESULT_OK) throw std::bad_alloc();
      break;
  }
  return out;
}

// Retentive data of a bound calculation, one type a function.
class BoundType final : public Function_CRegisteredType {
 public:
  BoundType(std::u16string_view name, const record::Binding& binding)
      : Function_CRegisteredType(name, false), binding_(binding) {}
  std::unique_ptr<Function_CData> Create() const noexcept override { return binding_.remember(); }

 private:
  const record::Binding& binding_;
};

Function_CPlace place_of(const record::Field& field, const record::Binding* binding,
                         const record::Binding::Structure record::Binding::*which) {
  if (field.kind == record::Field::Kind::none) return {};
  const record::Binding::Structure* structure = binding != nullptr ? &(binding->*which) : nullptr;
  if (structure == nullptr || structure->identity != field.owner)
    throw std::logic_error("a line names a member of another structure than its calculation's");
  // Only addresses are taken, nothing is written through them.
  void* const whole = const_cast<void*>(structure->prototype);
  const void* const member = field.inner(field.outer != nullptr ? field.outer(whole) : whole);
  const auto offset = static_cast<const char*>(member) - static_cast<const char*>(whole);
  return {field.kind, field.count, static_cast<std::uint32_t>(offset), field.conversion};
}

// What a quantity of a fluid or a meter can be, in the quantity's base unit. Wide on purpose: what lies outside is no
// unusual fluid but an argument that has run away, such as an exponent of 28012.
struct Plausible {
  std::uint32_t quantity;
  double low, high;
};
constexpr Plausible plausible[] = {
    {quantity::temperature, 0.0, 5000.0},            // K
    {quantity::absolutepressure, 0.0, 1e10},         // Pa
    {quantity::masspervolume, 0.0, 30000.0},         // kg/m3
    {quantity::molepervolume, 0.0, 1e6},             // mol/m3
    {quantity::energypermass, -1e9, 1e9},            // J/kg
    {quantity::energypervolume, -1e9, 1e9},          // J/m3
    {quantity::energyperstandardvolume, -1e9, 1e9},  // J/m3
    {quantity::dynamicviscosity, 0.0, 1e6},          // Pa s
    {quantity::velocity, 0.0, 1e5},                  // m/s
    {quantity::length, 0.0, 1e3},                    // m
    {quantity::masspertime, 0.0, 1e7},               // kg/s
};

void set_plausible(Function_COutput& output, const record::Output& from) {
  if (from.expected_low < from.expected_high) {
    output.plausible_low = from.expected_low;
    output.plausible_high = from.expected_high;
    return;
  }
  if (kind_of_code(from.type) != CodeKind::unit) return;
  double factor = 1.0, offset = 0.0;
  if (!Unit_CTypeAndUnitContainer::ScaleOf(from.type, factor, offset)) return;
  for (const Plausible& bounds : plausible) {
    if (type_number(bounds.quantity) != type_number(from.type)) continue;
    output.plausible_low = (bounds.low - offset) / factor;
    output.plausible_high = (bounds.high - offset) / factor;
  }
}

void make_ready(Function_CInput& input) {
  input.enumerated = kind_of_code(input.type) == CodeKind::enumeration;
  input.checked = input.enumerated || input.has_minimum() || input.has_maximum();
  if (input.enumerated) input.members_known = Unit_CTypeAndUnitContainer::MemberBits(input.type, input.members);
  switch (input.default_value.tag()) {
    case Core_CVariant::DOUBLE: {
      double number = 0.0;
      if (input.default_value.ToDouble(number) == CORE_RESULT_OK) input.ready_default = FUNCTION_ARG::Number(number);
      break;
    }
    case Core_CVariant::BOOL: input.ready_default = FUNCTION_ARG::Boolean(input.default_value.AsBool()); break;
    default: break;
  }
}

}  // namespace

Function_CFunctionSpec::Function_CFunctionSpec(Function_CFunctionSpec&&) noexcept = default;
Function_CFunctionSpec::~Function_CFunctionSpec() = default;

// Option codes stand behind the text, each after a semicolon and a blank.
std::u16string_view Function_CFunctionSpec::with_options(std::u16string_view description_,
                                                         std::span<const record::Option> choices) {
  if (choices.empty()) return description_;
  auto text = std::make_unique<std::u16string>(description_);
  for (const record::Option& choice : choices)
    text->append(u"; ").append(to_utf16(std::to_string(choice.number))).append(u": ").append(choice.label);
  texts_.push_back(std::move(text));
  return *texts_.back();
}

const Function_CGroup& Function_CGroup::Of(GroupId id) noexcept {
  switch (id) {
    case GroupId::Extended: return extended_group;
    case GroupId::GergMath: return gerg_math_group;
    default: return math_group;
  }
}

Function_CFunctionSpec::Function_CFunctionSpec(const Function_CGroup& group_, Function_Implementation implementation_,
                                               std::u16string_view id_, std::u16string_view display_name_,
                                               std::u16string_view description_, std::u16string_view category_,
                                               std::uint32_t flags_, std::size_t input_count_,
                                               std::size_t output_count_)
    : group(&group_),
      implementation(implementation_),
      second_implementation(implementation_),
      status_filler(&default_status_filler),
      id(id_),
      display_name(display_name_),
      description(description_),
      category(category_),
      subcategory(u""),
      keywords(u""),
      flags(flags_),
      input_count(input_count_),
      inputs(std::make_unique<Function_CInput[]>(input_count_)),
      output_count(output_count_),
      outputs(std::make_unique<Function_COutput[]>(output_count_)) {}

Function_CFunctionSpec::Function_CFunctionSpec(const record::Function& record)
    : Function_CFunctionSpec(Function_CGroup::Of(record.group),
                             record.implementation != nullptr ? record.implementation
                             : record.binding != nullptr      ? record.binding->run
                                                              : nullptr,
                             record.id, record.display, record.description, record.category, record.flags,
                             record.inputs.size(), record.outputs.size()) {
  subcategory = record.subcategory;
  keywords = record.keywords;
  name_input = record.name_input;
  notes = record.notes;
  binding = record.binding;
  coefficients = record.coefficients;
  if (binding != nullptr && binding->remember != nullptr) memory_type = std::make_unique<BoundType>(id, *binding);
  for (std::size_t i = 0; i < input_count; ++i) {
    const record::Input& from = record.inputs[i];
    Function_CInput& to = inputs[i];
    to.role = from.role;
    to.key = from.key;
    to.display_name = from.display;
    to.description = with_options(from.description, from.choices);
    to.default_value = to_variant(from.default_value);
    to.type = from.type;
    to.minimum = from.minimum;
    to.maximum = from.maximum;
    to.flags = from.flags;
    to.choices = from.choices;
    to.misfit = from.misfit;
    to.composition = from.composition;
    to.may_be_left_out = from.may_be_left_out;
    to.place = place_of(from.field, binding, &record::Binding::arguments);
    make_ready(to);
  }
  for (std::size_t i = 0; i < output_count; ++i) {
    const record::Output& from = record.outputs[i];
    Function_COutput& to = outputs[i];
    to.role = from.role;
    to.key = from.key;
    to.display_name = from.display;
    to.description = with_options(from.description, from.choices);
    to.choices = from.choices;
    to.with_any_status = from.with_any_status;
    to.place = place_of(from.field, binding, &record::Binding::results);
    set_plausible(to, from);
    to.fallback = to_variant(from.fallback);
    to.type = from.type;
    to.unit_input = from.unit_input;
    to.tag_name = from.tag;
    to.tag_text = from.tag_text;
    Function_CStatusValue* values = AllocateStatusValues(i, from.values.size());
    for (const record::StatusValue& value : from.values) *values++ = {value.id, value.description, value.value, 1};
  }
}

Function_CStatusValue* Function_CFunctionSpec::AllocateStatusValues(std::size_t output, std::size_t count) {
  Function_COutput& record = outputs[output];
  record.status_values = std::make_unique<Function_CStatusValue[]>(count);
  record.status_value_count = count;
  return record.status_values.get();
}

bool Function_CFunctionSpec::outputs_tell_failure() const noexcept {
  for (const Function_COutput& output : output_records()) {
    if (output.role == 1 || !output.fallback.empty()) return true;
    for (const Function_CStatusValue& value : output.values())
      if (value.value == 0.0) return true;
  }
  return false;
}

void Function_CLibrary::Register(const Function_CFunctionSpec& spec) { map_.Insert(spec.worksheet_name(), &spec); }

// A filling that finds no memory leaves no half of a catalogue; who asks next tries again.
const Function_CLibrary::Map& Function_CLibrary::Entries() const noexcept {
  if (fill_ == nullptr) return map_;
  try {
    filled_.run([this] {
      auto* self = const_cast<Function_CLibrary*>(this);  // one with a filling is no constant object
      try {
        fill_(*self);
      } catch (...) {
        self->map_.Clear();
        throw;
      }
    });
  } catch (...) {
    // Empty, as far as this caller can tell.
  }
  return map_;
}

const Function_CFunctionSpec* Function_CLibrary::Find(std::u16string_view worksheet_name) const noexcept {
  const Function_CFunctionSpec* const* found = Entries().Find(worksheet_name);
  return found != nullptr ? *found : nullptr;
}

const Function_CFunctionSpec* Function_CLibrary::FindVisible(std::u16string_view worksheet_name) const noexcept {
  const Function_CFunctionSpec* found = Find(worksheet_name);
  return found != nullptr && found->visible() ? found : nullptr;
}

}  // namespace norvane
