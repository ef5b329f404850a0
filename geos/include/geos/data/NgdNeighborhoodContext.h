#pragma once

#include "basic/data/NbdDataPoints.h"
#include "geos/interpol/NgmTarget.h"

#include <QList>
#include <QMap>

#include <memory>
#include <vector>

class NbdAVariable;
class NbdAVariableNumeric;
class NbdVariableAlpha;
class NbdVariableDouble;
class NbdVariableInt64;
class NgcECutoffMode;
class NgcEFaultsMode;
class NgcENeighborhoodErrorCode;
class NgdANeighborhood;
class NgdNeighborhoodMoving;
class NgdNeighborhoodSearch;
class NgdNeighborhoodUnique;
class NgmABlock;
class NgmLgsNeighborhoodMoving;
class NgmNeighborhoodFaultSet;
class NgmNeighborhoodMoving;

/// The search of one worker: for each target it selects the neighbors that the rules of the
/// neighborhood give.
///
/// Candidates are the samples of the search volume with at least one defined main variable, in
/// ascending sample rank; equal sorting distances keep that order, so that a result never depends
/// on the spatial index. Where the rules allow it, the nearest samples are taken from the index
/// instead of listing all that the volume holds; the outcome is the same.
///
/// Levels are searched in their order until one succeeds. One per thread, initialized once; each
/// target overwrites the neighbors of the one before.
class NgdNeighborhoodContext
{
public:
  NgdNeighborhoodContext();
  ~NgdNeighborhoodContext();
  NgdNeighborhoodContext(const NgdNeighborhoodContext &) = delete;
  NgdNeighborhoodContext &operator=(const NgdNeighborhoodContext &) = delete;

  /// `mainVariables`: variables of the loaded samples that are interpolated. `collocated`:
  /// variables of the target data by the index of the main variable that they inform. Codes and the
  /// values that the caps look at come from the loaded samples by their roles CODE, LARGE_CUTOFF
  /// and SMALL_CUTOFF. Wrong parameters are an NbeUserError.
  void initialize(const NgdANeighborhood &neighborhood,
                  const QList<NbdAVariableNumeric *> &mainVariables,
                  const QMap<int, NbdAVariableNumeric *> &collocated = {});

  /// The same; with `localEllipsoid`, radii and rotation of every level vary with the variables of
  /// `targets`.
  void initialize(const NgdANeighborhood &neighborhood, bool localEllipsoid, bool useConvention,
                  int conventionId, bool force2D, const NbdDataTable &targets,
                  const QList<NbdAVariableNumeric *> &mainVariables,
                  const QMap<int, NbdAVariableNumeric *> &collocated = {});

  /// The data of the next targets: locally varying variables are registered anew, collocated ones
  /// replaced. To be called for each further buffer of targets.
  void setTargetData(const NbdDataTable &targets,
                     const QMap<int, NbdAVariableNumeric *> &collocated);

  /// Block of the targets that are given with an index.
  void setTargetBlock(const NgmABlock &block);

  /// The target location stands among the neighbors, whatever the collocated variables.
  void setForceCollocated(bool force) { _forceCollocated = force; }

  /// More samples (points or lines) beside the loaded ones; each takes part once it is enabled. The
  /// variables of the role inform the main ones, in their order. At most `maximum` of them, the
  /// nearest, are candidates of a search (negative: all are).
  void setAdditionalInput(const NbdAData *data, const QString &role, int maximum);
  void enableAdditionalInputSample(int position);

  void setFaultsEnabled(bool enabled);
  void setFaultsData(const NgmNeighborhoodFaultSet &faults);
  void setFaultsMode(const NgcEFaultsMode &mode);

  /// Selects the neighbors of a target. `targetIndex`: its position in the target data, or -1, by
  /// which it takes the block, its ellipsoid and collocated values. `targetSN`: its sample number,
  /// needed for rejection. `nestedIndex` receives the search level that was used: 0 the standard
  /// one, -1 for none and for a unique neighborhood. Failures leave no neighbor.
  const NgcENeighborhoodErrorCode &setTargetLocation(const NbgVector3D &location, int targetIndex,
                                                     qint64 targetSN, int *nestedIndex);
  const NgcENeighborhoodErrorCode &setTargetLocation(const NbgVector3D &location, int *nestedIndex);

  const NgmTarget &getTarget() const { return *_target; }

  /// The selected samples: coordinates, sample numbers and every variable, in order of selection;
  /// behind them the collocated target, if there is one.
  const NbdDataPoints &getNeighbors() const { return *_selected; }
  int getNNeighbors() const { return _count; }

  /// Ranks of the selected samples among the loaded ones; those of the additional input are their
  /// positions there plus the number of loaded samples.
  const std::vector<int> &getRanks() const { return _ranks; }

  /// Squared Euclidean distances of the selected samples to the target, and their sectors, -1 for
  /// one selected by proximity (moving neighborhood).
  const std::vector<double> &getSquaredDistances() const { return _squaredDistances; }
  const std::vector<int> &getSectors() const { return _sectors; }

  /// Number of samples that a search may select at most.
  int getMaximumCount() const;

  const NbdVariableInt64 *getSN() const { return _selected->getVariableSN(); }
  const NbdVariableDouble &getX() const { return *_selected->getCoordinates(0); }
  const NbdVariableDouble &getY() const { return *_selected->getCoordinates(1); }
  const NbdVariableDouble &getZ() const { return *_selected->getCoordinates(2); }

  /// Values of main variable `index` in the selected samples; null unless they are doubles.
  const double *getMainValues(int index) const;

  /// Variables of a role in the selected samples; the single form is null without any.
  QList<NbdAVariableNumeric *> getNumericVariables(const QString &role) const;
  QList<NbdVariableAlpha *> getAlphaVariables(const QString &role) const;
  NbdAVariableNumeric *getNumericVariable(const QString &role) const;

  /// Code (NgmENeighborhoodNestedCode) and name of a level; "failed" for -1.
  int getNestedNeighIndex(int level) const;
  QString getNestedNeighName(int level) const;

  /// Different codes of the selected samples; with a main variable, of those where it is defined.
  int getNSelectedCodes() const;
  int getNSelectedCodesByVar(int index) const;

  /// Parameters of a level, and of the level searched last with the ellipsoid of its target.
  const NgmNeighborhoodMoving &getMovingParams(int level) const;
  const NgmNeighborhoodMoving &getCurrentParams() const;

  /// Position of the collocated target among the neighbors, or -1.
  int getCollocatedRank() const { return _collocatedRank; }

  /// The target among the loaded samples, or -1, and its value of the rejected variable.
  int getRejectionTargetRank() const;
  double getRejectionTargetValue() const { return _rejectionTargetValue; }
  int getRejectionMainVarIndex() const;

  /// Searches so far, and those that the index served without listing the search volume.
  qint64 getNSearches() const;
  qint64 getNNearestSearches() const;

private:
  struct _Level;

  /// A column of the loaded samples and its twin in the neighbors; doubles and 64-bit integers are
  /// copied through their arrays.
  struct _Column
  {
    const NbdAVariable *from;
    NbdAVariable *to;
    NbdVariableDouble *toDouble = nullptr;
    const double *doubles = nullptr;
    NbdVariableInt64 *toInt64 = nullptr;
    const qint64 *integers = nullptr;
  };

  void _initializeUnique(const QList<NbdAVariableNumeric *> &mainVariables);
  void _checkParameters() const;
  void _checkRejection() const;
  void _prepareLevels();
  void _prepareColumns();
  void _prepareSamples();
  void _prepareCodes();
  void _prepareCaps();
  const double *_findCapValues(const QString &role, int &mainIndex, std::vector<double> &copy,
                               const QString &notFound, const QString &notMain) const;
  void _prepareRejection();
  void _setCollocated(const QMap<int, NbdAVariableNumeric *> &collocated);
  void _refreshVolumes();

  void _locateRejectionTarget(qint64 targetSN);
  bool _isInForbiddenPolygon();
  const NgcENeighborhoodErrorCode &_searchLevels(int targetIndex, int *nestedIndex);
  bool _patch(_Level &level, int targetIndex);
  void _takeOver();
  void _copySelected();
  void _copyAdditional();
  void _applyCaps();
  void _applyCap(bool top, const NgcECutoffMode &mode, double threshold, int mainIndex);
  void _appendCollocatedTarget(int targetIndex);
  bool _isTargetCollocated() const;

  const NgdNeighborhoodMoving *_moving = nullptr;
  const NgdNeighborhoodUnique *_unique = nullptr;
  QList<NbdAVariableNumeric *> _mainVariables;
  QMap<int, NbdAVariableNumeric *> _collocated;
  bool _forceCollocated = false;

  NgmTarget _pointTarget;
  NgmTarget _blockTarget;
  NgmTarget *_target;
  QString _blockProblem;

  std::vector<_Level> _levels;
  int _currentLevel = 0;
  std::unique_ptr<NgdNeighborhoodSearch> _search;
  bool _faultsEnabled = false;
  double _rejectionTargetValue;
  int _largeCapVariable = -1;
  int _smallCapVariable = -1;

  std::vector<int> _ranks;
  std::vector<double> _squaredDistances;
  std::vector<int> _sectors;
  int _count = 0;
  int _collocatedRank = -1;

  NbdDataPoints _neighbors;
  std::vector<_Column> _columns;
  std::vector<NbdAVariableNumeric *> _mainColumns;
  std::vector<const NbdVariableDouble *> _mainDoubles;
  const NbdDataPoints *_selected = nullptr;
};
