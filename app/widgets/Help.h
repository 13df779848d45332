#pragma once

class QString;
class QWidget;

namespace zarnet {

/// Explains a widget while the pointer rests on it, and to screen readers. The text is shown as it stands,
/// never taken for markup, and wraps when it is long. An empty text takes the explanation away.
void setHelp(QWidget& widget, const QString& text);

}  // namespace zarnet
