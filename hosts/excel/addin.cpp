// The entry points that a spreadsheet host calls by name, all on its main thread.
#include <cmath>

#include "hosts/excel/host.h"
#include "hosts/excel/registration.h"
#include "hosts/excel/sinks.h"
#include "hosts/module/export.h"
#include "hosts/module/module.h"

namespace norvane::excel {
namespace {

// Records handed to the host outside of worksheet calls. It reads them at once and does not free them.
template <class Record>
class RecordPool {
 public:
  Record* take() noexcept {
    next_ = (next_ + 1) % std::size(records_);
    records_[next_] = Record{};
    return &records_[next_];
  }

 private:
  Record records_[4]{};
  std::size_t next_ = 0;
};

template <class Record>
RecordPool<Record>& pool() noexcept {
  static constinit RecordPool<Record> the_pool;
  return the_pool;
}

template <class Record>
Record* value_error() noexcept {
  Record* result = pool<Record>().take();
  result->error = XL_ERROR_VALUE;
  result->type = XL_ERROR;
  return result;
}

// The action as a whole number, by the host's own conversion; a host without it gives it as it is.
template <class Record>
bool action_is(Record* action, int wanted) noexcept {
  if (action == nullptr) return false;
  Record integer{};
  integer.integer = XL_INTEGER;
  integer.type = XL_INTEGER;
  Record* args[] = {action, &integer};
  HostResult<Record> coerced;
  const bool answered = coerced.call(XL_COERCE, 2, args) == XL_RETURN_SUCCESS;
  const Record& record = answered ? coerced.record() : *action;
  switch (record.type & XL_TYPE_MASK) {
    case XL_INTEGER: return record.integer == wanted;
    case XL_NUMBER: return std::trunc(record.number) == wanted;
    default: return false;
  }
}

constexpr int action_long_name = 1;

unsigned char* name_text(const XlRecord4*) noexcept {
  static unsigned char name[] = {7, 'N', 'o', 'r', 'v', 'a', 'n', 'e'};
  return name;
}
char16_t* name_text(const XlRecord12*) noexcept {
  static char16_t name[] = {7, u'N', u'o', u'r', u'v', u'a', u'n', u'e'};
  return name;
}

template <class Record>
Record* manager_info(Record* action) noexcept {
  const host::FloatingPointGuard guard;
  if (!action_is(action, action_long_name)) return value_error<Record>();
  Record* result = pool<Record>().take();
  result->string = name_text(result);
  result->type = XL_STRING;
  return result;
}

void open() noexcept {
  try {
    if (bind_host() == BIND_NOT_FOUND) return;
    const host::Module* module = host::module();
    if (module != nullptr) register_all(module->library, module->units);
  } catch (...) {
    // Without memory for the texts; what is registered by now works.
    sinks().debug(u"Norvane: not enough memory to register all functions");
  }
}

void close() noexcept {
  try {
    remove_menu_entry();
  } catch (...) {
    sinks().debug(u"Norvane: not enough memory to remove the entry of the menu");
  }
}

}  // namespace
}  // namespace norvane::excel

// Also called again after xlAutoClose without unloading; the host expects 1.
NORVANE_EXPORT int xlAutoOpen() noexcept {
  const norvane::host::FloatingPointGuard guard;
  norvane::excel::open();
  return 1;
}

// Nothing is kept for the host but the binding, which stays; every record of the host has been given back by now.
NORVANE_EXPORT int xlAutoClose() noexcept {
  const norvane::host::FloatingPointGuard guard;
  norvane::excel::close();
  return 1;
}

NORVANE_EXPORT int xlAutoAdd() noexcept { return 1; }

NORVANE_EXPORT int xlAutoRemove() noexcept { return 1; }

// Everything is registered with its type text at opening; to register here would call this entry again.
NORVANE_EXPORT norvane::excel::XlRecord4* xlAutoRegister(norvane::excel::XlRecord4*) noexcept {
  return norvane::excel::value_error<norvane::excel::XlRecord4>();
}

NORVANE_EXPORT norvane::excel::XlRecord4* xlAddInManagerInfo(norvane::excel::XlRecord4* action) noexcept {
  return norvane::excel::manager_info(action);
}

NORVANE_EXPORT norvane::excel::XlRecord12* xlAddInManagerInfo12(norvane::excel::XlRecord12* action) noexcept {
  return norvane::excel::manager_info(action);
}

// The command behind the menu.
NORVANE_EXPORT std::int16_t AboutBox() noexcept {
  norvane::excel::sinks().about();
  return 1;
}
