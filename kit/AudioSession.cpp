#include "kit/AudioSession.h"

#include "kit/port/Platform.h"

namespace kit {

AudioSession::~AudioSession() = default;

AudioSession& AudioSession::shared() {
    return Platform::current().audioSession();
}

}  // namespace kit
