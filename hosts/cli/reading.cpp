#include "hosts/cli/reading.h"

#include <cmath>
#include <numeric>

#include "hosts/cli/composition_names.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/units_text.h"

namespace norvane::cli {
namespace {

// n-hexane to n-decane.
constexpr std::size_t most_shares = component::n_decane - component::n_hexane + 1;

std::vector<double> shares_of(const std::string& text) {
  const std::string example = "; write for example --c6plus=47,36,17 for n-hexane, n-heptane and n-octane";
  std::vector<double> shares;
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t end = std::min(text.find(',', from), text.size());
    double share = 0.0;
    if (!read_number(text.substr(from, end - from), '.', share) || !(share >= 0.0) || !std::isfinite(share))
      throw UsageError("--c6plus: " + in_quotes(text) + " is not a list of shares" + example);
    shares.push_back(share);
    from = end + 1;
  }
  const double sum = std::accumulate(shares.begin(), shares.end(), 0.0);
  if (shares.size() > most_shares || !(std::fabs(sum - 1.0) <= 1e-4 || std::fabs(sum - 100.0) <= 0.01))
    throw UsageError("--c6plus: " + std::to_string(shares.size()) + " shares sum to " + number_text(sum) +
                     "; at most " + std::to_string(most_shares) + " shares must sum to 100 or 1" + example);
  for (double& share : shares) share /= sum;
  return shares;
}

double atmosphere_of(const std::string& text) {
  Quantity quantity;
  if (!read_quantity(text, '.', quantity) || quantity.unit.empty())
    throw UsageError("--atm: " + in_quotes(text) + " is not a pressure with a unit such as 1.01325bar");
  for (const Unit_CEntry* entry : units_named(quantity.unit)) {
    const std::uint32_t type = type_number(entry->code);
    if (type != type_number(quantity::pressure) && type != type_number(quantity::absolutepressure)) continue;
    const double pascals = quantity.value * entry->factor;
    if (!(pascals >= 50e3 && pascals <= 120e3))
      throw UsageError("--atm: " + in_quotes(text) + " is no pressure of the atmosphere (0.5 to 1.2 bar)");
    return pascals;
  }
  throw UsageError("--atm: " + in_quotes(quantity.unit) + " is no unit of absolute pressure" +
                   unit_suggestion(quantity.unit));
}

}  // namespace

Reading reading_of(const ReadingOptions& options) {
  Reading reading;
  reading.blank_is_default = options.blank == "default";
  reading.no_defaults = options.no_defaults;
  reading.decimal = options.decimal == "," ? ',' : '.';
  if (!options.c6plus.empty()) reading.c6plus = shares_of(options.c6plus);
  if (!options.atmosphere.empty()) reading.atmosphere = atmosphere_of(options.atmosphere);
  return reading;
}

}  // namespace norvane::cli
