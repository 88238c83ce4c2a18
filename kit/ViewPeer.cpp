#include "kit/ViewPeer.h"

namespace kit {

ViewPeer::~ViewPeer() = default;

}  // namespace kit
