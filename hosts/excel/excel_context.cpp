#include "hosts/excel/excel_context.h"

#include "hosts/excel/host.h"
#include "hosts/excel/platform.h"
#include "hosts/excel/sinks.h"

namespace norvane::excel {
namespace {

// The text of a record, which begins with its length. False when it is longer than the buffer.
template <std::size_t Size>
bool append_text(TextBuffer<Size>& buffer, const XlRecord12& record) noexcept {
  buffer << std::u16string_view{record.string + 1, record.string[0]};
  return !buffer.cut();
}
template <std::size_t Size>
bool append_text(TextBuffer<Size>& buffer, const XlRecord4& record) noexcept {
  char16_t text[max_text4];
  std::size_t length = 0;
  if (!platform::from_code_page(record.string + 1, record.string[0], text, length)) return false;
  buffer << std::u16string_view{text, length};
  return !buffer.cut();
}

}  // namespace

Excel_CFunctionContext::Excel_CFunctionContext(const Function_CLibrary& library,
                                               const Unit_CTypeAndUnitContainer& units)
    : Function_CContext(library, units) {
  EnableMessages(platform::debug_asked());
}

bool Excel_CFunctionContext::NoteAnswer(int answer) noexcept {
  if ((answer & (XL_RETURN_UNCALCULATED | XL_RETURN_ABORT)) != 0) host_closed_ = true;
  return answer == XL_RETURN_SUCCESS;
}

// Asks the host for what the cells hold; without a place for the value it only checks that they hold something.
template <class Record>
bool Excel_CFunctionContext::Coerce(const FUNCTION_ARG& reference, FUNCTION_ARG* value) noexcept {
  Record record{};
  if (!reference_record(reference, record)) return FailConversion(ERROR_VALUE);
  Record* args[] = {&record};
  HostResult<Record> cells;
  if (!NoteAnswer(cells.call(XL_COERCE, 1, args))) return FailConversion(host_closed_ ? ERROR_NA : ERROR_VALUE);
  if (value == nullptr) return true;
  // A host that answers a reference with a reference would be asked for ever.
  if (!to_argument(*this, &cells.record(), *value) || is_reference(value->kind)) return FailConversion(ERROR_VALUE);
  return true;
}

bool Excel_CFunctionContext::Resolve(const FUNCTION_ARG& reference, FUNCTION_ARG* value) noexcept {
  if (host_closed_) return FailConversion(ERROR_NA);
  const bool from12 = reference.kind == ARG_REFERENCE12 || reference.kind == ARG_MULTI_REFERENCE12;
  return from12 ? Coerce<XlRecord12>(reference, value) : Coerce<XlRecord4>(reference, value);
}

bool Excel_CFunctionContext::ConvertArgument(FUNCTION_ARG& out, const FUNCTION_ARG& in, std::uint32_t kind) noexcept {
  if (!is_reference(in.kind) || kind == ARG_MISSING || kind == ARG_EMPTY)
    return Function_CContext::ConvertArgument(out, in, kind);
  FUNCTION_ARG value;
  if (!Resolve(in, &value)) {
    out.kind = kind;
    return false;
  }
  // An argument is asked for once a call, however often it is read.
  const FUNCTION_ARG* first = arguments();
  if (first != nullptr && &in >= first && &in < first + argument_count()) arguments()[&in - first] = value;
  return Function_CContext::ConvertArgument(out, value, kind);
}

void Excel_CFunctionContext::ReportMessage(std::uint32_t level, std::u16string_view text) noexcept {
  TextBuffer<600> line;
  line << (level == MESSAGE_ERROR ? u"Norvane: error: " : u"Norvane: warning: ") << text;
  sinks().debug(line.view());
}

template <class Record>
void Excel_CFunctionContext::FindCaller() noexcept {
  HostResult<Record> caller;
  if (!NoteAnswer(caller.call(XLF_CALLER))) return;
  const auto take = [this](const auto& area) {
    const std::int32_t last_row = area.last_row;
    const std::int32_t last_column = area.last_column;
    // An area beyond every sheet is no caller, and its size need not fit a number.
    if (area.first_row < 0 || area.first_column < 0 || last_row >= sheet_rows || last_column >= sheet_columns) return;
    const std::int32_t rows = last_row - area.first_row + 1;
    const std::int32_t columns = last_column - area.first_column + 1;
    if (rows < 1 || columns < 1) return;
    caller_.first_row = area.first_row;
    caller_.first_column = area.first_column;
    caller_.rows = rows;
    caller_.columns = columns;
    const bool single = rows == 1 && columns == 1;
    caller_.end_row = single ? -1 : area.last_row;
    caller_.end_column = single ? -1 : area.last_column;
    caller_known_ = true;
  };
  const Record& record = caller.record();
  // Anything else is a menu, a toolbar or another add-in.
  const std::uint32_t type = caller.type();
  if (type == XL_REFERENCE)
    take(record.reference.area);
  else if (type == XL_MULTI_REFERENCE && record.multi.areas != nullptr && record.multi.areas->count >= 1)
    take(record.multi.areas->areas[0]);
}

template <class Record>
bool Excel_CFunctionContext::FindSheet() noexcept {
  Record place{};
  place.reference.count = 1;
  auto& area = place.reference.area;
  using Row = decltype(area.first_row);
  using Column = decltype(area.first_column);
  area.first_row = static_cast<Row>(caller_.first_row);
  area.last_row = static_cast<Row>(caller_.first_row + caller_.rows - 1);
  area.first_column = static_cast<Column>(caller_.first_column);
  area.last_column = static_cast<Column>(caller_.first_column + caller_.columns - 1);
  place.type = XL_REFERENCE;
  Record* args[] = {&place};
  HostResult<Record> name;
  if (!NoteAnswer(name.call(XL_SHEET_NAME, 1, args))) return false;
  if (name.type() != XL_STRING || name.record().string == nullptr) return false;
  place_.clear();
  return append_text(place_, name.record()) && !place_.view().empty() && place_.view().size() <= longest_sheet;
}

// The rectangle only: the text costs two more calls of the host and is wanted by retentive functions alone.
const Function_CCallerInfo* Excel_CFunctionContext::FetchCallerInfo() noexcept {
  if (!caller_asked_ && !host_closed_) {
    caller_asked_ = true;
    switch (dialect_) {
      case Dialect::excel12: FindCaller<XlRecord12>(); break;
      case Dialect::excel4: FindCaller<XlRecord4>(); break;
      case Dialect::none: break;
    }
  }
  return &caller_;
}

// A thread-safe function may not ask the host for the text of its caller, so it is put together here. A
// caller without a sheet's name keeps the data slot that it was started with.
void Excel_CFunctionContext::HostNotify1() noexcept {
  if (dialect_ == Dialect::none || place_asked_) return;
  FetchCallerInfo();
  if (!caller_known_ || host_closed_) return;
  place_asked_ = true;
  if (!(dialect_ == Dialect::excel12 ? FindSheet<XlRecord12>() : FindSheet<XlRecord4>())) return;
  const std::size_t sheet = place_.view().size();
  place_ << u"!R" << caller_.first_row + 1 << u"C" << caller_.first_column + 1;
  if (caller_.end_row >= 0) place_ << u":R" << caller_.end_row + 1 << u"C" << caller_.end_column + 1;
  std::uint64_t* slot = SlotOf(place_.view());
  if (slot == nullptr) return;
  caller_.range_text = place_.view();
  caller_.scope_text = caller_.range_text.substr(0, sheet);
  SetDataSlot(slot);
}

// Null when memory is refused.
std::uint64_t* Excel_CFunctionContext::SlotOf(std::u16string_view cell) noexcept {
  if (std::uint64_t* slot = slots_.Find(cell)) return slot;
  if (slots_.Count() >= most_cells) {
    const auto oldest = slots_.begin();
    data_manager().DropUnnamed(oldest->value);
    slots_.Erase(oldest->key);
  }
  try {
    return &slots_.Insert(cell, 0);
  } catch (...) {
    return nullptr;
  }
}

std::uint32_t Excel_CFunctionContext::Run(Dialect dialect, const Function_CFunctionSpec& spec, FUNCTION_ARG* args,
                                          std::size_t count, FUNCTION_ARG& output,
                                          std::uint64_t* data_slot) noexcept {
  dialect_ = dialect;
  host_closed_ = false;
  caller_asked_ = false;
  caller_known_ = false;
  place_asked_ = false;
  caller_ = {};
  std::uint32_t status = ERROR_OK;
  if (messages_enabled())
    for (std::size_t i = 0; i < count && !host_closed_; ++i)
      if (is_reference(args[i].kind)) Resolve(args[i], nullptr);
  if (!host_closed_) {
    std::uint32_t flags = 0;
    status = Execute(spec, args, count, output, flags, data_slot);
    if (status == ERROR_OK) status = concealed_error();
  }
  // Also when a cell turned out to be uncalculated while it was read, and whatever the fallback outputs say.
  if (host_closed_) status = ERROR_NA;
  dialect_ = Dialect::none;
  caller_ = {};
  return status;
}

std::unique_ptr<Function_CContext> make_context(const host::Module& module) {
  return std::make_unique<XLL_CFunctionContext>(module.library, module.units, platform::thread_number());
}

}  // namespace norvane::excel
