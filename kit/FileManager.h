#pragma once

#include "kit/Error.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kit {

// Files and the application's folders. The real port uses the XDG folders; the simulated port a
// fresh temporary folder per test.
class FileManager {
public:
    struct Folders {
        std::filesystem::path caches;
        std::filesystem::path documents;
        // Where the application's own resources (sounds, images) are installed.
        std::filesystem::path resources;
    };

    explicit FileManager(Folders folders);
    static FileManager& defaultManager();

    const std::filesystem::path& cachesFolder() const { return folders_.caches; }
    const std::filesystem::path& documentsFolder() const { return folders_.documents; }
    const std::filesystem::path& resourcesFolder() const { return folders_.resources; }

    bool exists(const std::filesystem::path& path) const;
    // The file's bytes; none when it cannot be read.
    std::optional<std::string> read(const std::filesystem::path& path) const;
    // Writes a temporary file beside `path` and renames it over `path`, so readers see the old
    // content or the new, never a mix. On failure the old file is untouched.
    bool writeAtomically(const std::filesystem::path& path, std::string_view bytes,
                         std::shared_ptr<const Error>* error = nullptr) const;
    bool createFolder(const std::filesystem::path& path, std::shared_ptr<const Error>* error = nullptr) const;
    // Seconds since 1970, whole and fractional.
    std::optional<double> modificationTime(const std::filesystem::path& path) const;
    // Sets access and modification time.
    bool setModificationTime(const std::filesystem::path& path, double secondsSince1970) const;
    bool remove(const std::filesystem::path& path, std::shared_ptr<const Error>* error = nullptr) const;

    // The error domain of file errors; codes are errno values.
    static constexpr const char* kErrorDomain = "kit.FileManager";

private:
    Folders folders_;
};

}  // namespace kit
