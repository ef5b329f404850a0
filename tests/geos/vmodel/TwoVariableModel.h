#pragma once

#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmVModel.h"

namespace vmodeltest {

inline NgmMatrix matrix2(double a, double b, double c)
{
  NgmMatrix matrix(2, 2, true);
  matrix.setElement(0, 0, a);
  matrix.setElement(0, 1, b);
  matrix.setElement(1, 1, c);
  return matrix;
}

/// Two variables with a nugget, an anisotropic and an isotropic structure.
inline NgmVModel makeModel()
{
  NgmVModel model(2);
  model.setContextFieldSize(1000.);
  model.setNuggetMatrix(matrix2(0.1, 0.02, 0.2));
  model.addStructure(QStringLiteral("Spherical"), matrix2(1., 0.5, 2.));
  model.setRanges(0, NbgVector3D(100., 50., 20.));
  model.addStructure(QStringLiteral("Gaussian"), matrix2(0.7, -0.3, 0.4));
  model.setRangeIsotropic(1, 300.);
  model.setGlobalRotation(NbgRotation(35., 10., 5.));
  return model;
}

}  // namespace vmodeltest
