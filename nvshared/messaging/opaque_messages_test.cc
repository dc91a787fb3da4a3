#include "nvshared/messaging/opaque_messages.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/messaging/internal_messages.h"
#include "nvshared/testing/hex_bytes.h"

namespace nv_opaque_ns {
namespace {

using nvshared::testing::HexBytes;

// A block of each id as an older writer's bare header (version 0), which
// every reader accepts with all items left at their defaults.
std::string BareBlock(short id) {
  static const std::map<short, const char*> kNames = {
      {5210, "ORQM"}, {5211, "ORSM"}, {5212, "SVRQ"}, {5213, "SVRS"},
      {5214, "IURQ"}, {5215, "IURS"}, {5216, "SERQ"}, {5217, "SERS"},
      {5218, "CMSB"}, {5219, "CRMB"}, {5220, "DMSB"}, {5221, "SMB"},
      {5222, "CSMB"}, {5223, "PMRQ"}, {5224, "PMRS"}, {5227, "SIRB"},
      {5228, "SIRS"}};
  const auto it = kNames.find(id);
  std::string name = it == kNames.end() ? "raw" : it->second;
  name.resize(5, '\0');
  return HexBytes("01 0c 00 00 00 00 00") + name;
}

boost::shared_ptr<const nv_ns::DataBuffer> Buffer(const std::string& bytes) {
  return boost::shared_ptr<const nv_ns::DataBuffer>(
      new nv_ns::DataBuffer(bytes.data(), bytes.size()));
}

// The id of the block built, 0 for none. No row carries 5211, so every
// response built keeps request id -1 (kept on purpose).
template <typename T>
short IdOf(T* built) {
  std::unique_ptr<T> owned(built);
  if (!owned) return 0;
  if constexpr (requires { owned->m_baseBlock.m_iRequestID; }) {
    EXPECT_EQ(owned->m_baseBlock.m_iRequestID, -1);
  }
  return owned->GetBlockId();
}

TEST(OpaqueMessagesTest, FactoriesBuildTheFirstIdInTheirOrder) {
  struct Case {
    std::vector<short> ids;
    short request, response, internal;  // GetBlockId(), 0 for null
  };
  const Case cases[] = {
      {{}, 0, 0, 0},
      {{5210, 5211, 5225, 5226}, 0, 0, 0},
      {{5226}, 0, 0, 0},
      {{5214, 5212}, 5212, 0, 0},
      {{5223, 5216, 5214}, 5214, 0, 0},
      {{5223}, 5223, 0, 0},
      {{5224, 5217, 5215, 5213}, 0, 5213, 0},
      {{5224, 5217, 5215}, 0, 5215, 0},
      {{5224}, 0, 5224, 0},
      {{5228, 5227, 5221, 5220, 5219, 5218}, 0, 0, 5218},
      {{5228, 5227, 5222}, 0, 0, 5222},
      {{5228, 5227}, 0, 0, 5227},
      {{5228, 5212, 5213}, 5212, 5213, 5228},
  };
  for (const Case& c : cases) {
    std::string trace;
    for (short id : c.ids) trace += std::to_string(id) + " ";
    SCOPED_TRACE(trace);
    OpaqueDataMessage message;
    dictionary entries;
    for (short id : c.ids) {
      message.StoreAgileData<std::string>(id, BareBlock(id));
      entries[id] = Buffer(BareBlock(id));
    }
    EXPECT_EQ(IdOf(CreateCommonRequestMessage(message)), c.request);
    EXPECT_EQ(IdOf(CreateCommonRequestMessage(entries)), c.request);
    EXPECT_EQ(IdOf(CreateCommonResponseMessage(message)), c.response);
    EXPECT_EQ(IdOf(CreateCommonResponseMessage(entries)), c.response);
    EXPECT_EQ(IdOf(CreateInternalMessage(message)), c.internal);
    EXPECT_EQ(IdOf(CreateInternalMessage(entries)), c.internal);
  }
}

TEST(OpaqueMessagesTest, SavesBaseAndOwnBlockAndReadsThemBack) {
  PushMGTRequest request;
  request.m_baseBlock.m_bIsSubscription = true;
  request.m_block.m_list.emplace_back().m_szMember = "M";
  OpaqueDataMessage message;
  request.SaveToMessage(message);
  ASSERT_EQ(message.AgileData().size(), 2u);
  EXPECT_EQ(message.AgileData()[0].first, 5210);
  EXPECT_EQ(message.AgileData()[1].first, 5223);
  dictionary entries;
  request.SaveToDictionary(entries);
  EXPECT_EQ(entries.size(), 2u);

  for (OpaqueRequestMessage* raw : {CreateCommonRequestMessage(message),
                                    CreateCommonRequestMessage(entries)}) {
    std::unique_ptr<OpaqueRequestMessage> built(raw);
    auto* push = dynamic_cast<PushMGTRequest*>(built.get());
    ASSERT_NE(push, nullptr);
    EXPECT_TRUE(push->m_baseBlock.m_bIsSubscription);
    ASSERT_EQ(push->m_block.m_list.size(), 1u);
    EXPECT_EQ(push->m_block.m_list.front().m_szMember, "M");
  }
}

TEST(OpaqueMessagesTest, AbsentBlocksKeepDefaultsMalformedOnesRaise) {
  // Built from a message without its block, the block keeps its defaults.
  EXPECT_EQ(ConnectResponseMessage(OpaqueDataMessage()).GetBlock().m_iRequestID,
            -1);

  // A block cut short, an empty buffer, a base of another kind.
  OpaqueDataMessage message;
  const std::string cut = HexBytes("01 23 00 01 00 00 00 'S' 'V' 'R' 'Q' 00");
  message.StoreAgileData<std::string>(5212, cut);
  EXPECT_THROW(CreateCommonRequestMessage(message), nv_ns::StreamingException);
  message.StoreAgileData<std::string>(5221, "");
  EXPECT_THROW(CreateInternalMessage(message), nv_ns::StreamingException);
  dictionary entries = {{5213, Buffer(BareBlock(5213))},
                        {5211, Buffer(BareBlock(5210))}};
  EXPECT_THROW(CreateCommonResponseMessage(entries), nv_ns::StreamingException);
}

TEST(OpaqueMessagesTest, AlgoEngineCarriesItsBytesAsTheyStand) {
  // Longer than a DataBuffer record, with a NUL: the bytes land in the
  // buffer's own array, whole, replacing what the entry held.
  const std::string bytes("algo\0engine parameters, 40 bytes or so..", 41);
  AlgoEngineRequest request;
  request.m_baseBlock.m_tSentTickCount = 11;
  request.m_data = bytes;
  dictionary entries = {{5225, Buffer("old")}};
  request.SaveToDictionary(entries);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(std::string(entries.at(5225)->m_pData, entries.at(5225)->m_size),
            bytes);
  AlgoEngineRequest from_dictionary(entries);
  EXPECT_EQ(from_dictionary.m_data, bytes);
  EXPECT_EQ(from_dictionary.m_baseBlock.m_tSentTickCount, 11);

  AlgoEngineResponse response;
  response.m_data = bytes;
  OpaqueDataMessage message;
  response.SaveToMessage(message);
  EXPECT_EQ(*message.FindAgileData(5226), bytes);
  EXPECT_EQ(AlgoEngineResponse(message).m_data, bytes);
  EXPECT_EQ(AlgoEngineResponse(message).GetBlockId(), 5226);
}

}  // namespace
}  // namespace nv_opaque_ns
