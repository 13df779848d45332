#include "output/AudioEngine.h"

#include "output/OutputWatch.h"
#include "output/PulseConfiguration.h"
#include "output/RealTimePriority.h"
#include "system/Interleaving.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <optional>
#include <utility>

#include <pulse/pulseaudio.h>
#include <unistd.h>

namespace zarnet {

namespace {

constexpr pa_sample_spec format = {PA_SAMPLE_FLOAT32NE, 48000, 2};
constexpr std::size_t frameBytes = 2 * sizeof(float);
constexpr std::int64_t planeFrames = 2048;  // rendered in one call at most
// In the server's buffer. More makes gaps on a busy machine rarer and a switch later: with 60 ms it takes
// more than 60 ms on PipeWire until a switch is heard.
constexpr pa_usec_t latency = 50 * PA_USEC_PER_MSEC;
constexpr pa_usec_t startLimit = 2'000 * PA_USEC_PER_MSEC;  // the rest of 2.5 s is for a busy machine
constexpr std::chrono::milliseconds priorityLimit(500);     // to ask for real-time priority
constexpr const char* dummyOutput = "auto_null";            // stands in where there is no device
constexpr const char* applicationID = "org.zarnet.Zarnet";  // that of the desktop entry
constexpr const char* changedWhileOpening = "The output changed while it was being opened";

// Before `main`, when there is no other thread yet, in every program that has an engine.
[[maybe_unused]] const bool configured = (usePulseConfiguration(), true);

struct Release {
  void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
  void operator()(pa_context* context) const { pa_context_unref(context); }
  void operator()(pa_stream* stream) const { pa_stream_unref(stream); }
  void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

/// Holds the loop's lock, under which its thread makes all callbacks, for the length of a scope.
class LoopLock {
 public:
  explicit LoopLock(pa_threaded_mainloop* held) : loop(held) { pa_threaded_mainloop_lock(loop); }
  ~LoopLock() { pa_threaded_mainloop_unlock(loop); }
  LoopLock(const LoopLock&) = delete;
  LoopLock& operator=(const LoopLock&) = delete;

 private:
  pa_threaded_mainloop* const loop;
};

/// Lets an operation run on without watching it; null when it could not be begun.
void unwatched(pa_operation* operation) {
  if (operation != nullptr) pa_operation_unref(operation);
}

std::string text(const char* optional) {
  return optional == nullptr ? "" : optional;
}

PlatformError unavailable(const std::string& reason) {
  return PlatformError("No audio output is available. " + reason + ".");
}

/// One connection to the audio server with one playing stream, from construction to destruction. Everything
/// below happens under the loop's lock: on the loop's thread in callbacks, or on the interface thread.
class Session {
 public:
  Session(const std::string& server, const RenderCallback& callback, std::function<void()> handler);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  bool isRunning() const { return phase == Phase::running; }

 private:
  enum class Phase { starting, running, over };

  Session(const RenderCallback& callback, std::function<void()> handler);
  void raisePriority();
  void connectContext(const std::string& server);
  void learnOutput();
  void connectStream();
  void begin();
  template <typename Condition>
  void waitUntil(Condition condition, const char* reason = "The audio server does not answer");
  PlatformError failure(const std::string& reason) const;

  void changed(pa_subscription_event_type_t event, std::uint32_t index);
  void reportDefault(const pa_server_info* info);
  void reportPort(const pa_sink_info* info);
  void reportSleep();
  void report(const OutputReport& told);
  void lost();
  void write(std::size_t bytes);
  void wake() { pa_threaded_mainloop_signal(loop.get(), 0); }
  static Session& self(void* data) { return *static_cast<Session*>(data); }

  const RenderCallback& source;
  const std::function<void()> lostHandler;
  std::array<std::array<float, planeFrames>, 2> planes{};
  const pa_usec_t begun = pa_rtclock_now();
  pid_t thread = 0;                          // the loop's
  std::optional<RealTimePriority> priority;  // outlives the thread
  const Owned<pa_threaded_mainloop> loop;
  Owned<pa_context> context;
  Owned<pa_stream> stream;
  pa_time_event* deadline = nullptr;
  bool expired = false;
  bool serverKnown = false;
  bool portKnown = false;
  OutputWatch watch;
  std::atomic<Phase> phase = Phase::starting;
};

Session::Session(const RenderCallback& callback, std::function<void()> handler)
    : source(callback), lostHandler(std::move(handler)), loop(pa_threaded_mainloop_new()) {}

// The delegation makes the destructor clear up after whatever raises here.
Session::Session(const std::string& server, const RenderCallback& callback, std::function<void()> handler)
    : Session(callback, std::move(handler)) {
  if (loop == nullptr) throw unavailable("Its event loop could not be made");
  pa_threaded_mainloop_set_name(loop.get(), "zarnet-audio");  // once started it would rename this thread
  if (pa_threaded_mainloop_start(loop.get()) < 0) throw unavailable("Its thread could not be started");
  const LoopLock hold(loop.get());
  raisePriority();
  connectContext(server);
  learnOutput();
  connectStream();
  begin();
}

Session::~Session() {
  if (loop == nullptr) return;
  {
    const LoopLock hold(loop.get());
    if (deadline != nullptr) pa_threaded_mainloop_get_api(loop.get())->time_free(deadline);
    if (stream != nullptr) {
      pa_stream_set_state_callback(stream.get(), nullptr, nullptr);
      pa_stream_set_write_callback(stream.get(), nullptr, nullptr);
      pa_stream_set_moved_callback(stream.get(), nullptr, nullptr);
      pa_stream_set_suspended_callback(stream.get(), nullptr, nullptr);
      pa_stream_disconnect(stream.get());
      stream.reset();
    }
    if (context != nullptr) {
      pa_context_set_state_callback(context.get(), nullptr, nullptr);
      pa_context_set_subscribe_callback(context.get(), nullptr, nullptr);
      pa_context_disconnect(context.get());
      context.reset();
    }
  }
  pa_threaded_mainloop_stop(loop.get());
}

PlatformError Session::failure(const std::string& reason) const {
  return unavailable(reason + ": " + pa_strerror(pa_context_errno(context.get())));
}

/// Waits until `condition` holds. Raises when `lost` was called, or when the deadline of the whole start has
/// passed, for which `reason` is given.
template <typename Condition>
void Session::waitUntil(Condition condition, const char* reason) {
  while (!condition()) {
    if (expired) throw unavailable(reason);
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context.get()))) throw failure("The audio server has gone");
    if (phase == Phase::over) throw unavailable(changedWhileOpening);
    pa_threaded_mainloop_wait(loop.get());
  }
}

void Session::raisePriority() {
  pa_mainloop_api_once(
      pa_threaded_mainloop_get_api(loop.get()),
      [](pa_mainloop_api*, void* data) {
        self(data).thread = gettid();
        self(data).wake();
      },
      this);
  while (thread == 0)
    pa_threaded_mainloop_wait(loop.get());
  priority.emplace(thread, priorityLimit);
}

void Session::connectContext(const std::string& server) {
  const Owned<pa_proplist> properties(pa_proplist_new());
  // With the identifier, and without a media role, what servers remember (volume, mute, device) is our own.
  pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, applicationID);
  pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Zarnet");
  pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "zarnet");
  context.reset(
      pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop.get()), nullptr, properties.get()));
  if (context == nullptr) throw unavailable("The audio server could not be contacted");
  deadline = pa_context_rttime_new(
      context.get(), begun + startLimit,
      [](pa_mainloop_api*, pa_time_event*, const timeval*, void* data) {
        self(data).expired = true;
        self(data).wake();
      },
      this);
  pa_context_set_state_callback(
      context.get(),
      [](pa_context* changing, void* data) {
        if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(changing)))
          self(data).report({OutputReport::Kind::ended, {}});
        self(data).wake();
      },
      this);
  const auto state = [&] { return pa_context_get_state(context.get()); };
  const char* address = server.empty() ? nullptr : server.c_str();
  if (pa_context_connect(context.get(), address, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0) {
    waitUntil([&] { return state() == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state()); });
  }
  if (state() != PA_CONTEXT_READY) throw failure("The audio server could not be reached");
}

/// Subscribes to the server's events and notes which sink is the default one.
void Session::learnOutput() {
  pa_context_set_subscribe_callback(
      context.get(),
      [](pa_context*, pa_subscription_event_type_t event, std::uint32_t index, void* data) {
        self(data).changed(event, index);
      },
      this);
  const auto events =
      static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER);
  unwatched(pa_context_subscribe(context.get(), events, nullptr, nullptr));
  unwatched(pa_context_get_server_info(
      context.get(),
      [](pa_context*, const pa_server_info* info, void* data) {
        self(data).reportDefault(info);
        self(data).serverKnown = true;
        self(data).wake();
      },
      this));
  waitUntil([&] { return serverKnown; });
}

/// Opens a corked stream on the output and notes which port of it is active.
void Session::connectStream() {
  stream.reset(pa_stream_new(context.get(), "Playback", &format, nullptr));
  if (stream == nullptr) throw failure("The audio server refused the stream");
  pa_stream_set_state_callback(
      stream.get(),
      [](pa_stream* changing, void* data) {
        if (!PA_STREAM_IS_GOOD(pa_stream_get_state(changing)))
          self(data).report({OutputReport::Kind::ended, {}});
        self(data).wake();
      },
      this);
  pa_stream_set_write_callback(
      stream.get(), [](pa_stream*, std::size_t bytes, void* data) { self(data).write(bytes); }, this);
  pa_stream_set_moved_callback(
      stream.get(),
      [](pa_stream*, void* data) {
        self(data).report({OutputReport::Kind::moved, {}});
      },
      this);
  pa_stream_set_suspended_callback(
      stream.get(), [](pa_stream*, void* data) { self(data).reportSleep(); }, this);
  constexpr auto automatic = static_cast<std::uint32_t>(-1);
  const pa_buffer_attr attributes = {automatic,
                                     static_cast<std::uint32_t>(pa_usec_to_bytes(latency, &format)),
                                     automatic, automatic, automatic};
  // Without DONT_MOVE the server plays what it holds on the next output before the stream can be corked. So
  // it is also refused when a mixer tries to move the stream.
  const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_AUTO_TIMING_UPDATE |
                                                    PA_STREAM_INTERPOLATE_TIMING | PA_STREAM_START_CORKED |
                                                    PA_STREAM_DONT_MOVE);
  const auto state = [&] { return pa_stream_get_state(stream.get()); };
  if (pa_stream_connect_playback(stream.get(), nullptr, &attributes, flags, nullptr, nullptr) >= 0) {
    waitUntil([&] { return state() == PA_STREAM_READY || !PA_STREAM_IS_GOOD(state()); });
  }
  if (state() != PA_STREAM_READY) throw failure("The audio server refused the stream");
  const std::string device = text(pa_stream_get_device_name(stream.get()));
  if (device == dummyOutput) throw unavailable("There is no output device");
  report({OutputReport::Kind::opened, device, pa_stream_get_device_index(stream.get())});
  reportSleep();
  unwatched(pa_context_get_sink_info_by_index(
      context.get(), pa_stream_get_device_index(stream.get()),
      [](pa_context*, const pa_sink_info* info, int end, void* data) {
        self(data).reportPort(info);
        self(data).portKnown = end != 0;
        self(data).wake();
      },
      this));
  waitUntil([&] { return portKnown; });
}

/// Lets the stream sound, unless the output has changed since it was opened. An output that sleeps because
/// nobody used it wakes up now; one that somebody put to sleep does not.
void Session::begin() {
  unwatched(pa_stream_cork(stream.get(), 0, nullptr, nullptr));
  waitUntil([&] { return watch.isAwake(); }, "The output is suspended");
  auto expected = Phase::starting;
  if (!phase.compare_exchange_strong(expected, Phase::running)) throw unavailable(changedWhileOpening);
}

void Session::changed(pa_subscription_event_type_t event, std::uint32_t index) {
  const auto facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
  const auto kind = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
  if (facility == PA_SUBSCRIPTION_EVENT_SERVER) {
    unwatched(pa_context_get_server_info(
        context.get(),
        [](pa_context*, const pa_server_info* info, void* data) { self(data).reportDefault(info); }, this));
  } else if (facility == PA_SUBSCRIPTION_EVENT_SINK) {
    if (kind == PA_SUBSCRIPTION_EVENT_REMOVE) return report({OutputReport::Kind::removed, {}, index});
    unwatched(pa_context_get_sink_info_by_index(
        context.get(), index,
        [](pa_context*, const pa_sink_info* info, int, void* data) { self(data).reportPort(info); }, this));
  }
}

void Session::reportDefault(const pa_server_info* info) {
  if (info != nullptr) report({OutputReport::Kind::defaultOutput, text(info->default_sink_name)});
}

void Session::reportPort(const pa_sink_info* info) {
  if (info == nullptr) return;
  const std::string port = info->active_port == nullptr ? "" : text(info->active_port->name);
  report({OutputReport::Kind::activePort, port, info->index});
}

void Session::reportSleep() {
  const bool sleeps = pa_stream_is_suspended(stream.get()) > 0;
  report({sleeps ? OutputReport::Kind::suspended : OutputReport::Kind::awake, {}});
}

void Session::report(const OutputReport& told) {
  wake();
  if (watch.isLost(told)) lost();
}

/// The one end that a session comes to by itself: what is left in the stream's buffer is not heard any more.
void Session::lost() {
  wake();
  if (phase.exchange(Phase::over) != Phase::running) return;
  unwatched(pa_stream_cork(stream.get(), 1, nullptr, nullptr));
  unwatched(pa_stream_flush(stream.get(), nullptr, nullptr));
  lostHandler();
}

/// Gives the stream the `bytes` it asks for: silence until the start has succeeded, nothing after the end.
void Session::write(std::size_t bytes) {
  const std::array<float*, 2> buffers = {planes[0].data(), planes[1].data()};
  while (bytes >= frameBytes && phase != Phase::over) {
    void* memory = nullptr;
    std::size_t size = std::min(bytes, planeFrames * frameBytes);
    if (pa_stream_begin_write(stream.get(), &memory, &size) < 0 || memory == nullptr) return lost();
    const auto frames = static_cast<std::int64_t>(std::min(size, planeFrames * frameBytes) / frameBytes);
    size = static_cast<std::size_t>(frames) * frameBytes;
    bool silence = true;
    if (phase == Phase::running) source(silence, buffers, frames);
    if (silence) {
      std::memset(memory, 0, size);
    } else {
      interleave(buffers[0], buffers[1], frames, static_cast<float*>(memory));
    }
    if (pa_stream_write(stream.get(), memory, size, nullptr, 0, PA_SEEK_RELATIVE) < 0) return lost();
    bytes -= std::min(bytes, size);
  }
}

/// The engine on libpulse, which PulseAudio and PipeWire serve alike.
class PulseEngine final : public AudioEngine {
 public:
  explicit PulseEngine(std::string server) : address(std::move(server)) {}

  void connect(RenderCallback callback, ConfigurationChange handler) override {
    source = std::move(callback);
    configurationChanged = std::move(handler);
  }
  void start(std::uint64_t number) override {
    session.reset();
    session = std::make_unique<Session>(address, source, [this, number] { configurationChanged(number); });
  }
  void stop() override { session.reset(); }
  bool isRunning() const override { return session != nullptr && session->isRunning(); }

 private:
  const std::string address;
  RenderCallback source;
  ConfigurationChange configurationChanged;
  std::unique_ptr<Session> session;  // also one that is over, until the next start or stop
};

}  // namespace

std::unique_ptr<AudioEngine> makeAudioEngine(const std::string& server) {
  return std::make_unique<PulseEngine>(server);
}

}  // namespace zarnet
