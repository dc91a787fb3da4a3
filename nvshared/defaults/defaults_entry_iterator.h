// DefaultsEntryIterator: the view through which a host shows the library its
// own table of stored defaults. The library walks the table with Reset, Next
// and HasEntry, reads the fields that take part in the selection, and marks
// the best entry so far with SaveBest; RestoreBest moves the host back to it.
// The library never sees the entries themselves and does not know their
// record type.
//
// The order of the virtual operations is fixed and part of the binary
// interface with the hosts. Threads: an iterator is used by one thread.
#ifndef NVSHARED_DEFAULTS_DEFAULTS_ENTRY_ITERATOR_H_
#define NVSHARED_DEFAULTS_DEFAULTS_ENTRY_ITERATOR_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/market/market_types.h"

class NVSHARED_API DefaultsEntryIterator {
 public:
  virtual ~DefaultsEntryIterator();

  // True while the iterator stands on an entry.
  virtual bool HasEntry() const = 0;
  // Moves to the next entry.
  virtual void Next() = 0;
  // Moves to the first entry.
  virtual void Reset() = 0;
  // Remembers the current entry as the best so far.
  virtual void SaveBest() = 0;
  // Moves back to the remembered entry.
  virtual void RestoreBest() = 0;

  // The fields of the entry the iterator stands on.
  virtual const char* GetTemplateName() const = 0;
  virtual unsigned short GetBrokerId() const = 0;
  // Never called by the library: its meaning is the host's. It keeps its
  // place so that the operations after it stay where hosts expect them.
  virtual int GetHostValue() const = 0;
  virtual std::string GetGatewayName() const = 0;
  // -1 for any GM id.
  virtual int GetGMId() const = 0;
  // True when the entry names no gateway.
  virtual bool IsWildGateway() const = 0;
  // Product codes separated by commas.
  virtual const char* GetProductNames() const = 0;
  virtual bool IsWildProductName() const = 0;
  virtual nv_ns::ProductType::Value GetProductType() const = 0;
  virtual bool IsWildProductType() const = 0;
  virtual nv_ns::MarketType::Value GetMarketId() const = 0;
  // True when the entry names no market of its own.
  virtual bool IsWildMarketId() const = 0;
  // True when the entry takes no part in this search.
  virtual bool IsExcluded() const = 0;
  // True when the entry gives way to a non-fallback entry of equal score.
  virtual bool IsFallback() const = 0;
};

#endif  // NVSHARED_DEFAULTS_DEFAULTS_ENTRY_ITERATOR_H_
