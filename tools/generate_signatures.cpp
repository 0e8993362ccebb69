#include <array>
#include <utility>

#include "hosts/module/meaning.h"
#include "tools/signatures.h"
#include "units/unit_catalogue.h"

namespace norvane::generate {
namespace {

std::string number(double value) { return narrow(format_number(value)); }

void add(std::string& text, const std::string& part) {
  if (part.empty()) return;
  if (!text.empty()) text += ", ";
  text += part;
}

// The members of an enumeration type with their numbers.
std::string members(std::uint32_t type) {
  const auto& units = Unit_CTypeAndUnitContainer::Instance();
  std::vector<std::uint32_t> codes;
  if (units.ListMembers(CodeKind::enumeration_value, type, codes) != UNIT_OK) return {};
  std::string text;
  for (std::uint32_t code : codes) {
    const Unit_CEntry* entry = nullptr;
    if (units.EnumerationValueDetails(code, entry) != UNIT_OK) continue;
    text += (text.empty() ? "" : "; ") + number(entry->factor) + ": " + ascii(entry->text);
  }
  return text;
}

std::string type_text(std::uint32_t type) {
  switch (kind_of_code(type)) {
    case CodeKind::unit: {
      std::u16string_view symbol;
      return Unit_CTypeAndUnitContainer::Instance().TextOfCode(type, symbol) == UNIT_OK ? ascii(symbol)
                                                                                        : std::string();
    }
    case CodeKind::enumeration: return members(type);
    default: break;
  }
  switch (type) {
    case data_type::boolean: return "0: no; 1: yes";
    case data_type::integer: return "whole number";
    case data_type::date: return "days since 30 December 1899";
    default: return {};
  }
}

std::string default_text(const Core_CVariant& value) {
  double number_value = 0.0;
  if (value.empty()) return {};
  if (value.tag() == Core_CVariant::STRING || value.tag() == Core_CVariant::BORROWED_STRING)
    return "default \"" + ascii(value.AsText()) + "\"";
  return value.ToDouble(number_value) == CORE_RESULT_OK ? "default " + number(number_value) : std::string();
}

}  // namespace

std::vector<Method> methods() {
  std::vector<Method> list;
  const auto count = static_cast<std::uint32_t>(host::interface_order().size());
  for (std::uint32_t id = 1; id <= count; ++id) {
    const host::Signature* signature = host::find_signature(id);
    if (signature == nullptr) continue;
    host::ParameterNames names = host::parameter_names(*signature);
    Method method{signature->spec, id, {}, {}};
    const auto add = [](std::vector<Parameter>& to, std::span<const host::Parameter> from,
                        std::vector<std::string>& called) {
      for (std::size_t i = 0; i < from.size(); ++i)
        to.push_back({from[i].passing, from[i].index, std::move(called[i])});
    };
    add(method.inputs, signature->inputs, names.inputs);
    add(method.outputs, signature->outputs, names.outputs);
    list.push_back(std::move(method));
  }
  return list;
}

std::string export_name(const Method& method) { return "Norvane_" + narrow(method.spec->id); }

std::string ascii(std::u16string_view text) {
  constexpr std::array<std::pair<char16_t, const char*>, 12> replacements = {{{u'\u00B0', "deg"},
                                                                              {u'\u00B2', "2"},
                                                                              {u'\u00B3', "3"},
                                                                              {u'\u00B5', "u"},
                                                                              {u'\u03BC', "u"},
                                                                              {u'\u00B7', "."},
                                                                              {u'\u2013', "-"},
                                                                              {u'\u2014', "-"},
                                                                              {u'\u2212', "-"},
                                                                              {u'\u00D7', "x"},
                                                                              {u'\u2264', "<="},
                                                                              {u'\u2265', ">="}}};
  std::string result;
  for (char16_t unit : text) {
    if (unit == u'\n') {
      result += ' ';
    } else if (unit >= 0x20 && unit < 0x7F) {
      // A slash behind an asterisk would end the comment, the reverse would start one inside it.
      if (!result.empty() && ((unit == u'/' && result.back() == '*') || (unit == u'*' && result.back() == '/')))
        result += ' ';
      result += static_cast<char>(unit);
    } else {
      const char* found = "?";
      for (const auto& [from, to] : replacements)
        if (from == unit) found = to;
      result += found;
    }
  }
  while (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

std::string form_of(const Function_CInput& input) {
  // Options stand in the description.
  std::string text = input.choices.empty() ? type_text(input.type) : std::string();
  if (input.has_minimum() && input.has_maximum()) {
    add(text, number(input.minimum) + " to " + number(input.maximum));
  } else if (input.has_minimum()) {
    add(text, "at least " + number(input.minimum));
  } else if (input.has_maximum()) {
    add(text, "at most " + number(input.maximum));
  }
  add(text, default_text(input.default_value));
  return text;
}

std::string form_of(const Function_COutput& output) {
  if (!output.choices.empty()) return type_text(output.type);  // they stand in the description
  std::string text;
  for (const host::Meaning& meaning : host::meanings_of(output))
    text += (text.empty() ? "" : "; ") + number(meaning.number) + ": " + ascii(meaning.text);
  return text.empty() ? type_text(output.type) : text;
}

std::string wrapped(const std::string& text, const std::string& first_prefix, const std::string& prefix,
                    std::size_t width) {
  std::string result;
  std::string line = first_prefix;
  bool empty = true;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(' ', at), text.size());
    if (!empty && line.size() + 1 + (end - at) > width) {
      result += line + "\n";
      line = prefix;
      empty = true;
    }
    if (!empty) line += ' ';
    for (std::size_t i = at; i < end; ++i) line += text[i] == unbroken ? ' ' : text[i];
    empty = false;
    at = end;
    while (at < text.size() && text[at] == ' ') ++at;
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return result + line + "\n";
}

}  // namespace norvane::generate
