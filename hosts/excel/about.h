// What the about box says.
#pragma once

#include <string>

#include "catalogue/identity.h"
#include "core/text.h"

namespace norvane::excel {

struct About {
  std::u16string version, commit, checksum;
};
inline About about() {
  const catalogue::Identity id = catalogue::identity();
  std::string checksum = "Checksum " + catalogue::checksum_text(id.checksum);
  if (!id.intact()) checksum += " DOES NOT MATCH " + catalogue::checksum_text(id.built);
  return {u"Version " + to_utf16(id.version), u"Commit " + to_utf16(id.commit), to_utf16(checksum)};
}

}  // namespace norvane::excel
