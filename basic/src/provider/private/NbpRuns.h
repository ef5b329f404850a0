#pragma once

#include <QtGlobal>

#include <vector>

/// Consecutive samples of a file, at consecutive positions of a buffer.
struct NbpRun
{
  qint64 rank;
  int position;
  int length;
};

/// Where the samples of a buffer stand in a file.
using NbpRuns = std::vector<NbpRun>;

/// Adds a run, joined to the last one when it continues it.
inline void appendRun(NbpRuns &runs, qint64 rank, int position, int length)
{
  if (length == 0)
    return;
  if (!runs.empty()) {
    NbpRun &last = runs.back();
    if (last.rank + last.length == rank && last.position + last.length == position) {
      last.length += length;
      return;
    }
  }
  runs.push_back({rank, position, length});
}
