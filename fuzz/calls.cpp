// Calls of any function through the context, one behind the other: arguments of a realistic or hostile call, some of
// them replaced by anything. The thread's context, with all it remembers, answers what a new one does.
#include "catalogue/catalogue.h"
#include "fuzz/fuzz.h"
#include "hosts/module/module.h"
#include "tests/support/random_calls.h"

namespace norvane::fuzz {
namespace {

FUNCTION_ARG any_value(Input& in, test::Arguments& pool, int depth = 0) {
  switch (in.below(depth < 3 ? 12 : 9)) {
    default: return FUNCTION_ARG::Number(in.number());
    case 2: return FUNCTION_ARG::Integer(in.take<std::int32_t>());
    case 3: return FUNCTION_ARG::Boolean(in.once_in(2));
    case 4: return pool.text(to_utf16(in.text()));
    case 5: return FUNCTION_ARG::Missing();
    case 6: return FUNCTION_ARG::Error(in.take<std::uint8_t>());
    case 7: return FUNCTION_ARG::Empty();
    case 8: {
      FUNCTION_ARG none{};
      none.kind = in.take<std::uint8_t>() | 16u;
      return none;
    }
    case 9: return FUNCTION_ARG::OfArray(in.take<std::uint8_t>(), in.take<std::uint8_t>(), nullptr);
    case 10: {
      const std::size_t columns = 1 + in.below(4);
      std::vector<FUNCTION_ARG> cells(columns * in.below(30));
      for (FUNCTION_ARG& cell : cells)
        cell = in.once_in(4) ? any_value(in, pool, depth + 1) : FUNCTION_ARG::Number(0.01);
      return pool.cells(std::move(cells), static_cast<std::uint32_t>(columns));
    }
  }
}

std::string answer(Function_CContext& context, const Function_CFunctionSpec& spec, std::vector<FUNCTION_ARG> args,
                   std::uint64_t* slot) {
  std::uint32_t flags = 0;
  FUNCTION_ARG output = FUNCTION_ARG::Missing();
  context.Reset();
  const std::uint32_t status = context.Execute(spec, args.data(), args.size(), output, flags, slot);
  expect(status != ERROR_OK || test::all_finite(output), "an output is not finite", to_utf8(spec.id),
         test::bits_of(output));
  return std::to_string(status) + " " + std::to_string(flags) + " " + test::bits_of(output);
}

}  // namespace

void calls(Input& in) {
  const host::Module& module = *host::module();
  const auto specs = catalogue::specifications();
  while (in.more()) {
    const Function_CFunctionSpec& spec = *specs[in.below(specs.size())];
    test::Arguments arguments;
    test::RandomCall(spec, in.take<std::uint16_t>(), arguments);
    for (std::size_t n = in.below(8); n > 0 && !arguments.values.empty(); --n) {
      const std::size_t place = in.below(arguments.values.size());
      FUNCTION_ARG& value = arguments.values[place];
      if (value.kind == ARG_ARRAY && value.array.elements != nullptr && value.count() != 0 && in.once_in(2))
        value.array.elements[in.below(value.count())] = any_value(in, arguments, 1);
      else
        value = any_value(in, arguments);
    }
    host::Module_CFunctionContext fresh(module.library, module.units);
    fresh.EnableMessages(in.once_in(2));
    const std::string first = answer(fresh, spec, arguments.values, nullptr);
    host::ThreadState& thread = *host::thread_state();
    const std::string second = answer(thread.context(), spec, arguments.values, thread.slot(spec));
    expect(first == second, to_utf8(spec.id) + " answers otherwise with what it remembers", first, second);
  }
}

}  // namespace norvane::fuzz
