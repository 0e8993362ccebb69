// Gases of 21 components for tests.
#pragma once

#include <initializer_list>
#include <utility>
#include <vector>

#include "math/gas/aga8.h"

namespace norvane::test {

// Every component is in at least one of them.
inline AGA8::Composition gas(std::initializer_list<std::pair<AGA8::ComponentIndex, double>> fractions) {
  AGA8::Composition x{};
  for (const auto& [component, fraction] : fractions) x[component] = fraction;
  return x;
}
inline const AGA8::Composition gas_of_21 = {0.8629, 0.02,   0.005,  0.05,   0.03,   0.0001, 0.001,
                                            0.0001, 0.0001, 0.0002, 0.011,  0.009,  0.0035, 0.0025,
                                            0.002,  0.001,  0.0005, 0.0002, 0.0001, 0.0004, 0.0004};
inline const AGA8::Composition gulf_coast = gas({{AGA8::methane, 0.965222},
                                                 {AGA8::nitrogen, 0.002595},
                                                 {AGA8::carbon_dioxide, 0.005956},
                                                 {AGA8::ethane, 0.018186},
                                                 {AGA8::propane, 0.004596},
                                                 {AGA8::i_butane, 0.000977},
                                                 {AGA8::n_butane, 0.001007},
                                                 {AGA8::i_pentane, 0.000473},
                                                 {AGA8::n_pentane, 0.000324},
                                                 {AGA8::n_hexane, 0.000664}});
inline const AGA8::Composition coke_oven =
    gas({{AGA8::methane, 0.30}, {AGA8::hydrogen, 0.50}, {AGA8::carbon_monoxide, 0.12}, {AGA8::nitrogen, 0.08}});
inline const AGA8::Composition sour =
    gas({{AGA8::methane, 0.60}, {AGA8::carbon_dioxide, 0.20}, {AGA8::hydrogen_sulfide, 0.15}, {AGA8::water, 0.05}});

// 21 fractions and neo-pentane.
inline std::vector<double> with_neo_pentane(const AGA8::Composition& x, double neo_pentane = 0.0) {
  std::vector<double> result(x.begin(), x.end());
  result.push_back(neo_pentane);
  return result;
}

}  // namespace norvane::test
