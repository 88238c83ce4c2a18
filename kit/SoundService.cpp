#include "kit/SoundService.h"

#include "kit/port/Platform.h"

namespace kit {

SoundService::~SoundService() = default;

SoundService& SoundService::shared() {
    return Platform::current().soundService();
}

}  // namespace kit
