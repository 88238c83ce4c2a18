#pragma once

#include "kit/port/ViewPeerFactory.h"

namespace kit::qt {

// A window gets a top-level widget; every other view a child widget of its superview's.
class QtViewPeerFactory : public ViewPeerFactory {
public:
    std::unique_ptr<ViewPeer> createPeer(View& view) override;
};

}  // namespace kit::qt
