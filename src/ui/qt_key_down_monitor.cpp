#include "ui/qt_key_down_monitor.h"

#include "core/input/hotkey_definition.h"
#include "core/input/hotkey_formatter.h"
#include "core/input/key_code_table.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPointer>

namespace paneforge {

namespace {

#if !defined(Q_OS_MACOS)
// Qt reports Super as Meta on X11.
std::uint32_t maskFromQtModifiers(Qt::KeyboardModifiers modifiers) {
    std::uint32_t mask = 0;
    if (modifiers & Qt::MetaModifier) {
        mask |= modifier_bits::kCommand;
    }
    if (modifiers & Qt::AltModifier) {
        mask |= modifier_bits::kOption;
    }
    if (modifiers & Qt::ControlModifier) {
        mask |= modifier_bits::kControl;
    }
    if (modifiers & Qt::ShiftModifier) {
        mask |= modifier_bits::kShift;
    }
    return mask;
}
#endif

class KeyFilter final : public QObject {
public:
    KeyFilter(KeyDownMonitorApi::Handler handler, QObject* parent)
        : QObject(parent)
        , handler_(std::make_shared<KeyDownMonitorApi::Handler>(std::move(handler))) {}

    void disarm() { handler_.reset(); }
    bool isFiltering() const { return depth_ > 0; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || !handler_) {
            return QObject::eventFilter(watched, event);
        }
        const auto press = QtKeyDownMonitor::toKeyPress(*static_cast<QKeyEvent*>(event));
        if (!press) {
            return false;
        }
        // The handler may remove this monitor while it runs.
        const auto handler = handler_;
        ++depth_;
        const bool swallowed = (*handler)(*press);
        --depth_;
        return swallowed;
    }

private:
    std::shared_ptr<KeyDownMonitorApi::Handler> handler_;
    int depth_ = 0;
};

class InstalledMonitor final : public KeyDownMonitorApi::Monitor {
public:
    explicit InstalledMonitor(KeyDownMonitorApi::Handler handler)
        : filter_(new KeyFilter(std::move(handler), QCoreApplication::instance())) {
        if (auto* application = QCoreApplication::instance()) {
            application->installEventFilter(filter_);
        }
    }
    ~InstalledMonitor() override {
        if (filter_) {
            filter_->disarm();
            if (auto* application = QCoreApplication::instance()) {
                application->removeEventFilter(filter_);
            }
            if (filter_->isFiltering()) {
                // Inside the filter's own eventFilter(): delete once it returned (the
                // application, its parent, deletes it at the latest).
                filter_->deleteLater();
            } else {
                delete filter_.data();
            }
        }
    }
    InstalledMonitor(const InstalledMonitor&) = delete;
    InstalledMonitor& operator=(const InstalledMonitor&) = delete;

private:
    QPointer<KeyFilter> filter_;
};

} // namespace

std::unique_ptr<KeyDownMonitorApi::Monitor> QtKeyDownMonitor::addLocalMonitor(Handler handler) {
    return std::make_unique<InstalledMonitor>(std::move(handler));
}

std::optional<KeyPress> QtKeyDownMonitor::toKeyPress(const QKeyEvent& event) {
#if defined(Q_OS_MACOS)
    // NSEvent's key code and device-independent modifier flags.
    const std::optional<std::uint32_t> keyCode = event.nativeVirtualKey();
    const std::uint32_t modifiers = ModifierMapper::toCarbonModifiers(event.nativeModifiers());
#else
    const std::optional<std::uint32_t> keyCode =
        KeyCodeTable::macFromX11Keycode(event.nativeScanCode());
    const std::uint32_t modifiers = maskFromQtModifiers(event.modifiers());
#endif
    if (!keyCode || KeyCodeTable::isModifierKey(*keyCode)) {
        return std::nullopt;
    }
    return KeyPress{*keyCode, modifiers};
}

} // namespace paneforge
