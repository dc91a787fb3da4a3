// UDPKeyValue: one typed parameter of a custom price model, as the model
// declares it (type word, key, display name, tooltip, constraints) with its
// current value as text. Every value is text in memory, whatever its type; a
// date is held in the user's locale form and travels as YYYY-MM-DD.
//
// A tagged object ("UDPKe", version 0x08000002). A plain value: copies are
// independent. One thread at a time per instance; the table of type words is
// constant.
#ifndef NVSHARED_UDP_UDP_KEY_VALUE_H_
#define NVSHARED_UDP_UDP_KEY_VALUE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/messaging/xstreamable.h"

// The streamable base of key-value parameters.
class NVSHARED_API UDPKeyValueBase : public nv_ns::XStreamable {
 public:
  static constexpr char kName[kNameLength] = {'U', 'D', 'P', 'K', 'e'};
  static constexpr std::uint32_t kVersion = 0x08000002;

 protected:
  UDPKeyValueBase() : XStreamable(kName, kVersion) {}
  UDPKeyValueBase(const UDPKeyValueBase&) = default;
  UDPKeyValueBase& operator=(const UDPKeyValueBase&) = default;
  ~UDPKeyValueBase() = default;
};

class NVSHARED_API UDPKeyValue : public UDPKeyValueBase {
 public:
  // The type word as a number; 0 for a word outside the table.
  enum UDPType : std::int32_t {
    eNone = 0,
    eBool = 1,    // "bool"
    eShort = 2,   // "short"
    eInt = 3,     // "int"
    eDouble = 4,  // "double"
    eDate = 5,    // "date"
    eString = 6,  // "string"
    eEnum = 7,    // "enum"
  };

  // The wire form of a date value, and its length.
  static constexpr const char* kWireDateFormat = "%Y-%m-%d";
  static constexpr std::size_t kWireDateLength = 10;  // "YYYY-MM-DD"

  UDPKeyValue() = default;
  // Looks the type word up exactly (case sensitive) and splits the
  // constraints at ";" into descriptors. A trailing ";" gives one more,
  // empty, descriptor; empty constraints give none.
  UDPKeyValue(const std::string& type, const std::string& key,
              const std::string& value, const std::string& dispName,
              const std::string& tooltip, const std::string& constraints);
  UDPKeyValue(const UDPKeyValue&) = default;
  UDPKeyValue& operator=(const UDPKeyValue&) = default;
  virtual ~UDPKeyValue() = default;

  const UDPType& GetTypeEnum() const { return m_eType; }
  const std::string& GetType() const { return m_sType; }
  const std::string& GetKey() const { return m_sKey; }
  const std::string& GetValue() const { return m_sValue; }
  const std::string& GetDispName() const { return m_sDispName; }
  const std::string& GetTooltip() const { return m_sTooltip; }
  const std::string& GetConstraints() const { return m_sConstraints; }
  const std::vector<std::string>& GetDescriptors() const {
    return m_vDescriptors;
  }

  // Assigns the value alone; it is not checked against the constraints.
  void SetValue(const std::string& value) { m_sValue = value; }

  bool operator==(const UDPKeyValue& other) const;
  bool operator!=(const UDPKeyValue& other) const { return !(*this == other); }

  // Items: type, key, value, display name, tooltip, constraints, the tooltip
  // a second time, the type number, the descriptors. The second tooltip is
  // part of the format: readers that skipped it would lose their place. A
  // date value is written as YYYY-MM-DD and read back into the locale form
  // (from version 0x08000002 on; older writers sent locale text, kept as
  // it came).
  void Transfer() override;
  // 64 plus the lengths of type, key, display name, tooltip and constraints,
  // plus that of the value, or 10 for a date. The second tooltip and the
  // descriptors are not counted; the formula is kept as it stands because
  // callers size buffers by it.
  std::uint64_t Measure() const override;

 private:
  bool IsDate() const { return m_sType == "date"; }

  std::string m_sType;
  std::string m_sKey;
  std::string m_sValue;
  std::string m_sDispName;
  std::string m_sTooltip;
  std::string m_sConstraints;
  UDPType m_eType = eNone;
  std::vector<std::string> m_vDescriptors;
};

#endif  // NVSHARED_UDP_UDP_KEY_VALUE_H_
