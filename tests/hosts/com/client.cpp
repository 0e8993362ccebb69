// An automation client: through the vtable, late bound with what scripts send, on several threads and apartments.
//
//   com_client MODULE         loads the module by its path, without any registration
//   com_client --registered   creates the object by its ProgID
//   com_client --keys ROOT    prints what is registered below ROOT (HKLM or HKCU) \Software\Classes
#include <windows.h>

#include <ole2.h>
#include <olectl.h>

// Defines the identifiers of the IDL compiler's header, which comes behind it.
#include <initguid.h>

#include "norvane_com.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

int failures = 0;

#define CHECK(condition)                                                  \
  do {                                                                    \
    if (!(condition)) {                                                   \
      std::printf("%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                         \
    }                                                                     \
  } while (0)

// ISO 6976 mixture of eight components; its superior calorific value by the 1995 edition
// at 15 / 15 / 15 degC with tabulated molar masses.
const double gas[22] = {0.9247, 0.0175, 0.0068, 0.035, 0.0098, 0, 0, 0, 0, 0, 0.0034, 0.0022, 0, 0.0006};
constexpr double published = 38.95947337829;
bool is_published(double value) { return std::fabs(value - published) < 1e-9 * published; }

constexpr DISPID id_aga5 = 4;
constexpr DISPID id_iso6976 = 87;
constexpr DISPID id_iso6976ex = 89;
constexpr int iso6976_inputs = 4;
constexpr int iso6976_outputs = 12;

SAFEARRAY* list_of(const double* values, ULONG count) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, count);
  if (count > 0) std::memcpy(array->pvData, values, count * sizeof(double));
  return array;
}

struct Outputs {
  double number[11];
  unsigned long range = 77;
  unsigned long status = 77;
};

HRESULT calorific(IFunctions* functions, SAFEARRAY* list, Outputs& r) {
  double* n = r.number;
  return functions->ISO6976_1995_M(list, 1, 2, 1, n, n + 1, n + 2, n + 3, n + 4, n + 5, n + 6, n + 7, n + 8, n + 9,
                                   n + 10, &r.range, &r.status);
}

std::wstring last_error_text() {
  IErrorInfo* info = nullptr;
  if (GetErrorInfo(0, &info) != S_OK) return {};
  BSTR text = nullptr;
  info->GetDescription(&text);
  std::wstring result(text != nullptr ? text : L"");
  SysFreeString(text);
  info->Release();
  return result;
}

bool contains(const std::wstring& text, const wchar_t* part) { return text.find(part) != text.npos; }

void check_vtable(IFunctions* functions) {
  Outputs r;
  SAFEARRAY* list = list_of(gas, 22);
  CHECK(calorific(functions, list, r) == S_OK);
  CHECK(r.status == 0 && r.range == 0 && is_published(r.number[0]));

  // Refused arguments: E_INVALIDARG, and a text that names the argument.
  CHECK(calorific(functions, nullptr, r) == E_INVALIDARG);
  CHECK(contains(last_error_text(), L"ISO6976_1995_M: [2] composition"));
  SAFEARRAY* brief = list_of(gas, 5);
  CHECK(calorific(functions, brief, r) == E_INVALIDARG);
  CHECK(contains(last_error_text(), L"ISO6976_1995_M"));
  double mass = 0, volume = 0;
  unsigned long status = 0;
  CHECK(functions->AGA5_C(list, 1.5, &mass, &volume, &status) == E_INVALIDARG);
  CHECK(contains(last_error_text(), L"specific gravity (1.5) should be lower or equal than: 1"));
  CHECK(functions->AGA5_C(list, 0.6, &mass, nullptr, &status) == E_POINTER);
  CHECK(functions->AGA5_C(list, 0.6, &mass, &volume, nullptr) == E_POINTER);
  // A good call leaves no text of an earlier one, and lists may be left out.
  CHECK(functions->AGA5_C(list, 1.5, &mass, &volume, &status) == E_INVALIDARG);
  CHECK(calorific(functions, list, r) == S_OK && last_error_text().empty());
  SAFEARRAY* empty = list_of(gas, 0);
  double* n = r.number;
  CHECK(functions->ISO6976ex_1995_M(list, nullptr, empty, nullptr, empty, nullptr, 1, 2, 1, n, n + 1, n + 2, n + 3,
                                    n + 4, n + 5, n + 6, n + 7, n + 8, n + 9, n + 10, &r.range, &r.status) == S_OK);
  CHECK(r.status == 0 && r.number[0] > 38);
  SafeArrayDestroy(empty);
  SafeArrayDestroy(brief);
  SafeArrayDestroy(list);
}

// ---- Late binding ------------------------------------------------------------------------------------------------

VARIANT variant(double value) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_R8;
  v.dblVal = value;
  return v;
}

VARIANT variant(int value) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_I4;
  v.lVal = value;
  return v;
}

VARIANT variant(VARTYPE type, void* reference) {
  VARIANT v;
  VariantInit(&v);
  v.vt = static_cast<VARTYPE>(VT_BYREF | type);
  v.byref = reference;
  return v;
}

VARIANT omitted() {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_ERROR;
  v.scode = DISP_E_PARAMNOTFOUND;
  return v;
}

struct Called {
  HRESULT result;
  VARIANT status;
  std::wstring text;
  UINT bad_argument = 99;
};

// Arguments in the order of the parameters.
Called call(IDispatch* object, DISPID id, std::vector<VARIANT> arguments, std::vector<DISPID> names = {}) {
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPPARAMS parameters{reversed.data(), names.data(), static_cast<UINT>(reversed.size()),
                        static_cast<UINT>(names.size())};
  EXCEPINFO exception{};
  Called called;
  VariantInit(&called.status);
  called.result = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                                 &parameters, &called.status, &exception, &called.bad_argument);
  if (exception.bstrDescription != nullptr) called.text = exception.bstrDescription;
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrSource);
  return called;
}

// The gas in an array of variants with the given bounds, filled row by row.
SAFEARRAY* matrix(VARTYPE type, ULONG rows, ULONG columns, LONG base) {
  SAFEARRAYBOUND bounds[2] = {{rows, base}, {columns, base}};
  SAFEARRAY* array = SafeArrayCreate(type, 2, bounds);
  for (ULONG i = 0; i < rows * columns; ++i) {
    LONG place[2] = {base + static_cast<LONG>(i / columns), base + static_cast<LONG>(i % columns)};
    VARIANT element = variant(gas[i]);
    SafeArrayPutElement(array, place, type == VT_VARIANT ? static_cast<void*>(&element) : &element.dblVal);
  }
  return array;
}

VARIANT of_array(SAFEARRAY* array, VARTYPE type) {
  VARIANT v;
  VariantInit(&v);
  v.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  v.parray = array;
  return v;
}

// Calls with this composition and one output into a script's variable; true when the published value comes back.
bool accepts(IDispatch* object, VARIANT composition) {
  VARIANT value;
  VariantInit(&value);
  const Called called =
      call(object, id_iso6976, {composition, variant(1), variant(2), variant(1), variant(VT_VARIANT, &value)});
  return called.result == S_OK && called.status.vt == VT_I4 && called.status.lVal == 0 && value.vt == VT_R8 &&
         is_published(value.dblVal);
}

void check_lists(IDispatch* object) {
  SAFEARRAY* numbers = list_of(gas, 22);
  VARIANT plain = of_array(numbers, VT_R8);
  CHECK(accepts(object, plain));
  CHECK(accepts(object, variant(VT_VARIANT, &plain)));
  CHECK(accepts(object, variant(VT_ARRAY | VT_R8, &numbers)));
  SafeArrayDestroy(numbers);
  for (VARTYPE type : {VT_VARIANT, VT_R8}) {
    for (LONG base : {0, 1, -3}) {
      for (ULONG rows : {1u, 2u, 11u, 22u}) {
        VARIANT cells = of_array(matrix(type, rows, 22 / rows, base), type);
        CHECK(accepts(object, cells));
        VariantClear(&cells);
      }
    }
  }
  // Whole numbers and texts: 1000 parts of methane are a composition in another scale, refused as one, but read.
  SAFEARRAY* whole = SafeArrayCreateVector(VT_I4, 0, 22);
  static_cast<LONG*>(whole->pvData)[0] = 1;
  VARIANT value;
  VariantInit(&value);
  Called called = call(object, id_iso6976,
                       {of_array(whole, VT_I4), variant(1), variant(2), variant(1), variant(VT_VARIANT, &value)});
  CHECK(called.result == S_OK && called.status.lVal == 0 && value.vt == VT_R8 && value.dblVal > 37.6 &&
        value.dblVal < 37.8);
  SafeArrayDestroy(whole);

  // What is no list of numbers.
  SAFEARRAY* texts = SafeArrayCreateVector(VT_BSTR, 0, 22);
  static_cast<BSTR*>(texts->pvData)[3] = SysAllocString(L"much");
  CHECK(call(object, id_iso6976, {of_array(texts, VT_BSTR), variant(1), variant(2), variant(1)}).result ==
        DISP_E_EXCEPTION);
  SafeArrayDestroy(texts);
  VARIANT null;
  VariantInit(&null);
  null.vt = VT_NULL;
  called = call(object, id_iso6976, {of_array(matrix(VT_R8, 1, 22, 0), VT_R8), null, variant(2), variant(1)});
  CHECK(called.result == DISP_E_TYPEMISMATCH && called.bad_argument == 2);
  // A list may be left out where the function can do without.
  SAFEARRAY* none = SafeArrayCreateVector(VT_VARIANT, 0, 0);
  VARIANT blank, missing_array = of_array(nullptr, VT_R8);
  VariantInit(&blank);
  for (VARIANT list : {null, blank, omitted(), missing_array, of_array(none, VT_VARIANT)}) {
    called = call(object, id_iso6976, {list, variant(1), variant(2), variant(1)});
    CHECK(called.result == DISP_E_EXCEPTION && contains(called.text, L"[2] composition"));
    called = call(object, id_iso6976ex,
                  {of_array(matrix(VT_R8, 1, 22, 0), VT_R8), list, list, list, list, list, variant(1), variant(2),
                   variant(1), variant(VT_VARIANT, &value)});
    CHECK(called.result == S_OK && called.status.lVal == 0 && value.vt == VT_R8 && value.dblVal > 38);
  }
  SafeArrayDestroy(none);
  SAFEARRAYBOUND endless[3] = {{60000, 0}, {2, 0}, {2, 0}};
  SAFEARRAY* big = SafeArrayCreate(VT_UI1, 3, endless);
  CHECK(call(object, id_iso6976, {of_array(big, VT_UI1), variant(1), variant(2), variant(1)}).result ==
        DISP_E_TYPEMISMATCH);
  SafeArrayDestroy(big);
}

void check_outputs(IDispatch* object) {
  VARIANT list = of_array(list_of(gas, 22), VT_R8);
  double exact = 0;
  float single = 0;
  long whole = 0;
  BSTR text = SysAllocString(L"before");
  VARIANT held, chained, outer;
  VariantInit(&held);
  held.vt = VT_BSTR;
  held.bstrVal = SysAllocString(L"before");
  VariantInit(&chained);
  VariantInit(&outer);
  outer.vt = VT_BYREF | VT_VARIANT;
  outer.pvarVal = &chained;
  Called called = call(object, id_iso6976,
                       {list, variant(1), variant(2), variant(1), variant(VT_R8, &exact), variant(VT_R4, &single),
                        variant(VT_I4, &whole), variant(VT_BSTR, &text), variant(VT_VARIANT, &held),
                        variant(VT_VARIANT, &outer), omitted(), variant(1.0)});
  CHECK(called.result == S_OK);
  CHECK(is_published(exact));
  CHECK(std::fabs(single - 0.74087496f) < 1e-6f);
  CHECK(whole == 1);
  CHECK(contains(text, L"0.60459"));
  CHECK(held.vt == VT_R8 && std::fabs(held.dblVal - 17.47784575) < 1e-8);
  CHECK(chained.vt == VT_R8 && chained.dblVal > 52);
  SysFreeString(text);

  // Decimals, and what cannot be stored: the status and the other outputs are there all the same.
  DECIMAL decimal;
  std::memset(&decimal, 0x55, sizeof decimal);
  double density = 0, back = 0;
  IUnknown* object_place = nullptr;
  called = call(object, id_iso6976,
                {list, variant(1), variant(2), variant(1), variant(VT_DECIMAL, &decimal),
                 variant(VT_UNKNOWN, &object_place), omitted(), variant(VT_R8, &density)});
  CHECK(called.result == DISP_E_TYPEMISMATCH && called.bad_argument == 2);
  CHECK(called.status.vt == VT_I4 && called.status.lVal == 0 && density > 0.6 && object_place == nullptr);
  CHECK(VarR8FromDec(&decimal, &back) == S_OK && std::fabs(back - published) < 1e-9);

  // Counts: all outputs may be left out, no input may, and there are no more parameters than there are.
  CHECK(call(object, id_iso6976, {list, variant(1), variant(2), variant(1)}).result == S_OK);
  CHECK(call(object, id_iso6976, {list, variant(1), variant(2)}).result == DISP_E_PARAMNOTOPTIONAL);
  std::vector<VARIANT> many(iso6976_inputs + iso6976_outputs + 1, variant(1));
  many[0] = list;
  CHECK(call(object, id_iso6976, many).result == DISP_E_BADPARAMCOUNT);
  many.pop_back();
  CHECK(call(object, id_iso6976, many).result == S_OK);

  // A gap takes the default; a null reference takes nothing.
  VARIANT value;
  VariantInit(&value);
  CHECK(call(object, id_iso6976, {list, omitted(), variant(2), omitted(), variant(VT_VARIANT, &value)}).result ==
        S_OK);
  CHECK(is_published(value.dblVal));
  CHECK(call(object, id_iso6976, {list, variant(1), variant(2), variant(1), variant(VT_R8, nullptr)}).result ==
        DISP_E_TYPEMISMATCH);
  CHECK(call(object, id_iso6976, {list, variant(VT_VARIANT, nullptr), variant(2), variant(1)}).result ==
        DISP_E_TYPEMISMATCH);

  // By name: composition, molar_mass_method and the first output.
  wchar_t method[] = L"iso6976_1995_m", composition[] = L"composition", mode[] = L"Molar_Mass_Method",
          first[] = L"sup_cal_value", unknown[] = L"nothing";
  LPOLESTR names[] = {method, first, mode, composition};
  DISPID ids[4];
  CHECK(object->GetIDsOfNames(IID_NULL, names, 4, 0, ids) == S_OK && ids[0] == id_iso6976);
  VariantInit(&value);
  CHECK(call(object, ids[0], {list, variant(2), variant(VT_VARIANT, &value)}, {ids[1], ids[2], ids[3]}).result ==
        S_OK);
  CHECK(value.vt == VT_R8 && is_published(value.dblVal));
  LPOLESTR wrong[] = {unknown};
  CHECK(object->GetIDsOfNames(IID_NULL, wrong, 1, 0, ids) == DISP_E_UNKNOWNNAME);
  CHECK(call(object, ids[0], {list, list}, {id_iso6976, id_iso6976}).result == DISP_E_MEMBERNOTFOUND);
  CHECK(call(object, id_iso6976, {list, list}, {0, 0}).result == DISP_E_PARAMNOTFOUND);
  CHECK(call(object, 0, {}).result == DISP_E_MEMBERNOTFOUND);
  CHECK(call(object, 107, {}).result == DISP_E_MEMBERNOTFOUND);

  // A failed check is an exception with the context's words.
  called = call(object, id_aga5, {list, variant(1.5)});
  CHECK(called.result == DISP_E_EXCEPTION && contains(called.text, L"should be lower or equal than: 1"));
  called = call(object, id_aga5, {variant(0.5), variant(0.6)});
  CHECK(called.result == DISP_E_EXCEPTION && contains(called.text, L"AGA5_C"));
  VariantClear(&list);
}

// A script's object whose value is the gas, and which itself calculates while it is asked or written.
class Restless final : public IDispatch {
 public:
  explicit Restless(IDispatch* library) : library_(library) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    ids[0] = std::wcscmp(names[0], L"value") == 0 ? 7 : DISPID_UNKNOWN;
    return ids[0] == 7 ? S_OK : DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    VARIANT list = of_array(list_of(gas, 22), VT_R8);
    double mass = 0;
    if (call(library_, id_aga5, {list, variant(0.6), variant(VT_R8, &mass)}).result == S_OK && mass > 0)
      ++inner_calls;
    if (id == 7 && (flags & DISPATCH_PROPERTYPUT) != 0) {
      written.push_back(parameters->rgvarg[0].dblVal);
      VariantClear(&list);
    } else if (number != 0) {
      *result = variant(number);
      VariantClear(&list);
    } else {
      *result = list;
    }
    return S_OK;
  }
  int inner_calls = 0;
  double number = 0;  // its value in place of the gas
  std::vector<double> written;

 private:
  IDispatch* library_;
};

void check_reentrance(IDispatch* object) {
  Restless restless(object);
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_DISPATCH;
  v.pdispVal = &restless;
  CHECK(call(object, id_iso6976, {v, variant(1), variant(2), variant(1), v, v}).result == S_OK);
  CHECK(restless.inner_calls == 3 && restless.written.size() == 2);
  CHECK(restless.written.size() == 2 && is_published(restless.written[0]) &&
        std::fabs(restless.written[1] - 0.7408749589571348) < 1e-9);
  // As a cell of a composition, alone and behind a reference.
  SAFEARRAY* cells = matrix(VT_VARIANT, 22, 1, 1);
  auto* elements = static_cast<VARIANT*>(cells->pvData);
  restless.number = gas[0];
  elements[0] = v;
  const int before = restless.inner_calls;
  CHECK(accepts(object, of_array(cells, VT_VARIANT)));
  elements[0] = variant(VT_VARIANT, &v);
  CHECK(accepts(object, variant(VT_ARRAY | VT_VARIANT, &cells)));
  CHECK(restless.inner_calls == before + 2);
  elements[0] = v;
  // Early bound lists hold numbers: nobody is asked.
  Outputs r;
  IFunctions* functions = nullptr;
  CHECK(object->QueryInterface(IID_IFunctions, reinterpret_cast<void**>(&functions)) == S_OK);
  CHECK(calorific(functions, cells, r) == E_INVALIDARG && restless.inner_calls == before + 2);
  functions->Release();
  elements[0] = variant(gas[0]);
  SafeArrayDestroy(cells);
}

void check_type_information(IDispatch* object) {
  ITypeInfo* info = nullptr;
  CHECK(object->GetTypeInfo(0, 0, &info) == S_OK);
  if (info == nullptr) return;
  wchar_t name[] = L"ISO6976_1995_M";
  LPOLESTR names[] = {name};
  MEMBERID id = 0;
  CHECK(info->GetIDsOfNames(names, 1, &id) == S_OK && id == id_iso6976);
  TYPEATTR* attributes = nullptr;
  if (SUCCEEDED(info->GetTypeAttr(&attributes))) {
    CHECK(attributes->cFuncs >= 106 && (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0);
    info->ReleaseTypeAttr(attributes);
  }
  info->Release();
}

// ---- Threads and apartments --------------------------------------------------------------------------------------

struct Task {
  IFunctions* functions;
  IStream* marshaled;
  bool apartment;
  int wrong = 0;
};

DWORD WINAPI work(void* argument) {
  auto* task = static_cast<Task*>(argument);
  if (FAILED(CoInitializeEx(nullptr, task->apartment ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED))) return 1;
  IFunctions* functions = nullptr;
  if (FAILED(CoGetInterfaceAndReleaseStream(task->marshaled, IID_IFunctions, reinterpret_cast<void**>(&functions)))) {
    ++task->wrong;
  } else {
    // The free-threaded marshaler hands out the object itself.
    if (functions != task->functions) ++task->wrong;
    SAFEARRAY* list = list_of(gas, 22);
    SAFEARRAY* brief = list_of(gas, 3);
    for (int i = 0; i < 300; ++i) {
      Outputs r;
      const bool refused = i % 7 == 0;
      const HRESULT result = calorific(functions, refused ? brief : list, r);
      if (refused ? result != E_INVALIDARG : result != S_OK || !is_published(r.number[0])) ++task->wrong;
    }
    SafeArrayDestroy(list);
    SafeArrayDestroy(brief);
    functions->Release();
  }
  CoUninitialize();
  return 0;
}

void check_threads(IFunctions* functions) {
  constexpr int count = 8;
  Task tasks[count];
  HANDLE threads[count];
  for (int i = 0; i < count; ++i) {
    tasks[i] = {functions, nullptr, i % 2 == 0};
    CHECK(CoMarshalInterThreadInterfaceInStream(IID_IFunctions, functions, &tasks[i].marshaled) == S_OK);
    threads[i] = CreateThread(nullptr, 0, work, &tasks[i], 0, nullptr);
  }
  WaitForMultipleObjects(count, threads, TRUE, INFINITE);
  for (int i = 0; i < count; ++i) {
    CHECK(tasks[i].wrong == 0);
    CloseHandle(threads[i]);
  }
}

void check_object(IFunctions* functions) {
  check_vtable(functions);
  check_lists(functions);
  check_outputs(functions);
  check_reentrance(functions);
  check_type_information(functions);
  check_threads(functions);
}

template <class Routine>
Routine entry(HMODULE module, const char* name) {
  return reinterpret_cast<Routine>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Class factory, what keeps the module loaded, and that it leaves when nothing does.
void check_module(const wchar_t* path) {
  HMODULE module = LoadLibraryW(path);
  CHECK(module != nullptr);
  if (module == nullptr) return;
  const auto get_class = entry<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(module, "DllGetClassObject");
  const auto can_unload = entry<HRESULT(WINAPI*)()>(module, "DllCanUnloadNow");
  IClassFactory* factory = nullptr;
  CHECK(get_class(CLSID_StdFont, IID_IClassFactory, reinterpret_cast<void**>(&factory)) == CLASS_E_CLASSNOTAVAILABLE);
  CHECK(can_unload() == S_OK);
  CHECK(get_class(CLSID_Functions, IID_IClassFactory, reinterpret_cast<void**>(&factory)) == S_OK);
  CHECK(can_unload() == S_FALSE);
  IFunctions* functions = nullptr;
  CHECK(factory->CreateInstance(factory, IID_IUnknown, reinterpret_cast<void**>(&functions)) ==
        CLASS_E_NOAGGREGATION);
  CHECK(factory->CreateInstance(nullptr, IID_IFunctions, reinterpret_cast<void**>(&functions)) == S_OK);
  CHECK(factory->LockServer(TRUE) == S_OK);
  factory->Release();
  if (functions != nullptr) {
    ISupportErrorInfo* support = nullptr;
    CHECK(functions->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support)) == S_OK);
    CHECK(support->InterfaceSupportsErrorInfo(IID_IFunctions) == S_OK);
    support->Release();
    check_object(functions);
    CHECK(functions->Release() == 0);
  }
  CHECK(can_unload() == S_FALSE);
  CHECK(get_class(CLSID_Functions, IID_IClassFactory, reinterpret_cast<void**>(&factory)) == S_OK);
  factory->LockServer(FALSE);
  factory->Release();
  CHECK(can_unload() == S_OK);
  // Neither error objects nor thread contexts may hold it.
  SetErrorInfo(0, nullptr);
  CHECK(FreeLibrary(module) != 0);
  const bool gone = GetModuleHandleW(L"Norvane.XLL") == nullptr;
  CHECK(gone);
}

void check_registered() {
  CLSID class_id;
  CHECK(CLSIDFromProgID(L"Norvane.Functions", &class_id) == S_OK && class_id == CLSID_Functions);
  CHECK(CLSIDFromProgID(L"Norvane.Functions.1", &class_id) == S_OK && class_id == CLSID_Functions);
  IFunctions* functions = nullptr;
  CHECK(CoCreateInstance(CLSID_Functions, nullptr, CLSCTX_INPROC_SERVER, IID_IFunctions,
                         reinterpret_cast<void**>(&functions)) == S_OK);
  if (functions == nullptr) return;
  check_object(functions);
  functions->Release();
  ITypeLib* library = nullptr;
  CHECK(LoadRegTypeLib(LIBID_Norvane, 1, 0, 0, &library) == S_OK);
  if (library != nullptr) library->Release();
}

// ---- Registry ----------------------------------------------------------------------------------------------------

void print_keys(HKEY parent, const std::wstring& name) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
  std::printf("[%ls]\n", name.c_str());
  for (DWORD i = 0;; ++i) {
    wchar_t value[256];
    wchar_t text[1024] = L"";
    DWORD value_size = 256, text_size = sizeof text - sizeof(wchar_t), type = 0;
    if (RegEnumValueW(key, i, value, &value_size, nullptr, &type, reinterpret_cast<BYTE*>(text), &text_size) !=
        ERROR_SUCCESS)
      break;
    std::printf("%ls=%ls\n", value, text);
  }
  std::vector<std::wstring> below;
  for (DWORD i = 0;; ++i) {
    wchar_t child[256];
    DWORD size = 256;
    if (RegEnumKeyExW(key, i, child, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    below.push_back(name + L"\\" + child);
  }
  RegCloseKey(key);
  for (const std::wstring& child : below) print_keys(parent, child);
}

void print_registration(HKEY root) {
  HKEY classes = nullptr;
  if (RegOpenKeyExW(root, L"Software\\Classes", 0, KEY_READ, &classes) != ERROR_SUCCESS) return;
  for (const wchar_t* name :
       {L"Norvane.Functions", L"Norvane.Functions.1", L"AppID\\Norvane.XLL",
        L"AppID\\{DD0B5C96-0D3B-4290-BC44-C05F438C71BB}", L"CLSID\\{04BBA99A-8E89-4A10-B7BE-6498EBB49239}",
        L"TypeLib\\{C473FA16-FB0F-4AA7-AF1B-8C769AE8C66E}", L"Interface\\{9681473B-8BD1-4A89-A3C1-8C8A3249D660}"})
    print_keys(classes, name);
  HKEY kept = nullptr;
  if (RegOpenKeyExW(classes, L"AppID", 0, KEY_READ, &kept) == ERROR_SUCCESS) {
    std::printf("[AppID]\n");
    RegCloseKey(kept);
  }
  RegCloseKey(classes);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc == 3 && std::wcscmp(argv[1], L"--keys") == 0) {
    print_registration(std::wcscmp(argv[2], L"HKCU") == 0 ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE);
    return 0;
  }
  if (argc != 2) return 2;
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  std::wcscmp(argv[1], L"--registered") == 0 ? check_registered() : check_module(argv[1]);
  CoUninitialize();
  std::printf("complete, %d failures\n", failures);
  return failures != 0;
}
