#include "hosts/cli/standards.h"

#include <algorithm>

#include "catalogue/catalogue.h"
#include "core/text.h"

namespace norvane::cli {
namespace {

bool has_digit(std::string_view text) { return text.find_first_of("0123456789") != std::string_view::npos; }

// "AGA-8" for "AGA8", which titles say as well.
std::string hyphenated(std::string name) {
  const std::size_t digit = name.find_first_of("0123456789");
  if (digit != std::string::npos && digit > 0 && name.find_first_not_of("0123456789", digit) == std::string::npos &&
      name.find('-') == std::string::npos)
    name.insert(digit, "-");
  return name;
}

// Letters and digits alone, in lower case.
std::string plain(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c >= 'A' && c <= 'Z') result += static_cast<char>(c - 'A' + 'a');
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || static_cast<unsigned char>(c) >= 0x80)
      result += c;
  }
  return result;
}

}  // namespace

std::string standard_of(const Function_CFunctionSpec& spec) {
  const std::string family = to_utf8(spec.subcategory), title = to_utf8(spec.display_name);
  if (spec.group == &Function_CGroup::Of(GroupId::Extended)) return std::string(general_functions);
  if (family.starts_with("API")) return family;
  // A title begins with the standard and goes on with what the function calculates: "ISO-5167 Orifice", "GOST 30319.2".
  const std::size_t first = std::min(title.find(' '), title.size());
  if (has_digit(title.substr(0, first)) || first == title.size()) return hyphenated(title.substr(0, first));
  const std::size_t second = std::min(title.find(' ', first + 1), title.size());
  if (!has_digit(title.substr(first, second - first))) return family;
  // Without the year: "GOST 30319.2-96".
  return title.substr(0, std::min(second, title.find('-', first)));
}

std::vector<const Function_CFunctionSpec*> functions_of_standard(std::string_view name, bool hidden) {
  std::vector<const Function_CFunctionSpec*> exact, begun;
  const std::string wanted = plain(name);
  if (wanted.empty()) return exact;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    if (!hidden && !spec->visible()) continue;
    const std::string standard = plain(standard_of(*spec));
    if (standard == wanted) exact.push_back(spec);
    if (standard.starts_with(wanted)) begun.push_back(spec);
  }
  return exact.empty() ? begun : exact;
}

std::vector<std::string> standard_names() {
  std::vector<std::string> names;
  for (const Function_CFunctionSpec* spec : catalogue::specifications())
    if (std::string name = standard_of(*spec); std::find(names.begin(), names.end(), name) == names.end())
      names.push_back(std::move(name));
  return names;
}

}  // namespace norvane::cli
