#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <utility>

namespace paneforge {

// Owns one Core Foundation reference of the "Create"/"Copy" rule and releases it once.
template <typename T> class CFRef {
public:
    CFRef() = default;
    // Takes over a reference the caller owns (from a Create or Copy function); null is allowed.
    explicit CFRef(T ref)
        : ref_(ref) {}
    ~CFRef() { reset(); }
    CFRef(const CFRef&) = delete;
    CFRef& operator=(const CFRef&) = delete;
    CFRef(CFRef&& other) noexcept
        : ref_(std::exchange(other.ref_, nullptr)) {}
    CFRef& operator=(CFRef&& other) noexcept {
        if (this != &other) {
            reset();
            ref_ = std::exchange(other.ref_, nullptr);
        }
        return *this;
    }

    T get() const { return ref_; }
    explicit operator bool() const { return ref_ != nullptr; }
    // For a Copy function's out parameter: releases what is held and hands out the slot.
    T* out() {
        reset();
        return &ref_;
    }
    // Gives the reference up to a new owner.
    T release() { return std::exchange(ref_, nullptr); }
    void reset() {
        if (ref_) {
            CFRelease(ref_);
            ref_ = nullptr;
        }
    }

private:
    T ref_ = nullptr;
};

} // namespace paneforge
