#include "media/MediaTagReader.h"
#include "tests/support/Programs.h"

namespace zarnet::test {

TEST(MediaTags, FindsTheFieldsAndPicturesOfEveryKindOfFile) {
  const ScratchFolder scratch;
  runScript(scratch.path(), R"(
    ffmpeg -f lavfi -i testsrc=s=32x32 -frames:v 1 one.jpg -vf negate -frames:v 1 two.jpg
    tags="-metadata title=T -metadata artist=A -metadata author=A -metadata album=L"
    plain="-map 0 $tags"
    covered="$plain -map 1 -map 2 -c:v copy -disposition:v attached_pic"
    ffmpeg -f lavfi -i sine=d=0.1 -i one.jpg -i two.jpg $covered a.flac $covered -c:a alac a.m4a \
      $covered -write_id3v2 1 id3.aiff $covered a.mp3 $plain a.wav $plain -rf64 always rf64.wav \
      $plain -c:a flac a.oga)");
  const std::string mp3 = readFile(scratch / "a.mp3");
  const std::size_t tagSize = 10u + mp3[6] * 0x20'0000 + mp3[7] * 0x4000 + mp3[8] * 0x80 + mp3[9];
  writeFile(scratch / "id3.wav", readFile(scratch / "a.wav") + riffChunk("id3 ", mp3));
  writeFile(scratch / "id3.flac", mp3.substr(0, tagSize) + readFile(scratch / "a.flac"));

  const std::string one = readFile(scratch / "one.jpg");
  const std::string two = readFile(scratch / "two.jpg");
  const TagFields none;
  const TagFields all = {{"T"}, {"A"}, {"L"}};
  const TagFields noAlbum = {{"T"}, {"A"}, {}};
  const struct {
    const char* name;
    TagFields own;
    TagFields id3;
    TagFields info;
    std::vector<std::string> pictures;
  } cases[] = {
      {"a.m4a", all, none, none, {one, two}},  {"id3.flac", all, all, none, {one, two, one, two}},
      {"a.mp3", none, all, none, {one, two}},  {"id3.aiff", none, all, noAlbum, {one, two}},
      {"id3.wav", none, all, all, {one, two}}, {"rf64.wav", none, none, all, {}},
      {"a.oga", none, none, all, {}},
  };
  for (const auto& [name, own, id3, info, pictures] : cases) {
    // The name says nothing, or the wrong thing.
    std::filesystem::copy_file(scratch / name, scratch / "file.mp3",
                               std::filesystem::copy_options::overwrite_existing);
    const MediaTags tags = readMediaTags(scratch / "file.mp3");
    EXPECT_EQ(tags.own, own) << name;
    EXPECT_EQ(tags.id3, id3) << name;
    EXPECT_EQ(tags.info, info) << name;
    EXPECT_TRUE(tags.pictures == pictures) << name << " has " << tags.pictures.size();
  }
}

}  // namespace zarnet::test
