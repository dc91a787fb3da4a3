# End-to-end checks of `nvtool models` and of `nvtool column --type 4`, run
# by CTest as `cmake -P` with the example model's path in $ENV{FORWARD_YIELD}.
include("${CMAKE_CURRENT_LIST_DIR}/cli_test_common.cmake")

set(config "${WORK_DIR}/config")
file(MAKE_DIRECTORY "${config}/pricemodels" "${WORK_DIR}/empty/pricemodels")
file(COPY_FILE "$ENV{FORWARD_YIELD}" "${config}/pricemodels/forward_yield.so")

execute_process(COMMAND "${NVTOOL}" models --help
  RESULT_VARIABLE rc OUTPUT_VARIABLE out)
if(NOT rc EQUAL 0 OR NOT out MATCHES "--config-dir DIR.*--validate NAME.*\nExample:\n  nvtool models")
  message(SEND_ERROR "models --help:\n${out}")
endif()

# The example model, its library and its ten parameters in order.
run(0 "^library ${config}/pricemodels/forward_yield\\.so\n  model Forward Yield\n    Coupon Frequency = Semi Annual \\(enum; Annual;Semi Annual;Quarterly;Monthly\\) \"Coupon frequency\": Coupons a year of the deliverable bond\n    Coupon = 6\\.000000 .*\n    Dated Date =  \\(date\\) \"Dated date\": Not used\n$"
  "^$" models --config-dir "${config}")
string(REGEX MATCHALL "\n    [A-Z]" rows "${last_out}")
list(LENGTH rows count)
if(NOT count EQUAL 10)
  message(SEND_ERROR "expected ten parameters:\n${last_out}")
endif()

run(0 "^no price models in ${WORK_DIR}/empty/pricemodels\n$" "^$"
  models --config-dir "${WORK_DIR}/empty")
run(1 "^$" "^nvtool: no directory ${WORK_DIR}/absent/pricemodels\n$"
  models --config-dir "${WORK_DIR}/absent")

# Verdicts.
run(0 "^valid: no\nmessage: Coupon must be a number from 0 to 100\n$" "^$"
  models --config-dir "${config}" --validate "Forward Yield" Coupon=abc)
run(0 "^valid: yes\nmessage: \n$" "^$"
  models --config-dir "${config}" --validate "Forward Yield"
  "Settlement Date=2026-12-15" "Maturity Date=2036-12-15" Coupon=6.5)
run(1 "^$" "^nvtool: no price model named 'Nobody' in ${config}/pricemodels\n$"
  models --config-dir "${config}" --validate Nobody)
run(2 "" "^nvtool: .*KEY=VALUE"
  models --config-dir "${config}" --validate "Forward Yield" novalue)

# A broken library beside it is logged and skipped.
file(WRITE "${config}/pricemodels/broken.so" "not an object")
run(0 "model Forward Yield\n" "Failed to load typelib: ${config}/pricemodels/broken\\.so "
  models --config-dir "${config}")
file(REMOVE "${config}/pricemodels/broken.so")

# Conversions through the plug-in: 20 whole coupon periods, so at a 6 %
# yield the bond is at par and the futures price 100 / 0.8; at 5 % the
# price is worked apart as 134.7432264285.
file(WRITE "${WORK_DIR}/futures.txt" "125\n134.7432264285\n")
set(run_input "${WORK_DIR}/futures.txt")
run(0 "converter: CCustomUDPrice \\(custom price model\\)\n125\\.000000\t6\\.000000\n134\\.743226\t5\\.000000\n$"
  "^$" column --type 4 --model "Forward Yield" --config-dir "${config}"
  --settle 2026-12-15 --maturity 2036-12-15 --coupon 6 --factor 0.8)
run(0 "converter: CCustomUDPrice \\(custom price model\\)\n125\\.000000\t6\\.000000\n134\\.743226\t5\\.000000\n$"
  "^$" column --type 4 --model "Forward Yield" --config-dir "${config}"
  --param "Settlement Date=2026-12-15" --param "Maturity Date=2036-12-15"
  --param Coupon=6 --param "Conversion Factor=0.8")
file(WRITE "${WORK_DIR}/yields.txt" "5\n")
set(run_input "${WORK_DIR}/yields.txt")
run(0 "\n5\\.000000\t134\\.743226\n$" "^$"
  column --type 4 --model "Forward Yield" --config-dir "${config}"
  --settle 2026-12-15 --maturity 2036-12-15 --coupon 6 --factor 0.8 --reverse)
run(1 "" "^nvtool: no price model named 'Nobody' in ${config}/pricemodels\n$"
  column --type 4 --model Nobody --config-dir "${config}")
