// A function's record as JSON, for programs that build forms, bindings or tables from the catalogue.
#pragma once

#include <nlohmann/json.hpp>

#include "framework/function_spec.h"
#include "units/unit_catalogue.h"

namespace norvane::cli {

nlohmann::ordered_json record_json(const Unit_CTypeAndUnitContainer& units, const Function_CFunctionSpec& spec);

}  // namespace norvane::cli
