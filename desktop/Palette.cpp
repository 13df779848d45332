#include "desktop/Palette.h"

namespace zarnet {

namespace {

QPalette palette(const QColor& window, const QColor& panel, const QColor& menuBar, const QColor& text,
                 const QColor& secondary, const QColor& controlFill, const QColor& controlEdge,
                 const QColor& sliderTrack, const QColor& accent, const QColor& textOnAccent) {
  QPalette result;
  result.setColor(QPalette::Window, window);
  result.setColor(QPalette::Base, panel);
  result.setColor(QPalette::AlternateBase, menuBar);
  result.setColor(QPalette::WindowText, text);
  result.setColor(QPalette::Text, text);
  result.setColor(QPalette::ButtonText, text);
  result.setColor(QPalette::PlaceholderText, secondary);
  result.setColor(QPalette::Button, controlFill);
  result.setColor(QPalette::Mid, controlEdge);
  result.setColor(QPalette::Midlight, sliderTrack);
  result.setColor(QPalette::Light, panel);
  result.setColor(QPalette::Dark, secondary);
  result.setColor(QPalette::Shadow, Qt::black);
  result.setColor(QPalette::Highlight, accent);
  result.setColor(QPalette::HighlightedText, textOnAccent);
  result.setColor(QPalette::Link, accent);
  result.setColor(QPalette::LinkVisited, accent);
  result.setColor(QPalette::ToolTipBase, panel);
  result.setColor(QPalette::ToolTipText, text);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    result.setColor(QPalette::Disabled, role, withOpacity(text, 0.4));
  }
  return result;
}

}  // namespace

QColor withOpacity(QColor colour, double opacity) {
  colour.setAlphaF(static_cast<float>(opacity));
  return colour;
}

QPalette lightPalette() {
  return palette(0xF4F5F7, 0xFFFFFF, 0xECEEF1, 0x1C2028, 0x646B78, 0xFFFFFF, 0xC9CDD5, 0xD9DCE2, 0x4B57D1,
                 0xFFFFFF);
}

QPalette darkPalette() {
  return palette(0x16181D, 0x1F2229, 0x1B1E24, 0xECEEF2, 0x9AA1AE, 0x262A32, 0x3A3F4A, 0x363B45, 0x8F98FF,
                 0x14161C);
}

Tokens tokens(const QPalette& palette) {
  const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
  const QColor window = palette.color(QPalette::Active, QPalette::Window);
  return {.window = window,
          .panel = palette.color(QPalette::Active, QPalette::Base),
          .menuBar = palette.color(QPalette::Active, QPalette::AlternateBase),
          .text = text,
          .secondary = palette.color(QPalette::Active, QPalette::PlaceholderText),
          .hairline = withOpacity(text, 0.10),
          .cardEdge = withOpacity(text, 0.12),
          .controlFill = palette.color(QPalette::Active, QPalette::Button),
          .controlEdge = palette.color(QPalette::Active, QPalette::Mid),
          .sliderTrack = palette.color(QPalette::Active, QPalette::Midlight),
          .accent = palette.color(QPalette::Active, QPalette::Highlight),
          .textOnAccent = palette.color(QPalette::Active, QPalette::HighlightedText),
          .dark = window.lightnessF() < text.lightnessF()};
}

}  // namespace zarnet
