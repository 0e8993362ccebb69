// What a worksheet wrapper calls: the function at a place of the catalogue with the host's argument records.
#pragma once

#include <cstddef>

#include "hosts/excel/xl_types.h"
#include "hosts/module/export.h"

namespace norvane::excel {

// The record to hand to the host, valid until the same thread calls again; null when the thread has no context or is
// inside another call, an argument cannot be converted or the result cannot. The host shows a null as #NUM!.
XlRecord12* call_12(std::size_t position, XlRecord12* const* args, std::size_t count) noexcept;
XlRecord4* call_4(std::size_t position, XlRecord4* const* args, std::size_t count) noexcept;

// Arguments that a function of any number of inputs is registered with: the dialect's limit.
inline constexpr std::size_t variable_arguments12 = 30;
inline constexpr std::size_t variable_arguments4 = 20;

}  // namespace norvane::excel
