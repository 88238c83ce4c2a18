#include "ads/View/ZEBWebViewPrivate.h"

ZEBWebViewPrivate::~ZEBWebViewPrivate() = default;
