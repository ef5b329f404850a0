#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdMacroIndex.h"
#include "basic/geom/NbgGeomGrid.h"
#include "basic/provider/NbpIProviderR.h"
#include "basic/provider/NbpIProviderW.h"

#include <gtest/gtest.h>

#include <QSharedPointer>

#include <ostream>
#include <string>
#include <vector>

/// What every data file of the suite holds: 24 samples, standing as the nodes of a grid of
/// 2 x 3 x 4 and as four lines of 5, 0, 12 and 7 samples.
struct FileContent
{
  static constexpr int N = 24;

  NbgGeomGrid geometry;
  std::vector<int> nSamplesPerLine{5, 0, 12, 7};
  std::vector<double> x, y, z;

  std::vector<double> number;         ///< "number": 10 rank + 0.5, undefined at rank 3
  std::vector<int> count;             ///< "count": rank - 5, undefined at rank 4
  std::vector<QString> text;          ///< "text": "s<rank>"
  std::vector<bool> flag;             ///< "flag": every third
  std::vector<float> realization[2];  ///< macro "macro", indices 3 and 1: 100 index + rank

  FileContent()
  {
    geometry.setNodesNumber(2, 3, 4);
    geometry.setCellSize(10., 20., 5.);
    geometry.setOriginCentered(NbgVector3D(100., 200., 300.));
    for (int rank = 0; rank < N; ++rank) {
      x.push_back(100. + 10. * (rank / 12));
      y.push_back(200. + 20. * (rank / 4 % 3));
      z.push_back(300. + 5. * (rank % 4));
      number.push_back(rank == 3 ? NbbGlobal::D_FFFF : 10. * rank + 0.5);
      count.push_back(rank == 4 ? NbbGlobal::I32_FFFF : rank - 5);
      text.push_back(QStringLiteral("s%1").arg(rank));
      flag.push_back(rank % 3 == 0);
      realization[0].push_back(float(300 + rank));
      realization[1].push_back(float(100 + rank));
    }
  }
};

/// Makes one kind of provider; a new kind joins the suite with one class of these.
class ProviderCase
{
public:
  virtual ~ProviderCase() = default;
  virtual std::string name() const = 0;

  /// A provider that holds the content; realizations are created in the order of the content.
  virtual QSharedPointer<NbpIProviderR> create(const FileContent &content) const = 0;
};

/// Base of the suites: a fresh provider for each test.
class ProviderSuite : public testing::TestWithParam<const ProviderCase *>
{
protected:
  ProviderSuite() : provider(GetParam()->create(content)) {}

  QString id(const char *name) const { return provider->getIdFromName(QString::fromLatin1(name)); }

  /// Selects what `selected` says, held in memory.
  void selectAs(const std::vector<bool> &selected);

  FileContent content;
  QSharedPointer<NbpIProviderR> provider;
};

/// Every provider; those that write; grids; lines.
class ProviderConformance : public ProviderSuite
{
};
class WriterConformance : public ProviderSuite
{
protected:
  NbpIProviderW &writer() { return dynamic_cast<NbpIProviderW &>(*provider); }
};
class GridConformance : public ProviderSuite
{
};
class LineConformance : public ProviderSuite
{
};

/// Names a failing case in the test output.
inline void PrintTo(const ProviderCase *provider, std::ostream *stream)
{
  *stream << provider->name();
}

inline std::string nameOfCase(const testing::TestParamInfo<const ProviderCase *> &info)
{
  return info.param->name();
}
