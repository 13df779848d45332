#pragma once

#include <QColor>
#include <QPalette>

namespace zarnet {

/// The colours of the application, by what they are for. One set for light, one for dark.
struct Tokens {
  QColor window;
  QColor panel;  ///< panels and cards
  QColor menuBar;
  QColor text;
  QColor secondary;  ///< less important text; contrast at least 4.5 : 1 on every background above
  QColor hairline;   ///< panel edges and dividers
  QColor cardEdge;   ///< edges of cards and answers
  QColor controlFill;
  QColor controlEdge;
  QColor sliderTrack;
  QColor accent;
  QColor textOnAccent;
  bool dark;
};

/// The same colours as a palette, in the roles that `tokens` reads back.
QPalette lightPalette();
QPalette darkPalette();

/// The colours that a palette made by `lightPalette` or `darkPalette` carries; for any other palette the
/// nearest equivalents of its roles.
Tokens tokens(const QPalette& palette);

/// A colour with another opacity, 0 to 1.
QColor withOpacity(QColor colour, double opacity);

}  // namespace zarnet
