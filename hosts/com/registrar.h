// Registry scripts: keys and values that registration writes and unregistration removes.
//
//   HKCR
//   {
//     NoRemove CLSID                     keys stand in blocks; NoRemove: stays on removal
//     {
//       ForceRemove {...} = s 'text'     ForceRemove: deleted first; "= s" the default value, "= d" a number
//       {
//         val Name = s '%MODULE%'        a named value; %NAME% is replaced, %% is a percent sign
//       }
//     }
//   }
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <string_view>

namespace norvane::com {

class Registrar {
 public:
  // Replaces %NAME% in what stands behind it; the text is taken as it is, quotes and percent signs included.
  void Replace(std::wstring name, std::wstring value) { replacements_[std::move(name)] = std::move(value); }

  // Install: creates the keys and values of the script. Otherwise removes every key without NoRemove, with all
  // that is below it. What is not there need not be removed. Nothing is done for a script with a mistake in it.
  HRESULT Run(std::wstring_view script, bool install) const noexcept;

 private:
  std::map<std::wstring, std::wstring, std::less<>> replacements_;
};

}  // namespace norvane::com
