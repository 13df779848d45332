#include "audio/AppError.h"
#include "prepare/AudioPreparer.h"
#include "tests/support/Seed.h"
#include "tests/support/Signals.h"
#include "tests/support/StandIns.h"

#include <chrono>
#include <random>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarnet {

namespace {

namespace fs = std::filesystem;
using Call = std::vector<std::string>;

class Prepare : public testing::Test {
 protected:
  PreparedAudio prepare(const std::string& codec, std::int64_t bitrate, bool match = true) {
    return preparer.prepare(source, "id", codec, bitrate, match, progress);
  }

  /// What `prepare` raises; the preparer must be left without a child and without this conversion's folder.
  std::string failure(const std::string& codec, std::int64_t bitrate) {
    std::string sentence = "no error";
    try {
      prepare(codec, bitrate);
    } catch (const std::exception& error) {
      sentence = error.what();
    }
    EXPECT_EQ(test::livingChildren(), 0);
    EXPECT_FALSE(fs::exists(preparer.directory / "id"));
    return sentence;
  }

  std::vector<std::string> entries() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(preparer.directory / "id"))
      names.push_back(entry.path().filename());
    return names;
  }

  std::string in(const std::string& name) const { return (preparer.directory / "id" / name).string(); }

  test::ScratchFolder scratch;
  test::StandIns programs;
  AudioPreparer preparer{programs.lame()};
  fs::path source =
      test::writeWave(scratch / "-a 'source'\n.wav", test::music(44100, 2, 0.4), test::SampleType::int16);
  AudioPreparer::Progress progress = [](const std::string&) {};
};

}  // namespace

TEST_F(Prepare, RefusesAnUnknownCodecOrBitrateAndTouchesNothing) {
  const std::pair<std::string, std::int64_t> table[] = {{"Ogg Vorbis", 100}, {"AAC", 8},   {"MP3", 12},
                                                        {"MP3", -64},        {"aac", 128}, {"", 128}};
  for (const auto& [codec, bitrate] : table)
    EXPECT_EQ(failure(codec, bitrate), "Choose a supported format and bitrate.") << codec << bitrate;
  EXPECT_TRUE(fs::is_empty(preparer.directory));

  // The source is judged first.
  source = test::writeFile(scratch / "text", "no audio");
  EXPECT_NE(failure("aac", 0), "Choose a supported format and bitrate.");
  EXPECT_TRUE(programs.calls().empty());
}

TEST_F(Prepare, RunsEachCodecsCommandLines) {
  const std::string original = in("original.wav");
  const Call convert = {
      "afconvert", source, in("original-working.wav"), "-f", "WAVE", "-d", "LEF32@48000", "-c", "2",
      "-r",        "127"};
  const auto toCAF = [&](const std::string& from) {
    return Call{"afconvert", from, in("decoded-working.caf"), "-f", "caff", "-d", "LEF32@48000", "-c", "2"};
  };
  const auto aac = [&](const std::string& bits, const std::string& to) {
    return Call{"afconvert", original, to, "-f", "m4af", "-d", "aac", "-b", bits, "-q", "127", "-s", "0"};
  };
  const auto mp3 = [&](const std::string& kbps, const std::string& rate) {
    return Call{"lame", "--silent", "--noreplaygain",          "--cbr", "-b", kbps, "--resample", rate, "-q",
                "2",    original,   in("MP3-" + kbps + ".mp3")};
  };
  const auto viaLame = [&](const std::string& kbps, const std::string& rate) {
    return std::vector<Call>{
        convert,
        mp3(kbps, rate),
        {"lame", "--silent", "--decode", in("MP3-" + kbps + ".mp3"), in("decode-working.wav")},
        toCAF(in("decode-working.wav"))};
  };
  const struct {
    std::string codec;
    std::int64_t bitrate;
    std::string extension;  ///< with its full stop
    std::vector<Call> calls;
  } table[] = {
      {"AAC", 256, ".m4a", {convert, aac("256000", in("AAC-256.m4a")), toCAF(in("AAC-256.m4a"))}},
      {"MP3", 8, ".mp3", viaLame("8", "16")},
      {"MP3", 32, ".mp3", {convert, mp3("32", "48"), toCAF(in("MP3-32.mp3"))}},
      {"Ogg Vorbis",
       64,
       ".ogg",
       {convert,
        {"vorbis-tool", "encode", in("encode-working.f32"), in("Ogg Vorbis-64.ogg"), "64"},
        {"vorbis-tool", "decode", in("Ogg Vorbis-64.ogg"), in("decode-working.f32")}}},
  };
  for (const auto& [codec, bitrate, extension, calls] : table) {
    SCOPED_TRACE(codec + std::to_string(bitrate));
    std::vector<std::string> texts;
    progress = [&](const std::string& text) { texts.push_back(text); };
    const bool match = bitrate > 100;
    const PreparedAudio prepared = prepare(codec, bitrate, match);
    EXPECT_EQ(programs.calls(), calls);
    EXPECT_THAT(texts, testing::ElementsAre(
                           "Preparing audio…", "Creating the comparison…",
                           match ? "Aligning playback and matching loudness…" : "Aligning playback…"));
    const std::string stem = codec + "-" + std::to_string(bitrate);
    const std::string encoded = stem + extension;
    EXPECT_EQ(prepared.encodedURL, in(encoded));
    EXPECT_THAT(entries(),
                testing::UnorderedElementsAre("original.wav", encoded, stem + ".caf", stem + "-check.json"));
    preparer.discardConversion(prepared.encodedURL);
    EXPECT_FALSE(fs::exists(preparer.directory / "id"));
  }
}

TEST_F(Prepare, ReusesWhatLiesCompleteInTheFolder) {
  const PreparedAudio first = prepare("MP3", 128);
  EXPECT_EQ(programs.calls().size(), 3u);
  const PreparedAudio second = prepare("MP3", 128);
  EXPECT_TRUE(programs.calls().empty());
  EXPECT_EQ(first.gains, second.gains);
  prepare("MP3", 160);
  EXPECT_EQ(programs.calls().size(), 2u) << "the working original is there";
  EXPECT_EQ(entries().size(), 1u + 2 * 3);
}

TEST_F(Prepare, LeavesNoFolderWhateverFails) {
  const struct {
    const char* program;
    const char* script;
    std::string codec;
    std::int64_t bitrate;
    std::string sentence;
  } table[] = {
      {"afconvert", "echo no; exit 1", "MP3", 128, "Audio conversion failed. no\n"},
      {"afconvert", R"(case "$4" in caff) head -c 9999 /dev/zero >"$2"; exit 1;; *) real "$@";; esac)", "MP3",
       128, "Audio conversion failed. "},
      {"afconvert", R"(cp "$1" "$2")", "AAC", 128, "The comparison audio could not be decoded."},
      {"lame", "kill -KILL $$", "MP3", 128, "Audio conversion failed. "},
      {"lame", R"(real "$@"; head -c 999 "${10}" >"${11}"; exit 1)", "MP3", 320, "Audio conversion failed. "},
      {"vorbis-tool", R"(case "$1" in decode) printf 12345 >"$3";; *) real "$@";; esac)", "Ogg Vorbis", 64,
       "The decoded Vorbis audio is incomplete."},
  };
  for (const auto& [program, script, codec, bitrate, sentence] : table) {
    SCOPED_TRACE(std::string(program) + ": " + script);
    programs.replace(program, script);
    EXPECT_THAT(failure(codec, bitrate), testing::StartsWith(sentence));
    programs.replace(program, R"(real "$@")");
  }
  fs::permissions(programs.lame(), fs::perms::none);
  EXPECT_EQ(failure("MP3", 128), "“lame” could not be started: Permission denied.");
  programs.remove("lame");
  EXPECT_EQ(failure("MP3", 128), "“lame” could not be started: No such file or directory.");
  prepare("Ogg Vorbis", 64);
  progress = [&](const std::string& text) {
    if (text == "Creating the comparison…") fs::remove_all(preparer.directory);
  };
  EXPECT_EQ(failure("AAC", 128), "“process.log” could not be opened: No such file or directory.");
}

TEST_F(Prepare, LeavesNothingBehindCancelledAtAnyMoment) {
  std::mt19937 random(test::testSeed());
  const auto begin = std::chrono::steady_clock::now();
  prepare("Ogg Vorbis", 64);
  const auto whole = std::chrono::steady_clock::now() - begin;
  for (int k = 0; k < 40; ++k) {
    const auto delay = whole * (random() % 1000) / 900;
    preparer.clearTemporaryFiles();
    preparer.resetCancellation();
    std::thread canceller([&] {
      std::this_thread::sleep_for(delay);
      preparer.cancel();
    });
    std::string message;
    try {
      const auto codec = k % 3 == 0 ? "AAC" : k % 3 == 1 ? "MP3" : "Ogg Vorbis";
      preparer.prepare(source, "id", codec, 64, true, progress);
    } catch (const AppError& error) {
      message = error.message;
    }
    canceller.join();
    EXPECT_TRUE(message.empty() || message == "Cancelled") << message;
    EXPECT_EQ(fs::exists(preparer.directory / "id"), message.empty());
    ASSERT_EQ(test::livingChildren(), 0);
  }
}

}  // namespace zarnet
