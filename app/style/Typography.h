#pragma once

#include <QFont>

namespace zarnet {

/// The one type scale of the application. Sizes are pixels at scale 1.
enum class TextStyle {
  largeTitle,  ///< 30 bold
  sideLetter,  ///< 42 medium
  trackTitle,  ///< 28 bold
  title,       ///< 22 semibold
  verdict,     ///< 18 semibold
  artist,      ///< 17 medium
  groupTitle,  ///< 16 semibold
  answer,      ///< 15 medium
  headline,    ///< 15 semibold
  body,        ///< 14 regular
  button,      ///< 13 medium
  prominent,   ///< 14 semibold
  callout,     ///< 13 regular
  caption      ///< 12 regular
};

/// The font of a style: Inter where it is installed, else the desktop's.
QFont textFont(TextStyle style);

}  // namespace zarnet
