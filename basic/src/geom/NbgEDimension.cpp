#include "basic/geom/NbgEDimension.h"

#include "basic/error/NbeAssertion.h"

#include <QObject>

const NbgEDimension NbgEDimension::DIM_1D(QObject::tr("1D"), 1, "DIM_1D");
const NbgEDimension NbgEDimension::DIM_2D(QObject::tr("2D"), 2, "DIM_2D");
const NbgEDimension NbgEDimension::DIM_3D(QObject::tr("3D"), 3, "DIM_3D");

const NbgEDimension &NbgEDimension::fromNDim(int nDim)
{
  switch (nDim) {
    case 1:
      return DIM_1D;
    case 2:
      return DIM_2D;
    case 3:
      return DIM_3D;
    default:
      NBE_FAIL(QStringLiteral("The number of dimensions must be 1, 2 or 3"));
  }
}
