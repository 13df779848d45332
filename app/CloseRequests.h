#pragma once

#include <QAbstractNativeEventFilter>
#include <QWidget>
#include <cstdint>
#include <functional>

namespace zarnet {

/// Hears the window manager's requests to close a window also while a sheet keeps that window from being
/// used; the toolkit drops them then. On X11; elsewhere it does nothing. Interface thread.
class CloseRequests : public QAbstractNativeEventFilter {
 public:
  /// `window` outlives this object. `asked` takes the place of the window's own answer.
  CloseRequests(const QWidget& window, std::function<void()> asked);

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override;

 private:
  const QWidget& window;
  const std::function<void()> asked;
  std::uint32_t protocols = 0;     ///< the atom WM_PROTOCOLS
  std::uint32_t deleteWindow = 0;  ///< the atom WM_DELETE_WINDOW
};

}  // namespace zarnet
