#include "hosts/excel/convert.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "hosts/excel/platform.h"

namespace norvane::excel {
namespace {

// The host frees, the add-in frees: flags beside the type.
constexpr std::uint32_t ownership_flags = 0x1000 | 0x4000;

// Limits of one argument beside a full sheet's rows and columns: elements in all, and arrays inside arrays.
constexpr std::uint64_t max_elements = 16 * 1048576;
constexpr int max_nesting = 8;

constexpr std::int32_t host_errors[] = {XL_ERROR_NULL, XL_ERROR_DIV0, XL_ERROR_VALUE, XL_ERROR_REF,
                                        XL_ERROR_NAME, XL_ERROR_NUM,  XL_ERROR_NA};

struct Dialect12 {
  using Record = XlRecord12;
  using Areas = XlAreas12;
  using Area = XlArea12;
  static constexpr std::uint32_t reference = ARG_REFERENCE12;
  static constexpr std::uint32_t multi_reference = ARG_MULTI_REFERENCE12;
  static constexpr std::uint32_t max_count = 0x7FFFFFFF;

  static bool read_text(Function_CContext& context, const Record& record, FUNCTION_ARG& arg) noexcept {
    const std::size_t length = record.string[0];
    if (length > max_text12) return false;
    return context.SetText(arg, {record.string + 1, length});
  }

  // A text beyond the longest cell is cut there, not inside a pair of surrogates.
  static bool write_text(Function_CContext& context, std::u16string_view text, Record& record) noexcept {
    if (text.size() > max_text12) {
      const bool pair = text[max_text12 - 1] >= 0xD800 && text[max_text12 - 1] <= 0xDBFF;
      text = text.substr(0, pair ? max_text12 - 1 : max_text12);
    }
    char16_t* counted = context.arena().AllocateArray<char16_t>(text.size() + 2);
    if (counted == nullptr) return false;
    counted[0] = static_cast<char16_t>(text.size());
    if (!text.empty()) std::memcpy(counted + 1, text.data(), text.size() * sizeof(char16_t));
    counted[text.size() + 1] = u'\0';  // not counted, for hosts that read on to it
    record.string = counted;
    return true;
  }
};

struct Dialect4 {
  using Record = XlRecord4;
  using Areas = XlAreas4;
  using Area = XlArea4;
  static constexpr std::uint32_t reference = ARG_REFERENCE4;
  static constexpr std::uint32_t multi_reference = ARG_MULTI_REFERENCE4;
  static constexpr std::uint32_t max_count = 0xFFFF;

  static bool read_text(Function_CContext& context, const Record& record, FUNCTION_ARG& arg) noexcept {
    const std::size_t length = record.string[0];
    char16_t* text = context.arena().AllocateArray<char16_t>(length + 1);
    std::size_t written = 0;
    if (text == nullptr || !platform::from_code_page(record.string + 1, length, text, written)) return false;
    text[written] = u'\0';
    arg = FUNCTION_ARG::String(text, written);
    return true;
  }

  // The older dialect's cells are cut to 254 characters, one less than their count could say: worksheets rely on it.
  // Where characters take several bytes, as many are kept as fit.
  static bool write_text(Function_CContext& context, std::u16string_view text, Record& record) noexcept {
    constexpr std::size_t longest = 254;
    unsigned char* counted = context.arena().AllocateArray<unsigned char>(longest + 2);
    if (counted == nullptr) return false;
    const std::size_t written = platform::to_code_page(text.substr(0, longest), counted + 1, longest);
    counted[0] = static_cast<unsigned char>(written);
    counted[written + 1] = '\0';  // not counted, for hosts that read on to it
    record.string = counted;
    return true;
  }
};

template <class Dialect>
class Reader {
 public:
  using Record = typename Dialect::Record;

  explicit Reader(Function_CContext& context) noexcept : context_(context) {}

  bool read(const Record& record, FUNCTION_ARG& arg, int depth = 0) noexcept {
    switch (record.type & ~ownership_flags) {
      case XL_NUMBER: arg = FUNCTION_ARG::Number(record.number); return true;
      case XL_STRING: return record.string != nullptr && Dialect::read_text(context_, record, arg);
      case XL_BOOLEAN: arg = FUNCTION_ARG::Boolean(record.boolean != 0); return true;
      case XL_ERROR: arg = FUNCTION_ARG::Error(code_of_error(record.error)); return true;
      case XL_MISSING: arg = FUNCTION_ARG::Missing(); return true;
      case XL_NIL: arg = FUNCTION_ARG::Empty(); return true;
      case XL_INTEGER: arg = FUNCTION_ARG::Integer(record.integer); return true;
      case XL_ARRAY: return depth < max_nesting && read_array(record, arg, depth);
      case XL_REFERENCE: {
        arg = FUNCTION_ARG::Empty();
        arg.kind = Dialect::reference;
        std::memcpy(arg.payload, &record.reference, sizeof record.reference);
        return true;
      }
      case XL_MULTI_REFERENCE: return read_areas(record, arg);
      default: return false;
    }
  }

 private:
  bool read_array(const Record& record, FUNCTION_ARG& arg, int depth) noexcept {
    const std::int64_t rows = record.array.rows;
    const std::int64_t columns = record.array.columns;
    if (rows < 0 || columns < 0 || rows > sheet_rows || columns > sheet_columns) return false;
    const auto count = static_cast<std::uint64_t>(rows * columns);
    if (count > max_elements - elements_ || (count != 0 && record.array.elements == nullptr)) return false;
    elements_ += count;
    auto* elements = context_.arena().template AllocateArray<FUNCTION_ARG>(static_cast<std::size_t>(count));
    if (elements == nullptr) return false;
    for (std::uint64_t i = 0; i < count; ++i)
      if (!read(record.array.elements[i], elements[i], depth + 1)) return false;
    arg = FUNCTION_ARG::OfArray(static_cast<std::uint32_t>(columns), static_cast<std::uint32_t>(rows), elements);
    return true;
  }

  // The area list is copied: it may come back as a result, after the host has let go of its arguments.
  bool read_areas(const Record& record, FUNCTION_ARG& arg) noexcept {
    using Areas = typename Dialect::Areas;
    const Areas* from = record.multi.areas;
    if (from == nullptr || from->count == 0) return false;
    const std::size_t size = offsetof(Areas, areas) + std::size_t{from->count} * sizeof(typename Dialect::Area);
    auto* areas = static_cast<Areas*>(context_.arena().Allocate(size, alignof(Areas)));
    if (areas == nullptr) return false;
    std::memcpy(static_cast<void*>(areas), from, size);
    auto multi = record.multi;
    multi.areas = areas;
    arg = FUNCTION_ARG::Empty();
    arg.kind = Dialect::multi_reference;
    std::memcpy(arg.payload, &multi, sizeof multi);
    return true;
  }

  Function_CContext& context_;
  std::uint64_t elements_ = 0;
};

template <class Dialect>
bool write_reference(const FUNCTION_ARG& arg, typename Dialect::Record& record) noexcept {
  if (arg.kind == Dialect::reference) {
    std::memcpy(&record.reference, arg.payload, sizeof record.reference);
    record.type = XL_REFERENCE;
    return true;
  }
  if (arg.kind == Dialect::multi_reference) {
    std::memcpy(&record.multi, arg.payload, sizeof record.multi);
    record.type = XL_MULTI_REFERENCE;
    return true;
  }
  return false;
}

template <class Dialect>
bool write(Function_CContext& context, const FUNCTION_ARG& arg, typename Dialect::Record& record,
           int depth = 0) noexcept {
  using Record = typename Dialect::Record;
  record = Record{};
  switch (arg.kind) {
    case ARG_NUMBER:
      record.number = arg.number;
      record.type = XL_NUMBER;
      return true;
    case ARG_INTEGER:
      // Whole numbers are split by their unsigned value: what is negative or above 65535 comes back as a
      // number. The integer of the older dialect has 16 bits with a sign, so there 32768 to 65535 arrive
      // negative (40000 as -25536); both are kept as worksheets know them.
      if (static_cast<std::uint32_t>(arg.integer) <= 65535) {
        record.integer = static_cast<decltype(record.integer)>(arg.integer);
        record.type = XL_INTEGER;
      } else {
        record.number = arg.integer;
        record.type = XL_NUMBER;
      }
      return true;
    case ARG_BOOLEAN:
      record.boolean = arg.boolean != 0 ? 1 : 0;
      record.type = XL_BOOLEAN;
      return true;
    case ARG_STRING: record.type = XL_STRING; return Dialect::write_text(context, arg.text(), record);
    case ARG_ARRAY: {
      const std::uint64_t count = arg.count();
      if (arg.array.columns > Dialect::max_count || arg.array.rows > Dialect::max_count || depth == max_nesting)
        return false;
      auto* elements = context.arena().template AllocateArray<Record>(static_cast<std::size_t>(count));
      if (elements == nullptr) return false;
      for (std::uint64_t i = 0; i < count; ++i)
        if (!write<Dialect>(context, arg.array.elements[i], elements[i], depth + 1)) return false;
      record.array.elements = elements;
      record.array.rows = static_cast<decltype(record.array.rows)>(arg.array.rows);
      record.array.columns = static_cast<decltype(record.array.columns)>(arg.array.columns);
      record.type = XL_ARRAY;
      return true;
    }
    case ARG_ERROR:
      // An error among the outputs leaves with its number as it is stored, not translated as the error of a
      // whole call is (a stored 7 shows as #DIV/0!, not as #N/A); kept as worksheets know it.
      record.error = static_cast<decltype(record.error)>(arg.error);
      record.type = XL_ERROR;
      return true;
    case ARG_MISSING: record.type = XL_MISSING; return true;
    case ARG_EMPTY: record.type = XL_NIL; return true;
    default: return write_reference<Dialect>(arg, record);
  }
}

}  // namespace

std::uint32_t code_of_error(std::int32_t error) noexcept {
  for (std::uint32_t i = 0; i < std::size(host_errors); ++i)
    if (host_errors[i] == error) return i + 1;
  return ERROR_VALUE;
}

std::int32_t error_of_code(std::uint32_t code) noexcept {
  return code >= 1 && code <= std::size(host_errors) ? host_errors[code - 1] : XL_ERROR_VALUE;
}

bool to_argument(Function_CContext& context, const XlRecord12* record, FUNCTION_ARG& arg) noexcept {
  return record != nullptr && Reader<Dialect12>(context).read(*record, arg);
}

bool to_argument(Function_CContext& context, const XlRecord4* record, FUNCTION_ARG& arg) noexcept {
  return record != nullptr && Reader<Dialect4>(context).read(*record, arg);
}

bool to_record(Function_CContext& context, const FUNCTION_ARG& arg, XlRecord12& record) noexcept {
  return write<Dialect12>(context, arg, record);
}

bool to_record(Function_CContext& context, const FUNCTION_ARG& arg, XlRecord4& record) noexcept {
  return write<Dialect4>(context, arg, record);
}

bool reference_record(const FUNCTION_ARG& arg, XlRecord12& record) noexcept {
  return write_reference<Dialect12>(arg, record);
}

bool reference_record(const FUNCTION_ARG& arg, XlRecord4& record) noexcept {
  return write_reference<Dialect4>(arg, record);
}

}  // namespace norvane::excel
