#pragma once

#include <QVector>

/// One object (line) of a data file: where its samples stand and how many are selected.
struct NbdObjectDefinition
{
  int rank = -1;                  ///< rank of the object in its file
  qint64 firstSample = 0;         ///< rank of its first sample; the samples are consecutive
  int supportLength = 0;          ///< number of samples
  int selectedSupportLength = 0;  ///< number of selected samples
};

/// The objects of a data file in file order.
using NbdObjectDefinitions = QVector<NbdObjectDefinition>;
