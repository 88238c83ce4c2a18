#include "kit/port/WebPage.h"

namespace kit {

WebPage::~WebPage() = default;

}  // namespace kit
