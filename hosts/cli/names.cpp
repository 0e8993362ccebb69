#include "hosts/cli/names.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/standards.h"

namespace norvane::cli {
namespace {

constexpr char normal(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == ' ' || c == '-' ? '_' : c;
}

// Longest name that is worth a comparison; the identifiers are far shorter.
constexpr std::size_t longest_name = 64;

// Edits (insert, remove, replace, swap of neighbours) between two short texts.
std::size_t edit_distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0u : 1u)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], before[j - 2] + 1);
    }
    std::swap(before, last);
    std::swap(last, row);
  }
  return last[b.size()];
}

}  // namespace

std::string normalised(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), normal);
  return result;
}

bool equal_names(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return normal(x) == normal(y); });
}

bool is_misspelt(std::string_view given, std::string_view known) {
  if (given.size() > longest_name || known.size() > longest_name) return false;
  const std::string name = normalised(given), other = normalised(known);
  return name != other &&
         edit_distance(name, other) <= std::max<std::size_t>(name.size() < 5 ? 1 : 2, name.size() / 4);
}

std::vector<std::string> nearest(std::string_view given, std::span<const std::string> known) {
  std::vector<std::string> result;
  if (given.empty() || given.size() > longest_name) return result;
  const std::string name = normalised(given);
  std::vector<std::pair<std::size_t, const std::string*>> ranked;
  for (const std::string& candidate : known) {
    const std::string other = normalised(candidate);
    std::size_t distance = edit_distance(name, other);
    // "orifice" is near ISO5167_Orifice although most of the letters are missing.
    const bool inside = name.size() >= 3 && other.find(name) != std::string::npos;
    if (!inside && distance > std::max<std::size_t>(name.size() < 5 ? 1 : 2, name.size() / 3)) continue;
    if (inside) distance = std::min<std::size_t>(distance, 3);
    ranked.emplace_back(distance, &candidate);
  }
  std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& entry : ranked)
    if (result.size() < 3) result.push_back(*entry.second);
  return result;
}

std::string did_you_mean(std::string_view given, std::span<const std::string> known) {
  const std::vector<std::string> names = nearest(given, known);
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i)
    text.append(i == 0 ? "; did you mean " : i + 1 < names.size() ? ", " : " or ").append(names[i]);
  return text.empty() ? text : text + "?";
}

std::string printable(std::string_view text, std::size_t limit) {
  const bool cut = text.size() > limit;
  if (cut) {
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    text = text.substr(0, end);
  }
  std::string result = to_utf8(to_utf16(text));
  for (char& c : result)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  return cut ? result + "..." : result;
}

std::string in_quotes(std::string_view text) { return '"' + printable(text, 60) + '"'; }

const Function_CFunctionSpec* known_function(std::string_view id) {
  if (id.size() > longest_name) return nullptr;
  const std::u16string wide = to_utf16(id);
  if (const Function_CFunctionSpec* spec = catalogue::find(wide)) return spec;
  const std::u16string_view prefix = Function_CGroup::Of(GroupId::Math).prefix;
  if (wide.size() <= prefix.size() ||
      !equal_ignoring_case(std::u16string_view(wide).substr(0, prefix.size()), prefix))
    return nullptr;
  return catalogue::find(std::u16string_view(wide).substr(prefix.size()));
}

const Function_CFunctionSpec& find_function(std::string_view id) {
  if (const Function_CFunctionSpec* spec = known_function(id)) return *spec;
  for (const catalogue::Line& line : catalogue::lines())
    if (line.record == nullptr && id.size() <= longest_name && equal_ignoring_case(line.id, to_utf16(id)))
      throw UsageError("the function " + to_utf8(line.id) + " is not part of this build");
  std::vector<std::string> known;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) known.push_back(to_utf8(spec->id));
  for (std::string& name : standard_names()) known.push_back(std::move(name));
  throw UsageError("there is no function " + in_quotes(id) + did_you_mean(id, known));
}

}  // namespace norvane::cli
