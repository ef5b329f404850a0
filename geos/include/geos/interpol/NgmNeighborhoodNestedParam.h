#pragma once

#include "basic/geom/NbgVector3D.h"

#include <QString>

/// A fallback level of a moving neighborhood: what changes against the level before it when that
/// one fails.
struct NgmNeighborhoodNestedParam
{
  NgmNeighborhoodNestedParam() = default;
  NgmNeighborhoodNestedParam(const NbgVector3D &levelFactor, int levelMinimum,
                             int levelMaximumPerSector, int levelCode, const QString &levelName)
      : factor(levelFactor),
        minimum(levelMinimum),
        maximumPerSector(levelMaximumPerSector),
        code(levelCode),
        name(levelName)
  {
  }

  /// Multiplies the radii; undefined keeps them.
  NbgVector3D factor = NbgVector3D::Undefined;

  /// Samples required (0: none are) and samples kept per sector; negative keeps what was.
  int minimum = -1;
  int maximumPerSector = -1;

  /// A value of NgmENeighborhoodNestedCode; negative takes the next one.
  int code = -1;

  /// Empty: "Nested" and the code.
  QString name;
};

/// Code and name say how a level is called, not what it does: they are not compared.
inline bool operator==(const NgmNeighborhoodNestedParam &a, const NgmNeighborhoodNestedParam &b)
{
  return a.factor == b.factor && a.minimum == b.minimum && a.maximumPerSector == b.maximumPerSector;
}
inline bool operator!=(const NgmNeighborhoodNestedParam &a, const NgmNeighborhoodNestedParam &b)
{
  return !(a == b);
}
