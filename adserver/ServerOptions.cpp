#include "adserver/ServerOptions.h"

#include <fmt/format.h>

#include <charconv>

namespace {
std::optional<int> portNumber(const std::string& text) {
    int port = -1;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port < 0 || port > 65535)
        return std::nullopt;
    return port;
}
}  // namespace

std::optional<ServerOptions> ServerOptions::parse(const std::vector<std::string>& args, std::string* error) {
    auto fail = [&](std::string text) -> std::optional<ServerOptions> {
        if (error) *error = std::move(text);
        return std::nullopt;
    };
    ServerOptions options;
    for (size_t i = 0; i < args.size(); ++i) {
        std::string name = args[i];
        std::optional<std::string> value;
        if (size_t equals = name.find('='); name.starts_with("--") && equals != std::string::npos) {
            value = name.substr(equals + 1);
            name.resize(equals);
        }
        if (name == "--help" || name == "-h") {
            if (value) return fail(fmt::format("{} takes no value", name));
            options.help = true;
            continue;
        }
        if (name != "--port" && name != "--db" && name != "--config")
            return fail(fmt::format("unknown option {}", name));
        if (!value) {
            if (i + 1 == args.size()) return fail(fmt::format("{} needs a value", name));
            value = args[++i];
        }
        if (name == "--port") {
            auto port = portNumber(*value);
            if (!port) return fail(fmt::format("--port needs a number from 0 to 65535, not \"{}\"", *value));
            options.port = *port;
        } else if (value->empty()) {
            return fail(fmt::format("{} needs a file name", name));
        } else if (name == "--db") {
            options.db = *value;
        } else {
            options.config = *value;
        }
    }
    return options;
}

std::string ServerOptions::usage() {
    return R"(Usage: vantor-adserver [--port N] [--db FILE] [--config FILE]

The reference ad server of the Vantor ad client: the support script, house creatives, mediation
answers, event reports, faults on demand and a live dashboard at "/".

  --port N       serve on 127.0.0.1:N (default 8480, the ad client's default; 0 for any free port)
  --db FILE      the SQLite event store (default vantor-adserver.db); created when missing
  --config FILE  a JSON file of slots, added to the built-in ones (see adserver/README.md)
  --help         this text

Stops on Ctrl-C (SIGINT) and SIGTERM. Bad options end with status 2.
)";
}
