#include "kit/qt/SystemDevice.h"

#include "kit/port/PortKey.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <cstdlib>

#include <fstream>
#include <string>

namespace kit::qt {

namespace {
std::string firstLine(const char* path) {
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\r' || line.back() == '\t'))
        line.pop_back();
    return line;
}
}  // namespace

std::string SystemDevice::machineId() {
    std::string id = firstLine("/etc/machine-id");
    if (id.empty()) id = firstLine("/var/lib/dbus/machine-id");
    return id;
}

void SystemDevice::fill(Device& device, UserInterfaceIdiom idiom) {
    PortKey key;
    device.setUserInterfaceIdiom(key, idiom);
    struct utsname names {};
    if (uname(&names) == 0) {
        device.setSystemName(key, names.sysname);
        device.setSystemVersion(key, names.release);
        device.setMachine(key, names.machine);
        device.setName(key, names.nodename);
    }
    std::string product = firstLine("/sys/devices/virtual/dmi/id/product_name");
    device.setModel(key, product.empty() ? "Linux" : product);
    device.setUniqueIdentifier(key, machineId());
    device.setPreferredLanguages(
        key, Device::languagesFromLocaleVariables(std::getenv("LANGUAGE"), std::getenv("LC_ALL"),
                                                  std::getenv("LC_MESSAGES"), std::getenv("LANG")));
    device.setSuperuser(key, geteuid() == 0);
}

}  // namespace kit::qt
