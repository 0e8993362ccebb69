#include "core/variant.h"

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

#include "core/text.h"

namespace norvane {

// The count comes first: whoever shares the block finds it without knowing what kind of block it is.
struct Core_CSharedBuffer {
  std::atomic<std::uint32_t> count{1};
  std::uint32_t size = 0;
  unsigned char* bytes() noexcept { return reinterpret_cast<unsigned char*>(this + 1); }
};

struct Core_CSharedArray {
  std::atomic<std::uint32_t> count{1};
  std::uint32_t size = 0;
  Core_CVariant* elements = nullptr;
};

Core_CVariant::Core_CVariant(bool value) noexcept { SetBool(value); }
Core_CVariant::Core_CVariant(double value) noexcept { SetDouble(value); }
Core_CVariant::Core_CVariant(std::int32_t value) noexcept { SetInt32(value); }

Core_CVariant::Core_CVariant(const Core_CVariant& other) { CopyFrom(other); }

Core_CVariant::Core_CVariant(Core_CVariant&& other) noexcept
    : tag_(other.tag_), length_(other.length_), payload_(other.payload_) {
  other.tag_ = EMPTY;
}

Core_CVariant& Core_CVariant::operator=(const Core_CVariant& other) {
  if (this == &other) return *this;
  Core_CVariant copy(other);
  return *this = std::move(copy);
}

Core_CVariant& Core_CVariant::operator=(Core_CVariant&& other) noexcept {
  if (this == &other) return *this;
  Release();
  tag_ = other.tag_;
  length_ = other.length_;
  payload_ = other.payload_;
  other.tag_ = EMPTY;
  return *this;
}

void Core_CVariant::CopyFrom(const Core_CVariant& other) {
  if (other.tag_ == STRING) {
    if (SetText(other.AsText(), true) != CORE_RESULT_OK) throw std::bad_alloc();
    return;
  }
  tag_ = other.tag_;
  length_ = other.length_;
  payload_ = other.payload_;
  if (tag_ == BUFFER) payload_.buffer->count.fetch_add(1, std::memory_order_relaxed);
  if (tag_ == ARRAY) payload_.array->count.fetch_add(1, std::memory_order_relaxed);
}

void Core_CVariant::ReleaseOwned() noexcept {
  if (tag_ == STRING) {
    delete[] payload_.owned;
  } else if (tag_ == BUFFER) {
    if (payload_.buffer->count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      payload_.buffer->~Core_CSharedBuffer();
      ::operator delete(payload_.buffer);
    }
  } else if (payload_.array->count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    delete[] payload_.array->elements;  // each element releases what it owns
    delete payload_.array;
  }
}

void Core_CVariant::Clear() noexcept {
  Release();
  tag_ = EMPTY;
}

#define NV_SET(Name, Type, tag, member)                \
  void Core_CVariant::Set##Name(Type value) noexcept { \
    Release();                                         \
    tag_ = tag;                                        \
    payload_.member = value;                           \
  }
NV_SET(Int8, std::int8_t, INT8, i8)
NV_SET(UInt8, std::uint8_t, UINT8, u8)
NV_SET(Int16, std::int16_t, INT16, i16)
NV_SET(UInt16, std::uint16_t, UINT16, u16)
NV_SET(Int32, std::int32_t, INT32, i32)
NV_SET(UInt32, std::uint32_t, UINT32, u32)
NV_SET(Int64, std::int64_t, INT64, i64)
NV_SET(UInt64, std::uint64_t, UINT64, u64)
NV_SET(Float, float, FLOAT, f32)
NV_SET(Double, double, DOUBLE, f64)
NV_SET(Error, std::uint32_t, ERROR_CODE, u32)
#undef NV_SET

void Core_CVariant::SetBool(bool value) noexcept {
  Release();
  tag_ = BOOL;
  payload_.boolean = value ? 1 : 0;
}

void Core_CVariant::SetDateTime(Core_CDateTime value) noexcept {
  Release();
  tag_ = DATETIME;
  payload_.f64 = value.variant_time;
}

CORE_RESULT Core_CVariant::SetText(std::u16string_view text, bool copy) noexcept {
  if (!copy) {
    Release();
    tag_ = BORROWED_STRING;
    payload_.borrowed = text.data();
    length_ = static_cast<std::uint32_t>(text.size() < max_borrowed_length ? text.size() : max_borrowed_length);
    return CORE_RESULT_OK;
  }
  if (text.size() > std::numeric_limits<std::uint32_t>::max() - 1) return CORE_RESULT_NO_MEMORY;
  char16_t* owned = new (std::nothrow) char16_t[text.size() + 1];
  if (owned == nullptr) return CORE_RESULT_NO_MEMORY;
  if (!text.empty()) std::memcpy(owned, text.data(), text.size() * sizeof(char16_t));
  owned[text.size()] = u'\0';
  Release();  // only now: the text may be this variant's own
  tag_ = STRING;
  payload_.owned = owned;
  length_ = static_cast<std::uint32_t>(text.size());
  return CORE_RESULT_OK;
}

CORE_RESULT Core_CVariant::SetBuffer(const void* bytes, std::uint32_t size) noexcept {
  if (bytes == nullptr && size != 0) return CORE_RESULT_INVALID_ARG;
  void* memory = ::operator new(sizeof(Core_CSharedBuffer) + size, std::nothrow);
  if (memory == nullptr) return CORE_RESULT_NO_MEMORY;
  auto* buffer = new (memory) Core_CSharedBuffer;
  buffer->size = size;
  if (size != 0) std::memcpy(buffer->bytes(), bytes, size);
  Release();
  tag_ = BUFFER;
  payload_.buffer = buffer;
  return CORE_RESULT_OK;
}

CORE_RESULT Core_CVariant::SetArray(std::uint32_t count) noexcept {
  auto* array = new (std::nothrow) Core_CSharedArray;
  auto* elements = new (std::nothrow) Core_CVariant[count];
  if (array == nullptr || elements == nullptr) {
    delete array;
    delete[] elements;
    return CORE_RESULT_NO_MEMORY;
  }
  array->size = count;
  array->elements = elements;
  Release();
  tag_ = ARRAY;
  payload_.array = array;
  return CORE_RESULT_OK;
}

std::u16string_view Core_CVariant::AsText() const noexcept {
  return {tag_ == STRING ? payload_.owned : payload_.borrowed, length_};
}

Core_CVariant* Core_CVariant::Elements() const noexcept { return payload_.array->elements; }

std::uint32_t Core_CVariant::Count() const noexcept {
  return tag_ == ARRAY ? payload_.array->size : payload_.buffer->size;
}

std::uint32_t Core_CVariant::ReferenceCount() const noexcept {
  return tag_ == ARRAY ? payload_.array->count.load() : payload_.buffer->count.load();
}

CORE_RESULT Core_CVariant::ToDouble(double& value) const noexcept {
  switch (tag_) {
    case EMPTY: value = 0.0; return CORE_RESULT_OK;
    case BOOL: value = payload_.boolean != 0 ? 1.0 : 0.0; return CORE_RESULT_OK;
    case INT8: value = payload_.i8; return CORE_RESULT_OK;
    case UINT8: value = payload_.u8; return CORE_RESULT_OK;
    case INT16: value = payload_.i16; return CORE_RESULT_OK;
    case UINT16: value = payload_.u16; return CORE_RESULT_OK;
    case INT32: value = payload_.i32; return CORE_RESULT_OK;
    case UINT32: value = payload_.u32; return CORE_RESULT_OK;
    case INT64: value = static_cast<double>(payload_.i64); return CORE_RESULT_OK;
    case UINT64:
      if (payload_.u64 > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return CORE_RESULT_CONVERSION_ERROR;
      value = static_cast<double>(payload_.u64);
      return CORE_RESULT_OK;
    case FLOAT: value = static_cast<double>(payload_.f32); return CORE_RESULT_OK;
    case DOUBLE:
    case DATETIME: value = payload_.f64; return CORE_RESULT_OK;
    case STRING:
    case BORROWED_STRING: return parse_number(AsText(), value) ? CORE_RESULT_OK : CORE_RESULT_CONVERSION_ERROR;
    case ERROR_CODE: value = payload_.u32; return CORE_RESULT_OK;
    default: return CORE_RESULT_CONVERSION_ERROR;
  }
}

CORE_RESULT Core_CVariant::ToInt32(std::int32_t& value) const noexcept {
  constexpr auto low = std::numeric_limits<std::int32_t>::min();
  constexpr auto high = std::numeric_limits<std::int32_t>::max();
  const auto from_double = [&value](double number) {
    if (!(number >= low && number <= high) || number != std::trunc(number)) return CORE_RESULT_CONVERSION_ERROR;
    value = static_cast<std::int32_t>(number);
    return CORE_RESULT_OK;
  };
  switch (tag_) {
    case EMPTY: value = 0; return CORE_RESULT_OK;
    case BOOL: value = payload_.boolean != 0 ? 1 : 0; return CORE_RESULT_OK;
    case INT8: value = payload_.i8; return CORE_RESULT_OK;
    case UINT8: value = payload_.u8; return CORE_RESULT_OK;
    case INT16: value = payload_.i16; return CORE_RESULT_OK;
    case UINT16: value = payload_.u16; return CORE_RESULT_OK;
    case INT32: value = payload_.i32; return CORE_RESULT_OK;
    case UINT32:
      if (payload_.u32 > static_cast<std::uint32_t>(high)) return CORE_RESULT_CONVERSION_ERROR;
      value = static_cast<std::int32_t>(payload_.u32);
      return CORE_RESULT_OK;
    case INT64:
      if (payload_.i64 < low || payload_.i64 > high) return CORE_RESULT_CONVERSION_ERROR;
      value = static_cast<std::int32_t>(payload_.i64);
      return CORE_RESULT_OK;
    case UINT64:
      if (payload_.u64 > static_cast<std::uint64_t>(high)) return CORE_RESULT_CONVERSION_ERROR;
      value = static_cast<std::int32_t>(payload_.u64);
      return CORE_RESULT_OK;
    case FLOAT: return from_double(static_cast<double>(payload_.f32));
    case DOUBLE:
    case DATETIME: return from_double(payload_.f64);
    case STRING:
    case BORROWED_STRING: return parse_integer(AsText(), value) ? CORE_RESULT_OK : CORE_RESULT_CONVERSION_ERROR;
    case ERROR_CODE: value = static_cast<std::int32_t>(payload_.u32); return CORE_RESULT_OK;
    default: return CORE_RESULT_CONVERSION_ERROR;
  }
}

CORE_RESULT Core_CVariant::ToBool(bool& value) const noexcept {
  switch (tag_) {
    case EMPTY: value = false; return CORE_RESULT_OK;
    case INT64: value = payload_.i64 != 0; return CORE_RESULT_OK;
    case UINT64: value = payload_.u64 != 0; return CORE_RESULT_OK;
    case STRING:
    case BORROWED_STRING: {
      std::int32_t number = 0;
      if (!parse_integer(AsText(), number)) return CORE_RESULT_CONVERSION_ERROR;
      value = number != 0;
      return CORE_RESULT_OK;
    }
    case BUFFER:
    case ARRAY: return CORE_RESULT_CONVERSION_ERROR;
    default: {
      double number = 0.0;
      const CORE_RESULT result = ToDouble(number);
      if (result == CORE_RESULT_OK) value = number != 0.0;  // a NaN counts as true
      return result;
    }
  }
}

bool operator==(const Core_CVariant& a, const Core_CVariant& b) noexcept {
  const auto is_text = [](const Core_CVariant& v) {
    return v.tag() == Core_CVariant::STRING || v.tag() == Core_CVariant::BORROWED_STRING;
  };
  const auto is_number = [](const Core_CVariant& v) {
    return v.tag() >= Core_CVariant::BOOL && (v.tag() <= Core_CVariant::DOUBLE || v.tag() == Core_CVariant::DATETIME);
  };
  if (is_text(a) || is_text(b)) return is_text(a) && is_text(b) && a.AsText() == b.AsText();
  if (is_number(a) && is_number(b)) {
    double x = 0.0;
    double y = 0.0;
    return a.ToDouble(x) == CORE_RESULT_OK && b.ToDouble(y) == CORE_RESULT_OK && x == y;
  }
  if (a.tag() != b.tag()) return false;
  if (a.tag() == Core_CVariant::ERROR_CODE) return a.AsError() == b.AsError();
  return a.empty();
}

}  // namespace norvane
