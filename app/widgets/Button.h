#pragma once

#include "app/widgets/ButtonBase.h"

#include <QString>

namespace zarnet {

/// A push button with a text, a symbol, or both.
class Button : public ButtonBase {
  Q_OBJECT

 public:
  enum class Kind {
    standard,   ///< filled and edged, 32 high
    tall,       ///< the same, 38 high, to stand beside a prominent one
    prominent,  ///< filled with the accent, 38 high: the one thing to do next
    borderless  ///< text or symbol alone, in the secondary colour
  };

  explicit Button(Kind kind, const QString& text = {}, QWidget* parent = nullptr);

  /// Puts a symbol before the text, `points` high; an empty name takes it away.
  void setSymbol(const QString& name, int points = 16);
  /// Draws a borderless button in the accent colour instead of the secondary one.
  void setAccented(bool accented);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }
  double cornerRadius() const override { return kind == Kind::tall || kind == Kind::prominent ? 10 : 8; }

 protected:
  void paint(QPainter& painter) override;

 private:
  const Kind kind;
  QString symbol;
  int symbolPoints = 16;
  bool accented = false;
};

/// The round play and pause button: 48 points, the symbol in the accent colour on a faint disc of it.
class PlayButton : public ButtonBase {
  Q_OBJECT

 public:
  explicit PlayButton(QWidget* parent = nullptr);

  /// Shows "pause" while something plays, else "play"; the accessible name follows.
  void setPlaying(bool playing);

  QSize sizeHint() const override { return {48, 48}; }
  double cornerRadius() const override { return 24; }

 protected:
  void paint(QPainter& painter) override;

 private:
  bool playing = false;
};

}  // namespace zarnet
