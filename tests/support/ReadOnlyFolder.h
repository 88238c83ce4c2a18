#pragma once

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

// Makes a folder refuse new entries for as long as it lives. Permission bits are enough for an
// ordinary user; a privileged one writes through them, so then the folder is also marked immutable
// (which such a user may do). usable() says whether either worked.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
        namespace fs = std::filesystem;
        permissions_ = fs::status(folder_).permissions();
        fs::permissions(folder_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                                     fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
        if (!refusesNewFiles()) setImmutable(true);
        usable_ = refusesNewFiles();
    }
    ~ReadOnlyFolder() {
        if (immutable_) setImmutable(false);
        std::filesystem::permissions(folder_, permissions_);
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

    bool usable() const { return usable_; }

private:
    bool refusesNewFiles() const {
        auto probe = folder_ / ".probe";
        int fd = ::open(probe.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
        if (fd < 0) return true;
        ::close(fd);
        ::unlink(probe.c_str());
        return false;
    }
    void setImmutable(bool on) {
        int fd = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY);
        if (fd < 0) return;
        int flags = 0;
        if (::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0) {
            flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
            if (::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0) immutable_ = on;
        }
        ::close(fd);
    }

    std::filesystem::path folder_;
    std::filesystem::perms permissions_;
    bool immutable_ = false;
    bool usable_ = false;
};
