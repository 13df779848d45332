#pragma once

#include <QStringList>
#include <QWidget>

class QButtonGroup;

namespace zarnet {

/// A row of segments of which one is chosen, 32 high. The arrow keys move the choice; Tab enters at the
/// chosen one.
class SegmentedPicker : public QWidget {
  Q_OBJECT

 public:
  explicit SegmentedPicker(const QStringList& labels, QWidget* parent = nullptr);

  /// The index of the chosen segment, −1 for none.
  int chosen() const;
  /// Shows a choice without reporting it; −1 or an index out of range chooses none.
  void choose(int index);

 Q_SIGNALS:
  /// The user chose this segment.
  void picked(int index);

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  QButtonGroup* group;
};

}  // namespace zarnet
