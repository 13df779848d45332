#include "model/TrackMetadata.h"

#include <gtest/gtest.h>

namespace zarnet {
namespace {

TEST(TrackMetadata, CleansEachValue) {
  const std::optional<QString> none;
  const struct {
    std::string stored;
    std::optional<QString> cleaned;
  } cases[] = {
      {"Live\r\nVersion", "Live  Version"},
      {" \tTitle\n", "Title"},
      {"\u00a0\u2003wide\u3000", "wide"},
      {"zero\u200dwidth\ufeff", "zero width"},
      {"tagged\U000e0041!", "tagged !"},
      {"🎧 Ünï", "🎧 Ünï"},
      {"", none},
      {"  \u2028 ", none},
      {"\u200b\x01", none},
  };
  for (const auto& [stored, cleaned] : cases) {
    EXPECT_EQ(trackMetadata({{{}, {stored}, {}}, {}, {}, {}}, "file.flac").artist, cleaned) << stored;
    EXPECT_EQ(trackMetadata({{{stored}, {}, {}}, {}, {}, {}}, "file.flac").title, cleaned.value_or("file"))
        << stored;
  }
}

TEST(TrackMetadata, PrefersTheContainersOwnFieldsThenID3ThenPlainInfo) {
  const TagFields own{{"own"}, {"own"}, {"own"}};
  const TagFields id3{{"id3"}, {"id3"}, {"id3"}};
  const TagFields info{{"info"}, {"info"}, {"info"}};
  const TagFields blank{{" ", "\n"}, {""}, {"\t"}};
  const struct {
    MediaTags tags;
    TrackMetadata expected;
  } cases[] = {
      {{own, id3, info, {}}, {"own", "own", "own"}},
      {{blank, id3, info, {}}, {"id3", "id3", "id3"}},
      {{blank, blank, info, {}}, {"info", "info", "info"}},
      {{blank, blank, blank, {}}, {"Name", std::nullopt, std::nullopt}},
      {{{{" ", "second"}, {}, {}}, {{}, {"id3"}, {}}, {{"info"}, {"info"}, {"info"}}, {}},
       {"second", "id3", "info"}},
  };
  for (const auto& [tags, expected] : cases) {
    const TrackMetadata metadata = trackMetadata(tags, "/music/Name.flac");
    EXPECT_EQ(metadata.title, expected.title);
    EXPECT_EQ(metadata.artist, expected.artist);
    EXPECT_EQ(metadata.album, expected.album);
  }
}

}  // namespace
}  // namespace zarnet
