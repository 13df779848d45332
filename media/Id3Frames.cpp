#include "media/Id3Frames.h"

#include "media/TagValues.h"

#include <taglib/attachedpictureframe.h>
#include <taglib/textidentificationframe.h>
#include <taglib/tfile.h>

namespace zarnet {

namespace {

using namespace TagLib;

constexpr int mostFrames = 10'000;
/// The size of a tag is a number of 28 bits.
constexpr unsigned int moreThanAnyTag = 1U << 28;

/// What TagLib needs to read a tag in the middle of a file of whatever kind.
class PlainFile : public File {
 public:
  explicit PlainFile(IOStream* stream) : File(stream) {}

  TagLib::Tag* tag() const override { return nullptr; }
  AudioProperties* audioProperties() const override { return nullptr; }
  bool save() override { return false; }
};

bool isWanted(const ByteVector& id) {
  return id == "TIT2" || id == "TPE1" || id == "TALB" || id == "APIC" || id == "PIC";
}

void appendTexts(const ID3v2::FrameList& frames, std::vector<std::string>& texts) {
  for (const ID3v2::Frame* frame : frames) {
    const auto* text = dynamic_cast<const ID3v2::TextIdentificationFrame*>(frame);
    if (text == nullptr) continue;
    for (const String& value : text->fieldList())
      appendText(texts, value.to8Bit(true));
  }
}

}  // namespace

bool WantedFrames::updateFrame(FrameTypes::Header* header) const {
  const bool isLast = ++frames >= mostFrames;
  if (!isLast && FrameFactory::updateFrame(header) && isWanted(header->frameID()) && !header->compression())
    return true;
  // The rest is kept as bytes under a name that means nothing, without the flags that make TagLib inflate it.
  // The reading goes on behind as many bytes as the frame has.
  const unsigned int size = isLast ? moreThanAnyTag : header->frameSize();
  header->setData(ByteVector("XXXX\0\0\0\0\0\0", 10), 3U);
  header->setFrameSize(size);
  return false;
}

void appendId3Frames(const ID3v2::Tag& tag, MediaTags& tags) {
  appendTexts(tag.frameList("TIT2"), tags.id3.title);
  appendTexts(tag.frameList("TPE1"), tags.id3.artist);
  appendTexts(tag.frameList("TALB"), tags.id3.album);
  for (const ID3v2::Frame* frame : tag.frameList("APIC")) {
    const auto* picture = dynamic_cast<const ID3v2::AttachedPictureFrame*>(frame);
    if (picture != nullptr) appendPicture(tags.pictures, picture->picture());
  }
}

void readId3(IOStream& file, long offset, MediaTags& tags) {
  file.seek(offset);
  if (file.readBlock(3) != "ID3") return;
  PlainFile plain(&file);
  const WantedFrames factory;
  appendId3Frames(ID3v2::Tag(&plain, offset, &factory), tags);
}

}  // namespace zarnet
