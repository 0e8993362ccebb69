// The parts of the Excel host that no spreadsheet shows: texts of registration, conversions in both dialects at once,
// the calling place, and that a warm call allocates nothing. The process is a host of its own, of a few answers.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "framework/call.h"
#include "framework/data_accessor.h"
#include "hosts/excel/convert.h"
#include "hosts/excel/excel_context.h"
#include "hosts/excel/host.h"
#include "hosts/excel/registration.h"
#include "hosts/excel/sinks.h"
#include "hosts/excel/wrappers.h"
#include "tests/hosts/excel/values.h"
#include "units/unit_catalogue.h"

namespace {

std::size_t allocations = 0, refused_allocation = 0;  // the number of the one that finds no memory

}  // namespace

__attribute__((noinline)) void* operator new(std::size_t size) {
  if (void* memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
__attribute__((noinline)) void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return ++allocations == refused_allocation ? nullptr : std::malloc(size > 0 ? size : 1);
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using namespace norvane;
using namespace norvane::excel;

// ---- The host ----------------------------------------------------------------------------------------------------

struct FakeHost {
  sheet::Place caller{0, 4, 2, 4, 2};
  std::u16string sheet = u"[Book]Sheet";
  bool knows_sheet = true;
  bool uncalculated = false;
  void (*recalculate)(std::size_t argument_count) = nullptr;  // what the host does before it answers for a cell
  XlRecord12 cell{};
  std::vector<std::u16string> menu;
  bool refuses_commands = false;
  std::map<int, int> calls;
  std::vector<std::u16string> registered;
  std::vector<std::size_t> longest_text;  // of each registration
  sheet::CallMemory memory;
};
FakeHost fake;

int answer_for(int function, int count, XlRecord12** args, XlRecord12* result) {
  ++fake.calls[function];
  const auto answer = [result](const sheet::Value& value) {
    sheet::Write(value, *result, fake.memory);
    return int{XL_RETURN_SUCCESS};
  };
  const auto text = [args](int i) { return sheet::Read(*args[i]).text; };
  switch (function) {
    case XL_FREE: return XL_RETURN_SUCCESS;
    case XL_GET_NAME: return answer(sheet::Text(u"/a/Norvane.so"));
    case XLF_REGISTER: {
      fake.registered.push_back(text(3));
      std::size_t longest = 0;
      for (int i = 0; i < count; ++i) longest = std::max(longest, text(i).size());
      fake.longest_text.push_back(longest);
      return answer(fake.refuses_commands && text(2) == u"A" ? sheet::Error(XL_ERROR_VALUE) : sheet::Number(1));
    }
    case XLF_ADD_COMMAND:
      fake.menu.push_back(sheet::Read(*args[2]).elements[0].text);
      return answer(sheet::Number(1));
    case XLF_DELETE_COMMAND: std::erase(fake.menu, text(2)); return answer(sheet::Boolean(true));
    case XLF_CALLER: return answer(sheet::Reference(fake.caller));
    case XL_SHEET_NAME: return fake.knows_sheet ? answer(sheet::Text(fake.sheet)) : int{XL_RETURN_FAILED};
    case XL_COERCE:
      if (fake.recalculate != nullptr) fake.recalculate(2);
      return fake.uncalculated ? int{XL_RETURN_UNCALCULATED} : answer(sheet::Number(42));
    default: return XL_RETURN_INVALID_FUNCTION;
  }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int MdCallBack12(int function, int count, XlRecord12** args,
                                                                   XlRecord12* result) {
  const std::size_t before = allocations;  // what the host itself takes does not count
  const std::size_t refused = std::exchange(refused_allocation, 0);
  const int code = answer_for(function, count, args, result);
  allocations = before;
  refused_allocation = refused;
  return code;
}

namespace {

struct Message {
  std::u16string title;
  std::u16string text;
};
std::vector<Message> messages;

class ExcelUnit : public testing::Test {
 protected:
  void SetUp() override {
    remove_menu_entry();
    fake = {};
    messages.clear();
    set_sinks({[](std::u16string_view title, std::u16string_view text) noexcept {
                 messages.push_back({std::u16string(title), std::u16string(text)});
               },
               [](std::u16string_view) noexcept {}, []() noexcept {}});
    bind_host();
  }
  const Unit_CTypeAndUnitContainer& units() { return Unit_CTypeAndUnitContainer::Instance(); }
};

const Function_CGroup test_group{u"Test", u"Functions of this test", u"nv", 1, {}};
const Function_CGroup bare_group{u"Bare", u"Without prefix", u"", 1, {}};

Function_CFunctionSpec make_spec(std::vector<std::u16string_view> keys, std::uint32_t flags = 0,
                                 const Function_CGroup& group = test_group) {
  Function_CFunctionSpec spec(group, nullptr, u"Fn", u"Fn", u"Help.", u"General", flags, keys.size(), 1);
  for (std::size_t i = 0; i < keys.size(); ++i) spec.inputs[i].key = keys[i];
  return spec;
}

// ---- Registration ------------------------------------------------------------------------------------------------

TEST_F(ExcelUnit, DescribesArguments) {
  Function_CFunctionSpec plain = make_spec({u"a", u"b", u"c"}, FUNCTION_VOLATILE);
  plain.inputs[2].flags = INPUT_OPTIONAL;
  const Registration in12 = describe_function(plain, units(), limits_of(true));
  EXPECT_EQ(in12.procedure, u"xlWrapper12_Test_Fn");
  EXPECT_EQ(in12.function, u"nvFn");
  EXPECT_EQ(in12.type, u"UUUU$!");
  EXPECT_EQ(in12.arguments, u"a,b,[c]");
  EXPECT_EQ(in12.macro_type, u"1");
  const Registration in4 = describe_function(plain, units(), limits_of(false));
  EXPECT_EQ(in4.procedure, u"xlWrapper4_Test_Fn");
  EXPECT_EQ(in4.type, u"RRRR!");

  const Function_CFunctionSpec list = make_spec({u"Name", u"comp"}, FUNCTION_VARIABLE_INPUTS);
  const Registration list4 = describe_function(list, units(), limits_of(false));
  EXPECT_TRUE(list4.arguments.starts_with(u"Name,comp1,[comp2],[comp3],"));
  EXPECT_TRUE(list4.arguments.ends_with(u",[comp19]"));
  EXPECT_EQ(list4.type.size(), 21u);
  EXPECT_EQ(list4.argument_helps.size(), 20u);
  EXPECT_EQ(describe_function(list, units(), limits_of(true)).type.size(), 32u);
  const Function_CFunctionSpec none = make_spec({}, FUNCTION_VARIABLE_INPUTS);
  EXPECT_EQ(describe_function(none, units(), limits_of(true)).type, u"U$");

  const Registration bare = describe_function(make_spec({u"a"}, 0, bare_group), units(), limits_of(true));
  EXPECT_EQ(bare.function, u"Bare_Fn");
  EXPECT_EQ(bare.macro_type, u"0");
  EXPECT_EQ(describe_function(make_spec({u"a"}, FUNCTION_HIDDEN), units(), limits_of(true)).macro_type, u"0");
}

TEST_F(ExcelUnit, WritesUnitAndRangeBeforeTheHelp) {
  Function_CFunctionSpec spec = make_spec({u"p", u"t", u"x", u"n"});
  for (std::size_t i = 0; i < 4; ++i) spec.inputs[i].description = u"Text.";
  spec.inputs[0].type = unit::bar_a;
  spec.inputs[0].minimum = 0.5;
  spec.inputs[0].maximum = 1e20;
  spec.inputs[0].flags = INPUT_HAS_MINIMUM | INPUT_HAS_MAXIMUM;
  spec.inputs[1].minimum = -100;
  spec.inputs[1].flags = INPUT_HAS_MINIMUM;
  spec.inputs[2].maximum = 0.1;
  spec.inputs[2].flags = INPUT_HAS_MAXIMUM;
  const Registration texts = describe_function(spec, units(), limits_of(true));
  EXPECT_EQ(texts.argument_helps[0], u"[bar(a)][0.5..1e+20] Text.");
  EXPECT_EQ(texts.argument_helps[1], u"[>=-100] Text.");
  EXPECT_EQ(texts.argument_helps[2], u"[<=0.1] Text.");
  EXPECT_EQ(texts.argument_helps[3], u"Text.  ");
}

TEST_F(ExcelUnit, KeepsEveryTextWithinTheHostsLimit) {
  std::u16string words;
  while (words.size() < 400) words += u"word ";
  Function_CFunctionSpec spec = make_spec({u"a", u"b"});
  spec.description = words;
  spec.inputs[0].description = words;
  spec.inputs[1].description = words;
  const Registration texts = describe_function(spec, units(), limits_of(true));
  EXPECT_EQ(texts.help, words.substr(0, 254));  // 51 words of four letters and 50 blanks
  EXPECT_LE(texts.argument_helps[0].size(), 255u);
  EXPECT_LE(texts.argument_helps[1].size(), 255u);
  EXPECT_TRUE(texts.argument_helps[1].ends_with(u"word  "));
  EXPECT_EQ(cut_text(std::u16string(300, u'x')).size(), 255u);
  EXPECT_EQ(cut_text(std::u16string(254, u'x') + u"\xD83D\xDE00").size(), 254u);
}

TEST_F(ExcelUnit, TellsTheDeveloperOfLongNamesAndRegistersAllTheSame) {
  std::vector<std::u16string> keys;
  std::vector<std::u16string_view> views;
  for (int i = 0; i < 30; ++i) keys.push_back(u"argument" + std::u16string(1, static_cast<char16_t>(u'a' + i)));
  for (const std::u16string& key : keys) views.push_back(key);
  const Function_CFunctionSpec spec = make_spec(views);
  Function_CLibrary library;
  library.Register(spec);
  register_all(library, units());
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].title, u"MESSAGE FOR DEVELOPER");
  EXPECT_EQ(messages[0].text,
            u"The argument-names string for function 'nvFn' + the name-length (total=303) should not exceed 252 "
            u"characters");
  EXPECT_EQ(fake.registered, (std::vector<std::u16string>{u"AboutBox", u"nvFn"}));
  EXPECT_LE(fake.longest_text.back(), 255u);
}

TEST_F(ExcelUnit, HasOneEntryInTheMenuWhileOpen) {
  const Function_CLibrary library;
  fake.refuses_commands = true;
  register_all(library, units());
  EXPECT_TRUE(fake.menu.empty());
  fake.refuses_commands = false;
  for (int i = 0; i < 2; ++i) register_all(library, units());
  EXPECT_EQ(fake.menu, std::vector<std::u16string>{u"About Norvane"});
  for (int i = 0; i < 2; ++i) remove_menu_entry();
  EXPECT_TRUE(fake.menu.empty());
  EXPECT_EQ(fake.calls[XLF_DELETE_COMMAND], 1);
}

TEST_F(ExcelUnit, BindsOnce) {
  EXPECT_EQ(bind_host(), BIND_ALREADY);
  EXPECT_TRUE(host_speaks_12());
}

// ---- Conversions -------------------------------------------------------------------------------------------------

class ExcelConversion : public ExcelUnit {
 protected:
  ExcelConversion() : context_(library_, units(), 0) {}
  template <class Record>
  Record Out(const FUNCTION_ARG& arg) {
    Record record{};
    EXPECT_TRUE(to_record(context_, arg, record));
    return record;
  }
  Function_CLibrary library_;
  XLL_CFunctionContext context_;
};

TEST_F(ExcelConversion, SplitsWholeNumbersByTheirUnsignedValue) {
  EXPECT_EQ(Out<XlRecord12>(FUNCTION_ARG::Integer(65535)).type, XL_INTEGER);
  EXPECT_EQ(Out<XlRecord12>(FUNCTION_ARG::Integer(65535)).integer, 65535);
  EXPECT_EQ(Out<XlRecord12>(FUNCTION_ARG::Integer(70000)).type, XL_NUMBER);
  EXPECT_EQ(Out<XlRecord12>(FUNCTION_ARG::Integer(70000)).number, 70000.0);
  EXPECT_EQ(Out<XlRecord12>(FUNCTION_ARG::Integer(-1)).type, XL_NUMBER);
  EXPECT_EQ(Out<XlRecord12>(FUNCTION_ARG::Integer(-1)).number, -1.0);
  EXPECT_EQ(Out<XlRecord4>(FUNCTION_ARG::Integer(40000)).type, XL_INTEGER);
  EXPECT_EQ(Out<XlRecord4>(FUNCTION_ARG::Integer(40000)).integer, -25536);
  EXPECT_EQ(Out<XlRecord4>(FUNCTION_ARG::Integer(-1)).number, -1.0);
}

TEST_F(ExcelConversion, CutsTextsToWhatTheDialectHolds) {
  const auto text = [this](std::size_t length, char16_t unit) {
    FUNCTION_ARG arg;
    EXPECT_TRUE(context_.SetText(arg, std::u16string(length, unit)));
    return arg;
  };
  for (const std::size_t length : {0u, 1u, 84u, 85u, 253u, 254u, 255u, 300u}) {
    const XlRecord4 plain = Out<XlRecord4>(text(length, u'x'));
    ASSERT_EQ(plain.string[0], std::min<std::size_t>(length, 254)) << length;
    EXPECT_EQ(plain.string[1 + plain.string[0]], '\0');
    // Characters of several bytes: as many as fit.
    const XlRecord4 euros = Out<XlRecord4>(text(length, u'\u20AC'));
    ASSERT_EQ(euros.string[0], 3 * std::min<std::size_t>(length, 84)) << length;
    EXPECT_EQ(to_utf16({reinterpret_cast<const char*>(euros.string + 1), euros.string[0]}),
              std::u16string(euros.string[0] / 3, u'\u20AC'));
    const XlRecord12 wide = Out<XlRecord12>(text(length, u'\u20AC'));
    EXPECT_EQ(wide.string[0], length);
    EXPECT_EQ(wide.string[1 + length], u'\0');
  }
  EXPECT_EQ(Out<XlRecord12>(text(32767, u'x')).string[0], 32767);
  EXPECT_EQ(Out<XlRecord12>(text(40000, u'x')).string[0], 32767);
}

TEST_F(ExcelConversion, KeepsEveryUnitOfATextOnItsWay) {
  std::u16string content = u"\xDC00 \xD800\xD800 \xD83D\xDE00 \xFFFF";
  content += u'\0';
  std::u16string counted(1, static_cast<char16_t>(content.size()));
  counted += content;
  XlRecord12 record{};
  record.string = counted.data();
  record.type = XL_STRING;
  FUNCTION_ARG arg;
  ASSERT_TRUE(to_argument(context_, &record, arg));
  EXPECT_EQ(arg.text(), content);
  EXPECT_EQ(arg.string.data[content.size()], u'\0');
  const XlRecord12 back = Out<XlRecord12>(arg);
  EXPECT_EQ(std::u16string_view(back.string, content.size() + 1), counted);
  // The older dialect speaks the locale's encoding, UTF-8 in that of a program which asks for none.
  const auto narrow = [this](const std::string& bytes) {
    std::string record_text(1, static_cast<char>(bytes.size()));
    record_text += bytes;
    XlRecord4 record4{};
    record4.string = reinterpret_cast<unsigned char*>(record_text.data());
    record4.type = XL_STRING;
    FUNCTION_ARG read;
    EXPECT_TRUE(to_argument(context_, &record4, read));
    return std::u16string(read.text());
  };
  EXPECT_EQ(narrow("15 \xC2\xB0"
                   "C \xE2\x82\xAC \xF0\x9F\x98\x80"),
            u"15 \u00B0C \u20AC \xD83D\xDE00");
  EXPECT_EQ(narrow("\xB0\xC2"), u"\uFFFD\uFFFD");
  EXPECT_EQ(narrow(std::string(255, 'x')).size(), 255u);
}

TEST_F(ExcelConversion, TranslatesErrors) {
  constexpr std::int32_t cell_errors[] = {0, 7, 15, 23, 29, 36, 42};
  for (std::uint32_t code = 1; code <= 7; ++code) {
    EXPECT_EQ(error_of_code(code), cell_errors[code - 1]);
    XlRecord4 record{};
    record.error = static_cast<std::uint16_t>(cell_errors[code - 1]);
    record.type = XL_ERROR;
    FUNCTION_ARG arg;
    ASSERT_TRUE(to_argument(context_, &record, arg));
    EXPECT_EQ(arg.kind, ARG_ERROR);
    EXPECT_EQ(arg.error, code);
  }
  for (const std::int32_t unknown : {1, 8, 43, -1, 65535}) EXPECT_EQ(code_of_error(unknown), ERROR_VALUE);
  for (const std::uint32_t other : {0u, 8u, 9u, 12u, 99u}) EXPECT_EQ(error_of_code(other), XL_ERROR_VALUE);
  // An error among the outputs keeps its number.
  EXPECT_EQ(Out<XlRecord12>(FUNCTION_ARG::Error(7)).error, 7);
}

TEST_F(ExcelConversion, KeepsArraysAndReferences) {
  XlRecord12 elements[6]{};
  for (int i = 0; i < 6; ++i) {
    elements[i].number = i;
    elements[i].type = XL_NUMBER;
  }
  XlRecord12 array{};
  array.array.elements = elements;
  array.array.rows = 2;
  array.array.columns = 3;
  array.type = XL_ARRAY;
  FUNCTION_ARG arg;
  ASSERT_TRUE(to_argument(context_, &array, arg));
  EXPECT_EQ(arg.array.columns, 3u);
  EXPECT_EQ(arg.array.rows, 2u);
  EXPECT_EQ(Function_CContext::Element(arg, 1, 1).number, 4.0);
  elements[5].type = 0x20;  // one bad element fails all
  EXPECT_FALSE(to_argument(context_, &array, arg));
  EXPECT_FALSE(to_record(context_, FUNCTION_ARG::OfArray(1, 65536, nullptr), *std::make_unique<XlRecord4>()));

  XlAreas4 areas{1, {{3, 5, 7, 9}}};
  XlRecord4 multi{};
  multi.multi.areas = &areas;
  multi.multi.sheet = 77;
  multi.type = XL_MULTI_REFERENCE;
  ASSERT_TRUE(to_argument(context_, &multi, arg));
  EXPECT_EQ(arg.kind, ARG_MULTI_REFERENCE4);
  const XlRecord4 back = Out<XlRecord4>(arg);
  EXPECT_EQ(back.multi.sheet, 77u);
  EXPECT_NE(back.multi.areas, &areas);
  EXPECT_EQ(back.multi.areas->areas[0].last_column, 9);
  XlRecord12 single{};
  single.reference = {1, {1, 2, 3, 4}};
  single.type = XL_REFERENCE;
  ASSERT_TRUE(to_argument(context_, &single, arg));
  EXPECT_EQ(arg.kind, ARG_REFERENCE12);
  EXPECT_EQ(Out<XlRecord12>(arg).reference.area.last_column, 4);
}

// ---- The calling place -------------------------------------------------------------------------------------------

class Counter final : public Function_CData {
 public:
  int calls = 0;
};
const Function_CTypeOf<Counter> counter_type{u"Counter"};

// Counts the calls of one calling place, or of one name.
std::uint32_t count_calls(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const std::u16string_view name = call.text(0);
  if (call.failed()) return call.error();
  Function_CDataAccessor accessor;
  if (!accessor.Open(context, counter_type, name)) return ERROR_ACCESSOR;
  output = FUNCTION_ARG::Integer(++accessor.as<Counter>().calls);
  return ERROR_OK;
}

class ExcelPlace : public ExcelConversion {
 protected:
  ExcelPlace() : spec_(make_spec({u"Name"})) {
    spec_.implementation = count_calls;
    spec_.inputs[0].flags = INPUT_OPTIONAL;
  }
  std::uint32_t Run(FUNCTION_ARG arg) {
    context_.Reset();
    output_ = FUNCTION_ARG::Empty();
    return context_.Run(Dialect::excel12, spec_, &arg, 1, output_, &own_slot_);
  }
  int CallFrom(int row, int column) {
    fake.caller = sheet::Place::Cell(0, row, column);
    EXPECT_EQ(Run(FUNCTION_ARG::Missing()), ERROR_OK);
    return output_.integer;
  }
  Function_CFunctionSpec spec_;
  FUNCTION_ARG output_{};
  std::uint64_t own_slot_ = 0;
};

TEST_F(ExcelPlace, EveryCallingCellHasItsOwnData) {
  EXPECT_EQ(CallFrom(0, 0), 1);
  EXPECT_EQ(CallFrom(0, 0), 2);
  EXPECT_EQ(CallFrom(0, 1), 1);
  EXPECT_EQ(CallFrom(1048575, 16383), 1);
  fake.sheet = u"[Book]Other";
  EXPECT_EQ(CallFrom(0, 0), 1);
  fake.sheet = u"[Book]Sheet";
  EXPECT_EQ(CallFrom(0, 0), 3);
  EXPECT_EQ(own_slot_, 0u);
  // Without a sheet's name: the slot that the call was started with.
  fake.knows_sheet = false;
  EXPECT_EQ(CallFrom(0, 0), 1);
  EXPECT_EQ(CallFrom(0, 1), 2);
  EXPECT_NE(own_slot_, 0u);
}

TEST_F(ExcelPlace, KeepsTheDataOfSoManyCellsAndOfEveryName) {
  constexpr int most = static_cast<int>(Excel_CFunctionContext::most_cells);
  FUNCTION_ARG name;
  const auto call_named = [&] {
    fake.caller = sheet::Place::Cell(0, most, 9);
    context_.Reset();
    EXPECT_TRUE(context_.SetText(name, u"Kept"));
    output_ = FUNCTION_ARG::Empty();
    EXPECT_EQ(context_.Run(Dialect::excel12, spec_, &name, 1, output_, &own_slot_), ERROR_OK);
    return output_.integer;
  };
  EXPECT_EQ(call_named(), 1);
  for (int row = 0; row < most; ++row) EXPECT_EQ(CallFrom(row, 0), 1) << row;
  EXPECT_EQ(CallFrom(most - 1, 0), 2);
  // The named cell's place was the oldest: it went, its data did not. Then the first unnamed cell's data goes.
  EXPECT_EQ(CallFrom(0, 0), 2);
  EXPECT_EQ(CallFrom(0, 1), 1);
  EXPECT_EQ(CallFrom(1, 0), 2);
  EXPECT_EQ(CallFrom(0, 0), 1);
  EXPECT_LE(context_.data_manager().Count(), Excel_CFunctionContext::most_cells + 1);
  EXPECT_EQ(call_named(), 2);
}

TEST_F(ExcelPlace, NamesThePlaceInTheHostsNotation) {
  const auto place = [this] {
    context_.Reset();
    std::u16string text;
    spec_.implementation = [](Function_CContext& context, FUNCTION_ARG*, std::size_t, FUNCTION_ARG& output) {
      context.HostNotify1();
      return context.SetText(output, context.caller_info()->range_text) ? std::uint32_t{0} : std::uint32_t{1};
    };
    FUNCTION_ARG arg = FUNCTION_ARG::Missing();
    output_ = FUNCTION_ARG::Empty();
    EXPECT_EQ(context_.Run(Dialect::excel12, spec_, &arg, 1, output_, nullptr), ERROR_OK);
    return output_.kind == ARG_STRING ? std::u16string(output_.text()) : std::u16string(u"none");
  };
  EXPECT_EQ(place(), u"[Book]Sheet!R5C3");
  fake.caller = {0, 9, 3, 11, 3};
  EXPECT_EQ(place(), u"[Book]Sheet!R10C4:R12C4");
  fake.sheet = std::u16string(255, u'x');
  fake.caller = {0, 1048574, 16382, 1048575, 16383};
  EXPECT_EQ(place(), fake.sheet + u"!R1048575C16383:R1048576C16384");
  fake.sheet += u'x';  // longer than any: the place has no text
  EXPECT_EQ(place(), u"none");
}

TEST_F(ExcelPlace, AsksTheHostForNoMoreThanItNeeds) {
  FUNCTION_ARG cell = FUNCTION_ARG::Empty();
  XlRecord12 reference{};
  reference.reference = {1, {1, 1, 3, 3}};
  reference.type = XL_REFERENCE;
  ASSERT_TRUE(to_argument(context_, &reference, cell));
  spec_.implementation = [](Function_CContext& context, FUNCTION_ARG* args, std::size_t, FUNCTION_ARG& output) {
    double first = 0.0;
    double second = 0.0;
    std::u16string_view text;
    EXPECT_TRUE(context.ReadNumber(args, first) && context.ReadNumber(args, second) && context.ReadText(args, text));
    EXPECT_EQ(text, u"42");
    output = FUNCTION_ARG::Number(first + second);
    return std::uint32_t{0};
  };
  EXPECT_EQ(Run(cell), ERROR_OK);
  EXPECT_EQ(output_.number, 84.0);
  EXPECT_EQ(fake.calls, (std::map<int, int>{{XL_COERCE, 1}, {XL_FREE, 1}}));
}

TEST_F(ExcelPlace, EndsBeforeTheFunctionWhenMessagesAreOnAndACellIsNotCalculated) {
  static int runs = 0;
  runs = 0;
  spec_.flags = FUNCTION_FALLBACK;
  spec_.implementation = [](Function_CContext& context, FUNCTION_ARG* args, std::size_t, FUNCTION_ARG&) {
    ++runs;
    double value = 0.0;
    EXPECT_FALSE(context.ReadNumber(args, value));
    EXPECT_FALSE(context.ReadNumber(args, value));
    context.HostNotify1();
    return std::uint32_t{ERROR_VALUE};
  };
  XlRecord12 reference{};
  reference.reference = {1, {1, 1, 3, 3}};
  reference.type = XL_REFERENCE;
  fake.uncalculated = true;
  FUNCTION_ARG cell;
  ASSERT_TRUE(to_argument(context_, &reference, cell));
  for (const bool messages_on : {false, true}) {
    fake.calls.clear();
    context_.EnableMessages(messages_on);
    EXPECT_EQ(Run(cell), ERROR_NA) << "also where fallback outputs would hide it";
    EXPECT_EQ(runs, 1) << messages_on;
    EXPECT_EQ(fake.calls, (std::map<int, int>{{XL_COERCE, 1}, {XL_FREE, 1}}));
  }
}

TEST_F(ExcelUnit, RefusesACallWhileTheHostAnswersAnother) {
  host::set_context_factory(make_context);
  const std::size_t position = catalogue::find(u"BitTest")->position;
  XlRecord12 reference{};
  reference.reference = {1, {1, 1, 3, 3}};
  reference.type = XL_REFERENCE;
  XlRecord12 bit{};
  bit.number = 1;
  bit.type = XL_NUMBER;
  XlRecord12* args[] = {&reference, &bit};
  static XlRecord12* inner;
  inner = &bit;
  fake.recalculate = [](std::size_t count) {
    XlRecord12* same[] = {&fake.cell, &fake.cell};
    inner = call_12(catalogue::find(u"BitTest")->position, same, count);
  };
  const XlRecord12* outer = call_12(position, args, 2);
  EXPECT_EQ(inner, nullptr);
  ASSERT_NE(outer, nullptr);
  EXPECT_EQ(outer->integer, 1);  // bit 1 of 42
  fake.recalculate = nullptr;
  EXPECT_NE(call_12(position, args, 2), nullptr);
}

// ---- Memory ------------------------------------------------------------------------------------------------------

TEST_F(ExcelUnit, AWarmCallAllocatesNothing) {
  host::set_context_factory(make_context);
  XlRecord12 missing{};
  missing.type = XL_MISSING;
  XlRecord12 reference{};
  reference.reference = {1, {1, 1, 3, 3}};
  reference.type = XL_REFERENCE;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    if (spec->id == u"FunctionList") continue;  // sorts a list of any length
    for (XlRecord12* first : {&missing, &reference}) {
      std::vector<XlRecord12*> args(spec->input_count, &missing);
      if (spec->input_count > 1) args[1] = first;
      for (int i = 0; i < 3; ++i) call_12(spec->position, args.data(), args.size());
      const std::size_t before = allocations;
      for (int i = 0; i < 10; ++i) call_12(spec->position, args.data(), args.size());
      EXPECT_EQ(allocations - before, 0u) << std::string(spec->id.begin(), spec->id.end());
    }
  }
}

// A thread's first call, one request of which is refused, shows an error or its result; the next one shows the result.
TEST_F(ExcelUnit, ACallWithoutMemoryFailsAlone) {
  host::set_context_factory(make_context);
  XlRecord12 reference{}, bit{};
  reference.reference = {1, {1, 1, 3, 3}};
  reference.type = XL_REFERENCE;
  bit.number = 1;
  bit.type = XL_NUMBER;
  XlRecord12* args[] = {&reference, &bit};
  const std::size_t position = catalogue::find(u"BitTest")->position;
  const sheet::Value right = sheet::Integer(1);  // bit 1 of 42
  std::size_t n = 0;
  do {
    host::thread_ended();
    allocations = 0;
    refused_allocation = ++n;
    const XlRecord12* result = call_12(position, args, 2);
    refused_allocation = 0;
    const std::size_t met = allocations;
    if (result != nullptr && result->type != XL_ERROR) {
      EXPECT_EQ(sheet::Read(*result), right) << n;
    }
    result = call_12(position, args, 2);
    ASSERT_NE(result, nullptr) << n;
    EXPECT_EQ(sheet::Read(*result), right) << n;
    allocations = met;
  } while (allocations >= n);
  EXPECT_GT(n, 3u);
}

}  // namespace
