#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"

#include <QStringList>

class NbgGeomEllipsoid;

/// Parameters of a moving neighborhood: which samples around a target are used to estimate it.
///
/// Candidates lie strictly inside the search ellipsoid. The horizontal plane of the ellipsoid is
/// divided into angular sectors; each keeps its nearest candidates up to a maximum. A search that
/// selects fewer samples than the minimum fails.
class NgmNeighborhoodMoving : public NbbIDebuggable
{
public:
  NgmNeighborhoodMoving();

  bool operator==(const NgmNeighborhoodMoving &other) const;
  bool operator!=(const NgmNeighborhoodMoving &other) const { return !(*this == other); }

  /// Radii of the search ellipsoid along its own X, Y and Z.
  const NbgVector3D &getEllipseSize() const { return _ellipseSize; }
  void setEllipseSize(const NbgVector3D &radii) { _ellipseSize = radii; }

  const NbgRotation &getEllipseRotation() const { return _ellipseRotation; }
  void setEllipseRotation(const NbgRotation &rotation) { _ellipseRotation = rotation; }

  /// Candidates are sorted by the distance scaled by the ellipsoid instead of the Euclidean one.
  bool isRuleAnisotropicDistances() const { return _ruleAnisotropicDistances; }
  void setRuleAnisotropicDistances(bool anisotropic) { _ruleAnisotropicDistances = anisotropic; }

  /// Angular sectors, samples kept per sector, and whether each sector is split into an upper and a
  /// lower half (3D only).
  void setSectors(int number, int maximumPerSector, bool split);
  int getSectorsNumber() const { return _sectorsNumber; }
  bool isSplitSectors() const { return _splitSectors; }

  /// Number of sectors, twice as many when they are split.
  int getSplittedSectorsNumber() const
  {
    return _splitSectors ? 2 * _sectorsNumber : _sectorsNumber;
  }
  int getMaximumNumberPerSector() const { return _maximumNumberPerSector; }

  /// Samples required; without the rule, or with a number that is not positive, none are.
  void setRuleMinimumNumber(bool active, int number);
  bool isRuleMinimumNumber() const { return _minimumNumber > 0; }
  int getMinimumNumber() const { return _minimumNumber; }

  /// Cap on the total number of samples.
  void setRuleMaximumNumber(bool active, int number);
  bool isRuleMaximumNumber() const { return _ruleMaximumNumber; }
  int getMaximumNumber() const { return _maximumNumber; }

  /// Upper bound of the number of samples of a search.
  int getMaximumNeighborsCount() const;

  /// Whether the ellipsoid may be enlarged without changing which of its samples come first.
  bool isScalable() const;

  /// The search ellipsoid around the origin.
  NbgGeomEllipsoid getEllipsoid() const;

  /// Whether the parameters make sense in that space dimension. Each message of `errors` and
  /// `warnings` (cleared first) begins with "- " and ends with a line break.
  bool checkParameters(int dimension, QStringList &errors, QStringList &warnings) const;

  QString debug(int level) const override;

private:
  NbgVector3D _ellipseSize;
  NbgRotation _ellipseRotation;
  bool _ruleAnisotropicDistances = false;
  int _sectorsNumber = 1;
  bool _splitSectors = false;
  int _maximumNumberPerSector = 16;
  int _minimumNumber = 1;
  bool _ruleMaximumNumber = false;
  int _maximumNumber = 100;
};
