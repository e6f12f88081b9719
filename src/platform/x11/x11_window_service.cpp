#include "platform/x11/x11_window_service.h"

#include "core/diagnostics/snap_diagnostic_formatter.h"
#include "core/policies/frame_apply_policy.h"
#include "platform/x11/x11_desktop_space.h"

#include <QPoint>
#include <QRect>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace paneforge {

namespace {

struct X11Window final : WindowElement {
    explicit X11Window(xcb_window_t w)
        : client(w) {}
    xcb_window_t client;
};

// _NET_MOVERESIZE_WINDOW flags: NorthWest gravity (x, y name the outer frame's corner), which of
// x, y, width and height are given, and "sent by a tool on the user's behalf".
constexpr std::uint32_t kNorthWestGravity = 1;
constexpr std::uint32_t kHasX = 1u << 8, kHasY = 1u << 9, kHasWidth = 1u << 10,
                        kHasHeight = 1u << 11;
constexpr std::uint32_t kSourceTool = 2u << 12;

constexpr std::uint32_t kStateRemove = 0;

// An 8-bit text property as it was set, with its type; none when the window has no such property.
struct TextProperty {
    xcb_atom_t type;
    QByteArray bytes;
};

xcb_get_property_cookie_t askText(X11Connection& x, xcb_window_t window, const char* name) {
    // Any type: asking for one type gets an empty reply when the property has another.
    return xcb_get_property(x.raw(), 0, window, x.atom(name), XCB_ATOM_ANY, 0, 1 << 14);
}

std::optional<TextProperty> takeText(X11Connection& x, xcb_get_property_cookie_t cookie) {
    auto reply = owned(xcb_get_property_reply(x.raw(), cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE || reply->format != 8) {
        return std::nullopt;
    }
    return TextProperty{reply->type,
                        QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                   xcb_get_property_value_length(reply.get()))};
}

// COMPOUND_TEXT starts out as ISO 8859-1 and switches character sets with escape sequences; the
// sequences are dropped and the rest read as Latin-1, which is exact for the common case of a
// title without them.
QString fromCompoundText(const QByteArray& bytes) {
    QByteArray text;
    text.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto c = static_cast<unsigned char>(bytes.at(i));
        if (c == 0x1b) {
            while (i + 1 < bytes.size() && static_cast<unsigned char>(bytes.at(i + 1)) >= 0x20 &&
                   static_cast<unsigned char>(bytes.at(i + 1)) <= 0x2f) {
                ++i;
            }
            ++i; // the final byte
            continue;
        }
        text.append(static_cast<char>(c));
    }
    return QString::fromLatin1(text);
}

// The title a user sees: _NET_WM_NAME (always UTF-8) when set, else WM_NAME in whatever type its
// client chose; many older clients (xterm, xlogo) set only WM_NAME, as a STRING. Both are asked at
// once, so reading a title costs one round trip whichever the client set.
struct TitleRead {
    TitleRead(X11Connection& x, xcb_window_t window)
        : modern(askText(x, window, "_NET_WM_NAME"))
        , legacy(askText(x, window, "WM_NAME")) {}

    // Takes both replies, so none is left behind.
    std::optional<QString> take(X11Connection& x) const {
        const auto utf8 = takeText(x, modern);
        const auto named = takeText(x, legacy);
        if (utf8 && utf8->type == x.atom("UTF8_STRING") && !utf8->bytes.isEmpty()) {
            return QString::fromUtf8(utf8->bytes);
        }
        if (!named || named->bytes.isEmpty()) {
            return std::nullopt;
        }
        if (named->type == x.atom("UTF8_STRING")) {
            return QString::fromUtf8(named->bytes);
        }
        if (named->type == x.atom("COMPOUND_TEXT")) {
            return fromCompoundText(named->bytes);
        }
        return QString::fromLatin1(named->bytes); // STRING, or an unknown type read the same way
    }

    xcb_get_property_cookie_t modern;
    xcb_get_property_cookie_t legacy;
};

// The outer frame in whole root pixels that a window may be given, for a requested one in root
// coordinates: none when it is not finite, smaller than a pixel or entirely off the desktop; an
// axis longer than the desktop's is cut to the desktop. A frame only partly off the desktop stays
// as it is (a window the user had left half off screen goes back exactly there).
std::optional<QRect> pixelFrame(const QRectF& requested, const QRect& desktop) {
    const QRectF r = requested.normalized();
    if (!(qIsFinite(r.x()) && qIsFinite(r.y()) && qIsFinite(r.width()) && qIsFinite(r.height()))) {
        return std::nullopt;
    }
    const auto axis = [](double start, double length, int desktopStart,
                         int desktopLength) -> std::optional<std::pair<int, int>> {
        if (length > desktopLength) {
            start = std::max<double>(start, desktopStart);
            length = std::min<double>(start + length, double(desktopStart) + desktopLength) - start;
        }
        const double end = start + length;
        if (std::lround(length) < 1 || end <= desktopStart ||
            start >= desktopStart + desktopLength) {
            return std::nullopt;
        }
        return std::pair(static_cast<int>(std::lround(start)),
                         static_cast<int>(std::lround(length)));
    };
    const auto x = axis(r.x(), r.width(), desktop.x(), desktop.width());
    const auto y = axis(r.y(), r.height(), desktop.y(), desktop.height());
    if (!x || !y) {
        return std::nullopt;
    }
    return QRect(x->first, y->first, x->second, y->second);
}

xcb_get_property_cookie_t askProperty(X11Connection& x, xcb_window_t window, const char* name,
                                      xcb_atom_t type, std::uint32_t length = 64) {
    return xcb_get_property(x.raw(), 0, window, x.atom(name), type, 0, length);
}

// The answer to askProperty: none when the window has no such property (or is gone), else its
// 32-bit values (none of them when it has another type or format).
std::optional<std::vector<std::uint32_t>> takeProperty(X11Connection& x,
                                                       xcb_get_property_cookie_t cookie) {
    auto reply = owned(xcb_get_property_reply(x.raw(), cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) {
        return std::nullopt;
    }
    std::vector<std::uint32_t> values;
    if (reply->format == 32) {
        const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
        values.assign(data, data + xcb_get_property_value_length(reply.get()) / 4);
    }
    return values;
}

// Window types in EWMH's words: those of windows a user arranges, and the rest.
constexpr const char* kStandardTypes[] = {
    "_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_DIALOG", "_NET_WM_WINDOW_TYPE_UTILITY"};
constexpr const char* kOtherTypes[] = {
    "_NET_WM_WINDOW_TYPE_DESKTOP",      "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_TOOLBAR",      "_NET_WM_WINDOW_TYPE_MENU",
    "_NET_WM_WINDOW_TYPE_SPLASH",       "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",   "_NET_WM_WINDOW_TYPE_TOOLTIP",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION", "_NET_WM_WINDOW_TYPE_COMBO",
    "_NET_WM_WINDOW_TYPE_DND"};

template <size_t N>
std::vector<xcb_atom_t> internAll(xcb_connection_t* c, const char* const (&names)[N]) {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const char* name : names) {
        cookies.push_back(
            xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name));
    }
    std::vector<xcb_atom_t> atoms;
    for (const auto cookie : cookies) {
        auto reply = owned(xcb_intern_atom_reply(c, cookie, nullptr));
        atoms.push_back(reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
    return atoms;
}

} // namespace

struct X11WindowService::FrameRead {
    FrameRead(X11Connection& x, xcb_window_t client)
        : extents(askProperty(x, client, "_NET_FRAME_EXTENTS", XCB_ATOM_CARDINAL))
        , geometry(xcb_get_geometry(x.raw(), client))
        , position(xcb_translate_coordinates(x.raw(), client, x.root(), 0, 0)) {}

    // Takes every reply, so none is left behind.
    std::optional<DesktopRect> take(X11Connection& x) const {
        const Extents e = extentsFrom(takeProperty(x, extents));
        auto size = owned(xcb_get_geometry_reply(x.raw(), geometry, nullptr));
        auto origin = owned(xcb_translate_coordinates_reply(x.raw(), position, nullptr));
        if (!size || !origin) {
            return std::nullopt;
        }
        return X11DesktopSpace::toDesktop(QRectF(origin->dst_x - e.left, origin->dst_y - e.top,
                                                 size->width + e.left + e.right,
                                                 size->height + e.top + e.bottom));
    }

    xcb_get_property_cookie_t extents;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t position;
};

X11WindowService::X11WindowService(X11Connection& connection, Scheduler& scheduler,
                                   DiagnosticLog log)
    : x_(connection)
    , scheduler_(scheduler)
    , log_(std::move(log)) {}

xcb_window_t X11WindowService::clientOf(const WindowRef& window) {
    const auto* x11 = dynamic_cast<const X11Window*>(window.get());
    return x11 ? x11->client : xcb_window_t{XCB_NONE};
}

WindowRef X11WindowService::wrap(xcb_window_t client) {
    return client == xcb_window_t{XCB_NONE} ? nullptr : std::make_shared<const X11Window>(client);
}

bool X11WindowService::sameWindow(const WindowRef& a, const WindowRef& b) {
    return clientOf(a) != XCB_NONE && clientOf(a) == clientOf(b);
}

std::optional<xcb_window_t> X11WindowService::findClientBelow(xcb_window_t window, int depth) {
    if (x_.hasProperty(window, "WM_STATE")) {
        return window;
    }
    if (depth <= 0) {
        return std::nullopt;
    }
    auto tree = owned(xcb_query_tree_reply(x_.raw(), xcb_query_tree(x_.raw(), window), nullptr));
    if (!tree) {
        return std::nullopt;
    }
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = xcb_query_tree_children_length(tree.get()) - 1; i >= 0; --i) { // topmost first
        if (auto found = findClientBelow(children[i], depth - 1)) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<xcb_window_t> X11WindowService::managedClientAt(xcb_window_t topLevel, int rootX,
                                                              int rootY) {
    // Follow the pointer path down from the window manager's frame to the window with WM_STATE.
    xcb_window_t current = topLevel;
    for (int depth = 0; depth < 10 && current != XCB_NONE; ++depth) {
        if (x_.hasProperty(current, "WM_STATE")) {
            return current;
        }
        auto step = owned(xcb_translate_coordinates_reply(
            x_.raw(),
            xcb_translate_coordinates(x_.raw(), x_.root(), current,
                                      static_cast<std::int16_t>(rootX),
                                      static_cast<std::int16_t>(rootY)),
            nullptr));
        if (!step || step->child == XCB_NONE) {
            break;
        }
        current = step->child;
    }
    // The point may fall on the frame's border or title bar, outside the client itself.
    return findClientBelow(topLevel, 3);
}

WindowRef X11WindowService::windowUnderPoint(DesktopPoint point) {
    if (!x_.isValid()) {
        return nullptr;
    }
    const QPointF root = X11DesktopSpace::toRoot(point);
    const int rootX = static_cast<int>(std::floor(root.x()));
    const int rootY = static_cast<int>(std::floor(root.y()));
    auto top = owned(xcb_translate_coordinates_reply(
        x_.raw(),
        xcb_translate_coordinates(x_.raw(), x_.root(), x_.root(), static_cast<std::int16_t>(rootX),
                                  static_cast<std::int16_t>(rootY)),
        nullptr));
    if (!top || top->child == XCB_NONE) {
        return nullptr;
    }
    const auto client = managedClientAt(top->child, rootX, rootY);
    return client ? wrap(*client) : nullptr;
}

WindowRef X11WindowService::focusedWindow() {
    if (!x_.isValid()) {
        return nullptr;
    }
    const auto active = x_.windowProperty(x_.root(), "_NET_ACTIVE_WINDOW");
    if (!active || *active == XCB_NONE) {
        return nullptr;
    }
    const auto client = findClientBelow(*active, 3);
    return client ? wrap(*client) : nullptr;
}

X11WindowService::Extents
X11WindowService::extentsFrom(const std::optional<std::vector<std::uint32_t>>& values) {
    if (!values || values->size() < 4) {
        return {};
    }
    const auto& v = *values;
    return {static_cast<int>(v[0]), static_cast<int>(v[1]), static_cast<int>(v[2]),
            static_cast<int>(v[3])};
}

std::optional<DesktopRect> X11WindowService::frame(const WindowRef& window) {
    const xcb_window_t client = clientOf(window);
    if (!x_.isValid() || client == XCB_NONE) {
        return std::nullopt;
    }
    return FrameRead(x_, client).take(x_);
}

bool X11WindowService::isStandardType(const std::vector<xcb_atom_t>& types) {
    if (standardTypes_.empty() && !types.empty()) {
        standardTypes_ = internAll(x_.raw(), kStandardTypes);
        otherTypes_ = internAll(x_.raw(), kOtherTypes);
    }
    // The types come in order of preference, and the first one known decides (a newer or
    // private type may come first); a window that names none is a normal one.
    const auto among = [](xcb_atom_t type, const std::vector<xcb_atom_t>& atoms) {
        return std::find(atoms.begin(), atoms.end(), type) != atoms.end();
    };
    for (const xcb_atom_t type : types) {
        if (among(type, standardTypes_)) {
            return true;
        }
        if (among(type, otherTypes_)) {
            return false;
        }
    }
    return true;
}

bool X11WindowService::isStandardWindow(const WindowRef& window) {
    const xcb_window_t client = clientOf(window);
    if (!x_.isValid() || client == XCB_NONE) {
        return false;
    }
    const auto state = askProperty(x_, client, "WM_STATE", XCB_ATOM_ANY, 0);
    const auto types = askProperty(x_, client, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM);
    const bool managed = takeProperty(x_, state).has_value();
    const auto typeList = takeProperty(x_, types).value_or(std::vector<std::uint32_t>{});
    return managed && isStandardType(typeList);
}

QString X11WindowService::typeName(xcb_atom_t type) {
    auto it = typeNames_.constFind(type);
    if (it == typeNames_.constEnd()) {
        it = typeNames_.insert(
            type, x_.atomName(type).remove(QStringLiteral("_NET_WM_WINDOW_TYPE_")).toLower());
    }
    return *it;
}

X11WindowService::WriteFacts X11WindowService::writeFacts(xcb_window_t client) {
    const auto extents = askProperty(x_, client, "_NET_FRAME_EXTENTS", XCB_ATOM_CARDINAL);
    const auto states = askProperty(x_, client, "_NET_WM_STATE", XCB_ATOM_ATOM);
    const auto check = askProperty(x_, x_.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW);
    WriteFacts facts;
    facts.extents = extentsFrom(takeProperty(x_, extents));
    const xcb_atom_t vertical = x_.atom("_NET_WM_STATE_MAXIMIZED_VERT");
    const xcb_atom_t horizontal = x_.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    for (const xcb_atom_t state : takeProperty(x_, states).value_or(std::vector<std::uint32_t>{})) {
        facts.maximized = facts.maximized || state == vertical || state == horizontal;
    }
    const auto wmCheck = takeProperty(x_, check);
    facts.managed = wmCheck && !wmCheck->empty();
    return facts;
}

void X11WindowService::unmaximize(xcb_window_t client) {
    x_.sendRootMessage(client, "_NET_WM_STATE",
                       {kStateRemove, x_.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                        x_.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2, 0});
}

void X11WindowService::requestOuterFrame(xcb_window_t client, int x, int y, int clientWidth,
                                         int clientHeight, bool positionOnly, bool managed) {
    if (managed) {
        const std::uint32_t flags = kNorthWestGravity | kHasX | kHasY |
                                    (positionOnly ? 0 : kHasWidth | kHasHeight) | kSourceTool;
        x_.sendRootMessage(client, "_NET_MOVERESIZE_WINDOW",
                           {flags, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                            static_cast<std::uint32_t>(clientWidth),
                            static_cast<std::uint32_t>(clientHeight)});
    } else {
        // No window manager: the client is the outer frame.
        const std::uint32_t values[] = {
            static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
            static_cast<std::uint32_t>(clientWidth), static_cast<std::uint32_t>(clientHeight)};
        xcb_configure_window(
            x_.raw(), client,
            XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                (positionOnly ? 0 : XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT),
            values);
    }
    x_.flush();
}

void X11WindowService::setFrame(const WindowRef& window, const DesktopRect& frame) {
    const xcb_window_t client = clientOf(window);
    if (!x_.isValid() || client == XCB_NONE) {
        return;
    }
    const auto outer =
        pixelFrame(X11DesktopSpace::toRoot(frame), QRect(0, 0, x_.rootWidth(), x_.rootHeight()));
    if (!outer) {
        if (log_) {
            log_(QStringLiteral("X11WindowService.setFrame refused requested=") +
                 SnapDiagnosticFormatter::formatRect(frame) + QLatin1Char(' ') +
                 describeWindow(window));
        }
        return;
    }
    const WriteFacts facts = writeFacts(client);
    const Extents& e = facts.extents;
    const QPoint origin = outer->topLeft();
    const int width = std::max(1, outer->width() - e.left - e.right);
    const int height = std::max(1, outer->height() - e.top - e.bottom);
    if (facts.maximized) {
        unmaximize(client);
    }
    requestOuterFrame(client, origin.x(), origin.y(), width, height, false, facts.managed);
    // The window manager acts asynchronously: look where the window went a moment later,
    // against what was asked of it.
    const DesktopRect requested = X11DesktopSpace::toDesktop(QRectF(*outer));
    scheduler_.postAfter(verifyDelay,
                         guard_.wrap([window, requested, origin, e](X11WindowService& self) {
                             self.verify(window, requested, origin, e);
                         }));
}

void X11WindowService::verify(const WindowRef& window, const DesktopRect& requested,
                              QPoint rootOrigin, Extents used) {
    const xcb_window_t client = clientOf(window);
    bool retried = false;
    // Compare the top-left corners, in root coordinates: that is the corner the move anchored,
    // and windows that round their size (terminals) keep it while their bottom edge moves.
    const auto topLeftRect = [](const DesktopRect& r) {
        const QRectF root = X11DesktopSpace::toRoot(r);
        return DesktopRect(root.x(), root.y(), root.width(), root.height());
    };
    const auto actual = frame(window);
    const WriteFacts facts = writeFacts(client);
    const Extents& e = facts.extents;
    // A window that was maximized had its client size worked out from the borders it had then;
    // once restored its borders are drawn again, so the size is asked for once more.
    const bool bordersChanged = !(e == used);
    if (bordersChanged ||
        FrameApplyPolicy::originNeedsRetry(
            topLeftRect(requested), actual ? std::optional(topLeftRect(*actual)) : std::nullopt,
            FrameApplyPolicy::originTolerance)) {
        const QRectF root = X11DesktopSpace::toRoot(requested);
        requestOuterFrame(
            client, rootOrigin.x(), rootOrigin.y(),
            std::max(1, static_cast<int>(std::lround(root.width())) - e.left - e.right),
            std::max(1, static_cast<int>(std::lround(root.height())) - e.top - e.bottom),
            !bordersChanged, facts.managed);
        retried = true;
    }
    const auto after = frame(window);
    if (log_) {
        log_(
            QStringLiteral("X11WindowService.setFrame requested=") +
            SnapDiagnosticFormatter::formatRect(requested) + QStringLiteral(" rootOrigin=") +
            SnapDiagnosticFormatter::formatPoint({double(rootOrigin.x()), double(rootOrigin.y())}) +
            QStringLiteral(" primaryMaxY=") +
            SnapDiagnosticFormatter::formatDouble(X11DesktopSpace::primaryMaxY()) +
            QStringLiteral(" retried=") +
            (retried ? QStringLiteral("true") : QStringLiteral("false")) +
            QStringLiteral(" after=") +
            (after ? SnapDiagnosticFormatter::formatRect(*after) : QStringLiteral("nil")) +
            QLatin1Char(' ') + describeWindow(window));
    }
}

QString X11WindowService::describeWindow(const WindowRef& window) {
    const xcb_window_t client = clientOf(window);
    const auto text = [](const std::optional<QString>& value) {
        return value && !value->isEmpty() ? *value : QStringLiteral("nil");
    };
    if (!x_.isValid() || client == XCB_NONE) {
        return QStringLiteral("pid=nil role=nil subrole=nil title=nil cocoaFrame=nil");
    }
    // Everything is asked at once: a description costs one round trip.
    const auto pidRead = askProperty(x_, client, "_NET_WM_PID", XCB_ATOM_CARDINAL);
    const auto typesRead = askProperty(x_, client, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM);
    const auto stateRead = askProperty(x_, client, "WM_STATE", XCB_ATOM_ANY, 0);
    const FrameRead frameRead(x_, client);
    const TitleRead titleRead(x_, client);
    const auto pid = takeProperty(x_, pidRead).value_or(std::vector<std::uint32_t>{});
    const auto types = takeProperty(x_, typesRead).value_or(std::vector<std::uint32_t>{});
    const bool managed = takeProperty(x_, stateRead).has_value();
    const auto outer = frameRead.take(x_);
    std::optional<QString> subrole;
    if (!types.empty()) {
        subrole = typeName(types.front());
    }
    const auto title = titleRead.take(x_);
    const QString role = !managed                ? QStringLiteral("nil")
                         : isStandardType(types) ? QStringLiteral("standard")
                                                 : QStringLiteral("other");
    return QStringLiteral("pid=") +
           (pid.empty() ? QStringLiteral("nil") : QString::number(pid.front())) +
           QStringLiteral(" role=") + role + QStringLiteral(" subrole=") + text(subrole) +
           QStringLiteral(" title=") + text(title) + QStringLiteral(" cocoaFrame=") +
           (outer ? SnapDiagnosticFormatter::formatRect(*outer) : QStringLiteral("nil"));
}

} // namespace paneforge
