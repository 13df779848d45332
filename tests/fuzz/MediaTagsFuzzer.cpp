// Any bytes are a media file: its tags are valid UTF-8 within their limits, and its pictures become small
// thumbnails or none.

#include "desktop/Thumbnail.h"
#include "media/MediaTagReader.h"
#include "system/DisplayText.h"
#include "tests/fuzz/Fuzzing.h"

using zarnet::fuzz::expect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path file = zarnet::fuzz::memoryFile();
  zarnet::FileHandle::createForWriting(file).write(data, size);

  const zarnet::MediaTags tags = zarnet::readMediaTags(file);
  for (const zarnet::TagFields* fields : {&tags.own, &tags.id3, &tags.info}) {
    for (const auto* values : {&fields->title, &fields->artist, &fields->album}) {
      for (const std::string& value : *values) {
        expect(zarnet::displayText(value) == value, "a text is valid UTF-8");
        expect(value.size() <= std::size_t{4} * 4096, "a text is within its limit");
      }
    }
  }
  zarnet::eachPicture(file, [&](const std::string& picture) {
    expect(picture.size() <= size, "a picture is no larger than its file");
    const auto made = zarnet::thumbnail(picture, 256);
    expect(!made || (made->width() <= 256 && made->height() <= 256), "a thumbnail is small");
    return false;
  });
  return 0;
}
