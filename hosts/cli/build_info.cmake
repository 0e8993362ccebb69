# Writes build_info.h with the commit that is built; the file is touched only when that changes.
# Arguments: SOURCE_DIR, OUTPUT.
find_package(Git QUIET)
set(commit "")
if(GIT_FOUND)
  execute_process(COMMAND ${GIT_EXECUTABLE} describe --always --dirty --abbrev=12
    WORKING_DIRECTORY ${SOURCE_DIR} OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT commit MATCHES "^[-.A-Za-z0-9_/]+$")
  set(commit "unknown")
endif()
set(text "#pragma once\n#define NORVANE_COMMIT \"${commit}\"\n")
set(before "")
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} before)
endif()
if(NOT text STREQUAL before)
  file(WRITE ${OUTPUT} "${text}")
endif()
