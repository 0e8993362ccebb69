// The automation interface: its IDL, the methods of the class that implements it, and the record of its signatures.
#include <algorithm>

#include "hosts/com/identity.h"
#include "tools/signatures.h"

namespace norvane::generate {
namespace {

using host::Passing;

const char* input_type(Passing passing, bool idl) {
  switch (passing) {
    case Passing::number: return "double ";
    case Passing::option: return "unsigned long ";
    case Passing::text: return "BSTR ";
    case Passing::range: return idl ? "SAFEARRAY(double) " : "SAFEARRAY* ";
  }
  return "";
}

const char* output_type(Passing passing) {
  switch (passing) {
    case Passing::option: return "unsigned long* ";
    case Passing::text: return "BSTR* ";
    default: return "double* ";
  }
}

// One parameter, not to be broken, and what separates it from the next.
std::string parameter(std::string text) {
  std::replace(text.begin(), text.end(), ' ', unbroken);
  return text + ", ";
}

std::string parameters(const Method& method, bool idl) {
  const std::string in = idl ? "[in] " : "";
  const std::string out = idl ? "[out] " : "";
  std::string list;
  for (const Parameter& input : method.inputs) list += parameter(in + input_type(input.passing, idl) + input.name);
  for (const Parameter& output : method.outputs) list += parameter(out + output_type(output.passing) + output.name);
  const std::string status = parameter(std::string(idl ? "[out, retval] " : "") + "unsigned long* status");
  return list + status.substr(0, status.size() - 2) + ")";
}

std::string help(std::u16string_view text) {
  std::string quoted;
  for (char unit : ascii(text)) {
    if (unit == '"' || unit == '\\') quoted += '\\';
    quoted += unit;
  }
  return quoted;
}

// Calls use(id, method) for every place of the interface, the method null where this build lacks the function: the
// slot is kept, so that no later method moves.
template <class Use>
void for_every_place(Use use) {
  const std::vector<Method> list = methods();
  auto next = list.begin();
  for (std::uint32_t id = 1; id <= host::interface_order().size(); ++id) {
    const bool has = next != list.end() && next->id == id;
    use(id, has ? &*next++ : nullptr);
  }
}
std::string kept_name(std::size_t id) { return "Reserved" + std::to_string(id); }

}  // namespace

void com_idl(std::ostream& out, Specs) {
  out << "// Written by norvane_generate.\nimport \"oaidl.idl\";\n\n"
      << "[uuid(" NORVANE_LIBID "), version(1.0), helpstring(\"Norvane\")]\nlibrary Norvane {\n"
      << "  importlib(\"stdole2.tlb\");\n\n"
      << "  [object, uuid(" NORVANE_IID_IFUNCTIONS "), dual, oleautomation, nonextensible, pointer_default(unique),\n"
      << "   helpstring(\"IFunctions Interface\")]\n  interface IFunctions : IDispatch {\n";
  for_every_place([&out](std::uint32_t id, const Method* method) {
    if (method == nullptr) {
      out << "    [id(" << id << "), hidden, restricted] HRESULT " << kept_name(id) << "();\n";
      return;
    }
    const Function_CFunctionSpec& spec = *method->spec;
    out << "    [id(" << id << "), helpstring(\"" << help(spec.display_name) << "\")]\n"
        << wrapped(parameters(*method, true) + ";", "    HRESULT " + narrow(spec.id) + "(", "        ");
  });
  // Behind all methods and with a number of its own, so that functions to come move nothing.
  out << "    [propget, id(" << NORVANE_DISPID_IDENTITY
      << "), helpstring(\"Version, commit and checksum\")]\n"
         "    HRESULT Identity([out, retval] BSTR* text);\n";
  out << "  };\n\n"
      << "  [uuid(" NORVANE_CLSID_FUNCTIONS "), helpstring(\"Functions Class\")]\n"
      << "  coclass Functions {\n    [default] interface IFunctions;\n  };\n};\n";
}

void com_methods(std::ostream& out, Specs) {
  out << "// Written by norvane_generate: the methods of IFunctions, inside the class that implements it.\n";
  for_every_place([&out](std::uint32_t id, const Method* method) {
    if (method == nullptr) {
      out << "HRESULT STDMETHODCALLTYPE " << kept_name(id) << "() override { return E_NOTIMPL; }\n";
      return;
    }
    std::string in;
    for (const Parameter& input : method->inputs) {
      in += in.empty() ? "" : ", ";
      switch (input.passing) {
        case Passing::number: in += "number(" + input.name + ")"; break;
        case Passing::option: in += "option(" + input.name + ")"; break;
        default: in += "pointer(" + input.name + ")"; break;
      }
    }
    std::string targets;
    for (const Parameter& output : method->outputs) targets += (targets.empty() ? "" : ", ") + output.name;
    out << wrapped(parameters(*method, false) + " override {",
                   "HRESULT STDMETHODCALLTYPE " + narrow(method->spec->id) + "(", "    ")
        << wrapped(in + "};", "  const TypedValue in[] = {", "      ")
        << wrapped(targets + "};", "  void* const out[] = {", "      ") << "  return Run(" << id
        << ", in, out, status);\n}\n";
  });
  out << "HRESULT STDMETHODCALLTYPE get_Identity(BSTR* text) override;\n";
}

void com_interface(std::ostream& out, Specs) {
  for (const Method& method : methods()) {
    out << method.id << " " << narrow(method.spec->id) << "(";
    const char* separator = "";
    for (const Parameter& input : method.inputs) {
      out << separator << "in " << host::passing_name(input.passing) << " " << input.name;
      separator = ", ";
    }
    for (const Parameter& output : method.outputs) {
      out << separator << "out " << host::passing_name(output.passing) << " " << output.name;
      separator = ", ";
    }
    out << ")\n";
  }
}

}  // namespace norvane::generate
