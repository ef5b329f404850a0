#include "geos/vmodel/NgmVModel.h"

#include "geos/vmodel/NgmAVStruct.h"
#include "vmodel/private/NgmBulkCovas.h"

// Covariances of gradients.

namespace {

/// Derivatives of rho(A h) by h, where A reduces separation vectors.
class ReducedDerivatives
{
public:
  ReducedDerivatives(const NgmVModel &model, int index, const NbgVector3D &h)
      : _reduced(NgmBulkCovas::reducedVector(model, index, h))
  {
    for (int axis = 0; axis < 3; ++axis) {
      NbgVector3D unit;
      unit[axis] = 1.;
      _columns[axis] = NgmBulkCovas::reducedVector(model, index, unit);
    }
    const NgmAVStruct &structure = model.getStructure(index);
    const double scale2 = structure.getTheoScaleFactor() * structure.getTheoScaleFactor();
    const double norm2 = _reduced.squaredNorm();
    const double first = structure.calcFirstDerivative(_reduced);
    _first = first / scale2;
    _second =
        norm2 > 0. ? (structure.calcSecondDerivative(_reduced) - first) / (scale2 * norm2) : 0.;
  }

  double gradient(int m) const { return _first * (_columns[m] * _reduced); }

  double hessian(int m, int n) const
  {
    return _first * (_columns[m] * _columns[n]) +
           _second * (_columns[m] * _reduced) * (_columns[n] * _reduced);
  }

private:
  NbgVector3D _reduced;
  NbgVector3D _columns[3];  // of A
  double _first;            // C'(u) / (u a^2), a being the scale
  double _second;           // (C''(u) - C'(u) / u) / (u^2 a^4)
};

}  // namespace

void NgmVModel::calcCovaGP(const NbgVector3D &h, NgmMatrix &gp) const
{
  gp.resize(3 * _nVariables, _nVariables, false);
  double *out = gp.elements();
  for (int k = 0; k < getNStructures(); ++k) {
    const ReducedDerivatives derivatives(*this, k, h);
    const NgmMatrix &sills = getCoregionalisationMatrix(k);
    for (int b = 0; b < _nVariables; ++b)
      for (int a = 0; a < _nVariables; ++a)
        for (int m = 0; m < 3; ++m)
          out[3 * (b * _nVariables + a) + m] -= sills(a, b) * derivatives.gradient(m);
  }
}

void NgmVModel::calcCovaGG(const NbgVector3D &h, NgmMatrix &gg) const
{
  const int size = 3 * _nVariables;
  gg.resize(size, size, false);
  double *out = gg.elements();
  for (int k = 0; k < getNStructures(); ++k) {
    const ReducedDerivatives derivatives(*this, k, h);
    const NgmMatrix &sills = getCoregionalisationMatrix(k);
    for (int column = 0; column < size; ++column)
      for (int row = 0; row < size; ++row)
        out[column * size + row] -=
            sills(row / 3, column / 3) * derivatives.hessian(row % 3, column % 3);
  }
}
