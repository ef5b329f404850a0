#pragma once

#include "basic/geom/NbgVector3D.h"

#include <QString>
#include <QStringList>

class NbgRotation;

namespace orvenal {

class JobObject;

/// Keys by which a job turns a frame: azimuth, dip and pitch.
QStringList angleKeys();

/// The frame of `object`, its azimuth being an angle in the object's convention. Dip and pitch are
/// refused in two dimensions. `needed` says that the horizontal axes differ, so that the azimuth
/// has to be given.
NbgRotation readFrame(const JobObject &object, int nDimensions, bool needed);

/// The same, angles that are not given being 0: the frame of what has axes though it is round.
NbgRotation readTurn(const JobObject &object, int nDimensions);

/// Lengths along the axes U, V and W: one number for all of them under `single`, or a list with one
/// per dimension under `list`. In two dimensions the third length is the larger of the others.
NbgVector3D readLengths(const JobObject &object, const QString &single, const QString &list,
                        int nDimensions);

}  // namespace orvenal
