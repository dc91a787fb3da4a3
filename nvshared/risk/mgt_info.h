// nv_ns::MGTInfo, a member, group and trader triple with the gateways
// assigned to it, and nv_ns::MGTUserRecord, that triple as a row of a
// user's table. The identity of both is the trader key, the three ids run
// together: member AB, group C, trader D equals member A, group BC, trader D.
//
// Values; no locks. One thread at a time per instance.
#ifndef NVSHARED_RISK_MGT_INFO_H_
#define NVSHARED_RISK_MGT_INFO_H_

#include <set>

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API MGTInfo {
 public:
  // The limits of the MGT file: 11, 3 and 11 characters, 25 together, each
  // with a NUL.
  char m_traderKey[26] = {};
  char m_memberId[12] = {};
  char m_groupId[4] = {};
  char m_mgtTraderId[12] = {};
  std::set<int> m_assignedGateways;

  MGTInfo() = default;
  // As Set, with no gateways.
  MGTInfo(const char* member, const char* group, const char* trader);
  MGTInfo(const MGTInfo&) = default;
  // Takes the triple through Set and replaces the gateways.
  MGTInfo& operator=(const MGTInfo& other);

  // Stores the three ids and their concatenation as the trader key. The
  // gateways stay as they are. An id longer than its field is cut to it
  // (and a null one taken as empty) rather than written past the record.
  void Set(const char* member, const char* group, const char* trader);
  // Empties the ids, the key and the gateways.
  void Clear();

  // Pointers into the record, valid while it lives and is not changed.
  const char* GetTraderId() const { return m_traderKey; }
  const char* GetMGTMemberId() const { return m_memberId; }
  const char* GetMGTGroupId() const { return m_groupId; }
  const char* GetMGTTraderId() const { return m_mgtTraderId; }

  // On the trader key alone, byte for byte.
  bool operator==(const MGTInfo& other) const;
  bool operator<(const MGTInfo& other) const;

  void AddAssignedGateway(int gateway) { m_assignedGateways.insert(gateway); }
  bool IsAssignedGateway(int gateway) const {
    return m_assignedGateways.count(gateway) != 0;
  }
  const std::set<int>& GetAssignedGateways() const {
    return m_assignedGateways;
  }
  void SetAssignedGateways(const std::set<int>& gateways) {
    m_assignedGateways = gateways;
  }
  void ClearAssignedGateways() { m_assignedGateways.clear(); }
};

class NVSHARED_API MGTUserRecord {
 public:
  // True when the record was built from a MGTInfo. A default-built record
  // holds false here (never garbage), though callers should not rely on it.
  bool m_fromMgtInfo = false;
  MGTInfo m_mgt;

  MGTUserRecord() = default;
  explicit MGTUserRecord(const MGTInfo& mgt);
  MGTUserRecord(const MGTUserRecord&) = default;
  MGTUserRecord& operator=(const MGTUserRecord& other);

  // On the trader key of m_mgt; the flag plays no part.
  bool operator==(const MGTUserRecord& other) const {
    return m_mgt == other.m_mgt;
  }
  bool operator<(const MGTUserRecord& other) const {
    return m_mgt < other.m_mgt;
  }
};

}  // namespace nv_ns

#endif  // NVSHARED_RISK_MGT_INFO_H_
