#include "platform/macos/mac_accessibility_api.h"

#include "platform/macos/cf_ref.h"

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>

namespace paneforge {

namespace {

// Owns one retained AXUIElementRef.
class MacElement final : public AccessibilityElement {
public:
    explicit MacElement(AXUIElementRef element)
        : element_(element) {} // takes ownership
    AXUIElementRef ref() const { return element_.get(); }

private:
    CFRef<AXUIElementRef> element_;
};

AXElementRef adopt(AXUIElementRef element) {
    return element ? std::make_shared<const MacElement>(element) : nullptr;
}

AXElementRef retainAndWrap(CFTypeRef element) {
    return adopt(static_cast<AXUIElementRef>(const_cast<void*>(CFRetain(element))));
}

AXUIElementRef refOf(const AXElementRef& element) {
    const auto* mac = dynamic_cast<const MacElement*>(element.get());
    return mac ? mac->ref() : nullptr;
}

CFStringRef cfString(const QString& text) {
    return text.toCFString();
}

// Converts a copied attribute value (owned by the caller) into an AXValue.
AXValue convert(CFTypeRef value) {
    if (!value) {
        return std::monostate{};
    }
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID()) {
        return QString::fromCFString(static_cast<CFStringRef>(value));
    }
    if (type == CFBooleanGetTypeID()) {
        return static_cast<bool>(CFBooleanGetValue(static_cast<CFBooleanRef>(value)));
    }
    if (type == CFNumberGetTypeID()) {
        double number = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &number);
        return number;
    }
    if (type == AXUIElementGetTypeID()) {
        return retainAndWrap(value);
    }
    if (type == AXValueGetTypeID()) {
        // AXValue.h: AXValueGetType, AXValueGetValue(value, type, pointer) -> Boolean
        const auto axValue = static_cast<AXValueRef>(value);
        if (AXValueGetType(axValue) == kAXValueTypeCGPoint) {
            CGPoint point{};
            if (AXValueGetValue(axValue, kAXValueTypeCGPoint, &point)) {
                return DesktopPoint{point.x, point.y};
            }
        } else if (AXValueGetType(axValue) == kAXValueTypeCGSize) {
            CGSize size{};
            if (AXValueGetValue(axValue, kAXValueTypeCGSize, &size)) {
                return DesktopSize{size.width, size.height};
            }
        }
        return AXOther{};
    }
    if (type == CFArrayGetTypeID()) {
        const auto array = static_cast<CFArrayRef>(value);
        std::vector<AXElementRef> elements;
        for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
            const CFTypeRef item = CFArrayGetValueAtIndex(array, i);
            elements.push_back(item && CFGetTypeID(item) == AXUIElementGetTypeID()
                                   ? retainAndWrap(item)
                                   : nullptr);
        }
        return elements;
    }
    return AXOther{};
}

} // namespace

bool MacAccessibilityApi::isProcessTrusted(bool prompt) {
    // AXUIElement.h: AXIsProcessTrustedWithOptions(CFDictionaryRef options), with the key
    // kAXTrustedCheckOptionPrompt and a CFBoolean value.
    const void* keys[] = {kAXTrustedCheckOptionPrompt};
    const void* values[] = {prompt ? kCFBooleanTrue : kCFBooleanFalse};
    const CFRef<CFDictionaryRef> options(CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1,
                                                            &kCFTypeDictionaryKeyCallBacks,
                                                            &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get());
}

AXElementRef MacAccessibilityApi::systemWideElement() {
    return adopt(AXUIElementCreateSystemWide());
}

AXResult MacAccessibilityApi::elementAtPosition(float x, float y) {
    const CFRef<AXUIElementRef> systemWide(AXUIElementCreateSystemWide());
    CFRef<AXUIElementRef> element;
    // AXUIElement.h: AXUIElementCopyElementAtPosition(AXUIElementRef, float x, float y,
    // AXUIElementRef*)
    const AXError error = AXUIElementCopyElementAtPosition(systemWide.get(), x, y, element.out());
    if (error != kAXErrorSuccess) {
        return {static_cast<std::int32_t>(error), std::monostate{}};
    }
    return {ax_error::kSuccess, adopt(element.release())};
}

AXResult MacAccessibilityApi::copyAttribute(const AXElementRef& element, const QString& name) {
    AXUIElementRef ref = refOf(element);
    if (!ref) {
        return {ax_error::kFailure, std::monostate{}};
    }
    const CFRef<CFStringRef> attribute(cfString(name));
    CFRef<CFTypeRef> value;
    const AXError error = AXUIElementCopyAttributeValue(ref, attribute.get(), value.out());
    AXResult result{static_cast<std::int32_t>(error), std::monostate{}};
    if (error == kAXErrorSuccess) {
        result.value = convert(value.get());
    }
    return result;
}

std::int32_t MacAccessibilityApi::setAttribute(const AXElementRef& element, const QString& name,
                                               const AXValue& value) {
    AXUIElementRef ref = refOf(element);
    if (!ref) {
        return ax_error::kFailure;
    }
    CFRef<CFTypeRef> cfValue;
    if (const auto* point = std::get_if<DesktopPoint>(&value)) {
        const CGPoint cgPoint = CGPointMake(point->x, point->y);
        cfValue = CFRef<CFTypeRef>(AXValueCreate(kAXValueTypeCGPoint, &cgPoint));
    } else if (const auto* size = std::get_if<DesktopSize>(&value)) {
        const CGSize cgSize = CGSizeMake(size->width, size->height);
        cfValue = CFRef<CFTypeRef>(AXValueCreate(kAXValueTypeCGSize, &cgSize));
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        cfValue = CFRef<CFTypeRef>(CFRetain(*flag ? kCFBooleanTrue : kCFBooleanFalse));
    }
    if (!cfValue) {
        return ax_error::kFailure; // the value could not be created
    }
    const CFRef<CFStringRef> attribute(cfString(name));
    return static_cast<std::int32_t>(
        AXUIElementSetAttributeValue(ref, attribute.get(), cfValue.get()));
}

std::int32_t MacAccessibilityApi::processId(const AXElementRef& element) {
    AXUIElementRef ref = refOf(element);
    pid_t pid = 0;
    if (!ref || AXUIElementGetPid(ref, &pid) != kAXErrorSuccess) {
        return 0;
    }
    return static_cast<std::int32_t>(pid);
}

AXElementRef MacAccessibilityApi::applicationElement(std::int32_t processId) {
    return adopt(AXUIElementCreateApplication(static_cast<pid_t>(processId)));
}

bool MacAccessibilityApi::equal(const AXElementRef& a, const AXElementRef& b) {
    AXUIElementRef x = refOf(a);
    AXUIElementRef y = refOf(b);
    return x && y && CFEqual(x, y);
}

void MacAccessibilityApi::systemLog(const QString& message) {
    NSLog(@"%@", message.toNSString());
}

double MacAccessibilityApi::primaryMaxY() {
    NSArray<NSScreen*>* screens = [NSScreen screens];
    return screens.count == 0 ? 0.0 : NSMaxY(screens[0].frame);
}

} // namespace paneforge
