# End-to-end checks of nvtool encode --message and decode --message, and of
# decode recognising a record by its header, run by CTest as `cmake -P`:
#   -DNVTOOL=<binary> -DWORK_DIR=<scratch dir>
include("${CMAKE_CURRENT_LIST_DIR}/cli_test_common.cmake")

# Every message of both tables, in both carriers: encode, decode, and the
# factory's message saves back the bytes it was built from.
set(messages
  "ServerVersionRequest|CreateCommonRequestMessage|m_bIsSubscription=1|m_szClientInfo=c"
  "ServerVersionResponse|CreateCommonResponseMessage|m_iRequestID=4|m_engineInfos[1].m_engineVersion=e"
  "ImpersonateUserRequest|CreateCommonRequestMessage|m_szMember=M|m_bCanViewSingleCompanyDataOnly=true"
  "ImpersonateUserResponse|CreateCommonResponseMessage|m_tSentTickCount=-5"
  "SupportedExchangeRequest|CreateCommonRequestMessage|m_tReceivedTickCount=0x10"
  "SupportedExchangeResponse|CreateCommonResponseMessage|m_aExchangeIDsOld=1,2|m_aMarketIDs=-3"
  "PushMGTRequest|CreateCommonRequestMessage|m_list.m_userName=U|m_list.elements[0].m_szUserName=A|m_list.elements[1].m_szUserName=B"
  "PushMGTResponse|CreateCommonResponseMessage|m_strResponse=done"
  "ConnectMessage|CreateInternalMessage|m_ipAddress=10.0.0.1|m_bSupportAlgo=1"
  "ConnectResponseMessage|CreateInternalMessage|m_serverInstanceId=s1"
  "DisconnectMessage|CreateInternalMessage|m_sReason=bye"
  "StringMessage|CreateInternalMessage|m_sMessage=hello world"
  "CancelSubscriptionMessage|CreateInternalMessage|m_iSubscriptionRequestID=12"
  "ServerInstanceIDRequestMessage|CreateInternalMessage"
  "ServerInstanceIDResponseMessage|CreateInternalMessage|m_bClientConnected=true")
foreach(entry IN LISTS messages)
  string(REPLACE "|" ";" parts "${entry}")
  list(POP_FRONT parts name factory)
  foreach(carrier IN ITEMS "" "--dictionary")
    set(bin "${WORK_DIR}/${name}${carrier}.bin")
    run(0 "^$" "^$" encode --message ${name} ${carrier} -o "${bin}" ${parts})
    run(0 "\n${factory}: ${name} \\(saves back the same bytes\\)\n" "^$"
        decode --message "${bin}")
  endforeach()
endforeach()

# The two bases and the AlgoEngine pair are built by no factory.
run(0 "^$" "^$" encode --message AlgoEngineRequest "m_data=a b" -o "${WORK_DIR}/algo.bin")
run(0 "attachment 5225 \\(AlgoEngineRequest\\), 3 bytes: \"a b\"\nCreateCommonRequestMessage: no message\nCreateCommonResponseMessage: no message\nCreateInternalMessage: no message\n$"
    "^$" decode --message "${WORK_DIR}/algo.bin")
file(WRITE "${WORK_DIR}/algo.hex"
  "4e 56 4f 4d 01 00 69 14 07 00 00 00 61 00 62 01 0a 22 5c")
run(0 "^OpaqueDataMessage, 1 attachments\nattachment 5225 \\(AlgoEngineRequest\\), 7 bytes: \"a\\\\x00b\\\\x01\\\\n\\\\\"\\\\\\\\\"\nCreateCommonRequestMessage: no message\n"
    "^$" decode --message --hex "${WORK_DIR}/algo.hex")
run(0 "^$" "^$" encode --message AlgoEngineResponse --dictionary m_iRequestID=9 m_data=ok -o "${WORK_DIR}/algo2.bin")
run(0 "^dictionary, 2 entries\nattachment 5211 ORSM .*#0 m_iRequestID T 9\n.*attachment 5226 \\(AlgoEngineResponse\\), 2 bytes: \"ok\"\n"
    "^$" decode "${WORK_DIR}/algo2.bin")
run(0 "^$" "^$"
    encode --message OpaqueRequestMessage --hex -o "${WORK_DIR}/orqm.hex")
run(0 "^OpaqueDataMessage, 1 attachments\nattachment 5210 ORQM" "^$"
    decode --hex "${WORK_DIR}/orqm.hex")

# Byte for byte: a version request with its base block, in hex.
run(0 "^4e 56 4f 4d 02 00 5a 14 23 00 00 00 01 23 00 01\n00 00 00 4f 52 51 4d 00 54 01 00 54 08 00 00 00\n00 00 00 00 00 54 08 00 00 00 00 00 00 00 00 5c\n14 19 00 00 00 01 19 00 01 00 00 00 53 56 52 51\n00 53 01 00 01 53 02 00 01 61 53 01 00 01\n$"
    "^$" encode --message ServerVersionRequest --hex m_szApplicationId=a)

# Lists print nested and indented; the list's name goes to elements without one.
run(0 "attachment 5223 PMRQ \\(PushMGTRequestBlock\\), [0-9]+ bytes\n  object PMRQ: .*\n    #0 m_list I [0-9]+ bytes\n    object IMLT: .*\n      #0 nSize T 2\n.*      #9 m_userName S \"U\"\n.*      #12 impersonationData.m_szUserName S \"A\"\n      #13 impersonationData.m_szUserName S \"B\"\n"
    "^$" decode --message "${WORK_DIR}/PushMGTRequest.bin")

# Both 5212 and 5214: the version request wins. Only 5226: no message.
file(WRITE "${WORK_DIR}/two.hex"
  "4e 56 4f 4d 02 00 5e 14 0c 00 00 00 01 0c 00 03 00 00 00 49 55 52 51 00
   5c 14 0c 00 00 00 01 0c 00 01 00 00 00 53 56 52 51 00")
run(1 "object IURQ: protocol 1, total length 12, version 0x00000003\n$" "^nvtool: Buffer Underflow when processing item #0 \\(m_iExchangeId\\) in object 'IURQ'"
    decode --hex "${WORK_DIR}/two.hex")
file(WRITE "${WORK_DIR}/old.hex"
  "4e 56 4f 4d 02 00 5e 14 0c 00 00 00 01 0c 00 02 00 00 00 49 55 52 51 00
   5c 14 0c 00 00 00 01 0c 00 00 00 00 00 53 56 52 51 00")
run(0 "\nCreateCommonRequestMessage: ServerVersionRequest \\(saves back other bytes under 5210, 5212\\)\n"
    "^$" decode --hex "${WORK_DIR}/old.hex")

# Records recognised by the name in their header, nested or alone.
run(0 "^$" "^$" encode --as SVRS -o "${WORK_DIR}/svrs.bin" "m_engineInfos[0].m_engineType=3")
run(0 "^object SVRS: .*\n  #6 m_engineInfos E 1 objects.*\n  object EIB: .*\n    #0 m_engineType T 3\n" "^$"
    decode "${WORK_DIR}/svrs.bin")
run(0 "^$" "^$" encode --as IMLT -o "${WORK_DIR}/imlt.bin" "elements[0].m_mgtId=4")
run(0 "^object IMLT: .*\n.*#12 impersonationData.m_mgtId T 4\n" "^$"
    decode "${WORK_DIR}/imlt.bin")
file(WRITE "${WORK_DIR}/sirb.hex" "01 0c 00 01 00 00 00 53 49 52 42 00")
run(0 "^object SIRB: protocol 1, total length 12, version 0x00000001\n$" "^$"
    decode --hex "${WORK_DIR}/sirb.hex" )

# Refusals: each one line, the right status.
file(WRITE "${WORK_DIR}/zzz.hex" "01 0c 00 01 00 00 00 5a 5a 5a 00 00")
file(WRITE "${WORK_DIR}/cut.hex" "4e 56 4f 4d 01 00 5c 14 0c 00 00 00 01 0c")
run(1 "^$" "^nvtool: no known record is named \"ZZZ\"; known: CK" decode --hex "${WORK_DIR}/zzz.hex")
run(1 "^$" "^nvtool: capture: entry 0 \\(id 5212\\): length 12 but 2 bytes remain\n$"
    decode --message --hex "${WORK_DIR}/cut.hex")
run(1 "^$" "^nvtool: capture: starts with neither \"NVOM\" nor \"NVOD\"\n$"
    decode --message "${WORK_DIR}/svrs.bin")
run(1 "^$" "^nvtool: --message Nope: unknown message; known: OpaqueRequestMessage, " encode --message Nope)
run(1 "^$" "^nvtool: 'm_bogus' is no item of ConnectMessage; its items are m_ipAddress, m_bSupportAlgo\n$"
    encode --message ConnectMessage m_bogus=1)
run(1 "^$" "^nvtool: 'x' is no item of ServerInstanceIDRequestMessage; its items are none\n$"
    encode --message ServerInstanceIDRequestMessage x=1)
run(1 "^$" "^nvtool: m_list.elements\\[1000\\].m_mgtId: an index is at most 999\n$"
    encode --message PushMGTRequest "m_list.elements[1000].m_mgtId=1")
run(2 "^$" "^nvtool: encode: give one of --as NAME and --message NAME; see 'nvtool encode --help'\n$" encode m_x=1)
run(2 "^$" "^nvtool: decode: --as excludes --message; see 'nvtool decode --help'\n$" decode --as CK --message "${WORK_DIR}/svrs.bin")
# Input beyond what the format holds is refused, not read without end.
file(WRITE "${WORK_DIR}/big.txt" "")
foreach(i RANGE 16)
  file(READ "${WORK_DIR}/big.txt" big)
  file(APPEND "${WORK_DIR}/big.txt" "${big}x")
endforeach()
run(1 "^$" "^nvtool: the input holds more than 65535 bytes, the most a tagged object takes\n$"
    decode --as CK "${WORK_DIR}/big.txt")
run(1 "^$" "^nvtool: the input holds more than 65535 bytes, the most a tagged object takes\n$"
    decode "${WORK_DIR}/big.txt")
