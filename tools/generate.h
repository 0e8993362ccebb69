// What the generator writes: one writer a kind of output, from the catalogue to a stream.
#pragma once

#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "catalogue/catalogue.h"
#include "core/text.h"

namespace norvane::generate {

using Specs = std::span<const Function_CFunctionSpec* const>;
using Writer = void (*)(std::ostream& out, Specs specs);

// Worksheet wrappers of both dialects, and their names for the module's list of exports.
void excel_wrappers(std::ostream& out, Specs specs);
void excel_exports(std::ostream& out, Specs specs);

// Direct exports: their source, the public header, the same for programs that read JSON, their
// names, and the definition of an import library.
void exports_source(std::ostream& out, Specs specs);
void exports_header(std::ostream& out, Specs specs);
void exports_json(std::ostream& out, Specs specs);
void exports_names(std::ostream& out, Specs specs);
void exports_def(std::ostream& out, Specs specs);

// The automation interface: IDL, the methods of its class, the record of its signatures one line a method.
void com_idl(std::ostream& out, Specs specs);
void com_methods(std::ostream& out, Specs specs);
void com_interface(std::ostream& out, Specs specs);

// The direct exports for VBA and for C#: declarations, and functions around them.
void vba_module(std::ostream& out, Specs specs);
void csharp_class(std::ostream& out, Specs specs);

// The add-in for LibreOffice Calc: its interface, what its wizard says, and the worksheet wrappers that it calls.
void calc_idl(std::ostream& out, Specs specs);
void calc_configuration(std::ostream& out, Specs specs);
void calc_functions(std::ostream& out, Specs specs);

// The source of the seal (core/seal.h).
void seal(std::ostream& out, Specs specs);

inline std::string narrow(std::u16string_view text) { return to_utf8(text); }

}  // namespace norvane::generate
