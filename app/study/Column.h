#pragma once

#include <QString>
#include <QStringList>

namespace orvenal {

/// What is done to the values of a column when they are read.
enum class Transform { NONE, LOG, SQRT };

/// Names of the transforms in jobs, in their order.
QStringList transformNames();

/// "log zinc"; the name alone without a transform.
QString transformedName(Transform transform, const QString &name);

/// False when the value has no such transform. Undefined values stay undefined.
bool applyTransform(Transform transform, double &value);

/// A column of a table, and what is done to its values.
struct Column
{
  QString column;
  Transform transform = Transform::NONE;

  QString getName() const { return transformedName(transform, column); }
  friend bool operator==(const Column &a, const Column &b)
  {
    return a.column == b.column && a.transform == b.transform;
  }
};

}  // namespace orvenal
