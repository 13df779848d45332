#pragma once

#include "results/ResultsError.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <vector>

namespace zarnet {

/// One track of a finished listening test, as the results image shows it.
struct TrackResult {
  QString title;     ///< any text; wrapped as wide as the row allows, never shortened
  QString choice;    ///< "A", "B" or "same"
  QString lossless;  ///< the side that carried the original, "A" or "B"
};

/// Draws the outcome of a listening test as a PNG image, 1000 pixels wide and as tall as its rows need: a
/// header, three cards that count the preferences, and a card for each track in the order of `answers`.
/// Returns the bytes of the file (8-bit RGBA, opaque). `codec` is the lossy format's display name, `bitrate`
/// is in kbps, `matched` tells whether loudness was matched.
///
/// Raises `ResultsError`: "Complete a comparison first." without answers; "This comparison is too large to
/// save as one image." when the height would be 30000 pixels or more, or the titles have more than
/// 250,000 UTF-16 units; "Could not create the results image."
/// when the bitmap cannot be had or encoded.
///
/// Needs up to 120 MB for the bitmap and little besides. Keeps no state.
/// Requires: a QGuiApplication (that of the "offscreen" platform will do: no display is used). Interface
/// thread.
QByteArray renderResultsPNG(const std::vector<TrackResult>& answers, const QString& codec,
                            std::int64_t bitrate, bool matched);

}  // namespace zarnet
