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
#include <cwchar>
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

// The same text early and late bound.
void check_identity(IFunctions* functions) {
  BSTR early = nullptr;
  CHECK(functions->get_Identity(&early) == S_OK && early != nullptr && contains(early, L", checksum "));
  CHECK(functions->get_Identity(nullptr) == E_POINTER);
  wchar_t name[] = L"identity";
  LPOLESTR names[] = {name};
  DISPID id = 0;
  CHECK(functions->GetIDsOfNames(IID_NULL, names, 1, 0, &id) == S_OK && id == 1000);
  DISPPARAMS none{};
  VARIANT late;
  VariantInit(&late);
  CHECK(functions->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &late, nullptr, nullptr) == S_OK);
  CHECK(late.vt == VT_BSTR && late.bstrVal != nullptr && std::wcscmp(early, late.bstrVal) == 0);
  CHECK(functions->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &none, &late, nullptr, nullptr) ==
        DISP_E_MEMBERNOTFOUND);
  VariantClear(&late);
  SysFreeString(early);
}

// ---- Late binding ------------------------------------------------------------------------------------------------

VARIANT variant(VARTYPE type = VT_EMPTY, void* reference = nullptr) {
  VARIANT v;
  VariantInit(&v);
  v.vt = type;
  v.byref = reference;
  return v;
}
VARIANT variant(double value) {
  VARIANT v = variant(VARTYPE{VT_R8});
  v.dblVal = value;
  return v;
}
VARIANT variant(int value) {
  VARIANT v = variant(VARTYPE{VT_I4});
  v.lVal = value;
  return v;
}
// The address of a script's variable.
VARIANT at(VARTYPE type, void* place) { return variant(static_cast<VARTYPE>(VT_BYREF | type), place); }
VARIANT of_array(SAFEARRAY* array, VARTYPE type) { return variant(static_cast<VARTYPE>(VT_ARRAY | type), array); }
VARIANT omitted() {
  VARIANT v = variant(VARTYPE{VT_ERROR});
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

struct Row {
  const char* what;
  DISPID id;
  std::vector<VARIANT> arguments;
  HRESULT result = S_OK;
  const wchar_t* says = L"";
  UINT bad_argument = 99;
  std::vector<DISPID> names = {};
};

void check_rows(IDispatch* object, const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    const Called called = call(object, row.id, row.arguments, row.names);
    if (called.result == row.result && contains(called.text, row.says) &&
        (row.bad_argument == 99 || called.bad_argument == row.bad_argument))
      continue;
    std::printf("%s: %08lx, argument %u, %ls\n", row.what, static_cast<unsigned long>(called.result),
                called.bad_argument, called.text.c_str());
    ++failures;
  }
}

// The arguments of ISO6976_1995_M behind a composition: the published options, and then outputs.
std::vector<VARIANT> behind(VARIANT composition, std::vector<VARIANT> outputs = {}) {
  outputs.insert(outputs.begin(), {composition, variant(1), variant(2), variant(1)});
  return outputs;
}

// What comes back for this composition in one output, a script's variable; 0 when the call fails.
double value_of(IDispatch* object, DISPID id, std::vector<VARIANT> arguments) {
  VARIANT value = variant();
  arguments.push_back(at(VT_VARIANT, &value));
  const Called called = call(object, id, arguments);
  const bool good = called.result == S_OK && called.status.vt == VT_I4 && called.status.lVal == 0;
  return good && value.vt == VT_R8 ? value.dblVal : 0.0;
}
bool accepts(IDispatch* object, VARIANT composition) {
  return is_published(value_of(object, id_iso6976, behind(composition)));
}

void check_lists(IDispatch* object) {
  SAFEARRAY* numbers = list_of(gas, 22);
  VARIANT plain = of_array(numbers, VT_R8);
  CHECK(accepts(object, plain));
  CHECK(accepts(object, at(VT_VARIANT, &plain)));
  CHECK(accepts(object, at(VT_ARRAY | VT_R8, &numbers)));
  for (VARTYPE type : {VT_VARIANT, VT_R8}) {
    for (LONG base : {0, 1, -3}) {
      for (ULONG rows : {1u, 2u, 11u, 22u}) {
        VARIANT cells = of_array(matrix(type, rows, 22 / rows, base), type);
        CHECK(accepts(object, cells));
        VariantClear(&cells);
      }
    }
  }
  VARIANT whole = of_array(SafeArrayCreateVector(VT_I4, 0, 22), VT_I4);
  static_cast<LONG*>(whole.parray->pvData)[0] = 1;
  CHECK(std::fabs(value_of(object, id_iso6976, behind(whole)) - 37.7) < 0.1);

  VARIANT texts = of_array(SafeArrayCreateVector(VT_BSTR, 0, 22), VT_BSTR);
  static_cast<BSTR*>(texts.parray->pvData)[3] = SysAllocString(L"much");
  SAFEARRAYBOUND endless[3] = {{60000, 0}, {2, 0}, {2, 0}};
  VARIANT big = of_array(SafeArrayCreate(VT_UI1, 3, endless), VT_UI1);
  VARIANT none = of_array(SafeArrayCreateVector(VT_VARIANT, 0, 0), VT_VARIANT);
  const VARIANT null = variant(VARTYPE{VT_NULL});
  check_rows(object,
             {
                 {"texts", id_iso6976, behind(texts), DISP_E_EXCEPTION},
                 {"too many cells", id_iso6976, behind(big), DISP_E_TYPEMISMATCH},
                 {"no option", id_iso6976, {plain, null, variant(2), variant(1)}, DISP_E_TYPEMISMATCH, L"", 2},
             });
  // A list may be left out where the function can do without.
  for (VARIANT list : {null, variant(), omitted(), of_array(nullptr, VT_R8), none}) {
    check_rows(object, {{"no list", id_iso6976, behind(list), DISP_E_EXCEPTION, L"[2] composition"}});
    CHECK(value_of(object, id_iso6976ex, {plain, list, list, list, list, list, variant(1), variant(2), variant(1)}) >
          38);
  }
  for (VARIANT* list : {&plain, &whole, &texts, &big, &none}) VariantClear(list);
}

void check_outputs(IDispatch* object) {
  VARIANT list = of_array(list_of(gas, 22), VT_R8);
  double exact = 0;
  float single = 0;
  long whole = 0;
  BSTR text = SysAllocString(L"before");
  VARIANT held = variant(VT_BSTR, SysAllocString(L"before")), chained = variant(), outer = at(VT_VARIANT, &chained);
  check_rows(object, {{"outputs of every type", id_iso6976,
                       behind(list, {at(VT_R8, &exact), at(VT_R4, &single), at(VT_I4, &whole), at(VT_BSTR, &text),
                                     at(VT_VARIANT, &held), at(VT_VARIANT, &outer), omitted(), variant(1.0)})}});
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
  const Called called =
      call(object, id_iso6976,
           behind(list, {at(VT_DECIMAL, &decimal), at(VT_UNKNOWN, &object_place), omitted(), at(VT_R8, &density)}));
  CHECK(called.result == DISP_E_TYPEMISMATCH && called.bad_argument == 2);
  CHECK(called.status.vt == VT_I4 && called.status.lVal == 0 && density > 0.6 && object_place == nullptr);
  CHECK(VarR8FromDec(&decimal, &back) == S_OK && std::fabs(back - published) < 1e-9);

  // A gap takes the default; by name: composition, molar_mass_method and the first output.
  CHECK(is_published(value_of(object, id_iso6976, {list, omitted(), variant(2), omitted()})));
  wchar_t method[] = L"iso6976_1995_m", composition[] = L"composition", mode[] = L"Molar_Mass_Method",
          first[] = L"sup_cal_value", unknown[] = L"nothing";
  LPOLESTR names[] = {method, first, mode, composition}, wrong[] = {unknown};
  DISPID ids[4];
  CHECK(object->GetIDsOfNames(IID_NULL, names, 4, 0, ids) == S_OK && ids[0] == id_iso6976);
  VARIANT value = variant();
  std::vector<VARIANT> all = behind(list, std::vector<VARIANT>(iso6976_outputs, variant(1)));
  std::vector<VARIANT> more = behind(list, std::vector<VARIANT>(iso6976_outputs + 1, variant(1)));
  check_rows(
      object,
      {
          {"no outputs", id_iso6976, behind(list)},
          {"every parameter", id_iso6976, all},
          {"one input less", id_iso6976, {list, variant(1), variant(2)}, DISP_E_PARAMNOTOPTIONAL},
          {"one parameter more", id_iso6976, more, DISP_E_BADPARAMCOUNT},
          {"output nowhere", id_iso6976, behind(list, {at(VT_R8, nullptr)}), DISP_E_TYPEMISMATCH},
          {"input nowhere", id_iso6976, {list, at(VT_VARIANT, nullptr), variant(2), variant(1)}, DISP_E_TYPEMISMATCH},
          {"by name", ids[0], {list, variant(2), at(VT_VARIANT, &value)}, S_OK, L"", 99, {ids[1], ids[2], ids[3]}},
          {"names of methods", ids[0], {list, list}, DISP_E_PARAMNOTFOUND, L"", 99, {id_iso6976, id_iso6976}},
          {"a name twice", id_iso6976, {list, list}, DISP_E_PARAMNOTFOUND, L"", 99, {0, 0}},
          {"method 0", 0, {}, DISP_E_MEMBERNOTFOUND},
          {"method 107", 107, {}, DISP_E_MEMBERNOTFOUND},
          {"beyond a bound", id_aga5, {list, variant(1.5)}, DISP_E_EXCEPTION, L"should be lower or equal than: 1"},
          {"a number for a list", id_aga5, {variant(0.5), variant(0.6)}, DISP_E_EXCEPTION, L"AGA5_C"},
      });
  CHECK(value.vt == VT_R8 && is_published(value.dblVal));
  CHECK(object->GetIDsOfNames(IID_NULL, wrong, 1, 0, ids) == DISP_E_UNKNOWNNAME);
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
    if (call(library_, id_aga5, {list, variant(0.6), at(VT_R8, &mass)}).result == S_OK && mass > 0) ++inner_calls;
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
  VARIANT v = variant(VT_DISPATCH, static_cast<IDispatch*>(&restless));
  CHECK(call(object, id_iso6976, behind(v, {v, v})).result == S_OK);
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
  elements[0] = at(VT_VARIANT, &v);
  CHECK(accepts(object, at(VT_ARRAY | VT_VARIANT, &cells)));
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
  check_identity(functions);
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
