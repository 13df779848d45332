// Files that are cut off, damaged, that lie, or that are no audio files at all.

#include "platform/AudioFileReader.h"
#include "platform/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/Programs.h"
#include "tests/support/ReadSignal.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"
#include "tests/support/TagBytes.h"

#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace zarnet::test {

namespace {

/// Frame k of ten is (k + 1, −k − 1) in steps of 16 bits, stored in the upper bits of `bytes` bytes.
std::string tenFrames(int bytes, bool big) {
  std::string result;
  for (std::int64_t k = 1; k <= 10; ++k) {
    for (const std::int64_t sample : {k, -k}) {
      const auto stored = static_cast<std::uint64_t>(sample) << (8 * bytes - 16);
      result += big ? bigEndian(stored, bytes) : littleEndian(stored, bytes);
    }
  }
  return result;
}

/// What opening and reading the whole file says; empty when it succeeds.
std::string refusal(const std::filesystem::path& path) {
  return failureOf<PlatformError>([&] { readSignal(path); });
}

}  // namespace

TEST(AudioFileDamage, AFileOfPlainSamplesHoldsTheFramesThatAreThere) {
  const std::string little = tenFrames(2, false);
  const std::string big = tenFrames(2, true);
  const auto wave = [&](std::uint64_t frameBytes, std::uint64_t announced, const std::string& first = "") {
    return waveFile(first +
                    riffChunk("fmt ", littleEndian(1, 2) + littleEndian(2, 2) + littleEndian(48000, 4) +
                                          littleEndian(192'000, 4) + littleEndian(frameBytes, 2) +
                                          littleEndian(16, 2)) +
                    "data" + littleEndian(announced, 4) + little);
  };
  const auto wide = [&](std::uint64_t announced) {
    const std::string sizes = littleEndian(announced + 64, 8) + littleEndian(announced, 8) +
                              littleEndian(announced / 4, 8) + littleEndian(0, 4);
    return wave(4, 0xFFFFFFFF, riffChunk("ds64", sizes)).replace(0, 8, "RF64\xFF\xFF\xFF\xFF");
  };
  const auto common = [](std::uint64_t frames, std::uint64_t bits = 16, const std::string& coding = "") {
    return iffChunk("COMM", bigEndian(2, 2) + bigEndian(frames, 4) + bigEndian(bits, 2) +
                                std::string("\x40\x0E\xBB\x80\0\0\0\0\0\0", 10) +
                                (coding.empty() ? "" : coding + std::string(2, '\0')));
  };
  const auto sound = [](const std::string& frames, std::uint64_t before = 0) {
    return iffChunk("SSND", bigEndian(before, 4) + bigEndian(0, 4) + std::string(before, 'x') + frames);
  };
  const auto coded = [&](std::uint64_t bits, const char* coding, int bytes, bool bigEnd) {
    return iffChunk("FORM", "AIFC" + common(10, bits, coding) + sound(tenFrames(bytes, bigEnd)));
  };
  const auto caf = [](std::uint64_t announced, const std::string& frames, std::uint64_t bytes = 2,
                      std::uint64_t bits = 16) {
    return "caff" + bigEndian(1, 2) + bigEndian(0, 2) + "desc" + bigEndian(32, 8) +
           std::string("\x40\xE7\x70\0\0\0\0\0", 8) + "lpcm" + bigEndian(0, 4) + bigEndian(2 * bytes, 4) +
           bigEndian(1, 4) + bigEndian(2, 4) + bigEndian(bits, 4) + "data" + bigEndian(announced, 8) +
           std::string(4, '\0') + frames;
  };
  const std::string list = riffChunk("LIST", std::string("INFOIART\3\0\0\0abc", 15));
  const struct {
    const char* name;
    std::string bytes;
    std::int64_t frames;
  } cases[] = {
      {"WAVE with chunks around", wave(4, 40, list) + list, 10},
      {"WAVE cut off in a frame", wave(4, 40).substr(0, 44 + 39), 9},
      {"WAVE whose sizes were never written", wave(4, 0).replace(4, 4, 4, '\0'), 10},
      {"WAVE that announces gigabytes", wave(4, 0xFFFFFF00), 10},
      {"WAVE with the frame size of one sample", wave(2, 40), 10},
      {"RF64 with fewer frames", wide(12), 3},
      {"RF64 of petabytes", wide(1ULL << 60), 10},
      {"RF64 of negative size", wide(1ULL << 63), 10},
      {"AIFF with the sound first", aiffFile(sound(big) + iffChunk("NAME", "take") + common(10)), 10},
      {"AIFF with an offset", aiffFile(common(10) + sound(big, 6)), 10},
      {"AIFF that announces billions of frames", aiffFile(common(0xFFFFFFFF) + sound(big)), 10},
      {"AIFF that announces fewer frames", aiffFile(common(7) + sound(big)), 7},
      {"AIFF cut off", aiffFile(common(10) + sound(big)).substr(0, 54 + 37), 9},
      {"AIFF with 12 of 16 bits", aiffFile(common(10, 12) + sound(big)), 10},
      {"sowt", coded(24, "sowt", 3, false), 10},
      {"in24", coded(16, "in24", 3, true), 10},
      {"23ni", coded(32, "23ni", 4, false), 10},
      {"CAF, open-ended", caf(~0ULL, big), 10},
      {"CAF with 24 of 32 bits", caf(84, tenFrames(4, true), 4, 24), 10},
      {"CAF cut off", caf(44, big).substr(0, 52 + 16 + 39), 9},
      {"CAF of petabytes", caf(1ULL << 60, big), 10},
  };
  const ScratchFolder scratch;
  for (const auto& [name, bytes, frames] : cases) {
    SCOPED_TRACE(name);
    const auto path = writeFile(scratch / "file", bytes);
    EXPECT_EQ(AudioFileReader(path).length(), frames);
    std::vector<std::vector<float>> expected(2);
    for (std::int64_t k = 1; k <= frames; ++k) {
      expected[0].push_back(static_cast<float>(k) * 0x1p-15f);
      expected[1].push_back(static_cast<float>(-k) * 0x1p-15f);
    }
    EXPECT_EQ(readSignal(path).planes, expected);
  }
}

TEST(AudioFileDamage, ACompressedFileHoldsTheWholePacketsThatAreThere) {
  const ScratchFolder scratch;
  const std::string wave =
      writeWave(scratch / "in.wav", noise(48000, 2, 50'021, 0.5, 3), SampleType::int16).string();
  runProgram({"flac", "-s", "--no-padding", "-b", "4096", wave, "-o", (scratch / "a.flac").string()});
  ffmpeg({"-i", wave, "-c:a", "alac", "-sample_fmt", "s16p", "-movflags", "faststart",
          (scratch / "a.m4a").string()});
  const std::vector<std::vector<float>> whole = readSignal(wave).planes;
  const std::string flac = readFile(scratch / "a.flac");
  const std::string alac = readFile(scratch / "a.m4a");
  const auto withTotal = [&](std::uint64_t total) {
    return std::string(flac).replace(18, 8, bigEndian(48000ULL << 44 | 1ULL << 41 | 15ULL << 36 | total, 8));
  };
  const struct {
    const char* name;
    std::string bytes;
    std::int64_t frames;
  } cases[] = {
      {"no total", withTotal(0), 50'021},
      {"a smaller total", withTotal(20'000), 50'021},
      {"the largest total", withTotal((1ULL << 36) - 1), 50'021},
      {"FLAC cut off in the last frame", flac.substr(0, flac.size() - 1), 12L * 4096},
      {"FLAC cut off in the first frame", flac.substr(0, 9'000), 0},
      {"tags around", id3Tag(4, std::string(2 << 20, '\0')) + flac + "TAG" + std::string(125, 'x'), 50'021},
      {"Apple Lossless cut off", alac.substr(0, alac.size() - 1), 12L * 4096},
  };
  for (const auto& [name, bytes, frames] : cases) {
    SCOPED_TRACE(name);
    const Signal read = readSignal(writeFile(scratch / "file", bytes));
    ASSERT_EQ(read.count(), frames);
    for (const std::size_t channel : {0, 1}) {
      const auto begin = whole[channel].begin();
      EXPECT_EQ(read.planes[channel], std::vector<float>(begin, begin + frames));
    }
  }

  const std::size_t middle = flac.size() / 2;
  std::string flipped = flac;
  flipped[middle] = static_cast<char>(flipped[middle] ^ 4);
  for (const std::string& damaged : {flipped, std::string(flac).erase(middle, 20'000)}) {
    EXPECT_EQ(refusal(writeFile(scratch / "damaged", damaged)),
              "“damaged” could not be decoded: It is damaged.");
  }

  // Tables that announce more packets than any file holds must be neither believed nor allocated.
  std::string bomb = alac;
  bomb.replace(alac.find("stsz") + 8, 8, bigEndian(1, 4) + bigEndian(0x0555'5555, 4));
  bomb.replace(alac.find("stsc") + 16, 4, bigEndian(0x0555'5555, 4));
  const auto path = writeFile(scratch / "bomb.m4a", bomb);
  if (refusal(path).empty()) {
    EXPECT_EQ(readSignal(path).count(), 0);
  }
}

TEST(AudioFileDamage, WhatIsNoAudioFileIsRefusedWithItsNameAndTheReason) {
  const ScratchFolder scratch;
  writeWave(scratch / "real.wav", counting(48000, 1000));
  const std::string wave = readFile(scratch / "real.wav");
  std::filesystem::create_directory(scratch / "folder");
  ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
  const std::pair<const char*, std::string> files[] = {
      {"empty", ""},
      {"notes.txt", "Fuga in G minor, take 3, the good one.\n"},
      {"list.m3u8", "#EXTM3U\n#EXTINF:1,\nreal.wav\n"},
      {"list.ffconcat", "ffconcat version 1.0\nfile real.wav\n"},
      {"header.wav", wave.substr(0, 40)},
      {"header.flac", "fLaC" + std::string("\0\0\0\x22\x10\0\x10\0", 8) + std::string(20, 'x')},
      {"header.m4a", atom("ftyp", "M4A \0\0\0\0")},
      {"header.ogg", "OggS" + std::string(60, '\0')},
  };
  for (const auto& [name, bytes] : files)
    writeFile(scratch / name, bytes);
  ffmpeg({"-f", "lavfi", "-i", "testsrc=s=64x64:d=0.2", (scratch / "silent.mp4").string(), "-frames:v", "1",
          (scratch / "image.png").string()});

  runProgram(
      {"flac", "-s", writeWave(scratch / "32.wav", counting(48000, 9000), SampleType::int32).string()});

  const std::string unknown = "It is not an audio file of a supported format";
  const std::string incomplete = "Its header is damaged or incomplete";
  const std::vector<std::pair<const char*, std::string>> cases = {
      {"missing.wav", "No such file or directory"},
      {"folder", "Is a directory"},
      {"pipe", "It is not an ordinary file"},
      {"empty", "The file is empty"},
      {"notes.txt", unknown},
      {"list.m3u8", unknown},
      {"list.ffconcat", unknown},
      {"image.png", unknown},
      {"header.wav", incomplete},
      {"header.flac", incomplete},
      {"header.m4a", incomplete},
      {"header.ogg", incomplete},
      {"silent.mp4", "It holds no audio"},
      {"32.flac", "FLAC audio of more than 24 bits is not supported"},
  };
  for (const auto& [name, reason] : cases) {
    const std::string last = std::filesystem::path(name).filename().string();
    std::string sentence = "“";
    sentence.append(last).append("” could not be opened: ").append(reason).append(".");
    EXPECT_EQ(refusal(scratch / name), sentence);
  }
}

TEST(AudioFileDamage, AFileThatShrinksWhileItIsReadIsAnError) {
  const ScratchFolder scratch;
  const auto path = writeWave(scratch / "a.wav", counting(48000, 50'021));
  AudioFileReader reader(path);
  std::filesystem::resize_file(path, 1000);
  Signal read{48000, std::vector(2, std::vector<float>(50'021))};
  float* const planes[] = {read.planes[0].data(), read.planes[1].data()};
  EXPECT_THROW(reader.read(planes, 50'021), PlatformError);
}

TEST(AudioFileDamage, NoCutAndNoDamageDoesWorseThanAnError) {
  const ScratchFolder scratch;
  const std::string wave = writeWave(scratch / "a.wav", music(48000, 2, 0.1), SampleType::int24).string();
  std::vector<std::string> arguments = {"-i", wave};
  const std::vector<std::string> names = {"a.aiff", "a.caf", "a.w64", "a.au",  "a.flac", "a.m4a", "a.mov",
                                          "a.mp3",  "a.ogg", "a.aac", "a.mka", "a.ac3",  "a.wma"};
  for (const std::string& name : names)
    arguments.push_back((scratch / name).string());
  ffmpeg(arguments);
  std::mt19937 random(7);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  for (const std::string& name : names) {
    const std::string whole = readFile(scratch / name);
    for (int round = 0; round < 30; ++round) {
      SCOPED_TRACE(name + ", round " + std::to_string(round));
      std::string damaged = whole;
      for (int i = 0; i < 4; ++i)
        damaged[below(round % 2 == 0 ? 200 : damaged.size())] = static_cast<char>(random());
      if (round % 3 == 0) damaged.resize(below(damaged.size()));
      const std::string failure = refusal(writeFile(scratch / "damaged", damaged));
      EXPECT_TRUE(failure.empty() || failure.starts_with("“damaged” could not be ")) << failure;
    }
  }
}

}  // namespace zarnet::test
