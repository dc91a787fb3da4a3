# End-to-end checks of `nvtool sort` and `nvtool names`, run by CTest as
# `cmake -P`:  -DNVTOOL=<binary> -DWORK_DIR=<scratch dir>
include("${CMAKE_CURRENT_LIST_DIR}/cli_test_common.cmake")

run(0 "--exchange ID.*default.*--product CODE" "^$" sort --help)
run(0 "list \\| add KEY NAME" "^$" names --help)

# sort: LME prompts marked R first, whatever their dates; BTec by term key,
# FF before the plain issue, the when-issued one last.
run(0 "^CA CASH\t[^\n]*\nCA 3M\t[^\n]*\nCA 20140416\t[^\n]*\n$" "^$"
    sort --exchange LME-A)
run(0 "^912828C24\t2YR\n912828C65\t5YR\n912828B66FF\t10YRFF\n912828B66\t10YR\n912828WE6\tW_10YR\n$"
    "^$" sort --exchange 40)
run(0 "^B F15\t[^\n]*\nB Q1-15\t[^\n]*Jan15-Mar15\nB Q2-15\t" "^$" sort --product B)
# Futures by date, then the spreads, then options by strike, put before call
# at a lower strike.
run(0 "^ESH4\t.*ESZ4\t.*ESH4-ESM4\t.*ESH4 P1800\t.*ESH4 C1850\t.*ESH4 C1900\t"
    "^$" sort --exchange 7)
run(1 "^$" "^nvtool: unknown exchange \"nope\"\n$" sort --exchange nope)
run(2 "^$" "^nvtool: " sort --bogus)

# names: add, find again in a new process, change, refuse, remove, purge.
set(file "${WORK_DIR}/Series Names.dat")
run(0 "^<AppName> Client: ME - AddCustomSeriesName - Contract Name: NASDAQ MSFT, Custom Name: my stock -- Name successfully added\n$"
    "^$" names "${file}" add MSFT "  my stock ")
run(0 "Custom Name: cash copper -- Name successfully added" "^$"
    names "${file}" add "CA CASH" "cash copper")
run(0 "^MSFT\tmy stock\nCA CASH\tcash copper\n$" "^$" names "${file}" list)
run(0 "^MSFT\tmy stock\nESH4\tE-mini S&P 500 Mar14\n$" "^$"
    name --names "${file}" MSFT ESH4)
run(1 "Change failed: Custom name already assigned to contract: LME CA 05Mar14\n$"
    "^nvtool: change refused; see the line above\n$"
    names "${file}" change MSFT "cash copper")
run(0 "New Custom Name: mine -- Name change successful\n$" "^$"
    names "${file}" change MSFT mine)
run(0 "RemoveCustomSeriesName\\(pName\\) Contract Name: NASDAQ MSFT, Custom Name: mine, -- removed sucessfully\n$"
    "^$" names "${file}" remove mine)
run(0 "RemoveCustomSeriesName\\(seriesID\\) Contract Name: LME CA 05Mar14, Custom Name: cash copper, -- removed sucessfully\n$"
    "^$" names "${file}" remove "CA CASH")
run(0 "^$" "^$" names "${file}" list)
run(1 "^$" "^nvtool: unknown series key \"NOPE\"\n$" names "${file}" add NOPE x)
run(2 "^$" "^nvtool: names: add takes 2 arguments; see 'nvtool names --help'\n$" names "${file}" add MSFT)
run(2 "^$" "^nvtool: " names "${file}" rename)

# A damaged file keeps the names before the damage, says so, and is
# rewritten whole.
run(0 "" "^$" names "${file}" add MSFT one)
run(0 "" "^$" names "${file}" add "CA 3M" two)
file(READ "${file}" bytes HEX)
string(LENGTH "${bytes}" length)
math(EXPR cut "${length} - 8")
string(SUBSTRING "${bytes}" 0 ${cut} bytes)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" escaped "${bytes}")
execute_process(COMMAND printf "${escaped}" OUTPUT_FILE "${file}")
# The file holds its entries in table order; the last one is cut.
run(0 "corruption data, which will be discarded\\.\n(MSFT\tone|CA 3M\ttwo)\n$"
    "^nvtool: .* was damaged; kept the first 1 name\\(s\\) and rewrote it\n$"
    names "${file}" list)
run(0 "^(MSFT\tone|CA 3M\ttwo)\n$" "^$" names "${file}" list)
run(0 "removed sucessfully\n$" "^$" names "${file}" purge)
run(0 "^$" "^$" names "${file}" list)
