#pragma once

#include "kit/Object.h"

#include <memory>

namespace kit {

class Window;

// Something that can hold the input focus: a view or a view controller. Each window has at most
// one first responder.
class Responder : public Object {
public:
    ~Responder() override;

    virtual bool canBecomeFirstResponder() const { return false; }
    virtual bool canResignFirstResponder() const { return true; }
    // Takes the focus of the window this responder is in, after the current holder resigned it.
    // False when it cannot become first responder, is in no window, or the holder refuses.
    virtual bool becomeFirstResponder();
    // False only when this is the first responder and refuses to resign.
    virtual bool resignFirstResponder();
    bool isFirstResponder() const;

protected:
    friend class Window;

    Responder() = default;
    // The window the responder is in, if any.
    virtual std::shared_ptr<Window> responderWindow() const = 0;
};

}  // namespace kit
