#pragma once

#include <optional>

// The exception of type E that a call raises, or nothing when it raises none.
template <typename E, typename F>
std::optional<E> raised(F&& call) {
    try {
        call();
    } catch (const E& e) {
        return e;
    }
    return std::nullopt;
}
