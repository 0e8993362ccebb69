#include "framework/data_accessor.h"

#include <cstdint>

#include "core/text_buffer.h"
#include "framework/context.h"

namespace norvane {

bool Function_CDataAccessor::Open(Function_CContext& context, const Function_CRegisteredType& type,
                                  std::u16string_view name, bool global) noexcept {
  Close();
  context.HostNotify1();
  Function_CDataManager& manager = context.data_manager();
  std::uint64_t* const slot = context.data_slot();
  if (slot != nullptr && *slot != 0) {
    // A calling place whose formula changed holds an object of another function: not this one's.
    Function_CData* held = manager.OfHandle(*slot);
    if (held != nullptr && held->type == &type) {
      data_ = held;
      return true;
    }
  }
  const bool unnamed = name.empty();
  TextBuffer<64> derived;
  if (slot != nullptr && name.empty()) name = (derived << u"CachedData:" << static_cast<const void*>(slot)).view();
  const Function_CCallerInfo* caller = context.caller_info();
  const std::u16string_view place = caller != nullptr ? caller->range_text : std::u16string_view{};
  TextBuffer<1024> key;
  if (name.empty())
    key << place;
  else if (global)
    key << name;
  else
    key << type.name() << u"." << (caller != nullptr ? caller->scope_text : std::u16string_view{}) << u"!" << name;
  data_ = manager.Open(type, key.view(), name, place);
  if (data_ == nullptr) return false;
  data_->unnamed = unnamed;
  if (slot != nullptr) *slot = data_->handle;
  return true;
}

}  // namespace norvane
