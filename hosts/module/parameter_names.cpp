#include "hosts/module/parameter_names.h"

#include <set>

#include "core/text.h"

namespace norvane::host {
namespace {

constexpr bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Words that C, C++, IDL or the headers of Windows keep for themselves.
constexpr std::u16string_view reserved[] = {
    u"auto",     u"bool",      u"break",    u"byte",    u"case",      u"char",   u"class",  u"const",    u"default",
    u"delete",   u"do",        u"double",   u"else",    u"enum",      u"error",  u"export", u"extern",   u"far",
    u"float",    u"for",       u"goto",     u"hyper",   u"id",        u"if",     u"import", u"in",       u"inline",
    u"int",      u"interface", u"library",  u"linux",   u"long",      u"module", u"near",   u"new",      u"object",
    u"operator", u"out",       u"pascal",   u"private", u"protected", u"public", u"range",  u"ref",      u"register",
    u"retval",   u"return",    u"short",    u"signed",  u"sizeof",    u"small",  u"source", u"static",   u"string",
    u"struct",   u"switch",    u"template", u"this",    u"typedef",   u"union",  u"unix",   u"unsigned", u"version",
    u"void",     u"volatile",  u"while"};

std::string identifier(std::u16string_view key, const char* what, std::size_t index) {
  std::string name;
  for (char16_t unit : key) {
    const char16_t upper = fold_ascii_upper(unit);
    if (is_digit(unit) || (upper >= u'A' && upper <= u'Z')) {
      name += static_cast<char>(unit);
    } else if (!name.empty() && name.back() != '_') {
      name += '_';
    }
  }
  while (!name.empty() && name.back() == '_') name.pop_back();
  if (name.empty()) return what + std::to_string(index);
  if (is_digit(static_cast<char16_t>(name[0]))) name.insert(0, what);
  for (std::u16string_view word : reserved)
    if (equal_ignoring_case(to_utf16(name), word)) return name + "_";
  return name;
}

// Names that are taken, in upper case.
class Taken {
 public:
  std::string unique(std::string name, const char* suffix, std::size_t index) {
    if (holds(name)) name += suffix;
    if (holds(name)) name += std::to_string(index);
    add(name);
    return name;
  }
  void add(std::string_view name) { names_.insert(upper(name)); }

 private:
  static std::string upper(std::string_view name) {
    std::string folded(name);
    for (char& c : folded) c = static_cast<char>(fold_ascii_upper(static_cast<unsigned char>(c)));
    return folded;
  }
  bool holds(std::string_view name) const { return names_.contains(upper(name)); }

  std::set<std::string> names_ = {"STATUS"};  // the result's name
};

}  // namespace

ParameterNames parameter_names(const Signature& signature) {
  const Function_CFunctionSpec& spec = *signature.spec;
  ParameterNames names;
  Taken taken;
  for (const Parameter& input : signature.inputs) {
    const std::string name = identifier(spec.inputs[input.index].key, "input", input.index);
    names.inputs.push_back(taken.unique(name, "_in", input.index));
    if (input.passing == Passing::range) taken.add(names.inputs.back() + "_count");
  }
  for (const Parameter& output : signature.outputs) {
    const std::string name = identifier(spec.outputs[output.index].key, "output", output.index);
    names.outputs.push_back(taken.unique(name, "_out", output.index));
  }
  return names;
}

}  // namespace norvane::host
