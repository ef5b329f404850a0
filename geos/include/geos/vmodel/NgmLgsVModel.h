#pragma once

#include "basic/data/NbdDataTable.h"
#include "geos/vmodel/NgmVModel.h"

#include <vector>

/// A variogram model whose ranges and rotations vary from target to target: factors of its ranges
/// (one for all, or one per axis U, V, W) and its rotation come from variables of the target data.
/// Sills and nugget stay.
class NgmLgsVModel : public NgmVModel
{
public:
  NgmLgsVModel();
  NgmLgsVModel(const NgmVModel &model);
  /// The variables stay registered; they act on the new model.
  NgmLgsVModel &operator=(const NgmVModel &model);

  static QString getRoleRangeFactor();
  static QString getRoleRangeFactorU();
  static QString getRoleRangeFactorV();
  static QString getRoleRangeFactorW();
  static QString getRoleRot1();
  static QString getRoleRot2();
  static QString getRoleRot3();

  /// The roles above.
  static QStringList getRoles();

  /// Meaning of the three angles; without `use`, the default convention.
  void setAnglesConvention(bool use, int conventionId);

  /// The structures turn about Z only; so they do in a context of less than 3 dimensions.
  void setForce2D(bool force) { _force2D = force; }

  /// Takes the variables that it finds by their roles. Later targets are patched from the model as
  /// it is now.
  void registerVariables(const NbdDataTable &targets);

  /// The same variables with the values of other targets; the model from which they are patched
  /// stays.
  void registerTargets(const NbdDataTable &targets);

  /// Factors or angles are registered.
  bool needPatching() const { return _hasRange || _hasRotation; }

  /// Sets ranges and rotation of every structure to those of target `sample`; patches do not add
  /// up. With an undefined angle the rotations are those of the model. False, and the model as it
  /// was registered, where a factor is undefined or not positive.
  bool patchModel(int sample);

  QString debug(int level) const override;

private:
  struct _Base
  {
    NbgVector3D ranges;
    NbgRotation rotation;
  };

  void _takeBase();
  bool _getFactors(int sample, NbgVector3D &factors) const;
  bool _getRotation(int sample, NbgRotation &rotation) const;
  double _value(const QString &role, int sample, double absent) const;

  bool _useConvention = false;
  int _conventionId = 0;
  bool _force2D = false;
  bool _hasRange = false;
  bool _hasRotation = false;
  NbdDataTable _table;
  std::vector<_Base> _base;
};
