# Writes MAP, a linker version script that exports every function the HEADERS declare. A declaration begins a line with
# "ZACERT_API "; it may go on over further lines, and its name stands before the first "(". NODE names the version,
# ZACERT_1 where it is not given.
if(NOT NODE)
  set(NODE ZACERT_1)
endif()
set(names)
foreach(header IN LISTS HEADERS)
  file(READ ${header} text)
  string(REGEX MATCHALL "\nZACERT_API [^(;]*\\(" declarations "\n${text}")
  foreach(declaration IN LISTS declarations)
    string(REGEX MATCH "([A-Za-z_][A-Za-z_0-9]*)[ \n]*\\($" name "${declaration}")
    list(APPEND names ${CMAKE_MATCH_1})
  endforeach()
endforeach()
if(NOT names)
  message(FATAL_ERROR "no declaration beginning with ZACERT_API in: ${HEADERS}")
endif()

list(REMOVE_DUPLICATES names)
list(SORT names)
list(JOIN names ";\n    " exports)
file(WRITE ${MAP} "${NODE} {\n  global:\n    ${exports};\n  local:\n    *;\n};\n")
