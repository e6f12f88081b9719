#include "platform/macos/accessibility_service.h"

#include "core/diagnostics/snap_diagnostic_formatter.h"
#include "core/policies/frame_apply_policy.h"

namespace paneforge {

namespace {

template <typename T> const T* as(const AXResult& result) {
    return result.error == ax_error::kSuccess ? std::get_if<T>(&result.value) : nullptr;
}

QString orNil(const std::optional<QString>& text) {
    return text ? *text : QStringLiteral("nil");
}

} // namespace

AccessibilityService::AccessibilityService(AccessibilityApi& api, DiagnosticLog log,
                                           CoordinateTransformer transformer)
    : api_(api)
    , log_(std::move(log))
    , transformer_(transformer) {}

AXElementRef AccessibilityService::asElement(const WindowRef& window) {
    return std::dynamic_pointer_cast<const AccessibilityElement>(window);
}

bool AccessibilityService::isTrusted() {
    if (api_.isProcessTrusted(false)) {
        return true;
    }
    // A working accessibility read counts as trust, whatever the trust query says.
    return api_.copyAttribute(api_.systemWideElement(), QStringLiteral("AXFocusedApplication"))
               .error == ax_error::kSuccess;
}

void AccessibilityService::requestTrustPrompt() {
    const bool trusted = api_.isProcessTrusted(true);
    api_.systemLog(QStringLiteral("AccessibilityService.requestTrustPrompt: trusted=") +
                   (trusted ? QStringLiteral("true") : QStringLiteral("false")));
}

std::optional<QString> AccessibilityService::copyString(const AXElementRef& element,
                                                        const QString& name) {
    if (!element) {
        return std::nullopt;
    }
    const AXResult result = api_.copyAttribute(element, name);
    const QString* text = as<QString>(result);
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<DesktopPoint> AccessibilityService::getPointAttribute(const AXElementRef& element,
                                                                    const QString& name) {
    const AXResult result = api_.copyAttribute(element, name);
    const DesktopPoint* point = as<DesktopPoint>(result);
    return point ? std::optional(*point) : std::nullopt;
}

std::optional<DesktopSize> AccessibilityService::getSizeAttribute(const AXElementRef& element,
                                                                  const QString& name) {
    const AXResult result = api_.copyAttribute(element, name);
    const DesktopSize* size = as<DesktopSize>(result);
    return size ? std::optional(*size) : std::nullopt;
}

DesktopPoint AccessibilityService::convertToCocoaOrigin(DesktopPoint origin, DesktopSize size) {
    return transformer_.toCocoaOrigin(origin, size, api_.primaryMaxY());
}

DesktopPoint AccessibilityService::convertToAccessibilityOrigin(const DesktopRect& frame) {
    return transformer_.toAccessibilityOrigin(frame, api_.primaryMaxY());
}

std::optional<DesktopRect> AccessibilityService::cocoaFrame(const AXElementRef& element) {
    if (!element) {
        return std::nullopt;
    }
    const auto position = getPointAttribute(element, QStringLiteral("AXPosition"));
    const auto size = getSizeAttribute(element, QStringLiteral("AXSize"));
    if (!position || !size) {
        return std::nullopt;
    }
    return DesktopRect(convertToCocoaOrigin(*position, *size), *size);
}

AXElementRef AccessibilityService::walkForWindow(AXElementRef current, bool byRole) {
    for (int tested = 0; tested < kWalkLimit && current; ++tested) {
        if (byRole) {
            if (copyString(current, QStringLiteral("AXRole")) == WindowRolePolicy::windowRole) {
                return current;
            }
        } else {
            const AXResult window = api_.copyAttribute(current, QStringLiteral("AXWindow"));
            if (const AXElementRef* found = as<AXElementRef>(window); found && *found) {
                return *found;
            }
        }
        const AXResult parent = api_.copyAttribute(current, QStringLiteral("AXParent"));
        const AXElementRef* next = as<AXElementRef>(parent);
        if (!next) {
            return nullptr;
        }
        current = *next;
    }
    return nullptr;
}

AXElementRef AccessibilityService::applicationElementFor(const AXElementRef& element) {
    if (WindowRolePolicy::isApplication(
            copyString(element, QStringLiteral("AXRole")).value_or(QString()))) {
        return element;
    }
    const std::int32_t pid = api_.processId(element);
    if (pid == 0) {
        return element;
    }
    const AXElementRef application = api_.applicationElement(pid);
    return application ? application : element;
}

std::vector<AXElementRef> AccessibilityService::copyWindows(const AXElementRef& application) {
    const AXResult result = api_.copyAttribute(application, QStringLiteral("AXWindows"));
    std::vector<AXElementRef> windows;
    if (const auto* list = as<std::vector<AXElementRef>>(result)) {
        for (const auto& window : *list) {
            if (window) {
                windows.push_back(window);
            }
        }
    }
    return windows;
}

AXElementRef AccessibilityService::pickWindow(const std::vector<AXElementRef>& windows,
                                              const AXElementRef& focused, DesktopPoint point) {
    std::vector<std::optional<DesktopRect>> frames;
    std::optional<int> focusedIndex;
    for (size_t i = 0; i < windows.size(); ++i) {
        frames.push_back(cocoaFrame(windows[i]));
        if (!focusedIndex && focused && api_.equal(windows[i], focused)) {
            focusedIndex = static_cast<int>(i);
        }
    }
    const auto index = WindowCandidatePicker::pickIndex(point, frames, focusedIndex);
    return index ? windows[static_cast<size_t>(*index)] : focused;
}

AXElementRef AccessibilityService::getWindowUnderCursor(DesktopPoint point) {
    const DesktopPoint axPoint = transformer_.toAccessibilityPoint(point, api_.primaryMaxY());
    const AXResult hit =
        api_.elementAtPosition(static_cast<float>(axPoint.x), static_cast<float>(axPoint.y));
    const AXElementRef* element = std::get_if<AXElementRef>(&hit.value);
    if (hit.error != ax_error::kSuccess || !element || !*element) {
        log_(QStringLiteral("AccessibilityService.copyElementAt failed ax=") +
             SnapDiagnosticFormatter::formatPoint(axPoint) + QStringLiteral(" error=") +
             QString::number(hit.error));
        return nullptr;
    }
    if (auto window = walkForWindow(*element, true)) {
        return window;
    }
    if (auto window = walkForWindow(*element, false)) {
        return window;
    }
    const AXElementRef application = applicationElementFor(*element);
    const auto windows = copyWindows(application);
    const AXResult focusedResult =
        api_.copyAttribute(application, QStringLiteral("AXFocusedWindow"));
    const AXElementRef* focused = as<AXElementRef>(focusedResult);
    const AXElementRef picked = pickWindow(windows, focused ? *focused : nullptr, point);
    log_(QStringLiteral("AccessibilityService.resolveWindow source=application ") +
         (picked ? describeWindow(picked) : QStringLiteral("nil")));
    return picked;
}

WindowRef AccessibilityService::focusedWindow() {
    const AXResult application =
        api_.copyAttribute(api_.systemWideElement(), QStringLiteral("AXFocusedApplication"));
    const AXElementRef* app = as<AXElementRef>(application);
    if (!app || !*app) {
        return nullptr;
    }
    const AXResult window = api_.copyAttribute(*app, QStringLiteral("AXFocusedWindow"));
    const AXElementRef* found = as<AXElementRef>(window);
    return found ? *found : nullptr;
}

std::optional<DesktopRect> AccessibilityService::frame(const WindowRef& window) {
    return cocoaFrame(asElement(window));
}

bool AccessibilityService::isStandardWindow(const WindowRef& window) {
    const auto role = copyString(asElement(window), QStringLiteral("AXRole"));
    return role && WindowRolePolicy::isMovableWindow(*role);
}

bool AccessibilityService::sameWindow(const WindowRef& a, const WindowRef& b) {
    const auto x = asElement(a);
    const auto y = asElement(b);
    return x && y && api_.equal(x, y);
}

std::optional<bool> AccessibilityService::disableEnhancedUserInterface(const AXElementRef& window) {
    const std::int32_t pid = api_.processId(window);
    const AXElementRef application = pid == 0 ? nullptr : api_.applicationElement(pid);
    if (!application) {
        return std::nullopt;
    }
    std::optional<bool> previous;
    const AXResult current = api_.copyAttribute(application, enhancedUserInterfaceKey);
    if (const bool* flag = as<bool>(current)) {
        previous = *flag;
    } else if (const double* number = as<double>(current)) {
        previous = *number != 0.0;
    }
    // Written whether or not the read worked: with it on, some applications animate the move
    // and end up elsewhere.
    api_.setAttribute(application, enhancedUserInterfaceKey, false);
    return previous;
}

std::int32_t AccessibilityService::writePoint(const AXElementRef& window, DesktopPoint origin) {
    return api_.setAttribute(window, QStringLiteral("AXPosition"), origin);
}

void AccessibilityService::setFrame(const WindowRef& windowRef, const DesktopRect& frame) {
    const AXElementRef window = asElement(windowRef);
    if (!window) {
        return;
    }
    const std::optional<bool> previous = disableEnhancedUserInterface(window);

    const DesktopPoint axOrigin = convertToAccessibilityOrigin(frame);
    // Position, size, position: some applications clamp a size against the old position.
    writePoint(window, axOrigin);
    const std::int32_t sizeError =
        api_.setAttribute(window, QStringLiteral("AXSize"), frame.size());
    writePoint(window, axOrigin);
    std::int32_t positionError = ax_error::kSuccess;
    if (FrameApplyPolicy::originNeedsRetry(frame, cocoaFrame(window),
                                           FrameApplyPolicy::originTolerance)) {
        positionError = writePoint(window, axOrigin);
    }
    const auto after = cocoaFrame(window);
    log_(QStringLiteral("AccessibilityService.setFrame requested=") +
         SnapDiagnosticFormatter::formatRect(frame) + QStringLiteral(" axOrigin=") +
         SnapDiagnosticFormatter::formatPoint(axOrigin) + QStringLiteral(" primaryMaxY=") +
         SnapDiagnosticFormatter::formatDouble(api_.primaryMaxY()) + QStringLiteral(" posError=") +
         QString::number(positionError) + QStringLiteral(" sizeError=") +
         QString::number(sizeError) + QStringLiteral(" after=") +
         (after ? SnapDiagnosticFormatter::formatRect(*after) : QStringLiteral("nil")) +
         QLatin1Char(' ') + describeWindow(window));

    // Put the switch back only when its old state is known; otherwise it stays off.
    if (previous) {
        const std::int32_t pid = api_.processId(window);
        if (const AXElementRef application = pid == 0 ? nullptr : api_.applicationElement(pid)) {
            api_.setAttribute(application, enhancedUserInterfaceKey, *previous);
        }
    }
}

QString AccessibilityService::describeWindow(const WindowRef& windowRef) {
    const AXElementRef window = asElement(windowRef);
    if (!window) {
        return QStringLiteral("pid=nil role=nil subrole=nil title=nil cocoaFrame=nil");
    }
    const std::int32_t pid = api_.processId(window);
    const auto frame = cocoaFrame(window);
    return QStringLiteral("pid=") + (pid == 0 ? QStringLiteral("nil") : QString::number(pid)) +
           QStringLiteral(" role=") + orNil(copyString(window, QStringLiteral("AXRole"))) +
           QStringLiteral(" subrole=") + orNil(copyString(window, QStringLiteral("AXSubrole"))) +
           QStringLiteral(" title=") + orNil(copyString(window, QStringLiteral("AXTitle"))) +
           QStringLiteral(" cocoaFrame=") +
           (frame ? SnapDiagnosticFormatter::formatRect(*frame) : QStringLiteral("nil"));
}

} // namespace paneforge
