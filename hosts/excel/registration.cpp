#include "hosts/excel/registration.h"

#include <memory>

#include "core/text.h"
#include "hosts/excel/host.h"
#include "hosts/excel/platform.h"
#include "hosts/excel/sinks.h"
#include "hosts/excel/wrappers.h"
#include "units/unit_catalogue.h"

namespace norvane::excel {
namespace {

constexpr std::u16string_view addin_name = u"Norvane";

std::u16string decimal(std::size_t value) {
  char16_t digits[max_number_text + 1];
  return {digits, format_integer(static_cast<std::int32_t>(value), digits)};
}

std::size_t argument_count(const Function_CFunctionSpec& spec, const Limits& limits) {
  return spec.has(FUNCTION_VARIABLE_INPUTS) && spec.input_count > 0 ? limits.variable_arguments : spec.input_count;
}

// "a,b,[c]"; a repeated last input "comp" reads comp1,[comp2],[comp3].
std::u16string argument_text(const Function_CFunctionSpec& spec, std::size_t count) {
  std::u16string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) text += u',';
    if (i >= spec.input_count) {
      text.append(u"[").append(spec.inputs[spec.input_count - 1].key);
      text.append(decimal(i - spec.input_count + 2)).append(u"]");
      continue;
    }
    const Function_CInput& input = spec.inputs[i];
    if (input.optional()) text += u'[';
    text += input.key;
    if (spec.has(FUNCTION_VARIABLE_INPUTS) && i + 1 == spec.input_count) text += u'1';
    if (input.optional()) text += u']';
  }
  return text;
}

// "[bar(a)][0..2000] Absolute pressure."
std::u16string argument_help(const Function_CInput& input, const Unit_CTypeAndUnitContainer& units) {
  std::u16string text;
  std::u16string_view unit;
  if (input.type != 0 && units.TextOfCode(input.type, unit) == UNIT_OK && !unit.empty())
    text.append(u"[").append(unit).append(u"]");
  if (input.has_minimum() && input.has_maximum())
    text.append(u"[").append(format_number(input.minimum)).append(u"..").append(format_number(input.maximum)) +=
        u"] ";
  else if (input.has_minimum())
    text.append(u"[>=").append(format_number(input.minimum)) += u"] ";
  else if (input.has_maximum())
    text.append(u"[<=").append(format_number(input.maximum)) += u"] ";
  return text.append(input.description);
}

// An argument text that is too long ends after a whole argument.
std::u16string cut_arguments(std::u16string text) {
  if (text.size() <= max_registration_text) return text;
  const std::size_t comma = text.rfind(u',', max_registration_text);
  text.resize(comma != std::u16string::npos ? comma : max_registration_text);
  return text;
}

// Argument records of one call of the host, with the memory of their texts, which end with a NUL beyond their length.
template <class Record>
class Arguments;

template <>
class Arguments<XlRecord12> {
 public:
  using Record = XlRecord12;
  static void set_text(Record& record, std::u16string_view text, std::vector<std::unique_ptr<char16_t[]>>& memory) {
    if (text.size() > max_text12) text = text.substr(0, max_text12);
    auto counted = std::make_unique<char16_t[]>(text.size() + 2);
    counted[0] = static_cast<char16_t>(text.size());
    text.copy(counted.get() + 1, text.size());
    record.string = counted.get();
    record.type = XL_STRING;
    memory.push_back(std::move(counted));
  }
  using Unit = char16_t;
};

template <>
class Arguments<XlRecord4> {
 public:
  using Record = XlRecord4;
  static void set_text(Record& record, std::u16string_view text,
                       std::vector<std::unique_ptr<unsigned char[]>>& memory) {
    auto counted = std::make_unique<unsigned char[]>(max_text4 + 2);
    // Characters of several bytes in the code page: as many as fit.
    counted[0] = static_cast<unsigned char>(platform::to_code_page(text, counted.get() + 1, max_text4));
    record.string = counted.get();
    record.type = XL_STRING;
    memory.push_back(std::move(counted));
  }
  using Unit = unsigned char;
};

template <class Record>
class HostCall {
 public:
  explicit HostCall(std::size_t room) { records_.reserve(room); }
  HostCall& text(std::u16string_view text) {
    Arguments<Record>::set_text(add(), text, memory_);
    return *this;
  }
  HostCall& missing() {
    add().type = XL_MISSING;
    return *this;
  }
  HostCall& number(double value) {
    Record& record = add();
    record.number = value;
    record.type = XL_NUMBER;
    return *this;
  }
  HostCall& given(const Record& record) {
    add() = record;
    return *this;
  }
  // One row of texts.
  template <std::size_t N>
  HostCall& text_row(const std::u16string_view (&texts)[N]) {
    row_.assign(N, Record{});
    for (std::size_t i = 0; i < N; ++i) Arguments<Record>::set_text(row_[i], texts[i], memory_);
    Record& record = add();
    record.array.elements = row_.data();
    record.array.rows = 1;
    record.array.columns = N;
    record.type = XL_ARRAY;
    return *this;
  }
  int call(int function, HostResult<Record>& result) {
    std::vector<Record*> args;
    args.reserve(records_.size());
    for (Record& record : records_) args.push_back(&record);
    return result.call(function, static_cast<int>(args.size()), args.data());
  }

 private:
  Record& add() { return records_.emplace_back(); }
  std::vector<Record> records_;
  std::vector<Record> row_;
  std::vector<std::unique_ptr<typename Arguments<Record>::Unit[]>> memory_;
};

// The answer of a registration lies in its result (a number), whatever the return code says.
template <class Record>
bool registered(HostCall<Record>& call, std::u16string_view function) {
  HostResult<Record> result;
  if (call.call(XLF_REGISTER, result) == XL_RETURN_SUCCESS && result.type() == XL_NUMBER) return true;
  std::u16string line = u"Norvane: the host refused to register ";
  line.append(function);
  sinks().debug(line);
  return false;
}

// The entry in the host's Help menu; newer hosts have no such menu, the command can be called by its name there.
constexpr double menu_bar = 10;
constexpr std::u16string_view menu = u"Help";
constexpr std::u16string_view about_entry = u"About Norvane";
constexpr std::u16string_view about_command = u"AboutBox";

// Whether the menu has the entry. Opening and closing run on the host's main thread.
bool about_in_menu = false;

template <class Record>
void add_about(const Record& module) {
  HostCall<Record> command(8);
  command.given(module).text(about_command).text(u"A").text(about_command).text(u"").text(u"2");
  command.text(addin_name).missing();
  if (!registered(command, about_command) || about_in_menu) return;
  HostCall<Record> call(3);
  HostResult<Record> result;
  call.number(menu_bar).text(menu).text_row({about_entry, about_command, u"", u"", u""});
  about_in_menu = call.call(XLF_ADD_COMMAND, result) == XL_RETURN_SUCCESS && result.type() != XL_ERROR;
}

template <class Record>
void remove_about() {
  HostCall<Record> call(3);
  HostResult<Record> result;
  call.number(menu_bar).text(menu).text(about_entry);
  call.call(XLF_DELETE_COMMAND, result);
}

template <class Record>
void register_all_with(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units,
                       const Limits& limits) {
  HostResult<Record> module;
  if (module.call(XL_GET_NAME) != XL_RETURN_SUCCESS) {
    sinks().debug(u"Norvane: the host does not tell the add-in's name");
    return;
  }
  add_about(module.record());
  for (const auto& entry : library.Entries()) {
    const Registration texts = describe_function(*entry.value, units, limits);
    if (texts.names_length > max_names_text) {
      std::u16string message = u"The argument-names string for function '";
      message.append(texts.function).append(u"' + the name-length (total=").append(decimal(texts.names_length));
      message.append(u") should not exceed 252 characters");
      sinks().developer_message(u"MESSAGE FOR DEVELOPER", message);
    }
    HostCall<Record> call(10 + limits.help_slots);
    call.given(module.record()).text(texts.procedure).text(texts.type).text(texts.function).text(texts.arguments);
    call.text(texts.macro_type).text(addin_name).missing().missing().text(texts.help);
    for (std::size_t i = 0; i < limits.help_slots; ++i) {
      if (i < texts.argument_helps.size())
        call.text(texts.argument_helps[i]);
      else
        call.missing();
    }
    registered(call, texts.function);
  }
}

}  // namespace

const Limits& limits_of(bool excel12) noexcept {
  static constexpr Limits excel4_limits{false, variable_arguments4, 20};
  static constexpr Limits excel12_limits{true, variable_arguments12, 64};
  return excel12 ? excel12_limits : excel4_limits;
}

std::u16string cut_text(std::u16string_view text, std::size_t longest) {
  if (text.size() <= longest) return std::u16string(text);
  // The blank may stand right behind the last character that fits.
  const std::size_t blank = text.rfind(u' ', longest);
  // A word of half the text is no word; rather cut it, but not inside a pair of surrogates.
  std::size_t end = blank != std::u16string_view::npos && blank > longest / 2 ? blank : longest;
  if (end == longest && text[end - 1] >= 0xD800 && text[end - 1] <= 0xDBFF) --end;
  return std::u16string(text.substr(0, end));
}

Registration describe_function(const Function_CFunctionSpec& spec, const Unit_CTypeAndUnitContainer& units,
                               const Limits& limits) {
  Registration texts;
  const std::size_t count = argument_count(spec, limits);
  texts.procedure = limits.excel12 ? u"xlWrapper12_" : u"xlWrapper4_";
  texts.procedure.append(spec.group->name).append(u"_").append(spec.id);

  // Callable but not listed: functions without a worksheet prefix and hidden ones.
  const std::u16string_view prefix = spec.group->prefix;
  texts.function.append(prefix.empty() ? spec.group->name : prefix);
  if (prefix.empty()) texts.function += u'_';
  texts.function.append(spec.id);
  texts.macro_type.assign(1, prefix.empty() || spec.has(FUNCTION_HIDDEN) ? u'0' : u'1');

  // References are asked for as they are ("U", "R"): the context reads their cells when a function wants them.
  texts.type.assign(count + 1, limits.excel12 ? u'U' : u'R');
  if (limits.excel12) texts.type += u'$';
  if (spec.has(FUNCTION_VOLATILE)) texts.type += u'!';

  const std::u16string arguments = argument_text(spec, count);
  texts.names_length = arguments.size() + texts.function.size();
  texts.arguments = cut_arguments(arguments);
  texts.help = cut_text(spec.description);

  const std::size_t helps = count < limits.help_slots ? count : limits.help_slots;
  for (std::size_t i = 0; i < helps; ++i) {
    std::u16string help = argument_help(*spec.input_of(i), units);
    // The host's wizard swallows up to two characters at the end of the last text it is given.
    texts.argument_helps.push_back(i + 1 == helps ? cut_text(help, max_registration_text - 2).append(u"  ")
                                                  : cut_text(help));
  }
  return texts;
}

void register_all(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units) {
  const bool excel12 = host_speaks_12();
  if (excel12)
    register_all_with<XlRecord12>(library, units, limits_of(true));
  else
    register_all_with<XlRecord4>(library, units, limits_of(false));
}

void remove_menu_entry() {
  if (!about_in_menu) return;
  about_in_menu = false;
  host_speaks_12() ? remove_about<XlRecord12>() : remove_about<XlRecord4>();
}

}  // namespace norvane::excel
