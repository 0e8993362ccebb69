// A typed call without the context: from the caller's values into the structure of the calculation and back.
//
// Only what is plainly good ends here. Whatever has to be refused, explained or remarked on is left to the context
// (TypedCall::make), which makes the call again and says what it always said.
#pragma once

#include "hosts/module/signature.h"
#include "hosts/module/typed_value.h"

namespace norvane::host {

// As many values and places as the signature has parameters; a list is a pointer to its numbers. True when the call
// succeeded with status 0, its outputs are delivered and there is nothing to say about it; false when nothing was
// written and the context has to make the call.
bool direct_call(const Signature& signature, const norvane_value* in, void* const* out) noexcept;

}  // namespace norvane::host
