#include "basic/base/NbbStringFormat.h"

#include "basic/error/NbeAssertion.h"

#include <QDataStream>
#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned int CURRENT_VERSION = 250301;
constexpr int MAXIMUM_DIGITS = 17;

QString withoutTrailingZeros(QString text)
{
  if (!text.contains('.'))
    return text;
  while (text.endsWith('0'))
    text.chop(1);
  if (text.endsWith('.'))
    text.chop(1);
  return text;
}

/// A value that rounds to zero is written without the sign that it had.
QString withoutNegativeZero(const QString &text)
{
  const auto isNothing = [](QChar c) { return c == '-' || c == '0' || c == '.'; };
  const bool isZero = std::all_of(text.begin(), text.end(), isNothing);
  return isZero && text.startsWith('-') ? text.mid(1) : text;
}

QString squaredSymbol(const QString &symbol)
{
  if (symbol.isEmpty())
    return symbol;
  const bool isSimple =
      std::all_of(symbol.begin(), symbol.end(), [](QChar c) { return c.isLetter(); });
  return (isSimple ? symbol : '(' + symbol + ')') + QStringLiteral("²");
}

}  // namespace

NbbStringFormat::NbbStringFormat() : _format(NbbEFormat::E_FREE), _digits(6) {}

NbbStringFormat::NbbStringFormat(const NbbEFormat &format, int digits)
{
  setFormat(format, digits);
}

NbbStringFormat NbbStringFormat::createForVariance(const NbbStringFormat &format)
{
  NbbStringFormat result = format;
  const double scale = format._transfo.getScale();
  result.setDisplayUnit(squaredSymbol(format._unitSymbol), NbuUnitTransfo(scale * scale));
  if (format._format == NbbEFormat::E_INTEGER)
    result.setFormat(NbbEFormat::FREE, 6);
  return result;
}

NbbStringFormat NbbStringFormat::createFromVarType(Nbd::EVariableType type)
{
  switch (type) {
    case Nbd::TYPE_INT32:
    case Nbd::TYPE_INT64:
    case Nbd::TYPE_BOOLEAN:
    case Nbd::TYPE_ENUM:
      return NbbStringFormat(NbbEFormat::INTEGER, 0);
    case Nbd::TYPE_DOUBLE:
    case Nbd::TYPE_POINT:
      return NbbStringFormat(NbbEFormat::FREE, 8);
    default:
      return NbbStringFormat();
  }
}

NbbStringFormat NbbStringFormat::getDebugFormat()
{
  return NbbStringFormat(NbbEFormat::FREE, MAXIMUM_DIGITS);
}

void NbbStringFormat::setFormat(const NbbEFormat &format, int digits)
{
  _format = format.getValue();
  _digits = std::clamp(digits, 0, MAXIMUM_DIGITS);
}

void NbbStringFormat::setDisplayUnit(const QString &symbol, const NbuUnitTransfo &transfo)
{
  if (!transfo.isValid())
    NBE_FAIL(QStringLiteral("Invalid unit transformation"));
  _unitSymbol = symbol;
  _transfo = transfo;
}

QString NbbStringFormat::valueToString(double value) const
{
  const double display = _transfo.transform(value);
  if (!NbbGlobal::isDefined(display))
    return NbbGlobal::STR_NA;
  switch (_format) {
    case NbbEFormat::E_DECIMAL:
      return withoutNegativeZero(QString::number(display, 'f', _digits));
    case NbbEFormat::E_INTEGER:
      return withoutNegativeZero(QString::number(std::round(display), 'f', 0));
    case NbbEFormat::E_SCIENTIFIC:
      return QString::number(display, 'e', _digits);
    case NbbEFormat::E_SEMIFREE:
      return withoutNegativeZero(withoutTrailingZeros(QString::number(display, 'f', _digits)));
    default:
      return withoutNegativeZero(QString::number(display, 'g', _digits));
  }
}

QString NbbStringFormat::valueToStringWithUnit(double value) const
{
  const QString text = valueToString(value);
  const bool showsUnit = !_unitSymbol.isEmpty() && text != NbbGlobal::STR_NA;
  return showsUnit ? text + ' ' + _unitSymbol : text;
}

bool NbbStringFormat::operator==(const NbbStringFormat &other) const
{
  return _format == other._format && _digits == other._digits && _unitSymbol == other._unitSymbol &&
         _transfo == other._transfo;
}

QList<unsigned int> NbbStringFormat::_serializedVersions() const
{
  return {CURRENT_VERSION};
}

unsigned int NbbStringFormat::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

void NbbStringFormat::_serialize(QDataStream &stream) const
{
  stream << qint32(_format) << qint32(_digits) << _unitSymbol;
  _transfo.serialize(stream);
}

void NbbStringFormat::_unserialize(QDataStream &stream, unsigned int)
{
  qint32 format = 0, digits = 0;
  NbbStringFormat read;
  stream >> format >> digits >> read._unitSymbol;
  _checkStream(stream);
  read._transfo.unserialize(stream);
  if (!NbbEFormat::existsValue(format))
    _refuse(QObject::tr("unknown format %1").arg(format));
  if (digits < 0 || digits > MAXIMUM_DIGITS)
    _refuse(QObject::tr("bad number of digits %1").arg(digits));
  if (!read._transfo.isValid())
    _refuse(QObject::tr("invalid unit transformation"));
  read._format = format;
  read._digits = digits;
  *this = read;
}
