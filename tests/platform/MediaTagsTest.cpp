#include "platform/MediaTags.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/TagBytes.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace zarnet {
namespace {

using namespace test;
using testing::IsEmpty;

MediaTags tagsOf(std::string_view bytes) {
  ScratchFolder folder;
  // A name that says nothing, and the wrong thing where it says something.
  return readMediaTags(writeFile(folder / "file.mp3", bytes));
}

const std::string sound(1001, '\x55');

std::string infoList(std::string_view texts) {
  return riffChunk("LIST", "INFO" + std::string(texts));
}

std::string id3Of(int version) {
  return id3Tag(version, version == 2 ? id3Frame(2, "TT2", id3Text("T")) + id3Frame(2, "TP1", id3Text("A")) +
                                            id3Frame(2, "TAL", id3Text("L"))
                                      : id3Frame(version, "TIT2", id3Text("T")) +
                                            id3Frame(version, "TPE1", id3Text("A")) +
                                            id3Frame(version, "TALB", id3Text("L")));
}

std::string threeItems() {
  return listItem("\251nam", 1, "T") + listItem("\251ART", 1, "A") + listItem("\251alb", 1, "L");
}

TEST(MediaTags, FindsTheFieldsOfEveryKindOfFile) {
  const std::string info = riffChunk("INAM", "T") + riffChunk("IART", "A") + riffChunk("IPRD", "L");
  const std::string infoWithoutPadding = "INAM" + littleEndian(1, 4) + "T" + "IART" + littleEndian(1, 4) +
                                         "A" + "IPRD" + littleEndian(1, 4) + "L";
  const std::string flacFields = flacComments({"TITLE=T", "ARTIST=A", "ALBUM=L"});
  const struct {
    const char* what;
    std::string file;
    TagFields MediaTags::*source;
  } cases[] = {
      {"FLAC", flacFile(flacFields), &MediaTags::own},
      {"FLAC behind ID3", id3Of(4) + flacFile(""), &MediaTags::id3},
      {"MPEG-4", mpeg4File(threeItems()), &MediaTags::own},
      {"MPEG-4 with a sound atom of 64-bit size first",
       bigEndian(1, 4) + "mdat" + bigEndian(16 + sound.size(), 8) + sound + mpeg4File(threeItems()),
       &MediaTags::own},
      {"QuickTime, whose meta atom is plain",
       atom("wide", "") + atom("moov", atom("udta", atom("meta", atom("hdlr", std::string(24, '\0')) +
                                                                     atom("ilst", threeItems())))),
       &MediaTags::own},
      {"WAVE with a list in front", waveFile(infoList(info) + riffChunk("data", sound)), &MediaTags::info},
      {"WAVE with a list behind", waveFile(riffChunk("data", sound) + infoList(info)), &MediaTags::info},
      {"WAVE whose texts are not padded", waveFile(infoList(infoWithoutPadding)), &MediaTags::info},
      {"WAVE with 64-bit sizes",
       "RF64" + littleEndian(0xFFFFFFFF, 4) + "WAVE" +
           riffChunk("ds64", littleEndian(0, 8) + littleEndian(1000, 8) + std::string(12, '\0')) + "data" +
           littleEndian(0xFFFFFFFF, 4) + std::string(1000, '\x55') + infoList(info),
       &MediaTags::info},
      {"WAVE with ID3 2.3", waveFile(riffChunk("data", sound) + riffChunk("id3 ", id3Of(3))),
       &MediaTags::id3},
      {"WAVE with ID3 2.2", waveFile(riffChunk("ID3 ", id3Of(2))), &MediaTags::id3},
      {"AIFF with ID3", aiffFile(iffChunk("SSND", sound) + iffChunk("ID3 ", id3Of(4))), &MediaTags::id3},
      {"anything behind ID3", id3Of(3) + sound, &MediaTags::id3},
  };
  for (const auto& [what, file, source] : cases) {
    MediaTags tags = tagsOf(file);
    EXPECT_EQ(tags.*source, (TagFields{{"T"}, {"A"}, {"L"}})) << what;
    tags.*source = {};
    EXPECT_EQ(tags.own, TagFields()) << what;
    EXPECT_EQ(tags.id3, TagFields()) << what;
    EXPECT_EQ(tags.info, TagFields()) << what;
    EXPECT_THAT(tags.pictures, IsEmpty()) << what;
  }
  const TagFields aiff =
      tagsOf(aiffFile(iffChunk("NAME", "T") + iffChunk("SSND", sound) + iffChunk("AUTH", "A"))).info;
  EXPECT_EQ(aiff, (TagFields{{"T"}, {"A"}, {}}));
}

TEST(MediaTags, TakesPicturesInTheOrderOfTheFile) {
  constexpr char backCover = 4;
  const std::string id3Pictures =
      id3Frame(3, "APIC", id3Picture("back", backCover)) + id3Frame(3, "APIC", id3Picture("front"));
  const std::string oldPicture = std::string("\0JPG\3\0old", 9);
  const struct {
    const char* what;
    std::string file;
    std::vector<std::string> pictures;
  } cases[] = {
      {"FLAC and its ID3",
       id3Tag(3, id3Pictures) + flacFile(flacPicture("one", backCover) + flacPicture("two")),
       {"one", "two", "back", "front"}},
      {"FLAC with a picture among its comments",
       flacFile(flacComments(
           {"METADATA_BLOCK_PICTURE=AAAAAwAAAAlpbWFnZS9wbmcAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAANhYmM="})),
       {"abc"}},
      {"WAVE", waveFile(riffChunk("id3 ", id3Tag(3, id3Pictures))), {"back", "front"}},
      {"ID3 2.2", id3Tag(2, id3Frame(2, "PIC", oldPicture)), {"old"}},
      {"MPEG-4", mpeg4File(listItem("covr", 13, "one") + listItem("covr", 0, "two")), {"one", "two"}},
      {"MPEG-4 with both in one item",
       mpeg4File(atom(
           "covr", atom("data", std::string(8, '\0') + "one") + atom("data", std::string(8, '\0') + "two"))),
       {"one", "two"}},
  };
  for (const auto& [what, file, pictures] : cases)
    EXPECT_EQ(tagsOf(file).pictures, pictures) << what;
}

TEST(MediaTags, LeaveOutWhatIsTooLarge) {
  constexpr std::size_t longestText = std::size_t{1} << 20;
  const MediaTags texts = tagsOf(mpeg4File(listItem("\251nam", 1, std::string(longestText + 1, 'x')) +
                                           listItem("\251nam", 1, std::string(longestText, 'x'))));
  ASSERT_EQ(texts.own.title.size(), 1U);
  EXPECT_EQ(texts.own.title[0].size(), longestText);

  // Atoms of size 0 reach to the end of the file, which is a hole.
  constexpr std::size_t largestPicture = std::size_t{64} << 20;
  const auto open = [](const char* id) { return bigEndian(0, 4) + id; };
  const std::string beginning = atom("ftyp", "M4A ") + open("moov") + open("udta") + open("meta") +
                                bigEndian(0, 4) + open("ilst") + listItem("covr", 13, "small") +
                                open("covr") + open("data") + bigEndian(13, 4) + bigEndian(0, 4);
  for (const std::size_t size : {largestPicture, largestPicture + 1}) {
    ScratchFolder folder;
    const auto file = writeFile(folder / "file", beginning);
    std::filesystem::resize_file(file, beginning.size() + size);
    const MediaTags tags = readMediaTags(file);
    ASSERT_EQ(tags.pictures.size(), size == largestPicture ? 2U : 1U);
    EXPECT_EQ(tags.pictures.back().size(), size == largestPicture ? size : 5U);
  }
}

TEST(MediaTags, SurviveEveryTruncation) {
  const std::string picture(100, 'p');
  for (const std::string& file :
       {id3Of(4) + flacFile(flacComments({"TITLE=T"}) + flacPicture(picture)),
        mpeg4File(threeItems() + listItem("covr", 13, picture)),
        waveFile(infoList(riffChunk("INAM", "T")) + riffChunk("id3 ", id3Of(3))),
        aiffFile(iffChunk("NAME", "T") +
                 iffChunk("ID3 ", id3Tag(2, id3Frame(2, "PIC", id3Picture(picture)))))}) {
    ScratchFolder folder;
    for (std::size_t size = 0; size < file.size(); ++size) {
      const MediaTags tags =
          readMediaTags(writeFile(folder / "file", std::string_view(file).substr(0, size)));
      for (const std::string& found : tags.pictures)
        EXPECT_LE(found.size(), file.size()) << size;
    }
  }
}

}  // namespace
}  // namespace zarnet
