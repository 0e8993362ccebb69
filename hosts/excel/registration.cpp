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

std::size_t ArgumentCount(const Function_CFunctionSpec& spec, const Limits& limits) {
  return spec.has(FUNCTION_VARIABLE_INPUTS) && spec.input_count > 0 ? limits.variable_arguments : spec.input_count;
}

// "a,b,[c]"; a repeated last input "comp" reads comp1,[comp2],[comp3].
std::u16string ArgumentText(const Function_CFunctionSpec& spec, std::size_t count) {
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
std::u16string ArgumentHelp(const Function_CInput& input, const Unit_CTypeAndUnitContainer& units) {
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
std::u16string CutArguments(std::u16string text) {
  if (text.size() <= max_registration_text) return text;
  const std::size_t comma = text.rfind(u',', max_registration_text);
  text.resize(comma != std::u16string::npos ? comma : max_registration_text);
  return text;
}

// Argument records of one call of the host, with the memory of their texts.
template <class Record>
class Arguments;

template <>
class Arguments<XlRecord12> {
 public:
  using Record = XlRecord12;
  static void SetText(Record& record, std::u16string_view text, std::vector<std::unique_ptr<char16_t[]>>& memory) {
    if (text.size() > max_text12) text = text.substr(0, max_text12);
    auto counted = std::make_unique<char16_t[]>(text.size() + 1);
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
  static void SetText(Record& record, std::u16string_view text,
                      std::vector<std::unique_ptr<unsigned char[]>>& memory) {
    auto counted = std::make_unique<unsigned char[]>(max_text4 + 1);
    std::ptrdiff_t written = -1;
    // Characters of several bytes in the code page: as many as fit.
    for (std::size_t length = text.size() < max_text4 ? text.size() : max_text4;; --length) {
      written = platform::ToCodePage(text.data(), length, counted.get() + 1, max_text4);
      if (written >= 0 || length == 0) break;
    }
    counted[0] = static_cast<unsigned char>(written < 0 ? 0 : written);
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
  HostCall& Text(std::u16string_view text) {
    Arguments<Record>::SetText(Add(), text, memory_);
    return *this;
  }
  HostCall& Missing() {
    Add().type = XL_MISSING;
    return *this;
  }
  HostCall& Number(double value) {
    Record& record = Add();
    record.number = value;
    record.type = XL_NUMBER;
    return *this;
  }
  HostCall& Given(const Record& record) {
    Add() = record;
    return *this;
  }
  // One row of texts.
  template <std::size_t N>
  HostCall& TextRow(const std::u16string_view (&texts)[N]) {
    row_.assign(N, Record{});
    for (std::size_t i = 0; i < N; ++i) Arguments<Record>::SetText(row_[i], texts[i], memory_);
    Record& record = Add();
    record.array.elements = row_.data();
    record.array.rows = 1;
    record.array.columns = N;
    record.type = XL_ARRAY;
    return *this;
  }
  int Call(int function, HostResult<Record>& result) {
    std::vector<Record*> args;
    args.reserve(records_.size());
    for (Record& record : records_) args.push_back(&record);
    return result.Call(function, static_cast<int>(args.size()), args.data());
  }

 private:
  Record& Add() { return records_.emplace_back(); }
  std::vector<Record> records_;
  std::vector<Record> row_;
  std::vector<std::unique_ptr<typename Arguments<Record>::Unit[]>> memory_;
};

// The answer of a registration lies in its result (a number), whatever the return code says.
template <class Record>
void NoteRegistration(int answer, const HostResult<Record>& result, std::u16string_view function) {
  if (answer == XL_RETURN_SUCCESS && (result.record().type & XL_TYPE_MASK) == XL_NUMBER) return;
  std::u16string line = u"Norvane: the host refused to register ";
  line.append(function);
  sinks().debug(line);
}

template <class Record>
void RegisterAllWith(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units,
                     const Limits& limits) {
  HostResult<Record> module;
  if (module.Call(XL_GET_NAME) != XL_RETURN_SUCCESS) {
    sinks().debug(u"Norvane: the host does not tell the add-in's name");
    return;
  }
  {
    HostCall<Record> call(8);
    HostResult<Record> result;
    call.Given(module.record()).Text(u"AboutBox").Text(u"A").Text(u"AboutBox").Text(u"").Text(u"2");
    call.Text(addin_name).Missing();
    NoteRegistration(call.Call(XLF_REGISTER, result), result, u"AboutBox");
  }
  {
    // Newer hosts have no such menu; the command can be called by its name there.
    HostCall<Record> call(3);
    HostResult<Record> result;
    call.Number(10).Text(u"Help").TextRow({u"About Norvane", u"AboutBox", u"", u"", u""});
    call.Call(XLF_ADD_COMMAND, result);
  }
  for (const auto& entry : library.Entries()) {
    const Registration texts = DescribeFunction(*entry.value, units, limits);
    if (texts.names_length > max_names_text) {
      std::u16string message = u"The argument-names string for function '";
      message.append(texts.function).append(u"' + the name-length (total=").append(decimal(texts.names_length));
      message.append(u") should not exceed 252 characters");
      sinks().developer_message(u"MESSAGE FOR DEVELOPER", message);
    }
    HostCall<Record> call(10 + limits.help_slots);
    HostResult<Record> result;
    call.Given(module.record()).Text(texts.procedure).Text(texts.type).Text(texts.function).Text(texts.arguments);
    call.Text(texts.macro_type).Text(addin_name).Missing().Missing().Text(texts.help);
    for (std::size_t i = 0; i < limits.help_slots; ++i) {
      if (i < texts.argument_helps.size())
        call.Text(texts.argument_helps[i]);
      else
        call.Missing();
    }
    NoteRegistration(call.Call(XLF_REGISTER, result), result, texts.function);
  }
}

}  // namespace

const Limits& limits_of(bool excel12) noexcept {
  static constexpr Limits excel4_limits{false, variable_arguments4, 20};
  static constexpr Limits excel12_limits{true, variable_arguments12, 64};
  return excel12 ? excel12_limits : excel4_limits;
}

std::u16string CutText(std::u16string_view text, std::size_t longest) {
  if (text.size() <= longest) return std::u16string(text);
  // The blank may stand right behind the last character that fits.
  const std::size_t blank = text.rfind(u' ', longest);
  // A word of half the text is no word; rather cut it, but not inside a pair of surrogates.
  std::size_t end = blank != std::u16string_view::npos && blank > longest / 2 ? blank : longest;
  if (end == longest && text[end - 1] >= 0xD800 && text[end - 1] <= 0xDBFF) --end;
  return std::u16string(text.substr(0, end));
}

Registration DescribeFunction(const Function_CFunctionSpec& spec, const Unit_CTypeAndUnitContainer& units,
                              const Limits& limits) {
  Registration texts;
  const std::size_t count = ArgumentCount(spec, limits);
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

  const std::u16string arguments = ArgumentText(spec, count);
  texts.names_length = arguments.size() + texts.function.size();
  texts.arguments = CutArguments(arguments);
  texts.help = CutText(spec.description);

  const std::size_t helps = count < limits.help_slots ? count : limits.help_slots;
  for (std::size_t i = 0; i < helps; ++i) {
    std::u16string help = ArgumentHelp(*spec.input_of(i), units);
    // The host's wizard swallows up to two characters at the end of the last text it is given.
    texts.argument_helps.push_back(i + 1 == helps ? CutText(help, max_registration_text - 2).append(u"  ")
                                                  : CutText(help));
  }
  return texts;
}

void RegisterAll(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units) {
  const bool excel12 = HostSpeaks12();
  if (excel12)
    RegisterAllWith<XlRecord12>(library, units, limits_of(true));
  else
    RegisterAllWith<XlRecord4>(library, units, limits_of(false));
}

}  // namespace norvane::excel
