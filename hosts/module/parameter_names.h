// Names of parameters for C, IDL and scripts: what the generator writes and late-bound callers look up. No call needs
// them, so they are made for whoever asks.
#pragma once

#include <string>
#include <vector>

#include "hosts/module/signature.h"

namespace norvane::host {

// Identifiers, unique in their function whatever the case, in the order of the signature's parameters.
struct ParameterNames {
  std::vector<std::string> inputs;
  std::vector<std::string> outputs;
};
ParameterNames parameter_names(const Signature& signature);

}  // namespace norvane::host
