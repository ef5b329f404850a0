#pragma once

#include "app/io/TableReader.h"
#include "basic/error/NbeUserError.h"

#include <QString>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>

namespace orvenal {

/// A file in memory that readers open by its name.
class MemoryFile
{
public:
  MemoryFile(const std::uint8_t *data, std::size_t size) : _descriptor(memfd_create("table", 0))
  {
    if (_descriptor < 0 || write(_descriptor, data, size) != ssize_t(size))
      throw std::runtime_error("no memory for a file");
  }
  ~MemoryFile() { close(_descriptor); }
  MemoryFile(const MemoryFile &) = delete;
  MemoryFile &operator=(const MemoryFile &) = delete;

  QString getPath() const { return QStringLiteral("/proc/self/fd/%1").arg(_descriptor); }

private:
  int _descriptor;
};

/// Reads all fields of all records, as numbers and as texts.
inline void readRecords(TableReader &reader)
{
  while (reader.next()) {
    for (int column = 0; column < reader.getColumns().size(); ++column) {
      reader.getText(column);
      try {
        reader.getNumber(column);
      } catch (const NbeUserError &) {
      }
    }
  }
}

inline void readTable(const QString &path, const TableFormat &format)
{
  try {
    readRecords(*TableReader::open(path, QStringLiteral("table"), format));
  } catch (const NbeUserError &) {
  }
}

}  // namespace orvenal
