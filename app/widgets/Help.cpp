#include "app/widgets/Help.h"

#include <QString>
#include <QWidget>

namespace zarnet {

void setHelp(QWidget& widget, const QString& text) {
  widget.setAccessibleDescription(text);
  // The toolkit guesses whether a tooltip is markup, and wraps only markup.
  widget.setToolTip(
      text.isEmpty() ? text
                     : QStringLiteral("<p style=\"white-space: pre-wrap\">%1</p>").arg(text.toHtmlEscaped()));
}

}  // namespace zarnet
