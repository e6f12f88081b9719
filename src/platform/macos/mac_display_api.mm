#include "platform/macos/mac_display_api.h"

#include "platform/macos/cf_ref.h"

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>
#include <IOKit/IOKitLib.h>
#include <IOKit/graphics/IOGraphicsLib.h>

namespace paneforge {

namespace {

DesktopRect fromNSRect(NSRect rect) {
    return DesktopRect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

// An integer registry property, -1 when missing or not a number.
std::optional<std::int64_t> registryNumber(io_service_t service, CFStringRef key) {
    // IOKitLib.h: IORegistryEntryCreateCFProperty(entry, key, allocator, options)
    const CFRef<CFTypeRef> value(
        IORegistryEntryCreateCFProperty(service, key, kCFAllocatorDefault, 0));
    std::int64_t number = 0;
    if (value && CFGetTypeID(value.get()) == CFNumberGetTypeID() &&
        CFNumberGetValue(static_cast<CFNumberRef>(value.get()), kCFNumberSInt64Type, &number)) {
        return number;
    }
    return std::nullopt;
}

} // namespace

MacDisplayApi::~MacDisplayApi() {
    releaseServices();
}

void MacDisplayApi::releaseServices() {
    for (const auto service : services_) {
        IOObjectRelease(service);
    }
    services_.clear();
}

std::pair<std::int32_t, std::uint32_t> MacDisplayApi::activeDisplayCount() {
    uint32_t count = 0;
    // CGDisplayConfiguration.h: CGGetActiveDisplayList(maxDisplays, activeDisplays, displayCount)
    const CGError error = CGGetActiveDisplayList(0, nullptr, &count);
    return {static_cast<std::int32_t>(error), count};
}

std::pair<std::int32_t, std::vector<std::uint32_t>>
MacDisplayApi::activeDisplayList(std::uint32_t capacity) {
    std::vector<CGDirectDisplayID> ids(capacity, 0);
    uint32_t count = 0;
    const CGError error = CGGetActiveDisplayList(capacity, ids.data(), &count);
    ids.resize(std::min<std::size_t>(count, ids.size()));
    return {static_cast<std::int32_t>(error), std::vector<std::uint32_t>(ids.begin(), ids.end())};
}

std::uint32_t MacDisplayApi::vendorNumber(std::uint32_t displayId) {
    return CGDisplayVendorNumber(displayId);
}
std::uint32_t MacDisplayApi::modelNumber(std::uint32_t displayId) {
    return CGDisplayModelNumber(displayId);
}
std::uint32_t MacDisplayApi::serialNumber(std::uint32_t displayId) {
    return CGDisplaySerialNumber(displayId);
}

DesktopRect MacDisplayApi::bounds(std::uint32_t displayId) {
    const CGRect rect = CGDisplayBounds(displayId);
    return DesktopRect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

bool MacDisplayApi::isBuiltin(std::uint32_t displayId) {
    return CGDisplayIsBuiltin(displayId);
}

std::vector<PlatformScreen> MacDisplayApi::screens() {
    std::vector<PlatformScreen> result;
    for (NSScreen* screen in [NSScreen screens]) {
        PlatformScreen entry;
        id number = screen.deviceDescription[@"NSScreenNumber"];
        if ([number isKindOfClass:[NSNumber class]]) {
            entry.number = [static_cast<NSNumber*>(number) unsignedIntValue];
        }
        entry.frame = fromNSRect(screen.frame);
        entry.visibleFrame = fromNSRect(screen.visibleFrame);
        entry.backingScaleFactor = screen.backingScaleFactor;
        if (@available(macOS 10.15, *)) {
            entry.localizedName = QString::fromNSString(screen.localizedName);
        }
        result.push_back(entry);
    }
    return result;
}

std::optional<std::vector<RegistryDisplay>> MacDisplayApi::registryDisplays() {
    releaseServices();
    io_iterator_t iterator = 0;
    // IOKitLib.h: IOServiceGetMatchingServices consumes the matching dictionary.
    if (IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching("IODisplayConnect"),
                                     &iterator) != KERN_SUCCESS) {
        return std::nullopt;
    }
    std::vector<RegistryDisplay> displays;
    while (io_service_t service = IOIteratorNext(iterator)) {
        services_.push_back(service);
        displays.push_back({service, registryNumber(service, CFSTR("DisplayVendorID")).value_or(-1),
                            registryNumber(service, CFSTR("DisplayProductID")).value_or(-1),
                            registryNumber(service, CFSTR("DisplaySerialNumber"))});
    }
    IOObjectRelease(iterator);
    return displays;
}

std::optional<LocalizedNames> MacDisplayApi::productNames(std::uint64_t handle) {
    // IOGraphicsLib.h: IODisplayCreateInfoDictionary(framebuffer, options), here with
    // kIODisplayOnlyPreferredName (512).
    const CFRef<CFDictionaryRef> info(IODisplayCreateInfoDictionary(
        static_cast<io_service_t>(handle), kIODisplayOnlyPreferredName));
    if (!info) {
        return std::nullopt;
    }
    std::optional<LocalizedNames> names;
    CFTypeRef value = CFDictionaryGetValue(info.get(), CFSTR(kDisplayProductName));
    if (value && CFGetTypeID(value) == CFDictionaryGetTypeID()) {
        names = LocalizedNames{};
        NSDictionary* dictionary = (__bridge NSDictionary*)value;
        for (id key in dictionary) {
            id name = dictionary[key];
            if ([key isKindOfClass:[NSString class]] && [name isKindOfClass:[NSString class]]) {
                names->emplace_back(QString::fromNSString(key), QString::fromNSString(name));
            }
        }
    }
    return names;
}

QString MacDisplayApi::currentLocaleIdentifier() {
    return QString::fromNSString([NSLocale currentLocale].localeIdentifier);
}

DesktopPoint MacDisplayApi::mouseLocation() {
    const NSPoint point = [NSEvent mouseLocation];
    return {point.x, point.y};
}

} // namespace paneforge
