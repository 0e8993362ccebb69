// API MPMS 11.3.2.1 (ethylene), API MPMS 11.3.3.2 (propylene) and ASTM D1550 (butadiene): standards whose tables are
// not to be had. The records keep their places and say so.
#include "framework/binding.h"
#include "math/liquid/liquid_records.h"

namespace norvane::functions {
namespace {

using liquid::customary;
using record::output;

// What is read all the same, so that an argument that is none is refused as everywhere.
struct Given {
  bool rounding;
};
struct Nothing {};

Outcome no_tables(const Given&, Nothing&) noexcept {
  return failure(calculation_error, u"the tables of this standard are not part of this build");
}

constexpr std::u16string_view notes = u"The tables of this standard are not part of this build: status 2.\n";

// Density from temperature and pressure.
// clang-format off
constexpr record::Input state_inputs[] = {
    record::name_input(),
    liquid::temperature_input(customary),
    liquid::pressure_input(customary),
    in<&Given::rounding>(liquid::rounding_input()),
};
constexpr record::Output state_outputs[] = {
    record::status_output(),
    output(u"density", u"Density", u"Density at the observed conditions.", unit::lb_ft3, u"DENS"),
    output(u"rel density", u"Relative Density", u"Relative density at the observed conditions.", data_type::num, u"RD"),
    output(u"z", u"Compressibility", u"Compressibility factor at the observed conditions.", data_type::num, u"Z"),
    liquid::range_output(),
};
// clang-format on

constexpr record::Input ctl_inputs[] = {
    record::name_input(),
    liquid::given(liquid::relative_60, 0.5, 0.75, 0.627),
    liquid::temperature_input(customary),
};
constexpr record::Output ctl_outputs[] = {record::status_output(), liquid::ctl_output(), liquid::range_output()};

constexpr record::Input base_inputs[] = {
    record::name_input(),
    liquid::given(liquid::relative, 0.5, 0.75, 0.627),
    liquid::temperature_input(customary),
    liquid::pressure_input(customary),
    liquid::equilibrium_pressure_input(customary),
};
constexpr record::Output base_outputs[] = {
    record::status_output(), liquid::answered(liquid::relative_60), liquid::ctl_output(),   liquid::cpl_output(),
    liquid::ctpl_output(),   liquid::f_output(customary),           liquid::range_output(),
};

}  // namespace

extern const record::Function API_MPMS_11_3_2_1, API_MPMS_11_3_3_2, ASTM_D1550_Ctl, ASTM_D1550_RD60;

const record::Function API_MPMS_11_3_2_1 = liquid::function(
    u"API_MPMS_11_3_2_1", u"API MPMS 11.3.2.1", u"Density of ethylene according to API MPMS 11.3.2.1 (API 2565).",
    u"API 11.3.2.1 Ethylene", liquid::customary_words, state_inputs, state_outputs, bound<no_tables>, notes);

const record::Function API_MPMS_11_3_3_2 = liquid::function(
    u"API_MPMS_11_3_3_2", u"API MPMS 11.3.3.2", u"Density of propylene according to API MPMS 11.3.3.2.",
    u"API 11.3.3.2 Propylene", liquid::customary_words, state_inputs, state_outputs, bound<no_tables>, notes);

const record::Function ASTM_D1550_Ctl =
    liquid::function(u"ASTM_D1550_Ctl", u"ASTM D1550 CTL",
                     u"CTL (correction factor for temperature) of butadiene to 60 \u00B0F according to ASTM D1550.",
                     u"ASTM", u"customary,liquid,astm", ctl_inputs, ctl_outputs, bound<no_tables>, notes);

const record::Function ASTM_D1550_RD60 =
    liquid::function(u"ASTM_D1550_RD60", u"ASTM D1550 Rel. Density @60F",
                     u"Relative density of butadiene at 60 \u00B0F according to ASTM D1550.", u"ASTM",
                     u"customary,liquid,astm", base_inputs, base_outputs, bound<no_tables>, notes);

}  // namespace norvane::functions
