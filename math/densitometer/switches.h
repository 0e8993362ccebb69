// Reading the correction switches of the densitometers.
#pragma once

#include "framework/call.h"
#include "framework/records.h"

namespace norvane::densitometer {

// An input "Disabled" or "Enabled", on by default.
constexpr record::Input correction_switch(std::u16string_view key, std::u16string_view display,
                                          std::u16string_view description) {
  return record::input(key, display, description, enumeration::enableddisabled).otherwise(1);
}

// Reads switches and remembers whether one was outside its list.
class Switches {
 public:
  explicit Switches(Call& call) : call_(call) {}
  template <class Index>
  bool read(Index index) noexcept {
    const double value = call_.number(index);
    if (value != 0.0 && value != 1.0) outside_ = true;
    return value == 1.0;
  }
  bool outside_list() const noexcept { return outside_; }

 private:
  Call& call_;
  bool outside_ = false;
};

}  // namespace norvane::densitometer
