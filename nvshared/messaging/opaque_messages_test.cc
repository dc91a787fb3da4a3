#include "nvshared/messaging/opaque_messages.h"

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/messaging/internal_messages.h"
#include "nvshared/testing/hex_bytes.h"

namespace nv_opaque_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

// Writes `block` and compares with `golden`; reads `golden` into a fresh
// block, lets `check` look at it, and (if `rewrites`) writes that again.
template <typename Block>
void ExpectGolden(const std::string& golden, Block& block,
                  const std::function<void(const Block&)>& check,
                  bool rewrites = true) {
  std::string written(golden.size() + 64, '\0');
  written.resize(block.WriteTo(written.data(), written.size()));
  EXPECT_EQ(ToHex(written), ToHex(golden));
  EXPECT_EQ(block.Measure() + 12, golden.size());

  Block read;
  EXPECT_EQ(read.ReadFrom(golden.data(), golden.size()), golden.size());
  check(read);
  if (!rewrites) return;
  std::string again(golden.size() + 64, '\0');
  again.resize(read.WriteTo(again.data(), again.size()));
  EXPECT_EQ(ToHex(again), ToHex(golden));
}

TEST(OpaqueBlocksTest, BaseBlocksMatchHandBuiltBytes) {
  OpaqueRequestMessageBlock request;
  request.m_bIsSubscription = true;
  request.m_tSentTickCount = 1;
  request.m_tReceivedTickCount = 0x0102030405060708;
  ExpectGolden<OpaqueRequestMessageBlock>(
      HexBytes("01 23 00 01 00 00 00 'O' 'R' 'Q' 'M' 00 | 54 01 01"
               "| 54 08 01 00 00 00 00 00 00 00"
               "| 54 08 08 07 06 05 04 03 02 01"),
      request, [](const OpaqueRequestMessageBlock& b) {
        EXPECT_TRUE(b.m_bIsSubscription);
        EXPECT_EQ(b.m_tSentTickCount, 1);
        EXPECT_EQ(b.m_tReceivedTickCount, 0x0102030405060708);
      });

  OpaqueResponseMessageBlock response;
  response.m_iRequestID = 7;
  response.m_tSentTickCount = -2;
  ExpectGolden<OpaqueResponseMessageBlock>(
      HexBytes("01 26 00 01 00 00 00 'O' 'R' 'S' 'M' 00 | 54 04 07 00 00 00"
               "| 54 08 fe ff ff ff ff ff ff ff"
               "| 54 08 00 00 00 00 00 00 00 00"),
      response, [](const OpaqueResponseMessageBlock& b) {
        EXPECT_EQ(b.m_iRequestID, 7);
        EXPECT_EQ(b.m_tSentTickCount, -2);
      });
}

TEST(OpaqueBlocksTest, ServerVersionBlocksMatchHandBuiltBytes) {
  ServerVersionRequestBlock request;
  request.m_szUniversalLoginName = "u";
  request.m_szApplicationId = "ap";
  ExpectGolden<ServerVersionRequestBlock>(
      HexBytes("01 1b 00 01 00 00 00 'S' 'V' 'R' 'Q' 00 | 53 02 00 01 'u'"
               "| 53 03 00 01 'a' 'p' | 53 01 00 01"),
      request, [](const ServerVersionRequestBlock& b) {
        EXPECT_EQ(b.m_szUniversalLoginName, "u");
        EXPECT_EQ(b.m_szApplicationId, "ap");
        EXPECT_EQ(b.m_szClientInfo, "");
      });

  ServerVersionResponseBlock response;
  response.m_iExchangeID = 3;
  response.m_serverId = "s";
  response.m_serverVersion = "v";
  response.m_engineType = static_cast<EngineType>(2);
  response.m_serverInstanceId = "i";
  response.m_engineInfos.resize(1);
  response.m_engineInfos[0].m_engineType = static_cast<EngineType>(5);
  response.m_engineInfos[0].m_engineVersion = "e";
  ExpectGolden<ServerVersionResponseBlock>(
      HexBytes("01 47 00 02 00 00 00 'S' 'V' 'R' 'S' 00 | 54 04 03 00 00 00"
               "| 53 02 00 01 's' | 53 02 00 01 'v' | 53 01 00 01"
               "| 54 04 02 00 00 00 | 53 02 00 01 'i'"
               "| 45 1b 00 01 00"
               "|   01 17 00 01 00 00 00 'E' 'I' 'B' 00 00"
               "|   54 04 05 00 00 00 | 53 02 00 01 'e'"),
      response, [](const ServerVersionResponseBlock& b) {
        EXPECT_EQ(b.m_serverInstanceId, "i");
        ASSERT_EQ(b.m_engineInfos.size(), 1u);
        EXPECT_EQ(b.m_engineInfos[0].m_engineType, 5);
        EXPECT_EQ(b.m_engineInfos[0].m_engineVersion, "e");
      });
}

TEST(OpaqueBlocksTest, VersionOneServerResponseEndsAfterEngineType) {
  const std::string v1 = HexBytes(
      "01 26 00 01 00 00 00 'S' 'V' 'R' 'S' 00 | 54 04 03 00 00 00"
      "| 53 02 00 01 's' | 53 02 00 01 'v' | 53 01 00 01 | 54 04 02 00 00 00");
  ServerVersionResponseBlock block;
  block.m_serverInstanceId = "kept";
  EXPECT_EQ(block.ReadFrom(v1.data(), v1.size()), v1.size());
  EXPECT_EQ(block.m_iExchangeID, 3);
  EXPECT_EQ(block.m_serverVersion, "v");
  EXPECT_EQ(block.m_engineType, 2);
  // The items a version-1 writer lacked keep what they held.
  EXPECT_EQ(block.m_serverInstanceId, "kept");
  EXPECT_TRUE(block.m_engineInfos.empty());
  EXPECT_EQ(ServerVersionResponse().m_block.m_serverInstanceId, "");
}

TEST(OpaqueBlocksTest, ImpersonationAndExchangeBlocksMatchHandBuiltBytes) {
  ImpersonateUserRequestBlock impersonate;
  impersonate.m_iExchangeId = 0x10;
  impersonate.m_szMember = "M";
  impersonate.m_szGroup = "G";
  impersonate.m_szTrader = "T";
  impersonate.m_encryptedPassword = "pw";
  impersonate.m_iBrokerId = 2;
  impersonate.m_iCompanyId = 3;
  impersonate.m_bCanViewSingleBrokerDataOnly = true;
  ExpectGolden<ImpersonateUserRequestBlock>(
      HexBytes("01 39 00 03 00 00 00 'I' 'U' 'R' 'Q' 00 | 54 04 10 00 00 00"
               "| 53 02 00 01 'M' | 53 02 00 01 'G' | 53 02 00 01 'T'"
               "| 53 03 00 01 'p' 'w' | 54 04 02 00 00 00 | 54 04 03 00 00 00"
               "| 54 01 01 | 54 01 00"),
      impersonate, [](const ImpersonateUserRequestBlock& b) {
        EXPECT_EQ(b.m_encryptedPassword, "pw");
        EXPECT_EQ(b.m_iCompanyId, 3);
        EXPECT_TRUE(b.m_bCanViewSingleBrokerDataOnly);
        EXPECT_FALSE(b.m_bCanViewSingleCompanyDataOnly);
      });

  // The empty blocks are bare headers with their own versions.
  ImpersonateUserResponseBlock impersonated;
  ExpectGolden<ImpersonateUserResponseBlock>(
      HexBytes("01 0c 00 01 00 00 00 'I' 'U' 'R' 'S' 00"), impersonated,
      [](const ImpersonateUserResponseBlock&) {});
  SupportedExchangeRequestBlock exchanges;
  ExpectGolden<SupportedExchangeRequestBlock>(
      HexBytes("01 0c 00 0a 00 00 00 'S' 'E' 'R' 'Q' 00"), exchanges,
      [](const SupportedExchangeRequestBlock&) {});

  SupportedExchangeResponseBlock supported;
  supported.m_nSyntheticExchangeID = 9;
  supported.m_aExchangeIDsOld = {1};
  supported.m_aExchangeIDs = {1, 2};
  supported.m_nServerSupportedFeatures = 4;
  supported.m_aMarketIDs = {7};
  ExpectGolden<SupportedExchangeResponseBlock>(
      HexBytes("01 40 00 05 00 00 00 'S' 'E' 'R' 'S' 00 | 54 04 09 00 00 00"
               "| 56 05 00 04 01 00 00 00 | 56 01 00 04"
               "| 56 09 00 04 01 00 00 00 02 00 00 00 | 56 01 00 04"
               "| 54 04 04 00 00 00 | 56 05 00 04 07 00 00 00 | 56 01 00 04"),
      supported, [](const SupportedExchangeResponseBlock& b) {
        EXPECT_EQ(b.m_aExchangeIDsOld, std::vector<int>{1});
        EXPECT_EQ(b.m_aExchangeIDs, (std::vector<int>{1, 2}));
        EXPECT_EQ(b.m_nServerSupportedFeatures, 4);
        EXPECT_EQ(b.m_aMarketIDs, std::vector<int>{7});
      });
}

// Two impersonations: the first without a user name of its own, the second
// with one.
const char kPushTwo[] =
    "01 9f 00 03 00 00 00 'P' 'M' 'R' 'Q' 00 | 49 8d 00"
    "| 01 8d 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 02 00 00 00"
    "| 54 04 07 00 00 00 | 53 03 00 01 'M' '1' | 53 02 00 01 'G'"
    "| 53 02 00 01 'T'"
    "| 54 04 ff ff ff ff | 53 01 00 01 | 53 01 00 01 | 53 01 00 01"
    "| 53 02 00 01 'U'"
    "| 53 02 00 01 'p' | 53 01 00 01"
    "| 53 01 00 01 | 53 02 00 01 'V'"
    "| 54 04 01 00 00 00 | 54 04 02 00 00 00 | 54 01 01 | 54 01 00"
    "| 54 04 05 00 00 00"
    "| 54 04 02 01 00 00 | 54 04 00 00 00 00 | 54 01 00 | 54 01 01"
    "| 54 04 ff ff ff ff"
    "| 54 04 09 00 00 00 | 54 04 00 00 00 00"
    "| 54 01 01";

PushMGTRequestBlock PushTwo() {
  PushMGTRequestBlock block;
  block.m_list.m_userName = "U";
  ImpersonationData first;
  first.m_iBrokerId = 1;
  first.m_iExchangeId = 7;
  first.m_szMember = "M1";
  first.m_szGroup = "G";
  first.m_szTrader = "T";
  first.m_szEncryptedPassword = "p";
  first.m_companyId = 2;
  first.m_canViewSingleCompanyDataOnly = false;
  first.m_mgtId = 5;
  first.m_nCaretakerID = 9;
  ImpersonationData second;
  second.m_iBrokerId = 0x0102;
  second.m_szUserName = "V";
  second.m_canViewSingleBrokerDataOnly = false;
  block.m_list.push_back(first);
  block.m_list.push_back(second);
  block.m_bDownloadAllOrders = true;
  return block;
}

TEST(OpaqueBlocksTest, PushMGTBlocksMatchHandBuiltBytes) {
  PushMGTRequestBlock push = PushTwo();
  ExpectGolden<PushMGTRequestBlock>(
      HexBytes(kPushTwo), push,
      [](const PushMGTRequestBlock& b) {
        ASSERT_EQ(b.m_list.size(), 2u);
        const ImpersonationData& first = b.m_list.front();
        const ImpersonationData& second = b.m_list.back();
        EXPECT_EQ(first.m_iBrokerId, 1);
        EXPECT_EQ(first.m_iExchangeId, 7);
        EXPECT_EQ(first.m_szMember, "M1");
        EXPECT_EQ(first.m_szEncryptedPassword, "p");
        EXPECT_EQ(first.m_szUserName, "U");  // the list's name
        EXPECT_EQ(first.m_companyId, 2);
        EXPECT_TRUE(first.m_canViewSingleBrokerDataOnly);
        EXPECT_FALSE(first.m_canViewSingleCompanyDataOnly);
        EXPECT_EQ(first.m_mgtId, 5);
        EXPECT_EQ(first.m_nCaretakerID, 9u);
        EXPECT_EQ(second.m_iBrokerId, 0x0102);
        EXPECT_EQ(second.m_iExchangeId, -1);
        EXPECT_EQ(second.m_szUserName, "V");  // its own name
        EXPECT_FALSE(second.m_canViewSingleBrokerDataOnly);
        EXPECT_TRUE(b.m_bDownloadAllOrders);
      },
      /*rewrites=*/false);  // the first element took the list's name

  PushMGTResponseBlock response;
  response.m_strResponse = "ok";
  ExpectGolden<PushMGTResponseBlock>(
      HexBytes("01 12 00 01 00 00 00 'P' 'M' 'R' 'S' 00 | 53 03 00 01 'o' 'k'"),
      response,
      [](const PushMGTResponseBlock& b) { EXPECT_EQ(b.m_strResponse, "ok"); });
}

// --- Messages over both carriers ------------------------------------------

TEST(OpaqueMessagesTest, SaveToMessageStoresBaseThenOwnBlock) {
  PushMGTRequest request;
  request.m_baseBlock.m_bIsSubscription = true;
  request.m_block = PushTwo();
  OpaqueDataMessage message;
  request.SaveToMessage(message);
  ASSERT_EQ(message.AgileData().size(), 2u);
  EXPECT_EQ(message.AgileData()[0].first, 5210);
  EXPECT_EQ(message.AgileData()[1].first, 5223);
  EXPECT_EQ(ToHex(message.AgileData()[1].second), ToHex(HexBytes(kPushTwo)));

  std::unique_ptr<OpaqueRequestMessage> built(
      CreateCommonRequestMessage(message));
  ASSERT_NE(built, nullptr);
  EXPECT_EQ(built->GetBlockId(), 5223);
  auto* push = dynamic_cast<PushMGTRequest*>(built.get());
  ASSERT_NE(push, nullptr);
  EXPECT_TRUE(push->m_baseBlock.m_bIsSubscription);
  EXPECT_EQ(push->m_block.m_list.size(), 2u);

  dictionary entries;
  request.SaveToDictionary(entries);
  ASSERT_EQ(entries.size(), 2u);
  const nv_ns::DataBuffer& block = *entries.at(5223);
  EXPECT_EQ(ToHex(std::string(block.m_pData, block.m_size)),
            ToHex(HexBytes(kPushTwo)));
  built.reset(CreateCommonRequestMessage(entries));
  ASSERT_NE(built, nullptr);
  EXPECT_EQ(built->GetBlockId(), 5223);
}

// Which message each factory builds from a carrier holding `ids` (bare
// blocks of the right kind are stored under each).
struct FactoryCase {
  std::vector<short> ids;
  short request;  // expected GetBlockId(), 0 for null
  short response;
  short internal;
};

template <typename Block>
void StoreDefault(OpaqueDataMessage& message) {
  Block block;
  nv_ns::AgileStreamable::StoreAgile(
      message, block, static_cast<nv_ns::AttachmentId>(Block::kBlockId));
}

TEST(OpaqueMessagesTest, FactoriesTestIdsInTheirOrder) {
  const FactoryCase cases[] = {
      {{}, 0, 0, 0},
      {{5210, 5211, 5225, 5226}, 0, 0, 0},
      {{5214, 5212}, 5212, 0, 0},
      {{5223, 5216}, 5216, 0, 0},
      {{5223, 5214}, 5214, 0, 0},
      {{5223}, 5223, 0, 0},
      {{5224, 5213, 5215}, 0, 5213, 0},
      {{5224, 5217}, 0, 5217, 0},
      {{5224, 5215}, 0, 5215, 0},
      {{5224}, 0, 5224, 0},
      {{5228, 5227, 5222}, 0, 0, 5222},
      {{5228, 5227}, 0, 0, 5227},
      {{5221, 5220, 5219, 5218}, 0, 0, 5218},
      {{5228}, 0, 0, 5228},
      {{5226}, 0, 0, 0},
  };
  for (const FactoryCase& c : cases) {
    std::string trace;
    for (short id : c.ids) trace += std::to_string(id) + " ";
    SCOPED_TRACE(trace);
    // Every block is stored by its own class so that each read succeeds.
    OpaqueDataMessage message;
    dictionary entries;
    for (short id : c.ids) {
      OpaqueDataMessage one;
      switch (id) {
        case 5212:
          ServerVersionRequest().SaveToMessage(one);
          break;
        case 5213:
          ServerVersionResponse().SaveToMessage(one);
          break;
        case 5214:
          ImpersonateUserRequest().SaveToMessage(one);
          break;
        case 5215:
          ImpersonateUserResponse().SaveToMessage(one);
          break;
        case 5216:
          SupportedExchangeRequest().SaveToMessage(one);
          break;
        case 5217:
          SupportedExchangeResponse().SaveToMessage(one);
          break;
        case 5223:
          PushMGTRequest().SaveToMessage(one);
          break;
        case 5224:
          PushMGTResponse().SaveToMessage(one);
          break;
        case 5218:
          StoreDefault<ConnectMessageBlock>(one);
          break;
        case 5219:
          StoreDefault<ConnectResponseMessageBlock>(one);
          break;
        case 5220:
          StoreDefault<DisconnectMessageBlock>(one);
          break;
        case 5221:
          StoreDefault<StringMessageBlock>(one);
          break;
        case 5222:
          StoreDefault<CancelSubscriptionMessageBlock>(one);
          break;
        case 5227:
          StoreDefault<ServerInstanceIDRequestMessageBlock>(one);
          break;
        case 5228:
          StoreDefault<ServerInstanceIDResponseBlock>(one);
          break;
        default:
          one.StoreAgileData<std::string>(id, "raw");
      }
      const std::string* bytes = one.FindAgileData(id);
      message.StoreAgileData<std::string>(id, *bytes);
      entries[id] = boost::shared_ptr<const nv_ns::DataBuffer>(
          new nv_ns::DataBuffer(bytes->data(), bytes->size()));
    }
    auto id_of = [](const auto* built) -> short {
      std::unique_ptr<const std::remove_pointer_t<decltype(built)>> owned(
          built);
      return owned ? owned->GetBlockId() : 0;
    };
    EXPECT_EQ(id_of(CreateCommonRequestMessage(message)), c.request);
    EXPECT_EQ(id_of(CreateCommonRequestMessage(entries)), c.request);
    EXPECT_EQ(id_of(CreateCommonResponseMessage(message)), c.response);
    EXPECT_EQ(id_of(CreateCommonResponseMessage(entries)), c.response);
    EXPECT_EQ(id_of(CreateInternalMessage(message)), c.internal);
    EXPECT_EQ(id_of(CreateInternalMessage(entries)), c.internal);
  }
}

TEST(OpaqueMessagesTest, MissingBlocksKeepTheirDefaults) {
  OpaqueDataMessage message;
  PushMGTResponse().SaveToMessage(message);
  // Without 5211 the response keeps request id -1.
  OpaqueDataMessage without_base;
  without_base.StoreAgileData<std::string>(5224, *message.FindAgileData(5224));
  std::unique_ptr<OpaqueResponseMessage> built(
      CreateCommonResponseMessage(without_base));
  ASSERT_NE(built, nullptr);
  EXPECT_EQ(built->m_baseBlock.m_iRequestID, -1);
  dictionary entries;
  entries[5224] = boost::shared_ptr<const nv_ns::DataBuffer>(
      new nv_ns::DataBuffer(message.FindAgileData(5224)->data(),
                            message.FindAgileData(5224)->size()));
  built.reset(CreateCommonResponseMessage(entries));
  ASSERT_NE(built, nullptr);
  EXPECT_EQ(built->m_baseBlock.m_iRequestID, -1);
}

TEST(OpaqueMessagesTest, MalformedBlockRaisesFromTheFactory) {
  const std::string cut = HexBytes("01 23 00 01 00 00 00 'S' 'V' 'R' 'Q' 00");
  OpaqueDataMessage message;
  message.StoreAgileData<std::string>(5212, cut);
  EXPECT_THROW(CreateCommonRequestMessage(message), nv_ns::StreamingException);
  message.StoreAgileData<std::string>(5212, "SVRQ");
  EXPECT_THROW(CreateCommonRequestMessage(message), nv_ns::StreamingException);
  dictionary entries;
  entries[5213] =
      boost::shared_ptr<const nv_ns::DataBuffer>(new nv_ns::DataBuffer());
  EXPECT_THROW(CreateCommonResponseMessage(entries), nv_ns::StreamingException);
  // A base block of the wrong kind is as malformed as the message's own.
  OpaqueDataMessage wrong_base;
  ServerVersionRequest().SaveToMessage(wrong_base);
  wrong_base.StoreAgileData<std::string>(5210, *wrong_base.FindAgileData(5212));
  EXPECT_THROW(CreateCommonRequestMessage(wrong_base),
               nv_ns::StreamingException);
}

TEST(OpaqueMessagesTest, AlgoEngineCarriesItsBytesAsTheyStand) {
  // Longer than a DataBuffer record, with NULs: the bytes land in the
  // buffer's own array, whole.
  const std::string bytes("algo\0engine parameters, 40 bytes or so..", 41);
  AlgoEngineRequest request;
  request.m_baseBlock.m_tSentTickCount = 11;
  request.m_data = bytes;
  dictionary entries;
  entries[5225] =
      boost::shared_ptr<const nv_ns::DataBuffer>(new nv_ns::DataBuffer(3));
  request.SaveToDictionary(entries);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(std::string(entries.at(5225)->m_pData, entries.at(5225)->m_size),
            bytes);
  AlgoEngineRequest from_dictionary(entries);
  EXPECT_EQ(from_dictionary.m_data, bytes);
  EXPECT_EQ(from_dictionary.m_baseBlock.m_tSentTickCount, 11);
  EXPECT_EQ(from_dictionary.GetBlockId(), 5225);
  // The factories never build it.
  EXPECT_EQ(CreateCommonRequestMessage(entries), nullptr);

  AlgoEngineResponse response;
  response.m_baseBlock.m_iRequestID = 4;
  response.m_data = bytes;
  OpaqueDataMessage message;
  response.SaveToMessage(message);
  EXPECT_EQ(*message.FindAgileData(5226), bytes);
  AlgoEngineResponse from_message(message);
  EXPECT_EQ(from_message.m_data, bytes);
  EXPECT_EQ(from_message.m_baseBlock.m_iRequestID, 4);
  EXPECT_EQ(CreateCommonResponseMessage(message), nullptr);

  AlgoEngineResponse empty;
  dictionary empty_entries;
  empty.SaveToDictionary(empty_entries);
  EXPECT_EQ(empty_entries.at(5226)->m_size, 0u);
  EXPECT_EQ(AlgoEngineResponse(empty_entries).m_data, "");
}

}  // namespace
}  // namespace nv_opaque_ns
