#include "kit/ViewPeerFactory.h"

namespace kit {

ViewPeerFactory::~ViewPeerFactory() = default;

}  // namespace kit
