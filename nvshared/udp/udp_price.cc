#include "nvshared/udp/udp_price.h"

#include <cmath>
#include <new>

#include "nvshared/udp/custom_price_model.h"

using nv_ns::UDPDateTime;

// ---------------------------------------------------------------------------
// CUDPrice

bool CUDPrice::ApplyNewProperties(CUDPData* data) {
  m_pUDPData = data;
  return true;
}

int CUDPrice::GetPricingType() const { return m_pUDPData->m_UDPriceType; }

int CUDPrice::GetYieldType() const { return m_pUDPData->m_YieldType; }

double CUDPrice::Convert360To365(double value) {
  // 365 / 2880 and 365 / 360.
  return (value * 0.1267361111111111 + 1.0) * 1.0138888888888888 * value;
}

double CUDPrice::Convert365To360(double value) {
  // 1440 / 365.
  return (std::pow(value * 0.5 + 1.0, 0.5) - 1.0) * 3.9452054794520546;
}

// ---------------------------------------------------------------------------
// CUDPriceDefault

bool CUDPriceDefault::GetPriceFromUDP(double udp, double& price) {
  price = udp;
  return true;
}

bool CUDPriceDefault::GetUDPFromPrice(double price, double& udp) {
  udp = price;
  return true;
}

// ---------------------------------------------------------------------------
// CUDPriceYield
//
// The 5e-9 of types 3 and 4 is added in both directions, so the two are not
// exact inverses; displayed yields and prices depend on it, so it stays.

bool CUDPriceYield::GetPriceFromUDP(double udp, double& price) {
  const double x =
      m_pUDPData->m_bConvertTo365 != 0 ? Convert365To360(udp) : udp;
  switch (m_pUDPData->m_YieldType) {
    case 1:
      price = x;
      return true;
    case 2:
      price = 100.0 - x;
      return true;
    case 3:
      price = 10000.0 - x * 100.0 + 5e-9;
      return true;
    case 4:
      price = 10000.0 - x * 100.0 - m_pUDPData->m_dStripBase + 5e-9;
      return true;
    case 5:
      price = 100000.0 - x * 1000.0;
      return true;
    default:
      return false;
  }
}

bool CUDPriceYield::GetUDPFromPrice(double price, double& udp) {
  bool known = true;
  switch (m_pUDPData->m_YieldType) {
    case 1:
      udp = price;
      break;
    case 2:
      udp = 100.0 - price;
      break;
    case 3:
      udp = (10000.0 - price) / 100.0 + 5e-9;
      break;
    case 4:
      udp = (10000.0 - (price + m_pUDPData->m_dStripBase)) / 100.0 + 5e-9;
      break;
    case 5:
      udp = (100000.0 - price) / 1000.0;
      break;
    default:
      known = false;
      break;
  }
  // Runs even for an unknown yield type, on what `udp` held: hosts have
  // always seen the converted stale value there, so it is kept.
  if (m_pUDPData->m_bConvertTo365 != 0) udp = Convert360To365(udp);
  return known;
}

// ---------------------------------------------------------------------------
// CUDPriceParRate

bool CUDPriceParRate::GetPriceFromUDP(double udp, double& price) {
  price = (udp - m_pUDPData->m_dCoupon) * 100.0 * m_pUDPData->m_dPV01;
  return true;
}

bool CUDPriceParRate::GetUDPFromPrice(double price, double& udp) {
  const double pv01 = m_pUDPData->m_dPV01;
  if (pv01 == 0.0) return false;
  udp = price / pv01 / 100.0 + m_pUDPData->m_dCoupon;
  return true;
}

// ---------------------------------------------------------------------------
// CUDPYield2Maturity

CUDPYield2Maturity::CUDPYield2Maturity(CUDPData* data) : CUDPrice(data) {
  ApplyProperties();
}

bool CUDPYield2Maturity::ApplyProperties() {
  const CUDPData& d = *m_pUDPData;
  const UDPDateTime firstCoupon = d.GetFirstCouponDate();
  const UDPDateTime issue = d.GetIssueDate();
  const UDPDateTime maturity = d.GetMaturityDate();
  const UDPDateTime settlement = d.GetSettlementDate();
  CUDPYTMCalc::CalcParams params;
  params.m_pFirstCoupon = &firstCoupon;
  params.m_pIssue = &issue;
  params.m_pMaturity = &maturity;
  params.m_pSettlement = &settlement;
  params.m_CouponFreq = d.m_CouponFreq;
  params.m_DayCount = d.m_iDayCount;
  params.m_dCoupon = d.m_dCoupon;
  params.m_dConvFactor = d.m_dConvFactor;
  params.m_bEOMConversion = d.m_bEOMConversion != 0;
  params.m_bYTMOptionalSettings = d.m_bYTMOptionalSettings != 0;
  return m_calc.Initialize(params);
}

bool CUDPYield2Maturity::ApplyNewProperties(CUDPData* data) {
  m_pUDPData = data;
  return ApplyProperties();
}

bool CUDPYield2Maturity::GetPriceFromUDP(double udp, double& price) {
  return m_calc.CalcPriceFromYield(udp, price);
}

bool CUDPYield2Maturity::GetUDPFromPrice(double price, double& udp) {
  return m_calc.CalcYieldToMaturity(price, udp);
}

double CUDPYield2Maturity::Convert360To365(double value) { return value; }

double CUDPYield2Maturity::Convert365To360(double value) { return value; }

// ---------------------------------------------------------------------------
// CUDPriceFactory

CUDPrice* CUDPriceFactory::GetUDPrice(CUDPData* data) {
  if (data == nullptr || data->m_bEnableUDP == 0) return nullptr;
  switch (data->m_UDPriceType) {
    case nv_ns::UDPPriceType::Yield:
      return new (std::nothrow) CUDPriceYield(data);
    case nv_ns::UDPPriceType::YieldToMaturity:
      return new (std::nothrow) CUDPYield2Maturity(data);
    case nv_ns::UDPPriceType::CustomModel: {
      // Custom models come from plug-ins through their manager, which
      // gives null for a name no library knows. The model's answer to the
      // settings is not needed here: a refusal was reported already.
      CCustomPriceModelManager* manager = CCustomPriceModelManager::Instance();
      if (manager == nullptr) return nullptr;
      CUDPrice* price =
          manager->GetCustomPriceModel(data->m_sCustomPriceModelName);
      if (price != nullptr) price->ApplyNewProperties(data);
      return price;
    }
    case nv_ns::UDPPriceType::ParRate:
      return new (std::nothrow) CUDPriceParRate(data);
    default:
      return nullptr;
  }
}

void CUDPriceFactory::ReleaseUDPrice(CUDPrice*& price) {
  delete price;
  price = nullptr;
}
