// The call context of spreadsheets.
#pragma once

#include <memory>

#include "hosts/module/module.h"

namespace norvane::excel {

// The context of a thread of this image.
std::unique_ptr<Function_CContext> MakeContext(const host::Module& module);

}  // namespace norvane::excel
