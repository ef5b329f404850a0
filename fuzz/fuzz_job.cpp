#include "app/base/UsageError.h"
#include "app/job/JobReader.h"

#include <cstdint>

/// A job beside those of the examples, so that the files that it names may be there.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  const QString path = QStringLiteral(ORVENAL_EXAMPLES "/meuse/variants/fuzz.json");
  try {
    orvenal::parseJob(path, QByteArray(reinterpret_cast<const char *>(data), int(size)));
  } catch (const orvenal::UsageError &) {
  }
  return 0;
}
