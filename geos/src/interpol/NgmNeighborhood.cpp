#include "geos/interpol/NgmNeighborhood.h"

#include "basic/error/NbeProgrammingError.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"

namespace {

std::unique_ptr<NgmNeighborhoodMoving> copyOf(const std::unique_ptr<NgmNeighborhoodMoving> &moving)
{
  return moving ? std::make_unique<NgmNeighborhoodMoving>(*moving) : nullptr;
}

}  // namespace

NgmNeighborhood::NgmNeighborhood() = default;

NgmNeighborhood::NgmNeighborhood(const NgmNeighborhoodMoving &parameters)
{
  setMoving(parameters);
}

NgmNeighborhood::NgmNeighborhood(const NgmNeighborhood &other)
    : _isUnique(other._isUnique), _moving(copyOf(other._moving)), _nestedParams(other._nestedParams)
{
}

NgmNeighborhood &NgmNeighborhood::operator=(const NgmNeighborhood &other)
{
  if (this != &other) {
    _isUnique = other._isUnique;
    _moving = copyOf(other._moving);
    _nestedParams = other._nestedParams;
  }
  return *this;
}

NgmNeighborhood::~NgmNeighborhood() = default;

bool NgmNeighborhood::operator==(const NgmNeighborhood &other) const
{
  if (_isUnique || other._isUnique)
    return _isUnique == other._isUnique;
  return *_moving == *other._moving && _nestedParams == other._nestedParams;
}

void NgmNeighborhood::setUnique()
{
  _isUnique = true;
  _moving.reset();
  _nestedParams.clear();
}

void NgmNeighborhood::setMoving(const NgmNeighborhoodMoving &parameters)
{
  _moving = std::make_unique<NgmNeighborhoodMoving>(parameters);
  _isUnique = false;
}

const NgmNeighborhoodMoving &NgmNeighborhood::getNeighborhoodMoving() const
{
  if (_isUnique || !_moving)
    throw NbeProgrammingError(
        QStringLiteral("NgmNeighborhood: cannot get moving neighborhood because it is unique."));
  return *_moving;
}

QString NgmNeighborhood::debug(int level) const
{
  QString text = QStringLiteral("Unique: %1\n")
                     .arg(_isUnique ? QStringLiteral("true") : QStringLiteral("false"));
  if (_moving)
    text += _moving->debug(level);
  for (int i = 0; i < _nestedParams.size(); ++i) {
    const NgmNeighborhoodNestedParam &nested = _nestedParams[i];
    text += QStringLiteral("Nested params %1 : \n").arg(i);
    text += QStringLiteral("- factor : %1\n").arg(nested.factor.toString());
    text += QStringLiteral("- minimum : %1\n").arg(nested.minimum);
    text += QStringLiteral("- maximum/sector : %1\n").arg(nested.maximumPerSector);
  }
  return text;
}
