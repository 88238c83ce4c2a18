#pragma once

#include "kit/Geometry.h"

namespace kit {

class PortKey;

// The main screen: its bounds in points and its scale (device pixels per point).
class Screen {
public:
    static Screen& main();

    Rect bounds() const { return bounds_; }
    double scale() const { return scale_; }

    void setBounds(const PortKey&, Rect bounds) { bounds_ = bounds; }
    void setScale(const PortKey&, double scale) { scale_ = scale; }

private:
    Rect bounds_{0, 0, 480, 320};
    double scale_ = 1.0;
};

}  // namespace kit
