#include "app/style/Translucency.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace zarnet {

namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};

/// A compositing manager owns the selection _NET_WM_CM_Sn of its screen; the first screen is where windows
/// open.
bool compositorRuns(xcb_connection_t* connection) {
  constexpr char name[] = "_NET_WM_CM_S0";
  const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
      xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 1, sizeof name - 1, name), nullptr));
  if (!atom || atom->atom == XCB_ATOM_NONE) return false;
  const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
  return owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace

bool canBeTranslucent() {
  if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) return true;
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 != nullptr && x11->connection() != nullptr && compositorRuns(x11->connection());
}

}  // namespace zarnet
