// What the layering check must refuse: the ad client reaching into a port and into Qt.
#include <QWidget>
#include "kit/sim/SimPlatform.h"
