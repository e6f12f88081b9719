#pragma once

#include "platform/macos/accessibility_api.h"

namespace paneforge {

// The accessibility calls of ApplicationServices (AXUIElement.h, AXValue.h) behind
// AccessibilityApi. Each method is one or two platform calls; the logic lives in
// AccessibilityService.
class MacAccessibilityApi final : public AccessibilityApi {
public:
    bool isProcessTrusted(bool prompt) override;
    AXElementRef systemWideElement() override;
    AXResult elementAtPosition(float x, float y) override;
    AXResult copyAttribute(const AXElementRef& element, const QString& name) override;
    std::int32_t setAttribute(const AXElementRef& element, const QString& name,
                              const AXValue& value) override;
    std::int32_t processId(const AXElementRef& element) override;
    AXElementRef applicationElement(std::int32_t processId) override;
    bool equal(const AXElementRef& a, const AXElementRef& b) override;
    void systemLog(const QString& message) override;
    double primaryMaxY() override;
};

} // namespace paneforge
