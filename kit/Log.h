#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <vector>

namespace kit {

// The system log: each line goes to stderr and to syslog. While a Capture is alive the lines go to
// it instead, so tests can read what was logged.
class Log {
public:
    static void write(std::string_view line);

    template <class... Args>
    static void format(fmt::format_string<Args...> format, Args&&... args) {
        write(fmt::format(format, std::forward<Args>(args)...));
    }

    class Capture {
    public:
        Capture();
        ~Capture();
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;

        std::vector<std::string> lines() const;
        bool contains(std::string_view text) const;
        void clear();

    private:
        friend class Log;
        std::vector<std::string> lines_;
        Capture* previous_;
    };
};

}  // namespace kit
