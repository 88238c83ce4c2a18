#include "kit/port/UrlLoader.h"

namespace kit {

UrlLoader::Client::~Client() = default;
UrlLoader::~UrlLoader() = default;

}  // namespace kit
