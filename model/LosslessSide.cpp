#include "model/LosslessSide.h"

#include <QRandomGenerator>

namespace zarnet {

QString drawnLosslessSide() {
  return QRandomGenerator::system()->bounded(2) == 0 ? QStringLiteral("A") : QStringLiteral("B");
}

}  // namespace zarnet
