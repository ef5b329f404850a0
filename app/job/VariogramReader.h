#pragma once

#include "app/study/VariogramRequest.h"

#include <QStringList>

namespace orvenal {

class JobObject;

QStringList variogramKeys();

/// Labels of the curves that a job can ask for.
QStringList curveLabels();

/// The experimental variograms that an object of a job asks for.
VariogramRequest readVariogram(const JobObject &object, int nDimensions);

}  // namespace orvenal
