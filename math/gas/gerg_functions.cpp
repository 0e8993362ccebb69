// GERG2008_Gas, GERG2008_Flash, AGA8_GERG, GERG2004_Gas, GERG2004_Flash and the earlier functions of GERG-2004:
// density, speed of sound and phases of natural gas.
#include <span>

#include "core/coefficients.h"
#include "framework/binding.h"
#include "math/common/conversions.h"
#include "math/common/gas_records.h"
#include "math/gas/gerg.h"
#include "math/gas/gerg2004_table.h"

namespace norvane::functions {

extern const record::Function AGA8_GERG, GERG2008_Gas, GERG2008_Flash, GERG2004_Gas, GERG2004_Flash, GERG_GAS,
    GERG_FLASH, GERG_ZOTPX, GERG_DOTPX, GERG_WOTPX, GERG_CAPOTPX;

namespace {

using namespace GERG2008;
using record::input;
using record::Misfit;
using record::output;

constexpr record::StatusValue range_statuses[] = {{2.0, u"OOR", u"out of range"}};
constexpr record::Option phases[] = {{1, u"gas"}, {2, u"liquid"}, {3, u"two-phase"}};

// clang-format off
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Gas::pressure>(input(u"pressure", u"Pressure", u"Observed pressure.", unit::bar_a).within(0, 2000).otherwise(1.01325).through(conversion::bar_to_MPa)),
    in<&Gas::temperature>(input(u"temperature", u"Temperature", u"Observed temperature.", unit::degC).within(-250, 450).otherwise(0)),
    in<&Gas::composition>(record::composition_input()),
    in<&Gas::neo_pentane>(record::neo_pentane_input().unless(Misfit::refuse)),
};
// The earlier functions add neo-pentane to i-pentane.
constexpr std::span<const record::Input> inputs_without_mode{inputs, std::size(inputs) - 1};

constexpr record::Output status = record::status_output(record::statuses_with_composition);
constexpr record::Output z = out<&GasAnswer::z>(output(u"z", u"Compressibility", u"Compressibility factor (Z).", data_type::num, u"Z"));
constexpr record::Output mass_density = out<&GasAnswer::mass_density>(output(u"mass density", u"Mass Density", u"Mass density.", unit::kg_m3, u"MASDENS"));
constexpr record::Output speed_of_sound = out<&GasAnswer::speed_of_sound>(output(u"sos", u"Speed of Sound", u"Speed of sound.", unit::m_s, u"SOS"));
constexpr record::Output kappa = out<&GasAnswer::kappa>(output(u"kappa", u"Isentropic Exponent", u"Isentropic exponent.", data_type::num, u"KAPPA"));

constexpr record::Output outputs_gas_2008[] = {
    status,
    z,
    mass_density,
    out<&GasAnswer::molar_density>(output(u"molar density", u"Molar Density", u"Molar density.", unit::kmol_m3, u"MOLDENS")),
    out<&GasAnswer::molar_mass>(output(u"molar mass", u"Molar Mass", u"Molar mass.", unit::kg_kmol, u"MOLMASS")),
    speed_of_sound,
    kappa,
    out<&GasAnswer::range>(output(u"oor", u"Range Status", u"Range status of the temperature and pressure.", enumeration::rangestatus2, u"RANGE").meaning(range_statuses)),
};
constexpr record::Output outputs_gas_2004[] = {status, z, mass_density, speed_of_sound, kappa};
constexpr record::Output outputs_z[] = {status, z};
constexpr record::Output outputs_density[] = {status, mass_density};
constexpr record::Output outputs_speed_of_sound[] = {status, speed_of_sound};
constexpr record::Output outputs_kappa[] = {status, kappa};

constexpr record::Output outputs_flash[] = {
    status,
    out<&FlashAnswer::phase>(output(u"phase", u"Phase", u"Phase of the mixture.", data_type::integer, u"PHASE").options(phases)),
    out<&FlashAnswer::vapour_fraction>(output(u"vapour fraction", u"Vapour Fraction", u"Amount of vapour over the whole amount (mol/mol).", data_type::num, u"VFRAC")),
    out<&FlashAnswer::mass_density>(output(u"mass density", u"Mass Density", u"Mass density of the whole.", unit::kg_m3, u"MASDENS")),
    out<&FlashAnswer::vapour_z>(output(u"vapour z", u"Vapour Compressibility", u"Compressibility factor (Z) of the vapour; 0 without it.", data_type::num, u"ZV")),
    out<&FlashAnswer::liquid_z>(output(u"liquid z", u"Liquid Compressibility", u"Compressibility factor (Z) of the liquid; 0 without it.", data_type::num, u"ZL")),
    out<&FlashAnswer::vapour_density>(output(u"vapour density", u"Vapour Density", u"Mass density of the vapour; 0 without it.", unit::kg_m3, u"MASDENSV")),
    out<&FlashAnswer::liquid_density>(output(u"liquid density", u"Liquid Density", u"Mass density of the liquid; 0 without it.", unit::kg_m3, u"MASDENSL")),
};

#define NOTES_2008 \
    u"Standard: GERG-2008, O. Kunz and W. Wagner, J. Chem. Eng. Data 57 (2012) 3032; the same in ISO 20765-2 and AGA " \
    u"Report No. 8 Part 2 (2017). Gas constant 8.314472 J/(mol K), molar masses of the standard.\n"
#define NOTES_2004 \
    u"Standard: GERG-2004, GERG Technical Monograph 15 (2007): 18 components, without n-nonane, n-decane and hydrogen " \
    u"sulfide (status 4). It differs from GERG-2008 with carbon monoxide and i-pentane only.\n"
#define NOTES_GAS \
    u"The density is that of the vapour, reached from density zero with the pressure rising all the way; where the " \
    u"pressure is above the vapour's limit it is the liquid's, with a warning. Whether a liquid would condense is " \
    u"not tested: that is what the flash does.\n" \
    u"Status 2 is answered at pressure 0 and where the equation has no density; code 3 is never answered.\n"
#define NOTES_RANGE \
    u"Range status: 0 for -183.15 to 176.85 \u00B0C up to 350 bar, 1 for -213.15 to 426.85 \u00B0C up to 700 bar, else 2.\n"
#define NOTES_FLASH \
    u"Stability by tangent plane distances, successive substitution, Newton's method on the Gibbs energy, and a second " \
    u"stability test of the answer; equal fugacities to 1e-11. One phase is called liquid above the reducing density " \
    u"and below the reducing temperature of the mixture. Amounts below 1e-14 take no part.\n" \
    u"Two phases are answered at most. Where a third would form, as water beside gas and condensate, the answer " \
    u"is the pair of least Gibbs energy, with a warning; two liquids are answered as vapour and liquid by density, with " \
    u"a warning. Status 3 is answered when the mixture splits but its phases are not found.\n" \
    u"The equation has no liquid water below -44 \u00B0C (-46 \u00B0C at 100 bar, -82 \u00B0C at 2000 bar). There up to " \
    u"0.01 mol/mol of water is left out, with a warning: the phases, densities and the vapour fraction are those of the " \
    u"rest. With more water the answer is status 3.\n"
#define NOTES_MEMORY \
    u"An unchanged composition, temperature and pressure of the same name or calling place answers from memory.\n"
#define NOTES_EARLIER u"Neo-pentane is added to i-pentane.\n"
// clang-format on

constexpr std::u16string_view notes_gas_2008 = NOTES_2008 NOTES_GAS NOTES_RANGE NOTES_MEMORY;
constexpr std::u16string_view notes_gas_2004 = NOTES_2004 NOTES_GAS NOTES_MEMORY;
constexpr std::u16string_view notes_earlier = NOTES_2004 NOTES_GAS NOTES_EARLIER NOTES_MEMORY;
constexpr std::u16string_view notes_flash_2008 = NOTES_2008 NOTES_FLASH NOTES_MEMORY;
constexpr std::u16string_view notes_flash_2004 = NOTES_2004 NOTES_FLASH NOTES_MEMORY;
constexpr std::u16string_view notes_earlier_flash = NOTES_2004 NOTES_FLASH NOTES_EARLIER NOTES_MEMORY;
#undef NOTES_2008
#undef NOTES_2004
#undef NOTES_GAS
#undef NOTES_RANGE
#undef NOTES_FLASH
#undef NOTES_MEMORY
#undef NOTES_EARLIER

constexpr const CoefficientSet* of_2008[] = {&GERG2008::coefficient_set};

constexpr const CoefficientSet* of_2004[] = {&GERG2008::coefficient_set, &GERG2008::edition_2004::coefficient_set};

}  // namespace

const record::Function AGA8_GERG = {
    .id = u"AGA8_GERG",
    .display = u"AGA8 GERG",
    .description = u"Compressibility (Z), Density and Speed of Sound according to AGA-8 Part 2 (GERG-2008).",
    .subcategory = u"AGA",
    .keywords = u"metric,gas,aga",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs_gas_2008,
    .binding = &bound<gas_2008, gas_2008_rows>,
    .coefficients = of_2008,
    .notes = notes_gas_2008,
};

const record::Function GERG2008_Gas = {
    .id = u"GERG2008_Gas",
    .display = u"GERG-2008 Gas",
    .description = u"Compressibility (Z), Density and Speed of Sound of a gas according to GERG-2008.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,gerg",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs_gas_2008,
    .binding = &bound<gas_2008, gas_2008_rows>,
    .coefficients = of_2008,
    .notes = notes_gas_2008,
};

const record::Function GERG2008_Flash = {
    .id = u"GERG2008_Flash",
    .display = u"GERG-2008 Flash",
    .description = u"Phases, Compressibility (Z) and Density of a gas, a liquid or both according to GERG-2008.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,liquid,gerg",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs_flash,
    .binding = &bound<flash_2008>,
    .coefficients = of_2008,
    .notes = notes_flash_2008,
};

const record::Function GERG2004_Gas = {
    .group = GroupId::GergMath,
    .id = u"GERG2004_Gas",
    .display = u"GERG-2004 Gas",
    .description = u"Compressibility (Z), Density and Speed of Sound of a gas according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,gerg",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs_gas_2004,
    .binding = &bound<gas_2004, gas_2004_rows>,
    .coefficients = of_2004,
    .notes = notes_gas_2004,
};

const record::Function GERG2004_Flash = {
    .group = GroupId::GergMath,
    .id = u"GERG2004_Flash",
    .display = u"GERG-2004 Flash",
    .description = u"Phases, Compressibility (Z) and Density of a gas, a liquid or both according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,liquid,gas,gerg",
    .name_input = 0,
    .inputs = inputs,
    .outputs = outputs_flash,
    .binding = &bound<flash_2004>,
    .coefficients = of_2004,
    .notes = notes_flash_2004,
};

const record::Function GERG_GAS = {
    .group = GroupId::GergMath,
    .id = u"GERG_GAS",
    .display = u"GERG-2004 Gas",
    .description = u"Compressibility (Z), Density and Speed of Sound of a gas according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,gerg",
    .flags = FUNCTION_FALLBACK | FUNCTION_HIDDEN,
    .name_input = 0,
    .inputs = inputs_without_mode,
    .outputs = outputs_gas_2004,
    .binding = &bound<gas_2004, gas_2004_rows>,
    .coefficients = of_2004,
    .notes = notes_earlier,
};

const record::Function GERG_FLASH = {
    .group = GroupId::GergMath,
    .id = u"GERG_FLASH",
    .display = u"GERG-2004 Flash",
    .description = u"Phases, Compressibility (Z) and Density of a gas, a liquid or both according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,liquid,gas,gerg",
    .flags = FUNCTION_FALLBACK | FUNCTION_HIDDEN,
    .name_input = 0,
    .inputs = inputs_without_mode,
    .outputs = outputs_flash,
    .binding = &bound<flash_2004>,
    .coefficients = of_2004,
    .notes = notes_earlier_flash,
};

const record::Function GERG_ZOTPX = {
    .group = GroupId::GergMath,
    .id = u"GERG_ZOTPX",
    .display = u"GERG-2004 ZOTPX",
    .description = u"Compressibility (Z) of a gas according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,gerg",
    .flags = FUNCTION_FALLBACK | FUNCTION_HIDDEN,
    .name_input = 0,
    .inputs = inputs_without_mode,
    .outputs = outputs_z,
    .binding = &bound<density_2004, density_2004_rows>,
    .coefficients = of_2004,
    .notes = notes_earlier,
};

const record::Function GERG_DOTPX = {
    .group = GroupId::GergMath,
    .id = u"GERG_DOTPX",
    .display = u"GERG-2004 DOTPX",
    .description = u"Density of a gas according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,gerg",
    .flags = FUNCTION_FALLBACK | FUNCTION_HIDDEN,
    .name_input = 0,
    .inputs = inputs_without_mode,
    .outputs = outputs_density,
    .binding = &bound<density_2004, density_2004_rows>,
    .coefficients = of_2004,
    .notes = notes_earlier,
};

const record::Function GERG_WOTPX = {
    .group = GroupId::GergMath,
    .id = u"GERG_WOTPX",
    .display = u"GERG-2004 WOTPX",
    .description = u"Speed of Sound in a gas according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,gerg",
    .flags = FUNCTION_FALLBACK | FUNCTION_HIDDEN,
    .name_input = 0,
    .inputs = inputs_without_mode,
    .outputs = outputs_speed_of_sound,
    .binding = &bound<gas_2004, gas_2004_rows>,
    .coefficients = of_2004,
    .notes = notes_earlier,
};

const record::Function GERG_CAPOTPX = {
    .group = GroupId::GergMath,
    .id = u"GERG_CAPOTPX",
    .display = u"GERG-2004 CAPOTPX",
    .description = u"Isentropic Exponent of a gas according to GERG-2004.",
    .subcategory = u"GERG",
    .keywords = u"metric,gas,gerg",
    .flags = FUNCTION_FALLBACK | FUNCTION_HIDDEN,
    .name_input = 0,
    .inputs = inputs_without_mode,
    .outputs = outputs_kappa,
    .binding = &bound<gas_2004, gas_2004_rows>,
    .coefficients = of_2004,
    .notes = notes_earlier,
};

}  // namespace norvane::functions
