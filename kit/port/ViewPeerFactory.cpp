#include "kit/port/ViewPeerFactory.h"

namespace kit {

ViewPeerFactory::~ViewPeerFactory() = default;

}  // namespace kit
