#include "desktop/Palette.h"

namespace zarnet {

namespace {

/// The tokens that are not made from others.
struct Colours {
  QColor window;
  QColor panel;
  QColor menuBar;
  QColor text;
  QColor secondary;
  QColor controlFill;
  QColor controlEdge;
  QColor sliderTrack;
  QColor accent;
  QColor textOnAccent;
};

QPalette palette(const Colours& colours) {
  const auto& [window, panel, menuBar, text, secondary, controlFill, controlEdge, sliderTrack, accent,
               textOnAccent] = colours;
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
  return palette({.window = 0xF4F5F7,
                  .panel = 0xFFFFFF,
                  .menuBar = 0xECEEF1,
                  .text = 0x1C2028,
                  .secondary = 0x646B78,
                  .controlFill = 0xFFFFFF,
                  .controlEdge = 0xC9CDD5,
                  .sliderTrack = 0xD9DCE2,
                  .accent = 0x4B57D1,
                  .textOnAccent = 0xFFFFFF});
}

QPalette darkPalette() {
  return palette({.window = 0x16181D,
                  .panel = 0x1F2229,
                  .menuBar = 0x1B1E24,
                  .text = 0xECEEF2,
                  .secondary = 0x9AA1AE,
                  .controlFill = 0x262A32,
                  .controlEdge = 0x3A3F4A,
                  .sliderTrack = 0x363B45,
                  .accent = 0x8F98FF,
                  .textOnAccent = 0x14161C});
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
