#include "media/Id3Frames.h"

#include "media/ByteOrder.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace zarnet {

namespace {

unsigned byteAt(std::string_view bytes, std::size_t place) {
  return static_cast<unsigned char>(bytes[place]);
}

/// The number that four bytes hold in the lower seven bits of each.
std::int64_t sevenBitNumber(std::string_view bytes) {
  std::int64_t number = 0;
  for (std::size_t i = 0; i < 4; ++i)
    number = number << 7 | (byteAt(bytes, i) & 0x7F);
  return number;
}

bool isFrameId(std::string_view id) {
  return id.size() == 4 && std::all_of(id.begin(), id.end(), [](char letter) {
           return (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9');
         });
}

/// What the header of a tag says.
struct TagForm {
  unsigned version;  ///< 2 to 4, for 2.2 to 2.4
  bool isEscaped;    ///< the tag as a whole; in 2.4 the content of each frame by itself
};

/// A frame: what its header says, and where its content lies.
struct Frame {
  std::string id;
  bool isReadable;  ///< neither compressed nor encrypted
  TagStream content;
};

/// The size of a 2.4 frame whose content begins at `place`. Some writers store it as in 2.3: what follows the
/// frame tells.
std::int64_t frameSize(TagFile& file, std::int64_t place, std::string_view stored) {
  const std::int64_t size = sevenBitNumber(stored);
  const std::int64_t plain = loadBigEndian<std::uint32_t>(stored.data());
  if (size == plain || isFrameId(file.bytes(place + size, 4))) return size;
  return isFrameId(file.bytes(place + plain, 4)) ? plain : size;
}

/// Takes the next frame out of a tag; nothing at its end.
std::optional<Frame> nextFrame(TagFile& file, TagStream& tag, TagForm form) {
  const bool isShort = form.version == 2;
  const bool ofVersion4 = form.version == 4;
  const std::int64_t headerBytes = isShort ? 6 : 10;
  std::string header = tag.read(headerBytes);
  if (std::ssize(header) < headerBytes || header[0] == '\0') return std::nullopt;
  if (isShort) header = header.substr(0, 3) + '\0' + '\0' + header.substr(3) + '\0' + '\0';
  const std::string_view stored = std::string_view(header).substr(4, 4);
  const std::int64_t start = tag.position();
  tag.skip(ofVersion4 ? frameSize(file, start, stored) : loadBigEndian<std::uint32_t>(stored.data()));

  const unsigned flags = byteAt(header, 9);
  const bool isReadable = (flags & (ofVersion4 ? 0x0CU : 0xC0U)) == 0;
  const bool hasGroup = (flags & (ofVersion4 ? 0x40U : 0x20U)) != 0;
  const bool hasLength = ofVersion4 && (flags & 0x01U) != 0;
  const bool isEscaped = form.isEscaped || (ofVersion4 && (flags & 0x02U) != 0);
  Frame frame{header.substr(0, isShort ? 3 : 4), isReadable,
              TagStream(file, start, tag.position(), isEscaped)};
  frame.content.skip((hasGroup ? 1 : 0) + (hasLength ? 4 : 0));
  return frame;
}

/// Appends what a text frame holds: an encoding, then texts with a NUL between each two of them.
void appendTexts(std::vector<std::string>& texts, TagStream content) {
  constexpr const char* encodings[] = {windowsText, "UTF-16", "UTF-16BE"};
  constexpr std::string_view byteOrderMark = "\uFEFF";
  const std::string stored = content.read(1 + longestText);
  if (stored.empty()) return;
  const unsigned encoding = byteAt(stored, 0);
  std::string text = stored.substr(1);
  if (encoding < std::size(encodings)) text = decoded(text, encodings[encoding]);
  for (std::size_t place = 0; place <= text.size();) {
    std::string_view next = std::string_view(text).substr(place);
    next = next.substr(0, next.find('\0'));
    place += next.size() + 1;
    if (next.starts_with(byteOrderMark)) next.remove_prefix(byteOrderMark.size());
    appendText(texts, next, windowsText);
  }
}

/// Where the picture begins in a picture frame that begins with `head`: behind an encoding, a format, a kind
/// of picture and a description.
std::optional<std::size_t> pictureStart(std::string_view head, unsigned version) {
  if (head.empty()) return std::nullopt;
  const bool isWide = head[0] == '\1' || head[0] == '\2';
  const std::size_t format = version == 2 ? std::min<std::size_t>(3, head.size() - 1) : head.find('\0', 1);
  if (format == std::string_view::npos) return std::nullopt;
  std::size_t place = format + 2;
  for (const std::size_t step = isWide ? 2 : 1; place + step <= head.size(); place += step) {
    if (head[place] == '\0' && head[place + step - 1] == '\0') return place + step;
  }
  return std::nullopt;
}

void appendPicture(std::vector<StoredPicture>& pictures, TagStream content, unsigned version) {
  constexpr std::int64_t mostBeforePicture = 4096;
  const auto start = pictureStart(TagStream(content).read(mostBeforePicture), version);
  if (!start) return;
  content.skip(static_cast<std::int64_t>(*start));
  const auto form = content.isEscaped() ? StoredPicture::Form::escaped : StoredPicture::Form::plain;
  pictures.push_back({content.position(), content.end() - content.position(), form});
}

void readFrame(const Frame& frame, unsigned version, FoundTags& tags) {
  const auto is = [&](const char* id, const char* shortId) {
    return frame.id == (version == 2 ? shortId : id);
  };
  if (is("TIT2", "TT2")) appendTexts(tags.texts.id3.title, frame.content);
  if (is("TPE1", "TP1")) appendTexts(tags.texts.id3.artist, frame.content);
  if (is("TALB", "TAL")) appendTexts(tags.texts.id3.album, frame.content);
  if (is("APIC", "PIC")) appendPicture(tags.pictures, frame.content, version);
}

/// Passes over the extended header of a tag: in 2.3 its size leaves out the four bytes that hold it.
void skipExtendedHeader(TagStream& tag, unsigned version) {
  const std::string size = tag.read(4);
  if (size.size() < 4) return;
  tag.skip(version == 3 ? loadBigEndian<std::uint32_t>(size.data()) : sevenBitNumber(size) - 4);
}

}  // namespace

std::int64_t readId3(TagFile& file, std::int64_t start, std::int64_t end, FoundTags& tags) {
  constexpr std::int64_t headerBytes = 10;
  const std::string header = file.bytes(start, headerBytes);
  if (std::ssize(header) < headerBytes || !header.starts_with("ID3")) return start;
  const bool sizeIsValid = ((header[6] | header[7] | header[8] | header[9]) & 0x80) == 0;
  if (!sizeIsValid) return start;
  const unsigned flags = byteAt(header, 5);
  const TagForm form = {byteAt(header, 3), (flags & 0x80U) != 0};
  const bool hasExtendedHeader = (flags & 0x40U) != 0;
  const bool hasFooter = (flags & 0x10U) != 0;
  const std::int64_t tagEnd = start + headerBytes + sevenBitNumber(std::string_view(header).substr(6));
  // In 2.2 the second flag is another: the tag is compressed, in a way that was never said.
  const bool isReadable = form.version >= 2 && form.version <= 4 && !(form.version == 2 && hasExtendedHeader);
  if (isReadable) {
    TagStream tag(file, start + headerBytes, std::min(end, tagEnd), form.isEscaped && form.version < 4);
    if (hasExtendedHeader) skipExtendedHeader(tag, form.version);
    while (const std::optional<Frame> frame = nextFrame(file, tag, form))
      if (frame->isReadable) readFrame(*frame, form.version, tags);
  }
  return tagEnd + (hasFooter ? headerBytes : 0);
}

}  // namespace zarnet
