#include "geos/data/NgdNeighborhoodUnique.h"

#include "basic/error/NbeAssertion.h"

NgdNeighborhoodUnique::NgdNeighborhoodUnique(const QString &roleMain) : NgdANeighborhood(roleMain)
{
}

void NgdNeighborhoodUnique::selectDataFromBox(const NbgVector3D &, const NbgVector3D &,
                                              const NbgRotation &, QVector<int> &) const
{
  NBE_FAIL(QStringLiteral("This method should never be used."));
}

void NgdNeighborhoodUnique::loadAllData()
{
  if (!getDataset())
    NBE_FAIL(QStringLiteral("Dataset is null."));
  NbdDataPoints data;
  _loadSamples(data);
  _data = data;
  _loaded = true;
}

const NbdDataPoints &NgdNeighborhoodUnique::getAllData() const
{
  if (!_loaded)
    NBE_FAIL(QStringLiteral("LoadAllData() must be called before."));
  return _data;
}
