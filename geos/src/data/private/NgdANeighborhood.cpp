#include "geos/data/NgdANeighborhood.h"

#include "basic/data/NbdDataPoints.h"
#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdADataSet.h"

#include <vector>

namespace {

QString uniqueCannotReject()
{
  return QStringLiteral("Cannot use rejection in unique neighborhood");
}

}  // namespace

NgdANeighborhood::NgdANeighborhood(const QString &roleMain) : _roleMain(roleMain) {}

NgdANeighborhood::~NgdANeighborhood() = default;

void NgdANeighborhood::setRejectionMode(const NgcERejectionMode &mode)
{
  if (!isMoving())
    NBE_FAIL(uniqueCannotReject());
  _rejectionMode = mode;
  _rejectionActive = true;
}

void NgdANeighborhood::setRejectionVarIndex(int index)
{
  if (!isMoving())
    NBE_FAIL(uniqueCannotReject());
  _rejectionVarIndex = index;
  _rejectionActive = true;
}

void NgdANeighborhood::setRejectionPartition(const NgmSearchPartition &partition)
{
  if (!isMoving())
    NBE_FAIL(uniqueCannotReject());
  _rejectionPartition = partition;
  _rejectionMode = NgcERejectionMode::REJECTION_BY_PARTITION;
  _rejectionActive = true;
}

void NgdANeighborhood::setRejectionAuxVarOption(const NgcERejectionAuxVarOption &option)
{
  if (!isMoving())
    NBE_FAIL(uniqueCannotReject());
  _rejectionAuxVar = option;
  if (!_rejectionActive)
    _rejectionMode = NgcERejectionMode::REJECTION_BY_PARTITION;
  _rejectionActive = true;
}

void NgdANeighborhood::_loadSamples(NbdDataPoints &data) const
{
  if (!_macroRanks.isEmpty())
    data.setMacroRanks(_macroRanks);
  const bool readsCuboid = _useFilteringCuboid && !_dataSet->isGrid() && !_dataSet->isLine();
  _dataSet->createAllVariables(data, true, true);
  if (_dataSet->getNSamples() > 0 && readsCuboid)
    _dataSet->loadInBufferFromCuboid(_filteringCuboid, data);
  else if (_dataSet->getNSamples() > 0)
    _dataSet->loadAllPointsInBuffer(data);
  data.setNDimensions(_dataSet->getNDimensions());
  data.ensureCoordinates();
  if (!_useFilteringCuboid || readsCuboid)
    return;
  std::vector<unsigned char> inside(data.getNSamples());
  for (int rank = 0; rank < data.getNSamples(); ++rank)
    inside[rank] = _filteringCuboid.isIncluded(data.getLocation(rank));
  data.getDataTable().compress(inside.data());
}
