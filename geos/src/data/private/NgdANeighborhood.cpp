#include "geos/data/NgdANeighborhood.h"

NgdANeighborhood::NgdANeighborhood(const QString &roleMain) : _roleMain(roleMain) {}

NgdANeighborhood::~NgdANeighborhood() = default;
