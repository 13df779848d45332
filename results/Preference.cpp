#include "results/Preference.h"

namespace zarnet {

Preference preferenceOf(const QString& choice, const QString& lossless) {
  if (choice == u"same") return Preference::none;
  return choice == lossless ? Preference::lossless : Preference::lossy;
}

QString preferenceText(Preference preference) {
  switch (preference) {
    case Preference::lossless:
      return QStringLiteral("Lossless preferred");
    case Preference::lossy:
      return QStringLiteral("Lossy preferred");
    case Preference::none:
      break;
  }
  return QStringLiteral("Couldn’t tell");
}

}  // namespace zarnet
