// The price converters of a user-defined price column: CUDPrice, the base,
// turns a user-defined price into an exchange price and back by the rule
// that its CUDPData selects; CUDPriceFactory picks the class.
//
//   CUDPriceDefault     identity, for hosts that want one
//   CUDPriceYield       simple yields such as 100 - price (price type 2)
//   CUDPYield2Maturity  yield to maturity through CUDPYTMCalc (type 3)
//   CUDPriceParRate     par rate from the coupon and PV01 (type 6)
//
// Ownership: a converter keeps a non-owning pointer to its CUDPData, which
// the caller keeps alive for the converter's life. GetUDPrice hands a new
// converter to the caller, who gives it back through ReleaseUDPrice.
// Conversions run per tick: they allocate nothing, never throw, and report
// failure by a false result. One thread at a time per converter.
#ifndef NVSHARED_UDP_UDP_PRICE_H_
#define NVSHARED_UDP_UDP_PRICE_H_

#include "nvshared/export.h"
#include "nvshared/udp/udp_data.h"
#include "nvshared/udp/udp_ytm_calc.h"

class NVSHARED_API CUDPrice {
 public:
  explicit CUDPrice(CUDPData* data) : m_pUDPData(data) {}
  CUDPrice(const CUDPrice&) = default;
  CUDPrice& operator=(const CUDPrice&) = delete;
  virtual ~CUDPrice() = default;

  // Exchange price from a user-defined price. False: no price, and `price`
  // is left as it was unless the class says otherwise.
  virtual bool GetPriceFromUDP(double udp, double& price) = 0;
  // User-defined price from an exchange price.
  virtual bool GetUDPFromPrice(double price, double& udp) = 0;
  // Takes new settings (or the same ones, changed); stores the pointer.
  virtual bool ApplyNewProperties(CUDPData* data);
  // m_UDPriceType and m_YieldType of the settings.
  virtual int GetPricingType() const;
  virtual int GetYieldType() const;

 protected:
  // Turn a rate on a 360-day basis into one on 365 days and back, on the
  // number as the column shows it. Inverses of each other up to rounding.
  virtual double Convert360To365(double value);
  virtual double Convert365To360(double value);

  CUDPData* m_pUDPData;
};

// Both directions copy their input and succeed.
class NVSHARED_API CUDPriceDefault : public CUDPrice {
 public:
  explicit CUDPriceDefault(CUDPData* data) : CUDPrice(data) {}
  CUDPriceDefault(const CUDPriceDefault&) = default;
  bool GetPriceFromUDP(double udp, double& price) override;
  bool GetUDPFromPrice(double price, double& udp) override;
};

// The simple yields of m_YieldType, with s = m_dStripBase:
//   1  x                        p
//   2  100 - x                  100 - p
//   3  10000 - 100x + 5e-9      (10000 - p) / 100 + 5e-9
//   4  10000 - 100x - s + 5e-9  (10000 - (p + s)) / 100 + 5e-9
//   5  100000 - 1000x           (100000 - p) / 1000
// With m_bConvertTo365 the user-defined price is on a 365-day basis.
class NVSHARED_API CUDPriceYield : public CUDPrice {
 public:
  explicit CUDPriceYield(CUDPData* data) : CUDPrice(data) {}
  CUDPriceYield(const CUDPriceYield&) = default;
  // False for a yield type outside 1..5, `price` untouched.
  bool GetPriceFromUDP(double udp, double& price) override;
  // False for a yield type outside 1..5; the 365-day conversion still runs
  // on whatever `udp` held then.
  bool GetUDPFromPrice(double price, double& udp) override;
};

// Par rate: price = (udp - coupon) x 100 x PV01, and back.
class NVSHARED_API CUDPriceParRate : public CUDPrice {
 public:
  explicit CUDPriceParRate(CUDPData* data) : CUDPrice(data) {}
  CUDPriceParRate(const CUDPriceParRate&) = default;
  bool GetPriceFromUDP(double udp, double& price) override;
  // False for a PV01 of 0, `udp` untouched.
  bool GetUDPFromPrice(double price, double& udp) override;
};

// Yield to maturity in percent, through a calculator set up from the
// settings' bond terms at construction and by ApplyNewProperties. The
// calculator handles the day basis itself, so the 360/365 conversions are
// the identity here.
class NVSHARED_API CUDPYield2Maturity : public CUDPrice {
 public:
  // Sets up the calculator; a refusal is kept (see CUDPYTMCalc::Initialize)
  // and shows as false results.
  explicit CUDPYield2Maturity(CUDPData* data);
  // A converter of its own is made from the settings, not copied.
  CUDPYield2Maturity(const CUDPYield2Maturity&) = delete;
  // Stores the pointer and sets up the calculator again; the result of its
  // Initialize. A date outside the calendar (before 1400) raises
  // std::out_of_range, as Initialize does.
  bool ApplyNewProperties(CUDPData* data) override;
  bool GetPriceFromUDP(double udp, double& price) override;
  bool GetUDPFromPrice(double price, double& udp) override;
  const CUDPYTMCalc& GetCalculator() const { return m_calc; }

 protected:
  double Convert360To365(double value) override;
  double Convert365To360(double value) override;

 private:
  bool ApplyProperties();

  CUDPYTMCalc m_calc;
};

class NVSHARED_API CUDPriceFactory {
 public:
  // A new converter for the settings, owned by the caller, or null: for a
  // column that is off, for types 1 and 5 (the host shows those itself),
  // for a custom model (type 4) that no plug-in provides, for an unknown
  // type, a null `data`, or when memory runs out. Dates outside the
  // calendar (before 1400) raise std::out_of_range from the set-up of a
  // yield-to-maturity converter, as CUDPYTMCalc::Initialize does.
  static CUDPrice* GetUDPrice(CUDPData* data);
  // Deletes the converter, if any, and nulls the pointer.
  static void ReleaseUDPrice(CUDPrice*& price);
};

#endif  // NVSHARED_UDP_UDP_PRICE_H_
