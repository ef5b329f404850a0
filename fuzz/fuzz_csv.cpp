#include "fuzz/FuzzTable.h"

/// A text table, with separators that are found out and with given ones.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  const orvenal::MemoryFile file(data, size);
  orvenal::TableFormat format;
  format.kind = orvenal::TableFormat::CSV;
  orvenal::readTable(file.getPath(), format);
  format.separator = ';';
  format.decimal = ',';
  format.undefined = QStringList{QStringLiteral("-999")};
  orvenal::readTable(file.getPath(), format);
  format.separator = ' ';
  format.decimal = '.';
  orvenal::readTable(file.getPath(), format);
  return 0;
}
