# Fails unless the shared library LIBRARY exports only its public API: every
# defined dynamic symbol under the version node NODE, none that belongs to
# the standard library, Boost, nlohmann-json or the internal namespace
# nvshared, and no GNU-unique symbol (which would keep dlclose from ever
# unloading the library). Prints the number of exported symbols.
# Run by CTest as `cmake -P` with LIBRARY, NODE and NM.
execute_process(COMMAND "${NM}" -D --defined-only "${LIBRARY}"
                RESULT_VARIABLE rc OUTPUT_VARIABLE raw ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${NM} failed: ${err}")
endif()
execute_process(COMMAND "${NM}" -D --defined-only -C "${LIBRARY}"
                OUTPUT_VARIABLE demangled)
string(REPLACE "\n" ";" raw_lines "${raw}")
string(REPLACE "\n" ";" lines "${demangled}")

set(bad "")
set(count 0)
foreach(line IN LISTS raw_lines)
  if(line MATCHES "^[0-9a-f]+ A ")  # the version node itself
    continue()
  endif()
  if(line STREQUAL "")
    continue()
  endif()
  math(EXPR count "${count} + 1")
  if(NOT line MATCHES "@@${NODE}$")
    list(APPEND bad "not under ${NODE}: ${line}")
  endif()
  if(line MATCHES "^[0-9a-f]+ u ")
    list(APPEND bad "GNU-unique: ${line}")
  endif()
endforeach()
foreach(line IN LISTS lines)
  if(line MATCHES "^[0-9a-f]+ [A-Za-z] ((typeinfo|vtable|typeinfo name|guard variable|VTT) for )?(std|boost|nvshared|__gnu_cxx|nlohmann)::")
    list(APPEND bad "not public API: ${line}")
  endif()
endforeach()
if(bad)
  list(LENGTH bad n)
  list(SUBLIST bad 0 20 shown)
  list(JOIN shown "\n  " text)
  message(FATAL_ERROR "${n} unexpected exported symbols:\n  ${text}")
endif()
message(STATUS "${count} symbols exported under ${NODE}")
