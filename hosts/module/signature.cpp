#include "hosts/module/signature.h"

#include <iterator>
#include <memory>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "units/unit_codes.h"

namespace norvane::host {
namespace {

// clang-format off
constexpr std::u16string_view order[] = {
    u"AGA10_M", u"AGA10ex_M", u"AGA3_C", u"AGA5_C", u"AGA8_C", u"AGA8_GERG", u"AGA8_M", u"API_Dens15C_1952",
    u"API_Dens15C_1980", u"API_Dens15C_NGL_LPG", u"API_Dens20C_NGL_LPG", u"API_Gravity60F_1952",
    u"API_Gravity60F_1980", u"API_MPMS_11_2_1", u"API_MPMS_11_2_1M", u"API_MPMS_11_2_2", u"API_MPMS_11_2_2M",
    u"API_MPMS_11_3_2_1", u"API_MPMS_11_3_3_2", u"API_RD60F_1980", u"API_RD60F_NGL_LPG", u"API_SG60F_1952",
    u"API_Table23E", u"API_Table23_1952", u"API_Table23_1980", u"API_Table23_2004", u"API_Table24E",
    u"API_Table24_1952", u"API_Table24_1980", u"API_Table24_2004", u"API_Table53E", u"API_Table53_1952",
    u"API_Table53_1980", u"API_Table53_2004", u"API_Table54E", u"API_Table54_1952", u"API_Table54_1980",
    u"API_Table54_2004", u"API_Table59E", u"API_Table59_2004", u"API_Table5_1952", u"API_Table5_1980",
    u"API_Table5_2004", u"API_Table60E", u"API_Table60_2004", u"API_Table6_1952", u"API_Table6_1980",
    u"API_Table6_2004", u"ASTM_D1550_Ctl", u"ASTM_D1550_RD60", u"ASTM_D4311M_09_C", u"ASTM_D4311M_09_M",
    u"Ethylene_IUPAC_C", u"Ethylene_IUPAC_M", u"Ethylene_NIST1045", u"GERG2004_Flash", u"GERG2004_Gas",
    u"GERG2008_Flash", u"GERG2008_Gas", u"GERG_CAPOTPX", u"GERG_DOTPX", u"GERG_FLASH", u"GERG_GAS",
    u"GERG_WOTPX", u"GERG_ZOTPX", u"GOST30319", u"GOST30319_AGA8", u"GOST30319_SGERG91mod",
    u"GOST8_586_2005_EdgeRadius", u"GOST8_586_2005_MassFlowRate", u"GOST8_586_2005_Roughness",
    u"GOST8_586_2005_SteelExpansionFactor", u"GPA2172_96_C", u"GPA2172_96_M", u"GPA2172_C", u"GPA2172_M",
    u"GPA_TP15", u"GasViscosity_2004", u"IAPWS_IF97_C", u"IAPWS_IF97_M", u"ISO5167_ISA1932",
    u"ISO5167_LongRadius", u"ISO5167_Orifice", u"ISO5167_Venturi", u"ISO5167_VenturiNozzle", u"ISO6976_1983_M",
    u"ISO6976_1995_M", u"ISO6976_2016_M", u"ISO6976ex_1995_M", u"ISO6976ex_2016_M", u"MR113", u"NIST_CO2_C",
    u"NIST_CO2_M", u"NIST_Ethylene_Visc_C", u"NIST_Ethylene_Visc_M", u"NX19_M", u"OIML_R22_1975", u"SGERG_C",
    u"SGERG_M", u"Sarasota_M", u"Solartron_Gas_M", u"Solartron_Liquid_M", u"Solartron_SG", u"UGC_M", u"VCone_C",
    u"VCone_M"
};
// clang-format on
static_assert(std::size(order) == 106);

constexpr bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// "Method.; 1: Observed->standard; 2: Standard->observed" lists meanings after its semicolons.
bool lists_options(std::u16string_view description) noexcept {
  for (std::size_t at = description.find(u';'); at != description.npos; at = description.find(u';', at + 1)) {
    std::size_t i = at + 1;
    while (i < description.size() && description[i] == u' ') ++i;
    const std::size_t digits = i;
    while (i < description.size() && is_digit(description[i])) ++i;
    if (i > digits && i < description.size() && description[i] == u':') return true;
  }
  return false;
}

Passing passing_of(std::uint32_t type, std::u16string_view description) noexcept {
  switch (kind_of_code(type)) {
    case CodeKind::unit: return Passing::number;
    case CodeKind::enumeration:
    case CodeKind::enumeration_value: return Passing::option;
    default: break;
  }
  switch (type) {
    case data_type::text:
    case data_type::ipaddr: return Passing::text;
    case data_type::boolean:
    case data_type::integer:
    case data_type::unit:
    case data_type::enumeration: return Passing::option;
    case data_type::date: return Passing::number;
    default: return lists_options(description) ? Passing::option : Passing::number;
  }
}

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

bool taken(const Signature& signature, std::string_view name) {
  const std::u16string wide = to_utf16(name);
  const auto clash = [&wide](std::string_view other) { return equal_ignoring_case(wide, to_utf16(other)); };
  if (clash("status")) return true;  // the result's name
  for (const Parameter& input : signature.inputs) {
    if (clash(input.name) || (input.passing == Passing::range && clash(input.name + "_count"))) return true;
  }
  for (const Parameter& output : signature.outputs)
    if (clash(output.name)) return true;
  return false;
}

std::string unique(const Signature& signature, std::string name, const char* suffix, std::size_t index) {
  if (taken(signature, name)) name += suffix;
  if (taken(signature, name)) name += std::to_string(index);
  return name;
}

struct Signatures {
  std::vector<std::unique_ptr<const Signature>> by_id{std::size(order)};
  std::vector<const Signature*> by_position;  // in the catalogue

  Signatures() : by_position(catalogue::specifications().size()) {
    for (std::size_t i = 0; i < std::size(order); ++i) {
      const Function_CFunctionSpec* spec = catalogue::find(order[i]);
      if (spec == nullptr) continue;
      auto made = std::make_unique<Signature>(make_signature(*spec));
      made->id = static_cast<std::uint32_t>(i + 1);
      by_position[spec->position] = made.get();
      by_id[i] = std::move(made);
    }
  }
};

const Signatures* all() noexcept {
  static const std::unique_ptr<const Signatures> instance = []() noexcept -> std::unique_ptr<const Signatures> {
    try {
      return std::make_unique<const Signatures>();
    } catch (...) {
      return nullptr;
    }
  }();
  return instance.get();
}

}  // namespace

Passing passing_of(const Function_CInput& input) noexcept {
  return input.is_array() ? Passing::range : passing_of(input.type, input.description);
}

Passing passing_of(const Function_COutput& output) noexcept { return passing_of(output.type, output.description); }

const char* passing_name(Passing passing) noexcept {
  switch (passing) {
    case Passing::number: return "number";
    case Passing::option: return "option";
    case Passing::range: return "range";
    case Passing::text: return "text";
  }
  return "";
}

std::span<const std::u16string_view> interface_order() noexcept { return order; }

Signature make_signature(const Function_CFunctionSpec& spec) {
  Signature signature{&spec, 0, {}, {}};
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    if (static_cast<std::int32_t>(i) == spec.name_input) continue;
    const Function_CInput& input = spec.inputs[i];
    std::string name = unique(signature, identifier(input.key, "input", i), "_in", i);
    signature.inputs.push_back({std::move(name), passing_of(input), i});
  }
  for (std::size_t i = 1; i < spec.output_count; ++i) {
    const Function_COutput& output = spec.outputs[i];
    std::string name = unique(signature, identifier(output.key, "output", i), "_out", i);
    signature.outputs.push_back({std::move(name), passing_of(output), i});
  }
  return signature;
}

const Signature* find_signature(std::uint32_t id) noexcept {
  const Signatures* signatures = all();
  if (signatures == nullptr || id < 1 || id > std::size(order)) return nullptr;
  return signatures->by_id[id - 1].get();
}

const Signature* find_signature(std::u16string_view id) noexcept {
  const Signatures* signatures = all();
  if (signatures == nullptr) return nullptr;
  const Function_CFunctionSpec* spec = catalogue::find(id);
  return spec != nullptr ? signatures->by_position[spec->position] : nullptr;
}

}  // namespace norvane::host
