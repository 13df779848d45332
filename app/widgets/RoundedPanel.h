#pragma once

#include <QWidget>

namespace zarnet {

/// The translucent ground of a panel. It fills its parent, takes no clicks, has no size of its own, and is
/// seen only while it is enabled. Where the platform blurs nothing behind a window it is a plain
/// half-transparent fill.
class GlassSurface : public QWidget {
  Q_OBJECT

 public:
  /// Requires: a parent with corners of this radius, which it fills from then on.
  GlassSurface(QWidget* parent, double cornerRadius);

  /// Seen when true, hidden when false.
  void setEnabled(bool enabled);

  QSize sizeHint() const override { return {}; }

 protected:
  void paintEvent(QPaintEvent*) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void fill();

  const double cornerRadius;
};

/// A rounded panel with a fine edge, opaque or (with glass) nearly clear over a glass surface.
class RoundedPanel : public QWidget {
  Q_OBJECT

 public:
  explicit RoundedPanel(double cornerRadius = 18, QWidget* parent = nullptr);

  void setGlass(bool glass);

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  const double cornerRadius;
  GlassSurface* surface;
  bool glass = false;
};

/// A line between two rows, one pixel high.
class Divider : public QWidget {
  Q_OBJECT

 public:
  explicit Divider(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent*) override;
};

}  // namespace zarnet
