#include "app/screens/SetupScreen.h"

#include "app/screens/SongList.h"
#include "app/widgets/Accessibility.h"
#include "app/widgets/BareLayout.h"
#include "app/widgets/Button.h"
#include "app/widgets/Help.h"
#include "app/widgets/Picker.h"
#include "app/widgets/RoundedPanel.h"
#include "app/widgets/Spinner.h"
#include "app/widgets/SymbolView.h"
#include "app/widgets/Text.h"
#include "app/widgets/Toggles.h"
#include "model/Wording.h"

namespace zarnet {

namespace {

/// A caption over a control whose own label is hidden.
QVBoxLayout* labelled(Text* caption, QWidget* control) {
  auto* column = new QVBoxLayout;
  column->setSpacing(6);
  caption->setSecondary(true);
  column->addWidget(caption);
  column->addWidget(control);
  return column;
}

}  // namespace

SetupScreen::SetupScreen(NativeModel& ofModel)
    : Screen(ofModel),
      choose(new Button(Button::Kind::standard, QStringLiteral("Choose audio…"))),
      start(new Button(Button::Kind::prominent, QStringLiteral("Start blind comparison"))) {
  auto* stack = bareColumn(this, 24);
  setAccessibleName(QStringLiteral("Tracks and settings"));
  stack->addWidget(songPanel());
  stack->addWidget(settingsRow());
  stack->addWidget(startRow());
}

QWidget* SetupScreen::firstFocus() const {
  return start;
}

QWidget* SetupScreen::nextFocus() const {
  return model.songs().empty() ? choose : start;
}

QWidget* SetupScreen::songPanel() {
  auto* panel = new RoundedPanel;
  auto* stack = bareColumn(panel, 0);

  QWidget* empty = emptyPanel();
  auto* filled = new QWidget;
  auto* column = new QVBoxLayout(filled);
  column->setContentsMargins(24, 24, 24 - SongList::overhang, 24);
  column->setSpacing(12);

  auto* count = new Text(TextStyle::headline);
  auto* spinner = new Spinner(18);
  auto* add = new Button(Button::Kind::standard, QStringLiteral("Add songs…"));
  auto* clear = new Button(Button::Kind::standard, QStringLiteral("Clear all"));
  setHelp(*clear, QStringLiteral("Remove all songs from the list"));
  connect(add, &QAbstractButton::clicked, this, [this] { model.choose(); });
  connect(clear, &QAbstractButton::clicked, this, [this] { model.clearSongs(); });
  auto* row = new QHBoxLayout;
  row->setContentsMargins(0, 0, SongList::overhang, 0);
  row->setSpacing(12);
  row->addWidget(count);
  row->addStretch(1);
  row->addWidget(spinner);
  row->addWidget(add);
  row->addWidget(clear);
  column->addLayout(row);

  auto* songs = new SongList(clear, [this](const Song& song) { model.remove(song); });
  column->addWidget(songs);
  stack->addWidget(empty);
  stack->addWidget(filled);

  follow([this, panel, empty, filled, count, spinner, add, clear, songs] {
    const std::vector<Song>& list = model.songs();
    panel->setGlass(model.glass);
    empty->setVisible(list.empty());
    filled->setVisible(!list.empty());
    count->setText(trackCountText(list.size()));
    spinner->setVisible(model.importing);
    add->setEnabled(!model.importing);
    clear->setEnabled(!model.importing && !model.busy);
    songs->setRemovable(!model.importing);
    songs->setSongs(list);
  });
  return panel;
}

QWidget* SetupScreen::emptyPanel() {
  auto* panel = new QWidget;
  auto* column = new QVBoxLayout(panel);
  column->setContentsMargins(24, 36, 24, 36);
  column->setSpacing(16);

  auto* heading = new Text(TextStyle::title, QStringLiteral("Import your audio."));
  auto* line = new Text(TextStyle::body, QStringLiteral("Drop one or more lossless songs here"));
  auto* caption = new Text(TextStyle::caption, QStringLiteral("AIFF, WAV, FLAC or Apple Lossless"));
  auto* spinner = new Spinner(18);
  caption->setSecondary(true);
  for (Text* text : {heading, line, caption})
    text->setAlignment(Qt::AlignHCenter);
  connect(choose, &QAbstractButton::clicked, this, [this] { model.choose(); });

  column->addWidget(new SymbolView(QStringLiteral("music.note.list"), {34, 34}, SymbolView::Ink::accent), 0,
                    Qt::AlignHCenter);
  column->addWidget(heading);
  column->addWidget(line);
  column->addWidget(choose, 0, Qt::AlignHCenter);
  column->addWidget(caption);
  column->addWidget(spinner, 0, Qt::AlignHCenter);
  follow([this, spinner] {
    choose->setEnabled(!model.importing);
    spinner->setVisible(model.importing);
  });
  return panel;
}

QWidget* SetupScreen::settingsRow() {
  auto* panel = new QWidget;
  auto* row = bareRow(panel, 20);

  auto* format = new Picker;
  format->addItems({QStringLiteral("AAC"), QStringLiteral("MP3"), QStringLiteral("Ogg Vorbis")});
  format->setAccessibleName(QStringLiteral("Format"));
  connect(format, &QComboBox::textActivated, this, [this](const QString& codec) { model.codec = codec; });

  auto* rateCaption = new Text(TextStyle::callout);
  auto* rate = new Picker;
  connect(rate, &QComboBox::activated, this,
          [this, rate](int index) { model.rate = rate->itemData(index).toLongLong(); });

  auto* match = new CheckBox(QStringLiteral("Match loudness"));
  connect(match, &QAbstractButton::toggled, this, [this](bool on) { model.match = on; });

  row->addLayout(labelled(new Text(TextStyle::callout, QStringLiteral("Format")), format));
  row->addLayout(labelled(rateCaption, rate));
  match->setFixedHeight(34);  // as high as the pickers beside it
  row->addWidget(match, 0, Qt::AlignBottom);
  row->addStretch(1);

  follow([this, format, rateCaption, rate, match] {
    format->setCurrentText(model.codec);
    rateCaption->setText(bitrateLabel(model.codec));
    nameFor(*rate, rateCaption->text());
    const auto rates = model.rates();
    if (rate->count() != static_cast<int>(rates.size())) {
      rate->clear();
      for (const std::int64_t kbps : rates) {
        rate->addItem(bitrateText(kbps), static_cast<qlonglong>(kbps));
      }
    }
    rate->setCurrentIndex(rate->findData(static_cast<qlonglong>(*model.rate)));
    const QSignalBlocker quiet(match);
    match->setChecked(model.match);
  });
  return panel;
}

QWidget* SetupScreen::startRow() {
  auto* panel = new QWidget;
  auto* row = bareRow(panel, 18);
  connect(start, &QAbstractButton::clicked, this, [this] { model.start(); });
  auto* note = new Text(TextStyle::caption);
  note->setSecondary(true);
  row->addWidget(start);
  auto* marked = new QHBoxLayout;
  marked->setSpacing(6);
  marked->addWidget(new SymbolView(QStringLiteral("eye.slash"), {16, 16}, SymbolView::Ink::secondary));
  marked->addWidget(note);
  row->addLayout(marked);
  row->addStretch(1);
  follow([this, note] {
    start->setEnabled(model.canStart());
    note->setText(startNote(model.tournament()));
  });
  return panel;
}

}  // namespace zarnet
