// The add-in seen from a spreadsheet, in the dialect of this program: excel_host_test MODULE DATA_FOLDER.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <thread>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "tests/hosts/excel/direct.h"
#include "tests/hosts/excel/spreadsheet.h"

#if defined(_WIN32)
#include <windows.h>

#include <psapi.h>
#else
#include <unistd.h>
#endif

namespace {

using namespace norvane;
using namespace norvane::excel;
using namespace sheet;

Spreadsheet& book() { return Spreadsheet::Instance(); }

// Whatever a test does, the rules of the interface hold and everything is given back.
class ExcelHost : public testing::Test {
 protected:
  void TearDown() override {
    for (const std::string& violation : book().violations()) ADD_FAILURE() << violation;
    EXPECT_EQ(book().outstanding(), 0u);
  }
};

// ---- Opening -----------------------------------------------------------------------------------------------------

TEST_F(ExcelHost, RegistersEveryFunctionWithTextsTheHostTakes) {
  EXPECT_EQ(book().refused_registrations(), 0);
  EXPECT_EQ(book().registrations().size(), catalogue::specifications().size() + 1);
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    const Registration* entry = book().Find(spec->worksheet_name());
    ASSERT_NE(entry, nullptr) << to_utf8(spec->id);
    SCOPED_TRACE(entry->procedure);
    const bool variable = spec->has(FUNCTION_VARIABLE_INPUTS);
    const std::size_t count = variable ? (excel12 ? 30 : 20) : spec->input_count;
    EXPECT_EQ(entry->argument_count, count);
    EXPECT_EQ(entry->procedure,
              (excel12 ? "xlWrapper12_" : "xlWrapper4_") + to_utf8(spec->group->name) + "_" + to_utf8(spec->id));
    EXPECT_EQ(entry->type.find(u'$') != std::u16string::npos, excel12);
    EXPECT_EQ(entry->macro_type, spec->has(FUNCTION_HIDDEN) ? u"0" : u"1");
    EXPECT_EQ(entry->category, u"Norvane");
    EXPECT_FALSE(entry->help.empty());
    ASSERT_EQ(entry->argument_helps.size(), excel12 ? 64u : 20u);
    for (std::size_t i = 0; i < entry->argument_helps.size(); ++i)
      EXPECT_EQ(entry->argument_helps[i].kind, i < count ? Kind::text : Kind::missing) << i;
    const std::size_t last = std::min(count, entry->argument_helps.size());
    if (last > 0) {
      EXPECT_TRUE(entry->argument_helps[last - 1].text.ends_with(u"  "));
    }
    EXPECT_LE(entry->arguments.size() + entry->function.size(), 252u);
  }
}

TEST_F(ExcelHost, AddsTheAboutCommandToTheMenu) {
  const Registration* about = book().Find(u"AboutBox");
  ASSERT_NE(about, nullptr);
  EXPECT_EQ(about->type, u"A");
  EXPECT_EQ(about->macro_type, u"2");
  ASSERT_FALSE(book().menu_commands().empty());
  const std::vector<Value>& menu = book().menu_commands()[0];
  ASSERT_EQ(menu.size(), 3u);
  EXPECT_EQ(menu[0], Number(10));
  EXPECT_EQ(menu[1], Text(u"Help"));
  EXPECT_EQ(menu[2], Array(1, 5, {Text(u"About Norvane"), Text(u"AboutBox"), Text(u""), Text(u""), Text(u"")}));
}

TEST_F(ExcelHost, AnswersTheAddInManager) {
  const char* info = excel12 ? "xlAddInManagerInfo12" : "xlAddInManagerInfo";
  EXPECT_EQ(book().CallEntry(info, Number(1)), Text(u"Norvane"));
  EXPECT_EQ(book().CallEntry(info, Integer(1)), Text(u"Norvane"));
  EXPECT_EQ(book().CallEntry(info, Number(2)), Error(XL_ERROR_VALUE));
  EXPECT_EQ(book().CallEntry(info, Text(u"1")), Error(XL_ERROR_VALUE));
  EXPECT_EQ(book().CallEntry(info, Missing()), Error(XL_ERROR_VALUE));
  for (const char* name : {"xlAutoAdd", "xlAutoRemove"})
    EXPECT_EQ(reinterpret_cast<int (*)()>(book().Entry(name))(), 1) << name;
  if (!excel12) {
    EXPECT_EQ(book().CallEntry("xlAutoRegister", Text(u"nvBitTest")), Error(XL_ERROR_VALUE));
  }
}

TEST_F(ExcelHost, OpensAgainAfterClosingAndSurvivesARefusal) {
  EXPECT_EQ(book().Close(), 1);
  EXPECT_TRUE(book().menu_commands().empty());
  book().Refuse(u"nvBitTest");
  EXPECT_EQ(book().Open(), 1);
  EXPECT_EQ(book().menu_commands().size(), 1u);
  book().Refuse(u"");
  EXPECT_EQ(book().refused_registrations(), 1);
  EXPECT_EQ(book().registrations().size(), catalogue::specifications().size() + 1);
  EXPECT_EQ(book().Call(u"nvBitTest", {Number(5), Number(2)}), Integer(1));
}

// ---- What is shown -----------------------------------------------------------------------------------------------

#if defined(_WIN32)
// Without a display a box returns at once and nobody sees it: the module's own entries for them are replaced.
struct {
  int dialogs = 0;
  int messages = 0;
  HINSTANCE module = nullptr;
  const wchar_t* dialog_template = nullptr;
} shown;

INT_PTR WINAPI show_dialog(HINSTANCE module, LPCWSTR name, HWND, DLGPROC, LPARAM) {
  ++shown.dialogs;
  shown.module = module;
  shown.dialog_template = name;
  return IDOK;
}
int WINAPI show_message(HWND, LPCWSTR, LPCWSTR, UINT) {
  ++shown.messages;
  return IDOK;
}

bool replace_import(HMODULE module, const char* name, void* routine) {
  auto* base = reinterpret_cast<unsigned char*>(module);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
  for (; library->Name != 0; ++library) {
    auto* names = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + library->OriginalFirstThunk);
    auto* entries = reinterpret_cast<IMAGE_THUNK_DATA64*>(base + library->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++entries) {
      if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
      const auto* by_name = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(by_name->Name), name) != 0) continue;
      DWORD protection = 0;
      VirtualProtect(entries, sizeof *entries, PAGE_READWRITE, &protection);
      entries->u1.Function = reinterpret_cast<ULONGLONG>(routine);
      VirtualProtect(entries, sizeof *entries, protection, &protection);
      return true;
    }
  }
  return false;
}

TEST_F(ExcelHost, ShowsTheAboutBoxWhenTheHostAsksAndNothingElseEver) {
  const HMODULE module = GetModuleHandleW(L"Norvane.XLL");
  ASSERT_TRUE(replace_import(module, "DialogBoxParamW", reinterpret_cast<void*>(&show_dialog)));
  ASSERT_TRUE(replace_import(module, "MessageBoxW", reinterpret_cast<void*>(&show_message)));
  EXPECT_EQ(book().Close(), 1);
  EXPECT_EQ(book().Open(), 1);
  EXPECT_EQ(shown.dialogs + shown.messages, 0);
  const auto about = reinterpret_cast<short (*)()>(book().Entry("AboutBox"));
  ASSERT_NE(about, nullptr);
  EXPECT_EQ(about(), 1);
  EXPECT_EQ(shown.dialogs, 1);
  EXPECT_EQ(shown.messages, 0);
  EXPECT_EQ(shown.module, module);
  EXPECT_NE(FindResourceW(module, shown.dialog_template, reinterpret_cast<LPCWSTR>(RT_DIALOG)), nullptr);
  // Product and version for the file's properties.
  EXPECT_NE(FindResourceW(module, MAKEINTRESOURCEW(1), reinterpret_cast<LPCWSTR>(RT_VERSION)), nullptr);
}
#else
TEST_F(ExcelHost, ShowsTheAboutTextWhenTheHostAsks) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(reinterpret_cast<short (*)()>(book().Entry("AboutBox"))(), 1);
  const std::string text = testing::internal::GetCapturedStderr();
  for (const char* part : {"Norvane", "Version " NORVANE_VERSION, "Commit "})
    EXPECT_NE(text.find(part), std::string::npos) << part;
}
#endif

// ---- One call ----------------------------------------------------------------------------------------------------

TEST_F(ExcelHost, CalculatesFromValuesAndFromReferences) {
  const Place five = Place::Cell(0, 0, 0);
  const Place two = Place::Cell(1, 3, 200);
  book().Set(five, Number(5));
  book().Set(two, Text(u" 2\t"));
  EXPECT_EQ(book().Call(u"nvBitTest", {Number(5), Integer(2)}), Integer(1));
  EXPECT_EQ(book().Call(u"nvBitTest", {Reference(five), Reference(two)}), Integer(1));
  EXPECT_EQ(book().Call(u"nvBitTest", {Reference(five), Number(1)}), Integer(0));
  // A blank cell is 0, not the default.
  EXPECT_EQ(book().Call(u"nvBitTest", {Reference(five), Reference(Place::Cell(0, 500, 5))}), Integer(1));
  EXPECT_EQ(book().Call(u"nvNum2Num", {Text(u"FF"), Number(16), Number(2), Number(10)}), Text(u"0011111111"));
  // Codes of units as numbers in cells, symbols as text.
  book().Set(five, Text(u"bar"));
  book().Set(two, Text(u"Pa"));
  const Value pressure = book().Call(u"nvConvertUnit", {Missing(), Number(2), Reference(five), Reference(two)});
  const Value direct = book().Call(u"nvConvertUnit", {Missing(), Number(2), Text(u"bar"), Text(u"Pa")});
  EXPECT_EQ(pressure, direct);
}

TEST_F(ExcelHost, ReadsRangesRowByRow) {
  std::vector<Value> cells;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 2; ++column) {
      cells.push_back(Number(10 * row + column));
      book().Set(Place::Cell(1, 10 + row, 20 + column), cells.back());
    }
  }
  const Value from_array = book().Call(u"nvCRC32", {Array(3, 2, cells)});
  EXPECT_EQ(from_array.kind, Kind::number);
  EXPECT_EQ(book().Call(u"nvCRC32", {Reference({1, 10, 20, 12, 21})}), from_array);
  EXPECT_EQ(book().Call(u"nvCRC32", {Array(2, 3, cells)}), from_array);
  std::swap(cells[1], cells[2]);
  EXPECT_NE(book().Call(u"nvCRC32", {Array(3, 2, cells)}), from_array);
}

TEST_F(ExcelHost, LaysOutputsAlongTheCaller) {
  const std::vector<Value> args(3, Missing());
  const Value down = book().Call(u"nvAGA5_C", args, {0, 2, 2, 4, 2});
  ASSERT_EQ(down.kind, Kind::array);
  EXPECT_EQ(down.rows, 3);
  EXPECT_EQ(down.columns, 1);
  const Value across = book().Call(u"nvAGA5_C", args, {0, 2, 2, 2, 4});
  EXPECT_EQ(across, Array(1, 3, down.elements));
  EXPECT_EQ(book().Call(u"nvAGA5_C", args, Place::Cell(0, 2, 2)), down);
}

TEST_F(ExcelHost, AnswersNotAvailableUntilACellIsCalculated) {
  const Place cell = Place::Cell(2, 40, 4);
  book().SetUncalculated(cell);
  bool met = false;
  EXPECT_EQ(book().Call(u"nvBitTest", {Reference(cell), Number(0)}, Place::Cell(0, 1, 1), &met), Error(XL_ERROR_NA));
  EXPECT_TRUE(met);
  // In the middle of a block, in a function of many outputs that would be replaced by their fallback values.
  const Place block{2, 39, 4, 60, 4};
  EXPECT_EQ(book().Call(u"nvAGA8_M", {Missing(), Reference(block)}, {0, 1, 1, 1, 6}, &met), Error(XL_ERROR_NA));
  EXPECT_TRUE(met);
  book().Set(cell, Number(1));
  EXPECT_EQ(book().Call(u"nvBitTest", {Reference(cell), Number(0)}, Place::Cell(0, 1, 1), &met), Integer(1));
  EXPECT_FALSE(met);
}

// A general function has nothing but its error to show; the others have a status, a failed test or an error output.
TEST_F(ExcelHost, ShowsWhyAGeneralFunctionFailed) {
  const Place cell = Place::Cell(0, 70, 0);
  book().Set(cell, Number(5));
  EXPECT_EQ(book().Call(u"nvBitTest", {Reference(cell), Number(32)}), Error(XL_ERROR_VALUE));
  EXPECT_EQ(book().Call(u"nvFunctionProperty", {Reference(cell), Number(1)}), Error(XL_ERROR_VALUE));
  EXPECT_EQ(book().Call(u"nvFunctionProperty", {Text(u"nvNone"), Number(1)}), Error(XL_ERROR_NA));
  book().Set(cell, Error(XL_ERROR_DIV0));
  EXPECT_EQ(book().Call(u"nvCRC32", {Reference(cell)}), Error(XL_ERROR_VALUE));
  EXPECT_EQ(book().Call(u"nvCRC32", {Reference({0, 70, 0, 71, 0})}), Error(XL_ERROR_DIV0));
  EXPECT_EQ(book().Call(u"nvFunctionTest", {Missing(), Reference(cell), Number(1), Missing()}), Number(0));
}

TEST_F(ExcelHost, WorksWithAHostThatOnlyRegisters) {
  book().SetMinimal(true);
  EXPECT_EQ(book().Open(), 1);
  EXPECT_EQ(book().Call(u"nvBitTest", {Number(5), Number(2)}), Integer(1));
  const Value outputs = book().Call(u"nvAGA5_C", std::vector<Value>(3, Missing()), {0, 2, 2, 2, 4});
  EXPECT_EQ(outputs.kind, Kind::array);
  // A reference cannot be read.
  EXPECT_EQ(book().Call(u"nvBitTest", {Reference(Place::Cell(0, 0, 0)), Number(2)}), Error(XL_ERROR_VALUE));
  // What such a host filled was never handed out.
  book().SetMinimal(false);
}

// ---- What no well-behaved host sends -----------------------------------------------------------------------------

TEST_F(ExcelHost, RefusesArgumentsThatAreNone) {
  Record bit{};
  bit.number = 2;
  bit.type = XL_NUMBER;
  const auto call = [&bit](Record* first) { return book().CallRaw(u"nvBitTest", {first, &bit}).kind; };
  EXPECT_EQ(call(nullptr), Kind::null);
  for (const std::uint32_t type : {0x0000u, 0x0020u, 0x0802u, 0x0003u, 0x0FFFu, 0x2001u, 0xFFFFu}) {
    Record record{};
    record.type = static_cast<decltype(record.type)>(type);
    EXPECT_EQ(call(&record), Kind::null) << std::hex << type;
  }
  for (const std::uint32_t type : {XL_STRING, XL_MULTI_REFERENCE}) {
    Record record{};  // a null pointer
    record.type = static_cast<decltype(record.type)>(type);
    EXPECT_EQ(call(&record), Kind::null);
  }
  // Flags of ownership are no part of the type.
  Record flagged{};
  flagged.number = 4;
  flagged.type = XL_NUMBER | 0x1000;
  EXPECT_EQ(call(&flagged), Kind::integer);
}

TEST_F(ExcelHost, RefusesArraysThatNoSheetHolds) {
  using Rows = decltype(Record{}.array.rows);
  Record element{};
  element.number = 4;
  element.type = XL_NUMBER;
  Record array{};
  array.type = XL_ARRAY;
  const auto call = [&array](Record* elements, long rows, long columns) {
    array.array.elements = elements;
    array.array.rows = static_cast<Rows>(rows);
    array.array.columns = static_cast<Rows>(columns);
    return book().CallRaw(u"nvCRC32", {&array}).kind;
  };
  EXPECT_EQ(call(&element, 1, 1), Kind::number);
  EXPECT_EQ(call(nullptr, 1, 1), Kind::null);
  EXPECT_EQ(call(&element, std::numeric_limits<Rows>::max(), std::numeric_limits<Rows>::max()), Kind::null);
  EXPECT_EQ(call(&element, 2, 16385), Kind::null);
  if (excel12) {
    EXPECT_EQ(call(&element, 1048577, 2), Kind::null);
    EXPECT_EQ(call(&element, -1, 1), Kind::null);
    EXPECT_EQ(call(&element, -1, -1), Kind::null);
  }
  // Without elements nothing is read through the pointer, whatever it is.
  EXPECT_NE(call(nullptr, 0, 0), Kind::array);
  EXPECT_NE(call(nullptr, 5, 0), Kind::array);
}

TEST_F(ExcelHost, RefusesArraysInsideThemselves) {
  Record array{};
  array.type = XL_ARRAY;
  array.array.elements = &array;
  array.array.rows = 1;
  array.array.columns = 1;
  EXPECT_EQ(book().CallRaw(u"nvCRC32", {&array}).kind, Kind::null);
  // One level of nesting is read by its first element.
  Record number{};
  number.number = 4;
  number.type = XL_NUMBER;
  Record inner{};
  inner.type = XL_ARRAY;
  inner.array.elements = &number;
  inner.array.rows = 1;
  inner.array.columns = 1;
  array.array.elements = &inner;
  EXPECT_EQ(book().CallRaw(u"nvCRC32", {&array}), book().Call(u"nvCRC32", {Number(4)}));
}

TEST_F(ExcelHost, RefusesAReferenceOfNoArea) {
  std::remove_pointer_t<decltype(Record{}.multi.areas)> areas{};
  Record reference{};
  reference.multi.areas = &areas;
  reference.multi.sheet = 1;
  reference.type = XL_MULTI_REFERENCE;
  Record bit{};
  bit.type = XL_NUMBER;
  EXPECT_EQ(book().CallRaw(u"nvBitTest", {&reference, &bit}).kind, Kind::null);
}

TEST_F(ExcelHost, TakesTextsOfAnyLengthAndContent) {
  const std::size_t longest = excel12 ? 32767 : 255;
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{254}, longest}) {
    const Value number =
        book().Call(u"nvNum2Num", {Text(std::u16string(length, u'0')), Number(10), Number(10), Number(1)});
    EXPECT_EQ(number, length == 0 ? number : Text(u"0")) << length;
  }
  // Not a number, and no harm: unpaired surrogates, NUL, all characters of a code page.
  std::u16string strange = u"\xD800\xDFFF\xDC00x";
  strange += u'\0';
  for (char16_t c = 1; c < 256; ++c) strange += c;
  strange.resize(std::min(strange.size(), std::size_t{255}));
  EXPECT_EQ(book().Call(u"nvBitTest", {Text(strange), Number(0)}), Error(XL_ERROR_VALUE));
  EXPECT_EQ(book().Call(u"nvCRC32", {Text(strange)}), book().Call(u"nvCRC32", {Text(strange)}));
  if (excel12) {
    // A count that no text has.
    std::vector<char16_t> text(40001, u'0');
    text[0] = 40000;
    Record record{};
    record.type = XL_STRING;
    Record bit{};
    bit.type = XL_NUMBER;
    char16_t* const counted = text.data();
    std::memcpy(&record, &counted, sizeof counted);
    EXPECT_EQ(book().CallRaw(u"nvBitTest", {&record, &bit}).kind, Kind::null);
  }
}

TEST_F(ExcelHost, ErrorsOfCellsAreErrorsOfTheCall) {
  for (const int code : {0, 7, 15, 23, 29, 36, 42, 43, 1000}) {
    book().Set(Place::Cell(0, 70, 0), Error(code));
    EXPECT_EQ(book().Call(u"nvBitTest", {Error(code), Number(0)}), Error(XL_ERROR_VALUE)) << code;
    EXPECT_EQ(book().Call(u"nvBitTest", {Reference(Place::Cell(0, 70, 0)), Number(0)}), Error(XL_ERROR_VALUE))
        << code;
  }
  // FunctionTest does not compare what is #N/A.
  const Value tested = book().Call(u"nvFunctionTest", {Missing(), Array(1, 2, {Number(1), Number(2)}),
                                                       Array(1, 2, {Number(1), Error(XL_ERROR_NA)}), Missing()});
  ASSERT_EQ(tested.kind, Kind::array);
  EXPECT_EQ(tested.elements[0], Boolean(true));
}

// ---- The whole catalogue -----------------------------------------------------------------------------------------

TEST_F(ExcelHost, EveryFunctionAnswersItsDefaultsAsTheContextDoes) {
  Direct direct;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) {
    const std::vector<Value> args(book().Find(spec->worksheet_name())->argument_count, Missing());
    const Value expected = direct.Call(*spec, args);
    const Value answer = book().Call(spec->worksheet_name(), args);
    EXPECT_EQ(answer, expected) << to_utf8(spec->id);
  }
}

TEST_F(ExcelHost, EveryCheckValueComesThroughTheWrappersBitForBit) {
  Direct direct;
  std::size_t compared = 0;
  for (const CheckCase& check : ReadCheckCases()) {
    const Function_CFunctionSpec* spec = catalogue::find(check.function);
    if (spec == nullptr) continue;
    std::vector<Value> values = check.Arguments(*spec);
    values.resize(book().Find(spec->worksheet_name())->argument_count, Missing());
    const Value expected = direct.Call(*spec, values);
    const Value answer = book().Call(spec->worksheet_name(), values);
    EXPECT_EQ(answer, expected) << check.where;

    // The same from cells, every second argument from another sheet.
    std::vector<Value> references = values;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (values[i].kind == Kind::missing) continue;
      const int sheet = static_cast<int>(i % 2);
      const int column = static_cast<int>(i);
      if (values[i].kind != Kind::array) {
        const Place cell = Place::Cell(sheet, 200, column);
        book().Set(cell, values[i]);
        references[i] = Reference(cell);
        continue;
      }
      if (values[i].columns != 1) continue;
      for (int row = 0; row < values[i].rows; ++row)
        book().Set(Place::Cell(sheet, 200 + row, column), values[i].elements[static_cast<std::size_t>(row)]);
      references[i] = Reference({sheet, 200, column, 199 + values[i].rows, column});
    }
    const Value from_cells = book().Call(spec->worksheet_name(), references);
    EXPECT_EQ(from_cells, expected) << check.where << " from cells";
    ++compared;
  }
  EXPECT_GT(compared, 100u);
}

// ---- Recalculation and threads -----------------------------------------------------------------------------------

TEST_F(ExcelHost, RecalculatesDependentCellsOnSeveralThreads) {
  // Column A: pressures; B to G: AGA8_M of them, an array formula; H: a checksum of B to G. The checksums
  // come first, so that cells are met before they are calculated.
  constexpr int rows = 60;
  std::vector<Value> gas(22, Number(0));
  gas[0] = Number(0.97);
  gas[1] = Number(0.03);
  const Function_CFunctionSpec& aga8 = *catalogue::find(u"AGA8_M");
  for (int row = 0; row < rows; ++row) {
    const Place pressure = Place::Cell(0, 300 + row, 0);
    const Place outputs{0, 300 + row, 1, 300 + row, 6};
    book().Set(pressure, Number(1.0 + row));
    book().SetFormula(Place::Cell(0, 300 + row, 7), u"nvCRC32", {Reference(outputs)});
    const CheckCase call{"", u"AGA8_M", {{u"composition", Array(22, 1, gas)}, {u"pressure", Reference(pressure)}}};
    book().SetFormula(outputs, u"nvAGA8_M", call.Arguments(aga8));
  }
  const int calls = book().Recalculate(1);
  EXPECT_GT(calls, 2 * rows);
  std::vector<Value> expected;
  for (int row = 0; row < rows; ++row) {
    expected.push_back(book().Get(Place::Cell(0, 300 + row, 7)));
    EXPECT_EQ(expected.back().kind, Kind::number);
    if (row > 0) {
      EXPECT_NE(expected[static_cast<std::size_t>(row)], expected[static_cast<std::size_t>(row) - 1]);
    }
  }
  for (const int threads : {1, excel12 ? 8 : 1}) {
    book().Recalculate(threads);
    for (int row = 0; row < rows; ++row)
      EXPECT_EQ(book().Get(Place::Cell(0, 300 + row, 7)), expected[static_cast<std::size_t>(row)]) << row;
  }
}

// Calls of one thread, each answer compared with the first one's.
void call_from_thread(const std::vector<std::pair<std::u16string, std::vector<Value>>>& calls,
                      const std::vector<Value>& expected, int sheet, const std::atomic<bool>& stop,
                      std::atomic<int>& wrong, std::atomic<long>& made) {
  for (int n = 0; !stop.load(std::memory_order_relaxed); ++n) {
    const std::size_t i = static_cast<std::size_t>(n) % calls.size();
    const Value answer = book().Call(calls[i].first, calls[i].second, Place::Cell(sheet, n % 7, static_cast<int>(i)));
    if (!(answer == expected[i])) ++wrong;
    ++made;
  }
}

TEST_F(ExcelHost, ThreadsDoNotSeeEachOther) {
  if (!excel12) GTEST_SKIP() << "the older dialect calculates on one thread";
  book().Set(Place::Cell(0, 0, 0), Number(5));
  std::vector<std::pair<std::u16string, std::vector<Value>>> calls = {
      {u"nvBitTest", {Reference(Place::Cell(0, 0, 0)), Number(2)}},
      {u"nvNum2Num", {Text(u"FF"), Number(16), Number(2), Number(10)}},
      {u"nvConvertUnit", {Text(u"Named"), Number(2), Text(u"bar"), Text(u"Pa")}},
      {u"nvCRC32", {Array(2, 2, {Number(1), Text(u"a"), Boolean(true), Blank()})}},
  };
  for (const Function_CFunctionSpec* spec : catalogue::specifications())
    calls.emplace_back(spec->worksheet_name(), std::vector<Value>(spec->input_count, Missing()));
  std::vector<Value> expected;
  for (const auto& [function, args] : calls) expected.push_back(book().Call(function, args));

  const char* seconds = std::getenv("NORVANE_TEST_SECONDS");
  const auto duration = std::chrono::milliseconds(seconds != nullptr ? 1000L * std::atol(seconds) : 700L);
  std::atomic<bool> stop{false};
  std::atomic<int> wrong{0};
  std::atomic<long> made{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i)
    threads.emplace_back([&, i] { call_from_thread(calls, expected, i % 3, stop, wrong, made); });
  std::this_thread::sleep_for(duration);
  stop = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(made, 8);
}

// Bytes of memory of this process.
long memory_in_use() {
#if defined(_WIN32)
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return static_cast<long>(counters.PagefileUsage);
#else
  long pages = 0;
  long resident = 0;
  if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(file);
  }
  return resident * sysconf(_SC_PAGESIZE);
#endif
}

TEST_F(ExcelHost, ContextsEndWithTheirThreads) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer keeps freed memory, and finds leaks itself";
#endif
  if (!excel12) GTEST_SKIP() << "the older dialect calculates on one thread";
  const auto generation = [](int threads) {
    for (int i = 0; i < threads; ++i)
      std::thread([] { book().Call(u"nvAGA8_M", std::vector<Value>(6, Missing())); }).join();
  };
  generation(50);
  const long before = memory_in_use();
  constexpr int threads = 600;
  generation(threads);
  // A context holds an arena block of 32 KiB at the least.
  EXPECT_LT(memory_in_use() - before, threads * 32768L / 4);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s MODULE DATA_FOLDER\n", argv[0]);
    return 2;
  }
  SetCheckFolder(argv[2]);
  if (!book().Load(argv[1])) {
    std::fprintf(stderr, "%s cannot be loaded\n", argv[1]);
    return 1;
  }
  if (book().Open() != 1) {
    std::fprintf(stderr, "xlAutoOpen did not answer 1\n");
    return 1;
  }
  const int failed = RUN_ALL_TESTS();
  if (failed != 0) return failed;
  // Threads have used it and are gone: the module leaves the process.
  if (book().Close() != 1 || !book().Unload()) {
    std::fprintf(stderr, "the module stays loaded after it was released\n");
    return 1;
  }
  std::printf("complete\n");
  return 0;
}
