// What the layering check must refuse: a public kit header exposing the port interfaces.
#pragma once
#include "kit/port/Platform.h"
