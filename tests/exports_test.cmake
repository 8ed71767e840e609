# The library's exported symbols are the functions of the header, no more and no fewer.
# cmake -D HEADER=... -D LIBRARY=... -D NM=... -D OBJDUMP=... -P exports_test.cmake
file(READ ${HEADER} header)
string(REGEX MATCHALL "ORVANE_API [A-Za-z0-9_]+[*]? [A-Za-z0-9_]+\\(" declarations "${header}")
list(TRANSFORM declarations REPLACE "^.* ([A-Za-z0-9_]+)\\($" "\\1")
list(SORT declarations)

# The names, and the kind or address of each.
if(LIBRARY MATCHES "\\.dll$")
  execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE tables
                  COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "\\+base\\[ *[0-9]+\\] [0-9a-f]+ Export RVA" kinds "${tables}")
  string(FIND "${tables}" "Name Pointer] Table" start)
  string(SUBSTRING "${tables}" ${start} -1 names)
  string(FIND "${names}" "\n\n" end)
  string(SUBSTRING "${names}" 0 ${end} names)
  # The name is the last word of its line.
  string(REGEX MATCHALL "\n\t\\[ *[0-9]+\\][^\n]*" exported "${names}")
  list(TRANSFORM exported REPLACE "^.* " "")
else()
  execute_process(COMMAND ${NM} --dynamic --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols
                  COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL " [A-Za-z] [^ \n]+\n" kinds "${symbols}")
  string(REGEX MATCHALL "[^ \n]+\n" exported "${symbols}")
endif()
list(TRANSFORM exported STRIP)
list(SORT exported)

list(LENGTH declarations count)
if(NOT declarations STREQUAL exported OR NOT count EQUAL 40)
  message(FATAL_ERROR "declared: ${declarations}\nexported: ${exported}")
endif()

# All are functions, each at an address of its own.
list(TRANSFORM kinds STRIP)
if(LIBRARY MATCHES "\\.dll$")
  list(TRANSFORM kinds REPLACE "^.*\\] ([0-9a-f]+) Export RVA$" "\\1")
  list(REMOVE_DUPLICATES kinds)
  list(REMOVE_ITEM kinds 0 00000000)
else()
  list(FILTER kinds INCLUDE REGEX "^T ")
endif()
list(LENGTH kinds functions)
if(NOT functions EQUAL count)
  message(FATAL_ERROR "exported: ${count} names, ${functions} functions")
endif()
message("${count} exports, as declared")
