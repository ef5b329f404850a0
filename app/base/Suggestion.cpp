#include "app/base/Suggestion.h"

#include <QObject>

#include <algorithm>
#include <vector>

namespace orvenal {

namespace {

/// Optimal string alignment distance.
int editDistance(const QString &a, const QString &b)
{
  const int width = b.size() + 1;
  std::vector<int> beforeLast(width), last(width), current(width);
  for (int j = 0; j < width; ++j)
    current[j] = j;
  for (int i = 1; i <= a.size(); ++i) {
    beforeLast.swap(last);
    last.swap(current);
    current[0] = i;
    for (int j = 1; j < width; ++j) {
      const int replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      current[j] = std::min({last[j] + 1, current[j - 1] + 1, replaced});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        current[j] = std::min(current[j], beforeLast[j - 2] + 1);
    }
  }
  return current[width - 1];
}

}  // namespace

QString nearestWord(const QString &word, const QStringList &candidates)
{
  constexpr int longestWord = 100;  // nobody mistypes more, and the distance is quadratic
  if (word.size() > longestWord)
    return QString();
  QString nearest;
  int smallest = std::max(1, word.size() / 3) + 1;
  for (const QString &candidate : candidates) {
    if (candidate.size() > longestWord)
      continue;
    const int distance = editDistance(word.toLower(), candidate.toLower());
    if (distance < smallest) {
      smallest = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

QString didYouMean(const QString &word, const QStringList &candidates)
{
  const QString nearest = nearestWord(word, candidates);
  return nearest.isEmpty() ? QString() : QObject::tr("; did you mean \"%1\"?").arg(nearest);
}

QString quotedList(const QStringList &words)
{
  if (words.isEmpty())
    return QString();
  constexpr int most = 50;
  constexpr int longest = 60;
  QStringList shown;
  for (const QString &word : words.mid(0, most))
    shown << (word.size() > longest ? word.left(longest) + QChar(0x2026) : word);
  const QString list = '"' + shown.join(QStringLiteral("\", \"")) + QLatin1Char('"');
  return words.size() > most ? QObject::tr("%1 and %2 more").arg(list).arg(words.size() - most)
                             : list;
}

}  // namespace orvenal
