// CUDPData::SetMiscContractInfo: seeds a custom model's parameters from the
// contract (conversion factor type, contract date, delivery date).
#include <algorithm>
#include <string>

#include "nvshared/udp/udp_data.h"

using nv_ns::UDPDateTime;

namespace {

constexpr unsigned long kLocale = UDPDateTime::kUserDefaultLocale;

bool IsWeekday(const UDPDateTime& day) {
  const int dow = day.GetDayOfWeek();
  return dow != 0 && dow != 6;
}

// The first day of the month after `date`'s month; December rolls over.
UDPDateTime FirstOfNextMonth(const UDPDateTime& date) {
  const int month = date.GetMonth();
  return month == 12 ? UDPDateTime(date.GetYear() + 1, 1, 1, 0, 0, 0)
                     : UDPDateTime(date.GetYear(), month + 1, 1, 0, 0, 0);
}

UDPDateTime AddDays(const UDPDateTime& date, double days) {
  return UDPDateTime(date.GetSerial() + days);
}

// The third weekday of the month after the contract month (no holidays).
UDPDateTime ThirdWeekdayOfNextMonth(const UDPDateTime& contract) {
  UDPDateTime day = FirstOfNextMonth(contract);
  int weekdays = IsWeekday(day) ? 1 : 0;
  while (weekdays < 3 && day.GetStatus() == UDPDateTime::valid) {
    day = AddDays(day, 1.0);
    if (IsWeekday(day)) ++weekdays;
  }
  return day;
}

// The last weekday of the contract month (no holidays).
UDPDateTime LastWeekdayOfMonth(const UDPDateTime& contract) {
  UDPDateTime day = AddDays(FirstOfNextMonth(contract), -1.0);
  while (!IsWeekday(day) && day.GetStatus() == UDPDateTime::valid) {
    day = AddDays(day, -1.0);
  }
  return day;
}

// Models whose delivery date the user sets and may keep.
bool KeepsDeliveryDate(const std::string& model) {
  return model == "Net Carry" || model == "German NetCarry" ||
         model == "Forward Price" || model == "Forward Yield";
}

}  // namespace

void CUDPData::SetMiscContractInfo(std::string product,
                                   const UDPDateTime& contractDate, bool apply,
                                   bool keepExisting) {
  if (!apply) return;
  const bool haveContract = contractDate.GetStatus() == UDPDateTime::valid;
  for (UDPKeyValue& item : m_vectUDPKeyValue) {
    if (item.GetTypeEnum() == UDPKeyValue::eEnum &&
        item.GetKey() == "Futures Conversion Factor Type" && !product.empty()) {
      const auto& choices = item.GetDescriptors();
      if (std::find(choices.begin(), choices.end(), product) != choices.end()) {
        item.SetValue(product);
      }
    }
    if (item.GetTypeEnum() != UDPKeyValue::eDate || !haveContract) continue;

    if (item.GetKey() == "Contract Date") {
      item.SetValue(UDPDateTime(contractDate.GetYear(), contractDate.GetMonth(),
                                1, 0, 0, 0)
                        .Format(0, kLocale));
    }
    if (item.GetKey() == "Delivery Date") {
      if (product == "ZT" || product == "ZF") {
        item.SetValue(ThirdWeekdayOfNextMonth(contractDate).Format(0, kLocale));
      } else if (product == "ZN" || product == "ZB" || product == "UB") {
        item.SetValue(LastWeekdayOfMonth(contractDate).Format(0, kLocale));
      } else if (keepExisting && KeepsDeliveryDate(m_sCustomPriceModelName) &&
                 !item.GetValue().empty()) {
        // The user's own delivery date stands.
      } else {
        item.SetValue(UDPDateTime::GetTickCount().Format(0, kLocale));
      }
    }
  }
}
