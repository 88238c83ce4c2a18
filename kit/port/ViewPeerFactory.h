#pragma once

#include <memory>

namespace kit {

class View;
class ViewPeer;

// Makes the peers of a port (Platform::viewPeerFactory()). A factory chooses the kind of peer by
// the kind of view (a window, a button, an image view, a web view...).
class ViewPeerFactory {
public:
    virtual ~ViewPeerFactory();

    // `view` has just entered a window on screen (or is that window). Its superview, if any,
    // already has its peer. May answer null for a view that needs none.
    virtual std::unique_ptr<ViewPeer> createPeer(View& view) = 0;
};

}  // namespace kit
