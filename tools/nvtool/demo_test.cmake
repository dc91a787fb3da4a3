# nvtool demo end to end: the host's whole life in order, its files kept in
# the work directory and nowhere else, --quiet, and failures reported.
include("${CMAKE_CURRENT_LIST_DIR}/cli_test_common.cmake")

# Every step, in the library's order of start, then the day, then the
# shut-down at exit with the summary last.
set(work "${WORK_DIR}/host")
run(0 "^Start-up \\(files in [^\n]*/host\\)\n1\\. reference data.*23 exchanges, 26 products, 48 series.*\n4\\. error log[^\n]*\n  the process is now called \"Trader App\"\n.*\n6\\. message router[^\n]*\n  the router holds ServerVersionRequest \\(0xFF06\\), ServerVersionResponse \\(0xFF40\\), ImpersonateUserRequest \\(0xFF07\\), ImpersonateUserResponse \\(0xFF41\\)\n.*\n8\\. custom names.*\n9\\. price models[^\n]*\n  price models from [^\n]*/config/pricemodels: Forward Yield\n10\\. gateway logins.*  CME-A logs in as GLOBEX01/GLX/TRADER7\nA day's work\n.*  CLM4 P-1\\.5\tLight Sweet Crude Options Jun14 P--1\\.50\t.*  CA 3M\tCopper Grade A 05Jun14\t.*  reloaded: CA 3M is \"Copper 3M\"; ESH4 is \"E-mini S&P 500 Mar14\" again.*  17 ES contracts in screen order:\n    ESH4\t.*  yield to maturity through a built-in converter: 125\\.500000 -> [0-9]\\.[0-9]+,.*  forward yield through the plug-in model: 125\\.500000 -> [0-9]\\.[0-9]+,.*takes \"Globex E-mini\" \\(score 15\\)\n.*  TRADER7 may hold 10 NQ futures on CME-A \\(the gateway's wildcard row\\)\n.*server PRICE-1 runs version 7\\.4\\.2\n.*\\[message box, type 0x30\\] Trader recovered from an error \\(code 7\\)\\.  order book rebuilt\n.*Shut-down, at exit\n  the contract-name formatter tells its observers it ends \\(NotifyDestroy\\)[^\n]*\n  price models shut down for good[^\n]*\n  application strings shut down, last[^\n]*\nhost walk-through: 19 of 19 steps done; its files are in [^\n]*/host\n$"
    "^$" demo --work-dir "${work}")
file(GLOB written RELATIVE "${work}" "${work}/*")
list(SORT written)
if(NOT written STREQUAL "Series Names.dat;config;data;machine-settings.ini;trader.log;user-settings.ini")
  message(SEND_ERROR "the work directory holds: ${written}")
endif()
file(READ "${work}/trader.log" log)
if(NOT log MATCHES "code=7 Trader Client: order book rebuilt\n")
  message(SEND_ERROR "the host's log lacks the report:\n${log}")
endif()

# A second life in the same directory finds the name kept by the first.
run(0 "  1 custom names loaded from [^\n]*Series Names\\.dat\n" "^$"
    demo --work-dir "${work}")

# --quiet prints one line. Without --work-dir the files go to a new
# directory under TMPDIR; nothing is written anywhere else, the current
# directory included.
file(MAKE_DIRECTORY "${WORK_DIR}/tmp" "${WORK_DIR}/cwd")
set(ENV{TMPDIR} "${WORK_DIR}/tmp")
execute_process(COMMAND "${NVTOOL}" demo --quiet
  WORKING_DIRECTORY "${WORK_DIR}/cwd"
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0 OR NOT err STREQUAL "" OR NOT out MATCHES
   "^host walk-through: 19 of 19 steps done; its files are in [^\n]*/tmp/nvtool-demo\\.[A-Za-z0-9]+\n$")
  message(SEND_ERROR "demo --quiet: exit ${rc}\n${out}${err}")
endif()
file(GLOB made RELATIVE "${WORK_DIR}/tmp" "${WORK_DIR}/tmp/*")
file(GLOB left "${WORK_DIR}/cwd/*")
list(LENGTH made count)
if(NOT count EQUAL 1 OR left)
  message(SEND_ERROR "files outside the work directory: ${made} ${left}")
endif()
unset(ENV{TMPDIR})

# Steps that fail are named, the others still run, and the exit is 1.
file(WRITE "${WORK_DIR}/small.json" [=[
{"exchanges": [{"id": 7, "name": "CME-A", "market": "CME"}]}
]=])
run(1 "  FAILED: contract names of every shape \\(FormatContract\\): no series ESH4\n.*\nhost walk-through: 1[0-9] of 19 steps done, [0-9] failed; "
    "^nvtool: [0-9] steps of the walk-through failed\n$"
    --refdata "${WORK_DIR}/small.json" demo --quiet --work-dir "${WORK_DIR}/small")
run(1 "^$" "^nvtool: no plug-in file [^\n]*/none\\.so\n$"
    demo --plugin "${WORK_DIR}/none.so" --work-dir "${WORK_DIR}/none")
