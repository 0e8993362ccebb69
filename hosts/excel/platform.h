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

// The host's two entry points. False when the library that carries the first is neither in the process nor in its
// program's folder (elsewhere than on Windows: when the process has neither symbol).
bool find_host_entries(HostEntries& entries) noexcept;

// Between the older dialect's text and UTF-16, without terminators: the system's code page on Windows, elsewhere the
// locale's encoding (UTF-8 in the "C" locale, as every other locale has it today). A character without counterpart
// becomes '?' there and U+FFFD here.
//
// All of the text, whose units are at most as many as its bytes; false when the system cannot read it.
bool from_code_page(const unsigned char* text, std::size_t length, char16_t* out, std::size_t& written) noexcept;
// As many whole characters as fit the room; the number of bytes.
std::size_t to_code_page(std::u16string_view text, unsigned char* out, std::size_t room) noexcept;

std::uint32_t thread_number() noexcept;

// Whether the environment variable NORVANE_DEBUG asks for the messages of calls in the debugger's output.
bool debug_asked() noexcept;

// A modal error box; a line of the debugger's output; the modal about box. On systems
// without boxes all three write to the error stream.
void show_message(std::u16string_view title, std::u16string_view text) noexcept;
void debug_output(std::u16string_view line) noexcept;
void show_about() noexcept;

}  // namespace norvane::excel::platform
