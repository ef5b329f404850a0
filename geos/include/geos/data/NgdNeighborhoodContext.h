#pragma once

#include "basic/data/NbdDataPoints.h"
#include "geos/data/NgdSortedDataKdTree.h"
#include "geos/interpol/NgmTarget.h"

#include <QList>

#include <vector>

class NbdAVariable;
class NbdAVariableNumeric;
class NbdVariableDouble;
class NgcENeighborhoodErrorCode;
class NgdANeighborhood;
class NgdNeighborhoodMoving;
class NgdNeighborhoodUnique;

/// The search of one worker: for each target it selects the neighbors that the rules of the
/// neighborhood give.
///
/// Candidates are the samples strictly inside the search ellipsoid with at least one defined main
/// variable, in ascending sample rank; equal sorting distances keep that order, so that a result
/// never depends on the spatial index. Where one sector keeps its nearest samples, they are taken
/// from the index instead of listing all that the ellipsoid holds; the outcome is the same.
///
/// One per thread, initialized once; each target overwrites the neighbors of the one before.
class NgdNeighborhoodContext
{
public:
  NgdNeighborhoodContext();
  ~NgdNeighborhoodContext();
  NgdNeighborhoodContext(const NgdNeighborhoodContext &) = delete;
  NgdNeighborhoodContext &operator=(const NgdNeighborhoodContext &) = delete;

  /// `mainVariables`: variables of the loaded samples that are interpolated. Wrong parameters are
  /// an NbeUserError.
  void initialize(const NgdANeighborhood &neighborhood,
                  const QList<NbdAVariableNumeric *> &mainVariables);

  /// Selects the neighbors of a point. `nestedIndex` receives the search level that was used: 0 the
  /// standard one, -1 for none and for a unique neighborhood. Failures leave no neighbor.
  const NgcENeighborhoodErrorCode &setTargetLocation(const NbgVector3D &location, int *nestedIndex);

  const NgmTarget &getTarget() const { return _target; }

  /// The selected samples: coordinates, sample numbers and every variable, in order of selection.
  const NbdDataPoints &getNeighbors() const { return *_selected; }
  int getNNeighbors() const { return _count; }

  /// Ranks of the selected samples among the loaded ones.
  const std::vector<int> &getRanks() const { return _ranks; }

  /// Squared Euclidean distances of the selected samples to the target (moving neighborhood).
  const std::vector<double> &getSquaredDistances() const { return _squaredDistances; }

  /// Number of samples that a search may select at most.
  int getMaximumCount() const;

  const NbdVariableDouble &getX() const { return *_selected->getCoordinates(0); }
  const NbdVariableDouble &getY() const { return *_selected->getCoordinates(1); }
  const NbdVariableDouble &getZ() const { return *_selected->getCoordinates(2); }

  /// Values of main variable `index` in the selected samples.
  const double *getMainValues(int index) const;

  /// Variables of a role in the selected samples.
  QList<NbdAVariableNumeric *> getNumericVariables(const QString &role) const;

private:
  struct _Candidate
  {
    double key;
    double squaredDistance;
    int rank;
    int sector;
  };

  /// A column of the loaded samples and its twin in the neighbors.
  struct _Column
  {
    const NbdAVariable *from;
    NbdAVariable *to;
    NbdVariableDouble *toDouble;
    const double *values;
  };

  void _checkParameters() const;
  void _prepareColumns(const QList<NbdAVariableNumeric *> &mainVariables);
  void _findUsableSamples(const QList<NbdAVariableNumeric *> &mainVariables);
  const NgcENeighborhoodErrorCode &_selectLevel();
  void _measure(int nProposals);
  void _sortCandidates();
  void _takeCandidates();
  void _take(const _Candidate &candidate);
  void _copySelected();
  int _sectorOf(const NbgVector3D &local) const;

  const NgdNeighborhoodMoving *_moving = nullptr;
  const NgdNeighborhoodUnique *_unique = nullptr;
  NgmTarget _target;

  std::vector<unsigned char> _usable;
  const double *_x = nullptr;
  const double *_y = nullptr;
  const double *_z = nullptr;
  bool _takesNearest = false;

  NgdSortedDataKdTree::Proposals _proposals;
  std::vector<_Candidate> _candidates;
  std::vector<int> _sectorCounts;
  std::vector<int> _ranks;
  std::vector<double> _squaredDistances;
  int _count = 0;

  NbdDataPoints _neighbors;
  std::vector<_Column> _columns;
  std::vector<const NbdVariableDouble *> _mainColumns;
  const NbdDataPoints *_selected = nullptr;
};
