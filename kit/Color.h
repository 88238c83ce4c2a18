#pragma once

namespace kit {

// An RGBA colour with components from 0 to 1.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    static constexpr Color clear() { return {0, 0, 0, 0}; }
    static constexpr Color black() { return {0, 0, 0, 1}; }
    static constexpr Color white() { return {1, 1, 1, 1}; }

    bool operator==(const Color&) const = default;
};

}  // namespace kit
