#include "hosts/com/com_functions.h"

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "catalogue/identity.h"
#include "core/text.h"
#include "hosts/com/identity.h"
#include "hosts/com/this_module.h"
#include "hosts/com/variants.h"
#include "hosts/module/parameter_names.h"

namespace norvane::com {
namespace {

using host::Parameter;
using host::Passing;
using host::Signature;
using host::TypedAnswer;
using host::TypedCall;

constexpr wchar_t source_name[] = L"Norvane.Functions";

BSTR to_bstr(std::u16string_view text) noexcept {
  return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

// Leaves what the last call said for the client's GetErrorInfo, and answers with the result.
HRESULT fail(HRESULT outcome) {
  const std::u16string text = host::last_message();
  ICreateErrorInfo* made = nullptr;
  if (SUCCEEDED(CreateErrorInfo(&made))) {
    BSTR description = to_bstr(text);
    made->SetGUID(IID_IFunctions);
    made->SetSource(const_cast<LPOLESTR>(source_name));
    made->SetDescription(description);
    SysFreeString(description);
    IErrorInfo* info = nullptr;
    if (SUCCEEDED(made->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
      SetErrorInfo(0, info);
      info->Release();
    }
    made->Release();
  }
  return outcome;
}

// Early bound: lists are safe arrays, texts BSTRs.
class MethodCaller final : public host::ValueCaller {
 public:
  using ValueCaller::ValueCaller;

 private:
  static_assert(sizeof(unsigned long) == sizeof(std::uint32_t), "options leave as what the interface calls them");
  bool take_list(TypedCall& call, const Parameter& input, const TypedValue& value) override {
    const auto* list = static_cast<const SAFEARRAY*>(value.data);
    if (is_empty_list(list)) return true;  // left out
    FUNCTION_ARG argument;
    if (!to_argument(call.context(), list, argument)) return false;
    call.argument(input) = argument;
    return true;
  }
  bool take_text(TypedCall& call, const Parameter& input, const TypedValue& value) override {
    const auto* text = static_cast<const OLECHAR*>(value.data);
    if (text == nullptr) return true;  // its default
    return call.set_text(input, {reinterpret_cast<const char16_t*>(text), SysStringLen(const_cast<BSTR>(text))});
  }
  bool give_text(TypedCall&, std::u16string_view text, void* target) override {
    BSTR copy = to_bstr(text);
    *static_cast<BSTR*>(target) = copy;
    return copy != nullptr;
  }
};

// Unsigned results as the integers that scripts can calculate with.
void set_unsigned(VARIANT& value, std::uint32_t number) noexcept {
  if (number <= 0x7FFFFFFF) {
    value.vt = VT_I4;
    value.lVal = static_cast<LONG>(number);
  } else {
    value.vt = VT_R8;
    value.dblVal = number;
  }
}

// What a late-bound call answers beside its result.
struct LateFailure {
  std::u16string message;
  SCODE code = E_INVALIDARG;
  UINT bad_argument = 0;
};

// One late-bound call. The client's objects are asked for their values before, and its variables written
// after, the thread's context is in use: both can run the client's code, which may call this library again.
class LateCall final : public host::TypedCaller {
 public:
  LateCall(const Signature& signature, DISPPARAMS& parameters) : signature_(signature), parameters_(parameters) {}

  HRESULT run(VARIANT* status, LateFailure& failure) {
    if (const HRESULT result = arrange(failure.bad_argument); FAILED(result)) return result;
    if (const HRESULT result = find_values(failure.bad_argument); FAILED(result)) return result;
    outputs_ = std::make_unique<OwnedVariant[]>(signature_.outputs.size());
    std::uint32_t number = 0;
    const TypedAnswer answer = TypedCall::make(signature_, *this, number);
    if (refused_ != nullptr) {
      failure.bad_argument = refused_->number;
      return DISP_E_TYPEMISMATCH;
    }
    if (answer == TypedAnswer::refused || answer == TypedAnswer::unavailable) {
      failure.message = host::last_message();
      failure.code = answer == TypedAnswer::refused ? E_INVALIDARG : E_UNEXPECTED;
      return DISP_E_EXCEPTION;
    }
    // The status first: it is true whatever becomes of the outputs.
    if (status != nullptr) set_unsigned(*status, number);
    return answer == TypedAnswer::delivered ? store_outputs(failure.bad_argument) : E_INVALIDARG;
  }

 private:
  struct Given {
    const VARIANT* value = nullptr;  // null when the argument is left out
    UINT number = 0;                 // among the caller's arguments
  };

  // Places the arguments: named ones first in the array, then the others from last to first.
  HRESULT arrange(UINT& bad_argument) {
    const std::size_t count = signature_.inputs.size() + signature_.outputs.size();
    given_.assign(count, {});
    const UINT named = parameters_.cNamedArgs;
    if (parameters_.cArgs > count || named > parameters_.cArgs) return DISP_E_BADPARAMCOUNT;
    if (parameters_.cArgs > 0 && parameters_.rgvarg == nullptr) return E_INVALIDARG;
    if (named > 0 && parameters_.rgdispidNamedArgs == nullptr) return E_INVALIDARG;
    for (UINT i = 0; i < parameters_.cArgs; ++i) {
      const auto place = i < named ? static_cast<std::size_t>(parameters_.rgdispidNamedArgs[i])
                                   : static_cast<std::size_t>(parameters_.cArgs - 1 - i);
      if (place >= count || given_[place].value != nullptr) {
        bad_argument = i;
        return DISP_E_PARAMNOTFOUND;
      }
      given_[place] = {&parameters_.rgvarg[i], i};
    }
    // Left out on purpose (by name, or as a gap) an input takes its default; a call that stops short is a mistake.
    if (named == 0 && parameters_.cArgs < signature_.inputs.size()) {
      bad_argument = static_cast<UINT>(parameters_.cArgs);
      return DISP_E_PARAMNOTOPTIONAL;
    }
    return S_OK;
  }

  HRESULT find_values(UINT& bad_argument) {
    held_ = std::make_unique<OwnedVariant[]>(signature_.inputs.size());
    for (std::size_t i = 0; i < signature_.inputs.size(); ++i) {
      Given& given = given_[i];
      if (given.value == nullptr) continue;
      bad_argument = given.number;
      if (const HRESULT result = resolve_objects(*given.value, held_[i], given.value); FAILED(result)) return result;
    }
    return S_OK;
  }

  bool take(TypedCall& call, const Parameter& input, std::size_t place) override {
    const Given& given = given_[place];
    if (given.value == nullptr || (input.passing == Passing::range && is_empty_list(*given.value))) return true;
    if (to_argument(call.context(), *given.value, call.argument(input))) return true;
    refused_ = &given;
    return false;
  }

  bool give(TypedCall& call, const Parameter& output, std::size_t place) override {
    VARIANT& value = *outputs_[place].get();
    switch (output.passing) {
      case Passing::number: value.vt = VT_R8; return call.fetch(output, value.dblVal);
      case Passing::option: {
        std::uint32_t number = 0;
        if (!call.fetch(output, number)) return false;
        set_unsigned(value, number);
        return true;
      }
      default: break;
    }
    std::u16string_view text;
    if (!call.fetch(output, text)) return false;
    value.bstrVal = to_bstr(text);
    value.vt = VT_BSTR;
    return value.bstrVal != nullptr;
  }

  // All that can be stored; the first that cannot is the failure.
  HRESULT store_outputs(UINT& bad_argument) {
    HRESULT first = S_OK;
    for (std::size_t i = 0; i < signature_.outputs.size(); ++i) {
      const Given& target = given_[signature_.inputs.size() + i];
      if (target.value == nullptr) continue;
      const HRESULT result = store(*target.value, *outputs_[i]);
      if (SUCCEEDED(result) || FAILED(first)) continue;
      first = result;
      bad_argument = target.number;
    }
    return first;
  }

  const Signature& signature_;
  DISPPARAMS& parameters_;
  std::vector<Given> given_;              // one a parameter
  std::unique_ptr<OwnedVariant[]> held_;  // what the values of objects need
  std::unique_ptr<OwnedVariant[]> outputs_;
  const Given* refused_ = nullptr;
};

}  // namespace

CCOMFunctions::CCOMFunctions() noexcept { module_lock(); }

CCOMFunctions::~CCOMFunctions() {
  if (marshaler_ != nullptr) marshaler_->Release();
  module_unlock();
}

HRESULT CCOMFunctions::Create(CCOMFunctions*& object) noexcept {
  object = new (std::nothrow) CCOMFunctions;
  if (object == nullptr) return E_OUTOFMEMORY;
  const HRESULT result = CoCreateFreeThreadedMarshaler(static_cast<IFunctions*>(object), &object->marshaler_);
  if (FAILED(result)) {
    object->Release();
    object = nullptr;
  }
  return result;
}

HRESULT CCOMFunctions::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_IFunctions) {
    *object = static_cast<IFunctions*>(this);
  } else if (iid == IID_ISupportErrorInfo) {
    *object = static_cast<ISupportErrorInfo*>(this);
  } else if (iid == IID_IMarshal && marshaler_ != nullptr) {
    return marshaler_->QueryInterface(iid, object);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG CCOMFunctions::AddRef() { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }

ULONG CCOMFunctions::Release() {
  const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (left == 0) delete this;
  return left;
}

HRESULT CCOMFunctions::InterfaceSupportsErrorInfo(REFIID iid) { return iid == IID_IFunctions ? S_OK : S_FALSE; }

HRESULT CCOMFunctions::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT CCOMFunctions::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  ITypeLib* library = nullptr;
  HRESULT result = load_type_library(&library);
  if (FAILED(result)) return result;
  result = library->GetTypeInfoOfGuid(IID_IFunctions, info);
  library->Release();
  return result;
}

HRESULT CCOMFunctions::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  try {
    const auto wide = [names](UINT i) {
      return names[i] != nullptr ? std::u16string_view(reinterpret_cast<const char16_t*>(names[i]))
                                 : std::u16string_view();
    };
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    if (equal_ignoring_case(u"Identity", wide(0))) {
      ids[0] = NORVANE_DISPID_IDENTITY;
      return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
    }
    const Signature* signature = host::find_signature(wide(0));
    if (signature == nullptr) return DISP_E_UNKNOWNNAME;
    ids[0] = static_cast<DISPID>(signature->id);
    if (count == 1) return S_OK;
    // Then names of parameters: their places, outputs behind the inputs.
    HRESULT result = S_OK;
    const host::ParameterNames parameters = host::parameter_names(*signature);
    for (UINT i = 1; i < count; ++i) {
      DISPID place = 0;
      for (const auto* list : {&parameters.inputs, &parameters.outputs}) {
        for (const std::string& name : *list) {
          if (equal_ignoring_case(to_utf16(name), wide(i))) ids[i] = place;
          ++place;
        }
      }
      if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
    }
    return result;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT CCOMFunctions::Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                              EXCEPINFO* exception, UINT* bad_argument) {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (parameters == nullptr) return E_INVALIDARG;
  if (id == NORVANE_DISPID_IDENTITY) {
    if ((flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) == 0) return DISP_E_MEMBERNOTFOUND;
    if (parameters->cArgs != 0) return DISP_E_BADPARAMCOUNT;
    if (result == nullptr) return S_OK;
    VariantInit(result);
    const HRESULT outcome = get_Identity(&result->bstrVal);
    if (SUCCEEDED(outcome)) result->vt = VT_BSTR;
    return outcome;
  }
  const Signature* signature = id > 0 ? host::find_signature(static_cast<std::uint32_t>(id)) : nullptr;
  if (signature == nullptr || (flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  if (result != nullptr) VariantInit(result);
  try {
    SetErrorInfo(0, nullptr);  // what an earlier call left behind
    LateFailure failure;
    const HRESULT outcome = LateCall(*signature, *parameters).run(result, failure);
    if (bad_argument != nullptr) *bad_argument = failure.bad_argument;
    if (outcome == DISP_E_EXCEPTION && exception != nullptr) {
      *exception = {};
      exception->scode = failure.code;
      exception->bstrSource = SysAllocString(source_name);
      exception->bstrDescription = to_bstr(failure.message);
    }
    return outcome;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT CCOMFunctions::get_Identity(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  *text = nullptr;
  try {
    *text = to_bstr(to_utf16(catalogue::identity_text()));
  } catch (...) {
  }
  return *text != nullptr ? S_OK : E_OUTOFMEMORY;
}

HRESULT CCOMFunctions::RunMethod(std::uint32_t id, const TypedValue* in, std::size_t inputs, void* const* out,
                                 std::size_t outputs, unsigned long* status) noexcept {
  SetErrorInfo(0, nullptr);  // what an earlier call left behind
  if (status == nullptr) return E_POINTER;
  try {
    const Signature* signature = host::find_signature(id);
    if (signature == nullptr || signature->inputs.size() != inputs || signature->outputs.size() != outputs)
      return E_UNEXPECTED;
    for (std::size_t i = 0; i < outputs; ++i) {
      if (out[i] != nullptr) continue;
      host::note_null_output(*signature, i);
      return fail(E_POINTER);
    }
    MethodCaller caller(in, out);
    std::uint32_t number = 0;
    const TypedAnswer answer = TypedCall::make(*signature, caller, number);
    if (answer == TypedAnswer::unavailable) return fail(E_UNEXPECTED);
    if (answer == TypedAnswer::refused) return fail(E_INVALIDARG);
    *status = number;
    return answer == TypedAnswer::delivered ? S_OK : E_INVALIDARG;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace norvane::com
