#include "platform/x11/x11_hotkey_api.h"

#include "core/input/key_code_table.h"
#include "platform/x11/xcb_xkb.h"

#include <QSocketNotifier>
#include <optional>

namespace paneforge {

namespace {
constexpr std::uint8_t kBadAccess = 10;
constexpr std::uint16_t kButtonBits = 0xff00;
} // namespace

X11HotkeyApi::X11HotkeyApi(const char* displayName)
    : logger_(LoggerFactory::makeLogger(QStringLiteral("X11HotkeyApi")))
    , client_(displayName)
    , connection_(client_.get())
    , root_(client_.root()) {
    if (!client_.isValid()) {
        logger_.error(QStringLiteral("X11HotkeyApi: cannot connect to the X server"));
        return;
    }

    // With detectable auto-repeat a held key sends presses without releases in between, so a
    // repeat can be told from a new press.
    const auto xkb = owned(xcb_xkb_use_extension_reply(
        connection_, xcb_xkb_use_extension(connection_, 1, 0), nullptr));
    if (xkb && xkb->supported) {
        owned(xcb_xkb_per_client_flags_reply(
            connection_,
            xcb_xkb_per_client_flags(connection_, XCB_XKB_ID_USE_CORE_KBD,
                                     XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                     XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0),
            nullptr));
    }

    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_),
                                                  QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { processPendingEvents(); });
}

X11HotkeyApi::~X11HotkeyApi() {
    notifier_.reset(); // the client then closes the connection, and the server drops its grabs
}

bool X11HotkeyApi::isConnected() const {
    return client_.isValid() && root_ != XCB_NONE;
}

void X11HotkeyApi::installHandler(std::function<void(std::uint32_t id)> onPressed) {
    handler_ = std::make_shared<std::function<void(std::uint32_t)>>(std::move(onPressed));
}

void X11HotkeyApi::removeHandler() {
    handler_.reset();
}

HotkeyApi::Registration X11HotkeyApi::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                     std::uint32_t, std::uint32_t id) {
    if (!isConnected()) {
        logger_.error(
            QStringLiteral("X11HotkeyApi.register: no X server connection (id=%1)").arg(id));
        return {Result::Refused, std::nullopt, QStringLiteral("no X server connection")};
    }
    const auto x11Keycode = KeyCodeTable::x11KeycodeFromMac(keyCode);
    if (!x11Keycode || *x11Keycode > 255) {
        logger_.error(
            QStringLiteral("X11HotkeyApi.register: keyCode=%1 has no key on this keyboard (id=%2)")
                .arg(keyCode)
                .arg(id));
        return {Result::Refused, std::nullopt, QStringLiteral("no such key")};
    }
    // The modifier mapping can change while running (another keyboard): read it for every grab.
    modifierBits_ = X11ModifierBits::read(connection_);

    Grab grab;
    grab.keycode = static_cast<std::uint8_t>(*x11Keycode);
    grab.modifiers = modifierBits_.toXModifiers(modifiers);
    grab.numLock = modifierBits_.numLock;
    grab.id = id;
    const std::uint16_t lock = XCB_MOD_MASK_LOCK;
    const std::uint16_t variants[] = {
        grab.modifiers, static_cast<std::uint16_t>(grab.modifiers | grab.numLock),
        static_cast<std::uint16_t>(grab.modifiers | lock),
        static_cast<std::uint16_t>(grab.modifiers | grab.numLock | lock)};

    std::vector<xcb_void_cookie_t> cookies;
    for (const auto variant : variants) {
        cookies.push_back(xcb_grab_key_checked(connection_, 0, root_, variant, grab.keycode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    std::optional<std::uint8_t> failure;
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        if (const auto error = owned(xcb_request_check(connection_, cookies[i]))) {
            failure = failure.value_or(error->error_code);
        } else {
            grab.variants.push_back(variants[i]);
        }
    }
    // Waiting for the answers may have read key events off the socket.
    processQueuedEventsLater();
    if (!failure) {
        const std::uint64_t handle = nextHandle_++;
        grabs_.emplace(handle, std::move(grab));
        return {Result::Registered, handle, {}};
    }
    // All or nothing: release the variants that did succeed.
    ungrab(grab);
    if (*failure == kBadAccess) {
        logger_.error(QStringLiteral("X11HotkeyApi.register: keyCode=%1 modifiers=%2 (X key %3, "
                                     "X modifiers 0x%4) is already grabbed by another client "
                                     "(BadAccess); hot key id=%5 not registered")
                          .arg(keyCode)
                          .arg(modifiers)
                          .arg(grab.keycode)
                          .arg(grab.modifiers, 0, 16)
                          .arg(id));
        return {Result::Taken, std::nullopt, QStringLiteral("BadAccess")};
    }
    logger_.error(QStringLiteral("X11HotkeyApi.register: key grab failed with X error %1 (id=%2)")
                      .arg(*failure)
                      .arg(id));
    return {Result::Refused, std::nullopt, QStringLiteral("X error %1").arg(*failure)};
}

void X11HotkeyApi::unregisterHotKey(std::uint64_t handle) {
    const auto it = grabs_.find(handle);
    if (it == grabs_.end()) {
        return;
    }
    ungrab(it->second);
    grabs_.erase(it);
}

void X11HotkeyApi::ungrab(const Grab& grab) {
    if (!isConnected()) {
        return;
    }
    for (const auto variant : grab.variants) {
        xcb_ungrab_key(connection_, grab.keycode, root_, variant);
    }
    xcb_flush(connection_);
}

void X11HotkeyApi::processQueuedEventsLater() {
    // The socket notifier will not signal events that are already queued: look at the queue once
    // the current work is done.
    QMetaObject::invokeMethod(
        notifier_.get(), [this] { processPendingEvents(); }, Qt::QueuedConnection);
}

void X11HotkeyApi::processPendingEvents() {
    if (!connection_) {
        return;
    }
    while (const auto event = owned(xcb_poll_for_event(connection_))) {
        const std::uint8_t type = event->response_type & 0x7f;
        if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
            const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event.get());
            handleKey(type, key->detail, key->state);
        }
    }
    if (xcb_connection_has_error(connection_) && notifier_->isEnabled()) {
        // A dead connection stays readable: stop listening rather than spin.
        logger_.error(QStringLiteral("X11HotkeyApi: connection to the X server lost"));
        notifier_->setEnabled(false);
    }
}

void X11HotkeyApi::handleKey(std::uint8_t responseType, std::uint8_t keycode, std::uint16_t state) {
    if (responseType == XCB_KEY_RELEASE) {
        keysDown_.erase(keycode);
        return;
    }
    if (!keysDown_.insert(keycode).second) {
        return; // auto-repeat of a held key
    }
    for (const auto& [handle, grab] : grabs_) {
        if (grab.keycode != keycode) {
            continue;
        }
        const auto held =
            static_cast<std::uint16_t>(state & ~(XCB_MOD_MASK_LOCK | grab.numLock | kButtonBits));
        if (held == grab.modifiers) {
            // The handler may register or unregister keys, or remove itself.
            if (const auto handler = handler_; handler && *handler) {
                (*handler)(grab.id);
            }
            return;
        }
    }
}

} // namespace paneforge
