#pragma once

class QString;
class QWidget;

namespace zarnet {

/// Tells the accessibility bridge the roles and states of this application's own controls. Call once, before
/// the first window is made.
void installAccessibility();

/// Names a widget for screen readers. A name that it has already is not sent again.
void nameFor(QWidget& widget, const QString& name);

/// Has a screen reader say something that has happened to a widget, where the toolkit can tell it (from
/// version 6.8); elsewhere it speaks names and descriptions that change, and what gets the focus.
void announce(QWidget& widget, const QString& text);

}  // namespace zarnet
