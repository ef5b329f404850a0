#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/NgcEnumGlobal.h"

#include <QStringList>

#include <limits>

class NbgGeomEllipsoid;

/// Parameters of a moving neighborhood: which samples around a target are used to estimate it.
///
/// Candidates lie strictly inside the search ellipsoid. The horizontal plane of the ellipsoid is
/// divided into angular sectors; each keeps its nearest candidates up to a maximum. Rules, each
/// with a flag of its own, add samples, leave some out, change their values or make the search
/// fail. The value of a rule counts only while the rule is on.
///
/// Lengths are in the units of the data.
class NgmNeighborhoodMoving : public NbbASerializable, public NbbIDebuggable
{
public:
  NgmNeighborhoodMoving();

  /// Values of rules that are off are not compared.
  bool operator==(const NgmNeighborhoodMoving &other) const;
  bool operator!=(const NgmNeighborhoodMoving &other) const { return !(*this == other); }

  // The search volume.

  /// Where candidates come from: the ellipsoid, or the target block itself, with which only the
  /// block and proximity rules select samples.
  void setMovingNeighborhoodMode(const NgcEMovNeighMode &mode) { _mode = mode; }
  const NgcEMovNeighMode &getMovingNeighborhoodMode() const { return _mode; }

  /// Radii of the search ellipsoid along its own X, Y and Z.
  void setEllipseSize(const NbgVector3D &radii) { _ellipseSize = radii; }
  const NbgVector3D &getEllipseSize() const { return _ellipseSize; }

  void setEllipseRotation(const NbgRotation &rotation) { _ellipseRotation = rotation; }
  const NbgRotation &getEllipseRotation() const { return _ellipseRotation; }

  /// The search volume is the box around the ellipsoid: its distance is the largest component of
  /// the scaled vector instead of its norm. Not written to streams.
  void setIsRectangular(bool rectangular) { _rectangular = rectangular; }
  bool isRectangular() const { return _rectangular; }

  /// The search ellipsoid around the origin.
  NbgGeomEllipsoid getEllipsoid() const;

  /// Candidates are sorted by the distance scaled by the ellipsoid instead of the Euclidean one.
  void setRuleAnisotropicDistances(bool anisotropic) { _ruleAnisotropicDistances = anisotropic; }
  bool isRuleAnisotropicDistances() const { return _ruleAnisotropicDistances; }

  // Sectors and numbers of samples.

  /// Angular sectors, samples kept per sector, and whether each sector is split into an upper and a
  /// lower half (3D only).
  void setSectors(int number, int maximumPerSector, bool split);
  int getSectorsNumber() const { return _sectorsNumber; }
  bool isSplitSectors() const { return _splitSectors; }

  /// Number of sectors, twice as many when they are split.
  int getSplittedSectorsNumber() const
  {
    const qint64 number = _splitSectors ? qint64(2) * _sectorsNumber : _sectorsNumber;
    return int(qBound(qint64(std::numeric_limits<int>::min()), number,
                      qint64(std::numeric_limits<int>::max())));
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

  // Rules on variables.

  /// Per sector, each variable is informed by at least one sample where candidates allow it.
  void setRuleHeterotopicSearch(bool active) { _ruleHeterotopicSearch = active; }
  bool isRuleHeterotopicSearch() const { return _ruleHeterotopicSearch; }

  /// Only samples where every variable is defined.
  void setRuleIsotopicSearch(bool active) { _ruleIsotopicSearch = active; }
  bool isRuleIsotopicSearch() const { return _ruleIsotopicSearch; }

  // Rules around the target and in its block.

  /// A sample inside the box of these half extents around the target is used alone.
  void setRuleProximity(bool active, const NbgVector3D &halfExtents);
  bool isRuleProximity() const { return _ruleProximity; }
  const NbgVector3D &getProximitySize() const { return _proximitySize; }

  /// Every sample inside the target block is selected.
  void setRuleKeepAllInBlock(bool active) { _ruleKeepAllInBlock = active; }
  bool isRuleBlockKeepAll() const { return _ruleKeepAllInBlock; }

  /// So many samples inside the target block end the search.
  void setRuleMaximumPerBlock(bool active, int number);
  bool isRuleMaximumPerBlock() const { return _ruleMaximumPerBlock; }
  int getMaximumPerBlock() const { return _maximumPerBlock; }

  // Rules on distances and sectors.

  /// Two selected samples are not closer (Euclidean distance) than the gap.
  void setRuleMinimumGap(bool active, double gap);
  bool isRuleMinimumGap() const { return _ruleMinimumGap; }
  double getMinimumGap() const { return _minimumGap; }

  /// The search fails when no selected sample is nearer than the distance.
  void setRuleMaximumDistanceWithoutSample(bool active, double distance);
  bool isRuleMaximumDistanceWithoutAnySample() const { return _ruleMaximumDistance; }
  double getMaximumDistanceWithoutAnySample() const { return _maximumDistance; }

  /// The search fails when more sectors are empty; `consecutive`: more sectors in a row.
  void setRuleMaximumEmptySectors(bool active, int count, bool consecutive);
  bool isRuleMaximumEmptySectors() const { return _ruleMaximumEmptySectors; }
  int getMaximumEmptySectors() const { return _maximumEmptySectors; }
  bool isRuleMaximumEmptySectorsConsecutive() const { return _emptySectorsConsecutive; }

  // Caps.

  /// Values above the threshold are capped, ignored or left out with their sample, outside the
  /// ellipsoid of radii `distance` in the frame of the search ellipsoid.
  void setRuleCutLarge(bool active, const NgcECutoffMode &mode, double threshold,
                       const NbgVector3D &distance);
  bool isRuleCutLarge() const { return _cutLarge.active; }
  const NgcECutoffMode &getCutLargeMode() const { return _cutLarge.mode; }
  double getCutLargeThreshold() const { return _cutLarge.threshold; }
  const NbgVector3D &getCutLargeDistance() const { return _cutLarge.distance; }

  /// The same for values below the threshold.
  void setRuleCutSmall(bool active, const NgcECutoffMode &mode, double threshold,
                       const NbgVector3D &distance);
  bool isRuleCutSmall() const { return _cutSmall.active; }
  const NgcECutoffMode &getCutSmallMode() const { return _cutSmall.mode; }
  double getCutSmallThreshold() const { return _cutSmall.threshold; }
  const NbgVector3D &getCutSmallDistance() const { return _cutSmall.distance; }

  // Rules on the codes (categories) of the samples.

  /// Samples per code that are taken before any code gets more.
  void setRuleOptimumPerCode(bool active, int number);
  bool isRuleOptimumPerCode() const { return _ruleOptimumPerCode; }
  int getOptimumPerCode() const { return _optimumPerCode; }

  /// Cap on the samples per code.
  void setRuleMaximumPerCode(bool active, int number);
  bool isRuleMaximumPerCode() const { return _ruleMaximumPerCode; }
  int getMaximumPerCode() const { return _maximumPerCode; }

  /// The search fails with fewer different codes.
  void setRuleMinimumCodeNumber(bool active, int number);
  bool isRuleMinimumCodeNb() const { return _ruleMinimumCodeNumber; }
  int getMinimumCodeNb() const { return _minimumCodeNumber; }

  /// Cap on the different codes.
  void setRuleMaximumCodeNumber(bool active, int number);
  bool isRuleMaximumCodeNb() const { return _ruleMaximumCodeNumber; }
  int getMaximumCodeNb() const { return _maximumCodeNumber; }

  /// One of the four rules on codes is on.
  bool isRulePerCode() const
  {
    return _ruleOptimumPerCode || _ruleMaximumPerCode || _ruleMinimumCodeNumber ||
           _ruleMaximumCodeNumber;
  }

  /// Whether the parameters make sense in that space dimension. Each message of `errors` and
  /// `warnings` (cleared first) begins with "- " and ends with a line break. Nothing is checked
  /// when candidates come from the target block.
  bool checkParameters(int dimension, QStringList &errors, QStringList &warnings) const;

  QString debug(int level) const override;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

private:
  struct _Cap
  {
    bool active = false;
    NgcECutoffMode mode = NgcECutoffMode::CUTOFF_REPLACE;
    double threshold = 1.;
    NbgVector3D distance = NbgVector3D(1., 1., 1.);

    bool operator==(const _Cap &other) const;
  };

  void _checkSizes(int dimension, QStringList &errors) const;
  void _checkNumbers(QStringList &errors) const;
  void _checkCodes(QStringList &errors) const;
  void _checkBlock(QStringList &errors) const;
  bool _exceedsEllipsoid(const _Cap &cap, int dimension) const;
  bool _sameVolume(const NgmNeighborhoodMoving &other) const;
  bool _sameRules(const NgmNeighborhoodMoving &other) const;
  bool _sameCodeRules(const NgmNeighborhoodMoving &other) const;
  QString _debugRules() const;
  _Cap _readCap(QDataStream &stream, unsigned int version) const;
  void _readNumbers(QDataStream &stream, unsigned int version);
  void _readRules(QDataStream &stream, unsigned int version);
  void _readCodeRules(QDataStream &stream, unsigned int version);

  NgcEMovNeighMode _mode = NgcEMovNeighMode::FROM_ELLIPSOID;
  NbgVector3D _ellipseSize;
  NbgRotation _ellipseRotation;
  bool _ruleAnisotropicDistances = false;
  int _sectorsNumber = 1;
  bool _splitSectors = false;
  int _maximumNumberPerSector = 16;
  int _minimumNumber = 1;
  bool _ruleMaximumNumber = false;
  int _maximumNumber = 100;
  bool _ruleHeterotopicSearch = false;
  bool _ruleIsotopicSearch = false;
  bool _ruleProximity = false;
  NbgVector3D _proximitySize = NbgVector3D(1., 1., 1.);
  bool _ruleKeepAllInBlock = false;
  bool _ruleMaximumPerBlock = false;
  int _maximumPerBlock = std::numeric_limits<int>::max();
  bool _ruleMinimumGap = false;
  double _minimumGap = 1.;
  bool _ruleMaximumDistance = false;
  double _maximumDistance = 1.;
  bool _ruleMaximumEmptySectors = false;
  int _maximumEmptySectors = 0;
  bool _emptySectorsConsecutive = true;
  _Cap _cutLarge;
  _Cap _cutSmall;
  bool _ruleOptimumPerCode = false;
  int _optimumPerCode = 1;
  bool _ruleMaximumPerCode = false;
  int _maximumPerCode = 1;
  bool _ruleMinimumCodeNumber = false;
  int _minimumCodeNumber = 1;
  bool _ruleMaximumCodeNumber = false;
  int _maximumCodeNumber = 1;
  bool _rectangular = false;
};
