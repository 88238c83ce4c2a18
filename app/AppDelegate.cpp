#include "app/AppDelegate.h"

#include "kit/ClassRegistry.h"

namespace {
const bool registered = kit::ClassRegistry::add<AppDelegate>();
}
