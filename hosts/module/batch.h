// Many calls of one function at once: columns of numbers in, columns of numbers out.
//
//   const Column inputs[] = {{pressures, 1, 1, 0}, {temperatures, 1, 1, 0}, {gas, 0, 22, 1}, {}, {}};
//   double* const outputs[] = {z, nullptr, density, nullptr, nullptr};
//   std::size_t failed = run_batch(*find_signature(u"AGA8_M"), rows, inputs, outputs, statuses);
//
// A row is what a single typed call with its numbers is, bit for bit: statuses[i] is its status, or batch_not_run
// where that call answers none because an argument was refused. Outputs that the function does not write are NaN.
// Options and truths cross as whole numbers; any other number there is refused. Nothing is allocated once the thread
// has run a batch of the function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "hosts/module/column.h"
#include "hosts/module/signature.h"

namespace norvane::host {

using Column = ::norvane_column;

// A row's status when its call was refused.
inline constexpr std::uint32_t batch_not_run = 0xFFFFFFFF;
// Answer when the batch as a whole was refused and nothing was written; last_message() says why.
inline constexpr std::size_t batch_refused = static_cast<std::size_t>(-1);

// The inputs are the signature's, each null one left out: it takes its default, or counts as zeros where a list may.
// The outputs are the signature's, null where one is not wanted. They must not overlap the inputs. Answers how many
// rows have a status other than 0, or batch_refused. Where `remarked` is given it tells the rows with status 0 about
// which the single call would have something to say.
std::size_t run_batch(const Signature& signature, std::size_t rows, std::span<const Column> inputs,
                      std::span<double* const> outputs, std::uint32_t* statuses, bool* remarked = nullptr) noexcept;

// Notes for last_message() that there is no function of this name.
std::size_t refuse_unknown_batch() noexcept;

}  // namespace norvane::host
