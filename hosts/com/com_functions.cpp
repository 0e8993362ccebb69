#include "hosts/com/com_functions.h"

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "core/text.h"
#include "hosts/com/server.h"
#include "hosts/com/variants.h"

namespace norvane::com {
namespace {

using host::Parameter;
using host::Passing;
using host::Signature;
using host::TypedCall;

constexpr wchar_t source_name[] = L"Norvane.Functions";

BSTR to_bstr(std::u16string_view text) noexcept {
  return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

// "[4] composition is not a list of numbers": arguments are numbered as everywhere, from 1 with the name first.
std::u16string refused(const Signature& signature, const Parameter& input) {
  const Function_CFunctionSpec& spec = *signature.spec;
  std::u16string text(spec.id);
  text += u": [" + to_utf16(std::to_string(input.index + 1)) + u"] ";
  text += spec.inputs[input.index].key;
  text += input.passing == Passing::range ? u" is not a list of numbers" : u" is not a value that can be used";
  return text;
}

// Leaves the text for the caller's GetErrorInfo.
HRESULT fail(std::u16string_view text) noexcept {
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
  return E_INVALIDARG;
}

bool take(TypedCall& call, const Parameter& input, const TypedValue& value) noexcept {
  switch (input.passing) {
    case Passing::number: call.set_number(input, value.number); return true;
    case Passing::option: call.set_option(input, value.option); return true;
    case Passing::range: {
      FUNCTION_ARG list;
      if (!to_argument(call.context(), static_cast<const SAFEARRAY*>(value.data), list)) return false;
      call.argument(input) = list;
      return true;
    }
    case Passing::text: {
      auto* text = static_cast<const OLECHAR*>(value.data);
      if (text == nullptr) return true;  // its default
      return call.set_text(input, {reinterpret_cast<const char16_t*>(text), SysStringLen(const_cast<BSTR>(text))});
    }
  }
  return false;
}

bool give(TypedCall& call, const Parameter& output, void* target) noexcept {
  switch (output.passing) {
    case Passing::number: return call.fetch(output.index, *static_cast<double*>(target));
    case Passing::option: {
      std::uint32_t value = 0;
      if (!call.fetch(output.index, value)) return false;
      *static_cast<unsigned long*>(target) = value;
      return true;
    }
    case Passing::text: {
      std::u16string_view text;
      if (!call.fetch(output.index, text)) return false;
      *static_cast<BSTR*>(target) = to_bstr(text);
      return *static_cast<BSTR*>(target) != nullptr;
    }
    case Passing::range: break;  // outputs are single values
  }
  return false;
}

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

bool give(TypedCall& call, std::size_t output, Passing passing, VARIANT& value) noexcept {
  if (passing == Passing::number) {
    value.vt = VT_R8;
    return call.fetch(output, value.dblVal);
  }
  if (passing == Passing::option) {
    std::uint32_t number = 0;
    if (!call.fetch(output, number)) return false;
    set_unsigned(value, number);
    return true;
  }
  std::u16string_view text;
  if (!call.fetch(output, text)) return false;
  value.bstrVal = to_bstr(text);
  value.vt = VT_BSTR;
  return value.bstrVal != nullptr;
}

// One late-bound call. The client's objects are asked for their values before, and its variables written
// after, the thread's context is in use: both can run the client's code, which may call this library again.
class LateCall {
 public:
  LateCall(const Signature& signature, DISPPARAMS& parameters) : signature_(signature), parameters_(parameters) {}

  HRESULT Run(VARIANT* status, std::u16string& message, UINT& bad_argument) {
    if (const HRESULT result = Arrange(bad_argument); FAILED(result)) return result;
    if (const HRESULT result = ReadObjects(bad_argument); FAILED(result)) return result;
    if (const HRESULT result = Calculate(message, bad_argument); FAILED(result)) return result;
    for (std::size_t i = 0; i < signature_.outputs.size(); ++i) {
      const Given& target = given_[signature_.inputs.size() + i];
      if (target.value == nullptr) continue;
      const HRESULT result = store(*target.value, *outputs_[i + 1]);
      if (FAILED(result)) {
        bad_argument = target.number;
        return result;
      }
    }
    if (status != nullptr) copy(status, *outputs_[0]);
    return S_OK;
  }

 private:
  struct Given {
    const VARIANT* value = nullptr;  // null when the argument is left out
    UINT number = 0;                 // among the caller's arguments
  };

  // Places the arguments: named ones first in the array, then the others from last to first.
  HRESULT Arrange(UINT& bad_argument) {
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

  HRESULT ReadObjects(UINT& bad_argument) {
    for (std::size_t i = 0; i < signature_.inputs.size(); ++i) {
      if (given_[i].value == nullptr) continue;
      bad_argument = given_[i].number;
      const VARIANT* value = referred(*given_[i].value);
      if (value == nullptr) return DISP_E_TYPEMISMATCH;
      const bool object = (value->vt & ~VT_BYREF) == VT_DISPATCH;
      if (!object) continue;
      IDispatch* dispatch = nullptr;
      if ((value->vt & VT_BYREF) == 0) {
        dispatch = value->pdispVal;
      } else if (value->ppdispVal != nullptr) {
        dispatch = *value->ppdispVal;
      }
      auto held = std::make_unique<OwnedVariant>();
      if (const HRESULT result = value_of_object(dispatch, *held->get()); FAILED(result)) return result;
      given_[i].value = held->get();
      values_.push_back(std::move(held));
    }
    return S_OK;
  }

  HRESULT Calculate(std::u16string& message, UINT& bad_argument) {
    TypedCall call;
    if (!call.begin(signature_)) return E_UNEXPECTED;
    for (std::size_t i = 0; i < signature_.inputs.size(); ++i) {
      const Parameter& input = signature_.inputs[i];
      if (given_[i].value != nullptr && !to_argument(call.context(), *given_[i].value, call.argument(input))) {
        bad_argument = given_[i].number;
        return DISP_E_TYPEMISMATCH;
      }
    }
    if (!call.run()) {
      message = call.failure();
      return DISP_E_EXCEPTION;
    }
    outputs_ = std::make_unique<OwnedVariant[]>(signature_.outputs.size() + 1);
    if (!give(call, 0, Passing::option, *outputs_[0].get())) return E_INVALIDARG;
    for (std::size_t i = 0; i < signature_.outputs.size(); ++i) {
      const Parameter& output = signature_.outputs[i];
      if (!give(call, output.index, output.passing, *outputs_[i + 1].get())) return E_INVALIDARG;
    }
    return S_OK;
  }

  const Signature& signature_;
  DISPPARAMS& parameters_;
  std::vector<Given> given_;                           // one a parameter
  std::vector<std::unique_ptr<OwnedVariant>> values_;  // of objects
  std::unique_ptr<OwnedVariant[]> outputs_;
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
    const Signature* signature = host::find_signature(wide(0));
    if (signature == nullptr) return DISP_E_UNKNOWNNAME;
    ids[0] = static_cast<DISPID>(signature->id);
    // Then names of parameters: their places, outputs behind the inputs.
    HRESULT result = S_OK;
    for (UINT i = 1; i < count; ++i) {
      DISPID place = 0;
      for (const auto* list : {&signature->inputs, &signature->outputs}) {
        for (const Parameter& parameter : *list) {
          if (equal_ignoring_case(to_utf16(parameter.name), wide(i))) ids[i] = place;
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
  const Signature* signature = id > 0 ? host::find_signature(static_cast<std::uint32_t>(id)) : nullptr;
  if (signature == nullptr || (flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  if (result != nullptr) VariantInit(result);
  try {
    std::u16string message;
    UINT bad = 0;
    const HRESULT outcome = LateCall(*signature, *parameters).Run(result, message, bad);
    if (bad_argument != nullptr) *bad_argument = bad;
    if (outcome == DISP_E_EXCEPTION && exception != nullptr) {
      *exception = {};
      exception->scode = E_INVALIDARG;
      exception->bstrSource = SysAllocString(source_name);
      exception->bstrDescription = to_bstr(message);
    }
    return outcome;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT CCOMFunctions::RunMethod(std::uint32_t id, const TypedValue* in, std::size_t inputs, void* const* out,
                                 std::size_t outputs, unsigned long* status) noexcept {
  if (status == nullptr) return E_POINTER;
  for (std::size_t i = 0; i < outputs; ++i)
    if (out[i] == nullptr) return E_POINTER;
  try {
    const Signature* signature = host::find_signature(id);
    if (signature == nullptr || signature->inputs.size() != inputs || signature->outputs.size() != outputs)
      return E_UNEXPECTED;
    TypedCall call;
    if (!call.begin(*signature)) return E_UNEXPECTED;
    for (std::size_t i = 0; i < inputs; ++i)
      if (!take(call, signature->inputs[i], in[i])) return fail(refused(*signature, signature->inputs[i]));
    if (!call.run()) return fail(call.failure());
    std::uint32_t value = 0;
    if (!call.fetch(0, value)) return E_INVALIDARG;
    *status = value;
    for (std::size_t i = 0; i < outputs; ++i)
      if (!give(call, signature->outputs[i], out[i])) return E_INVALIDARG;
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace norvane::com
