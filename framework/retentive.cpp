#include "framework/retentive.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <new>

#include "core/text.h"

namespace norvane {
namespace {

class MutexSynchronization final : public Function_CSynchronization {
 public:
  void Lock() override { mutex_.lock(); }
  void Unlock() override { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

constexpr std::uint64_t make_handle(std::size_t index, std::uint32_t generation) {
  return std::uint64_t{generation} << 32 | (index + 1);
}

}  // namespace

struct Function_CMutexFactory::State {
  std::mutex mutex;
  std::map<std::u16string, std::shared_ptr<Function_CSynchronization>, std::less<>> objects;
};

Function_CMutexFactory::Function_CMutexFactory() : state_(std::make_unique<State>()) {}
Function_CMutexFactory::~Function_CMutexFactory() = default;

std::shared_ptr<Function_CSynchronization> Function_CMutexFactory::Create(const Function_CRegisteredType& type,
                                                                          std::u16string_view key) noexcept {
  try {
    std::u16string full(type.name());
    full.append(1, u'\0').append(key);
    for (char16_t& unit : full) unit = fold_ascii_upper(unit);  // keys differ by more than case
    const std::lock_guard lock(state_->mutex);
    auto& object = state_->objects[full];
    if (object == nullptr) object = std::make_shared<MutexSynchronization>();
    return object;
  } catch (...) {
    return nullptr;
  }
}

Function_CMutexFactory& Function_CMutexFactory::Process() {
  static Function_CMutexFactory factory;
  return factory;
}

Function_CSynchronizedData::~Function_CSynchronizedData() { std::free(buffer_); }

std::uint32_t Function_CSynchronizedData::GetBuffer(void*& bytes, std::size_t& size, std::size_t requested) noexcept {
  std::uint32_t result = 0;
  if (buffer_ == nullptr) {
    if (requested != 0) buffer_ = static_cast<unsigned char*>(std::calloc(requested, 1));
    if (buffer_ == nullptr) {
      bytes = nullptr;
      size = 0;
      return 4;
    }
    size_ = requested;
    result = 2;
  }
  bytes = buffer_;
  size = size_;
  return result;
}

std::uint32_t Function_CSynchronizedData::SetBuffer(const void* bytes, std::size_t size) noexcept {
  if (bytes == nullptr || size == 0) return 1;
  if (bytes == buffer_) {
    if (size > size_) return 1;
    size_ = size;
    return 0;
  }
  auto* copy = static_cast<unsigned char*>(std::malloc(size));
  if (copy == nullptr) return 1;
  std::memcpy(copy, bytes, size);
  std::free(buffer_);
  buffer_ = copy;
  size_ = size;
  return 0;
}

std::uint32_t Function_CSynchronizedData::FreeBuffer() noexcept {
  std::free(buffer_);
  buffer_ = nullptr;
  size_ = 0;
  return 0;
}

void Function_CDataManager::Unlink(Function_CData* data) noexcept {
  for (Function_CData** link = &in_use_; *link != nullptr; link = &(*link)->next_in_use) {
    if (*link != data) continue;
    *link = data->next_in_use;
    break;
  }
  const std::size_t index = static_cast<std::uint32_t>(data->handle) - 1;
  ++handles_[index].generation;
  handles_[index].data = nullptr;
  free_handles_.push_back(static_cast<std::uint32_t>(index));  // within the capacity reserved by Open
}

void Function_CDataManager::Clear() noexcept {
  for (auto& node : map_)
    if (node.value.data != nullptr) Unlink(node.value.data.get());
  map_.Clear();
  in_use_ = nullptr;
}

std::size_t Function_CDataManager::InUse() const noexcept {
  std::size_t count = 0;
  for (const Function_CData* data = in_use_; data != nullptr; data = data->next_in_use) ++count;
  return count;
}

void Function_CDataManager::DropUnnamed(std::uint64_t handle) noexcept {
  Function_CData* data = OfHandle(handle);
  if (data == nullptr || !data->unnamed) return;
  Unlink(data);
  map_.Erase(data->key);
}

Function_CData* Function_CDataManager::OfHandle(std::uint64_t handle) const noexcept {
  const std::uint64_t index = static_cast<std::uint32_t>(handle) - std::uint64_t{1};
  if (index >= handles_.size() || handles_[index].generation != handle >> 32) return nullptr;
  return handles_[index].data;
}

Function_CData* Function_CDataManager::Open(const Function_CRegisteredType& type, std::u16string_view key,
                                            std::u16string_view name, std::u16string_view caller) noexcept {
  Entry* existing = map_.Find(key);
  if (existing != nullptr && existing->data->type == &type) return existing->data.get();
  if (existing != nullptr && no_replace_) return nullptr;
  try {
    // Everything that can be refused comes first, so that a failure leaves the old object where it was.
    std::unique_ptr<Function_CData> made = type.Create();
    if (made == nullptr) return nullptr;
    made->key.assign(key);
    made->caller.assign(caller);
    made->name.assign(name);
    made->type = &type;
    if (type.synchronised()) {
      for (Function_CSynchronizedDataClassFactory* factory : factories_) {
        made->synchronization = factory->Create(type, key);
        if (made->synchronization != nullptr) break;
      }
    }
    free_handles_.reserve(handles_.size() + 1);
    if (free_handles_.empty()) {
      handles_.push_back({});
      free_handles_.push_back(static_cast<std::uint32_t>(handles_.size() - 1));
    }
    Function_CData* data = made.get();
    if (existing != nullptr) {
      Unlink(existing->data.get());
      existing->data = std::move(made);
    } else {
      map_.Insert(key, Entry{std::move(made)});
    }
    const std::uint32_t index = free_handles_.back();
    free_handles_.pop_back();
    handles_[index].data = data;
    data->handle = make_handle(index, handles_[index].generation);
    if (data->synchronization != nullptr) {
      data->next_in_use = in_use_;
      in_use_ = data;
    }
    return data;
  } catch (...) {
    return nullptr;
  }
}

}  // namespace norvane
