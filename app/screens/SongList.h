#pragma once

#include "model/Song.h"

#include <QTimer>
#include <QWidget>
#include <functional>
#include <vector>

class QVBoxLayout;

namespace zarnet {

/// The rows of the imported songs, separated by dividers. It is given the whole list after each change and
/// touches only the rows that differ; a long list arrives in portions, so that the window never stands still.
class SongList : public QWidget {
  Q_OBJECT

 public:
  /// How far the remove buttons reach out of the column of their crosses, to the right, in points.
  static constexpr int overhang = 7;

  /// `remove` is called with the song whose remove button was pressed. The Tab key comes to these buttons
  /// after `before`, which stands in the same window and outlives the list.
  SongList(QWidget* before, std::function<void(const Song&)> remove);

  void setSongs(const std::vector<Song>& songs);
  void setRemovable(bool removable);

 private:
  class Row;

  void addPortion();

  QWidget* const before;
  const std::function<void(const Song&)> remove;
  QVBoxLayout* column;
  std::vector<Row*> rows;
  std::vector<Song> songs;
  QTimer nextPortion;
  bool removable = true;
};

}  // namespace zarnet
