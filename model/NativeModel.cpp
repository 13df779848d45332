#include "model/NativeModel.h"

#include "desktop/Appearance.h"
#include "model/StatusValue.h"
#include "prepare/Codecs.h"
#include "system/UserError.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

namespace zarnet {

namespace {

constexpr std::chrono::milliseconds pollInterval(100);
const QString glassKey = QStringLiteral("liquidGlass");
const QString appearanceKey = QStringLiteral("appearance");

}  // namespace

NativeModel::NativeModel(const std::filesystem::path& resources, std::unique_ptr<AudioEngine> engine,
                         Defaults settings)
    : defaults(std::move(settings)),
      glass(willChange, defaults.boolean(glassKey).value_or(true),
            [this] { defaults.setBoolean(glassKey, glass); }),
      appearance(willChange, defaults.text(appearanceKey).value_or(QStringLiteral("system")),
                 [this] {
                   defaults.setText(appearanceKey, appearance);
                   applyAppearance();
                 }),
      player(std::move(engine),
             [this](std::function<void()> task) { interfaceThread.post(std::move(task)); }),
      // The appearance first: when there can be no workspace, the alert that says so wears it.
      preparer((applyAppearance(), resources / "lame")) {
  timer.emplace();
  QObject::connect(&*timer, &QTimer::timeout, &*timer, [this] { followPlayer(); });
  timer->start(pollInterval);
}

NativeModel::~NativeModel() {
  preparer.cancel();
}

void NativeModel::keepRateInTable() {
  const auto table = rates();
  if (std::ranges::find(table, *rate) == table.end()) rate = table.front();
}

void NativeModel::followPlayer() {
  const PlayerStatus status = player.status();
  const double now = statusValue<double>(status, "position").value_or(0.0);
  if (now != *position) position = now;
  const bool runs = statusValue<bool>(status, "playing").value_or(false);
  if (runs != *playing) playing = runs;
}

std::span<const std::int64_t> NativeModel::rates() const {
  return acceptedBitrates(codec->toStdString());
}

bool NativeModel::tournament() const {
  return (*stage == Stage::setup ? *playlist : roundSongs).size() > 1;
}

std::optional<Song> NativeModel::current() const {
  if (*index < 0 || *index >= std::ssize(roundSongs)) return std::nullopt;
  return roundSongs[static_cast<std::size_t>(*index)];
}

void NativeModel::applyAppearance() const {
  setApplicationAppearance(*appearance == u"dark"    ? std::optional(ColorScheme::dark)
                           : *appearance == u"light" ? std::optional(ColorScheme::light)
                                                     : std::nullopt);
}

void NativeModel::fail(const std::exception& failure) {
  error = QString::fromStdString(errorDescription(failure));
}

void NativeModel::inBackground(std::jthread& thread, Published<bool>& running,
                               std::function<void(const std::stop_token&)> work) {
  try {
    thread = std::jthread(std::move(work));
  } catch (const std::system_error& failure) {
    running = false;
    fail(failure);
  }
}

}  // namespace zarnet
