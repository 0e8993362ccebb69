// The rules by which a call's arguments are checked, written a second time and without the context: what the status,
// the flags and the messages of a call must be before its implementation has a say.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "core/text.h"
#include "framework/function_spec.h"
#include "units/unit_catalogue.h"

namespace norvane::test {

class ValidationModel {
 public:
  std::uint32_t status = ERROR_OK;
  std::uint32_t flags = 0;
  bool runs = true;         // the implementation is asked
  bool unreadable = false;  // but finds an argument that is not of its input's kind
  std::vector<std::u16string> messages;

  ValidationModel(const Function_CFunctionSpec& spec, std::vector<FUNCTION_ARG> args)
      : spec_(spec), args_(std::move(args)) {
    const bool variable = (spec.flags & FUNCTION_VARIABLE_INPUTS) != 0;
    if (variable ? args_.size() < spec.input_count : args_.size() != spec.input_count) {
      messages.push_back(u"E Invalid number of arguments (" + digits(args_.size()) + u") specified, expected " +
                         (variable ? u"at least (" : u"(") + digits(spec.input_count) + u")");
      if (!variable) {
        status = ERROR_ARGCOUNT;
        runs = false;
        return;
      }
    }
    if ((spec.flags & FUNCTION_NO_VALIDATION) != 0) return;
    for (std::size_t i = 0; i < args_.size(); ++i) substitute(i);
    if (spec.name_input >= 0 && static_cast<std::size_t>(spec.name_input) < args_.size())
      check_name(static_cast<std::size_t>(spec.name_input));
    for (std::size_t i = 0; i < args_.size(); ++i) check_type(i);
    if ((spec.flags & FUNCTION_NO_RANGE_CHECK) == 0)
      for (std::size_t i = 0; i < args_.size(); ++i) check_range(i);
    runs = (flags & FLAG_INPUT_INVALID) != FLAG_INPUT_INVALID;
    if (!runs) end_without_running();
  }

  static std::optional<double> number(const FUNCTION_ARG& arg, int depth = 0) {
    switch (arg.kind) {
      case ARG_NUMBER: return arg.number;
      case ARG_INTEGER: return arg.integer;
      case ARG_BOOLEAN: return arg.boolean;
      case ARG_STRING: return parsed(arg.text());
      case ARG_ARRAY:
        if (arg.count() == 0 || arg.array.elements == nullptr || depth > 8) return {};
        return number(arg.array.elements[0], depth + 1);
      case ARG_EMPTY: return 0.0;
      default: return {};
    }
  }

 private:
  static std::u16string digits(std::size_t number) { return to_utf16(std::to_string(number)); }
  static std::u16string general(double number) {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.14g", number);
    return to_utf16(buffer);
  }
  static bool absent(const FUNCTION_ARG& arg) { return arg.kind == ARG_MISSING || arg.kind == ARG_EMPTY; }

  static std::optional<double> parsed(std::u16string_view text) {
    std::string narrow;
    for (char16_t unit : text) narrow += unit > 0 && unit < 128 ? static_cast<char>(unit) : '?';
    const std::size_t first = narrow.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    narrow = narrow.substr(first, narrow.find_last_not_of(" \t") - first + 1);
    char* end = nullptr;
    const double value = std::strtod(narrow.c_str(), &end);
    if (*end != '\0') return {};
    return value;
  }

  static std::optional<std::u16string> text(const FUNCTION_ARG& arg, int depth = 0) {
    switch (arg.kind) {
      case ARG_NUMBER: return general(arg.number);
      case ARG_INTEGER: return to_utf16(std::to_string(arg.integer));
      case ARG_BOOLEAN: return arg.boolean != 0 ? u"TRUE" : u"FALSE";
      case ARG_STRING: return std::u16string(arg.text());
      case ARG_ARRAY:
        if (arg.count() == 0 || arg.array.elements == nullptr || depth > 8) return {};
        return text(arg.array.elements[0], depth + 1);
      case ARG_EMPTY: return u"";
      default: return {};
    }
  }

  static bool is_boolean(const FUNCTION_ARG& arg) {
    if (arg.kind == ARG_ARRAY)
      return arg.count() != 0 && arg.array.elements != nullptr && is_boolean(arg.array.elements[0]);
    if (arg.kind == ARG_STRING &&
        (equal_ignoring_case(arg.text(), u"TRUE") || equal_ignoring_case(arg.text(), u"FALSE")))
      return true;
    return number(arg).has_value();
  }

  static bool is_identifier(const FUNCTION_ARG& arg, CodeKind kind) {
    const auto& units = Unit_CTypeAndUnitContainer::Instance();
    std::uint32_t code = 0;
    // A unit may also be a whole number written as a text or in a cell, and a symbol.
    if (kind == CodeKind::unit && arg.kind == ARG_ARRAY && arg.count() != 0 && arg.array.elements != nullptr)
      return is_identifier(*arg.array.elements, kind);
    static const std::regex whole("[ \\t\\n\\v\\f\\r]*[+-]?[0-9]+[ \\t\\n\\v\\f\\r]*");
    const bool by_text = arg.kind == ARG_STRING && std::regex_match(to_utf8(*text(arg)), whole);
    const bool by_number = arg.kind == ARG_NUMBER || arg.kind == ARG_INTEGER ||
                           (kind == CodeKind::unit && (by_text || arg.kind == ARG_BOOLEAN || arg.kind == ARG_EMPTY));
    if (by_number) {
      const double value = *number(arg);
      const double held = std::isnan(value) ? 0.0 : std::min(std::max(std::trunc(value), -0x1p31), 0x1p31 - 1.0);
      code = static_cast<std::uint32_t>(static_cast<std::int32_t>(held));
    } else {
      const auto name = text(arg);
      if (!name) return false;
      if (!units.CodeOfText(*name, code)) return kind == CodeKind::unit && units.IsSymbol(*name);
    }
    return code == 0 || (code >> 24 == static_cast<std::uint32_t>(kind) && units.IsKnown(code));
  }

  static bool is_address(const std::u16string& text) {
    static const std::regex four(
        "(0*(25[0-5]|2[0-4][0-9]|1?[0-9]?[0-9])\\.){3}0*(25[0-5]|2[0-4][0-9]|1?[0-9]?[0-9])");
    return std::regex_match(to_utf8(text), four);
  }

  // "[2] pressure (60) is wrong".
  void report(std::size_t i, bool error, const std::u16string& complaint) {
    const FUNCTION_ARG& arg = args_[i];
    std::u16string shown = absent(arg) ? u"" : text(arg).value_or(u"");
    if (arg.kind == ARG_ERROR) shown = error_text(arg.error);
    if (error && shown.size() >= 200) shown = u"...";
    std::u16string message = u"[" + digits(i + 1) + u"] " + std::u16string(spec_.input_of(i)->key) + u" ";
    if (!shown.empty()) message += u"(" + shown + u") ";
    message += complaint;
    messages.push_back((error ? u"E " : u"W ") + message.substr(0, 511));
  }

  void substitute(std::size_t i) {
    const Function_CInput* input = spec_.input_of(i);
    if (input == nullptr || !absent(args_[i])) return;
    const Core_CVariant& given = input->default_value;
    if ((input->flags & INPUT_OPTIONAL) == 0)
      report(i, true, u"is not optional");
    else if (given.tag() == Core_CVariant::DOUBLE)
      args_[i] = FUNCTION_ARG::Number(given.AsDouble());
    else if (given.tag() == Core_CVariant::BOOL)
      args_[i] = FUNCTION_ARG::Boolean(given.AsBool());
    else if (!given.empty())
      args_[i] = FUNCTION_ARG::String(given.AsText().data(), given.AsText().size());
  }

  void check_name(std::size_t i) {
    const std::u16string name = absent(args_[i]) ? u"" : text(args_[i]).value_or(u"\x1");
    const auto among = [](char16_t unit, std::u16string_view set) { return set.find(unit) != set.npos; };
    constexpr std::u16string_view figures = u"0123456789";
    if (name == u"\x1") return report(i, true, u"is invalid (not a string)");
    if (name.empty()) {
      if ((spec_.flags & FUNCTION_RETENTIVE) != 0) report(i, true, u"cannot be optional or empty");
      return;
    }
    if (among(name[0], figures))
      return report(i, true, u"is invalid, the name cannot be a number or begin with a decimal (0-9) character");
    for (char16_t unit : name)
      if (!among(unit, figures) && !among(unit, u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_."))
        return report(i, true, u"is invalid, only the following characters are allowed: 'A-Z', '0-9', '_' and '.'");
    if (among(name[0], u"CRcr") && name.size() > 1 && among(name[1], figures))
      return report(i, true,
                    u"is invalid, the name cannot start with a 'C' or 'R' followed directly by a number '0-9'");
    if (name.size() > 32) report(i, true, u"is invalid, the name cannot be longer than 32 characters");
  }

  void check_type(std::size_t i) {
    const Function_CInput* input = spec_.input_of(i);
    if (input == nullptr || absent(args_[i])) return;
    const auto value = number(args_[i]);
    std::u16string complaint;
    switch (input->type) {
      case data_type::any: return;
      case data_type::text:
        if (!text(args_[i])) complaint = u"is not a valid text";
        break;
      case data_type::date:
        if (!value)
          complaint = u"is not a valid date/time (not a number)";
        else if (*value < 0.0)
          return report(i, true, u"is not a valid date/time (negative number)");
        break;
      case data_type::ipaddr:
        if (!is_address(text(args_[i]).value_or(u""))) complaint = u"is not a valid ip-address";
        break;
      case data_type::boolean:
        if (!is_boolean(args_[i])) complaint = u"is not a valid boolean (0/1, true/false)";
        break;
      case data_type::integer:
        if (!value)
          complaint = u"is not a valid number";
        else if (*value != std::trunc(*value))
          return report(i, true, u"is not a valid whole number");
        break;
      case data_type::unit:
        if (!is_identifier(args_[i], CodeKind::unit)) complaint = u"is not a valid unit";
        break;
      case data_type::enumeration:
        if (!is_identifier(args_[i], CodeKind::enumeration)) complaint = u"is not a valid enum";
        break;
      default:
        if (!value) complaint = u"is not a valid number";
        break;
    }
    if (complaint.empty()) return;
    report(i, true, complaint);
    // A function that keeps nothing between calls does not ask for its name.
    if ((input->flags & INPUT_ARRAY) == 0 && input->role == 0) unreadable = true;
  }

  void check_range(std::size_t i) {
    const Function_CInput* input = spec_.input_of(i);
    const bool low = input != nullptr && (input->flags & INPUT_HAS_MINIMUM) != 0;
    const bool high = input != nullptr && (input->flags & INPUT_HAS_MAXIMUM) != 0;
    const bool listed = input != nullptr && input->type >> 24 == static_cast<std::uint32_t>(CodeKind::enumeration);
    if (!low && !high && !listed) return;
    const auto fail = [&](bool error, const std::u16string& complaint) {
      flags |= FLAG_INPUT_INVALID;
      report(i, error, complaint);
    };
    const auto value = number(args_[i]);
    if (!value && input->place.count != 0)
      return fail(true, u"needs an array of " + general(input->place.count) + u" numbers");
    if (!value) return fail(true, u"is not a valid number");
    if (listed && !is_member(input->type, *value)) {
      std::u16string_view name;
      Unit_CTypeAndUnitContainer::Instance().TextOfCode(input->type, name);
      fail(true, u"is not a valid " + std::u16string(name));
    }
    if (low && *value < input->minimum) fail(false, u"should be higher or equal than: " + general(input->minimum));
    if (high && *value > input->maximum) fail(false, u"should be lower or equal than: " + general(input->maximum));
  }

  static bool is_member(std::uint32_t type, double value) {
    const auto& units = Unit_CTypeAndUnitContainer::Instance();
    std::vector<std::uint32_t> codes;
    units.ListMembers(CodeKind::enumeration_value, type, codes);
    for (std::uint32_t code : codes) {
      const Unit_CEntry* entry = nullptr;
      if (units.EnumerationValueDetails(code, entry) == UNIT_OK && entry->factor == value) return true;
    }
    return false;
  }

  void end_without_running() {
    if ((spec_.flags & FUNCTION_FALLBACK) != 0)
      flags |= FLAG_OUTPUT_FALLBACK;
    else
      status = ERROR_VALUE;
  }

  const Function_CFunctionSpec& spec_;
  std::vector<FUNCTION_ARG> args_;
};

}  // namespace norvane::test
