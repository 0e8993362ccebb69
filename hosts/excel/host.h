// Calls of the spreadsheet host.
#pragma once

#include "hosts/excel/xl_types.h"

namespace norvane::excel {

enum BIND_RESULT : int {
  BIND_OK = 0,
  BIND_NOT_FOUND = 4,  // no host call can be made
  BIND_ALREADY = 5     // the earlier binding stays
};

// Finds the host's entry points, once for the life of the process.
int bind_host() noexcept;

// Whether the host offers the newer dialect.
bool host_speaks_12() noexcept;

// A call of the host; a bit mask of XlReturn. The result pointer may be null. Without
// the entry point the answer is XL_RETURN_FAILED.
int call_host(int function, XlRecord12* result, int count, XlRecord12** args) noexcept;
int call_host(int function, XlRecord4* result, int count, XlRecord4** args) noexcept;

// A record that a call of the host fills, given back to the host exactly once.
template <class Record>
class HostResult {
 public:
  HostResult() noexcept : record_{} { record_.type = XL_NIL; }
  ~HostResult() {
    if (!called_) return;
    Record* arg = &record_;
    call_host(XL_FREE, static_cast<Record*>(nullptr), 1, &arg);
  }
  HostResult(const HostResult&) = delete;
  HostResult& operator=(const HostResult&) = delete;

  int call(int function, int count = 0, Record** args = nullptr) noexcept {
    called_ = true;
    return call_host(function, &record_, count, args);
  }
  const Record& record() const noexcept { return record_; }
  std::uint32_t type() const noexcept { return record_.type & XL_TYPE_MASK; }

 private:
  Record record_;
  bool called_ = false;
};

}  // namespace norvane::excel
