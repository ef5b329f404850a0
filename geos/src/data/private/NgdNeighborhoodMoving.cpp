#include "geos/data/NgdNeighborhoodMoving.h"

#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"
#include "geos/data/NgdADataSet.h"

#include <algorithm>
#include <limits>

NgdNeighborhoodMoving::NgdNeighborhoodMoving(const QString &roleMain) : NgdANeighborhood(roleMain)
{
}

void NgdNeighborhoodMoving::setParameters(const NgmNeighborhoodMoving &parameters)
{
  _parameters = parameters;
  _sortedData.clear();
  _loaded = false;
}

void NgdNeighborhoodMoving::loadData()
{
  if (!getDataset())
    NBE_FAIL(QStringLiteral("Dataset is nullptr."));
  if (getDataset()->getNSamples() >= std::numeric_limits<int>::max())
    NBE_FAIL(QStringLiteral("Too many samples. Must use Splitting."));

  NbdDataPoints data;
  getDataset()->loadAllData(data, true, true);
  data.ensureCoordinates();
  _data = data;

  const int nDimensions = std::max(1, _data.getNDimensions());
  const NbgVector3D &size = _parameters.getEllipseSize();
  _radius = std::max({size.x(), size.y(), size.z()});
  _scaling = NbgVector3D(_radius / size.x(), nDimensions > 1 ? _radius / size.y() : 0.,
                         nDimensions > 2 ? _radius / size.z() : 0.);

  // Below three dimensions a rotation may turn the axes of the data out of their space.
  const NbgRotation &rotation = _parameters.getEllipseRotation();
  const bool staysInSpace = nDimensions == 3 || rotation.isIdentity(0.) ||
                            (nDimensions == 2 && rotation.isAroundZOnly(0.));
  _uniformScaling = staysInSpace && (nDimensions < 2 || _scaling.y() == _scaling.x()) &&
                    (nDimensions < 3 || _scaling.z() == _scaling.x());

  // In the frame of a sphere the raw coordinates serve as they are.
  const bool isSphere = _uniformScaling && _scaling.x() == 1.;
  _sortedData.clear();
  _sortedData.setDimension(nDimensions);
  if (isSphere) {
    _sortedData.setSystem(NbgVector3D(), NbgRotation());
  } else {
    NbgBox box;
    _data.updateBoundingBox(box);
    const NbgVector3D origin = box.isValid() ? box.getCenter() : NbgVector3D();
    _sortedData.setSystem(origin, rotation, _scaling);
  }
  if (_data.getNSamples() > 0)
    _sortedData.build(_data);
  _loaded = true;
}
