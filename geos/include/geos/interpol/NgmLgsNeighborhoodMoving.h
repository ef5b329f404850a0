#pragma once

#include "basic/data/NbdDataTable.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"

#include <QVector>

/// A moving neighborhood whose ellipsoid varies from target to target: factors of its radii (one
/// for all, or one per axis U, V, W) and its rotation come from variables of the target data.
class NgmLgsNeighborhoodMoving : public NgmNeighborhoodMoving
{
public:
  NgmLgsNeighborhoodMoving() = default;
  NgmLgsNeighborhoodMoving(const NgmNeighborhoodMoving &parameters);
  /// The variables stay registered; they act on the new parameters.
  NgmLgsNeighborhoodMoving &operator=(const NgmNeighborhoodMoving &parameters);

  static QString getRoleRadiusFactor();
  static QString getRoleRadiusFactorU();
  static QString getRoleRadiusFactorV();
  static QString getRoleRadiusFactorW();
  static QString getRoleRot1();
  static QString getRoleRot2();
  static QString getRoleRot3();

  /// Space dimension; below 3 the ellipsoid turns about Z only.
  void setDimension(int nDimensions) { _nDimensions = nDimensions; }

  /// Meaning of the three angles; without `use`, the default convention.
  void setAnglesConvention(bool use, int conventionId);

  /// The ellipsoid turns about Z only.
  void setForce2D(bool force) { _force2D = force; }

  /// Takes the variables that it finds by their roles. An undefined factor becomes 0, which leaves
  /// a null ellipsoid. Later targets are patched from the parameters as they are now.
  void registerVariables(const NbdDataTable &targets);

  /// Factors or angles are registered.
  bool needPatching() const { return _hasRadius || _hasRotation; }

  /// Sets radii and rotation to those of target `sample`; patches do not add up. A target with an
  /// undefined angle keeps the rotation of the parameters. False when there is no such target.
  bool patchNeighborhood(int sample);

  /// Radii and rotation of the parameters again, for a target without position in the data.
  void unpatchNeighborhood();

  /// Radii and rotation that are patched.
  const NbgVector3D &getLgsEllipsoidSize() const { return _baseSize; }
  const NbgRotation &getLgsEllipsoidRotation() const { return _baseRotation; }

  /// The registered variables.
  const NbdDataTable &getLgsDataTable() const { return _table; }

  QString debug(int level) const override;

private:
  void _register(const QString &role, const NbdDataTable &targets);
  void _fixRadiusFactor();
  void _patchRadiusFactor(int sample);
  void _patchRotations(int sample);

  int _nDimensions = 3;
  bool _useConvention = false;
  int _conventionId = 0;
  bool _force2D = false;
  bool _hasRadius = false;
  bool _hasRotation = false;
  NbdDataTable _table;
  QVector<double> _radiusFactors[4];  ///< for all axes, then U, V, W; empty when not registered
  QVector<double> _angles[3];
  NbgVector3D _baseSize;
  NbgRotation _baseRotation;
};
