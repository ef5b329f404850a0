#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgIntVector3D.h"

#include <QList>
#include <QVector>

class NbdVariableDouble;
class NbgVector3D;
class NgmTarget;

/// Polynomial drift: which monomials of the coordinates the mean of each variable is a linear
/// combination of. Each is one drift term, and one unbiasedness condition of a kriging system. The
/// constant is not a term of the model; the system adds it.
///
/// Formula:  term k of variable v_k is (x - x0)^a (y - y0)^b (z - z0)^c with the exponents
///           (a, b, c) = e_k, relative to a centre that the caller chooses near the data, so that
///           the system stays well conditioned
/// Units:    products of lengths, of degree 1 or 2
/// Threads:  evaluation is const
/// Source:   [Matheron, 1969], Le krigeage universel
class NgmDriftModel : public NbbASerializable, public NbbIDebuggable
{
public:
  /// Appends the monomials of `degree` (1 or 2) of the used coordinates to the terms of a variable:
  /// x, y, z for degree 1; x, x^2, y, y^2, z, z^2, xy, xz, yz for degree 2. Calling it twice for a
  /// variable appends them twice.
  void addDrifts(int variable, int degree, bool useX, bool useY, bool useZ);

  /// Number of terms, of all variables or of one.
  int getNDriftEquations() const { return _variables.size(); }
  int getNDriftEquations(int variable) const { return _variables.count(variable); }

  /// The variable whose mean a term describes.
  int getVariable(int term) const;

  /// Highest degree that was added; 0 without terms.
  int getMaximumPolynomialDegree() const { return _maximumDegree; }

  /// What the terms of a variable need: the degree (2 when a coordinate is squared, else 1) and the
  /// coordinates.
  void getDrifts(int variable, int &degree, bool &useX, bool &useY, bool &useZ) const;

  /// The coordinates that the terms of any variable need.
  void getUsedCoordinates(bool &x, bool &y, bool &z) const;

  /// Values of a term at samples, relative to `center`: one per sample, zeros when the term belongs
  /// to another variable than `variable`.
  void getDriftValuesAtDataPoints(int term, int variable, const NbgVector3D &center,
                                  const NbdVariableDouble &x, const NbdVariableDouble &y,
                                  const NbdVariableDouble &z, QVector<double> &out) const;
  void getDriftValuesAtDataPoints(int term, int variable, const NbgVector3D &center, int n,
                                  const double *x, const double *y, const double *z,
                                  double *out) const;

  /// Value of a term at a target, relative to `center`; 0 when the term belongs to another variable
  /// than `variable`. For a block it is the value at its centre, with L^2 / 12 added behind each
  /// squared coordinate, L being the size of the block along that axis.
  double getDriftValueAtTarget(int term, int variable, const NbgVector3D &center,
                               const NgmTarget &target) const;

  /// One line: degree and coordinates.
  QString briefSummary() const;
  QString debug(int level) const override;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

  /// Variable and exponents of a term; fails when there is no such term.
  void _driftRankToInfo(int term, int &variable, NbgIntVector3D &exponents) const;

private:
  void _addTerm(int variable, const NbgIntVector3D &exponents);

  QList<int> _variables;
  int _maximumDegree = 0;
  QList<NbgIntVector3D> _exponents;
};
