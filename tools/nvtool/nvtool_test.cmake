# End-to-end checks of nvtool, run by CTest as `cmake -P`:
#   -DNVTOOL=<binary> -DSOURCE_DIR=<repository> -DWORK_DIR=<scratch dir>
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

# run(<expected exit> <stdout must match> <stderr must match> args...)
function(run expected_rc out_regex err_regex)
  execute_process(COMMAND "${NVTOOL}" ${ARGN}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(expected_rc STREQUAL "nonzero")
    if(rc EQUAL 0)
      message(SEND_ERROR "nvtool ${ARGN}: exit 0, expected non-zero\n${out}")
    endif()
  elseif(NOT rc EQUAL expected_rc)
    message(SEND_ERROR "nvtool ${ARGN}: exit ${rc}, expected ${expected_rc}\n${out}${err}")
  endif()
  if(NOT out MATCHES "${out_regex}")
    message(SEND_ERROR "nvtool ${ARGN}: stdout does not match '${out_regex}':\n${out}")
  endif()
  if(NOT err MATCHES "${err_regex}")
    message(SEND_ERROR "nvtool ${ARGN}: stderr does not match '${err_regex}':\n${err}")
  endif()
endfunction()

# Help on every level.
run(0 "exchanges.*demo" "^$" --help)
run(0 "--tsv" "^$" exchanges --help)
run(0 "Usage" "^$" demo --help)

# exchanges on the bundled data: flavoured names, the DV rule, eCBOT.
run(0 "7  +CME-A  +CME-A \\(Globex\\)  +7  +CME  +no  +no  +no" "^$" exchanges)
run(0 "^0\tDV\tDV\t84\tLegwise\tyes\tno\tno\n" "^$" exchanges --tsv --no-header)
run(0 "\n3\teCBOT-A\teCBOT-A \\(Electronic\\)\t6\tCBOT\tno\tno\tyes\n" "^$"
    exchanges --tsv)

# A file given with --refdata replaces the bundled data.
file(WRITE "${WORK_DIR}/small.json" [=[
{"exchanges": [{"id": 5, "name": "TOCOM", "market": "TOCOM", "alias": "Tokyo"}]}
]=])
run(0 "^ID\tNAME\tFLAVOURED NAME\tMARKET\tMARKET NAME\tSYNTHETIC\tFIX\tECBOT\n5\tTOCOM\tTOCOM \\(Tokyo\\)\t68\tTOCOM\tno\tno\tno\n$"
    "^$" --refdata "${WORK_DIR}/small.json" exchanges --tsv)

# Errors: one line naming the problem, non-zero exit.
file(WRITE "${WORK_DIR}/bad.json" [=[{"exchanges": [{"id": 5, "name": "X", "market": "Nowhere"}]}]=])
run(1 "^$" "^nvtool: .*bad.json: exchanges\\[0\\] \\(X\\): unknown market \"Nowhere\"\n$"
    --refdata "${WORK_DIR}/bad.json" exchanges)
run(1 "^$" "^nvtool: .*missing.json: cannot open the file\n$"
    --refdata "${WORK_DIR}/missing.json" exchanges)
run(2 "^$" "^nvtool: .*\nRun 'nvtool --help' for usage.\n$" no-such-command)
run(2 "^$" "^nvtool: A subcommand is required" )
run(2 "^$" "^nvtool: .*--bogus" exchanges --bogus)

# demo runs on the bundled data and on a given file.
run(0 "Reference data: 23 exchanges.*\\[message box, type 0x30\\] Trader recovered from an error \\(code 7\\)\\.  order book rebuilt\n.*\\[log, severity -1, code 8\\] trader Client\n" "" demo)
run(0 "Reference data: 1 exchanges" "" --refdata "${WORK_DIR}/small.json" demo)

# yield and price: a bond settled on a coupon date is at par when its yield
# is its coupon; refusals give the code and its meaning.
set(par --settle 2024-03-15 --maturity 2029-03-15 --coupon 4)
run(0 "^4\\.0000000000\n$" "^$" yield ${par} --price 100)
run(0 "^100\\.0000000000\n$" "^$" price ${par} --yield 4)
run(0 "^125\\.0000000000\n$" "^$" price ${par} --yield 4 --factor 0.8)
run(0 "^shape: regular\nN: 10\nC: 2\\.0000000000\nAI: 0\\.0000000000\nw: 1\\.0000000000\nCl: 0\\.0000000000\nCs: 0\\.0000000000\nyield: 4\\.0000000000\n$"
    "^$" yield ${par} --price 100 --explain)
run(0 "^shape: long first\nN: 10\n" "^$" price --settle 2025-02-20
    --maturity 2030-06-15 --coupon 6 --optional --issue 2024-01-10
    --first-coupon 2025-06-15 --daycount actual/actual --yield 5.5 --explain)
run(0 "Usage: nvtool yield.*--first-coupon.*--explain" "^$" yield --help)
run(1 "^$" "^nvtool: refused: validation code 3, conversion factor out of range"
    price ${par} --yield 4 --factor 5)
run(1 "^$" "^nvtool: refused: validation code 2, coupon out of range" yield
    --settle 2024-03-15 --maturity 2029-03-15 --coupon 100 --price 90)
run(1 "^$" "^nvtool: refused: first coupon code 8, " price ${par} --optional
    --issue 2023-01-01 --first-coupon 2024-09-14 --yield 4)
run(1 "^$" "^nvtool: refused: a price below 1\\.0 has no yield\n$" yield ${par}
    --price 0.5)
run(1 "^$" "^nvtool: no price for yield 0\\.0000000000" price ${par} --yield 0)
run(2 "^$" "^nvtool: --settle: not a date in the form YYYY-MM-DD: 2024-02-30\n"
    yield --settle 2024-02-30 --maturity 2029-03-15 --coupon 4 --price 100)
run(2 "^$" "^nvtool: --daycount: unknown day count 'x'" yield ${par} --price 100
    --daycount x)
run(2 "^$" "^nvtool: .*--price.*required" yield ${par})
