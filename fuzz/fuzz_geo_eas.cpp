#include "fuzz/FuzzTable.h"

/// A GEO-EAS file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  const orvenal::MemoryFile file(data, size);
  orvenal::TableFormat format;
  format.kind = orvenal::TableFormat::GEO_EAS;
  orvenal::readTable(file.getPath(), format);
  return 0;
}
