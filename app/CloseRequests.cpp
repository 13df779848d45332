#include "app/CloseRequests.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include <xcb/xcb.h>

namespace zarnet {

namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};

xcb_atom_t atomNamed(xcb_connection_t* connection, std::string_view name) {
  const auto request = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(
      xcb_intern_atom_reply(connection, request, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

CloseRequests::CloseRequests(const QWidget& ofWindow, std::function<void()> receiver)
    : window(ofWindow), asked(std::move(receiver)) {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr || x11->connection() == nullptr) return;
  protocols = atomNamed(x11->connection(), "WM_PROTOCOLS");
  deleteWindow = atomNamed(x11->connection(), "WM_DELETE_WINDOW");
  qGuiApp->installNativeEventFilter(this);
}

bool CloseRequests::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (type != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  constexpr int sentByClient = 0x80;
  if ((event->response_type & ~sentByClient) != XCB_CLIENT_MESSAGE) return false;
  const auto* request = static_cast<const xcb_client_message_event_t*>(message);
  if (request->window != window.winId() || request->type != protocols ||
      request->data.data32[0] != deleteWindow)
    return false;
  asked();
  return true;
}

}  // namespace zarnet
