#pragma once

#include "basic/provider/NbpAMemoryProviderBase.h"

/// Data file in memory: reading of ranges. Without selection a range is one block copy.
template <class Interface>
class NbpAMemoryProviderR : public NbpAMemoryProviderBase<Interface>
{
public:
  bool readVariable(const QString &id, const NbiIntervalIntLarge &ranks, NbdAVariable &values,
                    int first) const override;
  bool readSelection(const NbiIntervalIntLarge &ranks,
                     NbdVariableSelection &selection) const override;

protected:
  using NbpAMemoryProviderBase<Interface>::NbpAMemoryProviderBase;
};
