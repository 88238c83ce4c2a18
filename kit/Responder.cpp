#include "kit/Responder.h"

#include "kit/Window.h"

namespace kit {

Responder::~Responder() = default;

bool Responder::isFirstResponder() const {
    auto window = responderWindow();
    return window && window->firstResponder().get() == this;
}

bool Responder::becomeFirstResponder() {
    if (isFirstResponder()) return true;
    if (!canBecomeFirstResponder()) return false;
    auto window = responderWindow();
    if (!window) return false;
    if (auto current = window->firstResponder(); current && !current->resignFirstResponder()) return false;
    window->firstResponder_ = retained(this);
    return true;
}

bool Responder::resignFirstResponder() {
    if (!isFirstResponder()) return true;
    if (!canResignFirstResponder()) return false;
    responderWindow()->firstResponder_.reset();
    return true;
}

}  // namespace kit
