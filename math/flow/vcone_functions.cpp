// VCone_M and VCone_C: one algorithm in metric units; the customary function converts by the unit catalogue.
#include <array>

#include "math/flow/device_records.h"
#include "math/flow/vcone.h"
#include "units/unit_catalogue.h"

namespace norvane::functions {

extern const record::Function VCone_M;
extern const record::Function VCone_C;

namespace {

using namespace VCone;
using device_records::geometry;
using device_records::measured;
using differential_pressure::Location;
using differential_pressure::TemperatureCorrection;
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
constexpr std::array<Input, 13> leading(const UnitSet& u, const Figures& f) {
  return {
      record::name_input(),
      measured<&Measurement::dp>(record::input(u"dp", u"Diff. Pressure", u"Differential pressure.", u.dp).within(0, 2000).otherwise(f.dp)),
      measured<&Measurement::pressure>(record::input(u"pres", u"Pressure", u"", u.pressure).within(0, f.highest_pressure).otherwise(f.pressure)),
      measured<&Measurement::temperature>(record::input(u"temp", u"Temperature", u"", u.temperature).within(f.lowest_temperature, f.highest_temperature).otherwise(f.temperature)),
      measured<&Measurement::density>(record::input(u"dens", u"Density", u"", u.density).within(0, f.highest_density).otherwise(f.density)),
      measured<&Measurement::viscosity>(record::input(u"dyn vis", u"Dyn. Viscosity", u"Dynamic viscosity of the fluid.", u.viscosity).within(0, f.highest_viscosity).otherwise(f.viscosity)),
      measured<&Measurement::kappa>(record::input(u"isen exp", u"Isentropic Exponent", u"", data_type::num).within(0, 2).otherwise(f.kappa)),
      geometry<&Geometry::pipe_diameter>(record::input(u"pipe diam", u"Pipe Diameter", u"Pipe diameter (internal).", u.length).within(0, 2000).otherwise(f.pipe_diameter)),
      geometry<&Geometry::pipe_expansion>(record::input(u"pipe exp fac", u"Pipe Expansion", u"Pipe expansion factor.", u.expansion).within(0, 1).otherwise(0.0000108)),
      geometry<&Geometry::pipe_reference_temperature>(record::input(u"pipe ref temp", u"Pipe ref. Temp.", u"Pipe reference temperature.", u.temperature).within(20, 2000).otherwise(f.pipe_reference)),
      geometry<&Geometry::device_diameter>(record::input(u"cone diam", u"Cone Diameter", u"Cone diameter at reference temperature.", u.length).within(0, 2000).otherwise(f.cone_diameter)),
      geometry<&Geometry::device_expansion>(record::input(u"cone exp fac", u"Cone Expansion", u"Cone expansion factor.", u.expansion).within(-1000000, 1000000).otherwise(0.0000163)),
      geometry<&Geometry::device_reference_temperature>(record::input(u"cone ref temp", u"Cone ref. Temp.", u"Cone reference temperature.", u.temperature).within(-300, 1000).otherwise(f.cone_reference)),

  };
}

constexpr auto with_downstream_temperature() {
  auto locations = device_records::location_inputs;
  locations[1] = locations[1].otherwise(2);
  return locations;
}

constexpr record::Option configurations[] = {{1, u"Standard V-Cone"}, {2, u"Wafer Cone"}};
constexpr std::array<Input, 1> configuration_input = {
    in<&Arguments::type>(record::input(u"config", u"Configuration", u"Configuration of the pressure tappings.", data_type::integer)
        .options(configurations).otherwise(1).unless(record::Misfit::refuse)),
};
constexpr std::array<Input, 1> coefficient_input = {
    in<&Arguments::discharge_coefficient>(record::input(u"dis coef", u"Discharge Coef.", u"Discharge coefficient.", data_type::num).within(0, 2).otherwise(0.85)),
};

constexpr auto inputs(const UnitSet& units, const Figures& figures) {
  return join(within<&Arguments::device>(leading(units, figures)), configuration_input,
              within<&Arguments::device>(with_downstream_temperature()), coefficient_input);
}

constexpr std::array<Output, 19> outputs(const UnitSet& u) {
  return {
      record::status_output(),
      out<&Result::mass_rate>(record::output(u"mass rate", u"Mass Flow Rate", u"", u.mass_rate, u"MASSR")),
      out<&Result::beta>(record::output(u"cor beta", u"Corr. Beta Ratio", u"Corrected beta ratio.", data_type::num, u"BETARATIO")),
      out<&Result::cone_diameter>(record::output(u"cor cone diam", u"Corr. Cone Diam.", u"Corrected cone diameter.", u.length, u"CONEUP")),
      out<&Result::pipe_diameter>(record::output(u"cor pipe diam", u"Corr. Pipe Diam.", u"Corrected pipe diameter.", u.length, u"PIPEUP")),
      out<&Result::pressure, &ThreePoints::upstream>(record::output(u"upstream pres", u"Upstream Pres.", u"Upstream pressure.", u.pressure, u"PRESUP")),
      out<&Result::pressure, &ThreePoints::downstream>(record::output(u"downstream pres", u"Downstream Pres.", u"Downstrem pressure.", u.pressure, u"PRESDN")),
      out<&Result::pressure, &ThreePoints::recovered>(record::output(u"recovered pres", u"Recovered Pres.", u"Recovered pressure.", u.pressure, u"PRESREC")),
      out<&Result::temperature, &ThreePoints::upstream>(record::output(u"upstream temp", u"Upstream Temp.", u"Upstream temperature.", u.temperature, u"TEMPUP")),
      out<&Result::temperature, &ThreePoints::downstream>(record::output(u"downstream temp", u"Downstream Temp.", u"Downstream temperature.", u.temperature, u"TEMPDN")),
      out<&Result::temperature, &ThreePoints::recovered>(record::output(u"recovered temp", u"Recovered Temp.", u"Recovered temperature.", u.temperature, u"TEMPREC")),
      out<&Result::density, &ThreePoints::upstream>(record::output(u"upstream dens", u"Upstream Dens.", u"Upstream density.", u.density, u"DENSUP")),
      out<&Result::density, &ThreePoints::downstream>(record::output(u"downstream dens", u"Downstream Dens.", u"Downstream density.", u.density, u"DENSDN")),
      out<&Result::density, &ThreePoints::recovered>(record::output(u"recovered dens", u"Recovered Dens.", u"Recovered density.", u.density, u"DENSREC")),
      out<&Result::reynolds>(record::output(u"reynolds", u"Reynolds Number", u"", data_type::num, u"REYN")),
      out<&Result::discharge_coefficient>(record::output(u"used dis coef", u"Discharge Coef.", u"Used discharge coefficient.", data_type::num, u"DISCOEF")),
      out<&Result::expansion_factor>(record::output(u"exp factor", u"Expansion Factor", u"", data_type::num, u"EXPFACTOR")),
      out<&Result::velocity>(record::output(u"velocity", u"Velocity", u"", u.velocity, u"VELOCITY")),
      out<&Result::expansion_out_of_range>(record::output(u"exp fac oor", u"Exp-fac. Range Status", u"", enumeration::rangestatus, u"EXPFACRANGE")),
  };
}

constexpr auto metric_inputs = inputs(metric, metric_figures);
constexpr auto customary_inputs = inputs(customary, customary_figures);
constexpr auto metric_outputs = outputs(metric);
constexpr auto customary_outputs = outputs(customary);

constexpr std::u16string_view notes =
    u"Flow calculation bulletin 24509-54 of the maker: a cone in the pipe with a calibrated discharge coefficient.\n"
    u"The expansion factor is 1 - (0.649 + 0.696 beta^4) x for the standard cone and 1 - (0.755 + 6.787 beta^8) x for the "
    u"wafer cone with x = dp/(kappa p1); below 0.84 it is out of range. The permanent pressure loss is the fraction "
    u"1.3 - 1.25 beta of the differential pressure. The Reynolds number does not enter the mass rate.\n"
    u"A liquid's temperature and density are delivered at the points where they are given and are 0 elsewhere. A "
    u"differential pressure of 0 is no error, whatever the pressure and the cone: the state given is delivered for all points.\n"
    u"Status 1: an argument is not positive or not finite. Status 2: a cone not smaller than the pipe, a pressure of zero or "
    u"below. A negative expansion factor is status 2. Status 3: no convergence in 25 rounds.\n";
// clang-format on

// ---- Implementations ---------------------------------------------------------------------------------------------

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

void to_metric(Converter& convert, Measurement& m, Geometry& g) noexcept {
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

void to_customary(Converter& convert, const Measurement& given, Result& r) noexcept {
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

Outcome metric_flow(const Arguments& given, Result& result) noexcept {
  Measurement measured_ = given.device.measured;
  measured_.viscosity *= mPa_s_per_Pa_s;
  const Code code = cone(measured_, given.device.geometry, given.type, given.discharge_coefficient, result);
  result.mass_rate *= tonne_hr_per_kg_s;
  return outcome_of(code, given);
}

Outcome customary_flow(const Arguments& given, Result& result) noexcept {
  Converter convert(Unit_CTypeAndUnitContainer::Instance());
  Measurement measured_ = given.device.measured;
  Geometry geometry_ = given.device.geometry;
  to_metric(convert, measured_, geometry_);
  measured_.viscosity *= mPa_s_per_Pa_s;
  const Code code = cone(measured_, geometry_, given.type, given.discharge_coefficient, result);
  const Outcome outcome = outcome_of(code, given);
  if (outcome.good()) to_customary(convert, given.device.measured, result);
  if (!convert.good()) return failure(refused, u"a unit cannot be converted");
  return outcome;
}

}  // namespace

const record::Function VCone_M = {
    .id = u"VCone_M",
    .display = u"V-cone",
    .description = u"McCrometer V-cone Mass Flow Rate.",
    .subcategory = u"VCone",
    .keywords = u"metric,flow",
    .name_input = 0,
    .inputs = metric_inputs,
    .outputs = metric_outputs,
    .binding = &bound<metric_flow>,
    .notes = notes,
};

const record::Function VCone_C = {
    .id = u"VCone_C",
    .display = u"V-cone",
    .description = u"McCrometer V-cone Mass Flow Rate.",
    .subcategory = u"VCone",
    .keywords = u"customary,flow",
    .name_input = 0,
    .inputs = customary_inputs,
    .outputs = customary_outputs,
    .binding = &bound<customary_flow>,
    .notes = notes,
};

}  // namespace norvane::functions
