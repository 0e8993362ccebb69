#include "hosts/cli/composition_names.h"

#include <array>

#include "hosts/cli/names.h"

namespace norvane::cli {
namespace {

// The component's name, then others that laboratories and gas chromatographs write.
// clang-format off
constexpr std::array<std::array<std::string_view, 5>, component_count> names = {{
    {"methane", "CH4", "C1"},
    {"nitrogen", "N2"},
    {"carbon dioxide", "CO2"},
    {"ethane", "C2H6", "C2"},
    {"propane", "C3H8", "C3"},
    {"water", "H2O"},
    {"hydrogen sulfide", "hydrogen sulphide", "H2S"},
    {"hydrogen", "H2"},
    {"carbon monoxide", "CO"},
    {"oxygen", "O2"},
    {"i-butane", "isobutane", "iso-butane", "iC4", "i-C4"},
    {"n-butane", "butane", "nC4", "n-C4"},
    {"i-pentane", "isopentane", "iso-pentane", "iC5", "i-C5"},
    {"n-pentane", "pentane", "nC5", "n-C5"},
    {"n-hexane", "hexane", "C6", "nC6", "n-C6"},
    {"n-heptane", "heptane", "C7", "nC7", "n-C7"},
    {"n-octane", "octane", "C8", "nC8", "n-C8"},
    {"n-nonane", "nonane", "C9", "nC9", "n-C9"},
    {"n-decane", "decane", "C10", "nC10", "n-C10"},
    {"helium", "He"},
    {"argon", "Ar"},
    {"neo-pentane", "neopentane", "neoC5", "neo-C5"},
}};
// clang-format on

}  // namespace

std::vector<std::string> component_names() {
  std::vector<std::string> list;
  for (const auto& component : names) list.emplace_back(component.front());
  return list;
}

std::size_t component_named(std::string_view name) {
  for (std::size_t i = 0; i < names.size(); ++i)
    for (const std::string_view known : names[i])
      if (!known.empty() && equal_names(known, name)) return i;
  return component_count;
}

std::size_t composition_input(const Function_CFunctionSpec& spec) {
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    const Function_CInput& input = spec.inputs[i];
    if (input.is_array() && input.key == u"composition" &&
        input.description.find(u"array of 22 numbers") != std::u16string_view::npos)
      return i;
  }
  return spec.input_count;
}

}  // namespace norvane::cli
