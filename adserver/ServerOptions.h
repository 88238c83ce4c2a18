#pragma once

#include <optional>
#include <string>
#include <vector>

// The command line of vantor-adserver.
struct ServerOptions {
    // The ad client's deployment default (ads/CMakeLists.txt); 0 serves on any free port.
    int port = 8480;
    std::string db = "vantor-adserver.db";
    std::optional<std::string> config;
    bool help = false;

    // The options after the program name. None with *error set (one line) for an unknown option, a
    // missing value or a bad port.
    static std::optional<ServerOptions> parse(const std::vector<std::string>& args, std::string* error);
    static std::string usage();
};
