// Forward Yield: a custom price model of a bond future. The futures price
// times the conversion factor of the deliverable bond is its forward clean
// price at delivery; the model shows the yield to maturity of the bond at
// that price, settled on the delivery date, and turns a typed yield back
// into a futures price.
//
// Parameters are the ten bond terms the host sends when a column has no
// parameters of its own ("Settlement Date" is the delivery date). Yields
// are in percent, compounded at the coupon frequency; the period fraction
// and the accrued interest count actual days within the coupon period.
//
// Built against nvshared/udp/price_model_sdk.h alone: the model links
// nothing of nvshared.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <map>
#include <string>

#include "nvshared/udp/price_model_sdk.h"

using namespace nv_pm;

namespace {

constexpr const char* kModelName = "Forward Yield";
constexpr const char* kClassId = "forward-yield-1";

// ---------------------------------------------------------------------------
// Calendar

// Days since 1 January 1970 of a proleptic Gregorian date.
long DaysFromCivil(int y, int m, int d) {
  y -= m <= 2;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const long yoe = y - era * 400;
  const long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

bool IsLeap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int DaysInMonth(int y, int m) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

struct Date {
  int y = 0, m = 0, d = 0;
  long Serial() const { return DaysFromCivil(y, m, d); }
  bool EndOfMonth() const { return d == DaysInMonth(y, m); }
};

// "MM/DD/YYYY" (the host's usual date form) or "YYYY-MM-DD".
bool ParseDate(const std::string& text, Date& date) {
  int a = 0, b = 0, c = 0;
  char tail = 0;
  if (std::sscanf(text.c_str(), "%d/%d/%d%c", &a, &b, &c, &tail) == 3) {
    date = {c, a, b};
  } else if (std::sscanf(text.c_str(), "%d-%d-%d%c", &a, &b, &c, &tail) == 3) {
    date = {a, b, c};
  } else {
    return false;
  }
  return date.y >= 1900 && date.y <= 9999 && date.m >= 1 && date.m <= 12 &&
         date.d >= 1 && date.d <= DaysInMonth(date.y, date.m);
}

// `date` moved by `months`, the day kept where the month allows, or the
// month's end when `endOfMonth`.
Date AddMonths(const Date& date, int months, bool endOfMonth) {
  int index = date.y * 12 + (date.m - 1) + months;
  Date moved{index / 12, index % 12 + 1, 0};
  const int last = DaysInMonth(moved.y, moved.m);
  moved.d = endOfMonth ? last : (date.d < last ? date.d : last);
  return moved;
}

// ---------------------------------------------------------------------------
// Bond arithmetic

struct Terms {
  double coupon = 0.0;  // percent a year
  int frequency = 2;    // coupons a year
  double factor = 1.0;  // conversion factor
  Date delivery, maturity;
  bool endOfMonth = true;
};

// Where the delivery date falls in the coupon schedule.
struct Position {
  int coupons = 0;        // coupon dates from the next one to maturity
  double fraction = 0.0;  // part of the period left until the next coupon
};

bool Locate(const Terms& terms, Position& position) {
  const long settle = terms.delivery.Serial();
  if (settle >= terms.maturity.Serial()) return false;
  const int step = 12 / terms.frequency;
  const bool eom = terms.endOfMonth && terms.maturity.EndOfMonth();
  Date next = terms.maturity;
  int coupons = 1;
  for (;;) {
    const Date previous = AddMonths(terms.maturity, -step * coupons, eom);
    if (previous.Serial() <= settle) {
      const double period = double(next.Serial() - previous.Serial());
      position.coupons = coupons;
      position.fraction = double(next.Serial() - settle) / period;
      return true;
    }
    next = previous;
    if (++coupons > 2000) return false;  // past 100 years of monthly coupons
  }
}

// Clean price per 100 at yield `y` (percent), and its derivative.
double CleanPrice(const Terms& terms, const Position& at, double y,
                  double* slope) {
  const double f = terms.frequency;
  const double c = terms.coupon / f;
  const double v = 1.0 / (1.0 + y / (100.0 * f));
  double dirty = 0.0, ddirty = 0.0;
  for (int k = 0; k < at.coupons; ++k) {
    const double t = k + at.fraction;
    const double cash = c + (k == at.coupons - 1 ? 100.0 : 0.0);
    const double pv = cash * std::pow(v, t);
    dirty += pv;
    ddirty -= t * pv * v / (100.0 * f);
  }
  if (slope != nullptr) *slope = ddirty;
  return dirty - c * (1.0 - at.fraction);
}

// The yield at which the clean price is `price`, by Newton steps from the
// coupon, kept inside a bracket that halves when a step leaves it.
bool SolveYield(const Terms& terms, const Position& at, double price,
                double& yield) {
  double low = -99.0 * terms.frequency, high = 1000.0;
  double y = terms.coupon;
  for (int i = 0; i < 200; ++i) {
    double slope = 0.0;
    const double error = CleanPrice(terms, at, y, &slope) - price;
    if (std::fabs(error) < 1e-11) {
      yield = y;
      return true;
    }
    if (error > 0)
      low = y;
    else
      high = y;
    double next = slope != 0.0 ? y - error / slope : 0.5 * (low + high);
    if (!(next > low && next < high)) next = 0.5 * (low + high);
    y = next;
  }
  return false;
}

// ---------------------------------------------------------------------------
// Parameters

struct ParamRow {
  const char* type;
  const char* key;
  const char* value;
  const char* display;
  const char* tooltip;
  const char* constraints;
};

const ParamRow kParams[] = {
    {"enum", "Coupon Frequency", "Semi Annual", "Coupon frequency",
     "Coupons a year of the deliverable bond",
     "Annual;Semi Annual;Quarterly;Monthly"},
    {"double", "Coupon", "6.000000", "Coupon (%)",
     "Annual coupon of the deliverable bond, in percent", "min=0;max=100"},
    {"enum", "Day Count Type", "Actual/Actual", "Day count",
     "Accepted for the record; periods count actual days", ""},
    {"date", "Settlement Date", "", "Delivery date",
     "Day the bond is delivered into the future", ""},
    {"date", "Maturity Date", "", "Maturity", "Maturity of the bond", ""},
    {"double", "Conversion Factor", "1.000000", "Conversion factor",
     "Factor of the bond for this contract", "min=0"},
    {"bool", "EOM Conversion", "true", "End of month",
     "Coupons fall on month ends when maturity does", ""},
    {"bool", "Optional", "false", "Optional", "Not used by this model", ""},
    {"date", "First Coupon Date", "", "First coupon", "Not used", ""},
    {"date", "Dated Date", "", "Dated date", "Not used", ""},
};

class Text final : public ITextOut {
 public:
  NvStatus Assign(const char* text) override {
    try {
      value = text != nullptr ? text : "";
      return kOk;
    } catch (...) {
      return kOutOfMemory;
    }
  }
  std::string value;
};

// Reads rows of key and value into terms; false with a reason.
bool ReadTerms(const IStringTable* table, Terms& terms, std::string& why) {
  std::map<std::string, std::string> values;
  for (const ParamRow& row : kParams) values[row.key] = row.value;
  Text key, value;
  for (int32_t row = 0; row < table->Rows(); ++row) {
    if (Failed(table->Get(row, 0, &key)) ||
        Failed(table->Get(row, 1, &value))) {
      why = "Row " + std::to_string(row) + " is incomplete";
      return false;
    }
    values[key.value] = value.value;
  }
  static const std::map<std::string, int> kFrequencies = {
      {"Annual", 1}, {"Semi Annual", 2}, {"Quarterly", 4}, {"Monthly", 12}};
  const auto frequency = kFrequencies.find(values["Coupon Frequency"]);
  if (frequency == kFrequencies.end()) {
    why = "Unknown coupon frequency '" + values["Coupon Frequency"] + "'";
    return false;
  }
  terms.frequency = frequency->second;
  char* end = nullptr;
  terms.coupon = std::strtod(values["Coupon"].c_str(), &end);
  if (end == values["Coupon"].c_str() || *end != '\0' ||
      !(terms.coupon >= 0.0 && terms.coupon <= 100.0)) {
    why = "Coupon must be a number from 0 to 100";
    return false;
  }
  terms.factor = std::strtod(values["Conversion Factor"].c_str(), &end);
  if (end == values["Conversion Factor"].c_str() || *end != '\0' ||
      !(terms.factor > 0.0 && terms.factor < 100.0)) {
    why = "Conversion factor must be a positive number";
    return false;
  }
  if (!ParseDate(values["Settlement Date"], terms.delivery)) {
    why = "Settlement (delivery) date is missing or invalid";
    return false;
  }
  if (!ParseDate(values["Maturity Date"], terms.maturity)) {
    why = "Maturity date is missing or invalid";
    return false;
  }
  if (terms.maturity.Serial() <= terms.delivery.Serial()) {
    why = "Maturity must follow delivery";
    return false;
  }
  const std::string& eom = values["EOM Conversion"];
  terms.endOfMonth = !(eom == "false" || eom == "0" || eom == "no");
  return true;
}

// ---------------------------------------------------------------------------
// Objects

template <typename Interface>
class Counted : public Interface {
 public:
  uint32_t AddRef() override { return ++refs_; }
  uint32_t Release() override {
    const uint32_t left = --refs_;
    if (left == 0) delete this;
    return left;
  }
  virtual ~Counted() = default;

 protected:
  bool Is(const char* iid, const char* own) const {
    return iid != nullptr && (std::strcmp(iid, kIID_IPluginObject) == 0 ||
                              std::strcmp(iid, own) == 0);
  }
  uint32_t refs_ = 1;
};

class ForwardYieldModel final : public Counted<IPriceModel> {
 public:
  NvStatus QueryInterface(const char* iid, void** object) override {
    if (object == nullptr) return kInvalidPointer;
    *object = Is(iid, kIID_IPriceModel) ? this : nullptr;
    if (*object == nullptr) return kNoInterface;
    AddRef();
    return kOk;
  }
  NvStatus GetMemberName(int32_t, ITextOut*) override { return kBadIndex; }

  NvStatus Initialize(const IStringTable* params) override {
    if (params == nullptr) return kInvalidPointer;
    try {
      std::string why;
      ready_ = ReadTerms(params, terms_, why) && Locate(terms_, position_);
      return ready_ ? kOk : kInvalidArgument;
    } catch (...) {
      ready_ = false;
      return kOutOfMemory;
    }
  }
  // Futures price to forward yield.
  NvStatus ConvertPriceToUDP(double price, double* udp) override {
    if (udp == nullptr) return kInvalidPointer;
    if (!ready_) return kUnexpected;
    double yield = 0.0;
    if (!SolveYield(terms_, position_, price * terms_.factor, yield)) {
      return kInvalidArgument;
    }
    *udp = yield;
    return kOk;
  }
  // Forward yield to futures price.
  NvStatus ConvertUDPToPrice(double udp, double* price) override {
    if (price == nullptr) return kInvalidPointer;
    if (!ready_) return kUnexpected;
    *price = CleanPrice(terms_, position_, udp, nullptr) / terms_.factor;
    return std::isfinite(*price) ? kOk : kInvalidArgument;
  }

 private:
  Terms terms_;
  Position position_;
  bool ready_ = false;
};

class ForwardYieldFactory final : public Counted<IPriceModelFactory> {
 public:
  NvStatus QueryInterface(const char* iid, void** object) override {
    if (object == nullptr) return kInvalidPointer;
    *object = Is(iid, kIID_IPriceModelFactory) ? this : nullptr;
    if (*object == nullptr) return kNoInterface;
    AddRef();
    return kOk;
  }
  NvStatus GetMemberName(int32_t id, ITextOut* name) override {
    static const char* const kMembers[] = {
        "GetPriceModelCount", "GetPriceModelName", "CreatePriceModel",
        "GetPriceModelParams", "ValidateParams"};
    if (name == nullptr) return kInvalidPointer;
    if (id < 1 || id > 5) return kBadIndex;
    return name->Assign(kMembers[id - 1]);
  }
  NvStatus GetPriceModelCount(int32_t* count) override {
    if (count == nullptr) return kInvalidPointer;
    *count = 1;
    return kOk;
  }
  NvStatus GetPriceModelName(int32_t index, ITextOut* name) override {
    if (name == nullptr) return kInvalidPointer;
    return index == 0 ? name->Assign(kModelName) : kBadIndex;
  }
  NvStatus CreatePriceModel(int32_t index, IPluginObject** model) override {
    if (model == nullptr) return kInvalidPointer;
    *model = nullptr;
    if (index != 0) return kBadIndex;
    *model = new (std::nothrow) ForwardYieldModel;
    return *model != nullptr ? kOk : kOutOfMemory;
  }
  NvStatus GetPriceModelParams(int32_t index, IStringTable* params) override {
    if (params == nullptr) return kInvalidPointer;
    if (index != 0) return kBadIndex;
    constexpr int32_t kRows = sizeof kParams / sizeof kParams[0];
    NvStatus status = params->Resize(kRows, 6);
    for (int32_t row = 0; row < kRows && Succeeded(status); ++row) {
      const ParamRow& p = kParams[row];
      const char* cells[6] = {p.type,    p.key,     p.value,
                              p.display, p.tooltip, p.constraints};
      for (int32_t column = 0; column < 6 && Succeeded(status); ++column) {
        status = params->Set(row, column, cells[column]);
      }
    }
    return status;
  }
  NvStatus ValidateParams(int32_t index, const IStringTable* params,
                          ITextOut* message, int32_t* valid) override {
    if (params == nullptr || message == nullptr || valid == nullptr) {
      return kInvalidPointer;
    }
    if (index != 0) return kBadIndex;
    try {
      Terms terms;
      Position position;
      std::string why;
      const bool ok = ReadTerms(params, terms, why) &&
                      (Locate(terms, position) ||
                       (why = "Coupon schedule is too long", false));
      *valid = ok ? 1 : 0;
      return message->Assign(ok ? "" : why.c_str());
    } catch (...) {
      return kOutOfMemory;
    }
  }
};

class ForwardYieldLibrary final : public IPriceModelLibrary {
 public:
  int32_t GetClassCount() override { return 1; }
  NvStatus GetClassInfo(int32_t index, ITextOut* description) override {
    if (description == nullptr) return kInvalidPointer;
    return index == 0 ? description->Assign("Forward yield of a bond future")
                      : kBadIndex;
  }
  NvStatus GetClassId(int32_t index, ITextOut* classId) override {
    if (classId == nullptr) return kInvalidPointer;
    return index == 0 ? classId->Assign(kClassId) : kBadIndex;
  }
  NvStatus CreateInstance(const char* classId,
                          IPluginObject** object) override {
    if (object == nullptr) return kInvalidPointer;
    *object = nullptr;
    if (classId == nullptr || std::strcmp(classId, kClassId) != 0) {
      return kNoInterface;
    }
    *object = new (std::nothrow) ForwardYieldFactory;
    return *object != nullptr ? kOk : kOutOfMemory;
  }
};

}  // namespace

extern "C" NV_PRICE_MODEL_EXPORT IPriceModelLibrary* nvPriceModelLibrary(void) {
  static ForwardYieldLibrary library;
  return &library;
}
