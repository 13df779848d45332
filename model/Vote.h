#pragma once

#include "results/Preference.h"

#include <QString>
#include <QUuid>

namespace zarnet {

/// One confirmed answer.
struct Vote {
  QUuid id;          ///< drawn when the answer is confirmed
  QString title;     ///< the track's `Song::title`
  QString choice;    ///< "A" or "B", the side that was preferred, or "same"
  QString lossless;  ///< the side that played the lossless original, "A" or "B"

  /// "Couldn’t tell", "Lossless preferred" or "Lossy preferred".
  QString preference() const { return preferenceText(preferenceOf(choice, lossless)); }
};

}  // namespace zarnet
