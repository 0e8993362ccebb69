// API MPMS Chapter 11.1:2004: the records of Tables 5, 6, 23, 24, 53, 54, 59 and 60 and their implementations.
#include <array>
#include <iterator>

#include "framework/call.h"
#include "framework/records.h"
#include "math/liquid/api_11_1_2004.h"

namespace norvane::functions {
namespace {

using namespace API_11_1_2004;

// Every table has the same inputs and outputs but for its first value and its units.
enum class In : std::size_t { name, value, temperature, pressure, product, rounding, count };
enum class Out : std::size_t { status, value, ctl, cpl, ctpl, k0, k1, k2, alpha, f, product, range, count };
template <class T>
using InputRows = std::array<T, static_cast<std::size_t>(In::count)>;
template <class T>
using OutputRows = std::array<T, static_cast<std::size_t>(Out::count)>;

struct Units {
  std::uint32_t temperature;
  double temperature_low, temperature_high;
  std::uint32_t pressure;
  double pressure_low, pressure_high;
  std::uint32_t alpha;
  std::uint32_t f;
};
constexpr Units customary = {unit::degF, -100, 400, unit::psig, -10, 2000, unit::per_degF, unit::per_psi};
constexpr Units metric = {unit::degC, -100, 200, unit::bar_g, -1, 250, unit::per_degC, unit::per_kPa};

constexpr InputRows<record::Input> inputs_of(const Units& units, double default_temperature,
                                             const record::Input& value) {
  using record::input;
  return {
      record::name_input(),
      value,
      input(u"temperature", u"Temperature", u"Observed temperature.", units.temperature)
          .within(units.temperature_low, units.temperature_high)
          .otherwise(default_temperature),
      input(u"pressure", u"Pressure", u"Observed pressure.", units.pressure)
          .within(units.pressure_low, units.pressure_high)
          .otherwise(0),
      input(u"product", u"Product", u"", enumeration::apiproduct).otherwise(1),
      input(u"api rnd", u"API Rounding", u"API rounding and truncating.", data_type::boolean).otherwise(false),
  };
}

constexpr OutputRows<record::Output> outputs_of(const Units& units, const record::Output& value) {
  using record::output;
  return {
      record::status_output(),
      value,
      output(u"ctl", u"CTL", u"Volume correction factor for temperature.", data_type::num, u"CTL"),
      output(u"cpl", u"CPL", u"Volume correction factor for pressure.", data_type::num, u"CPL"),
      output(u"ctpl", u"CTPL", u"Combined volume correction factor (CTPL = CTL * CPL).", data_type::num, u"CTPL"),
      output(u"k0", u"K0", u"Actual value of constant K0 used for CTL calculation.", data_type::num, u"K0"),
      output(u"k1", u"K1", u"Actual value of constant K1 used for CTL calculation.", data_type::num, u"K1"),
      output(u"k2", u"K2", u"Actual value of constant K2 used for CTL calculation.", data_type::num, u"K2"),
      output(u"alpha", u"Thermal Expansion", u"Thermal expansion factor (alpha).", units.alpha, u"ALPHA"),
      output(u"f", u"Compressibility", u"Compressibility factor (F).", units.f, u"F"),
      output(
          u"product", u"",
          u"When input 'Product' is 'Auto select', then the output is set to the actual selected product of the used "
          u"table, else the output is set equal to input 'Product'.",
          enumeration::apiproduct, u"PRDCUR"),
      output(u"oor", u"Range Status", u"", enumeration::rangestatus, u"OOR"),
  };
}

// The first input or output: texts of a quantity, and its ranges and defaults table by table.
struct Quantity {
  std::u16string_view key, display, description;
  std::uint32_t type;
  std::u16string_view tag;
};
constexpr Quantity gravity = {u"api gravity", u"API Gravity", u"", data_type::num, u"API"};
constexpr Quantity gravity_60 = {u"api gravity 60", u"API Gravity @60\u00B0F", u"API gravity at 60 \u00B0F.",
                                 data_type::num, u"API60"};
constexpr Quantity relative = {u"rel density", u"Relative Density", u"Observed relative density.", data_type::num,
                               u"RD"};
constexpr Quantity relative_60 = {u"rel density 60", u"Rel. Density @60\u00B0F",
                                  u"Relative density at 60 \u00B0F and 0 psig.", data_type::num, u"RD60"};
constexpr Quantity density = {u"density", u"Density", u"Observed density.", unit::kg_m3, u"DENS"};
constexpr Quantity density_15 = {u"density 15", u"Density @15\u00B0C", u"Density at 15 \u00B0C and 0 bar(g).",
                                 unit::kg_m3, u"DENS15"};
constexpr Quantity density_20 = {u"density 20", u"Density @20\u00B0C", u"Density at 20 \u00B0C and 0 bar(g).",
                                 unit::kg_m3, u"DENS20"};

constexpr record::Input given(const Quantity& q, double low, double high, double otherwise) {
  return record::input(q.key, q.display, q.description, q.type).within(low, high).otherwise(otherwise);
}
constexpr record::Output result_of(const Quantity& q) {
  return record::output(q.key, q.display, q.description, q.type, q.tag);
}

// Units, default temperature; range and default of the first input.
constexpr auto table5_inputs = inputs_of(customary, 90, given(gravity, -20, 180, 30));
constexpr auto table6_inputs = inputs_of(customary, 90, given(gravity_60, -20, 120, 30));
constexpr auto table23_inputs = inputs_of(customary, 90, given(relative, 0, 1.3, 0.9));
constexpr auto table24_inputs = inputs_of(customary, 90, given(relative_60, 0, 1.3, 0.7));
constexpr auto table53_inputs = inputs_of(metric, 20, given(density, 0, 1300, 1000));
constexpr auto table54_inputs = inputs_of(metric, 25, given(density_15, 0, 1300, 1000));
constexpr auto table59_inputs = inputs_of(metric, 25, given(density, 0, 1300, 1000));
constexpr auto table60_inputs = inputs_of(metric, 90, given(density_20, 0, 1300, 1000));

constexpr auto table5_outputs = outputs_of(customary, result_of(gravity_60));
constexpr auto table6_outputs = outputs_of(customary, result_of(gravity));
constexpr auto table23_outputs = outputs_of(customary, result_of(relative_60));
constexpr auto table24_outputs = outputs_of(customary, result_of(relative));
constexpr auto table53_outputs = outputs_of(metric, result_of(density_15));
constexpr auto table54_outputs = outputs_of(metric, result_of(density));
constexpr auto table59_outputs = outputs_of(metric, result_of(density_20));
constexpr auto table60_outputs = outputs_of(metric, result_of(density));

// Product option to commodity group, and back.
constexpr Group groups[] = {Group::crude,    Group::refined,  Group::gasoline,       Group::transition,
                            Group::jet_fuel, Group::fuel_oil, Group::lubricating_oil};
int product_of(Group group) {
  for (std::size_t i = 0; i < std::size(groups); ++i) {
    if (groups[i] == group) return static_cast<int>(i) + 1;
  }
  return 0;
}

struct Observation {
  Liquid liquid;
  double value;
  double temperature;
  double pressure;
  Rounding rounding;
};

// How a table's first input and first output stand for a density, and which way the table goes.
struct ApiGravity {
  static double to_density(double api) { return density_of_gravity(api); }
  static double from_density(double rho) { return gravity_of_density(rho); }
};
struct RelativeDensity {
  static double to_density(double rd) { return density_of_relative(rd); }
  static double from_density(double rho) { return relative_of_density(rho); }
};
struct Density {
  static double to_density(double rho) { return rho; }
  static double from_density(double rho) { return rho; }
};
struct Base60F {
  static Outcome to_base(const Observation& o, double rho, Correction& result) {
    return base_from_observed(o.liquid, rho, o.temperature, o.pressure, o.rounding, result);
  }
  static Outcome to_observed(const Observation& o, double rho, Correction& result) {
    return observed_from_base(o.liquid, rho, o.temperature, o.pressure, o.rounding, result);
  }
};
template <MetricBase base>
struct BaseMetric {
  static Outcome to_base(const Observation& o, double rho, Correction& result) {
    return base_from_observed(o.liquid, base, rho, o.temperature, o.pressure, o.rounding, result);
  }
  static Outcome to_observed(const Observation& o, double rho, Correction& result) {
    return observed_from_base(o.liquid, base, rho, o.temperature, o.pressure, o.rounding, result);
  }
};
enum class Direction { to_base, to_observed };

template <class Value, class Base, Direction direction>
std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  Observation observation{};
  observation.value = call.number(In::value);
  observation.temperature = call.number(In::temperature);
  observation.pressure = call.number(In::pressure);
  const int product = call.option(In::product);
  observation.rounding = call.boolean(In::rounding) ? Rounding::on : Rounding::off;
  if (call.failed()) return call.error();
  if (product < 1 || product > static_cast<int>(std::size(groups))) {
    return call.status_only(static_cast<int>(Outcome::argument_error));
  }
  observation.liquid.group = groups[product - 1];

  const double rho = Value::to_density(observation.value);
  Correction result;
  const Outcome outcome = direction == Direction::to_base ? Base::to_base(observation, rho, result)
                                                          : Base::to_observed(observation, rho, result);
  if (outcome != Outcome::ok) return call.status_only(static_cast<int>(outcome));

  call.set_integer(Out::status, 0);
  call.set(Out::value,
           Value::from_density(direction == Direction::to_base ? result.base_density : result.observed_density));
  call.set(Out::ctl, result.ctl);
  call.set(Out::cpl, result.cpl);
  call.set(Out::ctpl, result.ctpl);
  call.set(Out::k0, result.k.k0);
  call.set(Out::k1, result.k.k1);
  call.set(Out::k2, result.k.k2);
  call.set(Out::alpha, result.alpha);
  call.set(Out::f, result.f);
  call.set_integer(Out::product, product_of(result.group));
  call.set_integer(Out::range, result.out_of_range ? 1 : 0);
  return call.done();
}

constexpr std::u16string_view subcategory = u"API 11.1 (2004)";
constexpr std::u16string_view customary_words = u"customary,liquid,api";
constexpr std::u16string_view metric_words = u"metric,liquid,api";

// Notes for the reference, by direction and base.
// clang-format off
#define NOTES_COMMON \
  u"'Refined, auto' takes its constants by the density at 60 \u00B0F: gasoline below 770.352, transition zone below " \
  u"787.5195, jet fuel below 838.3127 kg/m3, fuel oil from there.\n" \
  u"Range status 1: temperature outside -58 to 302 \u00B0F (-50 to 150 \u00B0C), pressure outside 0 to 1500 psig " \
  u"(103.42 bar(g)), density at 60 \u00B0F outside 610.6 to 1163.5 kg/m3 (lubricating oil 800.9 to 1163.5), or " \
  u"observed density outside 470.5 to 1201.8 (crude oil), 470.4 to 1209.5 (refined products), 714.3 to 1208.3 kg/m3 " \
  u"(lubricating oil). The calculation is carried out all the same.\n" \
  u"A negative gauge pressure gives a CPL of exactly 1. Inputs are not rounded; API rounding rounds the CTPL to 5 " \
  u"decimals, half away from zero, and nothing else.\n"
#define NOTES_ITERATION \
  u"Status 3 when 15 steps do not meet the observed density within 1e-6 kg/m3. Crude oil, lubricating oil and " \
  u"'Refined, auto' converge within the limits, except in a gap of less than 0.0001 kg/m3 where two refined groups " \
  u"meet. A refined group that is named can fail outside its own densities, the transition zone also at high and " \
  u"low temperatures within them: prefer 'Refined, auto' there. A result is refined until base density times CTL " \
  u"times CPL gives the observed density within 1e-10 of it.\n"
#define NOTES_SECOND_SOLUTION \
  u"Below about 680 kg/m3, above about 220 \u00B0F (105 \u00B0C) and under pressure, an observed density has a second " \
  u"solution of a lower base density. The iteration starts at the observed density and can end there: the base " \
  u"density then lies outside the limits and the range status is 1.\n"
#define NOTES_METRIC \
  u"CTL, CTPL and CPL belong to the table's own base: volumes go through 60 \u00B0F, CTL is the ratio of the factors " \
  u"at the observed and at the base temperature.\n"
// clang-format on

constexpr std::u16string_view notes_to_60F =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.6.2.\n" NOTES_COMMON NOTES_ITERATION
        NOTES_SECOND_SOLUTION;
constexpr std::u16string_view notes_from_60F =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.6.1.\n" NOTES_COMMON;
constexpr std::u16string_view notes_to_metric =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.7.2.\n" NOTES_COMMON NOTES_METRIC NOTES_ITERATION
        NOTES_SECOND_SOLUTION;
constexpr std::u16string_view notes_from_metric =
    u"API MPMS Chapter 11.1:2004 (ASTM D1250-04, IP 200/04), 11.1.7.1.\n" NOTES_COMMON NOTES_METRIC NOTES_ITERATION;
#undef NOTES_COMMON
#undef NOTES_ITERATION
#undef NOTES_SECOND_SOLUTION
#undef NOTES_METRIC

}  // namespace

extern const record::Function API_Table5_2004;
extern const record::Function API_Table6_2004;
extern const record::Function API_Table23_2004;
extern const record::Function API_Table24_2004;
extern const record::Function API_Table53_2004;
extern const record::Function API_Table54_2004;
extern const record::Function API_Table59_2004;
extern const record::Function API_Table60_2004;

const record::Function API_Table5_2004 = {
    .id = u"API_Table5_2004",
    .display = u"API Table-5 (2004)",
    .description =
        u"API Gravity at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, typically 0 psig) according to "
        u"API MPMS Chapter 11.1:2004 Table 5.",
    .subcategory = subcategory,
    .keywords = customary_words,
    .name_input = 0,
    .inputs = table5_inputs,
    .outputs = table5_outputs,
    .implementation = run<ApiGravity, Base60F, Direction::to_base>,
    .notes = notes_to_60F};

const record::Function API_Table6_2004 = {
    .id = u"API_Table6_2004",
    .display = u"API Table-6 (2004)",
    .description =
        u"CTL (Correction Factor for Temperature) at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, "
        u"typically 0 psig) according to API MPMS Chapter 11.1:2004 Table 6.",
    .subcategory = subcategory,
    .keywords = customary_words,
    .name_input = 0,
    .inputs = table6_inputs,
    .outputs = table6_outputs,
    .implementation = run<ApiGravity, Base60F, Direction::to_observed>,
    .notes = notes_from_60F};

const record::Function API_Table23_2004 = {
    .id = u"API_Table23_2004",
    .display = u"API Table-23 (2004)",
    .description =
        u"Relative Density at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, typically 0 psig) "
        u"according to API MPMS Chapter 11.1:2004 Table 23.",
    .subcategory = subcategory,
    .keywords = customary_words,
    .name_input = 0,
    .inputs = table23_inputs,
    .outputs = table23_outputs,
    .implementation = run<RelativeDensity, Base60F, Direction::to_base>,
    .notes = notes_to_60F};

const record::Function API_Table24_2004 = {
    .id = u"API_Table24_2004",
    .display = u"API Table-24 (2004)",
    .description =
        u"CTL (Correction Factor for Temperature) at 60 \u00B0F and EVP (Equilibrium Vapor Pressure, "
        u"typically 0 psig) according to API MPMS Chapter 11.1:2004 Table 24.",
    .subcategory = subcategory,
    .keywords = customary_words,
    .name_input = 0,
    .inputs = table24_inputs,
    .outputs = table24_outputs,
    .implementation = run<RelativeDensity, Base60F, Direction::to_observed>,
    .notes = notes_from_60F};

const record::Function API_Table53_2004 = {
    .id = u"API_Table53_2004",
    .display = u"API Table-53 (2004)",
    .description =
        u"Density at 15 \u00B0C and EVP (Equilibrium Vapor Pressure, typically 0 bar(g)) according to "
        u"API MPMS Chapter 11.1:2004 Table 53.",
    .subcategory = subcategory,
    .keywords = metric_words,
    .name_input = 0,
    .inputs = table53_inputs,
    .outputs = table53_outputs,
    .implementation = run<Density, BaseMetric<MetricBase::degC15>, Direction::to_base>,
    .notes = notes_to_metric};

const record::Function API_Table54_2004 = {
    .id = u"API_Table54_2004",
    .display = u"API Table-54 (2004)",
    .description =
        u"CTL (Correction Factor for Temperature) at 15 \u00B0C and EVP (Equilibrium Vapor Pressure, "
        u"typically 0 bar(g)) according to API MPMS Chapter 11.1:2004 Table 54.",
    .subcategory = subcategory,
    .keywords = metric_words,
    .name_input = 0,
    .inputs = table54_inputs,
    .outputs = table54_outputs,
    .implementation = run<Density, BaseMetric<MetricBase::degC15>, Direction::to_observed>,
    .notes = notes_from_metric};

// "psig" in a metric table is the established text.
const record::Function API_Table59_2004 = {
    .id = u"API_Table59_2004",
    .display = u"API Table-59 (2004)",
    .description =
        u"Density at 20 \u00B0C and EVP (Equilibrium Vapor Pressure, typically 0 psig) according to "
        u"API MPMS Chapter 11.1:2004 Table 59.",
    .subcategory = subcategory,
    .keywords = metric_words,
    .name_input = 0,
    .inputs = table59_inputs,
    .outputs = table59_outputs,
    .implementation = run<Density, BaseMetric<MetricBase::degC20>, Direction::to_base>,
    .notes = notes_to_metric};

const record::Function API_Table60_2004 = {
    .id = u"API_Table60_2004",
    .display = u"API Table-60 (2004)",
    .description =
        u"CTL (Correction Factor for Temperature) at 20 \u00B0C and EVP (Equilibrium Vapor Pressure, "
        u"typically 0 bar(g)) according to API MPMS Chapter 11.1:2004 Table 60.",
    .subcategory = subcategory,
    .keywords = metric_words,
    .name_input = 0,
    .inputs = table60_inputs,
    .outputs = table60_outputs,
    .implementation = run<Density, BaseMetric<MetricBase::degC20>, Direction::to_observed>,
    .notes = notes_from_metric};

}  // namespace norvane::functions
