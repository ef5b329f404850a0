#pragma once

#include <QJsonValue>
#include <QString>
#include <QVector>

namespace orvenal {

/// A place in a JSON value, written as in messages: "model.structures[0].range".
class JsonPath
{
public:
  /// A text that is no path gives an invalid one.
  static JsonPath parse(const QString &text);

  bool isValid() const { return !_steps.isEmpty(); }

  /// The value at the place; undefined when there is none.
  QJsonValue get(const QJsonValue &root) const;

  /// `root` with another value at the place. Objects and lists on the way are made, a list grows by
  /// one element at most; an undefined value removes a member. A place that does not fit the root
  /// (a key in a list, an index too far) is a UsageError.
  QJsonValue set(const QJsonValue &root, const QJsonValue &value) const;

private:
  struct Step
  {
    QString key;
    int index;  ///< -1 for a key
  };

  QJsonValue _set(const QJsonValue &root, int depth, const QJsonValue &value) const;
  QString _toText(int nSteps) const;

  QVector<Step> _steps;
};

/// Whether `path` is the place `prefix` or lies within it.
bool isWithin(const QString &path, const QString &prefix);

}  // namespace orvenal
