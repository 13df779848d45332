#include "app/screens/ListenScreen.h"

#include "app/sheets/Popover.h"
#include "app/widgets/Accessibility.h"
#include "app/widgets/Artwork.h"
#include "app/widgets/BareLayout.h"
#include "app/widgets/Button.h"
#include "app/widgets/ClockText.h"
#include "app/widgets/Help.h"
#include "app/widgets/RoundedPanel.h"
#include "app/widgets/SideCard.h"
#include "app/widgets/Slider.h"
#include "app/widgets/SymbolView.h"
#include "app/widgets/Text.h"
#include "app/widgets/Toggles.h"
#include "model/Wording.h"

#include <QShortcut>
#include <algorithm>

namespace zarnet {

namespace {

constexpr double skip = 5;          // seconds
constexpr double leastRange = 0.1;  // seconds, of the position slider
constexpr double volumeStep = 0.05;

Button* skipButton(const QString& symbol, const QString& label) {
  auto* button = new Button(Button::Kind::borderless);
  button->setSymbol(symbol, 26);
  setHelp(*button, label);
  button->setAccessibleName(label);
  return button;
}

}  // namespace

ListenScreen::ListenScreen(NativeModel& ofModel)
    : Screen(ofModel),
      play(new PlayButton),
      loopButton(new Button(Button::Kind::borderless)),
      save(new Button(Button::Kind::prominent, QStringLiteral("Save results image…"))) {
  auto* column = bareColumn(this, 20);
  column->addWidget(header());
  column->addWidget(new Divider);
  column->addWidget(currentTrack());
  column->addWidget(playback());
  auto* sides = new QWidget;
  auto* row = bareRow(sides, 16);
  row->addWidget(version(QStringLiteral("A")), 1);
  row->addWidget(version(QStringLiteral("B")), 1);
  column->addWidget(sides);
  column->addWidget(question());
  column->addWidget(verdict());
  setAccessibleDescription(heardText(model.selected));
  follow([this] {
    const QString heard = heardText(model.selected);
    if (heard == accessibleDescription()) return;
    setAccessibleDescription(heard);
    announce(*this, heard);
  });
  addShortcut(Qt::Key_Space, [this] { model.playPause(); });
  addShortcut(Qt::Key_A, [this] { model.select(QStringLiteral("A")); });
  addShortcut(Qt::Key_B, [this] { model.select(QStringLiteral("B")); });
}

QWidget* ListenScreen::firstFocus() const {
  return revealed() ? static_cast<QWidget*>(save) : play;
}

QWidget* ListenScreen::nextFocus() const {
  return revealed() ? firstFocus() : firstAnswer;
}

void ListenScreen::addShortcut(const QKeySequence& key, std::function<void()> action) {
  auto* shortcut = new QShortcut(key, this);
  shortcut->setAutoRepeat(false);
  connect(shortcut, &QShortcut::activated, this, std::move(action));
}

QWidget* ListenScreen::header() {
  auto* panel = new QWidget;
  auto* row = bareRow(panel, 18);
  auto* back = new Button(Button::Kind::borderless, QStringLiteral("Back"));
  back->setSymbol(QStringLiteral("chevron.left"), 15);
  connect(back, &QAbstractButton::clicked, this, [this] { model.back(); });
  auto* count = new ClockText(TextStyle::callout);
  count->setSecondary(true);
  auto* symbol = new SymbolView(QStringLiteral("eye.slash"), {17, 17}, SymbolView::Ink::secondary);
  auto* state = new Text(TextStyle::callout);
  state->setSecondary(true);
  row->addWidget(back);
  row->addWidget(count);
  row->addStretch(1);
  auto* label = new QHBoxLayout;
  label->setSpacing(7);
  label->addWidget(symbol);
  label->addWidget(state);
  row->addLayout(label);
  follow([this, count, symbol, state] {
    count->setVisible(model.tournament());
    count->setText(trackPlaceText(model.index, model.roundSongs.size()));
    symbol->setSymbol(revealed() ? QStringLiteral("eye") : QStringLiteral("eye.slash"));
    state->setText(blindnessText(revealed()));
  });
  return panel;
}

QWidget* ListenScreen::currentTrack() {
  auto* panel = new QWidget;
  auto* row = bareRow(panel, 18);
  auto* artwork = new Artwork;
  auto* title = new Text(TextStyle::trackTitle);
  auto* artist = new Text(TextStyle::artist);
  auto* album = new Text(TextStyle::body);
  album->setSecondary(true);
  auto* texts = new QVBoxLayout;
  texts->setSpacing(6);
  texts->addStretch(1);
  for (Text* text : {title, artist, album}) {
    text->setSelectable(true);
    texts->addWidget(text);
  }
  texts->addStretch(1);
  row->addWidget(artwork, 0, Qt::AlignTop);
  row->addLayout(texts, 1);
  follow([this, artwork, title, artist, album] {
    const std::optional<Song> song = model.current();
    if (!song) return;
    nameFor(*this, blindnessText(revealed()) + QStringLiteral(": ") + song->title);
    artwork->setImage(song->artwork.value_or(QImage()));
    title->setText(song->trackTitle);
    artist->setText(song->artist.value_or(QString()));
    artist->setVisible(song->artist.has_value());
    album->setText(song->album.value_or(QString()));
    album->setVisible(song->album.has_value());
  });
  return panel;
}

QWidget* ListenScreen::playback() {
  auto* panel = new QWidget;
  auto* column = bareColumn(panel, 4);
  auto* level = new Text(TextStyle::caption);
  level->setSecondary(true);
  auto* slider = new Slider(skip);
  slider->setAccessibleName(QStringLiteral("Playback position"));
  connect(slider, &Slider::moved, this, [this](double time) { model.seek(time); });
  auto* position = new ClockText(TextStyle::caption);
  auto* duration = new ClockText(TextStyle::caption);
  position->setSecondary(true);
  duration->setSecondary(true);
  auto* clocks = new QHBoxLayout;
  clocks->addWidget(position);
  clocks->addStretch(1);
  clocks->addWidget(duration);
  column->addWidget(level);
  column->addWidget(slider);
  column->addLayout(clocks);
  column->addSpacing(4);
  column->addWidget(transport());

  follow([this, level, duration] {
    level->setText(levelText(model.roundMatch));
    duration->setText(clockText(model.duration));
  });
  followPosition([this, slider, position] {
    slider->display(model.position, std::max(*model.duration, leastRange));
    position->setText(clockText(model.position));
  });
  return panel;
}

QWidget* ListenScreen::transport() {
  auto* panel = new QWidget;
  auto* row = bareRow(panel, 16);
  Button* backward = skipButton(QStringLiteral("gobackward.5"), QStringLiteral("Back five seconds"));
  Button* forward = skipButton(QStringLiteral("goforward.5"), QStringLiteral("Forward five seconds"));
  connect(backward, &QAbstractButton::clicked, this,
          [this] { model.seek(std::max(*model.position - skip, 0.0)); });
  connect(forward, &QAbstractButton::clicked, this,
          [this] { model.seek(std::min(*model.position + skip, *model.duration)); });
  connect(play, &QAbstractButton::clicked, this, [this] { model.playPause(); });

  auto* volume = new Slider(volumeStep);
  volume->setFixedWidth(90);
  volume->setAccessibleName(QStringLiteral("Volume"));
  connect(volume, &Slider::moved, this, [this](double loudness) { model.volume = loudness; });
  auto* loudness = new QHBoxLayout;
  loudness->setSpacing(10);
  loudness->addWidget(new SymbolView(QStringLiteral("speaker.wave.2"), {18, 18}, SymbolView::Ink::secondary));
  loudness->addWidget(volume);

  connect(loopButton, &QAbstractButton::clicked, this, &ListenScreen::toggleLoopControls);

  row->addWidget(backward);
  row->addWidget(play);
  row->addWidget(forward);
  row->addSpacing(14);
  row->addLayout(loudness);
  row->addSpacing(14);
  row->addWidget(loopButton);
  row->addStretch(1);
  follow([this, volume] {
    play->setPlaying(model.playing);
    volume->display(model.volume, 1);
    loopButton->setText(model.loop ? QStringLiteral("Loop on") : QStringLiteral("Loop"));
    loopButton->setSymbol(QStringLiteral("repeat"), 17);
    loopButton->setAccented(model.loop);
  });
  return panel;
}

void ListenScreen::toggleLoopControls() {
  if (popover == nullptr) {
    popover = new Popover(window(), QStringLiteral("Loop"));
    popover->setContent(loopControls());
    connect(popover, &Popover::closed, this, [this] { showingLoop = false; });
  }
  showingLoop = !showingLoop;
  if (showingLoop) popover->openUnder(loopButton);
  if (!showingLoop) popover->hide();
}

QWidget* ListenScreen::loopControls() {
  auto* panel = new QWidget;
  auto* column = new QVBoxLayout(panel);
  column->setContentsMargins(20, 20, 20, 20);
  column->setSpacing(14);
  auto* toggle = new CheckBox(QStringLiteral("Loop a section"));
  connect(toggle, &QAbstractButton::toggled, this, [this](bool on) { model.setLoop(on); });
  auto* range = new ClockText(TextStyle::title);
  auto* start = new Button(Button::Kind::standard, QStringLiteral("Set start"));
  auto* end = new Button(Button::Kind::standard, QStringLiteral("Set end"));
  connect(start, &QAbstractButton::clicked, this, [this] { model.setLoopStart(); });
  connect(end, &QAbstractButton::clicked, this, [this] { model.setLoopEnd(); });
  auto* row = new QHBoxLayout;
  row->setSpacing(12);
  row->addWidget(start);
  row->addWidget(end);
  row->addStretch(1);
  column->addWidget(toggle);
  column->addWidget(range);
  column->addLayout(row);
  follow([this, toggle, range] {
    const QSignalBlocker quiet(toggle);
    toggle->setChecked(model.loop);
    range->setText(rangeText(model.loopStart, model.loopEnd));
  });
  return panel;
}

QWidget* ListenScreen::version(const QString& side) {
  auto* card = new SideCard(side);
  connect(card, &QAbstractButton::clicked, this, [this, side] { model.select(side); });
  follow([this, card, side] {
    card->setSelected(*model.selected == side);
    card->setGlass(model.glass);
    if (!revealed()) {
      card->setIdentity({}, {});
    } else {
      const SideIdentity identity =
          sideIdentity(side, model.lossless, model.originalDescription, model.roundCodec, model.roundRate);
      card->setIdentity(identity.name, identity.format);
    }
  });
  return card;
}

QWidget* ListenScreen::question() {
  auto* panel = new QWidget;
  auto* column = bareColumn(panel, 20);
  auto* answers = new QWidget;
  answers->setMaximumWidth(460);
  auto* row = bareRow(answers, 10);
  firstAnswer = preference(QStringLiteral("A"), QStringLiteral("A"));
  row->addWidget(firstAnswer, 1);
  row->addWidget(preference(QStringLiteral("B"), QStringLiteral("B")), 1);
  row->addWidget(preference(QStringLiteral("I can’t tell"), QStringLiteral("same")), 1);
  auto* confirm = new Button(Button::Kind::prominent);
  connect(confirm, &QAbstractButton::clicked, this, [this] { model.confirm(); });
  column->addWidget(new Text(TextStyle::headline, QStringLiteral("Which sounds better to you?")));
  column->addWidget(answers);
  column->addWidget(confirm);
  follow([this, panel, confirm] {
    panel->setVisible(!revealed());
    confirm->setText(confirmLabel(model.index, model.roundSongs.size()).replace(u'&', QStringLiteral("&&")));
    confirm->setEnabled(model.vote->has_value());
  });
  return panel;
}

SelectableButton* ListenScreen::preference(const QString& label, const QString& value) {
  auto* button = new AnswerButton(label);
  connect(button, &QAbstractButton::clicked, this, [this, value] { model.vote = value; });
  follow([this, button, value] { button->setSelected(*model.vote == value); });
  return button;
}

QWidget* ListenScreen::verdict() {
  auto* panel = new QWidget;
  auto* column = bareColumn(panel, 20);
  auto* sentence = new Text(TextStyle::verdict);
  auto* again = new Button(Button::Kind::tall, QStringLiteral("New comparison"));
  connect(again, &QAbstractButton::clicked, this, [this] { model.back(); });
  connect(save, &QAbstractButton::clicked, this, [this] { model.saveResults(); });
  auto* row = new QHBoxLayout;
  row->setSpacing(12);
  row->addWidget(again);
  row->addWidget(save);
  row->addStretch(1);
  column->addWidget(sentence);
  column->addLayout(row);
  follow([this, panel, sentence] {
    panel->setVisible(revealed());
    if (model.answers->empty()) return;
    sentence->setText(verdictText(model.answers->front()));
  });
  return panel;
}

}  // namespace zarnet
