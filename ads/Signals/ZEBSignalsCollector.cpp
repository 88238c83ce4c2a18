#include "ads/Signals/ZEBSignalsCollector.h"

#include "kit/SharedInstances.h"

ZEBSignalsCollector::~ZEBSignalsCollector() = default;

ZEBSignalsCollector& ZEBSignalsCollector::shared() {
    return kit::shared<ZEBSignalsCollector>();
}

void ZEBSignalsCollector::setShared(std::shared_ptr<ZEBSignalsCollector> collector) {
    kit::SharedInstances::current().set(std::move(collector));
}
