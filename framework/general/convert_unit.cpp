// ConvertUnit: converts a value between two units of one quantity, given by code, key or symbol.
#include <cmath>
#include <cstdint>
#include <iterator>
#include <memory>
#include <mutex>
#include <vector>

#include "core/string_map.h"
#include "framework/call.h"
#include "framework/context.h"
#include "framework/data_accessor.h"
#include "framework/records.h"
#include "units/unit_catalogue.h"

namespace norvane::functions {
namespace {

constexpr std::u16string_view not_a_unit = u"is not a valid unit";
constexpr std::u16string_view ambiguous = u"could mean multiple units";

// Codes of the units by symbol, 0 for a symbol of more than one unit.
using SymbolMap = Core_CCIStringMap<std::uint32_t>;

std::shared_ptr<SymbolMap> build_symbols(const Unit_CTypeAndUnitContainer& units) {
  auto map = std::make_shared<SymbolMap>();
  std::vector<std::uint32_t> codes;
  units.ListMembers(CodeKind::unit, 0, codes);
  for (std::uint32_t code : codes) {
    const Unit_CEntry* entry = nullptr;
    if (units.UnitDetails(code, entry) != UNIT_OK) continue;
    if (std::uint32_t* known = map->Find(entry->text))
      *known = 0;
    else
      map->Insert(entry->text, code);
  }
  return map;
}

// The map of the process, as one context holds it: built by the first thread that needs it
// while the others wait, and only read from then on.
class CSymbols final : public Function_CData {
 public:
  // Null when memory is refused.
  const SymbolMap* Map(const Unit_CTypeAndUnitContainer& units) noexcept {
    if (map_ != nullptr) return map_.get();
    try {
      if (synchronization == nullptr) {
        map_ = build_symbols(units);
        return map_.get();
      }
      struct Lockable {
        Function_CSynchronization& object;
        void lock() { object.Lock(); }
        void unlock() { object.Unlock(); }
      } lockable{*synchronization};
      const std::lock_guard guard(lockable);
      if (synchronization->shared == nullptr) synchronization->shared = build_symbols(units);
      map_ = std::static_pointer_cast<const SymbolMap>(synchronization->shared);
    } catch (...) {
      return nullptr;
    }
    return map_.get();
  }

 private:
  std::shared_ptr<const SymbolMap> map_;
};

const Function_CTypeOf<CSymbols, true> symbols_type{u"ConvertUnit_GetUnitID"};

// Code of a symbol; 0 when it is none, or several, with the complaint about what only this function can know.
std::uint32_t code_of_symbol(Function_CContext& context, std::u16string_view text,
                             std::u16string_view& complaint) noexcept {
  Function_CDataAccessor accessor;
  const SymbolMap* map = nullptr;
  if (accessor.Open(context, symbols_type, u"ConvertUnit", true)) map = accessor.as<CSymbols>().Map(context.units());
  if (map == nullptr) {
    complaint = not_a_unit;  // memory is refused
    return 0;
  }
  const std::uint32_t* found = map->Find(text);
  if (found == nullptr) return 0;
  if (*found == 0) complaint = ambiguous;
  return *found;
}

enum class In { name, input_value, input_unit, output_unit, count };
enum class Out { output_value, conversion_error, count };

// A unit as code, key or symbol. A code is not checked here: a wrong one shows when it is used. Code 0 (an empty
// text or cell) is a failure. What is no unit at all has been reported by the checks of the arguments.
bool read_unit(Call& call, In index, std::uint32_t& code) noexcept {
  Function_CContext& context = call.context();
  const FUNCTION_ARG* arg = call.argument(index);
  std::int32_t number = 0;
  std::u16string_view text;
  std::u16string_view complaint;
  if (context.ReadInteger(arg, number)) {
    code = static_cast<std::uint32_t>(number);
    if (code == 0 && arg->kind != ARG_EMPTY) complaint = not_a_unit;
  } else if (!context.ReadText(arg, text)) {
    return false;
  } else if (!context.units().CodeOfText(text, code)) {
    code = code_of_symbol(context, text, complaint);
  } else if (code == 0) {
    complaint = not_a_unit;
  }
  if (!complaint.empty()) context.ReportError(static_cast<std::size_t>(index), complaint);
  return code != 0;
}

std::uint32_t convert_unit(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  double value = 0.0;
  std::uint32_t from = 0;
  std::uint32_t to = 0;
  const bool has_value = context.ReadNumber(call.argument(In::input_value), value);
  const bool has_from = read_unit(call, In::input_unit, from);
  const bool has_to = read_unit(call, In::output_unit, to);
  if (!has_value || !has_from || !has_to) return ERROR_VALUE;
  if (const std::uint32_t result = context.units().Convert(from, to, value); result != UNIT_OK) {
    if (result == UNIT_MISMATCH && context.units().IsKnown(from) && context.units().IsKnown(to))
      context.ReportError(u"Input- and Output unit are not of the same type");
    return ERROR_VALUE;
  }
  if (!std::isfinite(value))
    context.ReportError(static_cast<std::size_t>(In::input_value), u"gives a value that is not a finite number");
  call.set(Out::output_value, value);
  call.set_integer(Out::conversion_error, 0);
  return call.done();
}

constexpr record::Input inputs[] = {
    record::name_input(),
    record::input(u"input value", u"Input value", u"Value to be converted from one unit to another", data_type::num)
        .required(),
    record::input(u"input unit", u"Input unit", u"Unit of input value", data_type::unit).required(),
    record::input(u"output unit", u"Output unit", u"Unit of output value", data_type::unit).required(),
};
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));

constexpr record::StatusValue error_values[] = {{1.0, u"CONVERR", u"conv err"}};

constexpr record::Output value_output() {
  record::Output value =
      record::output(u"output value", u"Output value", u"The value in the output unit", data_type::num, u"");
  value.unit_input = static_cast<std::int32_t>(In::output_unit);
  return value;
}
constexpr record::Output outputs[] = {
    value_output(),
    record::output(u"conversion error", u"Conversion error", u"Conversion error (0 = converted, 1 = failed)",
                   data_type::integer, u"")
        .failing_integer(1)
        .meaning(error_values),
};
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));

}  // namespace

extern const record::Function ConvertUnit;
const record::Function ConvertUnit = {
    .group = GroupId::Extended,
    .id = u"ConvertUnit",
    .description =
        u"Converts a value expressed in a particular unit into the corresponding value expressed in a another unit",
    .category = u"General",
    .subcategory = u"Extended",
    .flags = FUNCTION_FALLBACK | FUNCTION_NO_RANGE_CHECK,
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .implementation = convert_unit,
    .notes =
        u"A unit is given by its key (\"bar_a\", in any case), by its symbol (\"bar(a)\") or by its number. "
        u"Symbols that several units bear are refused: a key is always one unit.\n"
        u"Absolute, gauge and differential pressures are quantities of their own and are not converted into "
        u"each other, nor volumes into standard volumes.\n"
        u"value in the output unit = (value * factor + offset - output offset) / output factor, by way of the base "
        u"unit, with the factors of the unit tables. Some of these are not the physical ones and are kept, because "
        u"results in service depend on them: between in3, kg_kmol, g_mol, lb_lbmol, klb_klbmol, lbmol, klbmol, Mcal, "
        u"Btu_lbmol, kBtu_lbmol, Btu_lbmol_degF and other units the result is wrong by a factor of 1000 or more, with "
        u"in3_pulse by 0.08 %, with mmH2O_60_degF, mmH2Oa_60_degF, mmH2Og_60_degF and mmH2O_60_degF_d by 0.0016 %.\n",
};

}  // namespace norvane::functions
