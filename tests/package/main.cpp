#include <basic/geom/NbgVector3D.h>
#include <geos/matrix/NgmMatrix.h>

/// Uses one inline class of the foundation and one compiled class of the library.
int main()
{
  NgmMatrix identity(3, 3, true);
  identity.setIdentity();
  return identity.isIdentity() && NbgVector3D(3., 4., 0.).norm() == 5. ? 0 : 1;
}
