#include "units/unit_oddities.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "units/unit_catalogue.h"

namespace norvane {
namespace {

constexpr double inch = 0.0254;                    // [m]
constexpr double pound = 453.59237;                // [mol in a pound-mole]
constexpr double Btu_per_lbmol = 2.326;            // [J/mol]
constexpr double calorie = 4.1868;                 // [J]
constexpr double water_60_degF = 0.999016;         // density over 1000 kg/m3
constexpr double millimetre_of_water = 9.80665;    // of 1000 kg/m3 [Pa]
constexpr double cubic_inch = inch * inch * inch;  // [m3]
constexpr double column = millimetre_of_water * water_60_degF;

constexpr Unit_COddity oddities[] = {
    {unit::Mcal, 1e6 * calorie},
    {unit::Btu_lbmol, Btu_per_lbmol},
    {unit::kBtu_lbmol, 1e3 * Btu_per_lbmol},
    {unit::kg_kmol, 1e-3},
    {unit::g_mol, 1e-3},
    {unit::lb_lbmol, 1e-3},
    {unit::klb_klbmol, 1e-3},
    {unit::lbmol, pound},
    {unit::klbmol, 1e3 * pound},
    {unit::mmH2O_60_degF, column},
    {unit::mmH2Oa_60_degF, column},
    {unit::mmH2Og_60_degF, column},
    {unit::mmH2O_60_degF_d, column},
    {unit::in3, cubic_inch},
    {unit::in3_pulse, cubic_inch},
    {unit::Btu_lbmol_degF, 1.8 * Btu_per_lbmol},
};

// What a table factor is of the physical one; 1 for most units.
double ratio_of(const Unit_CEntry& unit) noexcept {
  const auto* odd = std::find_if(std::begin(oddities), std::end(oddities),
                                 [&unit](const Unit_COddity& oddity) { return oddity.code == unit.code; });
  return odd != std::end(oddities) ? unit.factor / odd->physical : 1.0;
}

const Unit_CEntry* unit_of(std::uint32_t code) noexcept {
  const Unit_CEntry* entry = nullptr;
  return Unit_CTypeAndUnitContainer::Instance().UnitDetails(code, entry) == UNIT_OK ? entry : nullptr;
}

}  // namespace

std::span<const Unit_COddity> unit_oddities() noexcept { return oddities; }

std::u16string unit_warning(std::uint32_t code) {
  const Unit_CEntry* const unit = unit_of(code);
  if (unit == nullptr || ratio_of(*unit) == 1.0) return {};
  const Unit_CEntry& base = *unit_of(make_code(CodeKind::unit, type_number(code), 1));
  std::u16string text = u"1 ";
  text.append(unit->text).append(u" counts as ").append(format_number(unit->factor)).append(u" ").append(base.text);
  text.append(u", but is ").append(format_number(unit->factor / ratio_of(*unit))).append(u" ").append(base.text);
  return text.append(u" (the factor is kept because results in service depend on it)");
}

std::u16string conversion_warning(std::uint32_t from, std::uint32_t to) {
  const Unit_CEntry* const source = unit_of(from);
  const Unit_CEntry* const target = unit_of(to);
  if (source == nullptr || target == nullptr) return {};
  if (std::fabs(ratio_of(*source) / ratio_of(*target) - 1.0) < 1e-12) return {};
  std::u16string text = unit_warning(from);
  const std::u16string other = unit_warning(to);
  if (!text.empty() && !other.empty()) text += u"; ";
  return text += other;
}

}  // namespace norvane
