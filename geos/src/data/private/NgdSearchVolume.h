#pragma once

#include "geos/data/NgdNeighborhoodMoving.h"

class NgmBlock;

/// The search volume of a level around any target, in the arithmetic of the search: what is inside,
/// and how far the index has to look.
struct NgdSearchVolume
{
  /// `block`: the regular block of the target, or null. `nDimensions`: those of the data.
  NgdSearchVolume(const NgmNeighborhoodMoving &parameters,
                  const NgdNeighborhoodMoving::Frame &frame, int nDimensions,
                  const NgmBlock *block);

  /// Inside the box of half extents `halfExtents`, border included; axes beyond the dimension of
  /// the data do not count.
  bool isInBox(const NbgVector3D &offset) const
  {
    const NbgVector3D local = boxRotation.worldToLocal(offset);
    for (int axis = 0; axis < nDimensions; ++axis) {
      if (!(std::fabs(local[axis]) <= halfExtents[axis]))
        return false;
    }
    return true;
  }

  int nDimensions;

  /// Largest radius R, and the scaling of the local axes that makes the ellipsoid the sphere of
  /// radius R; components beyond the dimension of the data are 0. Both 0 when samples come from a
  /// block.
  double radius = 0.;
  double squaredRadius = 0.;
  NbgVector3D scaling;

  /// The box around the ellipsoid, or the block.
  NbgVector3D halfExtents;
  NbgRotation boxRotation;

  /// Half of the size of the target's block; negative without one.
  NbgVector3D blockHalfSize = NbgVector3D(-1., -1., -1.);

  /// Squared distance in the frame of the index up to which samples may lie inside.
  double squaredReach = 0.;

  /// The scaling is the same along every axis: Euclidean and scaled distances have one order.
  bool isUniform = false;

  /// In the frame of the index the ellipsoid is a sphere: distances in the frame have the order of
  /// scaled distances.
  bool isSphereInFrame = false;

private:
  void _setEllipsoid(const NgmNeighborhoodMoving &parameters);
  void _compare(const NgdNeighborhoodMoving::Frame &frame, const NbgRotation &rotation);
  double _reach(const NgmNeighborhoodMoving &parameters, const NgdNeighborhoodMoving::Frame &frame,
                bool hasBlock) const;
};

/// Below three dimensions a rotation may turn the axes of the data out of their space.
bool ngdStaysInSpace(const NbgRotation &rotation, int nDimensions);
