#include "basic/provider/NbpAMemoryProviderR.h"

#include "basic/data/NbdAVariable.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpIProviderGridR.h"
#include "basic/provider/NbpIProviderGridW.h"
#include "basic/provider/NbpIProviderObjectW.h"
#include "provider/private/NbpMemoryStorage.h"

template <class I>
bool NbpAMemoryProviderR<I>::readVariable(const QString &id, const NbiIntervalIntLarge &ranks,
                                          NbdAVariable &values, int first) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int end = storage.appendSelectedRuns(ranks.getLower(), ranks.getUpper(), first, runs);
    storage.read(id, runs, end, values);
    return true;
  });
}

template <class I>
bool NbpAMemoryProviderR<I>::readSelection(const NbiIntervalIntLarge &ranks,
                                           NbdVariableSelection &selection) const
{
  const NbpMemoryStorage &storage = this->_getStorage();
  return storage.call([&] {
    NbpRuns runs;
    const int n = storage.appendRuns(ranks.getLower(), ranks.getUpper(), false, 0, runs);
    storage.readFlags(runs, n, selection);
    return true;
  });
}

template class NbpAMemoryProviderR<NbpIProviderW>;
template class NbpAMemoryProviderR<NbpIProviderGridR>;
template class NbpAMemoryProviderR<NbpIProviderGridW>;
template class NbpAMemoryProviderR<NbpIProviderObjectW>;
