# The library's exported symbols are the functions of the header, no more and no fewer.
# cmake -D HEADER=... -D LIBRARY=... -D NM=... -P exports_test.cmake
file(READ ${HEADER} header)
string(REGEX MATCHALL "ORVANE_API [A-Za-z0-9_]+[*]? [A-Za-z0-9_]+\\(" declarations "${header}")
list(TRANSFORM declarations REPLACE "^.* ([A-Za-z0-9_]+)\\($" "\\1")
list(SORT declarations)

execute_process(COMMAND ${NM} --dynamic --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols
                COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^ \n]+\n" exported "${symbols}")
list(TRANSFORM exported STRIP)
list(SORT exported)

list(LENGTH declarations count)
if(NOT declarations STREQUAL exported OR NOT count EQUAL 40)
  message(FATAL_ERROR "declared: ${declarations}\nexported: ${exported}")
endif()
message("${count} exports, as declared")
