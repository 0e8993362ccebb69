// What the add-in's answers are compared with: the same catalogue, linked into
// the test, called through a context without any host.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/context.h"
#include "tests/hosts/excel/spreadsheet.h"

namespace sheet {

class Direct {
 public:
  Direct();
  ~Direct();
  // The answer as a worksheet of this program's dialect shows it.
  Value Call(const norvane::Function_CFunctionSpec& spec, const std::vector<Value>& args);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A published check value: the inputs of a function by key.
struct CheckCase {
  std::string where;  // file and line
  std::u16string function;
  std::vector<std::pair<std::u16string, Value>> inputs;

  std::vector<Value> Arguments(const norvane::Function_CFunctionSpec& spec) const;
};

void SetCheckFolder(const char* folder);
std::vector<CheckCase> ReadCheckCases();

}  // namespace sheet
