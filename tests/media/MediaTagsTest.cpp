#include "media/MediaTagReader.h"
#include "system/FileHandle.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

namespace zarnet::test {

using namespace std::string_literals;

namespace {

std::vector<std::string> picturesIn(const std::filesystem::path& file) {
  std::vector<std::string> pictures;
  eachPicture(file, [&](const std::string& picture) {
    pictures.push_back(picture);
    return false;
  });
  return pictures;
}

/// A number with seven bits to each of four bytes.
std::string sevenBits(std::size_t number) {
  std::string bytes;
  for (const int shift : {21, 14, 7, 0})
    bytes += static_cast<char>(number >> shift & 0x7F);
  return bytes;
}

std::string id3Tag(char version, char flags, const std::string& content) {
  return std::string("ID3") + version + '\0' + flags + sevenBits(content.size()) + content;
}

std::string frame3(const char* id, const std::string& content) {
  return id + bigEndian(content.size(), 4) + std::string(2, '\0') + content;
}

std::string frame4(const char* id, char flags, const std::string& content) {
  return id + sevenBits(content.size()) + '\0' + flags + content;
}

std::string flac(const std::string& comments) {
  return "fLaC\x84" + bigEndian(comments.size(), 3) + comments;
}

std::string comment(const std::string& text) {
  return littleEndian(0, 4) + littleEndian(1, 4) + littleEndian(text.size(), 4) + text;
}

}  // namespace

TEST(MediaTags, FindsTheFieldsAndPicturesOfEveryKindOfFile) {
  const ScratchFolder scratch;
  runScript(scratch.path(), R"(
    ffmpeg -f lavfi -i testsrc=s=32x32 -frames:v 1 one.jpg -vf negate -frames:v 1 two.jpg
    tags="-metadata title=T -metadata artist=A -metadata author=A -metadata album=L"
    plain="-map 0 $tags"
    covered="$plain -map 1 -map 2 -c:v copy -disposition:v attached_pic"
    ffmpeg -f lavfi -i sine=d=0.1 -i one.jpg -i two.jpg $covered a.flac $covered -c:a alac a.m4a \
      $covered -write_id3v2 1 id3.aiff $covered a.mp3 $plain a.wav $plain -rf64 always rf64.wav \
      $plain -c:a flac a.oga $plain -c:a alac a.caf $plain -c:a flac a.mka)");
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
      {"a.m4a", all, none, none, {one, two}},
      {"a.flac", all, none, none, {one, two}},
      {"id3.flac", all, all, none, {one, two, one, two}},
      {"a.mp3", none, all, none, {one, two}},
      {"id3.aiff", none, all, noAlbum, {one, two}},
      {"id3.wav", none, all, all, {one, two}},
      {"rf64.wav", none, none, all, {}},
      {"a.oga", none, none, all, {}},
      {"a.caf", none, none, all, {}},
      {"a.mka", none, none, all, {}},
  };
  for (const auto& [name, own, id3, info, pictures] : cases) {
    // The name says nothing, or the wrong thing.
    std::filesystem::copy_file(scratch / name, scratch / "file.mp3",
                               std::filesystem::copy_options::overwrite_existing);
    const MediaTags tags = readMediaTags(scratch / "file.mp3");
    EXPECT_EQ(tags.own, own) << name;
    EXPECT_EQ(tags.id3, id3) << name;
    EXPECT_EQ(tags.info, info) << name;
    EXPECT_TRUE(picturesIn(scratch / "file.mp3") == pictures) << name;
  }
}

TEST(MediaTags, ReadEveryFormInWhichWritersStoreThem) {
  const std::string picture = "\xFF\xD8\xFF\0\xFF"s;
  const std::string escaped = "\xFF\0\xD8\xFF\0\0\xFF\0"s;
  const std::string behindHead = "\0image/jpeg\0\3\0"s;
  const std::string title = frame3("TIT2", "\0Song"s);
  const std::string behindWideHead = "\1image/jpeg\0\3\xFF\xFE\x61\0\0\0"s;
  const struct {
    const char* what;
    std::string file;
    std::vector<std::string> titles;
    std::vector<std::string> pictures;
  } cases[] = {
      {"comment in an old code page", flac(comment("Title=Caf\xE9!")), {"Café!"}, {}},
      {"picture as text", flac(comment("COVERART=/9j/AP8=")), {}, {picture}},
      {"picture block as text",
       flac(comment("metadata_block_picture=AAAAAwAAAAFtAAAAAWQAAAAAAAAAAAAAAAAAAAAAAAAABf/Y/wD/")),
       {},
       {picture}},
      {"too long",
       flac(comment("TITLE=" + std::string(4095, 'x') + "ééé")),
       {std::string(4095, 'x') + "é"},
       {}},
      {"2.2", id3Tag(2, 0, "TT2\0\0\5\0SongPIC\0\0\x0B\0JPG\3\0"s + picture), {"Song"}, {picture}},
      {"2.3", id3Tag(3, 0, frame3("APIC", behindWideHead + picture) + title), {"Song"}, {picture}},
      {"2.3 escaped",
       id3Tag(3, '\x80', frame3("APIC", behindHead + picture).replace(24, 5, escaped) + title),
       {"Song"},
       {picture}},
      {"2.3 with an extended header",
       id3Tag(3, 0x40, bigEndian(6, 4) + std::string(6, '\0') + title),
       {"Song"},
       {}},
      {"2.4 escaped",
       id3Tag(4, 0, frame4("APIC", 3, sevenBits(19) + behindHead + escaped) + frame4("TIT2", 0, "\3é"s)),
       {"é"},
       {picture}},
      {"2.4 with an extended header",
       id3Tag(4, 0x40, sevenBits(6) + "\1\0"s + frame4("TIT2", 0, "\3é"s)),
       {"é"},
       {}},
      {"2.4 with the sizes of 2.3",
       id3Tag(4, 0, frame3("TPE1", std::string(200, 'x')) + title),
       {"Song"},
       {}},
      {"many values",
       id3Tag(4, 0, frame4("TIT2", 0, "\1\xFF\xFE\x19\x20\0\0\xFF\xFE\x62\0"s)),
       {"’", "b"},
       {}},
      {"UTF-16 with its upper half first", id3Tag(4, 0, frame4("TIT2", 0, "\2\x20\x19"s)), {"’"}, {}},
      {"the apostrophe of an old code page", id3Tag(3, 0, frame3("TIT2", "\0Don\x92t"s)), {"Don’t"}, {}},
      {"no UTF-8 after all", id3Tag(4, 0, frame4("TIT2", 0, "\3Don\x92t"s)), {"Don’t"}, {}},
      {"compressed", id3Tag(4, 0, frame4("TIT2", 8, "\3x"s) + frame4("TIT2", 0, "\3y"s)), {"y"}, {}},
      {"one tag behind another", id3Tag(3, 0, "") + id3Tag(3, 0, title), {"Song"}, {}},
      {"a tag that ends early", id3Tag(3, 0, frame3("TIT2", std::string(20, 'x'))).substr(0, 21), {}, {}},
  };
  const ScratchFolder scratch;
  for (const auto& [what, file, titles, pictures] : cases) {
    const std::filesystem::path path = writeFile(scratch / "file", file);
    const MediaTags tags = readMediaTags(path);
    EXPECT_EQ(file[0] == 'f' ? tags.own.title : tags.id3.title, titles) << what;
    EXPECT_TRUE(picturesIn(path) == pictures) << what;
  }
}

TEST(MediaTags, HandOverPicturesUntilOneIsTakenAndNoMoreThan128MiBOfThem) {
  const ScratchFolder scratch;
  constexpr std::int64_t mebibyte = 1 << 20;
  const std::int64_t sizes[] = {100 * mebibyte, 28 * mebibyte + 1, 28 * mebibyte};
  const std::string head = "\0\0\3\0"s;
  const std::filesystem::path path = scratch / "file";
  FileHandle file = FileHandle::createForWriting(path);
  // The pictures themselves are holes in the file.
  std::int64_t place = 10;
  for (const std::int64_t size : sizes) {
    const std::string frame =
        "APIC" + bigEndian(static_cast<std::uint64_t>(size) + head.size(), 4) + "\0\0"s + head;
    file.writeAt(place, frame.data(), frame.size());
    place += std::ssize(frame) + size;
  }
  const std::string tag = "ID3\3\0\0"s + sevenBits(static_cast<std::size_t>(place - 10));
  file.writeAt(0, tag.data(), tag.size());
  std::filesystem::resize_file(path, static_cast<std::uintmax_t>(place));

  const auto sizesUntil = [&](std::size_t taken) {
    std::vector<std::int64_t> handed;
    eachPicture(path, [&](const std::string& picture) {
      handed.push_back(std::ssize(picture));
      return handed.size() == taken;
    });
    return handed;
  };
  EXPECT_EQ(sizesUntil(1), std::vector(sizes, sizes + 1));
  EXPECT_EQ(sizesUntil(4), (std::vector{sizes[0], sizes[2]}));
}

}  // namespace zarnet::test
