// GPA TP-15: the record.
#include "framework/binding.h"
#include "math/liquid/gpa_tp15.h"
#include "math/liquid/liquid_records.h"

namespace norvane::functions {

extern const record::Function GPA_TP15;

namespace {

using norvane::GPA_TP15::Arguments;
using norvane::GPA_TP15::Result;

constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Arguments::relative_density>(liquid::given(liquid::relative_60, 0.35, 0.676, 0.5)),
    in<&Arguments::temperature>(liquid::temperature_input(liquid::customary)),
    in<&Arguments::rounding>(liquid::refused_rounding_input(u"api rnd", u"API Rounding")),
    in<&Arguments::p100_known>(liquid::p100_known_input()),
    in<&Arguments::p100>(liquid::p100_input(liquid::customary, 300)),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Result::equilibrium_pressure>(record::output(u"eq pressure", u"Equilibrium pressure",
                                                      u"Equilibrium pressure, absolute.", unit::psia, u"PE")),
    out<&Result::out_of_range>(liquid::range_output()),
};

}  // namespace

const record::Function GPA_TP15 = liquid::function(
    u"GPA_TP15", u"GPA-TP15", u"Equilibrium pressure of natural gas liquids according to GPA TP-15.", u"GPA",
    u"customary,liquid,gpa", inputs, outputs, bound<norvane::GPA_TP15::pressure>,
    u"GPA TP-15. Range status 1 outside relative density 0.350 to 0.676, -50 to 140 \u00B0F and, below a relative "
    u"density of 0.425, above 695.51 G - 155.51 \u00B0F.\n"
    u"The constants come from one public source. They are for commercial mixtures: against the pure fluids from 60 to "
    u"130 \u00B0F propane is 3 % high, n-butane -1 to 3 %, n-pentane 16 %. The equation changes its constants at six "
    u"relative densities, where the pressure jumps by 0.1 % at most from -40 to 120 \u00B0F.\n"
    u"Full precision: rounding, and the variant that starts from a known vapour pressure at 100 \u00B0F, are not part of "
    u"this build and are refused with status 1.\n");

}  // namespace norvane::functions
