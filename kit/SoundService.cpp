#include "kit/SoundService.h"

#include "kit/Platform.h"

namespace kit {

SoundService::~SoundService() = default;

SoundService& SoundService::shared() {
    return Platform::current().soundService();
}

}  // namespace kit
