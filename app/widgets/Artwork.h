#pragma once

#include <QImage>
#include <QWidget>

namespace zarnet {

/// An album's picture, 96 × 96 with rounded corners; hidden while there is none.
class Artwork : public QWidget {
  Q_OBJECT

 public:
  explicit Artwork(QWidget* parent = nullptr);

  /// A null image hides it. A picture that is not square is cropped to its middle.
  void setImage(const QImage& image);

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  QImage image;
};

}  // namespace zarnet
