#include "ads/Signals/ZEBSignalsCollector.h"

namespace {
std::shared_ptr<ZEBSignalsCollector>& installed() {
    static std::shared_ptr<ZEBSignalsCollector> collector = std::make_shared<ZEBSignalsCollector>();
    return collector;
}
}  // namespace

ZEBSignalsCollector::~ZEBSignalsCollector() = default;

ZEBSignalsCollector& ZEBSignalsCollector::shared() {
    return *installed();
}

void ZEBSignalsCollector::setShared(std::shared_ptr<ZEBSignalsCollector> collector) {
    installed() = collector ? std::move(collector) : std::make_shared<ZEBSignalsCollector>();
}
