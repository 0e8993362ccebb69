// The lines that the records of the densitometers share.
#pragma once

#include "framework/records.h"

namespace norvane::densitometer {

// An input "Disabled" or "Enabled", on by default.
constexpr record::Input correction_switch(std::u16string_view key, std::u16string_view display,
                                          std::u16string_view description) {
  return record::input(key, display, description, enumeration::enableddisabled).otherwise(1);
}

}  // namespace norvane::densitometer
