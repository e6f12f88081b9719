#pragma once

#include "app/ports/window_service.h"
#include "core/diagnostics/diagnostic_log.h"
#include "core/geometry/coordinate_transformer.h"
#include "platform/macos/accessibility_api.h"

#include <functional>
#include <optional>

namespace paneforge {

// Other applications' windows through the platform's accessibility interface: the window under a
// point (a bounded walk up from the hit element, then the application's windows), reading frames,
// and setting a frame with the enhanced-user-interface switch off and the position retried.
class AccessibilityService final : public WindowService {
public:
    static constexpr int kWalkLimit = 10;
    inline static const QString enhancedUserInterfaceKey =
        QStringLiteral("AXEnhancedUserInterface");

    AccessibilityService(AccessibilityApi& api, DiagnosticLog log,
                         CoordinateTransformer transformer = {});

    bool isTrusted() override;
    void requestTrustPrompt() override;
    WindowRef windowUnderPoint(DesktopPoint point) override { return getWindowUnderCursor(point); }
    WindowRef focusedWindow() override;
    std::optional<DesktopRect> frame(const WindowRef& window) override;
    // An element whose "AXRole" is the window role (WindowRolePolicy).
    bool isStandardWindow(const WindowRef& window) override;
    void setFrame(const WindowRef& window, const DesktopRect& frame) override;
    QString describeWindow(const WindowRef& window) override;
    bool sameWindow(const WindowRef& a, const WindowRef& b) override;

    AXElementRef getWindowUnderCursor(DesktopPoint point);
    std::optional<DesktopPoint> getPointAttribute(const AXElementRef& element, const QString& name);
    std::optional<DesktopSize> getSizeAttribute(const AXElementRef& element, const QString& name);
    std::optional<QString> copyString(const AXElementRef& element, const QString& name);
    DesktopPoint convertToCocoaOrigin(DesktopPoint origin, DesktopSize size);
    DesktopPoint convertToAccessibilityOrigin(const DesktopRect& frame);

    static AXElementRef asElement(const WindowRef& window);

private:
    AXElementRef walkForWindow(AXElementRef start, bool byRole);
    AXElementRef applicationElementFor(const AXElementRef& element);
    std::vector<AXElementRef> copyWindows(const AXElementRef& application);
    AXElementRef pickWindow(const std::vector<AXElementRef>& windows, const AXElementRef& focused,
                            DesktopPoint point);
    std::optional<DesktopRect> cocoaFrame(const AXElementRef& element);
    std::optional<bool> disableEnhancedUserInterface(const AXElementRef& window);
    std::int32_t writePoint(const AXElementRef& window, DesktopPoint origin);

    AccessibilityApi& api_;
    DiagnosticLog log_;
    CoordinateTransformer transformer_;
};

} // namespace paneforge
