#include "math/gas/mr113.h"

#include <cmath>
#include <initializer_list>

#include "core/external_library.h"

namespace norvane::MR113 {
namespace {

ExternalEntry library() noexcept {
  static const ExternalEntry answer = find_external_entry(L"mr113_3.dll", "MR113_CalcValues");
  return answer;
}

Outcome check_arguments(const Arguments& in) noexcept {
  if (!(in.pressure > 0.0) || !std::isfinite(in.pressure))
    return blame(in.pressure, argument_error, u"must be above %", 0.0);
  if (!(in.temperature > 0.0) || !std::isfinite(in.temperature))
    return blame(in.temperature, argument_error, u"must be above %", 0.0);
  double sum = 0.0;
  for (const double Arguments::*member :
       {&Arguments::humidity, &Arguments::methane, &Arguments::ethane, &Arguments::propane, &Arguments::butanes,
        &Arguments::pentanes, &Arguments::hexanes_plus, &Arguments::nitrogen, &Arguments::carbon_dioxide,
        &Arguments::hydrogen_sulfide}) {
    const double& value = in.*member;
    if (!(value >= 0.0 && value <= 1.0)) return blame(value, argument_error, u"must be from % to %", 0.0, 1.0);
    if (member != &Arguments::humidity) sum += value;
  }
  constexpr double tolerance = 1e-4;
  if (!(std::fabs(sum - 1.0) <= tolerance))
    return failure(argument_error, u"the mole fractions sum to %, not %", sum, 1.0);
  return {};
}

}  // namespace

Outcome calculate(const Arguments& in, Result&) noexcept {
  if (const Outcome bad = check_arguments(in); !bad.good()) return bad;
  switch (library()) {
    case ExternalEntry::found:
      return failure(library_error, u"mr113_3.dll is there, but how it is called is not known to this build");
    case ExternalEntry::no_entry:
      return failure(library_error, u"mr113_3.dll beside this module has no entry MR113_CalcValues");
    case ExternalEntry::no_library: break;
  }
  return failure(library_error, u"the library mr113_3.dll cannot be loaded from the folder of this module");
}

}  // namespace norvane::MR113
