# cmake -DSOURCE=<folder> -DOUTPUT=<header> -P checksum.cmake: the checksum of everything that has a say in a number
# (tables, equations, units, elementary functions), as a header that changes only when the answer does.
file(GLOB_RECURSE files RELATIVE ${SOURCE}
  ${SOURCE}/math/*.cpp ${SOURCE}/math/*.h ${SOURCE}/units/*.cpp ${SOURCE}/units/*.h ${SOURCE}/units/*.def
  ${SOURCE}/core/elementary*)
list(SORT files)
set(sums "")
foreach(file IN LISTS files)
  file(SHA256 ${SOURCE}/${file} sum)
  string(APPEND sums "${sum}  ${file}\n")
endforeach()
string(SHA256 checksum "${sums}")

set(text "#define NORVANE_CALCULATIONS \"${checksum}\"\n")
set(old "")
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} old)
endif()
if(NOT old STREQUAL text)
  file(WRITE ${OUTPUT} "${text}")
endif()
