#include "kit/port/ViewPeer.h"

namespace kit {

ViewPeer::~ViewPeer() = default;

}  // namespace kit
