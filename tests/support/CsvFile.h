#pragma once

#include "basic/base/NbbGlobal.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace testsupport {

/// Path of a file below tests/data.
inline std::string dataPath(const std::string &name)
{
  return std::string(ORVENAL_TEST_DATA) + "/" + name;
}

/// Columns of a comma-separated file of numbers with a header line; empty fields are undefined.
class CsvFile
{
public:
  explicit CsvFile(const std::string &name)
  {
    std::ifstream file(dataPath(name));
    std::string line;
    if (!std::getline(file, line))
      throw std::runtime_error("cannot read " + dataPath(name));
    std::vector<std::string> names = _split(line);
    while (std::getline(file, line)) {
      const std::vector<std::string> fields = _split(line);
      for (std::size_t i = 0; i < names.size(); ++i)
        _columns[names[i]].push_back(i < fields.size() && !fields[i].empty()
                                         ? std::strtod(fields[i].c_str(), nullptr)
                                         : NbbGlobal::D_FFFF);
    }
  }

  const std::vector<double> &operator[](const std::string &column) const
  {
    return _columns.at(column);
  }

private:
  static std::vector<std::string> _split(const std::string &line)
  {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, ',');)
      fields.push_back(field);
    return fields;
  }

  std::map<std::string, std::vector<double>> _columns;
};

}  // namespace testsupport
