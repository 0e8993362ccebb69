// GERG-2004: what differs from GERG-2008.
//
// O. Kunz, R. Klimeck, W. Wagner, M. Jaeschke: The GERG-2004 Wide-Range Equation of State for Natural Gases and Other
// Mixtures, GERG Technical Monograph 15 (2007). It has 18 components: not n-nonane, n-decane and hydrogen sulfide.
// The equations of carbon monoxide and i-pentane are others, and so are the reducing parameters that follow from
// their critical values.
#pragma once

#include "core/coefficients.h"
#include "math/gas/gerg2008_table.h"

namespace norvane::GERG2008::edition_2004 {

// clang-format off

inline constexpr std::size_t absent[] = {hydrogen_sulfide, n_nonane, n_decane};

// Critical values and coefficients of the simplified form.
struct Fluid { std::size_t component; double rho_c, T_c, n[std::size(simple_form)]; };
inline constexpr Fluid fluids[] = {
    {carbon_monoxide, 10.85, 132.8,
     {   0.92310041400851,      -2.48858452058,    0.58095213783396,   0.028859164394654,   0.070256257276544,
      0.00021687043269488,    0.13758331015182,  -0.051501116343466,   -0.14865357483379,   -0.03885710088681,
       -0.029100433948943,   0.014155684466279}},
    {i_pentane, 3.271018581, 460.35,
     {   1.1017531966644,    -3.008236853198,   0.99411904271336,  -0.14008636562629,   0.11193995351286,
      0.0002954804254123,   0.36370108598133, -0.048236083488293,  -0.35100280270615,  -0.10185043812047,
      -0.035242601785454,  0.019756797599888}},
};

inline constexpr Pair pairs[] = {
    { 3, 12, 1, 1.045439246, 1, 1.021150247},  // ethane, i-pentane
    { 7, 12, 1, 1.184339122, 1, 1.996386669},  // hydrogen, i-pentane
    { 8, 10, 1, 1.087272232, 1, 1.161523504},  // carbon monoxide, i-butane
    { 8, 11, 1, 1.084740904, 1, 1.174055065},  // carbon monoxide, n-butane
    { 8, 12, 1, 1.116693501, 1, 1.199475627},  // carbon monoxide, i-pentane
    { 8, 13, 1, 1.119954454, 1, 1.206195595},  // carbon monoxide, n-pentane
    { 8, 14, 1, 1.155145836, 1, 1.233435828},  // carbon monoxide, n-hexane
    { 8, 15, 1, 1.190354273, 1, 1.256295219},  // carbon monoxide, n-heptane
    { 8, 16, 1, 1.219206702, 1, 1.276744779},  // carbon monoxide, n-octane
    {10, 12, 1, 1.002284197, 1, 1.001835788},  // i-butane, i-pentane
    {11, 12, 1, 1.002728262, 1, 1.000792201},  // n-butane, i-pentane
    {12, 13, 1, 1.000024352, 1, 1.000050537},  // i-pentane, n-pentane
    {12, 14, 1, 1.002996055, 1, 1.001204174},  // i-pentane, n-hexane
    {12, 15, 1, 1.009928531, 1, 1.003194615},  // i-pentane, n-heptane
    {12, 16, 1, 1.017880981, 1,  1.00564748},  // i-pentane, n-octane
};
static_assert(std::size(pairs) == 15);

// clang-format on

inline constexpr CoefficientTable coefficient_tables[] = {
    rows("fluids", fluids),
    rows("pairs", pairs),
};
inline constinit const CoefficientSet coefficient_set{
    "GERG-2004", "O. Kunz, R. Klimeck, W. Wagner, M. Jaeschke, GERG Technical Monograph 15 (2007)",
    coefficient_tables};

}  // namespace norvane::GERG2008::edition_2004
