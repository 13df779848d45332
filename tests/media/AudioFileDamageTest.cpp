// Files that are cut off, damaged, that lie, or that are no audio files at all.

#include "media/AudioFileReader.h"
#include "system/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"

namespace zarnet::test {

namespace {

/// Replaces bytes that lie `behind` the end of a mark.
std::string patched(std::string file, const std::string& mark, std::size_t behind, const std::string& bytes) {
  return file.replace(file.find(mark) + mark.size() + behind, bytes.size(), bytes);
}

/// What opening and reading the whole file says; empty when it succeeds.
std::string refusal(const std::filesystem::path& path) {
  return failureOf<PlatformError>([&] { readSignal(path); });
}

}  // namespace

TEST(AudioFileDamage, AFileHoldsTheWholeFramesThatAreThereWhateverItAnnounces) {
  const ScratchFolder scratch;
  constexpr std::int64_t count = 50'021;
  writeWave(scratch / "in.wav", noise(48000, 2, count, 0.5, 3), SampleType::int16);
  runScript(scratch.path(), R"(
    ffmpeg -i in.wav -bitexact -rf64 always rf64.wav -bitexact a.aiff -bitexact a.caf \
      -c:a alac -sample_fmt s16p -movflags faststart a.m4a -c:a alac -sample_fmt s16p alac.caf)");
  const std::string wave = readFile(scratch / "in.wav");
  const std::string wide = readFile(scratch / "rf64.wav");
  const std::string aiff = readFile(scratch / "a.aiff");
  const std::string caf = readFile(scratch / "a.caf");
  const std::string alac = readFile(scratch / "a.m4a");
  const std::string table = readFile(scratch / "alac.caf");
  const std::string zero(4, '\0');
  const struct {
    const char* name;
    std::string bytes;
    std::int64_t frames;
  } cases[] = {
      {"WAVE cut off in a frame", wave.substr(0, wave.size() - 1), count - 1},
      {"WAVE whose sizes were never written", patched(patched(wave, "RIFF", 0, zero), "data", 0, zero),
       count},
      {"WAVE that announces gigabytes", patched(wave, "data", 0, littleEndian(0xFFFFFF00, 4)), count},
      {"WAVE with a chunk behind", wave + riffChunk("LIST", "INFO"), count},
      {"BW64", patched(wide, "", 0, "BW64"), count},
      {"RF64 with fewer frames", patched(wide, "ds64", 12, littleEndian(12, 8)), 3},
      {"RF64 of petabytes", patched(wide, "ds64", 12, littleEndian(1ULL << 60, 8)), count},
      {"AIFF with the sound first", aiff.substr(0, 12) + aiff.substr(38) + aiff.substr(12, 26), count},
      {"AIFF that announces billions", patched(aiff, "COMM", 6, bigEndian(0xFFFFFFFF, 4)), count},
      {"AIFF that announces fewer frames", patched(aiff, "COMM", 6, bigEndian(7, 4)), 7},
      {"CAF, open-ended", patched(caf, "data", 0, bigEndian(~0ULL, 8)), count},
      {"a packet table with the real length", patched(table, "pakt", 16, bigEndian(count, 8)), count},
      {"a packet table with fewer frames", patched(table, "pakt", 16, bigEndian(50'000, 8)), 50'000},
      {"Apple Lossless cut off", alac.substr(0, alac.size() - 1), 12L * 4096},
  };
  const std::vector<std::vector<float>> whole = readSignal(scratch / "in.wav").planes;
  for (const auto& [name, bytes, frames] : cases) {
    SCOPED_TRACE(name);
    const Signal read = readSignal(writeFile(scratch / "file", bytes));
    std::vector<std::vector<float>> expected = whole;
    for (auto& plane : expected)
      plane.resize(static_cast<std::size_t>(frames));
    EXPECT_EQ(read.planes, expected);
  }

  // A table that announces more packets than any file holds must be neither believed nor allocated.
  const std::string bomb = patched(alac, "stsz", 4, bigEndian(1, 4) + bigEndian(0x0555'5555, 4));
  const auto path = writeFile(scratch / "bomb.m4a", patched(bomb, "stsc", 12, bigEndian(0x0555'5555, 4)));
  EXPECT_TRUE(!refusal(path).empty() || readSignal(path).count() == 0);
}

TEST(AudioFileDamage, WhatIsNoAudioFileIsRefusedWithItsNameAndTheReason) {
  const ScratchFolder scratch;
  writeWave(scratch / "real.wav", counting(48000, 1000));
  runScript(scratch.path(), R"(
    mkdir folder
    mkfifo pipe
    : >empty
    printf '#EXTM3U\n#EXTINF:1,\nreal.wav\n' >list.m3u8
    ffmpeg -f lavfi -i testsrc=s=64x64:d=0.2 silent.mp4 -frames:v 1 image.png
    head -c 40 real.wav >header.wav)");
  const std::string unknown = "It is not an audio file of a supported format";
  const std::pair<std::string, std::string> cases[] = {
      {"-'missing\n.wav", "No such file or directory"},
      {"folder", "Is a directory"},
      {"pipe", "It is not an ordinary file"},
      {"empty", "The file is empty"},
      {"list.m3u8", unknown},
      {"image.png", unknown},
      {"header.wav", "Its header is damaged or incomplete"},
      {"silent.mp4", "It holds no audio"},
  };
  for (const auto& [name, reason] : cases)
    EXPECT_EQ(refusal(scratch / name), "“" + name + "” could not be opened: " + reason + ".");
}

TEST(AudioFileDamage, AFileThatShrinksWhileItIsReadIsAnError) {
  const ScratchFolder scratch;
  const auto path = writeWave(scratch / "a.wav", counting(48000, 50'021));
  AudioFileReader reader(path);
  std::filesystem::resize_file(path, 1000);
  std::vector<float> plane(50'021);
  float* const planes[] = {plane.data(), plane.data()};
  EXPECT_THROW(reader.read(planes, 50'021), PlatformError);
}

}  // namespace zarnet::test
