#include "platform/x11/x11_event_tap_api.h"

#include "core/input/hotkey_formatter.h"
#include "platform/x11/x11_desktop_space.h"
#include "platform/x11/x11_modifier_tracker.h"
#include "platform/x11/xcb_client.h"

#include <QSocketNotifier>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

namespace paneforge {

namespace {

constexpr std::uint8_t kLeftButton = 1;

// The X modifier state now: the modifiers held before a tap starts.
std::uint16_t modifierStateNow(xcb_connection_t* connection, xcb_window_t root) {
    const auto reply =
        owned(xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    return reply ? static_cast<std::uint16_t>(reply->mask & 0xff) : 0;
}

// Everything one tap owns: its connection, its socket notifier and what it remembers between
// events. Shared, so that a handler that drops the tap while it runs does not pull the reader out
// from under the loop that called it; the loop stops once the tap is closed.
class RawEventReader {
public:
    RawEventReader(XcbClient client, std::uint8_t xinputOpcode, std::uint64_t mask,
                   InputEventHandler handler, Logger logger)
        : client_(std::move(client))
        , connection_(client_.get())
        , root_(client_.root())
        , xinputOpcode_(xinputOpcode)
        , mask_(mask)
        , handler_(std::move(handler))
        , logger_(std::move(logger))
        , modifiers_(X11ModifierBits::read(connection_), modifierStateNow(connection_, root_)) {}

    ~RawEventReader() { notifier_.reset(); }

    RawEventReader(const RawEventReader&) = delete;
    RawEventReader& operator=(const RawEventReader&) = delete;

    void attach(const std::weak_ptr<RawEventReader>& self) {
        if (closed_) {
            return;
        }
        if (!notifier_) {
            notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_),
                                                          QSocketNotifier::Read);
            QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [self] {
                if (const auto reader = self.lock()) {
                    reader->processPendingEvents();
                }
            });
        }
        notifier_->setEnabled(true);
        // Replies read while setting up may have queued events already; the socket will not
        // signal those again.
        processPendingEvents();
    }

    void detach() {
        if (notifier_) {
            notifier_->setEnabled(false);
        }
    }

    void enable() {
        enabled_ = true;
        processPendingEvents();
    }

    void close() {
        closed_ = true;
        detach();
    }

    // Reads everything queued on the connection. Motion is coalesced: one drag before the next
    // button or key event and one at the end of the batch.
    void processPendingEvents() {
        bool pendingDrag = false;
        while (!closed_) {
            auto* raw = xcb_poll_for_event(connection_);
            if (!raw) {
                flushDrag(pendingDrag);
                // The pointer query for that drag may have read more events off the socket; the
                // socket notifier will not signal those again.
                raw = xcb_poll_for_queued_event(connection_);
                if (!raw) {
                    break;
                }
            }
            const auto event = owned(raw);
            const std::uint8_t responseType = event->response_type & 0x7f;
            if (responseType == XCB_MAPPING_NOTIFY) {
                // Another keyboard, xmodmap or a new layout: modifiers may sit elsewhere now. (The
                // keys already queued are read with the mapping as it is now.)
                modifiers_.setModifierBits(X11ModifierBits::read(connection_));
                continue;
            }
            if (responseType != XCB_GE_GENERIC) {
                continue;
            }
            const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event.get());
            if (generic->extension != xinputOpcode_) {
                continue;
            }
            // Every raw event shares this layout; detail is the button or the key code.
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
                if (modifiers_.keyChanged(rawEvent->detail,
                                          generic->event_type == XCB_INPUT_RAW_KEY_PRESS)) {
                    report(InputEvent::FlagsChanged);
                }
                break;
            default:
                break;
            }
        }
        if (!closed_ && xcb_connection_has_error(connection_)) {
            // A dead connection stays readable: stop listening rather than spin.
            logger_.error(QStringLiteral("X11EventTapApi: connection to the X server lost"));
            close();
        }
    }

private:
    struct Pointer {
        std::int16_t rootX;
        std::int16_t rootY;
        std::uint16_t mask;
    };

    std::optional<Pointer> queryPointer() {
        const auto reply = owned(
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

    void report(InputEvent::Type type) {
        if (const auto pointer = queryPointer()) {
            deliver(type, *pointer);
        }
    }

    void deliver(InputEvent::Type type, const Pointer& pointer) {
        const bool wanted = (mask_ & (std::uint64_t{1} << type)) != 0;
        if (!enabled_ || closed_ || !wanted || !handler_) {
            return;
        }
        const InputEvent event{type,
                               X11DesktopSpace::toDesktop(QPointF(pointer.rootX, pointer.rootY)),
                               ModifierMapper::toEventFlags(modifiers_.modifiers())};
        handler_(event);
    }

    XcbClient client_;
    xcb_connection_t* connection_;
    xcb_window_t root_;
    std::uint8_t xinputOpcode_;
    std::uint64_t mask_;
    InputEventHandler handler_;
    Logger logger_;
    // Follows the modifier keys in the event stream itself: a pointer query would tell the state
    // after the whole batch.
    X11ModifierTracker modifiers_;
    std::unique_ptr<QSocketNotifier> notifier_;
    bool leftButtonDown_ = false;
    bool enabled_ = false;
    bool closed_ = false;
};

class X11EventTap final : public EventTapHandle {
public:
    explicit X11EventTap(std::shared_ptr<RawEventReader> reader)
        : reader_(std::move(reader)) {}
    ~X11EventTap() override { reader_->close(); }
    X11EventTap(const X11EventTap&) = delete;
    X11EventTap& operator=(const X11EventTap&) = delete;

    const std::shared_ptr<RawEventReader>& reader() const { return reader_; }

private:
    std::shared_ptr<RawEventReader> reader_;
};

// A reference of the caller's own: the handler may drop the tap while the reader runs it.
std::shared_ptr<RawEventReader> readerOf(EventTapHandle& tap) {
    auto* x11Tap = dynamic_cast<X11EventTap*>(&tap);
    return x11Tap ? x11Tap->reader() : nullptr;
}

} // namespace

X11EventTapApi::X11EventTapApi(const char* displayName)
    : displayName_(displayName ? std::optional<QByteArray>(displayName) : std::nullopt)
    , logger_(LoggerFactory::makeLogger(QStringLiteral("X11EventTapApi"))) {}

void X11EventTapApi::systemLog(const QString& message) {
    logger_.info(message);
}

std::unique_ptr<EventTapHandle> X11EventTapApi::createTap(std::uint64_t mask,
                                                          InputEventHandler handler) {
    XcbClient client(displayName_ ? displayName_->constData() : nullptr);
    const auto fail = [&](const QString& message) -> std::unique_ptr<EventTapHandle> {
        logger_.error(QStringLiteral("X11EventTapApi: ") + message);
        return nullptr;
    };
    if (!client.isValid()) {
        return fail(QStringLiteral("cannot connect to the X server"));
    }
    xcb_connection_t* connection = client.get();

    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present) {
        return fail(QStringLiteral("the X server has no XInput extension"));
    }
    const auto version = owned(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    if (!version || version->major_version < 2 ||
        (version->major_version == 2 && version->minor_version < 1)) {
        return fail(QStringLiteral("XInput 2.1 or later is required, the server has %1.%2")
                        .arg(version ? version->major_version : 0)
                        .arg(version ? version->minor_version : 0));
    }

    const xcb_window_t root = client.root();
    if (root == XCB_NONE) {
        return fail(QStringLiteral("no screen %1").arg(client.screenNumber()));
    }

    // One event mask of one 32-bit word, for all master devices.
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t bits;
    } selection{};
    selection.head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    selection.head.mask_len = 1;
    selection.bits = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                     XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
                     XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS |
                     XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    if (const auto error =
            owned(xcb_request_check(connection, xcb_input_xi_select_events_checked(
                                                    connection, root, 1, &selection.head)))) {
        return fail(
            QStringLiteral("selecting raw events failed, X error %1").arg(error->error_code));
    }

    return std::make_unique<X11EventTap>(std::make_shared<RawEventReader>(
        std::move(client), extension->major_opcode, mask, std::move(handler), logger_));
}

bool X11EventTapApi::startDelivery(EventTapHandle& tap) {
    const auto reader = readerOf(tap);
    if (!reader) {
        return false;
    }
    reader->attach(reader);
    return true;
}

void X11EventTapApi::stopDelivery(EventTapHandle& tap) {
    if (const auto reader = readerOf(tap)) {
        reader->detach();
    }
}

void X11EventTapApi::enableTap(EventTapHandle& tap) {
    if (const auto reader = readerOf(tap)) {
        reader->enable();
    }
}

} // namespace paneforge
