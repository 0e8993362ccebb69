# cmake -DOUTPUT=<file> -DLISTS=<lists> -P merge_def.cmake: one .def file out of lists of exported names.
set(text "LIBRARY \"Norvane.XLL\"\nEXPORTS\n")
foreach(list IN LISTS LISTS)
  file(STRINGS ${list} names)
  foreach(name IN LISTS names)
    string(APPEND text "  ${name}\n")
  endforeach()
endforeach()
file(WRITE ${OUTPUT} "${text}")
