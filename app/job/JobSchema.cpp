#include "app/job/JobSchema.h"

#include "app/base/Documents.h"
#include "app/job/JobText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <QObject>

#include <cmath>

namespace orvenal {

namespace {

QString code(const QString &text)
{
  return '`' + text + '`';
}

/// A value as it is written in a job.
QString toJson(const QJsonValue &value)
{
  if (value.isArray()) {
    QStringList elements;
    for (const QJsonValue &element : value.toArray())
      elements << toJson(element);
    return '[' + elements.join(QStringLiteral(", ")) + ']';
  }
  const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
  return QString::fromUtf8(text.mid(1, text.size() - 2));
}

QString capitalized(const QString &text)
{
  return text.left(1).toUpper() + text.mid(1);
}

/// A schema or a part of it, and where it stands: "properties.data".
struct Node
{
  QString place;
  QJsonObject schema;

  QString text(const char *key) const { return schema.value(QLatin1String(key)).toString(); }
  bool has(const char *key) const { return schema.contains(QLatin1String(key)); }
};

/// Bounds of a number in words; those that only keep it apart from the undefined value are none.
QString boundsOf(const Node &node)
{
  constexpr double largest = 1e30;
  const auto bound = [&](const char *key) {
    const double value = node.schema.value(QLatin1String(key)).toDouble(NAN);
    return std::abs(value) < largest ? toJson(value) : QString();
  };
  const QString least = bound("minimum");
  const QString most = bound("maximum");
  const QString above = bound("exclusiveMinimum");
  QStringList words;
  if (!least.isEmpty() && !most.isEmpty())
    return QObject::tr(" %1 to %2").arg(least, most);
  if (!above.isEmpty())
    words << QObject::tr(" above %1").arg(above);
  if (!least.isEmpty())
    words << QObject::tr(" at least %1").arg(least);
  if (!most.isEmpty())
    words << QObject::tr(" at most %1").arg(most);
  return words.join(',');
}

/// Reads the sections out of a schema.
class SectionReader
{
public:
  explicit SectionReader(const JobText &text) : _root(text.root.toObject()), _keys(text.keys) {}

  QList<JobSection> read()
  {
    _readSection({QString(), _root}, QString());
    return _sections;
  }

private:
  /// A part that belongs to a section of its own, and its path in the job.
  struct Member
  {
    Node node;
    QString path;
  };

  Node _child(const Node &node, const QString &key) const
  {
    const QString place = node.place.isEmpty() ? key : node.place + '.' + key;
    return {place, node.schema.value(key).toObject()};
  }
  Node _resolve(const Node &node) const;
  QString _value(const Node &node, bool isPlural = false) const;
  QString _choices(const Node &node) const;
  QString _list(const Node &node) const;
  JobKey _key(const QString &name, const Node &own, bool isRequired) const;
  void _readKeys(const Node &object, const QString &prefix, const QString &path,
                 JobSection &section, QList<Member> &members) const;
  void _readSection(const Node &node, const QString &path);

  QJsonObject _root;
  QMap<QString, QStringList> _keys;
  QList<JobSection> _sections;
  QMap<QString, int> _sectionOfPlace;
};

/// The part that a "$ref" names, with what stands beside the reference.
Node SectionReader::_resolve(const Node &node) const
{
  if (!node.has("$ref"))
    return node;
  Node target{QString(), _root};
  for (const QString &key : node.text("$ref").mid(2).split('/'))
    target = _child(target, key);
  target = _resolve(target);
  for (auto member = node.schema.begin(); member != node.schema.end(); ++member) {
    if (member.key() != QLatin1String("$ref"))
      target.schema.insert(member.key(), member.value());
  }
  return target;
}

QString SectionReader::_choices(const Node &node) const
{
  QStringList choices;
  bool areExplained = true;
  for (const QJsonValue &choice : node.schema.value(QLatin1String("enum")).toArray()) {
    choices << code(toJson(choice));
    areExplained = areExplained && node.text("description").contains(choices.last());
  }
  return areExplained ? QString() : choices.join(QStringLiteral(", "));
}

QString SectionReader::_list(const Node &node) const
{
  const int least = node.schema.value(QLatin1String("minItems")).toInt(0);
  const int most = node.schema.value(QLatin1String("maxItems")).toInt(-1);
  Node items = _resolve(_child(node, QStringLiteral("items")));
  if (!items.has("description"))
    items.schema.insert(QStringLiteral("description"), node.text("description"));
  const QString things = _value(items, true);
  if (most < 0)
    return QObject::tr("list of %1").arg(things);
  const QString counts = most == least + 1 ? QObject::tr("%1 or %2") : QObject::tr("%1 to %2");
  return QObject::tr("list of %1 %2").arg(counts.arg(least).arg(most), things);
}

QString SectionReader::_value(const Node &node, bool isPlural) const
{
  if (node.has("x-value"))
    return node.text("x-value");
  if (node.has("anyOf") && !node.has("type")) {
    QStringList values;
    for (const QJsonValue &part : node.schema.value(QLatin1String("anyOf")).toArray())
      values << _value(_resolve({node.place, part.toObject()}));
    return values.join(QObject::tr(" or "));
  }
  if (node.has("enum")) {
    const QString choices = _choices(node);
    if (!choices.isEmpty())
      return choices;
  }
  const QString type = node.text("type");
  if (type == QLatin1String("array"))
    return _list(node);
  if (type == QLatin1String("boolean"))
    return code(QStringLiteral("true")) + QObject::tr(" or ") + code(QStringLiteral("false"));
  if (type == QLatin1String("number"))
    return (isPlural ? QObject::tr("numbers") : QObject::tr("number")) + boundsOf(node);
  if (type == QLatin1String("integer"))
    return (isPlural ? QObject::tr("whole numbers") : QObject::tr("whole number")) + boundsOf(node);
  if (type == QLatin1String("object"))
    return isPlural ? QObject::tr("objects") : QObject::tr("object");
  return isPlural ? QObject::tr("texts") : QObject::tr("text");
}

JobKey SectionReader::_key(const QString &name, const Node &own, bool isRequired) const
{
  const Node node = _resolve(own);
  JobKey key;
  key.name = name;
  key.value = _value(node);
  const bool isTitled = node.has("title") && !(own.has("$ref") && own.has("description"));
  key.meaning = isTitled ? capitalized(node.text("title")) : node.text("description");
  if (isRequired)
    key.fallback = QObject::tr("needed");
  else if (node.has("default"))
    key.fallback = code(toJson(node.schema.value(QLatin1String("default"))));
  else
    key.fallback = node.text("x-default");
  return key;
}

/// Rows of an object. Members without a title are shown in the same table, those of lists and of
/// objects with one have a section of their own.
void SectionReader::_readKeys(const Node &object, const QString &prefix, const QString &path,
                              JobSection &section, QList<Member> &members) const
{
  const Node properties = _child(object, QStringLiteral("properties"));
  const QJsonArray required = object.schema.value(QLatin1String("required")).toArray();
  for (const QString &name : _keys.value(properties.place)) {
    const Node own = _child(properties, name);
    const bool isShared = own.text("$ref").contains(QLatin1String("/properties/"));
    if (isShared && !prefix.isEmpty())
      continue;  // described where it belongs
    section.keys << _key(prefix + name, own, required.contains(name));
    Node member = _resolve(own);
    const bool isList = member.text("type") == QLatin1String("array");
    if (isList)
      member = _resolve(_child(member, QStringLiteral("items")));
    if (!member.has("properties"))
      continue;
    const QString suffix = name + (isList ? QStringLiteral("[]") : QString());
    const QString memberPath = path.isEmpty() ? suffix : path + '.' + suffix;
    if (member.has("title"))
      members.append({member, memberPath});
    else
      _readKeys(member, prefix + suffix + '.', memberPath, section, members);
  }
}

void SectionReader::_readSection(const Node &node, const QString &path)
{
  if (_sectionOfPlace.contains(node.place)) {
    _sections[_sectionOfPlace.value(node.place)].paths << path;
    return;
  }
  // What stands beside a reference belongs to the key, not to the section.
  QJsonObject schema = _root;
  if (!node.place.isEmpty()) {
    for (const QString &key : node.place.split('.'))
      schema = schema.value(key).toObject();
  }
  const Node whole{node.place, schema};
  JobSection section;
  section.paths << path;
  section.title = whole.text("title");
  section.description = whole.text("description");
  section.notes = whole.text("x-notes");
  QList<Member> members;
  _readKeys(whole, QString(), path, section, members);
  _sectionOfPlace.insert(node.place, _sections.size());
  _sections << section;
  for (const Member &member : members)
    _readSection(member.node, member.path);
}

}  // namespace

const JobSchema &JobSchema::get()
{
  static const JobSchema schema;
  return schema;
}

JobSchema::JobSchema() : _text(readDocument(QStringLiteral("job.schema.json")))
{
  _sections = SectionReader(parseJobText(QStringLiteral("job.schema.json"), _text)).read();
}

}  // namespace orvenal
