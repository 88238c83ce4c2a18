#include "kit/WebPage.h"

namespace kit {

WebPage::~WebPage() = default;

}  // namespace kit
