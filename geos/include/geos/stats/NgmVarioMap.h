#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/data/NbdDataGrid.h"
#include "basic/data/NbdDataTable.h"
#include "basic/geom/NbgRotation.h"
#include "geos/base/NgaIAdditive.h"

#include <QString>

#include <vector>

class NbdVariableDouble;
class NbdVariableInt64;

/// A variogram map: the variogram of every pair of variables in polar cells (rho, theta, phi)
/// within an ellipsoid.
///
/// Cells:   in the map's own frame, azimuth theta counter-clockwise from X and dip phi upward, both
///          in [0, 180) degrees: phi above 90 dips downward. Classes are centred on multiples of
///          180 / ntheta and 180 / nphi; class 0 holds both ends of the half-turn. The first radial
///          class reaches from 0 to half a step, the others are a step wide; the last ends at the
///          ellipsoid. Pairs without horizontal component are counted apart, by their elevation.
/// Values:  sums of products of differences until normalize(), then variograms: sum / (2 n),
///          undefined where there is no pair
/// Pairs:   (i, j) and (j, i) name the same pair of variables
class NgmVarioMap : public NgaIAdditive, public NbbIDebuggable
{
public:
  /// `maxAxes` are the semi-axes of the ellipsoid along the axes of `rotation`.
  NgmVarioMap(int nrho, int ntheta, int nphi, const NbgVector3D &maxAxes,
              const NbgRotation &rotation, int nvar);
  ~NgmVarioMap() override;
  NgmVarioMap(const NgmVarioMap &) = default;
  NgmVarioMap &operator=(const NgmVarioMap &) = default;

  int getNvar() const { return _nvar; }
  int getNrho() const { return _nrho; }
  int getNtheta() const { return _ntheta; }
  int getNphi() const { return _nphi; }
  const NbgVector3D &getMaxAxes() const { return _maxAxes; }
  const NbgRotation &getRot() const { return _rotation; }
  bool isNormalized() const { return _isNormalized; }

  /// Rank of a pair of variables among all pairs.
  static int getPairRank(int i, int j);

  /// Node rank of a cell in the map's grid.
  qint64 getIndex(int iRho, int iTheta, int iPhi) const
  {
    return _grid.getGeometry().getRankFromIJK(iRho, iTheta, iPhi);
  }

  // The map of a pair of variables, one value per cell; and of the pairs without horizontal
  // component, one per radial class.

  const NbdVariableInt64 &getNPairs(int i, int j) const;
  const NbdVariableDouble &getVarioSum(int i, int j) const;
  /// The part of all pairs of the map that a cell holds; made by normalize().
  const NbdVariableDouble &getWeight(int i, int j) const;
  const NbdVariableInt64 &getNPairsVertical(int i, int j) const;
  const NbdVariableDouble &getVarioSumVertical(int i, int j) const;
  static QString getRoleNPairs() { return QStringLiteral("NPairs"); }
  static QString getRoleVarioSum() { return QStringLiteral("Variogram"); }
  static QString getRoleWeight() { return QStringLiteral("Weight"); }

  /// The cells as grid nodes (rho, theta, phi), with the variables above.
  const NbdDataGrid &getGrid() const { return _grid; }

  /// A vector of the world in the map's frame.
  NbgVector3D toFrame(const NbgVector3D &h) const
  {
    return _hasRotation ? _rotation.worldToLocal(h) : h;
  }

  /// Of a vector in the map's frame and its reverse, which are the same pair of samples, the one
  /// whose azimuth is in the half-turn of the classes, from half a class below 0: only its dip is
  /// that of the cells.
  NbgVector3D oriented(const NbgVector3D &local) const
  {
    const double across = _cosHalfClass * local.y() + _sinHalfClass * local.x();
    const bool isReverse = across < 0. || (across == 0. && local.x() < 0.);
    return isReverse ? NbgVector3D(-local.x(), -local.y(), -local.z()) : local;
  }

  /// Counts a pair of samples: its vector in the world and the product of the differences of
  /// variables i and j. Pairs outside the ellipsoid and at distance 0 are not counted. The vector
  /// is taken as it comes, see oriented().
  void addPair(int i, int j, const NbgVector3D &h, double value);

  /// The cell of a vector in the map's frame: a node rank, -2 - r for the radial class r of pairs
  /// without horizontal component, NO_CELL outside.
  static constexpr qint64 NO_CELL = -1;
  qint64 locate(const NbgVector3D &local) const;

  /// Takes the counts and sums of all pairs of variables, cell by cell, as `addPair` makes them:
  /// for the cells of locate(), the node ranks first, then the radial classes of vertical pairs.
  void addCells(int pairRank, const std::vector<qint64> &nPairs, const std::vector<double> &sums);
  qint64 getNCells() const { return _grid.getNSamples() + qint64(_nrho); }

  void sum(const NgaIAdditive &other) { doSum(other); }
  void doSum(const NgaIAdditive &other) override;
  void doSum(const NgmVarioMap &other);
  NgmVarioMap *clone() const override { return new NgmVarioMap(*this); }

  /// Sums become variograms.
  void normalize();

  /// Centre of a cell: rho, theta and phi in degrees.
  NbgVector3D getCenter(const NbgIntVector3D &cell) const;
  /// The cell of rho, theta and phi in degrees; the radial class may be beyond the last.
  NbgIntVector3D getIndexFromRTP(const NbgVector3D &rtp) const;

  /// The classes of the direction that azimuth and dip give in another frame.
  void getIThetaIPhi(const NbgRotation &frame, double theta, double phi, int &iTheta,
                     int &iPhi) const;
  /// The vector in the world that rho, theta and phi give in another frame.
  static NbgVector3D getDirectionVectorFromRTP(const NbgRotation &frame, const NbgVector3D &rtp);
  /// Rho, theta and phi in the map's frame of those given in another frame.
  NbgVector3D getRTPAfterRot(const NbgRotation &frame, const NbgVector3D &rtp) const;

  /// A coarser map of the variables firstVar to lastVar: semi-axes, numbers of classes, and the
  /// angles of its rotation in degrees. Each cell of this map goes to the cell of the other that
  /// holds its centre. Normalized when this map is.
  NgmVarioMap buildCoarseVMap(double ax, double ay, double az, int nrho, int ntheta, int nphi,
                              int firstVar, int lastVar, double angle1, double angle2,
                              double angle3) const;
  /// The same without holes: a cell that holds no centre takes the pairs of the cell of this map
  /// that holds its own centre.
  NgmVarioMap buildCoarseVMap_V3(double ax, double ay, double az, int nrho, int ntheta, int nphi,
                                 int firstVar, int lastVar, double angle1, double angle2,
                                 double angle3) const;

  /// The variogram of a pair of variables along a direction of the map's frame, in degrees: one
  /// value per radial class, 0 where there is no pair.
  NbdVariableDouble getVarioCurve(int i, int j, double theta, double phi) const;
  /// The same as a table: distances (centres of cells), numbers of pairs, values.
  NbdDataTable getVariogramData(int i, int j, double theta, double phi) const;

  QString debug(int level) const override;

private:
  int _getThetaClass(double a, double b) const;
  int _getPhiClass(const NbgVector3D &local) const;
  double _getRhoMaxFromJK(int j, int k) const;
  void _createVariables();
  void _buildWeightVariable();
  void _checkPair(int i, int j) const;
  bool _isCompatible(const NgmVarioMap &other) const;
  double _sumOf(double value, qint64 n) const;
  NbgVector3D _fromCell(const NbgIntVector3D &cell) const;
  NgmVarioMap _buildCoarse(const NbgVector3D &axes, const NbgIntVector3D &nCells, int firstVar,
                           int lastVar, const NbgRotation &rotation, bool fill) const;
  NgmVarioMap _coarse(const NgmVarioMap &empty, int firstVar) const;
  void _fillHoles(NgmVarioMap &coarse, int firstVar) const;
  void _getClasses(double theta, double phi, int &iTheta, int &iPhi) const;
  double _valueAt(int i, int j, qint64 node) const;

  int _nvar;
  int _nrho;
  int _ntheta;
  int _nphi;
  double _dTheta;
  double _dPhi;
  NbgVector3D _maxAxes;
  NbgRotation _rotation;
  bool _hasRotation;
  bool _isNormalized = false;
  double _cosHalfClass;
  double _sinHalfClass;
  NbdDataGrid _grid;
  NbdDataTable _vertical;
  std::vector<double> _cosTheta;
  std::vector<double> _cosPhi;
  std::vector<double> _boundsTheta;
  std::vector<double> _boundsPhi;
  std::vector<int> _startsTheta;
  std::vector<int> _startsPhi;
  std::vector<double> _reaches;  // radii of the ellipsoid by classes of theta and phi
};
