#include "geos/data/NgdNeighborhoodUnique.h"

#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdADataSet.h"

NgdNeighborhoodUnique::NgdNeighborhoodUnique(const QString &roleMain) : NgdANeighborhood(roleMain)
{
}

void NgdNeighborhoodUnique::loadAllData()
{
  if (!getDataset())
    NBE_FAIL(QStringLiteral("Dataset is null."));
  NbdDataPoints data;
  getDataset()->loadAllData(data, true, true);
  data.ensureCoordinates();
  _data = data;
  _loaded = true;
}

const NbdDataPoints &NgdNeighborhoodUnique::getAllData() const
{
  if (!_loaded)
    NBE_FAIL(QStringLiteral("LoadAllData() must be called before."));
  return _data;
}
