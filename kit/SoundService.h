#pragma once

#include <cstdint>
#include <string>

namespace kit {

// Short sound clips: registered once from a file, played by identifier as often as wanted (plays
// overlap), disposed when no longer needed.
class SoundService {
public:
    using SoundId = uint32_t;
    // Playing this identifier vibrates the device (where it can).
    static constexpr SoundId kVibrate = 4095;

    struct Registration {
        SoundId id = 0;
        // 0 on success, a non-zero status when the file could not be registered.
        int status = 0;
    };

    virtual ~SoundService();
    static SoundService& shared();

    virtual Registration registerClip(const std::string& path) = 0;
    // Unknown identifiers (0 among them) play nothing.
    virtual void play(SoundId id) = 0;
    virtual void dispose(SoundId id) = 0;

    // Status codes for failed registrations.
    static constexpr int kFileNotFound = -43;
    static constexpr int kUnsupportedFile = -50;
};

}  // namespace kit
