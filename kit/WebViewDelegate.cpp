#include "kit/WebViewDelegate.h"

namespace kit {

WebViewDelegate::~WebViewDelegate() = default;

}  // namespace kit
