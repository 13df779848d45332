#pragma once

#include "desktop/Defaults.h"
#include "desktop/InterfaceQueue.h"
#include "desktop/Published.h"
#include "desktop/Sheets.h"
#include "model/Song.h"
#include "model/SongImport.h"
#include "model/Vote.h"
#include "playback/AudioPlayer.h"
#include "prepare/AudioPreparer.h"
#include "prepare/Resources.h"

#include <QByteArray>
#include <QString>
#include <QTimer>
#include <QUuid>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace zarnet {

/// Where a listening test stands.
enum class Stage {
  setup,   ///< the track list and the settings can be edited; nothing is loaded
  listen,  ///< a comparison is loaded; the listener switches and votes
  reveal,  ///< a test of one track has ended and shows its truth
  tally    ///< a test of several tracks has ended and shows its tally
};

/// The whole state of the application and everything that changes it. Screens read its properties, assign
/// those that say so, and call its operations. An operation that is not allowed in the present state does
/// nothing; a failure becomes the text of `error`.
///
/// All of it belongs to the interface thread, which debug builds assert. An import and a preparation each run
/// on a thread of their own that touches nothing here but the preparer; what such a job hands back after
/// `cancel`, `cleanup` or the end of this object changes nothing that is shown.
class NativeModel {
  // First, because everything else may use them to the end.
  const Defaults defaults;
  InterfaceQueue interfaceThread;

 public:
  /// `resources` is the folder of "lame" and its companions, which are not examined here. Raises
  /// `PlatformError` when the temporary workspace cannot be created. Requires: an application object, when
  /// the event loop is to run; it outlives the model.
  explicit NativeModel(const std::filesystem::path& resources = resourcesFolder(),
                       std::unique_ptr<AudioEngine> engine = makeAudioEngine(),
                       Defaults settings = Defaults());
  /// Cancels what still runs, waits for it, and tells nobody. `cleanup` comes first at the end of the
  /// application. Not from an observer of the model.
  ~NativeModel();
  NativeModel(const NativeModel&) = delete;
  NativeModel& operator=(const NativeModel&) = delete;

  /// Tells before each assignment which published property is about to change.
  WillChange willChange;

  Published<std::vector<Song>> playlist{willChange, {}};  ///< the imported tracks, in import order
  Published<Stage> stage{willChange, Stage::setup};
  Published<QString> codec{willChange, QStringLiteral("AAC"),  ///< for the next test; screens assign it
                           [this] { keepRateInTable(); }};
  Published<std::int64_t> rate{willChange, 256};  ///< kbps, for the next test; screens assign it
  Published<bool> match{willChange, true};        ///< loudness, for the next test; screens assign it
  Published<bool> busy{willChange, false};        ///< a comparison is being prepared
  Published<bool> importing{willChange, false};   ///< files are being inspected
  Published<QString> progress{willChange, {}};    ///< what the preparation is doing
  Published<std::optional<QString>> error{willChange, {}};  ///< to be shown; screens clear it
  Published<std::int64_t> index{willChange, 0};             ///< of the track being compared, in `roundSongs`
  Published<QString> selected{willChange, QStringLiteral("A")};  ///< the side that is heard, "A" or "B"
  Published<std::optional<QString>> vote{willChange, {}};        ///< pending answer: "A", "B" or "same";
                                                                 ///< screens assign it
  Published<QString> lossless{willChange, QStringLiteral("A")};  ///< the side that plays the original
  Published<std::vector<Vote>> answers{willChange, {}};          ///< confirmed, in track order
  Published<double> position{willChange, 0.0};                   ///< seconds
  Published<double> duration{willChange, 1.0};                   ///< seconds, of the loaded comparison
  Published<bool> playing{willChange, false};
  Published<double> volume{willChange, 0.7,  ///< linear, 0 to 1; screens assign it, the player follows
                           [this] { player.setVolume(volume); }};
  Published<bool> loop{willChange, false};       ///< these three: set by the operations of the loop below
  Published<double> loopStart{willChange, 0.0};  ///< seconds
  Published<double> loopEnd{willChange, 0.0};    ///< seconds
  Published<QString> originalDescription{willChange, {}};  ///< `AudioInfo::summary` of the loaded original
  Published<bool> glass;          ///< translucent surfaces; persists; screens assign it
  Published<QString> appearance;  ///< "system", "light" or "dark"; persists; screens assign it

  Sheets* window = nullptr;  ///< what sheets hang from; the application sets it, and clears it when it goes
  AudioPlayer player;
  AudioPreparer preparer;
  std::optional<std::filesystem::path> exportURL;  ///< the encoded file of the loaded comparison
  QString exportName;                              ///< its suggested name
  std::vector<Song> roundSongs;                    ///< this and the next three: frozen when a test starts
  QString roundCodec = QStringLiteral("AAC");
  std::int64_t roundRate = 256;  ///< kbps
  bool roundMatch = true;

  const std::vector<Song>& songs() const { return *playlist; }
  /// The bitrates of `codec`, kbps, ascending.
  std::span<const std::int64_t> rates() const;
  /// Whether more than one track is compared, or in stage setup would be.
  bool tournament() const;
  /// The track being compared.
  std::optional<Song> current() const;
  bool canStart() const { return !busy && !importing && !playlist->empty(); }

  /// Applies `appearance` to the whole application. Does nothing without an application object.
  void applyAppearance() const;

  // The track list. Each of these does nothing unless the stage is setup and neither an import nor a
  // preparation runs.

  /// Inspects the files in the background; the accepted ones then follow in `playlist`, in order and each
  /// once, and `error` tells about the others.
  void importFiles(std::vector<std::filesystem::path> files);
  /// Lets the user choose files and imports them.
  void choose();
  /// Removes the track with this identity.
  void remove(const Song& song);
  void clearSongs();

  // The listening test.

  /// Asks for confirmation, then starts a test of all tracks with the present settings.
  void start();
  /// Prepares the comparison of one track of `roundSongs` and loads it; `committing` enters `answers` when
  /// that has succeeded.
  void prepare(std::int64_t track, std::optional<Vote> committing);
  /// Records the pending vote and moves on: to the next track, or to the end of the test.
  void confirm();
  /// Abandons the test and returns to setup.
  void back();
  /// Cancels the preparation; `busy` lasts until its thread has come back.
  void cancel();
  /// "A" or "B".
  void select(const QString& side);
  void playPause();
  /// Seconds.
  void seek(double time);
  /// Switches the loop on or off.
  void setLoop(bool on);
  /// Begins the loop at the position, at least 0.05 s before the end of the track. An end that is less than a
  /// second away moves on, as far as the track goes.
  void setLoopStart();
  /// Ends the loop at the position, at least 0.05 s after the start of the track. A start that is less than a
  /// second away moves back, as far as the track goes.
  void setLoopEnd();
  /// Hands `loop`, `loopStart` and `loopEnd` to the player, once all three are as they should be: the
  /// position moves into a loop that it lies outside of.
  void updateLoop();
  /// Deletes the encoded file of the loaded comparison.
  void discardCurrentConversion();
  /// Deletes all temporary audio.
  void clearTemporaryAudio();
  /// Stops everything, for good; at the end of the application. More calls do no harm.
  void cleanup();

  // Files for the user.

  /// Lets the user say where the encoded file goes, and writes it there in one step.
  void exportAudio();
  /// The results image of `answers`. Raises what `renderResultsPNG` raises.
  QByteArray resultsPNG() const;
  /// Draws the results image, lets the user say where it goes, and writes it there in one step.
  void saveResults();

 private:
  /// What a preparation was started for.
  struct Round {
    QUuid identity;
    std::int64_t track;
    QString title;
    std::optional<Vote> committing;
  };

  bool listEditable() const { return *stage == Stage::setup && !importing && !busy; }
  void keepRateInTable();
  void followPlayer();
  void merge(ImportedSongs imported);
  void load(const PreparedAudio& comparison, const Round& round);
  void fail(const std::exception& failure);
  /// Runs `removal`; a failure becomes `error`.
  void removeTemporary(const std::function<void()>& removal);
  /// Shows the panel and writes what `content` then gives where the user said.
  void offerFile(const SavePanel& panel, std::function<std::string()> content);
  /// Runs `work` on a new thread, which takes the place of its predecessor. When the system has none left,
  /// `running` becomes false with an `error`.
  void inBackground(std::jthread& thread, Published<bool>& running,
                    std::function<void(const std::stop_token&)> work);

  std::optional<QTimer> timer;
  QUuid job = QUuid::createUuid();  ///< of the newest preparation; results that carry another are stale
  const std::shared_ptr<const bool> alive = std::make_shared<bool>(true);  ///< for sheets that answer late
  // Last, because the jobs end before anything that they use.
  std::jthread importThread;
  std::jthread preparationThread;
};

}  // namespace zarnet
