#include "data/private/NgdSearchVolume.h"

#include "geos/interpol/NgmBlock.h"

#include <algorithm>
#include <cmath>

namespace {

/// Covers the rounding of what it multiplies.
constexpr double safety = 1. + 1e-9;

bool isUniformScale(const NbgVector3D &scale, int nDimensions)
{
  return (nDimensions < 2 || scale.y() == scale.x()) && (nDimensions < 3 || scale.z() == scale.x());
}

/// `scale` is a multiple of `reference` along the axes that count.
bool isMultipleOf(const NbgVector3D &reference, const NbgVector3D &scale, int nDimensions)
{
  const double ratio = scale.x() / reference.x();
  for (int axis = 1; axis < nDimensions; ++axis) {
    if (!(std::abs(scale[axis] / reference[axis] - ratio) <= 1e-13 * ratio))
      return false;
  }
  return ratio > 0. && std::isfinite(ratio);
}

double largest(const NbgVector3D &v, int nDimensions)
{
  double result = v.x();
  for (int axis = 1; axis < nDimensions; ++axis)
    result = std::max(result, v[axis]);
  return result;
}

/// Where the half axes of a volume stand in the frame of the index.
struct HalfAxes
{
  HalfAxes(const NbgVector3D &halfExtents, const NbgRotation &rotation,
           const NgdNeighborhoodMoving::Frame &frame, int n)
      : nDimensions(n)
  {
    for (int axis = 0; axis < nDimensions; ++axis) {
      NbgVector3D local;
      local[axis] = halfExtents[axis];
      axes[axis] =
          frame.rotation.worldToLocal(rotation.localToWorld(local)).componentsProduct(frame.scale);
    }
  }

  /// Distance of the farthest corner.
  double toCorner() const
  {
    double farthest = 0.;
    for (int signs = 0; signs < 4; ++signs) {
      const NbgVector3D corner =
          axes[0] + (signs & 1 ? -1. : 1.) * axes[1] + (signs & 2 ? -1. : 1.) * axes[2];
      farthest = std::max(farthest, corner.squaredNorm());
    }
    return std::sqrt(farthest);
  }

  /// No less than the distance of the farthest point of the ellipsoid: the spectral norm of the
  /// matrix of half axes is bounded by the Frobenius norm, and by the geometric mean of the largest
  /// sums of columns and of rows.
  double toEllipsoid() const
  {
    double frobenius = 0., columns = 0.;
    NbgVector3D rows;
    for (int axis = 0; axis < nDimensions; ++axis) {
      const NbgVector3D &a = axes[axis];
      const NbgVector3D sizes(std::abs(a.x()), std::abs(a.y()), std::abs(a.z()));
      frobenius += a.squaredNorm();
      columns = std::max(columns, sizes.x() + sizes.y() + sizes.z());
      rows += sizes;
    }
    return std::sqrt(std::min(frobenius, columns * rows.maximum()));
  }

  int nDimensions;
  NbgVector3D axes[3];
};

}  // namespace

bool ngdStaysInSpace(const NbgRotation &rotation, int nDimensions)
{
  return nDimensions == 3 || rotation.isIdentity(0.) ||
         (nDimensions == 2 && rotation.isAroundZOnly(0.));
}

NgdSearchVolume::NgdSearchVolume(const NgmNeighborhoodMoving &parameters,
                                 const NgdNeighborhoodMoving::Frame &frame, int n,
                                 const NgmBlock *block)
    : nDimensions(n)
{
  const bool isFromBlock = parameters.getMovingNeighborhoodMode() == NgcEMovNeighMode::FROM_BLOCK;
  if (block && (isFromBlock || parameters.isRuleBlockKeepAll()))
    blockHalfSize = 0.5 * block->getSize();
  if (isFromBlock && block) {
    halfExtents = blockHalfSize;
    boxRotation = block->getRotation();
  } else {
    _setEllipsoid(parameters);
  }
  _compare(frame, parameters.getEllipseRotation());
  const double reach = _reach(parameters, frame, block != nullptr);
  squaredReach = reach * reach;
}

void NgdSearchVolume::_setEllipsoid(const NgmNeighborhoodMoving &parameters)
{
  const NbgVector3D &size = parameters.getEllipseSize();
  halfExtents = size;
  boxRotation = parameters.getEllipseRotation();
  radius = std::max(0., size.maximum());
  // Factors of the radii may leave nothing of the ellipsoid.
  bool isNull = false;
  for (int axis = 0; axis < nDimensions; ++axis)
    isNull |= !(size[axis] > 0.);
  squaredRadius = isNull ? 0. : radius * radius;
  if (radius > 0.)
    scaling = NbgVector3D(radius / size.x(), nDimensions > 1 ? radius / size.y() : 0.,
                          nDimensions > 2 ? radius / size.z() : 0.);
}

void NgdSearchVolume::_compare(const NgdNeighborhoodMoving::Frame &frame,
                               const NbgRotation &rotation)
{
  const bool staysInSpace = ngdStaysInSpace(rotation, nDimensions);
  isUniform = radius > 0. && staysInSpace && isUniformScale(scaling, nDimensions);
  const bool frameIsUniform =
      isUniformScale(frame.scale, nDimensions) && ngdStaysInSpace(frame.rotation, nDimensions);
  isSphereInFrame =
      (isUniform && frameIsUniform) || (radius > 0. && rotation.isEqual(frame.rotation, 0.) &&
                                        isMultipleOf(frame.scale, scaling, nDimensions));
}

double NgdSearchVolume::_reach(const NgmNeighborhoodMoving &parameters,
                               const NgdNeighborhoodMoving::Frame &frame, bool hasBlock) const
{
  if (isSphereInFrame && !parameters.isRectangular() && !parameters.isRuleProximity() &&
      !parameters.isRuleBlockKeepAll())
    return radius * (frame.scale.x() / scaling.x());

  // Axes that leave the space of the data have no bounded trace in it.
  const bool isBounded =
      boxRotation.isEqual(frame.rotation, 0.) ||
      (ngdStaysInSpace(boxRotation, nDimensions) && ngdStaysInSpace(frame.rotation, nDimensions));
  if (!isBounded)
    return 1e150;

  const HalfAxes halfAxes(halfExtents, boxRotation, frame, nDimensions);
  const double toCorner = halfAxes.toCorner();
  double reach = 0.;
  if (radius > 0. && parameters.isRectangular())
    reach = toCorner;
  else if (radius > 0. && isUniformScale(frame.scale, nDimensions))
    reach = frame.scale.x() * largest(halfExtents, nDimensions);
  else if (radius > 0.)
    reach = halfAxes.toEllipsoid();

  double aroundTarget = 0.;
  if (parameters.isRuleProximity())
    aroundTarget = parameters.getProximitySize().norm();
  if (parameters.isRuleBlockKeepAll() && hasBlock)
    aroundTarget = std::max(aroundTarget, blockHalfSize.norm());
  reach = std::max(reach, std::min(toCorner, aroundTarget * largest(frame.scale, nDimensions)));
  return reach * safety;
}
