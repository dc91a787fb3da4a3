#include "nvshared/udp/udp_key_value.h"

#include <array>
#include <sstream>
#include <string_view>
#include <utility>

#include "nvshared/platform/utils/udp_date_time.h"

namespace {

constexpr std::array<std::pair<std::string_view, UDPKeyValue::UDPType>, 7>
    kTypeWords = {{{"bool", UDPKeyValue::eBool},
                   {"short", UDPKeyValue::eShort},
                   {"int", UDPKeyValue::eInt},
                   {"double", UDPKeyValue::eDouble},
                   {"date", UDPKeyValue::eDate},
                   {"string", UDPKeyValue::eString},
                   {"enum", UDPKeyValue::eEnum}}};

}  // namespace

UDPKeyValue::UDPKeyValue(const std::string& type, const std::string& key,
                         const std::string& value, const std::string& dispName,
                         const std::string& tooltip,
                         const std::string& constraints)
    : m_sType(type),
      m_sKey(key),
      m_sValue(value),
      m_sDispName(dispName),
      m_sTooltip(tooltip),
      m_sConstraints(constraints) {
  for (const auto& [word, number] : kTypeWords) {
    if (m_sType == word) m_eType = number;
  }
  if (m_sConstraints.empty()) return;
  // The append comes before the stream test, so "a;b;" yields "a", "b" and a
  // third, empty, descriptor: hosts count on that extra entry.
  std::istringstream in(m_sConstraints);
  do {
    std::string descriptor;
    std::getline(in, descriptor, ';');
    m_vDescriptors.push_back(std::move(descriptor));
  } while (in.good());
}

bool UDPKeyValue::operator==(const UDPKeyValue& other) const {
  return m_sType == other.m_sType && m_sKey == other.m_sKey &&
         m_sValue == other.m_sValue && m_sDispName == other.m_sDispName &&
         m_sTooltip == other.m_sTooltip &&
         m_sConstraints == other.m_sConstraints && m_eType == other.m_eType &&
         m_vDescriptors == other.m_vDescriptors;
}

void UDPKeyValue::Transfer() {
  TransferString("m_sType", m_sType);
  TransferString("m_sKey", m_sKey);
  if (IsDate() && IsWriting()) {
    // On the wire a date is YYYY-MM-DD, whatever the user's locale; the
    // locale text comes back into the field after the item.
    std::string localeText = m_sValue;
    nv_ns::UDPDateTime date;
    date.ParseDateTime(m_sValue.c_str(), 0,
                       nv_ns::UDPDateTime::kUserDefaultLocale);
    m_sValue = date.Format(kWireDateFormat);
    try {
      TransferString("m_sValue", m_sValue);
    } catch (...) {
      m_sValue = std::move(localeText);
      throw;
    }
    m_sValue = std::move(localeText);
  } else {
    TransferString("m_sValue", m_sValue);
    if (IsDate() && GetDirection() == kRead && !HasFailed() &&
        GetStreamVersion() >= kVersion) {
      nv_ns::UDPDateTime date;
      date.ParseDateTime(m_sValue.c_str(), nv_ns::UDPDateTime::kDateValueOnly,
                         nv_ns::UDPDateTime::kUserDefaultLocale);
      m_sValue = date.Format(0, nv_ns::UDPDateTime::kUserDefaultLocale);
    }
  }
  TransferString("m_sDispName", m_sDispName);
  TransferString("m_sTooltip", m_sTooltip);
  TransferString("m_sConstraints", m_sConstraints);
  // The tooltip stands twice in the format; the second read overwrites the
  // first.
  TransferString("m_sTooltip", m_sTooltip);
  TransferScalar("m_eType", m_eType);
  TransferStringVector("m_vDescriptors", m_vDescriptors);
}

std::uint64_t UDPKeyValue::Measure() const {
  return 64 + m_sType.size() + m_sKey.size() + m_sDispName.size() +
         m_sTooltip.size() + m_sConstraints.size() +
         (IsDate() ? kWireDateLength : m_sValue.size());
}
