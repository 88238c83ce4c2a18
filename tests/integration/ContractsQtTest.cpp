// The port contracts on the real port.
#include "tests/integration/support/QtPort.h"
#include "tests/kit/port/UrlLoaderContract.h"
#include "tests/kit/port/WebPageContract.h"

namespace contract {
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, UrlLoaderContract, QtPort);
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, WebPageContract, QtPort);
}  // namespace contract
