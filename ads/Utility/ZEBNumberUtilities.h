#pragma once

#include <string>

class ZEBNumberUtilities {
public:
    // Six decimals, then trailing zeros and a bare point dropped: 2.0 gives "2", 1.5 gives "1.5".
    static std::string stringWithFloat(float value);
};
