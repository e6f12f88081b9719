#pragma once

#include "app/ports/window_service.h"
#include "core/geometry/desktop_geometry.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

namespace paneforge {

// An element of the platform's accessibility tree (a window, an application, a button, ...).
// It is a WindowElement so that the window service can hand windows out as they are.
class AccessibilityElement : public WindowElement {};
using AXElementRef = std::shared_ptr<const AccessibilityElement>;

// An attribute's value as the accessibility interface returns it. Points and sizes are the two
// wrapped value types; a number stands for any numeric value; Other is a value of another type.
struct AXOther {
    friend bool operator==(const AXOther&, const AXOther&) = default;
};
using AXValue = std::variant<std::monostate, QString, bool, double, DesktopPoint, DesktopSize,
                             AXElementRef, std::vector<AXElementRef>, AXOther>;

// Error codes of the accessibility interface; 0 is success.
namespace ax_error {
inline constexpr std::int32_t kSuccess = 0;
inline constexpr std::int32_t kFailure = -25200; // also: a value could not be created
inline constexpr std::int32_t kNoValue = -25212;
} // namespace ax_error

struct AXResult {
    std::int32_t error = ax_error::kFailure;
    AXValue value;
};

// The handful of accessibility calls the window service needs, mirrored one to one, so that its
// algorithms run against a fake element tree in tests; the macOS adapter makes the real calls.
class AccessibilityApi {
public:
    virtual ~AccessibilityApi() = default;

    virtual bool isProcessTrusted(bool prompt) = 0;
    virtual AXElementRef systemWideElement() = 0;
    // A hit test at an accessibility-space point (top-left origin, y down).
    virtual AXResult elementAtPosition(float x, float y) = 0;
    virtual AXResult copyAttribute(const AXElementRef& element, const QString& name) = 0;
    virtual std::int32_t setAttribute(const AXElementRef& element, const QString& name,
                                      const AXValue& value) = 0;
    // 0 when unknown.
    virtual std::int32_t processId(const AXElementRef& element) = 0;
    // None when it cannot be created.
    virtual AXElementRef applicationElement(std::int32_t processId) = 0;
    virtual bool equal(const AXElementRef& a, const AXElementRef& b) = 0;
    // The platform's own log (not the diagnostic file).
    virtual void systemLog(const QString& message) = 0;
    // The top edge of the first screen's frame in desktop space; 0 without screens.
    virtual double primaryMaxY() = 0;
};

} // namespace paneforge
