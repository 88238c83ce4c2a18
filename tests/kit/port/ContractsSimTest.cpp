// The port contracts on the simulated port.
#include "tests/kit/port/SimPort.h"
#include "tests/kit/port/UrlLoaderContract.h"
#include "tests/kit/port/WebPageContract.h"

namespace contract {
INSTANTIATE_TYPED_TEST_SUITE_P(Sim, UrlLoaderContract, SimPort);
INSTANTIATE_TYPED_TEST_SUITE_P(Sim, WebPageContract, SimPort);
}  // namespace contract
