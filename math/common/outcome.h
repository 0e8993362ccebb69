// Moved to core/outcome.h.
#pragma once
#include "core/outcome.h"
