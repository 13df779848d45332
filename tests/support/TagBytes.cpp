#include "tests/support/TagBytes.h"

namespace zarnet::test {

namespace {

/// Seven bits in each byte, as ID3 has it.
std::string synchsafe(std::size_t number) {
  std::string bytes;
  for (int shift = 21; shift >= 0; shift -= 7)
    bytes += static_cast<char>(number >> shift & 0x7F);
  return bytes;
}

std::string flacBlock(int type, std::string_view content) {
  return bigEndian(type, 1) + bigEndian(content.size(), 3) + std::string(content);
}

}  // namespace

std::string bigEndian(std::uint64_t number, int bytes) {
  std::string result;
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
    result += static_cast<char>(number >> shift & 0xFF);
  return result;
}

std::string littleEndian(std::uint64_t number, int bytes) {
  const std::string reversed = bigEndian(number, bytes);
  return {reversed.rbegin(), reversed.rend()};
}

std::string riffChunk(std::string_view id, std::string_view content) {
  return std::string(id) + littleEndian(content.size(), 4) + std::string(content) +
         std::string(content.size() % 2, '\0');
}

std::string iffChunk(std::string_view id, std::string_view content) {
  return std::string(id) + bigEndian(content.size(), 4) + std::string(content) +
         std::string(content.size() % 2, '\0');
}

std::string waveFile(std::string_view chunks) {
  return riffChunk("RIFF", "WAVE" + std::string(chunks));
}

std::string aiffFile(std::string_view chunks) {
  return iffChunk("FORM", "AIFF" + std::string(chunks));
}

std::string atom(std::string_view id, std::string_view content) {
  return bigEndian(content.size() + 8, 4) + std::string(id) + std::string(content);
}

std::string listItem(std::string_view id, std::uint32_t type, std::string_view value) {
  return atom(id, atom("data", bigEndian(type, 4) + bigEndian(0, 4) + std::string(value)));
}

std::string mpeg4File(std::string_view items) {
  return atom("ftyp", "M4A ") +
         atom("moov", atom("udta", atom("meta", bigEndian(0, 4) + atom("ilst", items))));
}

std::string id3Frame(int version, std::string_view id, std::string_view content, std::uint16_t flags) {
  if (version == 2) return std::string(id) + bigEndian(content.size(), 3) + std::string(content);
  const std::string size = version == 3 ? bigEndian(content.size(), 4) : synchsafe(content.size());
  return std::string(id) + size + bigEndian(flags, 2) + std::string(content);
}

std::string id3Tag(int version, std::string_view frames) {
  return "ID3" + bigEndian(version, 1) + bigEndian(0, 2) + synchsafe(frames.size()) + std::string(frames);
}

std::string id3Text(std::string_view text) {
  return '\3' + std::string(text);
}

std::string id3Picture(std::string_view picture, char kind) {
  return std::string("\0image/jpeg\0", 12) + kind + '\0' + std::string(picture);
}

std::string flacComments(const std::vector<std::string>& comments) {
  std::string content = littleEndian(4, 4) + "test" + littleEndian(comments.size(), 4);
  for (const std::string& comment : comments)
    content += littleEndian(comment.size(), 4) + comment;
  return flacBlock(4, content);
}

std::string flacPicture(std::string_view picture, std::uint32_t kind) {
  constexpr std::string_view type = "image/jpeg";
  return flacBlock(6, bigEndian(kind, 4) + bigEndian(type.size(), 4) + std::string(type) +
                          std::string(20, '\0') + bigEndian(picture.size(), 4) + std::string(picture));
}

std::string flacFile(std::string_view blocks) {
  constexpr int streamInformation = 0;
  constexpr int lastPadding = 0x81;
  return "fLaC" + flacBlock(streamInformation, std::string(34, '\0')) + std::string(blocks) +
         flacBlock(lastPadding, "") + std::string(64, '\0');
}

}  // namespace zarnet::test
