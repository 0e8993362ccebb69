// A library of someone else's that a user puts beside this module.
#pragma once

namespace norvane {

enum class ExternalEntry : int { found, no_library, no_entry };

// Loads the library of that file name from the folder of this module, never from another place, and looks up one of
// its entries. A library that was loaded stays loaded. No message box. Whoever asks keeps the answer: each call tries
// anew. Such libraries exist for Windows only; elsewhere there is none.
ExternalEntry find_external_entry(const wchar_t* file, const char* entry) noexcept;

}  // namespace norvane
