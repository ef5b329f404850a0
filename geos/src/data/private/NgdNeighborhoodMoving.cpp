#include "geos/data/NgdNeighborhoodMoving.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgBox.h"
#include "data/private/NgdSearchVolume.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/data/NgdADataSet.h"
#include "geos/interpol/NgmNeighborhoodNestedParam.h"

#include <algorithm>
#include <limits>

namespace {

constexpr double rotationTolerance = 1e-5;

[[noreturn]] void refuseLevel(const QString &reason)
{
  throw NbeProgrammingError(QStringLiteral("NgdNeighborhoodMoving::addAlternativeParameters: ") +
                            reason);
}

}  // namespace

NgdNeighborhoodMoving::NgdNeighborhoodMoving(const QString &roleMain) : NgdANeighborhood(roleMain)
{
}

void NgdNeighborhoodMoving::setParameters(const NgmNeighborhoodMoving &parameters)
{
  const NgmENeighborhoodNestedCode &standard = NgmENeighborhoodNestedCode::STANDARD;
  _levels.clear();
  _levels.push_back({parameters, standard.getValue(), standard.getLabel()});
  _dropData();
}

void NgdNeighborhoodMoving::addAlternativeParameters(const NgmNeighborhoodNestedParam &change)
{
  if (_levels.empty())
    refuseLevel(QStringLiteral("setParameters method not called before"));
  const NgmNeighborhoodMoving &last = _levels.back().parameters;
  Level level = _levels.back();
  level.code = change.code >= 0
                   ? change.code
                   : int(_levels.size()) + NgmENeighborhoodNestedCode::STANDARD.getValue();
  level.name = change.name.isEmpty() ? QStringLiteral("Nested%1").arg(level.code) : change.name;
  NgmNeighborhoodMoving &parameters = level.parameters;
  if (change.factor.isDefined())
    parameters.setEllipseSize(last.getEllipseSize().componentsProduct(change.factor));
  if (change.minimum >= 0)
    parameters.setRuleMinimumNumber(true, change.minimum);
  if (change.maximumPerSector >= 0)
    parameters.setSectors(last.getSectorsNumber(), change.maximumPerSector, last.isSplitSectors());

  if (parameters.getEllipseSize() < last.getEllipseSize())
    refuseLevel(QStringLiteral("decreasing ellipsoid size"));
  if (!parameters.getEllipseRotation().isEqual(last.getEllipseRotation(), rotationTolerance))
    refuseLevel(QStringLiteral("rotation is not valid"));
  _levels.push_back(level);
  _dropData();
}

void NgdNeighborhoodMoving::disableBlockParams()
{
  for (Level &level : _levels) {
    NgmNeighborhoodMoving &parameters = level.parameters;
    parameters.setRuleKeepAllInBlock(false);
    parameters.setRuleMaximumPerBlock(false, std::numeric_limits<int>::max());
    parameters.setMovingNeighborhoodMode(NgcEMovNeighMode::FROM_ELLIPSOID);
  }
}

void NgdNeighborhoodMoving::loadData()
{
  if (!getDataset())
    NBE_FAIL(QStringLiteral("Dataset is nullptr."));
  if (getDataset()->getNSamples() >= std::numeric_limits<int>::max())
    NBE_FAIL(QStringLiteral("Too many samples. Must use Splitting."));
  if (_levels.empty())
    setParameters(NgmNeighborhoodMoving());

  NbdDataPoints data;
  _loadSamples(data);
  _data = data;

  _chooseFrame();
  _sortedData.clear();
  _sortedData.setDimension(std::max(1, _data.getNDimensions()));
  _sortedData.setSystem(_frame.origin, _frame.rotation, _frame.scale);
  if (_data.getNSamples() > 0)
    _sortedData.build(_data);
  _loaded = true;
}

void NgdNeighborhoodMoving::selectDataFromBox(const NbgVector3D &center,
                                              const NbgVector3D &halfExtents,
                                              const NbgRotation &rotation,
                                              QVector<int> &ranks) const
{
  NgmNeighborhoodMoving box;
  box.setEllipseSize(halfExtents);
  box.setEllipseRotation(rotation);
  box.setIsRectangular(true);
  const int nDimensions = std::max(1, _data.getNDimensions());
  const NgdSearchVolume volume(box, _frame, nDimensions, nullptr);

  ranks.clear();
  NgdSortedDataKdTree::Proposals proposals;
  _sortedData.proposeWithin(center, volume.squaredReach, proposals);
  for (int i = 0; i < proposals.count; ++i) {
    const int rank = proposals.ranks[i];
    if (volume.isInBox(_data.getLocation(rank) - center))
      ranks.push_back(rank);
  }
  std::sort(ranks.begin(), ranks.end());
}

int NgdNeighborhoodMoving::getMaximumNeighborsCount() const
{
  int count = 0;
  for (const Level &level : _levels)
    count = std::max(count, level.parameters.getMaximumNeighborsCount());
  return count;
}

NbgVector3D NgdNeighborhoodMoving::getMaximumSize() const
{
  NbgVector3D size;
  for (const Level &level : _levels)
    size = size.maximum(level.parameters.getEllipseSize());
  return size;
}

/// The frame in which the ellipsoid of the standard level is a sphere, when there is one. A sphere
/// takes the raw coordinates as they are.
void NgdNeighborhoodMoving::_chooseFrame()
{
  _frame = Frame();
  const int nDimensions = std::max(1, _data.getNDimensions());
  const NgmNeighborhoodMoving &parameters = _levels.front().parameters;
  const NgdSearchVolume volume(parameters, _frame, nDimensions, nullptr);
  for (int axis = 0; axis < nDimensions; ++axis) {
    if (!(parameters.getEllipseSize()[axis] >= 1e-10))
      return;
  }
  if (volume.isUniform && volume.scaling.x() == 1.)
    return;
  NbgBox box;
  _data.updateBoundingBox(box);
  _frame.origin = box.isValid() ? box.getCenter() : NbgVector3D();
  _frame.rotation = parameters.getEllipseRotation();
  _frame.scale = volume.scaling;
}

void NgdNeighborhoodMoving::_dropData()
{
  _sortedData.clear();
  _loaded = false;
}
