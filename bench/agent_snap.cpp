// The real agent snapping on a desk of 50 real client windows, in a private X session under
// openbox: what one drag event and one modifier change cost the agent's threads and the X server
// that answers its requests, and the time from the button release to the ConfigureNotify that
// tells the dragged window it is at its zone. Input comes from the XTEST extension on this
// process's own connection, so the release is timed from the moment it is sent. Beside it, the
// window manager's own answer to a _NET_MOVERESIZE_WINDOW from the client. Figures only; nothing
// is asserted.

#include "config_fixtures.h"
#include "x11_test_session.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <poll.h>
#include <thread>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kClients = 50;
constexpr int kDragEvents = 300;
constexpr int kModifierChanges = 100;
constexpr int kReleases = 40;

template <typename T> using Reply = std::unique_ptr<T, decltype(&std::free)>;
template <typename T> Reply<T> adopt(T* raw) {
    return Reply<T>(raw, &std::free);
}

// CPU time of every thread of a process, in nanoseconds (the first field of each schedstat).
double cpuNanos(qint64 pid) {
    double total = 0;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(pid));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile stat(tasks.filePath(task + QStringLiteral("/schedstat")));
        if (stat.open(QIODevice::ReadOnly)) {
            total += QString::fromLatin1(stat.readAll()).section(QLatin1Char(' '), 0, 0).toDouble();
        }
    }
    return total;
}

// The X server's process, from the lock file of its display.
// Waits until none of the processes has used the CPU for a while: the agent has handled
// everything sent to it, and the server has answered it.
void waitQuiet(std::initializer_list<qint64> pids) {
    double last = -1;
    for (;;) {
        double now = 0;
        for (const qint64 pid : pids) {
            now += cpuNanos(pid);
        }
        if (now == last) {
            return;
        }
        last = now;
        std::this_thread::sleep_for(30ms);
    }
}

struct Cost {
    double wallMicros, agentMicros, serverMicros;
};

struct Rect {
    int x, y, width, height;
    bool operator==(const Rect&) const = default;
};

struct Stats {
    double median, p99;
};
Stats stats(std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    if (samples.empty()) {
        return {0, 0};
    }
    return {samples[samples.size() / 2],
            samples[std::min(samples.size() - 1, samples.size() * 99 / 100)]};
}

// A client of the session: its own windows, the events they get, and XTEST input.
class Desk {
public:
    explicit Desk(const QString& display)
        : c_(xcb_connect(display.toLatin1().constData(), nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(c_)).data->root;
        const std::uint32_t rootEvents = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(c_, root_, XCB_CW_EVENT_MASK, &rootEvents);
        super_ = keycodeOf(0xffeb); // Super_L
        shift_ = keycodeOf(0xffe1); // Shift_L
        plain_ = keycodeOf(0x78);   // x
    }
    ~Desk() { xcb_disconnect(c_); }

    bool ok() const { return !xcb_connection_has_error(c_) && super_ && shift_ && plain_; }
    std::uint8_t super() const { return super_; }
    std::uint8_t shift() const { return shift_; }
    std::uint8_t plainKey() const { return plain_; }

    xcb_atom_t atom(const char* name) {
        auto reply = adopt(xcb_intern_atom_reply(
            c_, xcb_intern_atom(c_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
            nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_NONE};
    }

    xcb_window_t createClient(const Rect& r, const QByteArray& title) {
        const xcb_window_t w = xcb_generate_id(c_);
        const std::uint32_t values[] = {0xffffff, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
        xcb_create_window(c_, XCB_COPY_FROM_PARENT, w, root_, static_cast<std::int16_t>(r.x),
                          static_cast<std::int16_t>(r.y), static_cast<std::uint16_t>(r.width),
                          static_cast<std::uint16_t>(r.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        xcb_change_property(c_, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(title.size()), title.constData());
        xcb_map_window(c_, w);
        xcb_flush(c_);
        return w;
    }

    std::vector<std::uint32_t> cardinals(xcb_window_t w, const char* property) {
        auto reply = adopt(xcb_get_property_reply(
            c_, xcb_get_property(c_, 0, w, atom(property), XCB_ATOM_ANY, 0, 1024), nullptr));
        std::vector<std::uint32_t> values;
        if (reply && reply->format == 32) {
            const auto* data =
                static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
            values.assign(data, data + xcb_get_property_value_length(reply.get()) / 4);
        }
        return values;
    }

    // The client's rectangle in root coordinates.
    std::optional<Rect> clientRect(xcb_window_t w) {
        auto geometry = adopt(xcb_get_geometry_reply(c_, xcb_get_geometry(c_, w), nullptr));
        auto position = adopt(xcb_translate_coordinates_reply(
            c_, xcb_translate_coordinates(c_, w, root_, 0, 0), nullptr));
        if (!geometry || !position) {
            return std::nullopt;
        }
        return Rect{position->dst_x, position->dst_y, geometry->width, geometry->height};
    }

    // XTEST's FakeInput, sent by hand: the request is tiny, and the desk needs no library for it.
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0) {
        static xcb_extension_t xtest = {"XTEST", 0};
        struct {
            std::uint8_t major, minor;
            std::uint16_t length;
            std::uint8_t type, detail;
            std::uint16_t pad0;
            std::uint32_t time, root, pad1, pad2;
            std::int16_t rootX, rootY;
            std::uint8_t pad3[7];
            std::uint8_t deviceId;
        } request{};
        static_assert(sizeof request == 36);
        request.type = type;
        request.detail = detail;
        request.root = root_;
        request.rootX = static_cast<std::int16_t>(x);
        request.rootY = static_cast<std::int16_t>(y);
        const xcb_protocol_request_t protocol = {1, &xtest, 2, 1};
        iovec parts[3];
        parts[2].iov_base = &request;
        parts[2].iov_len = sizeof request;
        xcb_send_request(c_, 0, parts + 2, &protocol);
        xcb_flush(c_);
    }
    void moveTo(int x, int y) { fake(XCB_MOTION_NOTIFY, 0, x, y); }
    // Relative moves: only they produce the raw motion the agent listens to under Xvfb.
    void moveBy(int dx, int dy) { fake(XCB_MOTION_NOTIFY, 1, dx, dy); }
    void button(bool down) { fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1); }
    void key(std::uint8_t code, bool down) { fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code); }

    void moveResize(xcb_window_t w, const Rect& outer, const Rect& client) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = w;
        event.type = atom("_NET_MOVERESIZE_WINDOW");
        const std::uint32_t flags = 1 | (0xf << 8) | (2 << 12);
        const std::uint32_t data[] = {
            flags, static_cast<std::uint32_t>(outer.x), static_cast<std::uint32_t>(outer.y),
            static_cast<std::uint32_t>(client.width), static_cast<std::uint32_t>(client.height)};
        std::memcpy(event.data.data32, data, sizeof data);
        xcb_send_event(c_, 0, root_,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        xcb_flush(c_);
    }

    // Reads events until one satisfies `wanted` or the timeout passes; the time it was read.
    template <typename Wanted>
    std::optional<Clock::time_point> waitFor(Wanted wanted, std::chrono::milliseconds timeout) {
        const auto deadline = Clock::now() + timeout;
        for (;;) {
            while (auto* raw = xcb_poll_for_event(c_)) {
                const auto event = adopt(raw);
                if (wanted(event.get())) {
                    return Clock::now();
                }
            }
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0 || xcb_connection_has_error(c_)) {
                return std::nullopt;
            }
            pollfd fd{xcb_get_file_descriptor(c_), POLLIN, 0};
            ::poll(&fd, 1, static_cast<int>(left.count()));
        }
    }
    void drain(std::chrono::milliseconds quiet) {
        waitFor([](const xcb_generic_event_t*) { return false; }, quiet);
    }

    // The window's frame reported at `client` (root coordinates): the ConfigureNotify that gives
    // the client its new size (or, for a move alone, the synthetic one with its root position),
    // confirmed by asking the server where the window is.
    std::optional<Clock::time_point> waitForClientAt(xcb_window_t w, const Rect& client) {
        const auto seen = waitFor(
            [&](const xcb_generic_event_t* e) {
                if ((e->response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) {
                    return false;
                }
                const auto* c = reinterpret_cast<const xcb_configure_notify_event_t*>(e);
                const bool synthetic = (e->response_type & 0x80) != 0;
                return c->window == w && c->width == client.width && c->height == client.height &&
                       (!synthetic || (c->x == client.x && c->y == client.y));
            },
            2000ms);
        return seen && clientRect(w) == client ? seen : std::nullopt;
    }
    // The zone overlay coming on screen: an override-redirect window mapped on the root.
    std::optional<Clock::time_point> waitForOverlay() {
        return waitFor(
            [](const xcb_generic_event_t* e) {
                return (e->response_type & 0x7f) == XCB_MAP_NOTIFY &&
                       reinterpret_cast<const xcb_map_notify_event_t*>(e)->override_redirect;
            },
            2000ms);
    }

private:
    std::uint8_t keycodeOf(std::uint32_t keysym) {
        const xcb_setup_t* setup = xcb_get_setup(c_);
        const int count = setup->max_keycode - setup->min_keycode + 1;
        auto map = adopt(xcb_get_keyboard_mapping_reply(
            c_, xcb_get_keyboard_mapping(c_, setup->min_keycode, static_cast<std::uint8_t>(count)),
            nullptr));
        if (!map) {
            return 0;
        }
        const xcb_keysym_t* syms = xcb_get_keyboard_mapping_keysyms(map.get());
        for (int k = 0; k < count; ++k) {
            for (int i = 0; i < map->keysyms_per_keycode; ++i) {
                if (syms[k * map->keysyms_per_keycode + i] == keysym) {
                    return static_cast<std::uint8_t>(setup->min_keycode + k);
                }
            }
        }
        return 0;
    }

    xcb_connection_t* c_;
    xcb_window_t root_ = XCB_NONE;
    std::uint8_t super_ = 0;
    std::uint8_t shift_ = 0;
    std::uint8_t plain_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    return runWithX11Session(argc, argv, {}, [](X11TestSession& session) {
        using namespace paneforge;
        QTemporaryDir home;
        // A typical configuration whose default layout is 2 x 2 with 10-point margins.
        const GridDefinition quarters(QStringLiteral("quarters"), QStringLiteral("Quarters"), {0.5},
                                      {0.5});
        ConfigStore(LoggerFactory::makeLogger(QStringLiteral("Bench")),
                    [&] { return home.filePath(QStringLiteral("config")); })
            .saveConfig(fixtures::smallConfig()
                            .copying(std::nullopt, quarters, 10.0)
                            .withHasCompletedQuickStart(true));

        Desk desk(session.display());
        if (!desk.ok()) {
            std::fprintf(stderr, "no connection or no Super and Shift keys\n");
            return 1;
        }
        // 50 windows cascaded in the top-left part of the screen; the last one is dragged.
        std::vector<xcb_window_t> clients;
        for (int i = 0; i < kClients; ++i) {
            const bool target = i == kClients - 1;
            clients.push_back(
                desk.createClient(target ? Rect{700, 400, 400, 300}
                                         : Rect{20 + (i % 10) * 40, 40 + (i / 10) * 40, 200, 150},
                                  QByteArray("bench client ") + QByteArray::number(i)));
        }
        const xcb_window_t target = clients.back();
        if (!X11TestSession::waitUntil([&] {
                return session.clientList().size() >= kClients &&
                       desk.cardinals(target, "_NET_FRAME_EXTENTS").size() == 4;
            })) {
            std::fprintf(stderr, "the window manager did not manage the %d clients\n", kClients);
            return 1;
        }
        const auto extents = desk.cardinals(target, "_NET_FRAME_EXTENTS");
        const int left = static_cast<int>(extents[0]), right = static_cast<int>(extents[1]);
        const int top = static_cast<int>(extents[2]), bottom = static_cast<int>(extents[3]);
        const auto clientIn = [&](const Rect& outer) {
            return Rect{outer.x + left, outer.y + top, outer.width - left - right,
                        outer.height - top - bottom};
        };

        QProcessEnvironment env;
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("XDG_STATE_HOME"), home.filePath(QStringLiteral("state")));
        QProcess* agent = session.startProcess(QStringLiteral(PANEFORGE_AGENT), {}, env);
        QString output;
        if (!X11TestSession::waitUntil(
                [&] {
                    agent->waitForReadyRead(5);
                    output += QString::fromUtf8(agent->readAllStandardError());
                    return output.contains(QStringLiteral("ready in"));
                },
                std::chrono::seconds(20)) ||
            !output.contains(QStringLiteral("event tap installed"))) {
            std::fprintf(stderr, "the agent did not start:\n%s\n", qPrintable(output));
            return 1;
        }
        const qint64 agentPid = agent->processId();
        const qint64 xPid = session.serverProcessId();
        desk.drain(300ms);
        // The times of the agent's log lines that contain `marker`.
        const auto logLines = [&](const QString& marker) {
            QList<QDateTime> times;
            QFile log(home.filePath(QStringLiteral("state/Paneforge/Paneforge.log")));
            if (!log.open(QIODevice::ReadOnly)) {
                return times;
            }
            for (const QString& line : QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'))) {
                if (line.contains(marker)) {
                    times << QDateTime::fromString(line.mid(1, 23),
                                                   QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
                }
            }
            return times;
        };
        const auto fail = [&](const char* what) {
            QFile log(home.filePath(QStringLiteral("state/Paneforge/Paneforge.log")));
            const QByteArray text = log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
            std::fprintf(stderr, "%s; the agent's log:\n%s\n", what, text.right(4000).constData());
            return 1;
        };

        // Per-event cost: a drag with the combination held over free desktop, so the window
        // manager moves nothing and the X server's time is the agent's requests and its overlay.
        // Each burst is sent at once and timed to the log line of a modifier change queued
        // behind it; a key that is no modifier ends each motion's drag event, so that the agent
        // handles every one of them instead of coalescing the burst.
        desk.moveTo(1500, 800);
        desk.button(true);
        desk.moveBy(4, 4);
        desk.key(desk.super(), true);
        if (!desk.waitForOverlay()) {
            return fail("the agent showed no zones");
        }
        waitQuiet({agentPid, xPid});
        const auto costOf = [&](int count, const QString& marker, int markers,
                                const auto& step) -> std::optional<Cost> {
            const int before = logLines(marker).size();
            const double agentBefore = cpuNanos(agentPid);
            const double serverBefore = cpuNanos(xPid);
            const QDateTime started = QDateTime::currentDateTime();
            for (int i = 0; i < count; ++i) {
                step(i);
            }
            QList<QDateTime> seen;
            if (!X11TestSession::waitUntil(
                    [&] { return (seen = logLines(marker)).size() >= before + markers; },
                    std::chrono::seconds(120))) {
                return std::nullopt;
            }
            waitQuiet({agentPid, xPid});
            return Cost{static_cast<double>(started.msecsTo(seen.back())) * 1000.0 / count,
                        (cpuNanos(agentPid) - agentBefore) / count / 1000.0,
                        (cpuNanos(xPid) - serverBefore) / count / 1000.0};
        };
        const auto drag = costOf(kDragEvents, QStringLiteral("mode=multi"), 1, [&](int i) {
            desk.moveBy(i % 2 ? 3 : -3, i % 2 ? 1 : -1);
            desk.key(desk.plainKey(), i % 2 == 0);
            if (i == kDragEvents - 1) {
                desk.key(desk.shift(), true);
            }
        });
        const auto modifier =
            costOf(kModifierChanges, QStringLiteral("updateOverlayState match"), kModifierChanges,
                   [&](int i) { desk.key(desk.shift(), i % 2 != 0); });
        if (!drag || !modifier) {
            return fail("the agent did not handle every event");
        }
        desk.button(false);
        desk.key(desk.shift(), false);
        desk.key(desk.super(), false);
        waitQuiet({agentPid, xPid});

        // Release to frame: the window dragged by its title bar into a zone and let go there.
        const Rect start{700, 400, 400, 300};
        const Rect zones[] = {{965, 10, 945, 525}, {965, 545, 945, 525}, {10, 545, 945, 525}};
        std::vector<double> windowManager;
        std::vector<double> releaseToFrame;
        int missed = 0;
        for (int run = 0; run < kReleases; ++run) {
            // Back to a free frame of its own; the window manager's answer to that request is
            // the floor under any snap.
            const auto sent = Clock::now();
            desk.moveResize(target, Rect{start.x - left, start.y - top, 0, 0}, start);
            const auto placed = desk.waitForClientAt(target, start);
            if (!placed) {
                std::fprintf(stderr, "the window manager did not place the window\n");
                return 1;
            }
            windowManager.push_back(
                std::chrono::duration<double, std::milli>(*placed - sent).count());
            desk.drain(30ms);

            const Rect zone = zones[run % 3];
            const int grabX = start.x + start.width / 2;
            const int grabY = start.y - top / 2;
            desk.moveTo(grabX, grabY);
            desk.button(true);
            desk.moveBy(4, 4);
            desk.drain(20ms);
            desk.key(desk.super(), true);
            if (!desk.waitForOverlay()) {
                return fail("the agent showed no zones for a window");
            }
            const int dx = zone.x + zone.width / 2 - grabX - 4;
            const int dy = zone.y + zone.height / 2 - grabY - 4;
            for (int step = 1; step <= 4; ++step) {
                desk.moveBy(dx / 4, dy / 4);
                std::this_thread::sleep_for(5ms);
            }
            waitQuiet({agentPid, xPid});
            desk.drain(20ms);

            const auto released = Clock::now();
            desk.button(false);
            const auto atTarget = desk.waitForClientAt(target, clientIn(zone));
            desk.key(desk.super(), false);
            if (atTarget) {
                releaseToFrame.push_back(
                    std::chrono::duration<double, std::milli>(*atTarget - released).count());
            } else {
                ++missed;
            }
            // The agent applies the frame twice more and checks it; let that pass.
            desk.drain(200ms);
            waitQuiet({agentPid, xPid});
        }

        const Stats wm = stats(windowManager);
        const Stats release = stats(releaseToFrame);
        std::printf("drag event, %d windows          wall %8.1f us   agent CPU %8.1f us   X server "
                    "CPU %8.1f us   (%d events)\n",
                    kClients, drag->wallMicros, drag->agentMicros, drag->serverMicros, kDragEvents);
        std::printf("modifier change, %d windows     wall %8.1f us   agent CPU %8.1f us   X server "
                    "CPU %8.1f us   (%d changes)\n",
                    kClients, modifier->wallMicros, modifier->agentMicros, modifier->serverMicros,
                    kModifierChanges);
        std::printf("window manager answers _NET_MOVERESIZE_WINDOW    median %6.2f ms   p99 %6.2f "
                    "ms   (%zu requests)\n",
                    wm.median, wm.p99, windowManager.size());
        std::printf("button release to frame at target (%d windows)   median %6.2f ms   p99 %6.2f "
                    "ms   (%zu snaps, %d missed)\n",
                    kClients, release.median, release.p99, releaseToFrame.size(), missed);
        agent->terminate();
        agent->waitForFinished(5000);
        return 0;
    });
}
