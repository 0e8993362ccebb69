// VCone_M and VCone_C: one algorithm in metric units; the customary function converts by the unit catalogue.
#include "framework/call.h"
#include "framework/records.h"
#include "math/flow/device_call.h"
#include "math/flow/vcone.h"
#include "units/unit_catalogue.h"

namespace norvane::functions {

extern const record::Function VCone_M;
extern const record::Function VCone_C;

namespace {

using device_call::join;
using differential_pressure::Location;
using differential_pressure::TemperatureCorrection;
using differential_pressure::ThreePoints;
using record::Input;
using record::Output;

// ---- Records -----------------------------------------------------------------------------------------------------

// The units of one function.
struct UnitSet {
  std::uint32_t dp, pressure, temperature, density, viscosity, length, expansion, mass_rate, velocity;
};
constexpr UnitSet metric{unit::mbar, unit::bar_a,    unit::degC,     unit::kg_m3, unit::Pa_s,
                         unit::mm,   unit::per_degC, unit::tonne_hr, unit::m_s};
constexpr UnitSet customary{unit::inH2O_60_degF, unit::psia,    unit::degF, unit::lb_ft3, unit::lbm_ft_s, unit::in,
                            unit::per_degF,      unit::klbm_hr, unit::ft_s};

// Where the two functions differ.
struct Figures {
  double dp, pressure, temperature, density, viscosity, kappa, pipe_diameter, pipe_reference, cone_diameter,
      cone_reference;  // defaults
  double highest_pressure, lowest_temperature, highest_temperature, highest_density,
      highest_viscosity;  // ranges
};
constexpr Figures metric_figures{131, 1.8, 24, 1.3, 0.01115, 1.3, 80, 20, 70, 20, 2000, -240, 1000, 2000, 1};
constexpr Figures customary_figures{52,   26, 75,    0.08122, 0.0000069, 1.304, 3.078, 70,
                                    2.75, 68, 30000, -400,    2000,      200,   10};

// clang-format off
constexpr std::array<Input, 14> leading(const UnitSet& u, const Figures& f) {
  return {
      record::name_input(),
      record::input(u"dp", u"Diff. Pressure", u"Differential pressure.", u.dp).within(0, 2000).otherwise(f.dp),
      record::input(u"pres", u"Pressure", u"", u.pressure).within(0, f.highest_pressure).otherwise(f.pressure),
      record::input(u"temp", u"Temperature", u"", u.temperature).within(f.lowest_temperature, f.highest_temperature).otherwise(f.temperature),
      record::input(u"dens", u"Density", u"", u.density).within(0, f.highest_density).otherwise(f.density),
      record::input(u"dyn vis", u"Dyn. Viscosity", u"Dynamic viscosity of the fluid.", u.viscosity).within(0, f.highest_viscosity).otherwise(f.viscosity),
      record::input(u"isen exp", u"Isentropic Exponent", u"", data_type::num).within(0, 2).otherwise(f.kappa),
      record::input(u"pipe diam", u"Pipe Diameter", u"Pipe diameter (internal).", u.length).within(0, 2000).otherwise(f.pipe_diameter),
      record::input(u"pipe exp fac", u"Pipe Expansion", u"Pipe expansion factor.", u.expansion).within(0, 1).otherwise(0.0000108),
      record::input(u"pipe ref temp", u"Pipe ref. Temp.", u"Pipe reference temperature.", u.temperature).within(20, 2000).otherwise(f.pipe_reference),
      record::input(u"cone diam", u"Cone Diameter", u"Cone diameter at reference temperature.", u.length).within(0, 2000).otherwise(f.cone_diameter),
      record::input(u"cone exp fac", u"Cone Expansion", u"Cone expansion factor.", u.expansion).within(-1000000, 1000000).otherwise(0.0000163),
      record::input(u"cone ref temp", u"Cone ref. Temp.", u"Cone reference temperature.", u.temperature).within(-300, 1000).otherwise(f.cone_reference),
      record::input(u"config", u"Configuration", u"Configuration of the pressure tappings.; 1: Standard V-Cone; 2: Wafer Cone", data_type::integer).within(1, 2).otherwise(1),
  };
}

constexpr auto with_downstream_temperature() {
  auto locations = device_call::location_inputs;
  locations[1] = locations[1].otherwise(2);
  return locations;
}

constexpr std::array<Input, 1> coefficient_input = {
    record::input(u"dis coef", u"Discharge Coef.", u"Discharge coefficient.", data_type::num).within(0, 2).otherwise(0.85),
};

constexpr std::array<Output, 19> outputs(const UnitSet& u) {
  return {
      record::status_output(),
      record::output(u"mass rate", u"Mass Flow Rate", u"", u.mass_rate, u"MASSR"),
      record::output(u"cor beta", u"Corr. Beta Ratio", u"Corrected beta ratio.", data_type::num, u"BETARATIO"),
      record::output(u"cor cone diam", u"Corr. Cone Diam.", u"Corrected cone diameter.", u.length, u"CONEUP"),
      record::output(u"cor pipe diam", u"Corr. Pipe Diam.", u"Corrected pipe diameter.", u.length, u"PIPEUP"),
      record::output(u"upstream pres", u"Upstream Pres.", u"Upstream pressure.", u.pressure, u"PRESUP"),
      record::output(u"downstream pres", u"Downstream Pres.", u"Downstrem pressure.", u.pressure, u"PRESDN"),
      record::output(u"recovered pres", u"Recovered Pres.", u"Recovered pressure.", u.pressure, u"PRESREC"),
      record::output(u"upstream temp", u"Upstream Temp.", u"Upstream temperature.", u.temperature, u"TEMPUP"),
      record::output(u"downstream temp", u"Downstream Temp.", u"Downstream temperature.", u.temperature, u"TEMPDN"),
      record::output(u"recovered temp", u"Recovered Temp.", u"Recovered temperature.", u.temperature, u"TEMPREC"),
      record::output(u"upstream dens", u"Upstream Dens.", u"Upstream density.", u.density, u"DENSUP"),
      record::output(u"downstream dens", u"Downstream Dens.", u"Downstream density.", u.density, u"DENSDN"),
      record::output(u"recovered dens", u"Recovered Dens.", u"Recovered density.", u.density, u"DENSREC"),
      record::output(u"reynolds", u"Reynolds Number", u"", data_type::num, u"REYN"),
      record::output(u"used dis coef", u"Discharge Coef.", u"Used discharge coefficient.", data_type::num, u"DISCOEF"),
      record::output(u"exp factor", u"Expansion Factor", u"", data_type::num, u"EXPFACTOR"),
      record::output(u"velocity", u"Velocity", u"", u.velocity, u"VELOCITY"),
      record::output(u"exp fac oor", u"Exp-fac. Range Status", u"", enumeration::rangestatus, u"EXPFACRANGE"),
  };
}

constexpr auto metric_inputs = join(leading(metric, metric_figures), with_downstream_temperature(), coefficient_input);
constexpr auto customary_inputs = join(leading(customary, customary_figures), with_downstream_temperature(), coefficient_input);
constexpr auto metric_outputs = outputs(metric);
constexpr auto customary_outputs = outputs(customary);

constexpr std::u16string_view notes =
    u"Flow calculation bulletin 24509-54 of the maker: a cone in the pipe with a calibrated discharge coefficient.\n"
    u"The expansion factor is 1 - (0.649 + 0.696 beta^4) x for the standard cone and 1 - (0.755 + 6.787 beta^8) x for the "
    u"wafer cone with x = dp/(kappa p1); below 0.84 it is out of range. The permanent pressure loss is the fraction "
    u"1.3 - 1.25 beta of the differential pressure. The Reynolds number does not enter the mass rate.\n"
    u"A liquid's temperature and density are delivered at the points where they are given and are 0 elsewhere. A "
    u"differential pressure of 0 is no error: the state given is delivered for all points.\n"
    u"Status 1: an argument is not positive or not finite. Status 2: a cone not smaller than the pipe, a pressure of zero or "
    u"below. Status 3: no convergence in 25 rounds.\n";
// clang-format on

// ---- Implementations ---------------------------------------------------------------------------------------------

enum class In : std::size_t {
  config = static_cast<std::size_t>(device_call::In::after_geometry),
  locations,
  coefficient = 21,
  count
};
enum class Out : std::size_t {
  velocity = static_cast<std::size_t>(device_call::Out::after_expansion),
  expansion_oor,
  count
};
static_assert(metric_inputs.size() == static_cast<std::size_t>(In::count));
static_assert(metric_outputs.size() == static_cast<std::size_t>(Out::count));

using VCone::Code;

constexpr double mPa_s_per_Pa_s = 1000.0;
constexpr double tonne_hr_per_kg_s = 3.6;

// Converts by the unit catalogue; a failure is remembered.
class Converter {
 public:
  explicit Converter(const Unit_CTypeAndUnitContainer& units) noexcept : units_(units) {}
  void operator()(double& value, std::uint32_t from, std::uint32_t to) noexcept {
    good_ = units_.Convert(from, to, value) == UNIT_OK && good_;
  }
  double of_one(std::uint32_t from, std::uint32_t to) noexcept {
    double value = 1.0;
    (*this)(value, from, to);
    return value;
  }
  bool good() const noexcept { return good_; }

 private:
  const Unit_CTypeAndUnitContainer& units_;
  bool good_ = true;
};

void to_metric(Converter& convert, VCone::Measurement& m, VCone::Geometry& g) noexcept {
  convert(m.dp, customary.dp, metric.dp);
  convert(m.pressure, customary.pressure, metric.pressure);
  convert(m.temperature, customary.temperature, metric.temperature);
  convert(m.density, customary.density, metric.density);
  convert(m.viscosity, customary.viscosity, metric.viscosity);
  convert(g.pipe_diameter, customary.length, metric.length);
  convert(g.pipe_expansion, customary.expansion, metric.expansion);
  convert(g.pipe_reference_temperature, customary.temperature, metric.temperature);
  convert(g.device_diameter, customary.length, metric.length);
  convert(g.device_expansion, customary.expansion, metric.expansion);
  convert(g.device_reference_temperature, customary.temperature, metric.temperature);
  // A Joule-Thomson coefficient: degF/psi to K/bar. A difference of temperatures has no offset.
  if (m.temperature_correction == TemperatureCorrection::joule_thomson)
    m.temperature_exponent /=
        convert.of_one(customary.expansion, metric.expansion) * convert.of_one(customary.pressure, metric.pressure);
}

void to_customary(Converter& convert, const VCone::Measurement& given, VCone::Result& r) noexcept {
  convert(r.mass_rate, unit::kg_s, customary.mass_rate);
  convert(r.cone_diameter, metric.length, customary.length);
  convert(r.pipe_diameter, metric.length, customary.length);
  convert(r.velocity, metric.velocity, customary.velocity);
  const bool moving_liquid = given.fluid == differential_pressure::Fluid::liquid && given.dp != 0.0;
  for (const Location at : {Location::upstream, Location::downstream, Location::recovered}) {
    convert(r.pressure[at], metric.pressure, customary.pressure);
    convert(r.density[at], metric.density, customary.density);
    // What is cleared for a liquid reads 0 in any unit.
    if (!moving_liquid) convert(r.temperature[at], metric.temperature, customary.temperature);
  }
  // What was measured comes back as it was given, without the last digits of two conversions.
  r.pressure[given.pressure_location] = given.pressure;
  r.temperature[given.temperature_location] = given.temperature;
  r.density[given.density_location] = given.density;
}

void explain(Call& call, Code code) noexcept {
  using Common = device_call::In;
  Function_CContext& context = call.context();
  const auto blame = [&context](Common index, std::u16string_view text) {
    context.ReportError(static_cast<std::size_t>(index), text);
  };
  switch (code) {
    case Code::ok: return;
    case Code::viscosity: return blame(Common::viscosity, u"must be greater than 0");
    case Code::density: return blame(Common::density, u"must be greater than 0");
    case Code::pressure: return blame(Common::pressure, u"must be greater than 0");
    case Code::differential_pressure: return blame(Common::dp, u"must not be negative");
    case Code::isentropic_exponent: return blame(Common::kappa, u"must be greater than 0");
    case Code::argument: context.ReportError(u"an argument is not a finite number"); return;
    case Code::no_convergence: context.ReportError(u"the mass rate does not settle within 25 rounds"); return;
    case Code::division_by_zero:
      context.ReportError(
          u"a diameter, pressure or factor is zero or below, or the cone is not smaller than the pipe");
  }
}

constexpr int status_of(Code code) noexcept {
  return code == Code::ok ? 0 : code == Code::no_convergence ? 3 : code == Code::division_by_zero ? 2 : 1;
}

template <bool in_customary_units>
std::uint32_t run(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  VCone::Measurement given;
  VCone::Geometry geometry;
  std::uint32_t error = ERROR_OK;
  int type = 0;
  if (!device_call::read(call, static_cast<std::size_t>(In::locations), given, geometry, error) ||
      !device_call::read_option(call, static_cast<std::size_t>(In::config), 2, type, error))
    return error;
  const double coefficient = call.number(In::coefficient);
  if (call.failed()) return call.error();

  Converter convert(context.units());
  VCone::Measurement measured = given;
  if constexpr (in_customary_units) to_metric(convert, measured, geometry);
  measured.viscosity *= mPa_s_per_Pa_s;
  VCone::Result result;
  const Code code = VCone::cone(measured, geometry, static_cast<VCone::Type>(type), coefficient, result);
  explain(call, code);
  if (code != Code::ok) return call.status_only(status_of(code));
  if constexpr (in_customary_units)
    to_customary(convert, given, result);
  else
    result.mass_rate *= tonne_hr_per_kg_s;
  if (!convert.good()) return ERROR_ERROR;

  using Common = device_call::Out;
  call.set_integer(Common::status, 0);
  call.set(Common::mass_rate, result.mass_rate);
  call.set(Common::beta, result.beta);
  call.set(Common::device_diameter, result.cone_diameter);
  call.set(Common::pipe_diameter, result.pipe_diameter);
  device_call::write_states(call, result.pressure, result.temperature, result.density);
  call.set(Common::reynolds, result.reynolds);
  call.set(Common::discharge_coefficient, result.discharge_coefficient);
  call.set(Common::expansion, result.expansion_factor);
  call.set(Out::velocity, result.velocity);
  call.set_integer(Out::expansion_oor, result.expansion_out_of_range);
  return call.done();
}

}  // namespace

const record::Function VCone_M = {
    .group = GroupId::Math,
    .id = u"VCone_M",
    .display = u"V-cone",
    .description = u"McCrometer V-cone Mass Flow Rate.",
    .category = u"Math",
    .subcategory = u"VCone",
    .keywords = u"metric,flow",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = metric_inputs,
    .outputs = metric_outputs,
    .implementation = run<false>,
    .notes = notes,
};

const record::Function VCone_C = {
    .group = GroupId::Math,
    .id = u"VCone_C",
    .display = u"V-cone",
    .description = u"McCrometer V-cone Mass Flow Rate.",
    .category = u"Math",
    .subcategory = u"VCone",
    .keywords = u"customary,flow",
    .flags = FUNCTION_FALLBACK,
    .name_input = 0,
    .inputs = customary_inputs,
    .outputs = customary_outputs,
    .implementation = run<true>,
    .notes = notes,
};

}  // namespace norvane::functions
