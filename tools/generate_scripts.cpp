// What a program without a C compiler declares: a module for VBA and a class for C#, each with the direct exports as they
// are and a function around every one that takes lists as its language does and raises an error for a refused call.
#include <algorithm>
#include <span>
#include <stdexcept>

#include "math/common/components.h"
#include "tools/signatures.h"

namespace norvane::generate {
namespace {

using host::Passing;

// Words that the language keeps for itself, in lower case.
constexpr std::string_view vba_words[] = {
    "abs",        "and",      "any",      "array",   "as",       "base",   "boolean",  "byref",    "byte",
    "byval",      "call",     "case",     "circle",  "close",    "const",  "currency", "date",     "debug",
    "decimal",    "declare",  "dim",      "do",      "double",   "each",   "else",     "elseif",   "empty",
    "end",        "endif",    "enum",     "eqv",     "erase",    "event",  "exit",     "false",    "fix",
    "for",        "friend",   "function", "get",     "global",   "gosub",  "goto",     "if",       "imp",
    "implements", "in",       "input",    "int",     "integer",  "is",     "len",      "let",      "like",
    "lock",       "long",     "loop",     "lset",    "me",       "mod",    "name",     "new",      "next",
    "not",        "nothing",  "null",     "object",  "on",       "open",   "option",   "optional", "or",
    "paramarray", "preserve", "print",    "private", "property", "pset",   "public",   "put",      "redim",
    "rem",        "resume",   "return",   "rset",    "scale",    "seek",   "select",   "set",      "sgn",
    "shared",     "single",   "spc",      "static",  "step",     "stop",   "string",   "sub",      "tab",
    "then",       "to",       "true",     "type",    "typeof",   "unlock", "until",    "variant",  "wend",
    "while",      "with",     "write",    "xor"};
constexpr std::string_view csharp_words[] = {
    "as",       "base",      "checked",  "decimal",    "delegate", "event",     "explicit", "finally",  "fixed",
    "foreach",  "implicit",  "internal", "is",         "lock",     "namespace", "null",     "override", "params",
    "readonly", "sbyte",     "sealed",   "stackalloc", "throw",    "true",      "try",      "typeof",   "uint",
    "ulong",    "unchecked", "unsafe",   "ushort",     "using",    "virtual"};

std::string not_reserved(const std::string& name, std::span<const std::string_view> words) {
  std::string folded = name;
  for (char& c : folded)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return std::find(words.begin(), words.end(), folded) == words.end() ? name : name + "_";
}

// The methods with their parameters named as the language allows. The languages' own lists know no texts, which no
// method of today has.
std::vector<Method> methods_for(std::span<const std::string_view> words) {
  std::vector<Method> list = methods();
  for (Method& method : list)
    for (std::vector<Parameter>* parameters : {&method.inputs, &method.outputs})
      for (Parameter& parameter : *parameters) {
        if (parameter.passing == Passing::text) throw std::runtime_error("a text among the typed exports");
        parameter.name = not_reserved(parameter.name, words);
      }
  return list;
}

// The first input that may be left out: from there on there are options with a default, which the declaration shows. A
// quantity is always given: no number is calculated from one that nobody wrote.
std::size_t first_optional(const Method& method) {
  std::size_t first = method.inputs.size();
  while (first > 0 && method.inputs[first - 1].passing == Passing::option &&
         !method.spec->inputs[method.inputs[first - 1].index].default_value.empty())
    --first;
  return first;
}

std::string default_of(const Method& method, const Parameter& input) {
  double value = 0.0;
  method.spec->inputs[input.index].default_value.ToDouble(value);
  return narrow(format_number(value));
}

template <class Record>
std::string says(const Record& record) {
  std::string text = form_of(record);
  const std::string more = ascii(record.description.empty() ? record.display_name : record.description);
  if (!text.empty() && !more.empty()) text += ". ";
  return text + more;
}

std::string unbroken_text(std::string text) {
  std::replace(text.begin(), text.end(), ' ', unbroken);
  return text;
}

std::string joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + unbroken_text(part);
  return text;
}

std::string component_name(std::size_t index, char gap) {
  std::string name;
  for (const char c : component::table[index].name) name += c == ' ' || c == '-' ? gap : c;
  return name;
}

// VBA: a statement goes on behind " _", at most 24 times.
std::string vba_statement(const std::string& text, const std::string& indent = "") {
  const std::string lines = wrapped(text, indent, indent + "    ", 110);
  if (std::count(lines.begin(), lines.end(), '\n') > 24) throw std::runtime_error("a statement too long for VBA");
  std::string statement;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i)
    statement += lines[i] == '\n' ? std::string(" _\n") : std::string(1, lines[i]);
  return statement + "\n";
}

// The pieces of one function that its declaration and its wrapper are put together from.
struct Pieces {
  std::vector<std::string> declared;  // parameters of the export
  std::vector<std::string> taken;     // parameters of the wrapper
  std::vector<std::string> passed;    // what the wrapper passes to the export
  std::string before;                 // the wrapper's statements before the call
};

Pieces vba_pieces(const Method& method) {
  Pieces pieces;
  const std::size_t optional = first_optional(method);
  std::string lists;
  for (std::size_t i = 0; i < method.inputs.size(); ++i) {
    const Parameter& input = method.inputs[i];
    const char* may = i >= optional ? "Optional " : "";
    if (input.passing == Passing::range) {
      const std::string list = "nv_" + input.name;
      pieces.declared.push_back("ByRef " + input.name + " As Double");
      pieces.declared.push_back("ByVal " + input.name + "_count As Long");
      pieces.taken.push_back("ByVal " + input.name + " As Variant");
      pieces.before += "    Dim " + list + "() As Double, " + list + "_count As Long\n";
      lists += "    " + list + "_count = NorvaneList(" + input.name + ", " + list + ")\n";
      pieces.passed.push_back(list + "(0)");
      pieces.passed.push_back(list + "_count");
    } else {
      const std::string type = input.passing == Passing::option ? " As Long" : " As Double";
      pieces.declared.push_back("ByVal " + input.name + type);
      pieces.taken.push_back(std::string(may) + "ByVal " + input.name + type +
                             (i < optional ? "" : " = " + default_of(method, input)));
      pieces.passed.push_back(input.name);
    }
  }
  for (const Parameter& output : method.outputs) {
    pieces.declared.push_back("ByRef " + output.name +
                              (output.passing == Passing::option ? " As Long" : " As Double"));
    pieces.passed.push_back("nv_result." + output.name);
  }
  pieces.before += lists;
  return pieces;
}

void vba_declarations(std::ostream& out, const Method& method) {
  const std::string id = narrow(method.spec->id);
  out << "\n' The results of " << id << ".\nPublic Type " << id << "_Result\n";
  const auto member = [&](const std::string& name, bool option, const std::string& text) {
    out << "    " << name << (option ? " As Long" : " As Double") << (text.empty() ? "" : " ' ") << text << "\n";
  };
  member("status", true, form_of(method.spec->outputs[0]));
  for (const Parameter& output : method.outputs)
    member(output.name, output.passing == Passing::option, says(method.spec->outputs[output.index]));
  out << "End Type\n"
      << vba_statement("Public Declare PtrSafe Function Norvane_" + id + " Lib \"Norvane.XLL\" (" +
                       joined(vba_pieces(method).declared) + ") As Long");
}

void vba_function(std::ostream& out, const Method& method) {
  const std::string id = narrow(method.spec->id);
  const Pieces pieces = vba_pieces(method);
  out << "\n' " << id << ": " << ascii(method.spec->display_name) << "\n"
      << wrapped(ascii(method.spec->description), "' ", "' ");
  for (const Parameter& input : method.inputs)
    out << wrapped(says(method.spec->inputs[input.index]), "'   " + input.name + ": ", "'     ");
  out << vba_statement("Public Function " + id + "(" + joined(pieces.taken) + ") As " + id + "_Result")
      << "    Dim nv_result As " << id << "_Result\n"
      << pieces.before
      << vba_statement("nv_result.status = Norvane_" + id + "(" + joined(pieces.passed) + ")", "    ")
      << "    NorvaneCheck nv_result.status, \"" << id << "\"\n    " << id << " = nv_result\nEnd Function\n";
}

// "a < b" in a comment that is XML.
std::string xml(const std::string& text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '&': out += "&amp;"; break;
      default: out += c;
    }
  }
  return out;
}

void csharp_comment(std::ostream& out, const std::string& open, const std::string& text, const std::string& close) {
  out << wrapped(xml(text) + close, "        /// " + open, "        /// ");
}

void csharp_result(std::ostream& out, const Method& method) {
  const std::string id = narrow(method.spec->id);
  out << "\n    /// <summary>The results of " << id << "; they have a meaning when the status is 0.</summary>\n"
      << "    public struct " << id << "_Result\n    {\n";
  const auto member = [&](const std::string& name, bool option, const std::string& text) {
    csharp_comment(out, "<summary>", text, "</summary>");
    out << "        public " << (option ? "uint " : "double ") << name << ";\n";
  };
  member("status", true, form_of(method.spec->outputs[0]));
  for (const Parameter& output : method.outputs)
    member(output.name, output.passing == Passing::option, says(method.spec->outputs[output.index]));
  out << "    }\n";
}

Pieces csharp_pieces(const Method& method) {
  Pieces pieces;
  const std::size_t optional = first_optional(method);
  for (std::size_t i = 0; i < method.inputs.size(); ++i) {
    const Parameter& input = method.inputs[i];
    if (input.passing == Passing::range) {
      pieces.declared.push_back("double[] " + input.name);
      pieces.declared.push_back("uint " + input.name + "_count");
      pieces.taken.push_back("double[] " + input.name);
      pieces.passed.push_back(input.name);
      pieces.passed.push_back("Count(" + input.name + ")");
    } else {
      const std::string type = input.passing == Passing::option ? "uint " : "double ";
      pieces.declared.push_back(type + input.name);
      pieces.taken.push_back(type + input.name + (i >= optional ? " = " + default_of(method, input) : ""));
      pieces.passed.push_back(input.name);
    }
  }
  for (const Parameter& output : method.outputs) {
    pieces.declared.push_back((output.passing == Passing::option ? "out uint " : "out double ") + output.name);
    pieces.passed.push_back("out result." + output.name);
  }
  return pieces;
}

void csharp_function(std::ostream& out, const Method& method) {
  const std::string id = narrow(method.spec->id);
  const Pieces pieces = csharp_pieces(method);
  out << "\n";
  csharp_comment(out, "<summary>", ascii(method.spec->display_name) + ". " + ascii(method.spec->description),
                 "</summary>");
  for (const Parameter& input : method.inputs)
    csharp_comment(out, "<param name=\"" + input.name + "\">", says(method.spec->inputs[input.index]), "</param>");
  out << wrapped("public static " + id + "_Result " + id + "(" + joined(pieces.taken) + ")", "        ",
                 "            ")
      << "        {\n            var result = new " << id << "_Result();\n"
      << wrapped("result.status = Check(\"" + id + "\", Native.Norvane_" + id + "(" + joined(pieces.passed) + "));",
                 "            ", "                ")
      << "            return result;\n        }\n";
}

}  // namespace

void vba_module(std::ostream& out, Specs) {
  const std::vector<Method> list = methods_for(vba_words);
  out << R"(Attribute VB_Name = "Norvane"
' The calculation functions of Norvane for VBA in a 64-bit Office. Written by norvane_generate.
'
'     Dim gas As AGA8_M_Result
'     gas = AGA8_M(60, 20, Range("B2:B23"))
'     If gas.status = 0 Then Debug.Print gas.z Else Debug.Print NorvaneMessage()
'
' A function takes lists as ranges or arrays and raises an error when an argument is refused. A status
' other than 0 is an answer: NorvaneMessage() and NorvaneStatusText("AGA8_M", 0, gas.status) say why. The functions
' Norvane_... are the exports as they are; with them a list is its first number and its count.
'
' Norvane.XLL is found when it is loaded as an add-in, lies in a folder of the path, or after NorvaneLoad "folder".
Option Explicit

#If Win64 Then
#Else
    This module needs a 64-bit Office (File, Account, About): the library has no 32-bit form.
#End If

Public Const NORVANE_NOT_RUN As Long = -1
Public Const NORVANE_NO_OUTPUT As Long = -2

' Places in a gas composition, a list of 22 amounts, as fractions.
)";
  for (std::size_t i = 0; i < component::count; ++i)
    out << "Public Const NORVANE_" << component_name(i, '_') << " As Long = " << i << "\n";
  out << R"(
Private Declare PtrSafe Function norvane_last_message Lib "Norvane.XLL" () As LongPtr
Private Declare PtrSafe Function norvane_status_text Lib "Norvane.XLL" (ByVal name As String, ByVal output As Long, _
    ByVal code As Long) As LongPtr
Private Declare PtrSafe Function norvane_version Lib "Norvane.XLL" () As LongPtr
Private Declare PtrSafe Function LoadLibraryW Lib "kernel32" (ByVal path As LongPtr) As LongPtr
Private Declare PtrSafe Function MultiByteToWideChar Lib "kernel32" (ByVal page As Long, ByVal flags As Long, _
    ByVal bytes As LongPtr, ByVal count As Long, ByVal text As LongPtr, ByVal room As Long) As Long
)";
  for (const Method& method : list) vba_declarations(out, method);
  out << R"(
' Loads Norvane.XLL from a folder; only needed where it is no add-in of this Office and not on the path.
Public Sub NorvaneLoad(ByVal folder As String)
    Dim path As String
    path = folder & "\Norvane.XLL"
    If LoadLibraryW(StrPtr(path)) = 0 Then Err.Raise 53, "Norvane", "cannot load " & path
End Sub

' "1.2.3": the version of the library that is loaded.
Public Function NorvaneVersion() As String
    NorvaneVersion = NorvaneText(norvane_version())
End Function

' What there is to say about the last call: the refused argument with its limit, or the reason of a status.
Public Function NorvaneMessage() As String
    NorvaneMessage = NorvaneText(norvane_last_message())
End Function

' The meaning of a status (output 0) or of another coded output.
Public Function NorvaneStatusText(ByVal name As String, ByVal output As Long, ByVal code As Long) As String
    NorvaneStatusText = NorvaneText(norvane_status_text(name, output, code))
End Function

Private Function NorvaneText(ByVal bytes As LongPtr) As String
    Const UTF8 As Long = 65001
    Dim count As Long
    If bytes = 0 Then Exit Function
    count = MultiByteToWideChar(UTF8, 0, bytes, -1, 0, 0)
    If count <= 1 Then Exit Function
    NorvaneText = String$(count, vbNullChar)
    MultiByteToWideChar UTF8, 0, bytes, -1, StrPtr(NorvaneText), count
    NorvaneText = Left$(NorvaneText, count - 1)
End Function

Private Sub NorvaneCheck(ByVal status As Long, ByVal source As String)
    If status = NORVANE_NOT_RUN Or status = NORVANE_NO_OUTPUT Then
        Err.Raise vbObjectError + 513, "Norvane." & source, NorvaneMessage()
    End If
End Sub

' Writes the numbers of a range, an array (row by row) or a single value into a list, and returns their count. What is
' left out is a list without numbers. A blank cell is 0; a text that is no number raises an error.
Private Function NorvaneList(ByVal given As Variant, ByRef numbers() As Double) As Long
    Dim values As Variant, value As Variant, row As Long, column As Long, count As Long
    ReDim numbers(0 To 0)
    If IsMissing(given) Then Exit Function
    If IsObject(given) Then values = given.Value2 Else values = given
    If IsEmpty(values) Then Exit Function
    If Not IsArray(values) Then
        numbers(0) = CDbl(values)
        NorvaneList = 1
        Exit Function
    End If
    For Each value In values
        count = count + 1
    Next value
    If count = 0 Then Exit Function
    ReDim numbers(0 To count - 1)
    count = 0
    If NorvaneRank(values) = 2 Then
        For row = LBound(values, 1) To UBound(values, 1)
            For column = LBound(values, 2) To UBound(values, 2)
                numbers(count) = CDbl(values(row, column))
                count = count + 1
            Next column
        Next row
    Else
        For Each value In values
            numbers(count) = CDbl(value)
            count = count + 1
        Next value
    End If
    NorvaneList = count
End Function

Private Function NorvaneRank(ByRef values As Variant) As Long
    Dim bound As Long
    On Error GoTo Done
    Do
        bound = UBound(values, NorvaneRank + 1)
        NorvaneRank = NorvaneRank + 1
    Loop
Done:
End Function
)";
  for (const Method& method : list) vba_function(out, method);
}

void csharp_class(std::ostream& out, Specs) {
  const std::vector<Method> list = methods_for(csharp_words);
  out << R"(// The calculation functions of Norvane for C# and the other languages of .NET. Written by norvane_generate.
//
//     var gas = Norvane.Functions.AGA8_M(60, 20, composition);
//     if (gas.status == 0) Console.WriteLine(gas.z); else Console.WriteLine(Norvane.Functions.LastMessage());
//
// A call whose argument is refused throws a NorvaneException, which names argument, value and limit. A status other
// than 0 is an answer. For a 64-bit process, with Norvane.XLL beside the program; on Linux define NORVANE_LINUX, which
// takes libnorvane.so.0.
using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Norvane
{
    /// <summary>A call that was refused: nothing was calculated.</summary>
    public sealed class NorvaneException : Exception
    {
        public NorvaneException(string function, string message) : base(message) { Function = function; }
        public string Function { get; private set; }
    }

    /// <summary>Places in a gas composition: a list of 22 amounts, as fractions.</summary>
    public static class Component
    {
)";
  for (std::size_t i = 0; i < component::count; ++i)
    out << "        public const int " << component_name(i, '_') << " = " << i << ";\n";
  out << "        public const int count = " << component::count << ";\n    }\n";
  for (const Method& method : list) csharp_result(out, method);
  out << R"(
    public static class Functions
    {
        public const uint NotRun = 0xFFFFFFFF;
        public const uint NoOutput = 0xFFFFFFFE;

        /// <summary>"1.2.3": the version of the library that is loaded.</summary>
        public static string Version() { return Text(Native.norvane_version()); }

        /// <summary>What there is to say about this thread's last call; an empty text when there is nothing.</summary>
        public static string LastMessage() { return Text(Native.norvane_last_message()); }

        /// <summary>The meaning of a status (output 0) or of another coded output.</summary>
        public static string StatusText(string function, uint output, uint code)
        {
            return Text(Native.norvane_status_text(function, output, code));
        }

        private static uint Count(double[] list) { return list == null ? 0 : (uint)list.Length; }

        private static uint Check(string function, uint status)
        {
            if (status == NotRun || status == NoOutput) throw new NorvaneException(function, LastMessage());
            return status;
        }

        private static string Text(IntPtr bytes)
        {
            int length = 0;
            while (Marshal.ReadByte(bytes, length) != 0) ++length;
            var buffer = new byte[length];
            Marshal.Copy(bytes, buffer, 0, length);
            return Encoding.UTF8.GetString(buffer);
        }
)";
  for (const Method& method : list) csharp_function(out, method);
  out << R"(
        /// <summary>The exports as they are.</summary>
        public static class Native
        {
#if NORVANE_LINUX
            private const string Module = "libnorvane.so.0";
#else
            private const string Module = "Norvane.XLL";
#endif
)";
  const std::string import =
      "[DllImport(Module, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]\n";
  const auto declare = [&](const std::string& declaration) {
    out << "            " << import << wrapped(declaration, "            ", "                ");
  };
  declare("public static extern IntPtr norvane_version();");
  declare("public static extern IntPtr norvane_last_message();");
  declare("public static extern IntPtr norvane_status_text(string function, uint output, uint code);");
  for (const Method& method : list)
    declare("public static extern uint Norvane_" + narrow(method.spec->id) + "(" +
            joined(csharp_pieces(method).declared) + ");");
  out << "        }\n    }\n}\n";
}

}  // namespace norvane::generate
