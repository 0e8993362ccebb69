#include "tests/hosts/excel/spreadsheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <sstream>
#include <thread>
#include <utility>

#include "core/text.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace sheet {
namespace {

using namespace norvane::excel;

constexpr int max_pointer_arguments = 40;
constexpr std::size_t max_host_text = 255;
constexpr int returned_invalid_count = 4;
constexpr int returned_invalid_record = 8;

const std::u16string sheet_names[] = {u"[Book1]Sheet1", u"[Book1]Sh\u00E9et 2", u"[Other book.xlsx]Data"};

// What the calling thread is doing inside the add-in.
struct Frame {
  enum class What { function, command } what;
  Place caller;
  bool thread_safe;
  bool closed = false;  // after "uncalculated" only xlFree may be called
};
thread_local Frame* current_frame = nullptr;

class Inside {
 public:
  explicit Inside(Frame& frame) : outer_(std::exchange(current_frame, &frame)) {}
  ~Inside() { current_frame = outer_; }

 private:
  Frame* outer_;
};

template <std::size_t... I>
void* InvokeWith(void* entry, void** args, std::index_sequence<I...>) {
  using Function = void* (*)(decltype(static_cast<void>(I), static_cast<void*>(nullptr))...);
  return reinterpret_cast<Function>(entry)(args[I]...);
}
template <std::size_t N>
void* InvokeN(void* entry, void** args) {
  return InvokeWith(entry, args, std::make_index_sequence<N>());
}
template <std::size_t... N>
constexpr auto MakeInvokers(std::index_sequence<N...>) {
  return std::array{&InvokeN<N>...};
}
constexpr auto invokers = MakeInvokers(std::make_index_sequence<max_pointer_arguments + 1>());

#if defined(_WIN32)
std::wstring Wide(const char* path) {
  std::wstring text;
  for (const char* c = path; *c != '\0'; ++c) text += static_cast<wchar_t>(static_cast<unsigned char>(*c));
  return text;
}
#endif

}  // namespace

Spreadsheet& Spreadsheet::Instance() {
  static Spreadsheet instance;
  return instance;
}

bool Spreadsheet::Load(const char* path) {
#if defined(_WIN32)
  module_ = LoadLibraryW(Wide(path).c_str());
#else
  module_ = dlopen(path, RTLD_NOW | RTLD_LOCAL);
#endif
  module_name_ = norvane::to_utf16(path);
  return module_ != nullptr;
}

void* Spreadsheet::Entry(const char* name) const {
#if defined(_WIN32)
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module_), name));
#else
  return dlsym(module_, name);
#endif
}

bool Spreadsheet::Unload() {
#if defined(_WIN32)
  FreeLibrary(static_cast<HMODULE>(module_));
  module_ = nullptr;
  // In a statement of its own: the order of evaluation inside one is not fixed.
  return GetModuleHandleW(L"Norvane.XLL") == nullptr;
#else
  dlclose(module_);
  module_ = nullptr;
  return dlopen("Norvane.so", RTLD_NOW | RTLD_NOLOAD) == nullptr;
#endif
}

int Spreadsheet::Open() {
  Frame frame{Frame::What::command, {}, false};
  Inside inside(frame);
  return reinterpret_cast<int (*)()>(Entry("xlAutoOpen"))();
}

int Spreadsheet::Close() {
  Frame frame{Frame::What::command, {}, false};
  Inside inside(frame);
  return reinterpret_cast<int (*)()>(Entry("xlAutoClose"))();
}

void Spreadsheet::Set(Place cell, Value value) {
  const std::lock_guard lock(mutex_);
  cells_[{cell.sheet, cell.row, cell.column}] = {std::move(value), true};
}

void Spreadsheet::SetUncalculated(Place cell) {
  const std::lock_guard lock(mutex_);
  cells_[{cell.sheet, cell.row, cell.column}].calculated = false;
}

Value Spreadsheet::Get(Place cell) {
  const std::lock_guard lock(mutex_);
  return cells_[{cell.sheet, cell.row, cell.column}].value;
}

const Registration* Spreadsheet::Find(const std::u16string& function) const {
  const auto found = registrations_.find(function);
  return found != registrations_.end() ? &found->second : nullptr;
}

const Record* Spreadsheet::CallUnchecked(const Registration& function, Record** args, Place caller) {
  Frame frame{Frame::What::function, caller, function.type.find(u'$') != std::u16string::npos};
  Inside inside(frame);
  void* result = invokers[function.argument_count](function.entry, reinterpret_cast<void**>(args));
  return static_cast<const Record*>(result);
}

Value Spreadsheet::Call(const std::u16string& function, const std::vector<Value>& args, Place caller,
                        bool* met_uncalculated) {
  const Registration* found = Find(function);
  if (found == nullptr) {
    Note("call of an unknown function " + norvane::to_utf8(function));
    return Value{Kind::null};
  }
  Frame frame{Frame::What::function, caller, found->type.find(u'$') != std::u16string::npos};
  const Record* result = nullptr;
  {
    CallMemory memory;
    std::vector<Record> records(found->argument_count);
    std::vector<void*> pointers;
    for (std::size_t i = 0; i < found->argument_count; ++i) {
      Write(i < args.size() ? args[i] : Missing(), records[i], memory, caller.sheet);
      pointers.push_back(&records[i]);
    }
    Inside inside(frame);
    result = static_cast<const Record*>(invokers[found->argument_count](found->entry, pointers.data()));
  }  // the arguments are gone before the result is read
  if (met_uncalculated != nullptr) *met_uncalculated = frame.closed;
  return result != nullptr ? Read(*result, caller.sheet) : Value{Kind::null};
}

Value Spreadsheet::CallRaw(const std::u16string& function, std::vector<Record*> args) {
  const Registration* found = Find(function);
  if (found == nullptr || args.size() != found->argument_count) {
    Note("raw call with the wrong arguments");
    return Value{Kind::null};
  }
  const Record* result = CallUnchecked(*found, args.data(), Place::Cell(0, 5, 5));
  return result != nullptr ? Read(*result, 0) : Value{Kind::null};
}

Value Spreadsheet::CallEntry(const char* name, const Value& arg) {
  Frame frame{Frame::What::command, {}, false};
  Inside inside(frame);
  CallMemory memory;
  Record record{};
  Write(arg, record, memory, 0);
  const auto entry = reinterpret_cast<Record* (*)(Record*)>(Entry(name));
  const Record* result = entry != nullptr ? entry(&record) : nullptr;
  return result != nullptr ? Read(*result, 0) : Value{Kind::null};
}

void Spreadsheet::SetFormula(Place cells, std::u16string function, std::vector<Value> args) {
  formulas_.push_back({cells, std::move(function), std::move(args)});
  for (int row = cells.row; row <= cells.end_row; ++row)
    for (int column = cells.column; column <= cells.end_column; ++column)
      SetUncalculated(Place::Cell(cells.sheet, row, column));
}

void Spreadsheet::Store(const Place& cells, const Value& value) {
  for (int r = 0; r < cells.rows(); ++r) {
    for (int c = 0; c < cells.columns(); ++c) {
      const bool inside = value.kind != Kind::array || (r < value.rows && c < value.columns);
      const std::size_t index =
          static_cast<std::size_t>(r) * static_cast<std::size_t>(value.columns) + static_cast<std::size_t>(c);
      const Value element = value.kind != Kind::array ? value : (inside ? value.elements[index] : Error(XL_ERROR_NA));
      Set(Place::Cell(cells.sheet, cells.row + r, cells.column + c), element);
    }
  }
}

int Spreadsheet::Recalculate(int threads) {
  for (const Formula& formula : formulas_)
    for (int row = formula.cells.row; row <= formula.cells.end_row; ++row)
      for (int column = formula.cells.column; column <= formula.cells.end_column; ++column)
        SetUncalculated(Place::Cell(formula.cells.sheet, row, column));
  std::mutex queue_mutex;
  std::deque<const Formula*> queue;
  for (const Formula& formula : formulas_) queue.push_back(&formula);
  std::atomic<int> calls{0};
  std::atomic<int> unfinished{static_cast<int>(queue.size())};
  const auto work = [&] {
    while (unfinished.load() > 0) {
      const Formula* formula = nullptr;
      {
        const std::lock_guard lock(queue_mutex);
        if (!queue.empty()) {
          formula = queue.front();
          queue.pop_front();
        }
      }
      if (formula == nullptr) {
        std::this_thread::yield();
        continue;
      }
      bool again = false;
      const Value value = Call(formula->function, formula->args, formula->cells, &again);
      ++calls;
      if (again) {
        if (value != Error(XL_ERROR_NA))
          Note("a cell waiting for another was answered with " + testing::PrintToString(value));
        const std::lock_guard lock(queue_mutex);
        queue.push_back(formula);
        continue;
      }
      Store(formula->cells, value);
      --unfinished;
    }
  };
  std::vector<std::thread> workers;
  for (int i = 1; i < threads; ++i) workers.emplace_back(work);
  work();
  for (std::thread& worker : workers) worker.join();
  return calls;
}

std::vector<std::string> Spreadsheet::violations() {
  const std::lock_guard lock(mutex_);
  return violations_;
}

std::size_t Spreadsheet::outstanding() {
  const std::lock_guard lock(mutex_);
  return blocks_.size() + results_.size();
}

std::size_t Spreadsheet::callbacks() {
  const std::lock_guard lock(mutex_);
  return callbacks_;
}

void Spreadsheet::Note(std::string violation) {
  const std::lock_guard lock(mutex_);
  if (violations_.size() < 50) violations_.push_back(std::move(violation));
}

// ---- What the add-in may call ------------------------------------------------------------------------------------

int Spreadsheet::Callback(int function, int count, Record** args, Record* result) {
  {
    const std::lock_guard lock(mutex_);
    ++callbacks_;
  }
  if (current_frame == nullptr) {
    Note("a call of the host while it has not called the add-in: " + std::to_string(function));
    return XL_RETURN_FAILED;
  }
  if (count < 0 || count > (excel12 ? 255 : 30)) {
    Note("a call with too many arguments: " + std::to_string(count));
    return returned_invalid_count;
  }
  if (current_frame->closed && function != XL_FREE) {
    Note("a call after the answer 'uncalculated': " + std::to_string(function));
    return XL_RETURN_FAILED;
  }
  for (int i = 0; i < count; ++i) {
    if (args == nullptr || args[i] == nullptr) {
      Note("a null argument for the host");
      return returned_invalid_record;
    }
  }
  const bool essential = function == XLF_REGISTER || function == XL_GET_NAME;
  if (minimal_ && !essential) return XL_RETURN_INVALID_FUNCTION;
  switch (function) {
    case XL_FREE: return Free(count, args);
    case XL_COERCE: return Coerce(count, args, result);
    case XL_GET_NAME: return Answer(Text(module_name_), result);
    case XLF_CALLER:
      if (current_frame->what == Frame::What::command) return Answer(Error(XL_ERROR_REF), result);
      return Answer(Reference(current_frame->caller), result);
    case XL_SHEET_NAME: {
      if (count != 1) return returned_invalid_count;
      const Value value = Read(*args[0], current_frame->caller.sheet);
      if (value.kind != Kind::reference) return returned_invalid_record;
      return Answer(Text(sheet_names[value.place.sheet]), result);
    }
    case XLF_REGISTER: return Register(count, args, result);
    case XLF_ADD_COMMAND: {
      if (current_frame->what != Frame::What::command) Note("a command function called from a worksheet function");
      std::vector<Value> values;
      for (int i = 0; i < count; ++i) values.push_back(Read(*args[i], 0));
      menu_commands_.push_back(std::move(values));
      return Answer(Number(1), result);
    }
    case XLF_DELETE_COMMAND: {
      if (current_frame->what != Frame::What::command) Note("a command function called from a worksheet function");
      const auto entry = std::find_if(menu_commands_.begin(), menu_commands_.end(), [&](const auto& added) {
        return count == 3 && added[0] == Read(*args[0], 0) && added[1] == Read(*args[1], 0) &&
               added[2].elements[0] == Read(*args[2], 0);
      });
      if (entry == menu_commands_.end()) {
        Note("an entry that no menu has was to be removed");
        return Answer(Error(XL_ERROR_VALUE), result);
      }
      menu_commands_.erase(entry);
      return Answer(Boolean(true), result);
    }
    default: {
      if (current_frame->thread_safe) Note("a thread-safe function asked for " + std::to_string(function));
      return XL_RETURN_INVALID_FUNCTION;
    }
  }
}

int Spreadsheet::Answer(const Value& value, Record* result) {
  if (result == nullptr) return XL_RETURN_SUCCESS;
  if (minimal_) {
    // Such a host does not know xlFree and keeps its texts itself.
    static CallMemory kept;
    Write(value, *result, kept, 0);
    return XL_RETURN_SUCCESS;
  }
  class HandedOut final : public Memory {
   public:
    explicit HandedOut(Spreadsheet& owner) : owner_(owner) {}
    void* Take(std::size_t size) override {
      void* block = std::malloc(size);
      const std::lock_guard lock(owner_.mutex_);
      owner_.blocks_[block] = size;
      return block;
    }

   private:
    Spreadsheet& owner_;
  } memory(*this);
  Write(value, *result, memory, current_frame->caller.sheet);
  result->type = static_cast<decltype(result->type)>(result->type | host_frees);
  bool again = false;
  {
    const std::lock_guard lock(mutex_);
    again = !results_.insert(result).second;
  }
  if (again) Note("a result record was filled again before it was given back");
  return XL_RETURN_SUCCESS;
}

void Spreadsheet::Release(Record& record) {
  const auto give_back = [this](void* block) {
    const bool ours = [&] {
      const std::lock_guard lock(mutex_);
      return blocks_.erase(block) == 1;
    }();
    if (ours)
      std::free(block);
    else
      Note("memory that is not the host's was given to xlFree");
  };
  switch (record.type & XL_TYPE_MASK) {
    case XL_STRING: give_back(record.string); break;
    case XL_MULTI_REFERENCE: give_back(record.multi.areas); break;
    case XL_ARRAY: {
      const std::size_t count =
          static_cast<std::size_t>(record.array.rows) * static_cast<std::size_t>(record.array.columns);
      for (std::size_t i = 0; i < count; ++i) Release(record.array.elements[i]);
      give_back(record.array.elements);
      break;
    }
    default: break;
  }
  record.string = nullptr;
}

int Spreadsheet::Free(int count, Record** args) {
  for (int i = 0; i < count; ++i) {
    const bool awaited = [&] {
      const std::lock_guard lock(mutex_);
      return results_.erase(args[i]) == 1;
    }();
    if (awaited)
      Release(*args[i]);
    else if ((args[i]->type & XL_TYPE_MASK) != XL_NIL)
      Note("xlFree of a record that is no result of the host, or for the second time");
  }
  return XL_RETURN_SUCCESS;
}

Value Spreadsheet::ReadCells(const Place& place, bool& calculated) {
  const std::lock_guard lock(mutex_);
  std::vector<Value> elements;
  calculated = true;
  for (int row = place.row; row <= place.end_row; ++row) {
    for (int column = place.column; column <= place.end_column; ++column) {
      const auto found = cells_.find({place.sheet, row, column});
      if (found == cells_.end()) {
        elements.push_back(Blank());
        continue;
      }
      if (!found->second.calculated) calculated = false;
      elements.push_back(found->second.value);
    }
  }
  if (elements.size() == 1) return elements[0];
  return Array(place.rows(), place.columns(), std::move(elements));
}

int Spreadsheet::Coerce(int count, Record** args, Record* result) {
  if (count < 1 || count > 2) return returned_invalid_count;
  Value value = Read(*args[0], current_frame->caller.sheet);
  if (value.kind == Kind::reference) {
    bool calculated = true;
    value = ReadCells(value.place, calculated);
    if (!calculated) {
      current_frame->closed = true;
      return XL_RETURN_UNCALCULATED;
    }
  }
  if (count == 2 && value.kind == Kind::number && Read(*args[1], 0) == Integer(XL_INTEGER))
    value = Integer(static_cast<int>(value.number));
  return Answer(value, result);
}

bool Spreadsheet::Accept(Registration& entry, const std::vector<Value>& args) {
  const auto text = [&args](std::size_t i) { return i < args.size() ? args[i].text : std::u16string(); };
  for (std::size_t i = 1; i < args.size(); ++i)
    if (args[i].kind == Kind::text && args[i].text.size() > max_host_text) return false;
  if (text(0) != module_name_) return false;
  entry.procedure = norvane::to_utf8(text(1));
  entry.type = text(2);
  entry.function = text(3);
  entry.arguments = text(4);
  entry.macro_type = text(5);
  entry.category = text(6);
  entry.help = text(9);
  for (std::size_t i = 10; i < args.size(); ++i) entry.argument_helps.push_back(args[i]);
  entry.entry = Entry(entry.procedure.c_str());
  if (entry.entry == nullptr || entry.function.empty() || entry.function == refuse_) return false;
  if (entry.type == u"A") return true;
  const char16_t letter = excel12 ? u'U' : u'R';
  if (entry.type.empty() || entry.type[0] != letter) return false;
  std::size_t i = 1;
  while (i < entry.type.size() && entry.type[i] == letter) ++i;
  entry.argument_count = i - 1;
  if (entry.argument_count > (excel12 ? std::size_t{max_pointer_arguments} : 30)) return false;
  for (; i < entry.type.size(); ++i)
    if (entry.type[i] != u'!' && !(excel12 && entry.type[i] == u'$')) return false;
  return true;
}

int Spreadsheet::Register(int count, Record** args, Record* result) {
  if (current_frame->what != Frame::What::command) Note("a registration from a worksheet function");
  std::vector<Value> values;
  for (int i = 0; i < count; ++i) values.push_back(Read(*args[i], 0));
  Registration entry;
  if (!Accept(entry, values)) {
    // The return code still says success.
    ++refused_;
    return Answer(Error(XL_ERROR_VALUE), result);
  }
  registrations_[entry.function] = entry;
  return Answer(Number(static_cast<double>(registrations_.size())), result);
}

}  // namespace sheet

#if defined(_WIN32)
#define SHEET_EXPORT extern "C" __declspec(dllexport)
#else
#define SHEET_EXPORT extern "C" __attribute__((visibility("default")))
#endif

#if SHEET_EXCEL12
SHEET_EXPORT int MdCallBack12(int function, int count, sheet::Record** args, sheet::Record* result) {
  return sheet::Spreadsheet::Instance().Callback(function, count, args, result);
}
#else
// On Windows the library with the older dialect's entry passes its calls on to this one.
SHEET_EXPORT int MdCallBack(int function, int count, sheet::Record** args, sheet::Record* result) {
  return sheet::Spreadsheet::Instance().Callback(function, count, args, result);
}
#if !defined(_WIN32)
SHEET_EXPORT int Excel4v(int function, sheet::Record* result, int count, sheet::Record** args) {
  return sheet::Spreadsheet::Instance().Callback(function, count, args, result);
}
#endif
#endif
