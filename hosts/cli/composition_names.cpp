#include "hosts/cli/composition_names.h"

#include <array>

namespace norvane::cli {
namespace {

// The letters and digits alone, in lower case: "i-Butane" and "i butane" are one name.
class Letters {
 public:
  explicit constexpr Letters(std::string_view text) {
    for (char c : text) {
      if (c == ' ' || c == '-' || c == '_') continue;
      if (length_ == text_.size()) {
        length_ = 0;  // longer than any name
        return;
      }
      text_[length_++] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
  }
  constexpr std::string_view view() const { return {text_.data(), length_}; }

 private:
  std::array<char, 24> text_{};
  std::size_t length_ = 0;
};

}  // namespace

std::vector<std::string> component_names() {
  std::vector<std::string> list;
  for (const component::Component& entry : component::table) list.emplace_back(entry.name);
  return list;
}

std::string component_order() {
  std::string text;
  for (std::size_t i = 0; i < component::count; ++i)
    text.append(i == 0 ? "" : ", ").append(std::to_string(i)).append(" ").append(component::table[i].name);
  return text;
}

std::size_t component_named(std::string_view name) {
  const Letters letters(name);
  if (letters.view().empty()) return component::count;
  const auto same = [&](std::string_view known) { return !known.empty() && Letters(known).view() == letters.view(); };
  for (std::size_t i = 0; i < component::count; ++i) {
    const component::Component& entry = component::table[i];
    if (same(entry.name) || same(entry.formula)) return i;
    for (const std::string_view synonym : entry.synonyms)
      if (same(synonym)) return i;
  }
  return component::count;
}

std::size_t composition_input(const Function_CFunctionSpec& spec) {
  for (std::size_t i = 0; i < spec.input_count; ++i)
    if (spec.inputs[i].composition) return i;
  return spec.input_count;
}

}  // namespace norvane::cli
