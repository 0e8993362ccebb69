// What the about box says.
#pragma once

#include "norvane_commit.h"

namespace norvane::excel {

inline constexpr char16_t about_version[] = u"Version " NORVANE_VERSION;
inline constexpr char16_t about_commit[] = u"Commit " NORVANE_COMMIT;

}  // namespace norvane::excel
