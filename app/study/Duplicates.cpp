#include "app/study/Duplicates.h"

#include "app/base/NumberText.h"
#include "app/io/TableReader.h"
#include "app/study/Coregionalization.h"
#include "app/study/Job.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "geos/matrix/NgmMatrix.h"

#include <QObject>

#include <algorithm>
#include <array>

namespace orvenal {

namespace {

/// Ranks of samples at one place, in the order of the file.
using Group = std::vector<std::size_t>;

/// The places that several samples share.
std::vector<Group> findGroups(const Samples &samples)
{
  const auto place = [&](std::size_t i) {
    return std::array<double, 3>{samples.x[i], samples.y[i], samples.z.empty() ? 0. : samples.z[i]};
  };
  Group order(samples.x.size());
  for (std::size_t i = 0; i < order.size(); ++i)
    order[i] = i;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    const auto placeOfA = place(a);
    const auto placeOfB = place(b);
    return placeOfA < placeOfB || (placeOfA == placeOfB && a < b);
  });
  std::vector<Group> groups;
  for (std::size_t first = 0, last = 0; first < order.size(); first = last) {
    while (last < order.size() && place(order[last]) == place(order[first]))
      ++last;
    if (last - first > 1)
      groups.emplace_back(order.begin() + std::ptrdiff_t(first),
                          order.begin() + std::ptrdiff_t(last));
  }
  return groups;
}

QList<std::vector<double> *> variablesOf(Samples &samples)
{
  QList<std::vector<double> *> variables = {&samples.value};
  for (std::vector<double> &covariate : samples.covariates)
    variables << &covariate;
  return variables;
}

/// The first sample in the file that repeats an earlier one, and that one.
struct FirstPair
{
  std::size_t earlier = 0;
  std::size_t later = SIZE_MAX;
};

/// Counts of samples with a value that an earlier one of their group has too.
FirstPair countDuplicates(const std::vector<Group> &groups, Samples &samples)
{
  const QList<std::vector<double> *> variables = variablesOf(samples);
  samples.nDuplicatesOf.assign(std::size_t(variables.size()), 0);
  FirstPair pair;
  for (const Group &group : groups) {
    std::vector<bool> isDuplicate(group.size(), false);
    for (int v = 0; v < variables.size(); ++v) {
      const auto isDefined = [&](std::size_t i) {
        return NbbGlobal::isDefined((*variables[v])[i]);
      };
      const auto first = std::find_if(group.begin(), group.end(), isDefined);
      for (auto other = first; other != group.end(); ++other) {
        if (other == first || !isDefined(*other))
          continue;
        ++samples.nDuplicatesOf[std::size_t(v)];
        isDuplicate[std::size_t(other - group.begin())] = true;
        if (*other < pair.later)
          pair = {*first, *other};
      }
    }
    samples.nDuplicates += std::count(isDuplicate.begin(), isDuplicate.end(), true);
  }
  return pair;
}

/// The place in its file of a sample, such as "line 12".
QString placeInFile(const JobTable &table, std::size_t sample)
{
  const auto reader = TableReader::open(table.file, table.shown, table.format);
  for (std::size_t i = 0; i <= sample; ++i) {
    if (!reader->next())
      return QObject::tr("a line that is gone");
  }
  return reader->getPlace();
}

[[noreturn]] void fail(const Job &job, const Samples &samples, const FirstPair &pair)
{
  const auto coordinate = [](double value) { return QString::number(value, 'g', 15); };
  QStringList place = {coordinate(samples.x[pair.later]), coordinate(samples.y[pair.later])};
  if (!samples.z.empty())
    place << coordinate(samples.z[pair.later]);
  throw NbeUserError(QObject::tr("%1: the samples of %2 and %3 lie at one place (%4); %5 "
                                 "(data.duplicates is \"error\")")
                         .arg(job.data.shown, placeInFile(job.data, pair.earlier),
                              placeInFile(job.data, pair.later), place.join(QStringLiteral(", ")),
                              textDuplicates(samples)));
}

double firstOf(const std::vector<double> &values, const Group &group)
{
  for (const std::size_t i : group) {
    if (NbbGlobal::isDefined(values[i]))
      return values[i];
  }
  return NbbGlobal::D_FFFF;
}

double meanOf(const std::vector<double> &values, const Group &group)
{
  double sum = 0.;
  qint64 count = 0;
  for (const std::size_t i : group) {
    if (!NbbGlobal::isDefined(values[i]))
      continue;
    sum += values[i];
    ++count;
  }
  return count > 0 ? sum / double(count) : NbbGlobal::D_FFFF;
}

void merge(std::vector<double> &values, const std::vector<Group> &groups, DuplicatePolicy policy)
{
  for (const Group &group : groups)
    values[group.front()] =
        policy == DuplicatePolicy::AVERAGE ? meanOf(values, group) : firstOf(values, group);
}

void keep(std::vector<double> &values, const std::vector<bool> &isKept)
{
  std::size_t next = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (isKept[i])
      values[next++] = values[i];
  }
  values.resize(next);
}

/// One sample for each group, where its first one was.
void mergeGroups(const Job &job, const std::vector<Group> &groups, Samples &samples)
{
  std::vector<bool> isKept(samples.x.size(), true);
  for (const Group &group : groups) {
    for (std::size_t k = 1; k < group.size(); ++k)
      isKept[group[k]] = false;
    samples.nMerged += qint64(group.size());
  }
  samples.nMergedPlaces = qint64(groups.size());
  QList<std::vector<double> *> columns = variablesOf(samples);
  for (std::vector<double> &column : samples.auxiliaryColumns)
    columns << &column;
  for (std::vector<double> *column : columns)
    merge(*column, groups, job.duplicates);
  for (std::vector<double> &line : samples.lines)
    columns << &line;
  columns << &samples.x << &samples.y;
  if (!samples.z.empty())
    columns << &samples.z;
  for (std::vector<double> *column : columns)
    keep(*column, isKept);
}

}  // namespace

QStringList duplicatePolicyNames()
{
  return {QStringLiteral("keep"), QStringLiteral("error"), QStringLiteral("first"),
          QStringLiteral("average")};
}

void treatDuplicates(const Job &job, Samples &samples)
{
  const std::vector<Group> groups = findGroups(samples);
  const FirstPair pair = countDuplicates(groups, samples);
  if (job.duplicates == DuplicatePolicy::FAIL && samples.nDuplicates > 0)
    fail(job, samples, pair);
  if (job.duplicates == DuplicatePolicy::FIRST || job.duplicates == DuplicatePolicy::AVERAGE)
    mergeGroups(job, groups, samples);
}

bool areDuplicatesDistinct(const Job &job, const Samples &samples)
{
  if (samples.nMerged > 0)
    return true;
  const bool hasErrors =
      job.kriging.measurementError || job.kriging.constantError.value_or(0.) > 0.;
  QVector<int> variables;
  for (std::size_t i = 0; i < samples.nDuplicatesOf.size(); ++i) {
    if (samples.nDuplicatesOf[i] > 0 && !(i == 0 && hasErrors))
      variables << int(i);
  }
  const NgmMatrix &nugget = job.model.getNuggetMatrix();
  const int n = variables.size();
  NgmMatrix own(n, n, true);
  for (int i = 0; i < n; ++i) {
    if (!(nugget(variables[i], variables[i]) > 0.))
      return false;
    for (int j = 0; j <= i; ++j)
      own.setElement(i, j, nugget(variables[i], variables[j]));
  }
  constexpr double smallest = 1e-9;
  return n == 0 || Coregionalization::smallestEigenvalue(own) > smallest;
}

QString textDuplicates(const Samples &samples)
{
  return samples.nDuplicates == 1 ? QObject::tr("1 sample lies at the place of an earlier one")
                                  : QObject::tr("%1 samples lie at the place of an earlier one")
                                        .arg(groupedText(samples.nDuplicates));
}

QString describeDuplicates(const Job &job, const Samples &samples)
{
  if (samples.nMerged > 0)
    return (job.duplicates == DuplicatePolicy::AVERAGE
                ? QObject::tr("%1 samples at %2 places: one at each, with their means")
                : QObject::tr("%1 samples at %2 places: one at each, with the first values"))
        .arg(groupedText(samples.nMerged), groupedText(samples.nMergedPlaces));
  if (samples.nDuplicates > 0)
    return QObject::tr("%1, all kept").arg(groupedText(samples.nDuplicates));
  return QObject::tr("none");
}

}  // namespace orvenal
