#include "kit/FileManager.h"

#include "kit/port/Platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>

namespace kit {
namespace fs = std::filesystem;

namespace {

bool fail(std::shared_ptr<const Error>* error, int code, const fs::path& path, std::string_view what) {
    if (error) {
        std::string message = fmt::format("{} {}: {}", what, path.string(), std::strerror(code));
        *error = Error::make(FileManager::kErrorDomain, code,
                             {{Error::kLocalizedDescriptionKey, message}, {"FilePath", path.string()}});
    }
    return false;
}

}  // namespace

FileManager::FileManager(Folders folders) : folders_(std::move(folders)) {}

FileManager& FileManager::defaultManager() {
    return Platform::current().fileManager();
}

bool FileManager::exists(const fs::path& path) const {
    std::error_code ec;
    return fs::exists(path, ec);
}

std::optional<std::string> FileManager::read(const fs::path& path) const {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream contents;
    contents << in.rdbuf();
    if (in.bad()) return std::nullopt;
    return std::move(contents).str();
}

bool FileManager::writeAtomically(const fs::path& path, std::string_view bytes,
                                  std::shared_ptr<const Error>* error) const {
    static thread_local std::mt19937_64 random{std::random_device{}()};
    fs::path temporary = path;
    temporary += fmt::format(".tmp{:016x}", random());
    int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) return fail(error, errno, path, "Cannot write");
    size_t written = 0;
    while (written < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0) {
            if (errno == EINTR) continue;
            int code = errno;
            ::close(fd);
            ::unlink(temporary.c_str());
            return fail(error, code, path, "Cannot write");
        }
        written += static_cast<size_t>(n);
    }
    if (::fsync(fd) != 0 || ::close(fd) != 0) {
        int code = errno;
        ::unlink(temporary.c_str());
        return fail(error, code, path, "Cannot write");
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        int code = errno;
        ::unlink(temporary.c_str());
        return fail(error, code, path, "Cannot write");
    }
    return true;
}

bool FileManager::createFolder(const fs::path& path, std::shared_ptr<const Error>* error) const {
    std::error_code ec;
    fs::create_directories(path, ec);
    if (ec) return fail(error, ec.value(), path, "Cannot create folder");
    return true;
}

std::optional<double> FileManager::modificationTime(const fs::path& path) const {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) return std::nullopt;
    return static_cast<double>(st.st_mtim.tv_sec) + static_cast<double>(st.st_mtim.tv_nsec) / 1e9;
}

bool FileManager::setModificationTime(const fs::path& path, double secondsSince1970) const {
    double whole = std::floor(secondsSince1970);
    timespec t{static_cast<time_t>(whole), static_cast<long>((secondsSince1970 - whole) * 1e9)};
    timespec times[2] = {t, t};
    return ::utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
}

bool FileManager::remove(const fs::path& path, std::shared_ptr<const Error>* error) const {
    std::error_code ec;
    fs::remove_all(path, ec);
    if (ec) return fail(error, ec.value(), path, "Cannot remove");
    return true;
}

}  // namespace kit
