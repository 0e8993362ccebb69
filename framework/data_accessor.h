// How an implementation opens the retentive data of its call.
#pragma once

#include <string_view>

#include "framework/retentive.h"

namespace norvane {

class Function_CContext;

// Holds the data object of one call; letting go does not destroy the object.
class Function_CDataAccessor {
 public:
  Function_CDataAccessor() = default;
  ~Function_CDataAccessor() { Close(); }
  Function_CDataAccessor(const Function_CDataAccessor&) = delete;
  Function_CDataAccessor& operator=(const Function_CDataAccessor&) = delete;

  // The object in the caller's data slot when it is of this type; otherwise the one under the key of type, caller
  // and name, made when there is none, its handle stored in the slot. An empty name stands for the calling place.
  bool Open(Function_CContext& context, const Function_CRegisteredType& type, std::u16string_view name,
            bool global = false) noexcept;
  void Close() noexcept { data_ = nullptr; }
  Function_CData* data() const noexcept { return data_; }
  template <class Data>
  Data& as() const noexcept {
    return static_cast<Data&>(*data_);
  }

 private:
  Function_CData* data_ = nullptr;
};

}  // namespace norvane
