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

template <class Record>
Passing passing_of_record(const Record& record) noexcept {
  switch (kind_of_code(record.type)) {
    case CodeKind::unit: return Passing::number;
    case CodeKind::enumeration:
    case CodeKind::enumeration_value: return Passing::option;
    default: break;
  }
  switch (record.type) {
    case data_type::text:
    case data_type::ipaddr: return Passing::text;
    case data_type::boolean:
    case data_type::integer:
    case data_type::unit:
    case data_type::enumeration: return Passing::option;
    case data_type::date: return Passing::number;
    default: return record.choices.empty() ? Passing::number : Passing::option;
  }
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
  try {
    static const Signatures instance;  // where there was no memory for it, the next caller tries again
    return &instance;
  } catch (...) {
    return nullptr;
  }
}

}  // namespace

Passing passing_of(const Function_CInput& input) noexcept {
  return input.is_array() ? Passing::range : passing_of_record(input);
}

Passing passing_of(const Function_COutput& output) noexcept { return passing_of_record(output); }

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
  Signature signature{&spec, 0, {}, {}, make_call_plan(spec)};
  signature.inputs.reserve(spec.input_count);
  signature.outputs.reserve(spec.output_count);
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    if (static_cast<std::int32_t>(i) == spec.name_input) continue;
    signature.inputs.push_back({passing_of(spec.inputs[i]), i});
  }
  for (std::size_t i = 1; i < spec.output_count; ++i) signature.outputs.push_back({passing_of(spec.outputs[i]), i});
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
