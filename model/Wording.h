#pragma once

#include "model/Vote.h"

#include <QString>
#include <cstdint>
#include <vector>

namespace zarnet {

// What the screens say, without a screen. Sides are "A" or "B"; bitrates are kbps.

/// Minutes and seconds of a time in seconds, truncated: 0:59 for 59.9, 60:00 for an hour. A negative time is
/// 0:00. Requires: a finite time.
QString clockText(double seconds);
/// From one time to another: "0:42 – 0:54".
QString rangeText(double start, double end);

/// "1 track", "2 tracks".
QString trackCountText(std::size_t tracks);
/// What stands over the choice of a bitrate; the one of a variable encoder is only nominal.
QString bitrateLabel(const QString& codec);
/// "256 kbps".
QString bitrateText(std::int64_t bitrate);
/// When the formats come to light, beside the button that starts a test.
QString startNote(bool tournament);

/// Where a test of several tracks stands: "Track 2 of 4" for the index 1.
QString trackPlaceText(std::int64_t index, std::size_t tracks);
/// Whether the formats are still hidden.
QString blindnessText(bool revealed);
/// How the two sides' levels were prepared.
QString levelText(bool matched);
/// Which side is heard, for those who cannot see it.
QString heardText(const QString& side);
/// What the button that confirms an answer does: reveals, goes to the next track, or shows the tally.
QString confirmLabel(std::int64_t index, std::size_t tracks);

/// What a side turned out to be, and its format.
struct SideIdentity {
  QString name;
  QString format;
};
SideIdentity sideIdentity(const QString& side, const QString& lossless, const QString& original,
                          const QString& codec, std::int64_t bitrate);
/// The answer of a test of one track against the truth, as a sentence.
QString verdictText(const Vote& answer);

/// What was compared, under the heading of a tally.
QString tallySummary(std::size_t tracks, const QString& codec, std::int64_t bitrate);
/// What stood behind the two sides of a track: "A: Lossless · B: MP3".
QString sidesText(const Vote& answer, const QString& codec);
/// How many answers are worded as this preference.
std::int64_t preferenceCount(const std::vector<Vote>& answers, const QString& preference);

}  // namespace zarnet
