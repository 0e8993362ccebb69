# cmake -DOUTPUT=<file> -DNAMES=<lists> -P merge_def.cmake: one .def file out of lists of exported names.
set(text "LIBRARY \"Norvane.XLL\"\nEXPORTS\n")
foreach(list IN LISTS NAMES)
  file(STRINGS ${list} lines)
  foreach(line IN LISTS lines)
    string(APPEND text "  ${line}\n")
  endforeach()
endforeach()
file(WRITE ${OUTPUT} "${text}")
