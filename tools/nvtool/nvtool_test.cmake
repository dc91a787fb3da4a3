# End-to-end checks of nvtool, run by CTest as `cmake -P`:
#   -DNVTOOL=<binary> -DSOURCE_DIR=<repository> -DWORK_DIR=<scratch dir>
include("${CMAKE_CURRENT_LIST_DIR}/cli_test_common.cmake")

# Help on every level.
run(0 "exchanges.*demo.*name" "^$" --help)
run(0 "--series-names-for" "^$" name --help)
run(0 "--tsv" "^$" exchanges --help)
run(0 "Usage" "^$" demo --help)

# exchanges on the bundled data: flavoured names, the DV rule, eCBOT.
run(0 "7  +CME-A  +CME-A \\(Globex\\)  +7  +CME  +no  +no  +no" "^$" exchanges)
run(0 "^0\tDV\tDV\t84\tLegwise\tyes\tno\tno\n" "^$" exchanges --tsv --no-header)
run(0 "\n3\teCBOT-A\teCBOT-A \\(Electronic\\)\t6\tCBOT\tno\tno\tyes\n" "^$"
    exchanges --tsv)

# name: one line per series, quirks kept, every config field reachable.
run(0 "^ESH4\tE-mini S&P 500 Mar14\n$" "^$" name ESH4)
run(0 "^ESH4\tES Mar14\nCLM4 P-1.5\tCL Jun14 P--1.50\n$" "^$"
    name --product-names ESH4 "CLM4 P-1.5")
run(0 "^ESH4-ESM4\tCME ES CME H4-CME M4\n$" "^$"
    name --product-names --compact --show-market ESH4-ESM4)
run(0 "^ES CM1\tES Mar/Jun Roll\tCME-A \\(Globex\\)\tCustom Market\t1xES Mar14@front:-1xJun14@back\n$"
    "^$" name --product-names --legs "ES CM1")
run(0 "^ESW1H4\tWeek 1 Mar14\n$" "^$"
    name --series-names-for CME --no-product --exchange 7 ESW1H4)
run(0 "^ESH4\tCME-A E-mini S&P 500 Mar14\n.*\nEURUSD\tHotspot\n$" "^$"
    name --all --show-exchange --plain-exchange)
run(0 "^ESH4\tES Mar14\n" "^$" name --all --product-style NAME)
run(1 "^$" "^nvtool: unknown series key \"NOPE\"\n$" name NOPE)
run(1 "^$" "^nvtool: no series \"ESH4\" on exchange 8\n$" name --exchange 8 ESH4)
run(1 "^$" "^nvtool: unknown exchange \"Nowhere\"\n$" name --exchange Nowhere ESH4)
run(2 "^$" "give series keys or --all" name)
run(2 "^$" "--product-style" name --product-style fancy ESH4)

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
run(1 "^$" "^nvtool: .*missing.json: cannot open the file: No such file or directory\n$"
    --refdata "${WORK_DIR}/missing.json" exchanges)
# Usage errors: one line, naming the command and where its usage is.
run(2 "^$" "^nvtool: unknown command 'no-such-command'; the commands are exchanges, demo, .*; see 'nvtool --help'\n$" no-such-command)
run(2 "^$" "^nvtool: no command given; the commands are exchanges, .*, names; see 'nvtool --help'\n$")
run(2 "^$" "^nvtool: exchanges: [^\n]*--bogus[^\n]*; see 'nvtool exchanges --help'\n$" exchanges --bogus)
run(0 "^nvtool [0-9.]+ \\(library nvshared [0-9.]+, libnvshared\\.so\\.[0-9.]+\\)\n$" "^$" --version)

# Global options where users type them, and refused where they do nothing.
run(0 "^5\tTOCOM" "^$" exchanges --tsv --no-header --refdata "${WORK_DIR}/small.json")
run(2 "^$" "^nvtool: yield: --refdata has no effect: this command reads no reference data; see 'nvtool yield --help'\n$"
    yield --refdata "${WORK_DIR}/small.json" --settle 2024-01-01 --maturity 2030-01-01 --coupon 4 --price 100)

# Numbers are finite; output that cannot be written is an error.
run(2 "^$" "^nvtool: yield: --price: must be a finite number, not nan; see 'nvtool yield --help'\n$"
    yield --settle 2024-01-01 --maturity 2030-01-01 --coupon 4 --price nan)
if(EXISTS /dev/full)
  execute_process(COMMAND "${NVTOOL}" exchanges OUTPUT_FILE /dev/full
    RESULT_VARIABLE rc ERROR_VARIABLE err)
  if(NOT rc EQUAL 1 OR NOT err MATCHES "^nvtool: write error: No space left on device\n$")
    message(SEND_ERROR "nvtool exchanges > /dev/full: exit ${rc}, stderr '${err}'")
  endif()
endif()

# mgt: the bundled sample loads; every logged line is marked; --gateway
# prints the identity, its market's as fallback, or none. Dynamic
# connections are on unless turned off, as on a host with an empty store.
run(0 "mgt.*--gateway.*--no-dynamic-connections" "^$" mgt --help)
run(0 "^Dynamic connections: off; identities as the file gives them\ninfo  MGT_INI: Loading gateway specific parameters from .*sample.mgt\ninfo  MGT_INI: Market \\[CME\\] parameters loaded:\n.*info  MGT_INI: \tPrice_Subscription_Gateway=CME-A, CME-B, \n.*Load: true\ngateway CME-A: Member=GLOBEX01 Group=GLX Trader=TRADER7 Mandatory_Server=10.20.30.40 Price_Subscription_Gateway=CME-A TraderIdType=None\ngateway CME-B: Member=CMEMEMBER01 .* \\(market level\\)\ngateway eCBOT-B: no identity\n$"
    "^$" mgt "${SOURCE_DIR}/data/sample.mgt" --gateway CME-A --gateway CME-B
    --gateway eCBOT-B --no-dynamic-connections)
file(WRITE "${WORK_DIR}/bad.mgt" "[gw-CME-A]\nMember=M\nGroup=G\nTrader=T\nPreferred_Server=300.1.1.1\n[gw-CME-A]\n")
run(1 "^Dynamic[^\n]*\ninfo  MGT_INI: Loading[^\n]*\nerror MGT_INI: All instances of section \"gw-CME-A\" will be ignored because there are duplicates.\nLoad: false\n$"
    "^nvtool: .*bad.mgt: no market could be loaded\n$" mgt "${WORK_DIR}/bad.mgt"
    --no-dynamic-connections)
# With dynamic connections on, as by default, the same file loads.
run(0 "^Dynamic connections: on, as on a host whose settings store does not set them; every identity is DVADM/XXX/MGR\n.*Load: true\n$"
    "^$" mgt "${WORK_DIR}/bad.mgt")
file(WRITE "${WORK_DIR}/dynamic.mgt" "[gw-CME-B]\nPrimary=Y\n")
run(0 "Load: true\ngateway CME-B: Member=DVADM Group=XXX Trader=MGR TraderIdType=None\n$" "^$"
    mgt "${WORK_DIR}/dynamic.mgt" --gateway CME-B)
run(0 "gateway CME-A: Member=DVADM Group=XXX Trader=MGR Mandatory_Server=10.20.30.40 " "^$"
    mgt "${SOURCE_DIR}/data/sample.mgt" --gateway CME-A)
run(1 "^$" "^nvtool: .*missing.mgt: cannot open the file" mgt "${WORK_DIR}/missing.mgt")
# An unknown gateway comes after the whole report, the known ones answered.
run(1 "^Dynamic[^\n]*\ninfo  MGT_INI: Loading.*Load: true\ngateway CME-A: Member=GLOBEX01 [^\n]*\n$"
    "^nvtool: --gateway Nowhere, Elsewhere: no such gateway in the reference data\n$"
    mgt "${SOURCE_DIR}/data/sample.mgt" --gateway Nowhere --gateway CME-A
    --gateway Elsewhere --no-dynamic-connections)
run(1 "^Dynamic[^\n]*\n.*Load: false\n$"
    "^nvtool: .*bad.mgt: no market could be loaded; --gateway Nowhere: no such gateway in the reference data\n$"
    mgt "${WORK_DIR}/bad.mgt" --gateway Nowhere --no-dynamic-connections)
run(2 "^$" "^nvtool: mgt: FILE is required; see 'nvtool mgt --help'\n$" mgt)
run(2 "^$" "^nvtool: mgt: The following argument was not expected: --dynamic; see 'nvtool mgt --help'\n$"
    mgt "${SOURCE_DIR}/data/sample.mgt" --dynamic)
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
run(2 "^$" "^nvtool: yield: --settle: not a date in the form YYYY-MM-DD: 2024-02-30; see 'nvtool yield --help'\n$"
    yield --settle 2024-02-30 --maturity 2029-03-15 --coupon 4 --price 100)
run(2 "^$" "^nvtool: yield: --daycount: unknown day count 'x'; give one of 0=Actual/Actual, 1=Actual/360, 2=30/360, 3=30/365, 4=30E/360, 5=Actual/365; see 'nvtool yield --help'\n$"
    yield ${par} --price 100 --daycount x)
run(2 "^$" "^nvtool: yield: --price is required; see 'nvtool yield --help'\n$" yield ${par})


# match: the bundled defaults table and its eCBOT case, key options, and
# errors that name the entry and field.
set(DEFAULTS "${SOURCE_DIR}/data/sample-defaults.json")
run(0 "--exchange.*--multi-broker" "^$" match --help)
run(0 "^entry 1\tscore 10\teCBOT bonds\n$" "^$"
    match "${DEFAULTS}" --exchange eCBOT-A --product ZN)
run(0 "^entry 1\tscore 10\teCBOT bonds\n$" "^$"
    match "${DEFAULTS}" --exchange "eCBOT-A (Electronic)" --product zn)
run(0 "^entry 0\tscore 10\tCBOT bonds\n$" "^$"
    match "${DEFAULTS}" --exchange 1 --product ZB)
run(0 "^entry 2\tscore 15\tGlobex E-mini\n$" "^$"
    match "${DEFAULTS}" --exchange CME-A --product ES --product-type FUTURE)
# The Globex entry names no market: its gateway's market (CME) counts.
run(0 "^entry 2\tscore 2\tGlobex E-mini\n$" "^$" match "${DEFAULTS}" --market CME)
run(0 "^entry 5\tscore 0\tHouse default\n$" "^$" match "${DEFAULTS}" --market LME)
run(0 "^no entry fits\n$" "^$" match "${DEFAULTS}" --template Desk)
run(1 "^$" "^nvtool: unknown exchange \"Nowhere\"\n$"
    match "${DEFAULTS}" --exchange Nowhere)
run(1 "^$" "^nvtool: unknown product type \"FUTURES\"\n$"
    match "${DEFAULTS}" --product-type FUTURES)
file(WRITE "${WORK_DIR}/bad-defaults.json" [=[{"entries": [{}, {"market": "Nowhere"}]}]=])
run(1 "^$" "^nvtool: .*bad-defaults.json: entry 1: field \"market\": unknown market \"Nowhere\"\n$"
    match "${WORK_DIR}/bad-defaults.json")
run(1 "^$" "^nvtool: .*missing.json: cannot open the file" match "${WORK_DIR}/missing.json")
run(2 "^$" "^nvtool: match: TABLE is required; see 'nvtool match --help'\n$" match)

# encode and decode: a round trip through a file, hex both ways, and the
# library's own message for a bad buffer.
run(0 "--as NAME.*--hex" "^$" decode --help)
run(0 "^01 29 00 03 00 00 00 43 4b 00 00 00 54 02 05 00\n54 04 03 00 00 00 43 02 00 01 4d 43 02 00 01 47\n43 02 00 01 54 54 02 07 00\n$"
    "^$" encode --as CK --hex m_brokerID=5 m_gatewayID=3 m_szMember=M
    m_szGroup=G m_szTrader=T m_companyID=7)
run(0 "^$" "^$" encode --as ConnectionKey -o "${WORK_DIR}/ck.bin"
    m_brokerID=5 m_szMember=ABCDEFGHIJKL)
run(0 "^object CK: protocol 1, total length 50, version 0x00000003\n  #0 m_brokerID T 5\n  #1 m_gatewayID T -1\n  #2 m_szMember C \"ABCDEFGHIJKL\"\n  #3 m_szGroup C \"\"\n  #4 m_szTrader C \"\"\n  #5 m_companyID T 0\n$"
    "^$" decode --as CK "${WORK_DIR}/ck.bin")
run(0 "^$" "^$"
    encode --as ASAP -o "${WORK_DIR}/asap.bin" m_isQHAllowed=1)
run(0 "#2 m_color T 16777215\n.*#4 m_isQHAllowed T true\n" "^$"
    decode --as SpreadInfo "${WORK_DIR}/asap.bin")
file(WRITE "${WORK_DIR}/svrp.hex" "01 12 00 00 00 00 08 53 56 52 50 00\n53 03 00 01 61 0a ff\n")
run(0 "^object SVRP: .*\n  #0 m_szClientInfo S \"a\\\\n\"\n1 bytes follow the object\n$" "^$"
    decode --as SVRP --hex "${WORK_DIR}/svrp.hex")
run(1 "^$" "^nvtool: Object name mismatch. Serialized name is 'ASAP'; the object name is 'CK'\n$"
    decode --as CK "${WORK_DIR}/asap.bin")
# Items read before the fault are printed, then the message.
file(WRITE "${WORK_DIR}/cut.hex" "01 10 00 03 00 00 00 43 4b 00 00 00 54 02 05 00 54 04")
run(1 "^object CK: protocol 1, total length 16, version 0x00000003\n  #0 m_brokerID T 5\n$"
    "^nvtool: Buffer Underflow when processing item #1 \\(m_gatewayID\\) in object 'CK'. Item needs 6 bytes. Current offset 16. Buffer length 16 bytes\n$"
    decode --as CK --hex "${WORK_DIR}/cut.hex")
run(1 "^$" "^nvtool: --hex: character 1 is no hex digit\n$" decode --as CK --hex "${WORK_DIR}/ck.bin")
run(1 "^$" "^nvtool: --as XX: unknown record; known: CK \\(ConnectionKey\\)" decode --as XX "${WORK_DIR}/ck.bin")
run(1 "^$" "^nvtool: 'm_bogus' is no item of CK; its items are m_brokerID," encode --as CK m_bogus=1)
run(1 "^$" "^nvtool: m_szGroup: at most 4 characters\n$" encode --as CK m_szGroup=ABCDE)
run(1 "^$" "^nvtool: m_isAggregator: 'yes' is not true, false, 1 or 0\n$" encode --as ASAP m_isAggregator=yes)
run(0 "^object CK: " "^$" decode "${WORK_DIR}/ck.bin")
