# End-to-end checks of `nvtool column`, run by CTest as `cmake -P`:
#   -DNVTOOL=<binary> -DSOURCE_DIR=<repository> -DWORK_DIR=<scratch dir>
include("${CMAKE_CURRENT_LIST_DIR}/cli_test_common.cmake")

# column(<expected exit> <stdin file> <stdout regex> <stderr regex> args...)
# leaves the standard output in `last_out`.
function(column expected_rc input out_regex err_regex)
  set(run_input "${input}")
  run(${expected_rc} "${out_regex}" "${err_regex}" column ${ARGN})
  set(last_out "${last_out}" PARENT_SCOPE)
endfunction()

set(prices "${SOURCE_DIR}/data/sample-column-prices.txt")
set(settings "${SOURCE_DIR}/data/sample-column.ini")
set(empty "${WORK_DIR}/empty.txt")
file(WRITE "${empty}" "")

# Dates a few months and eight years ahead, so that the verdict stays valid.
string(TIMESTAMP year "%Y" UTC)
math(EXPR settle_year "${year} + 1")
math(EXPR maturity_year "${year} + 9")
set(dates --settle ${settle_year}-06-30 --maturity ${maturity_year}-11-15)

execute_process(COMMAND "${NVTOOL}" column --help
  RESULT_VARIABLE rc OUTPUT_VARIABLE out)
if(NOT rc EQUAL 0 OR NOT out MATCHES "--settings FILE.*--reverse.*default: 6\n.*Example:\n  nvtool column ")
  message(SEND_ERROR "column --help:\n${out}")
endif()

# The bundled example: futures prices to yields to maturity ...
column(0 "${prices}"
  "^verdict: 0 valid\nconverter: CUDPYield2Maturity \\(yield to maturity in percent\\)\n125\\.500000000000\t[0-9.]+\n125\\.515625000000\t[0-9.]+\n126\\.000000000000\t[0-9.]+\n124\\.984375000000\t[0-9.]+\n$"
  "^$" --settings "${settings}" ${dates} --decimals 12)
# ... and the yields back to the same prices.
string(REGEX MATCHALL "\t[0-9.]+" yields "${last_out}")
string(REPLACE "\t" "" yields "${yields}")
string(REPLACE ";" "\n" yields "${yields}")
file(WRITE "${WORK_DIR}/yields.txt" "${yields}\n")
column(0 "${WORK_DIR}/yields.txt"
  "\t125\\.500000\n.*\t125\\.515625\n.*\t126\\.000000\n.*\t124\\.984375\n$"
  "^$" --settings "${settings}" ${dates} --reverse)

# Settings survive --save and a reload: the same output from the saved file.
column(0 "${prices}" "saved: " "^$"
  --settings "${settings}" ${dates} --save "${WORK_DIR}/saved.ini")
string(REPLACE "saved: ${WORK_DIR}/saved.ini\n" "" first "${last_out}")
file(READ "${WORK_DIR}/saved.ini" saved)
if(NOT saved MATCHES "\\[UserDefinedPrice\\]\n" OR
   NOT saved MATCHES "\nUDP Retain settings =0\n" OR
   NOT saved MATCHES "\nUDP Version=8\\.0\\.0\\.0\n")
  message(SEND_ERROR "saved settings:\n${saved}")
endif()
column(0 "${prices}" "" "^$" --settings "${WORK_DIR}/saved.ini" ${dates})
if(NOT last_out STREQUAL first)
  message(SEND_ERROR "reloaded settings convert differently:\n${first}\n---\n${last_out}")
endif()

# Simple yields and par rates from options, worked by hand.
file(WRITE "${WORK_DIR}/ticks.txt" "9875\n")
column(0 "${WORK_DIR}/ticks.txt" "converter: CUDPriceYield.*\n9875\\.000000\t1\\.250000\n$"
  "^$" --type 2 --yield-type 3)
file(WRITE "${WORK_DIR}/rates.txt" "96\n")
column(0 "${WORK_DIR}/rates.txt" "\n96\\.000000\t6\\.111497\n$" "^$"
  --type 2 --convert-365)
file(WRITE "${WORK_DIR}/par.txt" "-50\n")
column(0 "${WORK_DIR}/par.txt" "CUDPriceParRate.*\n-50\\.000000\t4\\.750000\n$" "^$"
  --type 6 --coupon 5 --pv01 2)

# A bad line is reported with its number; the others still convert.
file(WRITE "${WORK_DIR}/bad.txt" "125.5\nabc\n\n0.5\n126\n")
column(1 "${WORK_DIR}/bad.txt" "\n125\\.500000\t[0-9.]+\n126\\.000000\t[0-9.]+\n$"
  "^nvtool: line 2: not a number: abc\nnvtool: line 4: no user-defined price for 0\\.500000\nnvtool: some lines were not converted\n$"
  --settings "${settings}" ${dates})

# Failures: one line, status 1; usage errors: status 2.
column(1 "${empty}" "verdict: 1 " "^nvtool: price type 5 \\(Exchange Price\\) has no converter: types 2, 3 and 6 have one\n$"
  --type 5)
column(1 "${empty}" "^$" "^nvtool: no settings file ${WORK_DIR}/none.ini\n$"
  --settings "${WORK_DIR}/none.ini")
column(2 "${empty}" "^$" "^nvtool: column: --settle: not a date in the form YYYY-MM-DD: 2024-02-30; see 'nvtool column --help'\n$"
  --settle 2024-02-30)
column(2 "${empty}" "^$" "--type" --type 9)
column(2 "${empty}" "^$" "--pv01: must be a finite number, not nan" --type 6 --pv01 nan)
