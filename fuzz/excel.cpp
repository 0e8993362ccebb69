// Worksheet wrappers of both dialects: arguments and the answers of the host are records that may be anything, but for
// pointers, which are null or point to as much as a host that means well would have there.
#include "hosts/excel/wrappers.h"

#include <algorithm>

#include "catalogue/catalogue.h"
#include "fuzz/fuzz.h"
#include "hosts/excel/excel_context.h"
#include "hosts/excel/host.h"
#include "hosts/module/module.h"
#include "tests/hosts/excel/values.h"

namespace norvane::fuzz {
namespace {

using namespace norvane::excel;

// Blocks of just the size that was asked for, so that every step beyond is seen.
sheet::CallMemory* memory = nullptr;
Input* host_choices = nullptr;

template <class Record>
constexpr bool is12 = std::is_same_v<Record, XlRecord12>;

template <class Record>
void make_text(Input& in, Record& record) {
  const std::string_view bytes = in.text();
  using Unit = std::remove_pointer_t<decltype(record.string)>;
  if (in.once_in(8)) {  // a length that no text has is never followed
    record.string = memory->Make<Unit>(1);
    record.string[0] = static_cast<Unit>(is12<Record> ? 32768 + bytes.size() : 0);
    return;
  }
  const std::size_t length = is12<Record> && in.once_in(8) ? 32767 : bytes.size();
  record.string = memory->Make<Unit>(length + 1);
  record.string[0] = static_cast<Unit>(length);
  for (std::size_t i = 0; i < length; ++i)
    record.string[i + 1] =
        static_cast<Unit>(i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0xD800 + i % 2048);
}

template <class Area>
void make_area(Input& in, Area& area) {
  area = {in.take<decltype(area.first_row)>(), in.take<decltype(area.first_row)>(),
          in.take<decltype(area.first_column)>(), in.take<decltype(area.first_column)>()};
}

template <class Record>
void make_record(Input& in, Record& record, int depth = 0) {
  constexpr std::uint32_t types[] = {XL_NUMBER,  XL_NUMBER, XL_STRING, XL_BOOLEAN, XL_ERROR,     XL_INTEGER,
                                     XL_MISSING, XL_NIL,    XL_ARRAY,  XL_ARRAY,   XL_REFERENCE, XL_MULTI_REFERENCE};
  record = Record{};
  const std::size_t choice = in.below(std::size(types) + 1);
  record.type =
      static_cast<decltype(record.type)>(choice < std::size(types) ? types[choice] : in.take<std::uint32_t>());
  if (in.once_in(16)) record.type = static_cast<decltype(record.type)>(record.type | 0x4000u);
  switch (record.type & 0xFFF) {
    case XL_NUMBER: record.number = in.number(); break;
    case XL_BOOLEAN:
    case XL_INTEGER:
    case XL_ERROR: record.error = in.take<decltype(record.error)>(); break;
    case XL_STRING:
      if (!in.once_in(16)) make_text(in, record);
      break;
    case XL_ARRAY: {
      auto& array = record.array;
      if (in.once_in(8)) {  // counts that no sheet has, or nothing where elements should be
        array.rows = in.take<decltype(array.rows)>();
        array.columns = in.take<decltype(array.columns)>();
        const double count = static_cast<double>(array.rows) * array.columns;
        const bool refused = array.rows < 0 || array.columns < 0 ||
                             static_cast<std::int64_t>(array.rows) > sheet_rows ||
                             static_cast<std::int64_t>(array.columns) > sheet_columns || count > 16.0 * 1048576;
        if (refused) array.elements = memory->Make<Record>(1);
        break;
      }
      const std::size_t rows = in.below(26), columns = depth < 2 ? in.below(5) : 1;
      array.rows = static_cast<decltype(array.rows)>(rows);
      array.columns = static_cast<decltype(array.columns)>(columns);
      array.elements = memory->Make<Record>(rows * columns);
      for (std::size_t i = 0; i < rows * columns; ++i) {
        array.elements[i] = Record{};
        if (in.once_in(4)) {
          if (depth < 10) make_record(in, array.elements[i], depth + 1);
        } else {
          array.elements[i].number = 0.01 * static_cast<double>(i + 1);
          array.elements[i].type = XL_NUMBER;
        }
      }
      if (rows * columns != 0 && in.once_in(16)) array.elements[0] = record;  // an array within itself
      break;
    }
    case XL_REFERENCE:
      record.reference.count = in.take<std::uint16_t>();
      make_area(in, record.reference.area);
      break;
    case XL_MULTI_REFERENCE: {
      if (in.once_in(8)) break;
      using Areas = std::remove_pointer_t<decltype(record.multi.areas)>;
      const std::size_t count = in.below(4);
      auto* areas = static_cast<Areas*>(memory->Take(sizeof(Areas) + count * sizeof(Areas::areas)));
      areas->count = static_cast<std::uint16_t>(count);
      for (std::size_t i = 0; i < count; ++i) make_area(in, areas->areas[i]);
      record.multi.areas = areas;
      record.multi.sheet = in.take<std::uint8_t>();
      break;
    }
    default: break;
  }
}

template <class Record>
int answer(int function, Record* result) {
  if (function == XL_FREE || result == nullptr) return XL_RETURN_SUCCESS;
  constexpr int answers[] = {XL_RETURN_SUCCESS,      XL_RETURN_SUCCESS, XL_RETURN_SUCCESS,         XL_RETURN_FAILED,
                             XL_RETURN_UNCALCULATED, XL_RETURN_ABORT,   XL_RETURN_INVALID_FUNCTION};
  const int code = answers[host_choices->below(std::size(answers))];
  if (function == XLF_CALLER && code == XL_RETURN_SUCCESS && host_choices->once_in(2)) {
    sheet::Write(sheet::Reference(sheet::Place::Cell(0, 4, 2)), *result, *memory);
  } else if (function == XL_SHEET_NAME && code == XL_RETURN_SUCCESS && host_choices->once_in(2)) {
    sheet::Write(sheet::Text(u"[Book]Sheet"), *result, *memory);
  } else if (code == XL_RETURN_SUCCESS || host_choices->once_in(4)) {
    make_record(*host_choices, *result);
  }
  return code;
}

bool all_finite(const sheet::Value& value) {
  return value.number - value.number == 0.0 && std::all_of(value.elements.begin(), value.elements.end(), all_finite);
}

template <class Record, class Caller>
void call(Input& in, Caller caller) {
  const auto specs = catalogue::specifications();
  const Function_CFunctionSpec& spec = *specs[in.below(specs.size())];
  const std::size_t count = !spec.has(FUNCTION_VARIABLE_INPUTS) ? spec.input_count
                            : is12<Record>                      ? variable_arguments12
                                                                : variable_arguments4;
  std::vector<Record> records(count);
  std::vector<Record*> args;
  for (Record& record : records) {
    record.type = XL_MISSING;
    if (in.once_in(2)) make_record(in, record);
    args.push_back(in.once_in(64) ? nullptr : &record);
  }
  std::vector<sheet::Value> values;
  const Input before = in;
  for (int round = 0; round < 2; ++round) {
    in = before;
    const Record* result = caller(spec.position, args.data(), args.size());
    values.push_back(result != nullptr ? sheet::Read(*result) : sheet::Missing());
    expect(all_finite(values.back()), to_utf8(spec.id) + " gives a cell a number that is none");
  }
  expect(values[0] == values[1], to_utf8(spec.id) + " answers otherwise again");
}

}  // namespace

void excel(Input& in) {
  [[maybe_unused]] static const bool bound = [] {
    host::set_context_factory(make_context);
    return bind_host() == BIND_OK;
  }();
  // A context of a thread made by another target's factory would not be a spreadsheet's.
  host::thread_ended();
  host_choices = &in;
  while (in.more()) {
    sheet::CallMemory blocks;
    memory = &blocks;
    if (in.once_in(2))
      call<XlRecord12>(in, call_12);
    else
      call<XlRecord4>(in, call_4);
  }
  memory = nullptr;
  host::thread_ended();
}

}  // namespace norvane::fuzz

extern "C" {
__attribute__((visibility("default"))) int MdCallBack12(int function, int, norvane::excel::XlRecord12**,
                                                        norvane::excel::XlRecord12* result) {
  return norvane::fuzz::answer(function, result);
}
__attribute__((visibility("default"))) int Excel4v(int function, norvane::excel::XlRecord4* result, int,
                                                   norvane::excel::XlRecord4**) {
  return norvane::fuzz::answer(function, result);
}
}
