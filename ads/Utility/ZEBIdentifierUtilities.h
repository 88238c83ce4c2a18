#pragma once

#include "kit/Geometry.h"
#include "kit/Value.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What the ad server is told about the device and the application. Identifier, submodel, locale,
// SDK version, store metadata, idiom and the jailbreak flag are read once and kept for the life of
// the process; model, system version, screen, orientation, audio route and book-store
// capabilities are read anew for every request.
class ZEBIdentifierUtilities {
public:
    // Made on first use; lives as long as the platform.
    static ZEBIdentifierUtilities& sharedInstance();
    ZEBIdentifierUtilities();

    // The raw unique identifier, as the system gives it (what test-device lists hold).
    static std::string deviceIdentifierOrSimulator();
    struct OSVersion {
        int major = 0;
        int minor = 0;
        int bugFix = 0;
    };
    static OSVersion getOSMajorMinorBugFix();
    // Splits a version text at "." into its first three numbers; a missing piece is 0.
    static OSVersion parseOSVersion(std::string_view version);
    static bool isOSAtLeastMajorMinorBug(int major, int minor, int bug);
    // Linux has no jailbreak: the probe asks whether the application runs as the superuser, the one
    // way a desktop user steps outside the limits the application is meant to run within.
    static bool isJailbroken();
    // The map in a property-list file; empty for no file, an unreadable one or another type.
    static kit::Value::Map readITunesMetadataFileAt(const std::filesystem::path& path);

    bool isPhoneIdiom() const { return isPhoneIdiom_; }
    bool isJailbrokenDevice() const { return isJailbroken_; }

    std::string deviceModel() const;
    std::string osVersion() const;
    const std::string& deviceSubmodel();
    // MD5 of the raw identifier, 32 upper-case hex digits.
    const std::string& deviceIdentifier();
    const std::string& locale();
    // In points, of the main screen's bounds.
    kit::Size screenSize() const;
    double screenDensity() const;
    bool isOrientationLandscape() const;
    // 1 speaker (also: no sound server, no route), 2 headphones or headset, 3 unnamed, 5 other.
    int audioRoute() const;
    kit::Value::Map canOpenURLs(const std::vector<std::string>& urls) const;
    const std::optional<std::string>& baseSdkVersion();
    const kit::Value::Map& iTunesMetadata();

    // The identifier part of the request parameters.
    kit::Value::Map parameters();

private:
    bool isPhoneIdiom_;
    bool isJailbroken_;
    std::optional<std::string> deviceIdentifier_;
    std::optional<std::string> deviceSubmodel_;
    std::optional<std::string> locale_;
    std::optional<std::optional<std::string>> baseSdkVersion_;
    std::optional<kit::Value::Map> iTunesMetadata_;
};
