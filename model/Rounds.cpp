#include "model/FileNames.h"
#include "model/LosslessSide.h"
#include "model/NativeModel.h"
#include "model/StatusValue.h"
#include "system/FileSystem.h"
#include "system/UUID.h"
#include "system/UserError.h"

#include <algorithm>
#include <utility>

namespace zarnet {

namespace {
constexpr double shortestPart = 0.05;  // seconds, between an end of the loop and the far end of the track
constexpr double loopPush = 1;         // seconds, that one end of the loop keeps from the other
}  // namespace

void NativeModel::start() {
  if (busy || importing || playlist->empty() || window == nullptr) return;
  Alert alert;
  alert.message = QStringLiteral("Before you listen");
  alert.informativeText = QStringLiteral(
      "Ensure you are listening over a wired connection for the best and most accurate results.");
  alert.buttons = {QStringLiteral("Continue"), QStringLiteral("Cancel")};
  window->show(alert, [this, here = std::weak_ptr(alive)](std::optional<std::size_t> button) {
    if (here.expired() || button != 0U) return;
    roundSongs = *playlist;
    roundCodec = *codec;
    roundRate = rate;
    roundMatch = match;
    answers = {};
    prepare(0, std::nullopt);
  });
}

void NativeModel::prepare(std::int64_t track, std::optional<Vote> committing) {
  if (track < 0 || track >= std::ssize(roundSongs) || busy) return;
  busy = true;
  progress = QStringLiteral("Preparing audio…");
  player.pause();
  vote = std::nullopt;
  job = QUuid::createUuid();
  const Song song = roundSongs[static_cast<std::size_t>(track)];
  const Round round{job, track, song.title, std::move(committing)};
  preparer.resetCancellation();
  inBackground(
      preparationThread, busy,
      [this, round, url = song.url, name = roundCodec.toStdString(), bitrate = roundRate,
       matched = roundMatch](const std::stop_token&) {
        const auto tell = [&](const std::string& text) {
          interfaceThread.post([this, identity = round.identity, line = QString::fromStdString(text)] {
            if (job == identity) progress = line;
          });
        };
        try {
          interfaceThread.post(
              [this, round, comparison = preparer.prepare(url, newUUID(), name, bitrate, matched, tell)] {
                busy = false;
                load(comparison, round);
              });
        } catch (const std::exception& failure) {
          interfaceThread.post(
              [this, identity = round.identity, message = QString::fromStdString(errorDescription(failure))] {
                busy = false;
                if (job == identity) error = message;
              });
        }
      });
}

void NativeModel::load(const PreparedAudio& comparison, const Round& round) {
  if (job != round.identity) {
    removeTemporary([&] { preparer.discardConversion(comparison.encodedURL); });
    return;
  }
  discardCurrentConversion();
  if (round.committing) {
    answers.change([&](std::vector<Vote>& votes) { votes.push_back(*round.committing); });
  }
  index = round.track;
  lossless = drawnLosslessSide();
  selected = QStringLiteral("A");
  player.load(comparison, *lossless == u"A");
  player.setVolume(volume);
  duration = static_cast<double>(comparison.original->count) / PCM::rate;
  originalDescription = QString::fromStdString(comparison.info.summary());
  const PlayerStatus status = player.status();
  loopStart = statusValue<double>(status, "loopStart").value_or(0.0);
  loopEnd = statusValue<double>(status, "loopEnd").value_or(duration);
  loop = false;
  exportURL = comparison.encodedURL;
  exportName = exportFileName(round.title, roundCodec, roundRate, comparison.encodedURL);
  stage = Stage::listen;
}

void NativeModel::confirm() {
  const std::optional<Song> song = current();
  if (*stage != Stage::listen || busy || !vote->has_value() || !song) return;
  player.pause();
  const Vote answer{QUuid::createUuid(), song->title, **vote, *lossless};
  if (!tournament()) {
    answers = {answer};
    stage = Stage::reveal;
    clearTemporaryAudio();
  } else if (*index + 1 == std::ssize(roundSongs)) {
    answers.change([&](std::vector<Vote>& votes) { votes.push_back(answer); });
    stage = Stage::tally;
    player.stop();
    clearTemporaryAudio();
  } else {
    prepare(*index + 1, answer);
  }
}

void NativeModel::back() {
  if (busy) return;
  player.stop();
  clearTemporaryAudio();
  stage = Stage::setup;
  answers = {};
  vote = std::nullopt;
}

void NativeModel::cancel() {
  job = QUuid::createUuid();
  preparer.cancel();
  progress = QStringLiteral("Cancelling…");
}

void NativeModel::select(const QString& side) {
  selected = side;
  player.select(side.toStdString());
}

void NativeModel::playPause() {
  if (playing) return player.pause();
  try {
    player.play();
  } catch (const std::exception& failure) {
    fail(failure);
  }
}

void NativeModel::seek(double time) {
  position = time;
  player.seek(time);
}

void NativeModel::setLoop(bool on) {
  loop = on;
  updateLoop();
}

void NativeModel::setLoopStart() {
  loopStart = std::min(*position, std::max(*duration - shortestPart, 0.0));
  loopEnd = std::max(*loopEnd, std::min(*loopStart + loopPush, *duration));
  updateLoop();
}

void NativeModel::setLoopEnd() {
  loopEnd = std::max(*position, shortestPart);
  loopStart = std::min(*loopStart, std::max(*loopEnd - loopPush, 0.0));
  updateLoop();
}

void NativeModel::updateLoop() {
  player.setLoop(loop, *loopStart, *loopEnd);
}

void NativeModel::discardCurrentConversion() {
  if (!exportURL) return;
  const std::filesystem::path encoded = *std::exchange(exportURL, std::nullopt);
  exportName.clear();
  removeTemporary([&] { preparer.discardConversion(encoded); });
}

void NativeModel::clearTemporaryAudio() {
  exportURL = std::nullopt;
  exportName.clear();
  removeTemporary([&] { preparer.clearTemporaryFiles(); });
}

void NativeModel::removeTemporary(const std::function<void()>& removal) {
  try {
    removal();
  } catch (const std::exception& failure) {
    error = QStringLiteral("Could not remove temporary audio: ") +
            QString::fromStdString(errorDescription(failure));
  }
}

void NativeModel::cleanup() {
  timer.reset();
  job = QUuid::createUuid();
  importThread.request_stop();
  preparer.cancel();
  player.stop();
  clearTemporaryAudio();
}

}  // namespace zarnet
