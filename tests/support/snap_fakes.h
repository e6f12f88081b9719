#pragma once

#include "app/input/event_tap_manager.h"
#include "app/ports/display_services.h"
#include "app/ports/snap_overlay.h"
#include "app/ports/window_service.h"
#include "app/runtime/screen_diagnostics.h"
#include "core/diagnostics/snap_diagnostic_formatter.h"

#include <QList>
#include <QStringList>
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace fakes {

using namespace paneforge;

class Desk final : public ScreenListing, public DisplayService, public DisplayFrameService {
public:
    std::vector<ScreenInfo> screenList;
    DesktopPoint pointer;

    void addScreen(DisplayId id, const DesktopRect& frame, const DesktopRect& visibleFrame) {
        screenList.push_back(
            {QStringLiteral("Screen %1").arg(id), id, 1.0, frame, visibleFrame, frame});
    }
    static DisplayIdentifier identifierFor(DisplayId id) {
        return DisplayIdentifier(0x1000 + id, 0x2000 + id, std::int64_t{id});
    }

    std::vector<ScreenInfo> screens() const override { return screenList; }

    std::vector<DisplayId> getActiveDisplays() override {
        std::vector<DisplayId> ids;
        for (const auto& screen : screenList) {
            ids.push_back(*screen.displayId);
        }
        return ids;
    }
    std::function<DisplayIdentifier(DisplayId)> identify = &identifierFor;
    DisplayIdentifier getIdentifier(DisplayId id) override { return identify(id); }
    std::optional<QString> getDisplayName(DisplayId) override { return std::nullopt; }
    QString getDisplayTitle(DisplayId id) override { return QString::number(id); }
    std::vector<QString> getDisplaySummaries() override { return {}; }

    std::optional<DesktopRect> getFrame(DisplayId id) override {
        const auto* screen = find([id](const ScreenInfo& s) { return s.displayId == id; });
        return screen ? std::optional(screen->frame) : std::nullopt;
    }
    std::optional<DesktopRect> getVisibleFrame(DisplayId id) override {
        const auto* screen = find([id](const ScreenInfo& s) { return s.displayId == id; });
        return screen ? std::optional(screen->visibleFrame) : std::nullopt;
    }
    std::optional<DisplayId> getDisplayId(DesktopPoint point) override {
        const auto* screen = find([point](const ScreenInfo& s) { return s.frame.contains(point); });
        return screen ? screen->displayId : std::nullopt;
    }
    const ScreenInfo* find(const std::function<bool(const ScreenInfo&)>& which) const {
        const auto it = std::find_if(screenList.begin(), screenList.end(), which);
        return it == screenList.end() ? nullptr : &*it;
    }
    DesktopPoint pointerLocation() override { return pointer; }
    double primaryMaxY() override {
        return screenList.empty() ? 0.0 : screenList.front().frame.maxY();
    }
};

struct Window final : WindowElement {
    Window(int id, DesktopRect frame)
        : id(id)
        , frame(frame) {}
    int id;
    DesktopRect frame;
    bool standard = true;
};

// Windows stacked front to back, the first focused unless `focus` is off; setFrame is recorded.
class Windows final : public WindowService {
public:
    bool focus = true;
    struct SetFrameCall {
        int windowId;
        DesktopRect frame;
    };
    std::vector<std::shared_ptr<Window>> stack;
    std::vector<SetFrameCall> setFrameCalls;

    QList<DesktopRect> frames() const {
        QList<DesktopRect> frames;
        for (const auto& call : setFrameCalls) {
            frames << call.frame;
        }
        return frames;
    }
    std::shared_ptr<Window> add(int id, const DesktopRect& frame) {
        return stack.emplace_back(std::make_shared<Window>(id, frame));
    }

    bool trusted = true;
    int trustPrompts = 0;
    bool isTrusted() override { return trusted; }
    void requestTrustPrompt() override { ++trustPrompts; }
    WindowRef windowUnderPoint(DesktopPoint point) override {
        for (const auto& window : stack) {
            if (window->frame.contains(point)) {
                return window;
            }
        }
        return nullptr;
    }
    WindowRef focusedWindow() override { return focus && !stack.empty() ? stack.front() : nullptr; }
    std::optional<DesktopRect> frame(const WindowRef& window) override {
        return window ? std::optional(as(window).frame) : std::nullopt;
    }
    bool isStandardWindow(const WindowRef& window) override {
        return window && as(window).standard;
    }
    void setFrame(const WindowRef& window, const DesktopRect& frame) override {
        auto& target = const_cast<Window&>(as(window));
        target.frame = frame;
        setFrameCalls.push_back({target.id, frame});
    }
    QString describeWindow(const WindowRef& window) override {
        return QStringLiteral("window %1 cocoaFrame=%2")
            .arg(as(window).id)
            .arg(SnapDiagnosticFormatter::formatRect(as(window).frame));
    }
    bool sameWindow(const WindowRef& a, const WindowRef& b) override { return a == b; }

private:
    static const Window& as(const WindowRef& window) { return static_cast<const Window&>(*window); }
};

// What one overlay window went through; outlives the window.
struct OverlayRecord {
    DesktopRect frame;
    bool visible = false;
    bool closed = false;
    QList<DesktopRect> cellFrames;
    QList<DesktopRect> selectionFrames;
};

class Overlays final : public SnapOverlayFactory {
public:
    std::vector<std::shared_ptr<OverlayRecord>> built;

    std::unique_ptr<SnapOverlay> makeOverlay(const DesktopRect& visibleFrame) override {
        built.push_back(std::make_shared<OverlayRecord>());
        built.back()->frame = visibleFrame;
        return std::make_unique<Overlay>(built.back());
    }
    const OverlayRecord& last() const { return *built.back(); }

private:
    class Overlay final : public SnapOverlay {
    public:
        explicit Overlay(std::shared_ptr<OverlayRecord> record)
            : record_(std::move(record)) {}
        ~Overlay() override {
            record_->closed = true;
            record_->visible = false;
        }
        DesktopRect frame() const override { return record_->frame; }
        void orderFront() override { record_->visible = true; }
        void orderOut() override { record_->visible = false; }
        void update(const std::optional<GridDefinition>&, const QList<DesktopRect>& cellFrames,
                    const QList<DesktopRect>& selectionFrames) override {
            record_->cellFrames = cellFrames;
            record_->selectionFrames = selectionFrames;
        }

    private:
        std::shared_ptr<OverlayRecord> record_;
    };
};

// Keeps the handler it was given and installs unless `granted` is off; `liveTaps` counts the
// taps not yet dropped.
class EventTaps final : public EventTapApi {
public:
    bool granted = true;
    int requests = 0;
    int creations = 0;
    int liveTaps = 0;
    InputEventHandler handler;

    bool preflightListenEventAccess() override { return granted; }
    bool requestListenEventAccess() override {
        ++requests;
        return granted;
    }
    std::unique_ptr<EventTapHandle> createTap(std::uint64_t, InputEventHandler h) override {
        ++creations;
        handler = std::move(h);
        return granted ? std::make_unique<Tap>(liveTaps) : nullptr;
    }
    bool startDelivery(EventTapHandle&) override { return true; }
    void stopDelivery(EventTapHandle&) override {}
    void enableTap(EventTapHandle&) override {}
    void systemLog(const QString&) override {}

private:
    struct Tap final : EventTapHandle {
        explicit Tap(int& count)
            : live(count) {
            ++live;
        }
        ~Tap() override { --live; }
        int& live;
    };
};

} // namespace fakes
