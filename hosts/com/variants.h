// What automation clients send and expect: variants and safe arrays to call values and back.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <utility>

#include "framework/context.h"

namespace norvane::com {

// A variant that is cleared at its end.
class OwnedVariant {
 public:
  OwnedVariant() noexcept { VariantInit(&value_); }
  ~OwnedVariant() { VariantClear(&value_); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  VARIANT* get() noexcept { return &value_; }
  void swap(OwnedVariant& other) noexcept { std::swap(value_, other.value_); }
  VARIANT* operator->() noexcept { return &value_; }
  const VARIANT& operator*() const noexcept { return value_; }

 private:
  VARIANT value_;
};

// The system's routines do not promise that they leave the source alone, but do.
inline HRESULT copy(VARIANT* to, const VARIANT& from) noexcept {
  return VariantCopy(to, const_cast<VARIANT*>(&from));
}
inline HRESULT copy_value(VARIANT* to, const VARIANT& reference) noexcept {
  return VariantCopyInd(to, const_cast<VARIANT*>(&reference));
}
// In the invariant locale: a decimal point is a point everywhere.
inline HRESULT change_type(VARIANT* to, const VARIANT& from, VARTYPE type) noexcept {
  return VariantChangeTypeEx(to, const_cast<VARIANT*>(&from), LOCALE_INVARIANT, 0, type);
}

// The variant that a chain of references to variants ends in; null for a null or an endless one.
const VARIANT* referred(const VARIANT& value) noexcept;

// Finds what a caller means: the value behind references, with every object replaced by its value (the elements of a
// script's array, or the default property of anything else), also inside an array. What had to be made for that is
// held. This runs the objects' code, which may call this library, so it comes before a call takes its context.
HRESULT resolve_objects(const VARIANT& given, OwnedVariant& held, const VARIANT*& value) noexcept;

// A list that is none: Empty, Null, a missing argument, an array without memory or elements.
bool is_empty_list(const VARIANT& value) noexcept;
bool is_empty_list(const SAFEARRAY* array) noexcept;

// A call value in the context's memory; runs no code of a client. Arrays of any element type, base and rank give
// their elements row by row; texts stay texts, whose numbers are read as in a cell whatever the locale; Empty is a
// blank cell, a missing optional argument is left to its default. False for what is no value (objects, Null) or too
// much.
bool to_argument(Function_CContext& context, const VARIANT& value, FUNCTION_ARG& argument) noexcept;
bool to_argument(Function_CContext& context, const SAFEARRAY* array, FUNCTION_ARG& argument) noexcept;

// Stores an output where a late-bound caller wants it: in a variable of a script (VT_BYREF | VT_VARIANT), in
// a typed variable (VT_BYREF and its type), or in the `value` property of an object. Anything else cannot
// take a value, and the output is lost, as an omitted one is.
HRESULT store(const VARIANT& target, const VARIANT& value) noexcept;

}  // namespace norvane::com
