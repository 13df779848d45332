#include "playback/AudioPlayer.h"

#include "audio/AppError.h"
#include "playback/PlaybackState.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zarnet {

namespace {

constexpr std::int64_t loopLead = 48'000;  // 1 s

/// Whole frames in a finite time, truncated; times beyond the range of the type count as its ends.
std::int64_t frames(double seconds) {
  const double product = seconds * PCM::rate;
  if (product >= 0x1p63) return std::numeric_limits<std::int64_t>::max();
  if (product < -0x1p63) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(product);
}

double seconds(std::int64_t frameCount) {
  return static_cast<double>(frameCount) / PCM::rate;
}

/// A session's output has changed. A notice that a newer session has overtaken is stale.
void outputChanged(PlaybackState& state, std::uint64_t session) {
  const MutexLock hold(state.lock);
  if (session < state.session) return;
  state.lostSession = session;
  state.running = false;
}

}  // namespace

void runAtOnce(const std::function<void()>& task) {
  task();
}

AudioPlayer::AudioPlayer(std::unique_ptr<AudioEngine> soundEngine, Dispatcher dispatch)
    : state(std::make_shared<PlaybackState>()), engine(std::move(soundEngine)) {
  const std::weak_ptr<PlaybackState> weak = state;
  engine->connect(
      [weak](bool& silence, std::span<float* const> buffers, std::int64_t count) {
        if (const auto playback = weak.lock()) playback->render(silence, buffers, count);
      },
      [weak, dispatch = std::move(dispatch)](std::uint64_t session) {
        dispatch([weak, session] {
          if (const auto playback = weak.lock()) outputChanged(*playback, session);
        });
      });
}

AudioPlayer::~AudioPlayer() = default;

void AudioPlayer::load(PreparedAudio comparison, bool losslessA) {
  engine->stop();
  // Outlives the lock and takes the previous comparison away: it is released here, with the lock free.
  std::optional<PreparedAudio> incoming(std::move(comparison));
  const std::int64_t count = incoming->original->count;
  const MutexLock hold(state->lock);
  std::swap(state->audio, incoming);
  state->position = 0;
  state->running = false;
  state->losslessA = losslessA;
  state->selectedA = true;
  state->blend = losslessA ? 0.0f : 1.0f;
  state->fade = 0;
  state->looping = false;
  state->loopStart = std::min(std::max<std::int64_t>(count - loopLead, 0), PlaybackState::latestLoopStart);
  state->loopEnd = std::min(count, PlaybackState::latestLoopEnd);
}

void AudioPlayer::play() {
  {
    const MutexLock hold(state->lock);
    if (!state->audio) throw AppError("Choose a track first.");
  }
  std::optional<std::uint64_t> begun;
  if (!engine->isRunning()) {
    begun = ++startedSessions;
    engine->start(*begun);
  }
  const MutexLock hold(state->lock);
  if (begun) state->session = *begun;
  if (state->position >= state->audio->original->count) state->position = 0;
  // The output may have changed again since it was opened.
  state->running = state->lostSession < state->session;
  state->fade = 0;
}

void AudioPlayer::pause() {
  const MutexLock hold(state->lock);
  state->running = false;
}

void AudioPlayer::stop() {
  engine->stop();
  std::optional<PreparedAudio> outgoing;  // outlives the lock, as in `load`
  const MutexLock hold(state->lock);
  state->running = false;
  std::swap(state->audio, outgoing);
  state->position = 0;
}

void AudioPlayer::select(std::string_view label) {
  const MutexLock hold(state->lock);
  state->selectedA = label == "A";
}

void AudioPlayer::seek(double time) {
  if (!std::isfinite(time)) return;
  const MutexLock hold(state->lock);
  if (!state->audio) return;
  state->position = std::min(std::max<std::int64_t>(frames(time), 0), state->audio->original->count);
  state->fade = 0;
}

void AudioPlayer::setVolume(double value) {
  if (!std::isfinite(value)) return;
  const MutexLock hold(state->lock);
  state->volume = static_cast<float>(std::clamp(value, 0.0, 1.0));
}

void AudioPlayer::setLoop(bool enabled, std::optional<double> start, std::optional<double> end) {
  const MutexLock hold(state->lock);
  if (state->audio && start && end && std::isfinite(*start) && std::isfinite(*end) && *start < *end) {
    const std::int64_t count = state->audio->original->count;
    state->loopStart = std::max<std::int64_t>(std::min(count - 1, frames(*start)), 0);
    state->loopEnd = std::max(std::min(count, frames(*end)), state->loopStart + 1);
  }
  state->looping = enabled;
  if (enabled && (state->position < state->loopStart || state->position >= state->loopEnd)) {
    state->position = state->loopStart;
    state->fade = 0;
  }
}

PlayerStatus AudioPlayer::status() const {
  double position = 0, duration = 0, loopStart = 0, loopEnd = 0;
  bool playing = false;
  {
    const MutexLock hold(state->lock);
    position = seconds(state->position);
    playing = state->running;
    if (state->audio) duration = seconds(state->audio->original->count);
    loopStart = seconds(state->loopStart);
    loopEnd = seconds(state->loopEnd);
  }
  return {{"position", position},
          {"playing", playing},
          {"duration", duration},
          {"loopStart", loopStart},
          {"loopEnd", loopEnd}};
}

}  // namespace zarnet
