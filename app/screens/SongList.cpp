#include "app/screens/SongList.h"

#include "app/widgets/BareLayout.h"
#include "app/widgets/Button.h"
#include "app/widgets/ClockText.h"
#include "app/widgets/Help.h"
#include "app/widgets/RoundedPanel.h"
#include "app/widgets/SymbolView.h"
#include "app/widgets/Text.h"
#include "model/Wording.h"

#include <QCoreApplication>
#include <algorithm>
#include <optional>
#include <utility>

namespace zarnet {

namespace {
constexpr int removeSize = 28;       ///< points, of a remove button
constexpr std::size_t portion = 12;  ///< rows made in one turn of the event loop: about 10 ms

/// Shows what was added to a column, and makes room for it from the window down. The toolkit would begin at
/// the column: all rows would share the room of the earlier ones for a moment, and each be laid out twice.
void showAtOnce(QWidget& added, QLayout& column) {
  column.setEnabled(false);
  added.show();
  column.setEnabled(true);
  std::vector<QWidget*> upwards;
  for (QWidget* widget = &added; widget != nullptr; widget = widget->parentWidget()) {
    widget->updateGeometry();
    upwards.push_back(widget);
  }
  std::for_each(upwards.rbegin(), upwards.rend(),
                [](QWidget* widget) { QCoreApplication::sendPostedEvents(widget, QEvent::LayoutRequest); });
}

}  // namespace

class SongList::Row : public QWidget {
 public:
  Row(const Song& ofSong, const std::function<void(const Song&)>& removeSong)
      : song(ofSong), divider(new Divider), button(new Button(Button::Kind::borderless)) {
    auto* titles = new QVBoxLayout;
    titles->setSpacing(5);
    auto* title = new Text(TextStyle::headline, song.title);
    title->setSelectable(true);
    auto* detail = new Text(TextStyle::caption, song.detail);
    detail->setSecondary(true);
    detail->setOverflow(Text::Overflow::elide);
    titles->addWidget(title);
    titles->addWidget(detail);

    auto* clock = new ClockText(TextStyle::callout);
    clock->setSecondary(true);
    clock->setText(clockText(song.duration));

    button->setSymbol(QStringLiteral("xmark"), removeSize - 2 * overhang);
    button->setFixedSize(removeSize, removeSize);
    const QString help = QStringLiteral("Remove ") + song.title;
    setHelp(*button, help);
    button->setAccessibleName(help);
    connect(button, &QAbstractButton::clicked, this, [this, removeSong] { removeSong(Song(song)); });

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 8, 0, 8);
    row->setSpacing(14);
    row->addWidget(new SymbolView(QStringLiteral("waveform"), {36, 20}, SymbolView::Ink::accent));
    row->addLayout(titles, 1);
    auto* end = new QHBoxLayout;
    end->setSpacing(row->spacing() - overhang);
    end->addWidget(clock);
    end->addWidget(button);
    row->addLayout(end);

    auto* stack = bareColumn(this, 0);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(0, 0, overhang, 0);
    line->addWidget(divider);
    stack->addLayout(line);
    stack->addLayout(row);
  }

  const Song song;
  Divider* const divider;
  Button* const button;
};

SongList::SongList(QWidget* controlBefore, std::function<void(const Song&)> removeSong)
    : before(controlBefore), remove(std::move(removeSong)), column(bareColumn(this, 0)) {
  nextPortion.setSingleShot(true);
  nextPortion.setInterval(0);
  connect(&nextPortion, &QTimer::timeout, this, &SongList::addPortion);
}

void SongList::setSongs(const std::vector<Song>& next) {
  // Songs are appended and removed, never moved: a row stays as long as its song comes next in the list.
  std::size_t kept = 0;
  std::optional<std::size_t> focused;  // the place of a row that goes and had the focus
  std::erase_if(rows, [&](Row* row) {
    if (kept < next.size() && row->song.id == next[kept].id) {
      ++kept;
      return false;
    }
    if (window()->focusWidget() == row->button) focused = kept;
    row->hide();
    row->deleteLater();
    if (QWidget* group = row->parentWidget(); group->layout()->isEmpty()) group->deleteLater();
    return true;
  });
  songs = next;
  addPortion();
  if (rows.empty()) return;
  rows.front()->divider->hide();
  if (focused) rows[std::min(*focused, rows.size() - 1)]->button->setFocus(Qt::OtherFocusReason);
}

void SongList::addPortion() {
  const std::size_t first = rows.size();
  const std::size_t end = std::min(songs.size(), first + portion);
  if (first == end) return;
  // The rows of a portion stand in a widget of their own: it is laid out once, not once for each of them.
  auto* group = new QWidget;
  auto* stack = bareColumn(group, 0);
  while (rows.size() < end) {
    auto* row = new Row(songs[rows.size()], remove);
    row->button->setEnabled(removable);
    row->divider->setVisible(!rows.empty());
    stack->addWidget(row);
    rows.push_back(row);
  }
  column->addWidget(group);
  showAtOnce(*group, *column);
  // New widgets come last in the order of the Tab key, wherever they stand.
  for (std::size_t i = first; i < end; ++i)
    setTabOrder(i == 0 ? before : rows[i - 1]->button, rows[i]->button);
  // A timer without delay waits until this portion is laid out and painted; a queued call would come before.
  if (end < songs.size()) nextPortion.start();
}

void SongList::setRemovable(bool removableNow) {
  if (removable == removableNow) return;
  removable = removableNow;
  for (Row* row : rows)
    row->button->setEnabled(removable);
}

}  // namespace zarnet
