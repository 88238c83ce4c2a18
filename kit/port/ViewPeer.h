#pragma once

#include "kit/View.h"

namespace kit {

// What a port puts on screen for one view of the model tree (the Qt port: one widget per view).
// The model is the truth: a peer only shows it. It is made by the platform's ViewPeerFactory when
// its view enters a window that is on screen, with the peer of the superview already made, and
// destroyed when the view leaves that window or moves to another superview (after the peers of
// its subviews). The view outlives its peer, so a peer may keep a reference to it and read the
// current state whenever it is told of a change.
//
// A view whose content must live on without a peer (a loaded page, say) keeps that content in
// its own platform object; the peer only shows it.
class ViewPeer {
public:
    using Change = ViewChange;

    virtual ~ViewPeer();

    // Called after the model changed. Changes made inside View::animate() report the animation's
    // duration through View::inheritedAnimationDuration() while this runs.
    virtual void viewDidChange(Change change) = 0;
};

}  // namespace kit
