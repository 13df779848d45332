// FLAC as its encoder writes it with unusual settings, as older encoders wrote it, and with damage.

#include "media/AudioFileReader.h"
#include "system/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"

#include <array>

namespace zarnet::test {

namespace {

std::string replaced(std::string text, std::size_t offset, const std::string& bytes) {
  return text.replace(offset, bytes.size(), bytes);
}

/// A FLAC file in two parts.
struct Stream {
  std::string info;    ///< the content of its STREAMINFO block
  std::string frames;  ///< what follows all metadata

  std::string file() const { return "fLaC" + bigEndian(0x8000'0000 | info.size(), 4) + info + frames; }
  Stream withoutChecksum() const { return {replaced(info, 18, std::string(16, '\0')), frames}; }
  Stream withTotal(unsigned total) const { return {replaced(info, 14, bigEndian(total, 4)), frames}; }
  Stream with(const std::string& otherFrames) const { return {info, otherFrames}; }
};

Stream parsed(const std::string& file) {
  const auto byte = [&](std::size_t offset) { return static_cast<unsigned char>(file[offset]); };
  std::size_t offset = 4;
  for (bool last = false; !last;) {
    last = byte(offset) >= 0x80;
    offset += 4u + byte(offset + 1) * 0x1'0000u + byte(offset + 2) * 0x100u + byte(offset + 3);
  }
  return {file.substr(8, 34), file.substr(offset)};
}

/// What the `flac` program makes of a signal.
Stream coded(const Signal& signal, const std::string& options = "", SampleType type = SampleType::int16) {
  const ScratchFolder scratch;
  writeWave(scratch / "a.wav", signal, type);
  runScript(scratch.path(), "flac -s --lax --no-padding " + options + " a.wav");
  return parsed(readFile(scratch / "a.flac"));
}

Signal part(const Signal& whole, std::size_t first, std::size_t count) {
  Signal result{whole.rate, {}};
  for (const auto& plane : whole.planes)
    result.planes.emplace_back(&plane[first], &plane[first] + count);
  return result;
}

/// The checksum of FLAC headers (8 bits, polynomial 7) and frames (16 bits, polynomial 0x8005).
std::string checksum(const std::string& bytes, int bits, unsigned polynomial) {
  unsigned sum = 0;
  for (const char c : bytes) {
    sum ^= static_cast<unsigned>(static_cast<unsigned char>(c)) << (bits - 8);
    for (int i = 0; i < 8; ++i)
      sum = (sum << 1) ^ (sum >> (bits - 1) & 1 ? polynomial : 0);
  }
  return bigEndian(sum, bits / 8);
}

/// How the header of a frame numbers it.
enum class Numbering { frames, oldSamples, samples };

/// A signal as one frame with another number, 0 to 0x7F or 0x800 to 0xFFFF, and another code of its rate (0:
/// as in the STREAMINFO block).
std::string frame(const Signal& signal, unsigned number, Numbering numbering, unsigned rateCode = 10,
                  SampleType type = SampleType::int16) {
  const std::string original = coded(signal, "-b " + std::to_string(signal.count()), type).frames;
  const unsigned lengthCode = static_cast<unsigned char>(original[2]) >> 4;
  const std::size_t lengthBytes = lengthCode == 7 ? 2 : lengthCode == 6 ? 1 : 0;
  std::string result = original.substr(0, 2);
  result[1] = static_cast<char>(numbering == Numbering::samples ? 0xF9 : 0xF8);
  result += bigEndian(lengthCode << 4 | rateCode, 1) + original[3];
  // As UTF-8 has it, in one byte or three.
  const unsigned utf8 = 0xE0'8080 | (number >> 12) << 16 | (number >> 6 & 63) << 8 | (number & 63);
  result += number < 0x80 ? bigEndian(number, 1) : bigEndian(utf8, 3);
  result += original.substr(5, lengthBytes);
  result += checksum(result, 8, 0x07);
  const std::size_t body = 6 + lengthBytes;
  result += original.substr(body, original.size() - 2 - body);
  return result + checksum(result, 16, 0x8005);
}

/// What opening and reading the whole file says; empty when it succeeds.
std::string refusal(const std::filesystem::path& path) {
  return failureOf<PlatformError>([&] { readSignal(path); });
}

}  // namespace

TEST(Flac, HoldsWhatWasEncodedWhateverTheSettings) {
  const ScratchFolder scratch;
  const struct {
    int rate;
    int channels;
    SampleType type;
    std::string options;
  } cases[] = {
      {44100, 2, SampleType::int16, "-0"},
      {44100, 1, SampleType::int16, "-8 -e -p"},
      {48000, 2, SampleType::int16, "-b 16"},
      {48000, 6, SampleType::int24, "--channel-map=none -b 65535 -l 32 -r 15"},
      {96000, 2, SampleType::int24, "--ogg"},
      {48000, 2, SampleType::int32, "-8"},
      {192000, 1, SampleType::int32, "--ogg -0"},
      {65'537, 2, SampleType::int16, ""},
      {88'201, 2, SampleType::int16, ""},
      {176'399, 2, SampleType::int24, ""},
      {352'801, 2, SampleType::int16, ""},
      {655'360, 2, SampleType::int16, ""},
      {705'600, 2, SampleType::int16, ""},
      {768'000, 2, SampleType::int16, "--ogg"},
  };
  for (const auto& [rate, channels, type, options] : cases) {
    SCOPED_TRACE(std::to_string(rate) + " Hz, " + options);
    writeWave(scratch / "a.wav", noise(rate, channels, 70'021, 0.9, 3), type);
    runScript(scratch.path(), "flac -s -f --lax -o file " + options + " a.wav");
    const Signal source = readSignal(scratch / "a.wav");
    const Signal read = readSignal(scratch / "file");
    EXPECT_EQ(read.planes, source.planes);
    EXPECT_EQ(read.rate, rate);
    EXPECT_EQ(AudioFileReader(scratch / "file").fileFormat().bitsPerChannel,
              AudioFileReader(scratch / "a.wav").fileFormat().bitsPerChannel);
  }
}

TEST(Flac, TakesFromItsHeaderWhatFramesDoNotSay) {
  const ScratchFolder scratch;
  const Signal source = noise(48000, 2, 10'000, 0.5, 1);
  const Stream whole = coded(source);
  const std::size_t lengths[] = {4096, 1000, 4608, 256, 40};
  for (const Numbering numbering : {Numbering::samples, Numbering::oldSamples}) {
    Stream stream{replaced(whole.info, 0, bigEndian(40, 2) + bigEndian(4608, 2)), ""};
    std::size_t first = 0;
    for (const std::size_t length : lengths) {
      stream.frames += frame(part(source, first, length), static_cast<unsigned>(first), numbering, 0);
      first += length;
    }
    EXPECT_EQ(readSignal(writeFile(scratch / "file", stream.file())).planes,
              readSignal(writeFile(scratch / "whole", whole.file())).planes);
  }
}

TEST(Flac, IsNotDamagedWhereItsChecksumAgreesOrNothingCanTell) {
  const ScratchFolder scratch;
  constexpr std::int64_t count = 50'021;
  const Signal source = noise(48000, 2, count, 0.5, 3);
  const Stream flac = coded(source, "-b 4096");
  const Stream bare = flac.withoutChecksum();
  const std::string whole = flac.file();
  const auto pair = [&](const std::string& second) {
    return bare.with(frame(part(source, 0, 4096), 0, Numbering::frames) + second);
  };
  const Signal next = part(source, 4096, 4096);
  runScript(writeFile(scratch / "source", whole).parent_path(), R"(
    ffmpeg -f flac -i source -c:a flac -frame_size 4096 -page_duration 1 bare.oga
    flac -s --decode source -o a.wav
    flac -s --ogg --serial-number=1 a.wav -o one.oga
    flac -s --ogg --serial-number=2 a.wav -o two.oga)");
  const std::string ogg = readFile(scratch / "bare.oga");
  const std::string id3 = std::string("ID3\x04\0\0\0\0\1\0", 10) + std::string(128, 'x');
  const auto flipped = [](std::string bytes, std::size_t offset) {
    bytes[offset] ^= 4;
    return bytes;
  };
  const std::string damaged = "It is damaged";
  const std::string changes = "Its format changes on the way";
  const std::string unequal = "Its audio does not match its checksum";
  const struct {
    const char* name;
    std::string bytes;
    std::int64_t frames;
    std::string reason;
  } cases[] = {
      {"no checksum", bare.file(), count, ""},
      {"no total", flac.withTotal(0).file(), count, ""},
      {"a smaller total", flac.withTotal(20'000).file(), count, ""},
      {"a larger total", flac.withTotal(90'000).file(), count, ""},
      {"neither", bare.withTotal(0).file(), count, ""},
      {"the total of two blocks", bare.withTotal(8192).file(), count, ""},
      {"cut off without a checksum", bare.file().substr(0, whole.size() - 50), 12L * 4096, ""},
      {"a damaged end without a checksum", flipped(bare.file(), bare.file().size() - 20), 12L * 4096, ""},
      {"ID3v1 behind", whole + "TAG" + std::string(125, 'x'), count, ""},
      {"APE tags behind", bare.file() + "APETAGEX" + std::string(900, '\xFF'), count, ""},
      {"starts of frames behind", whole + bigEndian(0xFFF8'C9A8'0000'0000, 8), count, ""},
      {"ID3v2 in front", id3 + whole, count, ""},
      {"Ogg without total and checksum", ogg, count, ""},
      {"Ogg cut off", ogg.substr(0, ogg.size() - 1), 12L * 4096, ""},
      {"Ogg without frames", ogg.substr(0, ogg.find("OggS", ogg.find("OggS", 4) + 4)), 0, ""},
      {"no frames", bare.withTotal(0).with("").file(), 0, ""},
      {"cut off", whole.substr(0, whole.size() - 50), 0, unequal},
      {"cut off behind its header", flac.with("").file(), 0, unequal},
      {"another checksum behind ID3v2", id3 + flipped(whole, 4 + 4 + 20), 0, unequal},
      {"damaged on the way", flipped(bare.file(), whole.size() / 2), 0, damaged},
      {"one behind the other", whole + whole, 0, damaged},
      {"a missing frame", pair(frame(next, 2, Numbering::frames)).file(), 0, damaged},
      {"another rate", pair(frame(next, 1, Numbering::frames, 9)).file(), 0, changes},
      {"mono", pair(frame(Signal{48000, {next.planes[0]}}, 1, Numbering::frames)).file(), 0, changes},
      {"24 bits", pair(frame(next, 1, Numbering::frames, 10, SampleType::int24)).file(), 0, changes},
      {"a damaged page", flipped(ogg, ogg.size() / 2), 0, damaged},
      {"Ogg streams one behind the other", readFile(scratch / "one.oga") + readFile(scratch / "two.oga"), 0,
       "It holds several streams one behind the other"},
  };
  const Signal expected = readSignal(scratch / "a.wav");
  for (const auto& [name, bytes, frames, reason] : cases) {
    SCOPED_TRACE(name);
    const auto path = writeFile(scratch / "file", bytes);
    EXPECT_EQ(refusal(path), reason.empty() ? "" : "“file” could not be decoded: " + reason + ".");
    if (!reason.empty()) continue;
    const Signal read = readSignal(path);
    EXPECT_EQ(read.count(), frames);
    EXPECT_EQ(read.planes, part(expected, 0, static_cast<std::size_t>(frames)).planes);
  }
}

TEST(Flac, WithoutAUsableHeaderIsRefused) {
  const ScratchFolder scratch;
  const Stream flac = coded(noise(48000, 2, 5000, 0.5, 3));
  for (const std::string& bytes :
       {flac.file().substr(0, 30), replaced(flac.file(), 4, bigEndian(0x0000'0022, 4)),
        replaced(flac.file(), 4, bigEndian(0x8100'0022, 4)), replaced(flac.file(), 18, bigEndian(0x2F0, 4))})
    EXPECT_EQ(refusal(writeFile(scratch / "file", bytes)),
              "“file” could not be opened: Its header is damaged or incomplete.");
}

}  // namespace zarnet::test
