// Batches: every row is the single call with its numbers, whatever stands in the rows beside it.
#include "hosts/module/batch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <thread>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "framework/binding.h"
#include "hosts/module/direct_call.h"
#include "hosts/module/typed_call.h"
#include "tests/module/batch_table.h"

namespace {
thread_local std::size_t allocations = 0, refused_allocation = 0;  // the number of the one that finds no memory
}

// The sanitizers bring an allocator of their own, whose calls have to match.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool counts_allocations = false;
#else
constexpr bool counts_allocations = true;
void* operator new(std::size_t size) {
  void* memory = ++allocations == refused_allocation ? nullptr : std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace norvane::host {
namespace {

using Table = test::BatchTable;
using test::TypedArguments;
using test::TypedResult;

// A random call whose lists a table can hold.
TypedArguments random_arguments(const Signature& signature, std::uint64_t& number) {
  while (true) {
    TypedArguments arguments(signature, number++);
    bool fits = true;
    for (std::size_t i = 0; i < signature.inputs.size(); ++i)
      fits = fits && (signature.inputs[i].passing != Passing::range ||
                      arguments.lists[i].size() >= signature.plan.inputs[i].cells);
    if (fits) return arguments;
  }
}

void expect_row(const Signature& signature, const Table& table, std::size_t row, const TypedResult& single) {
  EXPECT_EQ(table.fault(signature, row, single), "");
}

TEST(Batch, ARowOfEveryFunctionIsTheSingleCall) {
  constexpr std::size_t rows = 96;
  std::size_t good = 0, failed = 0;
  for (std::uint32_t id = 1; id <= interface_order().size(); ++id) {
    const Signature& signature = *find_signature(id);
    SCOPED_TRACE(to_utf8(signature.spec->id));
    ASSERT_TRUE(signature.plan.complete);
    Table table(signature, rows, id % 2 == 0);
    std::vector<TypedResult> singles;
    std::uint64_t number = 0;
    for (std::size_t row = 0; row < rows; ++row) {
      const TypedArguments arguments = random_arguments(signature, number);
      table.put(signature, arguments, row);
      singles.push_back(test::call_through_context(signature, arguments));
    }
    const std::size_t answer = table.run(signature);
    EXPECT_EQ(last_message(), u"");
    std::size_t with_status = 0;
    for (std::size_t row = 0; row < rows; ++row) {
      SCOPED_TRACE(row);
      expect_row(signature, table, row, singles[row]);
      with_status += table.statuses[row] != 0;
    }
    EXPECT_EQ(answer, with_status);
    good += rows - with_status;
    failed += with_status;
    if (HasFailure()) return;
  }
  // Neither kind of row is rare.
  EXPECT_GT(good, 3000u);
  EXPECT_GT(failed, 1500u);
}

// ---- A function of its own ---------------------------------------------------------------------------------------

enum class Mode : int { plain = 1, remarked = 2, failing = 3, refusing = 4, endless = 5, delivering = 6 };

struct Given {
  double a = 0.0;
  double b = 0.0;
  Mode mode = Mode::plain;
  bool negative = false;
  std::array<double, 3> list{};
  double untold = 40.0;  // no line fills it
};

struct Found {
  double sum = -1.0;
  double code = 3.0;
  int mode = 9;
};

struct Calls {
  int single = 0;
};

Outcome add(const Given& in, Found& out, Calls& calls) noexcept {
  ++calls.single;
  out.sum = in.a + in.b + in.list[0] + in.list[1] + in.list[2] + in.untold;
  if (in.negative) out.sum = -out.sum;
  out.mode = static_cast<int>(in.mode);
  switch (in.mode) {
    case Mode::remarked: return remark(u"is far");
    case Mode::failing: return failure(no_convergence, u"does not end");
    case Mode::refusing: return failure(refused, u"cannot be");
    case Mode::endless: out.sum = std::numeric_limits<double>::infinity(); return {};
    case Mode::delivering: return failure(calculation_error, u"is no more").but_delivered();
    default: return {};
  }
}

// Does the plain rows of an even place, and spoils what it leaves; an argument that does not fit must not get here.
std::size_t together = 0;
void add_rows(const Given* in, Found* out, bool* done, std::size_t rows, Calls& calls) noexcept {
  together += rows;
  for (std::size_t i = 0; i < rows; ++i) {
    if (in[i].a < 0.0 || in[i].a > 100.0) std::abort();
    const int before = calls.single;
    done[i] = add(in[i], out[i], calls).good() && in[i].mode == Mode::plain && i % 2 == 0;
    calls.single = before;
    if (!done[i]) out[i] = {1.0, 2.0, 3};
  }
}

constexpr record::Conversion doubled{[](double x) noexcept { return x * 2; },
                                     [](double x) noexcept { return x / 2; }};
constexpr record::Option modes[] = {{1, u"Plain"}, {2, u"B"}, {3, u"C"}, {4, u"D"}, {5, u"E"}, {6, u"F"}};
constexpr record::Input inputs[] = {
    record::name_input(),
    in<&Given::a>(record::input(u"a", u"", u"", data_type::num).within(0, 50).through(doubled)),
    in<&Given::b>(record::input(u"b", u"", u"", data_type::num).otherwise(0.5)),
    in<&Given::mode>(record::input(u"mode", u"", u"", data_type::integer).options(modes).otherwise(1)),
    in<&Given::negative>(record::input(u"negative", u"", u"", data_type::boolean).otherwise(false)),
    in<&Given::list>(record::input(u"list", u"", u"", data_type::num).range().left_out_as_zeros()),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    out<&Found::sum>(record::output(u"sum", u"", u"", data_type::num, u"").through(doubled)),
    out<&Found::code>(record::output(u"code", u"", u"", data_type::num, u"").always()),
    out<&Found::mode>(record::output(u"mode", u"", u"", data_type::integer, u"")),
};
constexpr record::Function record_one_by_one = {.id = u"One",
                                                .flags = FUNCTION_FALLBACK,
                                                .name_input = 0,
                                                .inputs = inputs,
                                                .outputs = outputs,
                                                .binding = &bound<add>};
constexpr record::Function record_together = {.id = u"Together",
                                              .flags = FUNCTION_FALLBACK,
                                              .name_input = 0,
                                              .inputs = inputs,
                                              .outputs = outputs,
                                              .binding = &bound<add, add_rows>};

class OwnFunction : public ::testing::TestWithParam<bool> {
 protected:
  // Its place among the functions of a thread belongs to a general function, which keeps nothing there.
  const Function_CFunctionSpec spec{GetParam() ? record_together : record_one_by_one};
  const Signature signature = make_signature(spec);

  void SetUp() override {
    std::uint64_t number = 7;
    test::Random random(11);
    for (std::size_t row = 0; row < table.rows; ++row, ++number) {
      table.cell(0, row, 0) = row % 13 == 12 ? random.hostile(-1, 60) : random.within(0, 50);
      table.cell(1, row, 0) = random.hostile(-9, 9);
      table.cell(2, row, 0) = row % 3 != 0 ? 1 : random.whole(0, 8);
      table.cell(3, row, 0) = random.whole(0, 3);
      for (std::size_t cell = 0; cell < 3; ++cell) table.cell(4, row, cell) = random.hostile(-5, 5);
    }
  }
  // The single calls of the table's rows, in a state of their own each.
  TypedResult single(std::size_t row) {
    TypedArguments arguments(signature, 0);
    for (std::size_t i = 0; i < 4; ++i) {
      const Column& column = table.columns[i];
      const double value = column.values[row * column.row_step];
      arguments.values[i] = {{.number = value}, 0};
      if (i >= 2) arguments.values[i] = {{.option = static_cast<std::uint32_t>(value)}, 0};
    }
    std::vector<double> list;
    const Column& column = table.columns[4];
    for (std::size_t cell = 0; column.values != nullptr && cell < 3; ++cell)
      list.push_back(column.values[row * column.row_step + cell * column.cell_step]);
    arguments.values[4] = {{.data = list.data()}, static_cast<std::uint32_t>(list.size())};
    return test::call_through_context(signature, arguments);
  }
  void expect_rows() {
    table.run(signature);
    for (std::size_t row = 0; row < table.rows; ++row) {
      SCOPED_TRACE(row);
      expect_row(signature, table, row, single(row));
    }
  }

  Table table{signature, 1000, true};
};

INSTANTIATE_TEST_SUITE_P(Batch, OwnFunction, ::testing::Bool());

TEST_P(OwnFunction, RowsKeepTheirOwnWhateverStandsBesideThem) {
  together = 0;
  expect_rows();
  EXPECT_EQ(together, GetParam() ? table.rows : 0u);
  std::size_t kinds[3] = {};
  for (std::uint32_t status : table.statuses) ++kinds[status == 0 ? 0 : status == batch_not_run ? 2 : 1];
  for (std::size_t count : kinds) EXPECT_GT(count, 50u);
}

TEST_P(OwnFunction, ColumnsMayBeConstantStridedOrLeftOut) {
  expect_rows();
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    SCOPED_TRACE(i);
    const Column before = table.columns[i];
    table.columns[i].row_step = 0;
    expect_rows();
    table.columns[i] = before;
    if (i == 1 || i == 4) {
      // Behind batches that were given it: nothing of theirs is left.
      table.columns[i] = {};
      table.run(signature);
      for (std::size_t row = 0; row < 20; ++row) {
        if (table.statuses[row] != 0) continue;
        double sum = 40.0 + 2 * table.cell(0, row, 0);
        sum += i == 1 ? 0.5 : table.cell(1, row, 0);
        for (std::size_t cell = 0; i == 1 && cell < 3; ++cell) sum += table.cell(4, row, cell);
        EXPECT_NEAR(std::fabs(table.outputs[0][row]), std::fabs(sum) / 2, 1e-12 * std::fabs(sum));
      }
      table.columns[i] = before;
    }
  }
  // Rows of a wider table, from the last to the first.
  std::vector<double> wide(3 * table.rows);
  for (std::size_t row = 0; row < table.rows; ++row) wide[3 * row + 1] = 0.01 * static_cast<double>(row);
  table.columns[0] = {wide.data() + 1, 3, 1, 0};
  expect_rows();
  table.columns[0].values = wide.data() + 4;
  table.rows = 1;
  expect_rows();
}

TEST_P(OwnFunction, NumbersThatAreNoOptionAreRefused) {
  const double wrong[] = {1.5, std::numeric_limits<double>::quiet_NaN(), 4294967296.0, -2147483649.0,
                          std::numeric_limits<double>::infinity()};
  for (std::size_t i = 2; i < 4; ++i) {
    for (std::size_t row = 0; row < table.rows; ++row) {
      table.cell(0, row, 0) = 1;
      table.cell(2, row, 0) = table.cell(3, row, 0) = 1;
      if (row < std::size(wrong)) table.cell(i, row, 0) = wrong[row];
    }
    table.run(signature);
    for (std::size_t row = 0; row < 2 * std::size(wrong); ++row) {
      EXPECT_EQ(table.statuses[row] == batch_not_run, row < std::size(wrong));
      EXPECT_EQ(std::isnan(table.outputs[1][row]), row < std::size(wrong));
    }
  }
}

TEST_P(OwnFunction, ABatchThatCannotBeWritesNothingAndSaysWhy) {
  const auto refused = [&](auto&& spoil, std::u16string_view message) {
    Table spoiled(signature, 4, false);
    std::size_t rows = 4;
    std::uint32_t* statuses = spoiled.statuses.data();
    std::span<const Column> in = spoiled.columns;
    std::span<double* const> out = spoiled.places;
    spoil(spoiled, rows, statuses, in, out);
    EXPECT_EQ(run_batch(signature, rows, in, out, statuses), batch_refused);
    EXPECT_EQ(last_message(), std::u16string(spec.id).append(u": ").append(message));
    EXPECT_FALSE(spoiled.written());
  };
  using In = std::span<const Column>;
  using Out = std::span<double* const>;
  refused([](Table&, std::size_t&, std::uint32_t*& statuses, In&, Out&) { statuses = nullptr; },
          u"the statuses have no place to go to");
  refused([](Table&, std::size_t&, std::uint32_t*&, In& in, Out&) { in = in.first(4); }, u"takes 5 inputs");
  refused(
      [](Table&, std::size_t&, std::uint32_t*&, In& in, Out&) {
        in = {static_cast<const Column*>(nullptr), 5};
      },
      u"the inputs are missing");
  refused([](Table&, std::size_t&, std::uint32_t*&, In&, Out& out) { out = out.first(2); },
          u"has 3 outputs behind the status");
  refused(
      [](Table&, std::size_t&, std::uint32_t*&, In&, Out& out) {
        out = {static_cast<double* const*>(nullptr), 3};
      },
      u"the outputs are missing");
  refused([](Table&, std::size_t& rows, std::uint32_t*&, In&, Out&) { rows = SIZE_MAX; },
          u"has more rows than any memory");
  refused([](Table& t, std::size_t&, std::uint32_t*&, In&, Out&) { t.columns[0] = {}; },
          u"[2] a cannot be left out: it has no default");
  refused([](Table& t, std::size_t&, std::uint32_t*&, In&, Out&) { t.columns[1].cells = 0; },
          u"[3] b is a single value: its cells must be 1");
  refused([](Table& t, std::size_t&, std::uint32_t*&, In&, Out&) { t.columns[4].cells = 2; },
          u"[6] list needs a list of 3 numbers");
  refused([](Table& t, std::size_t&, std::uint32_t*&, In&, Out&) { t.columns[4].cells = SIZE_MAX; },
          u"[6] list is not a list of at most 65536 numbers");
  refused([](Table& t, std::size_t&, std::uint32_t*&, In&, Out&) { t.columns[4].cell_step = SIZE_MAX / 4; },
          u"[6] list is larger than any memory");
  EXPECT_EQ(refuse_unknown_batch(), batch_refused);
  EXPECT_EQ(last_message(), u"there is no such function");
  EXPECT_EQ(run_batch(signature, 0, table.columns, table.places, nullptr), 0u);
}

TEST(Batch, NothingIsAllocatedOnceTheThreadIsWarm) {
  if (!counts_allocations) GTEST_SKIP() << "a sanitizer's allocator is not counted";
  const Signature& signature = *find_signature(u"AGA8_M");
  Table table(signature, 300, false);
  std::uint64_t number = 0;
  for (std::size_t row = 0; row < table.rows; ++row) table.put(signature, random_arguments(signature, number), row);
  table.run(signature);
  const std::size_t before = allocations;
  table.run(signature);
  EXPECT_EQ(allocations, before);
}

TEST(Batch, ThreadsDoNotMeet) {
  const Signature& signature = *find_signature(u"AGA8_M");
  Table table(signature, 200, false);
  std::uint64_t number = 0;
  for (std::size_t row = 0; row < table.rows; ++row) table.put(signature, random_arguments(signature, number), row);
  table.run(signature);
  std::vector<std::thread> threads;
  std::vector<int> different(4);
  for (int& count : different) {
    threads.emplace_back([&count, &signature, &table] {
      Table own(signature, table.rows, false);
      own.columns = table.columns;
      for (int round = 0; round < 5; ++round) own.run(signature);
      count = own.statuses != table.statuses;
      for (std::size_t k = 0; k < own.outputs.size(); ++k)
        count += std::memcmp(own.outputs[k].data(), table.outputs[k].data(), table.rows * sizeof(double)) != 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(different, std::vector<int>(4));
}

// Each time on a new thread, where the first call sets everything up.
TEST(Batch, MemoryRefusedAtAnyRequestIsSaidAndForgotten) {
  if (!counts_allocations) GTEST_SKIP() << "a sanitizer's allocator refuses nothing";
  std::size_t refusals = 0;
  for (std::uint32_t id = 1; id <= interface_order().size(); ++id) {
    const Signature& signature = *find_signature(id);
    SCOPED_TRACE(to_utf8(signature.spec->id));
    std::uint64_t number = 0;
    const TypedArguments arguments = random_arguments(signature, number);
    const TypedResult expected = test::call_through_context(signature, arguments);
    const auto refuse = [&](std::size_t n) {
      Table table(signature, 2, false);
      for (std::size_t row = 0; row < table.rows; ++row) table.put(signature, arguments, row);
      TypedResult result;
      result.outputs.assign(signature.outputs.size(), 0);
      std::vector<void*> places;
      for (std::uint64_t& output : result.outputs) places.push_back(&output);
      test::TypedTestCaller caller(arguments.values.data(), places.data());
      const auto call = [&] {
        if (direct_call(signature, arguments.values.data(), places.data()))
          result.answer = TypedAnswer::delivered;
        else
          result.answer = TypedCall::make(signature, caller, result.status);
      };
      allocations = 0;
      refused_allocation = n;
      bool thrown = false;
      try {
        call();
      } catch (const std::bad_alloc&) {  // the exports catch it
        thrown = true;
      }
      const bool made = !thrown && result.answer == TypedAnswer::delivered;
      const std::size_t failed = table.run(signature);
      const bool met = allocations >= n;
      refused_allocation = 0;
      EXPECT_TRUE(failed != batch_refused || !last_message().empty());
      for (int again = 0; again < 2; ++again) {
        if (again == 1 || made) {
          EXPECT_EQ(result.status, expected.status) << n;
          EXPECT_EQ(result.outputs, expected.outputs) << n;
        }
        for (std::size_t row = 0; (again == 1 || failed != batch_refused) && row < table.rows; ++row)
          EXPECT_EQ(table.fault(signature, row, expected), "") << n;
        call();
        table.run(signature);
      }
      refusals += met;
      return met;
    };
    bool more = true;
    for (std::size_t n = 1; more; ++n) std::thread([&] { more = refuse(n); }).join();
    if (HasFailure()) return;
  }
  EXPECT_GT(refusals, 500u);
}

// Functions, names and hostile arguments in any order, through the context and directly.
TEST(Threads, MixedCallsAnswerAsOneThreadDoes) {
  const auto specs = catalogue::specifications();
  const std::size_t calls = specs.size() * 6;
  const auto answers = [&](std::size_t first) {
    std::vector<std::string> all(calls);
    std::size_t direct = 0;
    for (std::size_t i = 0; i < calls; ++i) {
      const std::size_t number = (first + i * 211) % calls;
      const Function_CFunctionSpec& spec = *specs[number % specs.size()];
      test::Arguments arguments;
      test::RandomCall(spec, number / specs.size() + number % 16, arguments);
      {
        HeldContext held(nullptr);
        FUNCTION_ARG output = FUNCTION_ARG::Empty();
        std::uint32_t flags = 0;
        const std::uint32_t status = held.context().Execute(spec, arguments.values.data(), arguments.values.size(),
                                                            output, flags, held.state().slot(spec));
        all[number] = std::to_string(status) + " " + test::bits_of(output);
      }
      const Signature* signature = find_signature(spec.id);
      if (signature == nullptr) continue;
      const TypedArguments typed(*signature, number % 16);
      std::vector<std::uint64_t> words(signature->outputs.size());
      std::vector<void*> places;
      for (std::uint64_t& word : words) places.push_back(&word);
      direct += direct_call(*signature, typed.values.data(), places.data());
      for (std::uint64_t word : words) all[number] += " " + std::to_string(word);
    }
    EXPECT_GT(direct, calls / 5);
    return all;
  };
  const std::vector<std::string> expected = answers(0);
  std::vector<std::vector<std::string>> found(8);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < found.size(); ++t) threads.emplace_back([&, t] { found[t] = answers(t * 97); });
  for (std::thread& thread : threads) thread.join();
  for (const auto& each : found) EXPECT_EQ(each, expected);
}

}  // namespace
}  // namespace norvane::host
