#include "hosts/com/variants.h"

#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "core/text.h"
#include "hosts/module/typed_call.h"

namespace norvane::com {
namespace {

constexpr int longest_chain = 8;

bool is_omitted(const VARIANT& value) noexcept { return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND; }

std::u16string_view text_of(BSTR text) noexcept {
  static_assert(sizeof(OLECHAR) == sizeof(char16_t));
  return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)};
}

// The error values of a spreadsheet's cells: 0x800A0000 and its number.
std::uint32_t worksheet_error(SCODE code) noexcept {
  switch (static_cast<std::uint32_t>(code)) {
    case 0x800A07D0: return ERROR_NULL;
    case 0x800A07D7: return ERROR_DIV0;
    case 0x800A07E7: return ERROR_REF;
    case 0x800A07ED: return ERROR_NAME;
    case 0x800A07F4: return ERROR_NUM;
    case 0x800A07FA: return ERROR_NA;
    default: return ERROR_VALUE;
  }
}

// Only numbers: the system would ask an object for its value.
bool converted(const VARIANT& value, FUNCTION_ARG& argument) noexcept {
  switch (value.vt) {
    case VT_I1:
    case VT_I2:
    case VT_I8:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UI8:
    case VT_UINT:
    case VT_R4:
    case VT_CY:
    case VT_DATE:
    case VT_DECIMAL: break;
    default: return false;
  }
  OwnedVariant number;
  if (FAILED(change_type(number.get(), value, VT_R8))) return false;
  argument = FUNCTION_ARG::Number(number->dblVal);
  return true;
}

bool scalar_to_argument(Function_CContext& context, const VARIANT& value, FUNCTION_ARG& argument) noexcept {
  if (is_omitted(value)) {
    argument = FUNCTION_ARG::Missing();
    return true;
  }
  switch (value.vt) {
    case VT_EMPTY: argument = FUNCTION_ARG::Empty(); return true;
    case VT_R8: argument = FUNCTION_ARG::Number(value.dblVal); return true;
    case VT_R8 | VT_BYREF:
      if (value.pdblVal == nullptr) return false;
      argument = FUNCTION_ARG::Number(*value.pdblVal);
      return true;
    case VT_I4:
    case VT_INT: argument = FUNCTION_ARG::Integer(value.lVal); return true;
    case VT_BOOL: argument = FUNCTION_ARG::Boolean(value.boolVal != VARIANT_FALSE); return true;
    case VT_ERROR: argument = FUNCTION_ARG::Error(worksheet_error(value.scode)); return true;
    case VT_BSTR: return context.SetText(argument, value.bstrVal != nullptr ? text_of(value.bstrVal) : u"");
    default: break;
  }
  if ((value.vt & VT_BYREF) == 0) return converted(value, argument);
  OwnedVariant held;
  return value.byref != nullptr && SUCCEEDED(copy_value(held.get(), value)) && (held->vt & VT_BYREF) == 0 &&
         scalar_to_argument(context, *held, argument);
}

// Element (of the array's own type) to call value. Elements that are arrays or objects are no numbers.
bool element_to_argument(Function_CContext& context, VARTYPE type, void* element, FUNCTION_ARG& argument) noexcept {
  VARIANT reference;
  VariantInit(&reference);
  reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
  reference.byref = element;
  const VARIANT* value = referred(reference);
  if (value == nullptr || (value->vt & VT_ARRAY) != 0) return false;
  return scalar_to_argument(context, *value, argument);
}

// Number of elements; -1 for an array without memory or with too many elements.
std::int64_t element_count(const SAFEARRAY& array) noexcept {
  std::int64_t count = array.cDims > 0 ? 1 : 0;
  for (USHORT i = 0; i < array.cDims; ++i) {
    count *= array.rgsabound[i].cElements;
    if (count > host::TypedCall::longest_list) return -1;
  }
  return count > 0 && array.pvData == nullptr ? -1 : count;
}

// Calls use(place of the element in memory) row by row: the last index runs fastest, while in memory the
// first does. Bounds stand with the last dimension first.
template <class Use>
bool for_each_row_by_row(const SAFEARRAY& array, std::int64_t count, Use use) {
  for (std::int64_t i = 0; i < count; ++i) {
    std::int64_t rest = i;
    std::int64_t place = 0;
    std::int64_t stride = count;
    for (USHORT d = 0; d < array.cDims; ++d) {
      const auto elements = static_cast<std::int64_t>(array.rgsabound[d].cElements);
      stride /= elements;
      place += rest % elements * stride;
      rest /= elements;
    }
    if (!use(i, place)) return false;
  }
  return true;
}

HRESULT get_property(IDispatch* object, DISPID id, VARIANT* value) noexcept {
  DISPPARAMS none{};
  return object->Invoke(id, IID_NULL, LOCALE_INVARIANT, DISPATCH_PROPERTYGET, &none, value, nullptr, nullptr);
}

bool find_name(IDispatch* object, const wchar_t* name, DISPID& id) noexcept {
  auto* text = const_cast<LPOLESTR>(name);
  return SUCCEEDED(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_INVARIANT, &id));
}

// "0", "1", ... of a script's array; an element that is not there is Empty.
HRESULT elements_of_script_array(IDispatch* object, std::uint32_t length, VARIANT& value) noexcept {
  SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, length);
  if (array == nullptr) return E_OUTOFMEMORY;
  value.vt = VT_ARRAY | VT_VARIANT;
  value.parray = array;
  auto* elements = static_cast<VARIANT*>(array->pvData);
  for (std::uint32_t i = 0; i < length; ++i) {
    wchar_t name[16];
    char16_t digits[max_number_text + 1];
    const std::size_t n = format_integer(static_cast<std::int32_t>(i), digits);
    std::memcpy(name, digits, n * sizeof(wchar_t));
    name[n] = L'\0';
    DISPID id = DISPID_UNKNOWN;
    if (!find_name(object, name, id)) continue;
    const HRESULT result = get_property(object, id, &elements[i]);
    if (FAILED(result)) return result;
  }
  return S_OK;
}

HRESULT value_of_object(IDispatch* object, VARIANT& value) noexcept {
  if (object == nullptr) return DISP_E_TYPEMISMATCH;
  DISPID id = DISPID_UNKNOWN;
  OwnedVariant length;
  if (find_name(object, L"length", id) && SUCCEEDED(get_property(object, id, length.get())) &&
      SUCCEEDED(change_type(length.get(), *length, VT_I4))) {
    if (length->lVal < 0 || length->lVal > static_cast<LONG>(host::TypedCall::longest_list)) return DISP_E_OVERFLOW;
    return elements_of_script_array(object, static_cast<std::uint32_t>(length->lVal), value);
  }
  const HRESULT result = get_property(object, DISPID_VALUE, &value);
  return SUCCEEDED(result) ? S_OK : DISP_E_TYPEMISMATCH;
}

bool is_object(const VARIANT& value) noexcept {
  const int type = value.vt & ~VT_BYREF;
  return type == VT_DISPATCH || type == VT_UNKNOWN;
}

// The object of a variant, its own reference; null when there is none or it has no values.
IDispatch* object_of(const VARIANT& value) noexcept {
  IUnknown* unknown = nullptr;
  if ((value.vt & VT_BYREF) == 0) {
    unknown = value.punkVal;
  } else if (value.ppunkVal != nullptr) {
    unknown = *value.ppunkVal;
  }
  IDispatch* object = nullptr;
  if (unknown != nullptr) unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&object));
  return object;
}

// Puts an object's value in its place, and the value of that when it is an object again.
HRESULT replace_object(OwnedVariant& held) noexcept {
  for (int i = 0; is_object(*held); ++i) {
    if (i == longest_chain) return DISP_E_TYPEMISMATCH;
    IDispatch* object = object_of(*held);
    OwnedVariant value;
    HRESULT result = value_of_object(object, *value.get());
    if (object != nullptr) object->Release();
    if (FAILED(result)) return result;
    // What the value refers to is the object's, and may go with it.
    OwnedVariant own;
    if (FAILED(result = copy_value(own.get(), *value))) return result;
    held.swap(own);
  }
  return S_OK;
}

const SAFEARRAY* array_of(const VARIANT& value) noexcept {
  if ((value.vt & VT_ARRAY) == 0) return nullptr;
  if ((value.vt & VT_BYREF) == 0) return value.parray;
  return value.pparray != nullptr ? *value.pparray : nullptr;
}

// Number of elements of an array that may hold objects, and does; 0 for any other.
std::int64_t count_with_objects(const SAFEARRAY& array) noexcept {
  VARTYPE type = VT_EMPTY;
  const std::int64_t count = element_count(array);
  if (count <= 0 || FAILED(SafeArrayGetVartype(const_cast<SAFEARRAY*>(&array), &type))) return 0;
  if (type == VT_DISPATCH || type == VT_UNKNOWN) return count;
  if (type != VT_VARIANT) return 0;
  const auto* elements = static_cast<const VARIANT*>(array.pvData);
  for (std::int64_t i = 0; i < count; ++i) {
    const VARIANT* end = referred(elements[i]);
    if (end != nullptr && is_object(*end)) return count;
  }
  return 0;
}

// A copy of the array, of the same shape, that the objects' code cannot change; then the objects' values in it.
HRESULT copy_with_values(const SAFEARRAY& array, std::int64_t count, OwnedVariant& held) noexcept {
  auto* source = const_cast<SAFEARRAY*>(&array);
  VARTYPE type = VT_EMPTY;
  HRESULT result = SafeArrayGetVartype(source, &type);
  if (FAILED(result)) return result;
  SAFEARRAYBOUND bounds[64];
  if (array.cDims > std::size(bounds)) return DISP_E_TYPEMISMATCH;
  // In the array the bounds stand with the last dimension first.
  for (USHORT d = 0; d < array.cDims; ++d) bounds[d] = array.rgsabound[array.cDims - 1 - d];
  OwnedVariant made;
  made->parray = SafeArrayCreate(VT_VARIANT, array.cDims, bounds);
  if (made->parray == nullptr) return E_OUTOFMEMORY;
  made->vt = VT_ARRAY | VT_VARIANT;
  auto* elements = static_cast<VARIANT*>(made->parray->pvData);
  auto* memory = static_cast<unsigned char*>(array.pvData);
  for (std::int64_t i = 0; i < count; ++i) {
    VARIANT reference;
    VariantInit(&reference);
    reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
    reference.byref = memory + i * array.cbElements;
    const VARIANT* end = referred(reference);
    if (end == nullptr) return DISP_E_TYPEMISMATCH;
    if (FAILED(result = copy_value(&elements[i], *end))) return result;
  }
  for (std::int64_t i = 0; i < count; ++i) {
    if (!is_object(elements[i])) continue;
    OwnedVariant element;
    std::swap(*element.get(), elements[i]);
    result = replace_object(element);
    std::swap(*element.get(), elements[i]);
    if (FAILED(result)) return result;
  }
  held.swap(made);
  return S_OK;
}

// Size of what a typed reference points at; 0 for types that take no number.
std::size_t target_size(VARTYPE type) noexcept {
  switch (type) {
    case VT_I1:
    case VT_UI1: return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL: return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4: return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BSTR: return 8;
    default: return 0;
  }
}

HRESULT store_typed(void* target, VARTYPE type, const VARIANT& value) noexcept {
  const std::size_t size = target_size(type);
  if (size == 0 && type != VT_DECIMAL) return DISP_E_TYPEMISMATCH;
  OwnedVariant wanted;
  const HRESULT result = change_type(wanted.get(), value, type);
  if (FAILED(result)) return result;
  if (type == VT_BSTR) {
    SysFreeString(*static_cast<BSTR*>(target));
    *static_cast<BSTR*>(target) = wanted->bstrVal;
    wanted->vt = VT_EMPTY;
  } else if (type == VT_DECIMAL) {
    // It fills the variant, whose type stands in a field that a decimal keeps for later.
    auto* decimal = static_cast<DECIMAL*>(target);
    *decimal = wanted->decVal;
    decimal->wReserved = 0;
  } else {
    std::memcpy(target, &wanted->llVal, size);
  }
  return S_OK;
}

HRESULT put_value(IDispatch* object, const VARIANT& value) noexcept {
  DISPID id = DISPID_UNKNOWN;
  if (!find_name(object, L"value", id)) return DISP_E_TYPEMISMATCH;
  VARIANT copy = value;
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{&copy, &put, 1, 1};
  return object->Invoke(id, IID_NULL, LOCALE_INVARIANT, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr, nullptr);
}

}  // namespace

const VARIANT* referred(const VARIANT& value) noexcept {
  const VARIANT* end = &value;
  for (int i = 0; end->vt == (VT_BYREF | VT_VARIANT); ++i) {
    if (i == longest_chain || end->pvarVal == nullptr) return nullptr;
    end = end->pvarVal;
  }
  return end;
}

HRESULT resolve_objects(const VARIANT& given, OwnedVariant& held, const VARIANT*& value) noexcept {
  value = referred(given);
  if (value == nullptr) return DISP_E_TYPEMISMATCH;
  if (is_object(*value)) {
    HRESULT result = copy_value(held.get(), *value);
    if (SUCCEEDED(result)) result = replace_object(held);
    if (FAILED(result)) return result;
    value = held.get();
  }
  const SAFEARRAY* array = array_of(*value);
  const std::int64_t count = array != nullptr ? count_with_objects(*array) : 0;
  if (count == 0) return S_OK;
  OwnedVariant copied;
  const HRESULT result = copy_with_values(*array, count, copied);
  held.swap(copied);
  value = held.get();
  return result;
}

bool is_empty_list(const SAFEARRAY* array) noexcept { return array == nullptr || element_count(*array) == 0; }

bool is_empty_list(const VARIANT& value) noexcept {
  if ((value.vt & VT_ARRAY) != 0) return is_empty_list(array_of(value));
  return value.vt == VT_EMPTY || value.vt == VT_NULL || is_omitted(value);
}

bool to_argument(Function_CContext& context, const SAFEARRAY* array, FUNCTION_ARG& argument) noexcept {
  VARTYPE type = VT_EMPTY;
  if (array == nullptr || FAILED(SafeArrayGetVartype(const_cast<SAFEARRAY*>(array), &type))) return false;
  const std::int64_t count = element_count(*array);
  if (count < 0) return false;
  auto* arguments = context.arena().AllocateArray<FUNCTION_ARG>(static_cast<std::size_t>(count));
  if (arguments == nullptr) return false;
  auto* memory = static_cast<unsigned char*>(array->pvData);
  const auto size = static_cast<std::int64_t>(array->cbElements);
  const bool good = for_each_row_by_row(*array, count, [&](std::int64_t i, std::int64_t place) {
    void* element = memory + place * size;
    if (type == VT_R8) {
      arguments[i] = FUNCTION_ARG::Number(*static_cast<const double*>(element));
      return true;
    }
    return element_to_argument(context, type, element, arguments[i]);
  });
  if (!good) return false;
  argument = FUNCTION_ARG::OfArray(1, static_cast<std::uint32_t>(count), arguments);
  return true;
}

bool to_argument(Function_CContext& context, const VARIANT& value, FUNCTION_ARG& argument) noexcept {
  const VARIANT* end = referred(value);
  if (end == nullptr) return false;
  if ((end->vt & VT_ARRAY) == 0) return scalar_to_argument(context, *end, argument);
  return to_argument(context, array_of(*end), argument);
}

HRESULT store(const VARIANT& target, const VARIANT& value) noexcept {
  const VARIANT* outer = &target;
  for (int i = 0; outer->vt == (VT_BYREF | VT_VARIANT); ++i) {
    VARIANT* inner = outer->pvarVal;
    if (inner == nullptr || i == longest_chain) return DISP_E_TYPEMISMATCH;
    if ((inner->vt & VT_BYREF) == 0) return copy(inner, value);
    outer = inner;
  }
  if ((outer->vt & VT_BYREF) != 0)
    return outer->byref != nullptr ? store_typed(outer->byref, static_cast<VARTYPE>(outer->vt & ~VT_BYREF), value)
                                   : DISP_E_TYPEMISMATCH;
  return outer->vt == VT_DISPATCH && outer->pdispVal != nullptr ? put_value(outer->pdispVal, value) : S_OK;
}

}  // namespace norvane::com
