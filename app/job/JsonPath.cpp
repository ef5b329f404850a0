#include "app/job/JsonPath.h"

#include "app/base/UsageError.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QRegularExpression>

namespace orvenal {

JsonPath JsonPath::parse(const QString &text)
{
  static const QRegularExpression step(
      QStringLiteral("\\G(?:(^|\\.)([A-Za-z]\\w*)|\\[(\\d{1,6})\\])"));
  JsonPath path;
  int position = 0;
  while (position < text.size()) {
    const QRegularExpressionMatch match = step.match(text, position);
    const bool isKey = match.capturedLength(2) > 0;
    const bool hasDot = match.capturedLength(1) > 0;
    if (!match.hasMatch() || (position == 0 && (!isKey || hasDot)))
      return JsonPath();
    path._steps.append({match.captured(2), isKey ? -1 : match.captured(3).toInt()});
    position = match.capturedEnd();
  }
  return path;
}

QJsonValue JsonPath::get(const QJsonValue &root) const
{
  QJsonValue value = root;
  for (const Step &step : _steps) {
    if (step.index >= 0)
      value = value.isArray() ? value.toArray().at(step.index) : QJsonValue::Undefined;
    else
      value = value.isObject() ? value.toObject().value(step.key) : QJsonValue::Undefined;
  }
  return value;
}

QJsonValue JsonPath::set(const QJsonValue &root, const QJsonValue &value) const
{
  return _set(root, 0, value);
}

QJsonValue JsonPath::_set(const QJsonValue &root, int depth, const QJsonValue &value) const
{
  if (depth == _steps.size())
    return value;
  const Step &step = _steps[depth];
  if (step.index < 0) {
    if (!root.isObject() && !root.isUndefined() && !root.isNull())
      throw UsageError(QObject::tr("%1: is no object").arg(_toText(depth)));
    QJsonObject object = root.toObject();
    if (value.isUndefined() && !object.contains(step.key))
      return root;
    const QJsonValue member = _set(object.value(step.key), depth + 1, value);
    if (member.isUndefined())
      object.remove(step.key);
    else
      object.insert(step.key, member);
    return object;
  }
  QJsonArray list = root.toArray();
  if ((!root.isArray() && !root.isUndefined()) || step.index > list.size())
    throw UsageError(QObject::tr("%1: the list has %2 elements (the first one is [0])")
                         .arg(_toText(depth + 1), QString::number(list.size())));
  if (value.isUndefined() && step.index == list.size())
    return root;
  const QJsonValue element = _set(list.at(step.index), depth + 1, value);
  if (element.isUndefined())
    list.removeAt(step.index);
  else if (step.index < list.size())
    list[step.index] = element;
  else
    list.append(element);
  return list;
}

QString JsonPath::_toText(int nSteps) const
{
  QString text;
  for (const Step &step : _steps.mid(0, nSteps)) {
    if (step.index >= 0)
      text += QStringLiteral("[%1]").arg(step.index);
    else
      text += (text.isEmpty() ? QString() : QStringLiteral(".")) + step.key;
  }
  return text;
}

bool isWithin(const QString &path, const QString &prefix)
{
  return path == prefix || path.startsWith(prefix + '.') || path.startsWith(prefix + '[');
}

}  // namespace orvenal
