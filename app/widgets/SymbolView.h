#pragma once

#include <QSize>
#include <QString>
#include <QWidget>

namespace zarnet {

/// A symbol that stands for itself: no control, hidden from screen readers.
class SymbolView : public QWidget {
  Q_OBJECT

 public:
  enum class Ink { secondary, accent };

  /// The symbol is as high as `size` and begins at the left edge.
  SymbolView(const QString& name, const QSize& size, Ink ink, QWidget* parent = nullptr);

  void setSymbol(const QString& name);

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  QString symbol;
  const Ink ink;
};

}  // namespace zarnet
