#pragma once

#include "basic/calc/NbcStatMono.h"

#include <QList>
#include <QString>

#include <vector>

namespace orvenal {

struct JobTable;
struct JobVariable;
struct RunContext;

/// Statistics of columns of a table, after their transforms.
struct TableStatistics
{
  struct Variable
  {
    QString label;
    NbcStatMono statistics;
    double lowerQuartile;
    double median;
    double upperQuartile;
  };

  qint64 nRecords = 0;
  QList<Variable> variables;

  /// Of the records where both are defined; undefined where one of them does not vary.
  std::vector<std::vector<double>> correlations;
};

/// Reads the columns and computes their statistics. A table without records, or of which a variable
/// has no value, is an error.
TableStatistics computeTableStatistics(const JobTable &table, const QList<JobVariable> &variables,
                                       const RunContext &context);

}  // namespace orvenal
