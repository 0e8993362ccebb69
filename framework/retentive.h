// Retentive data: what a function keeps from one call to the next. A call opens its own with a data accessor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/string_map.h"

namespace norvane {

class Function_CData;

// One static object per kind of retentive data.
class Function_CRegisteredType {
 public:
  constexpr Function_CRegisteredType(std::u16string_view name, bool synchronised)
      : name_(name), synchronised_(synchronised) {}
  virtual ~Function_CRegisteredType() = default;
  // A new, empty data object, or null when memory is refused.
  virtual std::unique_ptr<Function_CData> Create() const noexcept = 0;

  std::u16string_view name() const noexcept { return name_; }
  bool synchronised() const noexcept { return synchronised_; }

 private:
  std::u16string_view name_;
  bool synchronised_;
};

// A registered type whose objects are Data, default constructed.
template <class Data, bool Synchronised = false>
class Function_CTypeOf final : public Function_CRegisteredType {
 public:
  explicit constexpr Function_CTypeOf(std::u16string_view name) : Function_CRegisteredType(name, Synchronised) {}
  std::unique_ptr<Function_CData> Create() const noexcept override {
    try {
      return std::make_unique<Data>();
    } catch (...) {
      return nullptr;
    }
  }
};

// Serialises the access of several threads to what they share under one key.
class Function_CSynchronization {
 public:
  virtual ~Function_CSynchronization() = default;
  virtual void Lock() = 0;
  virtual void Unlock() = 0;
  // What the threads share; read and set under the lock. Kept as long as the factory.
  std::shared_ptr<void> shared;
};

class Function_CSynchronizedDataClassFactory {
 public:
  virtual ~Function_CSynchronizedDataClassFactory() = default;
  // The synchronisation object of this type and key, or null when this factory has none to give.
  virtual std::shared_ptr<Function_CSynchronization> Create(const Function_CRegisteredType& type,
                                                            std::u16string_view key) noexcept = 0;
};

// Hands the same mutex to every context that opens the same key, so that data can be shared between threads.
class Function_CMutexFactory final : public Function_CSynchronizedDataClassFactory {
 public:
  Function_CMutexFactory();
  ~Function_CMutexFactory() override;
  std::shared_ptr<Function_CSynchronization> Create(const Function_CRegisteredType& type,
                                                    std::u16string_view key) noexcept override;
  // The factory that every context asks, one for the process.
  static Function_CMutexFactory& Process();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Base of all data objects.
class Function_CData {
 public:
  virtual ~Function_CData() = default;

  const Function_CRegisteredType* type = nullptr;
  std::u16string key;
  std::u16string caller;  // text of the calling range when the object was made
  std::u16string name;
  std::shared_ptr<Function_CSynchronization> synchronization;
  Function_CData* next_in_use = nullptr;  // list of objects that carry a synchronisation object
  std::uint64_t handle = 0;
  bool unnamed = false;  // of a calling place, not of a name
};

// A data object whose payload is one owned byte buffer.
class Function_CSynchronizedData : public Function_CData {
 public:
  ~Function_CSynchronizedData() override;
  virtual void OnAttached() {}
  // 0: the buffer that exists, whatever size was requested; 2: a new one, zero-filled; 4: none exists and the
  // requested size is 0 (also when memory is refused).
  virtual std::uint32_t GetBuffer(void*& bytes, std::size_t& size, std::size_t requested) noexcept;
  // 1: bytes absent, size 0, or more of the object's own buffer than it has; 0: the payload is a copy of the bytes.
  // The object's own buffer with a smaller size is kept and cut.
  virtual std::uint32_t SetBuffer(const void* bytes, std::size_t size) noexcept;
  virtual std::uint32_t FreeBuffer() noexcept;

 private:
  unsigned char* buffer_ = nullptr;
  std::size_t size_ = 0;
};

// The retentive data of one context. Not locked: a context belongs to one thread.
class Function_CDataManager {
 public:
  Function_CDataManager() = default;
  ~Function_CDataManager() { Clear(); }
  Function_CDataManager(const Function_CDataManager&) = delete;
  Function_CDataManager& operator=(const Function_CDataManager&) = delete;

  void AddFactory(Function_CSynchronizedDataClassFactory& factory) { factories_.push_back(&factory); }
  // When set, an object is never replaced by one of another type.
  void SetNoReplace(bool value) noexcept { no_replace_ = value; }
  void Clear() noexcept;
  std::size_t Count() const noexcept { return map_.Count(); }
  std::size_t InUse() const noexcept;

  // The object under the key, made when there is none; null when another type holds the key
  // and may not be replaced, or when memory is refused.
  Function_CData* Open(const Function_CRegisteredType& type, std::u16string_view key, std::u16string_view name,
                       std::u16string_view caller) noexcept;
  // Destroys the object of a handle, unless it has a name: a calling place that is given up takes its data along.
  void DropUnnamed(std::uint64_t handle) noexcept;
  // The living object of a handle, or null for a handle of the past.
  Function_CData* OfHandle(std::uint64_t handle) const noexcept;

 private:
  void Unlink(Function_CData* data) noexcept;

  struct Entry {
    std::unique_ptr<Function_CData> data;
  };
  struct HandleSlot {
    Function_CData* data = nullptr;
    std::uint32_t generation = 0;
  };
  Core_CCIStringMap<Entry> map_;
  std::vector<Function_CSynchronizedDataClassFactory*> factories_;
  std::vector<HandleSlot> handles_;
  std::vector<std::uint32_t> free_handles_;
  Function_CData* in_use_ = nullptr;
  bool no_replace_ = false;
};

}  // namespace norvane
