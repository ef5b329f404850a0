#pragma once

#include "basic/geom/NbgRotation.h"

#include <QList>

/// Makes sets of directions of space, each as the rotation whose U axis is the direction.
///
/// Directions have no sense: a direction and its opposite are the same one. Every set is given in
/// the frame of the reference orientation (the identity by default), whose U and V axes span the
/// reference plane. Each create operation replaces the set before.
class NbcDirectionsGenerator
{
public:
  void setReferenceOrientation(const NbgRotation &reference) { _reference = reference; }

  /// n directions of the reference plane, 180 / n degrees apart, the first along its U axis:
  /// orientation i = reference * Rz(i * 180 / n). Less than one direction is a programming error,
  /// here and below.
  void createRegularInPlane(int n);

  /// The direction normal to the reference plane, along its W axis.
  void createNormalToPlane();

  /// n directions spread evenly over the half space above the reference plane, by rising elevation
  /// on a golden-angle spiral: sin(elevation) = (i + 1/2) / n (Vogel 1979, on the sphere).
  void createRegularIn3D(int n);

  int getNDirections() const { return _orientations.size(); }

  /// The orientation of direction i; a programming error outside 0 .. getNDirections() - 1.
  const NbgRotation &getOrientation(int i) const;

private:
  NbgRotation _reference;
  QList<NbgRotation> _orientations;
};
