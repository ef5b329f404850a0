#pragma once

#include <QJsonObject>

class NgmVModel;

namespace orvenal {

/// The model in the terms of a job, to be read back as `model`: practical
/// ranges, angles by the compass.
QJsonObject modelToJson(const NgmVModel &model, int nDimensions);

}  // namespace orvenal
