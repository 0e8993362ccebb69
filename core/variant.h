// Core_CVariant: the tagged value of defaults, fallback outputs and comparisons.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "core/result.h"

namespace norvane {

// A block of bytes shared by reference count.
struct Core_CSharedBuffer;
// An array of variants shared by reference count.
struct Core_CSharedArray;

// Days since 30 December 1899, the fraction of the day as time (a spreadsheet's date number).
struct Core_CDateTime {
  double variant_time = 0.0;
};

class Core_CVariant {
 public:
  enum Tag : std::uint32_t {
    EMPTY = 0,
    BOOL = 1,
    INT8 = 2,
    UINT8 = 3,
    INT16 = 4,
    UINT16 = 5,
    INT32 = 6,
    UINT32 = 7,
    INT64 = 8,
    UINT64 = 9,
    FLOAT = 10,
    DOUBLE = 11,
    STRING = 12,           // owned copy
    BORROWED_STRING = 13,  // pointer and length of somebody else's text
    DATETIME = 14,
    BUFFER = 15,  // shared, reference counted
    ERROR_CODE = 16,
    ARRAY = 17  // shared array of variants, reference counted
  };

  // A borrowed text records at most this many characters.
  static constexpr std::size_t max_borrowed_length = 32767;

  Core_CVariant() noexcept = default;
  explicit Core_CVariant(bool value) noexcept;
  explicit Core_CVariant(double value) noexcept;
  explicit Core_CVariant(std::int32_t value) noexcept;
  Core_CVariant(const Core_CVariant& other);
  Core_CVariant(Core_CVariant&& other) noexcept;
  Core_CVariant& operator=(const Core_CVariant& other);
  Core_CVariant& operator=(Core_CVariant&& other) noexcept;
  ~Core_CVariant() { Release(); }

  std::uint32_t tag() const noexcept { return tag_; }
  bool empty() const noexcept { return tag_ == EMPTY; }

  // Release what is owned, then take the new value.
  void Clear() noexcept;
  void SetBool(bool value) noexcept;
  void SetInt8(std::int8_t value) noexcept;
  void SetUInt8(std::uint8_t value) noexcept;
  void SetInt16(std::int16_t value) noexcept;
  void SetUInt16(std::uint16_t value) noexcept;
  void SetInt32(std::int32_t value) noexcept;
  void SetUInt32(std::uint32_t value) noexcept;
  void SetInt64(std::int64_t value) noexcept;
  void SetUInt64(std::uint64_t value) noexcept;
  void SetFloat(float value) noexcept;
  void SetDouble(double value) noexcept;
  void SetDateTime(Core_CDateTime value) noexcept;
  void SetError(std::uint32_t code) noexcept;
  // copy: an owned copy (tag 12; CORE_RESULT_NO_MEMORY when refused). Otherwise borrowed (tag 13), cut to
  // max_borrowed_length; the text must outlive the variant.
  CORE_RESULT SetText(std::u16string_view text, bool copy) noexcept;
  CORE_RESULT SetBuffer(const void* bytes, std::uint32_t size) noexcept;
  CORE_RESULT SetArray(std::uint32_t count) noexcept;

  // Conversions; the value is left alone on failure.
  CORE_RESULT ToDouble(double& value) const noexcept;
  CORE_RESULT ToInt32(std::int32_t& value) const noexcept;
  CORE_RESULT ToBool(bool& value) const noexcept;

  // Payloads; each only for its own tag.
  bool AsBool() const noexcept { return payload_.boolean != 0; }
  std::int32_t AsInt32() const noexcept { return payload_.i32; }
  double AsDouble() const noexcept { return payload_.f64; }
  std::uint32_t AsError() const noexcept { return payload_.u32; }
  std::u16string_view AsText() const noexcept;    // tags 12 and 13
  Core_CVariant* Elements() const noexcept;       // tag 17
  std::uint32_t Count() const noexcept;           // elements of tag 17, bytes of tag 15
  std::uint32_t ReferenceCount() const noexcept;  // tags 15 and 17

 private:
  void Release() noexcept {
    if (tag_ == STRING || tag_ == BUFFER || tag_ == ARRAY) ReleaseOwned();
  }
  void ReleaseOwned() noexcept;
  void CopyFrom(const Core_CVariant& other);

  std::uint32_t tag_ = EMPTY;
  std::uint32_t length_ = 0;  // of a text
  union {
    std::uint8_t boolean;
    std::int8_t i8;
    std::uint8_t u8;
    std::int16_t i16;
    std::uint16_t u16;
    std::int32_t i32;
    std::uint32_t u32;
    std::int64_t i64;
    std::uint64_t u64;
    float f32;
    double f64;
    char16_t* owned;
    const char16_t* borrowed;
    Core_CSharedBuffer* buffer;
    Core_CSharedArray* array;
  } payload_{};
};

static_assert(sizeof(Core_CVariant) == 16);

// Numbers (tags 1 to 11, 14) by value, texts exactly (tags 12 and 13 alike), errors by code, empty with
// empty; a number and a text are never equal, nor is a NaN equal to anything.
bool operator==(const Core_CVariant& a, const Core_CVariant& b) noexcept;

}  // namespace norvane
