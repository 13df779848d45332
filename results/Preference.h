#pragma once

#include <QString>

namespace zarnet {

/// What one answer says about the lossless original. The values index the summary of a test, in this order.
enum class Preference { lossless, lossy, none };

/// Judges an answer: `choice` is the side that was preferred, "A" or "B", or "same"; `lossless` is the side
/// that carried the original. Texts are compared exactly; "same" is tested first, and whatever is neither
/// "same" nor `lossless` counts as `Preference::lossy`. Any thread.
Preference preferenceOf(const QString& choice, const QString& lossless);

/// The words for a preference: "Lossless preferred", "Lossy preferred" or "Couldn’t tell".
QString preferenceText(Preference preference);

}  // namespace zarnet
