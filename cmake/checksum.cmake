# cmake -DSOURCE=<folder> -DOUTPUT=<header> -P checksum.cmake: the checksum of all sources that have a say in a number
# (tables, equations, units, elementary functions), as a header that changes only when the answer does. Comments and
# blanks have no say.
file(GLOB_RECURSE files RELATIVE ${SOURCE}
  ${SOURCE}/math/*.cpp ${SOURCE}/math/*.h ${SOURCE}/units/*.cpp ${SOURCE}/units/*.h ${SOURCE}/units/*.def
  ${SOURCE}/core/elementary*)
list(SORT files)
set(sums "")
foreach(file IN LISTS files)
  file(READ ${SOURCE}/${file} text)
  string(REGEX REPLACE "//[^\n]*" "" text "${text}")
  string(REGEX REPLACE "[ \t\r\n]+" "" text "${text}")
  string(SHA256 sum "${text}")
  string(APPEND sums "${sum}  ${file}\n")
endforeach()
string(SHA256 checksum "${sums}")

set(text "#define NORVANE_EQUATIONS \"${checksum}\"\n")
set(old "")
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} old)
endif()
if(NOT old STREQUAL text)
  file(WRITE ${OUTPUT} "${text}")
endif()
