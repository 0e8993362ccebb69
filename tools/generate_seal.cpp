// The seal: what the tables are when the library is built. Every program but this one has it compiled in.
#include "core/seal.h"

#include "catalogue/identity.h"
#include "tools/generate.h"

namespace norvane {

// The generator makes the seal, so it has none.
const Seal& seal() noexcept {
  static constexpr Seal none{};
  return none;
}

namespace generate {

void seal(std::ostream& out, Specs) {
  const auto hexadecimal = [](std::uint32_t checksum) { return "0x" + catalogue::checksum_text(checksum); };
  out << "// Written by norvane_generate.\n#include \"core/seal.h\"\n\n#include \"norvane_commit.h\"\n"
         "#include \"norvane_equations.h\"\n\nnamespace norvane {\n\nconst Seal& seal() noexcept {\n"
         "  static constexpr Seal::Set sets[] = {\n";
  for (const CoefficientSet* set : catalogue::coefficient_sets())
    out << "      {\"" << set->standard() << "\", " << hexadecimal(set->checksum()) << "},\n";
  out << "  };\n  static constexpr Seal built = {NORVANE_COMMIT, NORVANE_EQUATIONS, "
      << hexadecimal(catalogue::content_checksum()) << ", sets};\n  return built;\n}\n\n}  // namespace norvane\n";
}

}  // namespace generate
}  // namespace norvane
