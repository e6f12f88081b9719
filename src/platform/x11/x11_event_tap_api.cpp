#include "platform/x11/x11_event_tap_api.h"

#include "core/logger_factory.h"
#include "platform/x11/x11_desktop_space.h"
#include "platform/x11/x11_modifier_bits.h"

#include <QSocketNotifier>
#include <cstdlib>
#include <memory>
#include <optional>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

namespace paneforge {

namespace {

constexpr std::uint32_t kLeftButton = 1;

template <typename T> using XcbReply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T> XcbReply<T> adopt(T* reply) {
    return XcbReply<T>(reply, &std::free);
}

bool wants(std::uint64_t mask, std::uint32_t type) {
    return type < 64 && (mask & (std::uint64_t{1} << type)) != 0;
}

class X11EventTap final : public EventTapHandle {
public:
    X11EventTap(xcb_connection_t* connection, xcb_window_t root, std::uint8_t xinputOpcode,
                std::uint64_t eventMask, InputEventHandler handler)
        : connection_(connection)
        , root_(root)
        , xinputOpcode_(xinputOpcode)
        , eventMask_(eventMask)
        , handler_(std::move(handler))
        , modifierBits_(X11ModifierBits::read(connection))
        , notifier_(xcb_get_file_descriptor(connection), QSocketNotifier::Read) {
        // Start from the modifiers held now, so that only real changes are reported.
        if (const auto pointer = queryPointer()) {
            lastFlags_ = modifierBits_.toEventFlags(pointer->mask);
        }
        notifier_.setEnabled(false);
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                         [this] { processPendingEvents(); });
    }

    ~X11EventTap() override {
        notifier_.setEnabled(false);
        xcb_disconnect(connection_);
    }

    X11EventTap(const X11EventTap&) = delete;
    X11EventTap& operator=(const X11EventTap&) = delete;

    void attach() {
        notifier_.setEnabled(true);
        // Replies read while setting up may have queued events already: the socket will not
        // signal those again.
        processPendingEvents();
    }
    void detach() { notifier_.setEnabled(false); }

    void setEnabled(bool enabled) { enabled_ = enabled; }

    // Reads everything queued on the connection. Motion is coalesced: it is reported once, before
    // the next button or key event and at the end of the batch.
    void processPendingEvents() {
        bool pendingDrag = false;
        for (;;) {
            auto* raw = xcb_poll_for_event(connection_);
            if (!raw) {
                flushDrag(pendingDrag);
                // The query for that drag may have read more events off the socket; the socket
                // notifier will not signal those again.
                raw = xcb_poll_for_queued_event(connection_);
                if (!raw) {
                    break;
                }
            }
            auto event = adopt(raw);
            if ((event->response_type & 0x7f) != XCB_GE_GENERIC) {
                continue;
            }
            const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event.get());
            if (generic->extension != xinputOpcode_) {
                continue;
            }
            const auto* rawEvent =
                reinterpret_cast<const xcb_input_raw_button_press_event_t*>(event.get());
            switch (generic->event_type) {
            case XCB_INPUT_RAW_MOTION:
                pendingDrag = pendingDrag || leftButtonDown_;
                break;
            case XCB_INPUT_RAW_BUTTON_PRESS:
                if (rawEvent->detail == kLeftButton) {
                    flushDrag(pendingDrag);
                    leftButtonDown_ = true;
                    report(InputEvent::LeftMouseDown);
                }
                break;
            case XCB_INPUT_RAW_BUTTON_RELEASE:
                if (rawEvent->detail == kLeftButton) {
                    flushDrag(pendingDrag);
                    leftButtonDown_ = false;
                    report(InputEvent::LeftMouseUp);
                }
                break;
            case XCB_INPUT_RAW_KEY_PRESS:
            case XCB_INPUT_RAW_KEY_RELEASE:
                flushDrag(pendingDrag);
                reportModifierChange();
                break;
            default:
                break;
            }
        }
        if (xcb_connection_has_error(connection_) && !reportedConnectionError_) {
            reportedConnectionError_ = true;
            LoggerFactory::makeLogger(QStringLiteral("X11EventSource"))
                .error(QStringLiteral("X11EventSource: connection to the X server lost"));
        }
    }

private:
    struct Pointer {
        std::int16_t rootX;
        std::int16_t rootY;
        std::uint16_t mask;
    };

    std::optional<Pointer> queryPointer() {
        const auto reply = adopt(
            xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr));
        if (!reply) {
            return std::nullopt;
        }
        return Pointer{reply->root_x, reply->root_y, reply->mask};
    }

    void flushDrag(bool& pendingDrag) {
        if (pendingDrag) {
            pendingDrag = false;
            if (leftButtonDown_) {
                report(InputEvent::LeftMouseDragged);
            }
        }
    }

    void report(std::uint32_t type) {
        const auto pointer = queryPointer();
        if (!pointer) {
            return;
        }
        deliver(type, *pointer, modifierBits_.toEventFlags(pointer->mask));
    }

    void reportModifierChange() {
        // The pointer query already reflects the key event just read.
        const auto pointer = queryPointer();
        if (!pointer) {
            return;
        }
        const std::uint32_t flags = modifierBits_.toEventFlags(pointer->mask);
        if (flags == lastFlags_) {
            return;
        }
        lastFlags_ = flags;
        deliver(InputEvent::FlagsChanged, *pointer, flags);
    }

    void deliver(std::uint32_t type, const Pointer& pointer, std::uint32_t flags) {
        if (!enabled_ || !handler_ || !wants(eventMask_, type)) {
            return;
        }
        handler_(InputEvent{type, X11DesktopSpace::toDesktop(QPointF(pointer.rootX, pointer.rootY)),
                            flags});
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
    std::uint8_t xinputOpcode_;
    std::uint64_t eventMask_;
    InputEventHandler handler_;
    X11ModifierBits modifierBits_;
    QSocketNotifier notifier_;
    std::uint32_t lastFlags_ = 0;
    bool leftButtonDown_ = false;
    bool enabled_ = false;
    bool reportedConnectionError_ = false;
};

} // namespace

X11EventTapApi::X11EventTapApi(const char* displayName)
    : displayName_(displayName ? QByteArray(displayName) : QByteArray())
    , hasDisplayName_(displayName != nullptr)
    , logger_(LoggerFactory::makeLogger(QStringLiteral("X11EventSource"))) {}

void X11EventTapApi::systemLog(const QString& message) {
    logger_.info(message);
}

std::unique_ptr<EventTapHandle> X11EventTapApi::createTap(std::uint64_t eventMask,
                                                          InputEventHandler handler) {
    const Logger& logger = logger_;
    int screenNumber = 0;
    xcb_connection_t* connection =
        xcb_connect(hasDisplayName_ ? displayName_.constData() : nullptr, &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        logger.error(QStringLiteral("X11EventSource: cannot connect to the X server"));
        return nullptr;
    }
    const auto disconnect = [&] { xcb_disconnect(connection); };

    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present) {
        logger.error(QStringLiteral("X11EventSource: the X server has no XInput extension"));
        disconnect();
        return nullptr;
    }
    const auto version = adopt(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    if (!version || version->major_version < 2 ||
        (version->major_version == 2 && version->minor_version < 1)) {
        logger.error(
            QStringLiteral("X11EventSource: XInput 2.1 or later is required, the server has %1.%2")
                .arg(version ? version->major_version : 0)
                .arg(version ? version->minor_version : 0));
        disconnect();
        return nullptr;
    }

    const xcb_setup_t* setup = xcb_get_setup(connection);
    auto screens = xcb_setup_roots_iterator(setup);
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i) {
        xcb_screen_next(&screens);
    }
    if (screens.rem == 0) {
        logger.error(QStringLiteral("X11EventSource: no screen %1").arg(screenNumber));
        disconnect();
        return nullptr;
    }
    const xcb_window_t root = screens.data->root;

    struct {
        xcb_input_event_mask_t head;
        std::uint32_t bits;
    } mask{};
    mask.head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    mask.head.mask_len = 1;
    mask.bits = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE | XCB_INPUT_XI_EVENT_MASK_RAW_MOTION |
                XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    if (auto* error = xcb_request_check(
            connection, xcb_input_xi_select_events_checked(connection, root, 1, &mask.head))) {
        logger.error(QStringLiteral("X11EventSource: selecting raw events failed, X error %1")
                         .arg(error->error_code));
        std::free(error);
        disconnect();
        return nullptr;
    }

    return std::make_unique<X11EventTap>(connection, root, extension->major_opcode, eventMask,
                                         std::move(handler));
}

bool X11EventTapApi::addRunLoopSource(EventTapHandle& tap) {
    auto* x11Tap = dynamic_cast<X11EventTap*>(&tap);
    if (!x11Tap) {
        return false;
    }
    x11Tap->attach();
    return true;
}

void X11EventTapApi::removeRunLoopSource(EventTapHandle& tap) {
    if (auto* x11Tap = dynamic_cast<X11EventTap*>(&tap)) {
        x11Tap->detach();
    }
}

void X11EventTapApi::enableTap(EventTapHandle& tap) {
    if (auto* x11Tap = dynamic_cast<X11EventTap*>(&tap)) {
        x11Tap->setEnabled(true);
    }
}

} // namespace paneforge
