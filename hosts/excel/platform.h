// What differs between systems: finding the host's entry points, the code page of the older dialect, what is shown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "hosts/excel/xl_types.h"

namespace norvane::excel::platform {

struct HostEntries {
  XlEntry4 entry4 = nullptr;
  XlEntry12 entry12 = nullptr;  // null: the host speaks the older dialect only
};

// The host's two entry points. False when the library that carries the first cannot be loaded (elsewhere than
// on Windows: when the process has neither symbol).
bool FindHostEntries(HostEntries& entries) noexcept;

// Between the code page of the older dialect (elsewhere than on Windows: 1252) and UTF-16, without terminators.
// The number of units written, or -1 when the room does not suffice. A character without counterpart becomes '?'.
std::ptrdiff_t FromCodePage(const unsigned char* text, std::size_t length, char16_t* out, std::size_t room) noexcept;
std::ptrdiff_t ToCodePage(const char16_t* text, std::size_t length, unsigned char* out, std::size_t room) noexcept;

std::uint32_t ThreadId() noexcept;

// Whether the environment variable NORVANE_DEBUG asks for the messages of calls in the debugger's output.
bool DebugAsked() noexcept;

// A modal error box; a line of the debugger's output; the modal about box. On systems
// without boxes all three write to the error stream.
void ShowMessage(std::u16string_view title, std::u16string_view text) noexcept;
void DebugOutput(std::u16string_view line) noexcept;
void ShowAbout() noexcept;

}  // namespace norvane::excel::platform
