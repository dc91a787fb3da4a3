// nv_opaque_ns::ImpersonationData, one user that a front end asks to act
// for, and ImpersonationDataStreamableList, a list of them with a default
// user name, written as one tagged object ("IMLT", version 9). The list owns
// its elements. Values; one thread at a time per instance.
#ifndef NVSHARED_MESSAGING_IMPERSONATION_DATA_H_
#define NVSHARED_MESSAGING_IMPERSONATION_DATA_H_

#include <list>
#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/comparable.h"
#include "nvshared/messaging/xstreamable.h"

namespace nv_opaque_ns {

class NVSHARED_API ImpersonationData
    : public nv_ns::Comparable<ImpersonationData> {
 public:
  unsigned short m_iBrokerId = 0;
  int m_iExchangeId = -1;
  std::string m_szMember;
  std::string m_szGroup;
  std::string m_szTrader;
  // Carried as the caller gives it; nothing here enciphers or deciphers it.
  std::string m_szEncryptedPassword;
  std::string m_szUserName;
  int m_companyId = 0;
  bool m_canViewSingleBrokerDataOnly = true;
  bool m_canViewSingleCompanyDataOnly = true;
  int m_mgtId = -1;
  unsigned int m_nCaretakerID = 0;

  // Broker and exchange (as a pair, broker first), then member, group,
  // trader and user name by strcmp, then company, the two view flags, the
  // MGT id and the caretaker. The password takes no part. For company, MGT
  // id and caretaker the result is 1 when this record's value is the less
  // and 0 otherwise, never -1.
  int Compare(const ImpersonationData& other) const override;
  ~ImpersonationData() override;
};

class NVSHARED_API ImpersonationDataStreamableList
    : public nv_ns::XStreamable,
      public std::list<ImpersonationData> {
 public:
  static constexpr char kName[kNameLength] = {'I', 'M', 'L', 'T', 0};
  static constexpr std::uint32_t kVersion = 9;

  // The user name of elements that come without their own.
  std::string m_userName;

  ImpersonationDataStreamableList() : XStreamable(kName, kVersion) {}
  ImpersonationDataStreamableList(const ImpersonationDataStreamableList&) =
      default;
  ImpersonationDataStreamableList& operator=(
      const ImpersonationDataStreamableList&) = default;
  virtual ~ImpersonationDataStreamableList() = default;

  // Items in layers, each a pass over the list: the count; exchange,
  // member, group and trader of each element; the list's user name; each
  // password; each user name; broker, company, the two flags and MGT id of
  // each; each caretaker. Reading appends to what the list holds, and the
  // later layers walk the whole list from its start.
  void Transfer() override;
  // 10 plus the user name's length plus, per element, 56 and the lengths of
  // its five strings.
  std::uint64_t Measure() const override;
};

}  // namespace nv_opaque_ns

#endif  // NVSHARED_MESSAGING_IMPERSONATION_DATA_H_
