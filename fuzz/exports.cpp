// Typed exports and batch exports: values, counts and places as a native caller hands them over. An export answers what
// the call through the context does, and a row of a batch, calculated with others by vector instructions, what the
// export does for it.
#include "hosts/exports/runner.h"

#include <norvane.h>

#include "core/text.h"
#include "fuzz/fuzz.h"
#include "tests/module/batch_table.h"

namespace norvane::fuzz {
namespace {

using host::Passing;
using host::Signature;

void change(Input& in, const Signature& signature, test::TypedArguments& arguments) {
  if (arguments.values.empty()) return;
  const std::size_t place = in.below(arguments.values.size());
  norvane_value& value = arguments.values[place];
  auto& list = arguments.lists[place];
  switch (signature.inputs[place].passing) {
    case Passing::number: value.number = arguments.numbers[place] = in.number(); break;
    case Passing::option:
      value.option = in.once_in(2) ? in.take<std::uint8_t>() : in.take<std::uint32_t>();
      arguments.numbers[place] = static_cast<double>(value.option);
      break;
    case Passing::range:
      switch (list.empty() ? 0 : in.below(8)) {
        default: list[in.below(list.size())] = in.number(); break;
        case 5: list.resize(in.below(80), 0.01); break;
        case 6: value.count = 65537 + in.take<std::uint8_t>() * 16777216u; return;  // never read
        case 7: value.data = nullptr; return;
        case 0: list.resize(22, 0.04); break;
      }
      value.data = list.data();
      value.count = static_cast<std::uint32_t>(list.size());
      break;
    case Passing::text: break;
  }
}

std::string shown(const test::TypedResult& result) {
  std::string text = std::to_string(result.status);
  for (std::uint64_t word : result.outputs) text += " " + test::bits_of(FUNCTION_ARG::Number(test::bits(word)));
  return text;
}

// The call as its export makes it.
test::TypedResult call_export(const Signature& signature, const test::TypedArguments& arguments) {
  test::TypedResult result;
  result.outputs.assign(signature.outputs.size(), 0);
  std::vector<void*> places;
  for (std::uint64_t& word : result.outputs) places.push_back(&word);
  result.status =
      norvane_run(signature.id, arguments.values.data(), arguments.values.size(), places.data(), places.size());
  return result;
}

bool fits(const Signature& signature, const test::TypedArguments& arguments) {
  for (std::size_t i = 0; i < signature.inputs.size(); ++i)
    if (signature.inputs[i].passing == Passing::range &&
        (arguments.lists[i].size() < signature.plan.inputs[i].cells ||
         arguments.values[i].count != arguments.lists[i].size() || arguments.values[i].data == nullptr))
      return false;
  return true;
}

}  // namespace

void exports(Input& in) {
  while (in.more()) {
    const Signature& signature =
        *host::find_signature(static_cast<std::uint32_t>(1 + in.below(host::interface_order().size())));
    const std::string id = to_utf8(signature.spec->id);
    test::TypedArguments arguments(signature, in.take<std::uint16_t>());
    test::BatchTable table(signature, 1 + in.below(9), in.once_in(2));
    std::vector<test::TypedResult> singles;
    for (std::size_t row = 0; row < table.rows; ++row) {
      test::TypedArguments before = arguments;
      for (std::size_t n = in.below(4); n > 0; --n) change(in, signature, arguments);
      const test::TypedResult direct = call_export(signature, arguments);
      test::TypedResult single = test::call_through_context(signature, arguments);
      const bool ran = single.answer == host::TypedAnswer::delivered;
      expect(direct.status == (ran ? single.status : NORVANE_NOT_RUN) && direct.outputs == single.outputs,
             id + " answers otherwise than through the context", shown(direct), shown(single));
      expect(call_export(signature, arguments).outputs == direct.outputs, id + " answers otherwise again");
      expect(direct.status == 0 || norvane_last_message()[0] != '\0', id + " does not say why", shown(direct));
      if (!fits(signature, arguments)) {
        arguments = before;
        for (std::size_t i = 0; i < arguments.lists.size(); ++i)
          if (!arguments.lists[i].empty()) arguments.values[i].data = arguments.lists[i].data();  // its own
        single = test::call_through_context(signature, arguments);
      }
      if (!fits(signature, arguments)) return;
      table.put(signature, arguments, row);
      singles.push_back(std::move(single));
    }
    if (in.once_in(4) && !table.columns.empty()) {  // what no batch can be
      host::Column& column = table.columns[in.below(table.columns.size())];
      const host::Column kept = column;
      column.cells = in.once_in(2) ? in.below(30) : SIZE_MAX / (1 + in.below(9));
      column.values = in.once_in(2) ? nullptr : column.values;
      column.row_step = in.once_in(2) ? SIZE_MAX / (1 + in.below(9)) : column.row_step;
      if (column.values == nullptr || (column.cells > kept.cells && column.cells > 65536)) table.run(signature);
      column = kept;
    }
    table.run(signature);
    for (std::size_t row = 0; row < table.rows; ++row) {
      const std::string fault = table.fault(signature, row, singles[row]);
      expect(fault.empty(), id + ": row " + std::to_string(row), fault);
    }
  }
}

}  // namespace norvane::fuzz
