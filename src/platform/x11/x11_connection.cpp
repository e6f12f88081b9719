#include "platform/x11/x11_connection.h"

#include <cstring>

namespace paneforge {

X11Connection::X11Connection()
    : client_(nullptr) {}

int X11Connection::rootWidth() const {
    return client_.screen() ? client_.screen()->width_in_pixels : 0;
}
int X11Connection::rootHeight() const {
    return client_.screen() ? client_.screen()->height_in_pixels : 0;
}

xcb_atom_t X11Connection::atom(const char* name) {
    const QByteArray key(name);
    if (const auto it = atoms_.constFind(key); it != atoms_.constEnd()) {
        return *it;
    }
    auto answer = owned(xcb_intern_atom_reply(
        client_.get(),
        xcb_intern_atom(client_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr));
    const xcb_atom_t value = answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
    atoms_.insert(key, value);
    return value;
}

QString X11Connection::atomName(xcb_atom_t atom) {
    auto answer = owned(
        xcb_get_atom_name_reply(client_.get(), xcb_get_atom_name(client_.get(), atom), nullptr));
    if (!answer) {
        return {};
    }
    return QString::fromLatin1(xcb_get_atom_name_name(answer.get()),
                               xcb_get_atom_name_name_length(answer.get()));
}

QByteArray X11Connection::rawProperty(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                                      std::uint32_t maxLength) {
    auto answer = owned(xcb_get_property_reply(
        client_.get(), xcb_get_property(client_.get(), 0, window, property, type, 0, maxLength),
        nullptr));
    if (!answer || answer->type == XCB_ATOM_NONE) {
        return {};
    }
    const int length = xcb_get_property_value_length(answer.get());
    return QByteArray(static_cast<const char*>(xcb_get_property_value(answer.get())), length);
}

std::vector<std::uint32_t> X11Connection::cardinals(xcb_window_t window, const char* property,
                                                    xcb_atom_t type) {
    const QByteArray bytes = rawProperty(window, atom(property), type);
    std::vector<std::uint32_t> values(static_cast<size_t>(bytes.size()) / 4);
    if (!values.empty()) { // memcpy from or to a null pointer is undefined even for zero bytes
        std::memcpy(values.data(), bytes.constData(), values.size() * 4);
    }
    return values;
}

std::optional<xcb_window_t> X11Connection::windowProperty(xcb_window_t window,
                                                          const char* property) {
    const auto values = cardinals(window, property, XCB_ATOM_WINDOW);
    return values.empty() ? std::nullopt : std::optional<xcb_window_t>(values.front());
}

std::vector<xcb_window_t> X11Connection::windowList(xcb_window_t window, const char* property) {
    return cardinals(window, property, XCB_ATOM_WINDOW);
}

std::vector<xcb_atom_t> X11Connection::atomList(xcb_window_t window, const char* property) {
    return cardinals(window, property, XCB_ATOM_ATOM);
}

std::optional<QString> X11Connection::utf8Property(xcb_window_t window, const char* property) {
    QByteArray bytes = rawProperty(window, atom(property), atom("UTF8_STRING"));
    if (bytes.isNull()) {
        bytes = rawProperty(window, atom(property), XCB_ATOM_STRING);
        if (bytes.isNull()) {
            return std::nullopt;
        }
        return QString::fromLatin1(bytes);
    }
    return QString::fromUtf8(bytes);
}

bool X11Connection::hasProperty(xcb_window_t window, const char* property) {
    auto answer = owned(xcb_get_property_reply(
        client_.get(),
        xcb_get_property(client_.get(), 0, window, atom(property), XCB_ATOM_ANY, 0, 0), nullptr));
    return answer && answer->type != XCB_ATOM_NONE;
}

void X11Connection::sendRootMessage(xcb_window_t window, const char* type,
                                    const std::uint32_t (&data)[5]) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(type);
    std::memcpy(event.data.data32, data, sizeof data);
    xcb_send_event(client_.get(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

void X11Connection::flush() {
    xcb_flush(client_.get());
}

} // namespace paneforge
