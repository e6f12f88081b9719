#include "platform/x11/x11_display_services.h"

#include "core/diagnostics/snap_diagnostic_formatter.h"
#include "platform/x11/edid.h"
#include "platform/x11/x11_desktop_space.h"

#include <QCursor>
#include <QGuiApplication>
#include <QHash>
#include <QScreen>
#include <QSocketNotifier>
#include <xcb/randr.h>

namespace paneforge {

namespace {

std::uint32_t fnv1a(const QByteArray& bytes) {
    std::uint32_t hash = 2166136261u;
    for (const char c : bytes) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 16777619u;
    }
    return hash;
}

} // namespace

// The connection that carries the events which can change a visible frame or an identity, and
// what is kept until one of them comes.
class X11DisplayServices::Watcher {
public:
    Watcher() {
        if (!x.isValid()) {
            return;
        }
        xcb_connection_t* c = x.raw();
        clientList_ = x.atom("_NET_CLIENT_LIST");
        workArea_ = x.atom("_NET_WORKAREA");
        strut_ = x.atom("_NET_WM_STRUT");
        strutPartial_ = x.atom("_NET_WM_STRUT_PARTIAL");
        const std::uint32_t rootEvents =
            XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(c, x.root(), XCB_CW_EVENT_MASK, &rootEvents);
        const auto* randr = xcb_get_extension_data(c, &xcb_randr_id);
        // The server sends output and CRTC changes only to clients that said they know RandR 1.2.
        if (randr && randr->present &&
            owned(xcb_randr_query_version_reply(c, xcb_randr_query_version(c, 1, 5), nullptr))) {
            randrEvents_ = randr->first_event;
            xcb_randr_select_input(
                c, x.root(),
                XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                    XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
        }
        x.flush();
        notifier_ =
            std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(c), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                         [this] { processEvents(); });
    }

    // Reads every event waiting; each that can change what is kept drops it.
    void processEvents() {
        while (auto* raw = xcb_poll_for_event(x.raw())) {
            const auto event = owned(raw);
            const std::uint8_t type = event->response_type & 0x7f;
            if (type == XCB_PROPERTY_NOTIFY) {
                const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(raw);
                const bool onRoot = change->window == x.root();
                if (onRoot ? change->atom == clientList_ || change->atom == workArea_
                           : change->atom == strut_ || change->atom == strutPartial_) {
                    framesValid = false;
                }
            } else if (type == XCB_CONFIGURE_NOTIFY) {
                framesValid = false; // the root changed size
            } else if (randrEvents_ != 0 &&
                       (type == randrEvents_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                        type == randrEvents_ + XCB_RANDR_NOTIFY)) {
                framesValid = false;
                edids.clear();
            }
        }
    }

    X11Connection x;
    // The visible frames, valid for the screens they were read for.
    bool framesValid = false;
    std::vector<Screen> framesFor;
    std::vector<DesktopRect> frames;
    // EDID blocks by screen name, for the screens they were read for.
    std::vector<Screen> edidsFor;
    QHash<QString, QByteArray> edids;

private:
    std::unique_ptr<QSocketNotifier> notifier_;
    std::uint8_t randrEvents_ = 0; // RandR's first event code; 0 without RandR
    xcb_atom_t clientList_ = XCB_NONE;
    xcb_atom_t workArea_ = XCB_NONE;
    xcb_atom_t strut_ = XCB_NONE;
    xcb_atom_t strutPartial_ = XCB_NONE;
};

X11DisplayServices::X11DisplayServices(X11Connection& connection)
    : x_(&connection)
    , watcher_(std::make_unique<Watcher>()) {}

X11DisplayServices::~X11DisplayServices() = default;

DisplayId X11DisplayServices::displayIdForName(const QString& name) {
    const std::uint32_t id = fnv1a(name.toUtf8());
    return id == 0 ? 1 : id;
}

std::vector<X11DisplayServices::Screen> X11DisplayServices::currentScreens() const {
    std::vector<Screen> result;
    QList<QScreen*> screens = QGuiApplication::screens();
    // The primary display first, as on macOS.
    const QScreen* primary = QGuiApplication::primaryScreen();
    std::stable_partition(screens.begin(), screens.end(), [&](QScreen* s) { return s == primary; });
    for (const QScreen* screen : screens) {
        result.push_back({displayIdForName(screen->name()), screen->name(), screen->geometry(),
                          screen->devicePixelRatio()});
    }
    return result;
}

std::optional<X11DisplayServices::Screen> X11DisplayServices::screenFor(DisplayId displayId) const {
    for (const Screen& screen : currentScreens()) {
        if (screen.id == displayId) {
            return screen;
        }
    }
    return std::nullopt;
}

std::vector<DisplayId> X11DisplayServices::getActiveDisplays() {
    std::vector<DisplayId> ids;
    for (const Screen& screen : currentScreens()) {
        ids.push_back(screen.id);
    }
    return ids;
}

std::vector<QString> X11DisplayServices::outputNamesFor(const QString& screenName) const {
    std::vector<QString> names{screenName};
    if (!x_->isValid()) {
        return names;
    }
    xcb_connection_t* c = x_->raw();
    if (auto monitors = owned(
            xcb_randr_get_monitors_reply(c, xcb_randr_get_monitors(c, x_->root(), 1), nullptr))) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem;
             xcb_randr_monitor_info_next(&it)) {
            if (x_->atomName(it.data->name) != screenName) {
                continue;
            }
            const auto* outputs = xcb_randr_monitor_info_outputs(it.data);
            for (int i = 0; i < xcb_randr_monitor_info_outputs_length(it.data); ++i) {
                auto info = owned(xcb_randr_get_output_info_reply(
                    c, xcb_randr_get_output_info(c, outputs[i], XCB_CURRENT_TIME), nullptr));
                if (info) {
                    names.push_back(QString::fromUtf8(
                        reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                        xcb_randr_get_output_info_name_length(info.get())));
                }
            }
        }
    }
    return names;
}

QByteArray X11DisplayServices::edidFor(const QString& screenName) const {
    Watcher& w = *watcher_;
    if (!w.x.isValid()) {
        return readEdid(screenName);
    }
    w.processEvents();
    const auto screens = currentScreens();
    if (w.edidsFor != screens) {
        w.edids.clear();
        w.edidsFor = screens;
    }
    auto it = w.edids.constFind(screenName);
    if (it == w.edids.constEnd()) {
        it = w.edids.insert(screenName, readEdid(screenName));
    }
    return *it;
}

QByteArray X11DisplayServices::readEdid(const QString& screenName) const {
    if (!x_->isValid()) {
        return {};
    }
    xcb_connection_t* c = x_->raw();
    // The screen is either a RandR monitor (whose first output carries the EDID) or an output.
    std::vector<xcb_randr_output_t> outputs;
    if (auto monitors = owned(
            xcb_randr_get_monitors_reply(c, xcb_randr_get_monitors(c, x_->root(), 1), nullptr))) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(monitors.get()); it.rem;
             xcb_randr_monitor_info_next(&it)) {
            if (x_->atomName(it.data->name) == screenName) {
                const auto* list = xcb_randr_monitor_info_outputs(it.data);
                outputs.assign(list, list + xcb_randr_monitor_info_outputs_length(it.data));
            }
        }
    }
    if (outputs.empty()) {
        auto resources = owned(xcb_randr_get_screen_resources_current_reply(
            c, xcb_randr_get_screen_resources_current(c, x_->root()), nullptr));
        if (resources) {
            const auto* list = xcb_randr_get_screen_resources_current_outputs(resources.get());
            const int count =
                xcb_randr_get_screen_resources_current_outputs_length(resources.get());
            for (int i = 0; i < count; ++i) {
                auto info = owned(xcb_randr_get_output_info_reply(
                    c, xcb_randr_get_output_info(c, list[i], resources->config_timestamp),
                    nullptr));
                if (info &&
                    QString::fromUtf8(
                        reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                        xcb_randr_get_output_info_name_length(info.get())) == screenName) {
                    outputs.push_back(list[i]);
                }
            }
        }
    }
    for (const auto output : outputs) {
        auto property = owned(xcb_randr_get_output_property_reply(
            c,
            xcb_randr_get_output_property(c, output, x_->atom("EDID"), XCB_ATOM_INTEGER, 0, 256, 0,
                                          0),
            nullptr));
        if (property) {
            const int length = xcb_randr_get_output_property_data_length(property.get());
            if (length >= 128) {
                return QByteArray(reinterpret_cast<const char*>(
                                      xcb_randr_get_output_property_data(property.get())),
                                  length);
            }
        }
    }
    return {};
}

DisplayIdentifier X11DisplayServices::getIdentifier(DisplayId displayId) {
    const auto screen = screenFor(displayId);
    const QString name = screen ? screen->name : QString::number(displayId);
    if (const auto edid = parseEdid(edidFor(name))) {
        return DisplayIdentifier(edid->manufacturerId, edid->productCode, edid->serialNumber);
    }
    // No EDID (virtual and headless servers): a stable identity from the monitor's name and size,
    // with no serial number, so that the title tells identical monitors apart by position.
    const QByteArray key = name.toUtf8() + '@' +
                           (screen ? QByteArray::number(screen->rootGeometry.width()) + 'x' +
                                         QByteArray::number(screen->rootGeometry.height())
                                   : QByteArray());
    return DisplayIdentifier(0, fnv1a(key) & 0x7fffffff, std::nullopt);
}

std::optional<QString> X11DisplayServices::getDisplayName(DisplayId displayId) {
    const auto screen = screenFor(displayId);
    if (!screen) {
        return std::nullopt;
    }
    if (const auto edid = parseEdid(edidFor(screen->name)); edid && !edid->productName.isEmpty()) {
        return edid->productName;
    }
    return screen->name;
}

QString X11DisplayServices::getDisplayTitle(DisplayId displayId) {
    const auto screen = screenFor(displayId);
    const QRect bounds = screen ? screen->rootGeometry : QRect();
    // Laptop panels are connected as eDP, LVDS or DSI outputs.
    bool builtIn = false;
    if (screen) {
        for (const QString& output : outputNamesFor(screen->name)) {
            builtIn = builtIn || output.startsWith(QLatin1String("eDP")) ||
                      output.startsWith(QLatin1String("LVDS")) ||
                      output.startsWith(QLatin1String("DSI"));
        }
    }
    return DisplayText::title(getDisplayName(displayId), getIdentifier(displayId), builtIn,
                              DesktopRect(bounds.x(), bounds.y(), bounds.width(), bounds.height()));
}

std::vector<QString> X11DisplayServices::getDisplaySummaries() {
    std::vector<QString> summaries;
    for (const Screen& screen : currentScreens()) {
        const QRect b = screen.rootGeometry;
        summaries.push_back(DisplayText::summary(getIdentifier(screen.id),
                                                 DesktopRect(b.x(), b.y(), b.width(), b.height())));
    }
    return summaries;
}

std::optional<DesktopRect> X11DisplayServices::getFrame(DisplayId displayId) {
    const auto screen = screenFor(displayId);
    return screen ? std::optional(X11DesktopSpace::toDesktop(QRectF(screen->rootGeometry)))
                  : std::nullopt;
}

QRect X11DisplayServices::visibleArea(const QRect& monitor,
                                      const std::vector<std::vector<std::uint32_t>>& struts,
                                      int rootWidth, int rootHeight) {
    int left = monitor.left();
    int top = monitor.top();
    int right = monitor.x() + monitor.width();   // exclusive
    int bottom = monitor.y() + monitor.height(); // exclusive
    const auto overlaps = [](long a0, long a1, long b0, long b1) { return a0 <= b1 && b0 <= a1; };
    for (const auto& s : struts) {
        if (s.size() < 12) {
            continue;
        }
        // left, right, top, bottom, then the start and end of each along its edge
        if (s[0] > 0 && overlaps(s[4], s[5], monitor.top(), monitor.bottom()) &&
            static_cast<long>(s[0]) > monitor.left()) {
            left = std::max(left, static_cast<int>(s[0]));
        }
        if (s[1] > 0 && overlaps(s[6], s[7], monitor.top(), monitor.bottom()) &&
            rootWidth - static_cast<long>(s[1]) < monitor.x() + monitor.width()) {
            right = std::min(right, rootWidth - static_cast<int>(s[1]));
        }
        if (s[2] > 0 && overlaps(s[8], s[9], monitor.left(), monitor.right()) &&
            static_cast<long>(s[2]) > monitor.top()) {
            top = std::max(top, static_cast<int>(s[2]));
        }
        if (s[3] > 0 && overlaps(s[10], s[11], monitor.left(), monitor.right()) &&
            rootHeight - static_cast<long>(s[3]) < monitor.y() + monitor.height()) {
            bottom = std::min(bottom, rootHeight - static_cast<int>(s[3]));
        }
    }
    return QRect(left, top, std::max(0, right - left), std::max(0, bottom - top));
}

std::optional<DesktopRect> X11DisplayServices::getVisibleFrame(DisplayId displayId) {
    const auto screens = currentScreens();
    const auto frames = visibleFrames(screens);
    for (size_t i = 0; i < screens.size(); ++i) {
        if (screens[i].id == displayId) {
            return frames[i];
        }
    }
    return std::nullopt;
}

std::vector<DesktopRect>
X11DisplayServices::visibleFrames(const std::vector<Screen>& screens) const {
    Watcher& w = *watcher_;
    if (!w.x.isValid()) {
        return readVisibleFrames(*x_, screens, false);
    }
    w.processEvents();
    if (!w.framesValid || w.framesFor != screens) {
        w.frames = readVisibleFrames(w.x, screens, true);
        w.framesFor = screens;
        w.framesValid = true;
    }
    return w.frames;
}

std::vector<DesktopRect> X11DisplayServices::readVisibleFrames(X11Connection& x,
                                                               const std::vector<Screen>& screens,
                                                               bool watchClients) {
    std::vector<DesktopRect> frames;
    if (!x.isValid()) {
        for (const Screen& screen : screens) {
            frames.push_back(X11DesktopSpace::toDesktop(QRectF(screen.rootGeometry)));
        }
        return frames;
    }
    xcb_connection_t* c = x.raw();
    const auto clients = x.windowList(x.root(), "_NET_CLIENT_LIST");
    if (watchClients) {
        // Asked for before the struts are read on the same connection, so that a strut changed
        // after the read is reported.
        const std::uint32_t clientEvents = XCB_EVENT_MASK_PROPERTY_CHANGE;
        for (const xcb_window_t window : clients) {
            xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &clientEvents);
        }
    }
    // Both strut forms of every client, and the work area, asked together: one round trip.
    const xcb_atom_t partialAtom = x.atom("_NET_WM_STRUT_PARTIAL");
    const xcb_atom_t plainAtom = x.atom("_NET_WM_STRUT");
    std::vector<std::pair<xcb_get_property_cookie_t, xcb_get_property_cookie_t>> cookies;
    for (const xcb_window_t window : clients) {
        cookies.emplace_back(xcb_get_property(c, 0, window, partialAtom, XCB_ATOM_CARDINAL, 0, 12),
                             xcb_get_property(c, 0, window, plainAtom, XCB_ATOM_CARDINAL, 0, 4));
    }
    const auto areaCookie =
        xcb_get_property(c, 0, x.root(), x.atom("_NET_WORKAREA"), XCB_ATOM_CARDINAL, 0, 4);
    const auto values = [c](xcb_get_property_cookie_t cookie) {
        std::vector<std::uint32_t> result;
        if (auto reply = owned(xcb_get_property_reply(c, cookie, nullptr));
            reply && reply->format == 32) {
            const auto* data =
                static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
            result.assign(data, data + xcb_get_property_value_length(reply.get()) / 4);
        }
        return result;
    };
    const std::uint32_t w = static_cast<std::uint32_t>(x.rootWidth());
    const std::uint32_t h = static_cast<std::uint32_t>(x.rootHeight());
    std::vector<std::vector<std::uint32_t>> struts;
    for (const auto& [partialCookie, plainCookie] : cookies) {
        auto partial = values(partialCookie);
        const auto plain = values(plainCookie);
        if (partial.size() < 12) {
            // The older four-value form spans whole edges.
            if (plain.size() < 4) {
                continue;
            }
            partial = {plain[0], plain[1], plain[2], plain[3], 0, h, 0, h, 0, w, 0, w};
        }
        struts.push_back(partial);
    }
    const auto area = values(areaCookie);
    for (const Screen& screen : screens) {
        QRect visible = visibleArea(screen.rootGeometry, struts, x.rootWidth(), x.rootHeight());
        if (screens.size() == 1 && area.size() >= 4) {
            // With one monitor the window manager's own work area is authoritative.
            visible =
                visible.intersected(QRect(static_cast<int>(area[0]), static_cast<int>(area[1]),
                                          static_cast<int>(area[2]), static_cast<int>(area[3])));
        }
        frames.push_back(X11DesktopSpace::toDesktop(QRectF(visible)));
    }
    return frames;
}

std::optional<DisplayId> X11DisplayServices::getDisplayId(DesktopPoint point) {
    for (const Screen& screen : currentScreens()) {
        if (X11DesktopSpace::toDesktop(QRectF(screen.rootGeometry)).contains(point)) {
            return screen.id;
        }
    }
    return std::nullopt;
}

DesktopPoint X11DisplayServices::pointerLocation() {
    // Asked on the connection that carries the frame-changing events: its answer comes after
    // every event the server sent before it, so the next screen lookup sees them.
    X11Connection& x = watcher_->x.isValid() ? watcher_->x : *x_;
    if (x.isValid()) {
        auto pointer =
            owned(xcb_query_pointer_reply(x.raw(), xcb_query_pointer(x.raw(), x.root()), nullptr));
        if (pointer) {
            return X11DesktopSpace::toDesktop(QPointF(pointer->root_x, pointer->root_y));
        }
    }
    return X11DesktopSpace::toDesktop(QPointF(QCursor::pos()));
}

double X11DisplayServices::primaryMaxY() {
    return X11DesktopSpace::primaryMaxY();
}

std::vector<ScreenInfo> X11DisplayServices::screens() const {
    const auto current = currentScreens();
    const auto frames = visibleFrames(current);
    std::vector<ScreenInfo> result;
    for (size_t i = 0; i < current.size(); ++i) {
        const Screen& screen = current[i];
        const QRectF root(screen.rootGeometry);
        result.push_back({screen.name, screen.id, screen.scale, X11DesktopSpace::toDesktop(root),
                          frames[i], DesktopRect(root.x(), root.y(), root.width(), root.height())});
    }
    return result;
}

} // namespace paneforge
