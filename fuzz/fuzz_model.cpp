#include "app/base/UsageError.h"
#include "app/job/JobObject.h"
#include "app/job/ModelReader.h"
#include "geos/vmodel/NgmVModel.h"

#include <cstdint>

/// A model's file, for one and two variables in two and three dimensions.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  const QByteArray text(reinterpret_cast<const char *>(data), int(size));
  for (const int nVariables : {1, 2}) {
    for (const int nDimensions : {2, 3}) {
      try {
        const orvenal::JobObject object =
            orvenal::parseModelText(QStringLiteral("model.json"), text);
        const NgmVModel model = orvenal::readModel(object, nDimensions, nVariables);
        model.calcCovaIJ(0, 0, NbgVector3D(10., 20., 0.));
      } catch (const orvenal::UsageError &) {
      }
    }
  }
  return 0;
}
