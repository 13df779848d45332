#include "model/Wording.h"

#include <gtest/gtest.h>

namespace zarnet {
namespace {

TEST(Wording, TellsTimesTracksAndSettings) {
  const std::pair<QString, const char*> said[] = {
      {clockText(0), "0:00"},
      {clockText(-0.5), "0:00"},
      {clockText(59.99), "0:59"},
      {clockText(60), "1:00"},
      {clockText(3600), "60:00"},
      {rangeText(42.9, 114), "0:42 – 1:54"},
      {trackCountText(1), "1 track"},
      {trackCountText(2), "2 tracks"},
      {bitrateLabel("AAC"), "Bitrate"},
      {bitrateLabel("MP3"), "Bitrate"},
      {bitrateLabel("Ogg Vorbis"), "Nominal bitrate"},
      {bitrateText(96), "96 kbps"},
      {startNote(false), "Formats hidden until you vote"},
      {startNote(true), "Results revealed after your final vote"},
      {trackPlaceText(0, 4), "Track 1 of 4"},
      {blindnessText(false), "Blind comparison"},
      {blindnessText(true), "Revealed"},
      {levelText(false), "Original relative levels"},
      {levelText(true), "Loudness matched"},
      {heardText("B"), "Listening to B"},
      {confirmLabel(0, 1), "Confirm & reveal"},
      {confirmLabel(0, 4), "Confirm & next track"},
      {confirmLabel(2, 4), "Confirm & next track"},
      {confirmLabel(3, 4), "Confirm & show tally"},
      {tallySummary(3, "MP3", 128), "3 tracks · Lossless vs MP3 · 128 kbps"},
  };
  for (const auto& [text, expected] : said)
    EXPECT_EQ(text, expected);
}

TEST(Wording, JudgesEveryAnswerByWhereTheOriginalWas) {
  const struct {
    const char *choice, *lossless, *verdict, *sides;
    std::int64_t preferred[3];  // lossless, lossy, none
  } cases[] = {
      {"A", "A", "You preferred the lossless version!", "A: Lossless · B: MP3", {1, 0, 0}},
      {"A", "B", "You preferred the lossy version!", "A: MP3 · B: Lossless", {0, 1, 0}},
      {"B", "A", "You preferred the lossy version!", "A: Lossless · B: MP3", {0, 1, 0}},
      {"B", "B", "You preferred the lossless version!", "A: MP3 · B: Lossless", {1, 0, 0}},
      {"same", "A", "You couldn’t tell a difference.", "A: Lossless · B: MP3", {0, 0, 1}},
      {"same", "B", "You couldn’t tell a difference.", "A: MP3 · B: Lossless", {0, 0, 1}},
  };
  std::vector<Vote> all;
  for (const auto& [choice, lossless, verdict, sides, preferred] : cases) {
    const Vote& vote = all.emplace_back(Vote{{}, "Song", choice, lossless});
    EXPECT_EQ(verdictText(vote), verdict);
    EXPECT_EQ(sidesText(vote, "MP3"), sides);
    EXPECT_EQ(preferenceCount({vote}, "Lossless preferred"), preferred[0]) << choice << lossless;
    EXPECT_EQ(preferenceCount({vote}, "Lossy preferred"), preferred[1]) << choice << lossless;
    EXPECT_EQ(preferenceCount({vote}, "Couldn’t tell"), preferred[2]) << choice << lossless;
    for (const QString side : {"A", "B"}) {
      const SideIdentity identity = sideIdentity(side, lossless, "16-bit / 48 kHz · PCM", "AAC", 256);
      const bool original = side == lossless;
      EXPECT_EQ(identity.name, original ? "Lossless original" : "Compressed from the original");
      EXPECT_EQ(identity.format, original ? "16-bit / 48 kHz · PCM" : "AAC · 256 kbps");
    }
  }
  EXPECT_EQ(preferenceCount(all, "Couldn’t tell"), 2);
}

}  // namespace
}  // namespace zarnet
