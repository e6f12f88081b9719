#pragma once

#include <memory>
#include <utility>

namespace paneforge {

// Held by an object for its whole life. Callbacks it hands to a scheduler, a timer or another
// service are wrapped so that they hold the object weakly and do nothing once it is gone.
// Main thread only: the guard tells whether the object still exists, not whether another
// thread is destroying it.
template <typename Owner> class WeakGuard {
public:
    explicit WeakGuard(Owner* owner)
        : token_(std::make_shared<Owner*>(owner)) {}
    WeakGuard(const WeakGuard&) = delete;
    WeakGuard& operator=(const WeakGuard&) = delete;

    // `body(owner, args...)`, run only while the owner lives.
    template <typename Body> auto wrap(Body body) const {
        return [weak = std::weak_ptr<Owner*>(token_), body = std::move(body)](auto&&... args) {
            if (const auto owner = weak.lock()) {
                body(**owner, std::forward<decltype(args)>(args)...);
            }
        };
    }

    // `body(owner, args...)` while the owner lives, else `fallback`: for callbacks that answer.
    template <typename Result, typename Body> auto wrapOr(Result fallback, Body body) const {
        return [weak = std::weak_ptr<Owner*>(token_), fallback = std::move(fallback),
                body = std::move(body)](auto&&... args) -> Result {
            if (const auto owner = weak.lock()) {
                return body(**owner, std::forward<decltype(args)>(args)...);
            }
            return fallback;
        };
    }

private:
    std::shared_ptr<Owner*> token_;
};

} // namespace paneforge
