# End-to-end checks of nvtool's help and usage errors, run by CTest as
# `cmake -P`: -DNVTOOL=<binary> -DSOURCE_DIR=<repository> -DWORK_DIR=<dir>
include("${CMAKE_CURRENT_LIST_DIR}/cli_test_common.cmake")

# Every help page: a usage line, every line within 79 columns, an example,
# and none of the parser's shorthand (type names, "REQUIRED", value sets,
# "=default" after a metavariable).
set(artefacts "TEXT|INT|FLOAT|UINT|REQUIRED|[{}]|in \\[|->|:NUMBER|[A-Z]=[0-9]|SUBCOMMAND")
foreach(command "" exchanges demo mgt name yield price match decode encode
    column models sort names)
  set(args ${command} --help)
  string(STRIP "nvtool ${command}" usage)
  run(0 "^Usage: ${usage} .*\n\nExample:\n  nvtool [^\n]+\n(  [^\n]+\n)*$" "^$" ${args})
  string(REPLACE "\n" ";" lines "${last_out}")
  foreach(line IN LISTS lines)
    string(LENGTH "${line}" width)
    if(width GREATER 79)
      message(SEND_ERROR "nvtool ${args}: a line of ${width} columns: ${line}")
    endif()
    if(line MATCHES "^  -" AND line MATCHES "${artefacts}")
      message(SEND_ERROR "nvtool ${args}: the parser's shorthand: ${line}")
    endif()
  endforeach()
endforeach()

# What options take and their defaults, in words.
run(0 "\n  --settle DATE +Settlement date; required\n.*\n  --freq N +Coupons a year: 1, 2, 4 or 12; default: 2\n.*\n  --eom +End-of-month [^;]+; default: off\n"
    "^$" yield --help)
run(0 "\n  --daycount DAYCOUNT +Day count, by number or by name in any case:\n +0=Actual/Actual, 1=Actual/360, 2=30/360, 3=30/365,\n +4=30E/360, 5=Actual/365; default: from the file, else\n"
    "^$" column --help)
run(0 "\nCommands:\n  exchanges +List every exchange of the reference data\\.\n.*\n  names +List or change"
    "^$" --help)
run(0 "^Usage: nvtool names \\[OPTIONS\\] FILE ACTION \\[ARG\\.\\.\\.\\]\n" "^$" names --help)
run(0 "^Usage: nvtool name \\[OPTIONS\\] \\[KEY\\.\\.\\.\\]\n" "^$" name --help)

# Usage errors: one line naming the command, the problem and where the
# usage is; exit status 2.
set(par --settle 2024-03-15 --maturity 2029-03-15 --coupon 4)
set(see_column "; see 'nvtool column --help'\n$")
run(2 "^$" "^nvtool: column: --coupon: Value abc not a number${see_column}"
    column --coupon abc)
run(2 "^$" "^nvtool: column: --decimals: Value many not in range 0 to 15${see_column}"
    column --decimals many)
run(2 "^$" "^nvtool: column: --type: Value 9 not in range 1 to 6${see_column}"
    column --type 9)
run(2 "^$" "^nvtool: column: The following argument was not expected: extra${see_column}"
    column extra)
run(2 "^$" "^nvtool: column: --freq: Value 3 is not one of 1, 2, 4, 12${see_column}"
    column --freq 3)
run(2 "^$" "^nvtool: column: --settle: needs a value, DATE${see_column}"
    column --settle)
run(2 "^$" "^nvtool: name: --product-style: Value fancy is not one of default, name, alias; see 'nvtool name --help'\n$"
    name --product-style fancy ESH4)
run(2 "^$" "^nvtool: --refdata: needs a value, FILE; see 'nvtool --help'\n$" --refdata)
run(2 "^$" "^nvtool: price: --yield is required; see 'nvtool price --help'\n$"
    price ${par})
run(2 "^$" "^nvtool: exchanges: The following argument was not expected: --bogus; see 'nvtool exchanges --help'\n$"
    exchanges --bogus)
run(2 "^$" "^nvtool: no command given; the commands are exchanges, demo, mgt, name, yield, price, match, decode, encode, column, models, sort, names; see 'nvtool --help'\n$"
    --bogus)

# Day counts by number or by the name the library prints, in any case:
# each name gives what its number gives.
foreach(pair "1;Actual/360" "2;30/360" "4;30e/360" "5;ACTUAL/365" "0;actual/actual")
  list(GET pair 0 number)
  list(GET pair 1 name)
  run(0 "^[0-9]+\\.[0-9]+\n$" "^$" price ${par} --yield 5 --daycount ${number})
  set(by_number "${last_out}")
  run(0 "^[0-9]+\\.[0-9]+\n$" "^$" price ${par} --yield 5 --daycount ${name})
  if(NOT last_out STREQUAL by_number)
    message(SEND_ERROR "--daycount ${name} gave ${last_out}, ${number} gave ${by_number}")
  endif()
endforeach()
# Actual/365 and Actual/360 do price the bond differently.
run(0 "" "^$" price ${par} --yield 5 --daycount 1)
set(by_360 "${last_out}")
run(0 "" "^$" price ${par} --yield 5 --daycount 5)
if(last_out STREQUAL by_360)
  message(SEND_ERROR "--daycount 1 and 5 priced alike: ${last_out}")
endif()
