#include "model/Wording.h"

#include <algorithm>

namespace zarnet {

QString clockText(double seconds) {
  const auto whole = std::max<std::int64_t>(static_cast<std::int64_t>(seconds), 0);
  return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QString rangeText(double start, double end) {
  return clockText(start) + QStringLiteral(" – ") + clockText(end);
}

QString trackCountText(std::size_t tracks) {
  return tracks == 1 ? QStringLiteral("1 track") : QStringLiteral("%1 tracks").arg(tracks);
}

QString bitrateLabel(const QString& codec) {
  return codec == u"Ogg Vorbis" ? QStringLiteral("Nominal bitrate") : QStringLiteral("Bitrate");
}

QString bitrateText(std::int64_t bitrate) {
  return QStringLiteral("%1 kbps").arg(bitrate);
}

QString startNote(bool tournament) {
  return tournament ? QStringLiteral("Results revealed after your final vote")
                    : QStringLiteral("Formats hidden until you vote");
}

QString trackPlaceText(std::int64_t index, std::size_t tracks) {
  return QStringLiteral("Track %1 of %2").arg(index + 1).arg(tracks);
}

QString blindnessText(bool revealed) {
  return revealed ? QStringLiteral("Revealed") : QStringLiteral("Blind comparison");
}

QString levelText(bool matched) {
  return matched ? QStringLiteral("Loudness matched") : QStringLiteral("Original relative levels");
}

QString heardText(const QString& side) {
  return QStringLiteral("Listening to ") + side;
}

QString confirmLabel(std::int64_t index, std::size_t tracks) {
  if (tracks <= 1) return QStringLiteral("Confirm & reveal");
  return index + 1 == static_cast<std::int64_t>(tracks) ? QStringLiteral("Confirm & show tally")
                                                        : QStringLiteral("Confirm & next track");
}

SideIdentity sideIdentity(const QString& side, const QString& lossless, const QString& original,
                          const QString& codec, std::int64_t bitrate) {
  if (side == lossless) return {QStringLiteral("Lossless original"), original};
  return {QStringLiteral("Compressed from the original"),
          codec + QStringLiteral(" · ") + bitrateText(bitrate)};
}

QString verdictText(const Vote& answer) {
  switch (preferenceOf(answer.choice, answer.lossless)) {
    case Preference::lossless:
      return QStringLiteral("You preferred the lossless version!");
    case Preference::lossy:
      return QStringLiteral("You preferred the lossy version!");
    case Preference::none:
      break;
  }
  return QStringLiteral("You couldn’t tell a difference.");
}

QString tallySummary(std::size_t tracks, const QString& codec, std::int64_t bitrate) {
  return QStringLiteral("%1 tracks · Lossless vs %2 · %3").arg(tracks).arg(codec, bitrateText(bitrate));
}

QString sidesText(const Vote& answer, const QString& codec) {
  const auto nameOf = [&](QStringView side) {
    return answer.lossless == side ? QStringLiteral("Lossless") : codec;
  };
  return QStringLiteral("A: %1 · B: %2").arg(nameOf(u"A"), nameOf(u"B"));
}

std::int64_t preferenceCount(const std::vector<Vote>& answers, const QString& preference) {
  return std::count_if(answers.begin(), answers.end(),
                       [&](const Vote& answer) { return answer.preference() == preference; });
}

}  // namespace zarnet
