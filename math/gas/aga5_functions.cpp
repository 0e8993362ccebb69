// AGA5_C: heating value from specific gravity and diluents by AGA-5.
#include <array>
#include <cstddef>
#include <iterator>

#include "framework/call.h"
#include "framework/records.h"
#include "math/gas/aga5.h"

namespace norvane::functions {

extern const record::Function AGA5_C;

namespace {

constexpr record::StatusValue statuses[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
};

enum class In : std::size_t { Name, composition, specific_gravity, count };
enum class Out : std::size_t { status, mass_based, volume_based, count };

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    record::input(u"composition", u"Composition",
                  u"Gas composition (array of 22 numbers; sum of all numbers must be 1).", data_type::num).range(),
    record::input(u"specific gravity", u"Specific Gravity",
                  u"Molar Mass Ratio, i.e. ratio of the molar mass of the gas and of the molar mass of air (specified in "
                  u"AGA-5 as 28.9644 kg/kmol (lbm/lbmol)).", data_type::num).within(0, 1).otherwise(0.7),
};
static_assert(std::size(inputs) == static_cast<std::size_t>(In::count));

constexpr record::Output outputs[] = {
    record::status_output(statuses),
    record::output(u"cal. value mass", u"Calorific Value", u"Mass based calorific value.", unit::Btu_lbm, u"CV_MASS"),
    record::output(u"cal. value volume", u"Calorific Value", u"Volume based calorific value.", unit::Btu_scf,
                   u"CV_VOL"),
};
static_assert(std::size(outputs) == static_cast<std::size_t>(Out::count));
// clang-format on

std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const std::array<double, AGA5::n_fractions> fractions = call.numbers<AGA5::n_fractions>(In::composition);
  const double specific_gravity = call.number(In::specific_gravity);
  if (call.failed()) return call.error();

  const AGA5::Result result = AGA5::calculate(fractions, specific_gravity);
  if (result.status != AGA5::Status::ok) return call.status_only(static_cast<int>(result.status));
  call.set_integer(Out::status, 0);
  call.set(Out::mass_based, result.mass_based);
  call.set(Out::volume_based, result.volume_based);
  return call.done();
}

}  // namespace

const record::Function AGA5_C = {
    .group = GroupId::Math,
    .id = u"AGA5_C",
    .display = u"AGA-5",
    .description = u"Calorific Value according to AGA-5.",
    .category = u"Math",
    .subcategory = u"AGA",
    .keywords = u"customary,gas,aga",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs,
    .implementation = run,
    .notes =
        u"AGA Report No. 5, Natural gas energy measurement: heating value from the specific gravity and "
        u"the fractions of nitrogen, carbon dioxide, oxygen, helium, carbon monoxide, hydrogen sulfide, "
        u"water and hydrogen.\n"
        u"The composition is taken as fractions and is not normalised: status 1 when these eight exceed 1 in sum, "
        u"as percent does, or when one of them is negative; status 2 for a specific gravity below 1e-6. "
        u"For pure methane the correlation lies 0.2 to 0.4 % above the tabulated value by volume.",
};

}  // namespace norvane::functions
