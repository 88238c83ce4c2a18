#include "ads/Utility/ZEBIdentifierUtilities.h"

#include "ads/Request/ZEBRequestParameters.h"
#include "ads/Utility/ZEBNumberUtilities.h"
#include "kit/Application.h"
#include "kit/AudioSession.h"
#include "kit/Bundle.h"
#include "kit/Crypto.h"
#include "kit/Device.h"
#include "kit/FileManager.h"
#include "kit/PropertyList.h"
#include "kit/Screen.h"
#include "kit/SharedInstances.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>

namespace {
std::optional<std::string> infoString(std::string_view key) {
    const kit::Value* value = kit::Bundle::main().objectForInfoDictionaryKey(key);
    if (!value || !value->string()) return std::nullopt;
    return *value->string();
}
}  // namespace

ZEBIdentifierUtilities& ZEBIdentifierUtilities::sharedInstance() {
    return kit::shared<ZEBIdentifierUtilities>();
}

ZEBIdentifierUtilities::ZEBIdentifierUtilities()
    : isPhoneIdiom_(kit::Device::current().userInterfaceIdiom().value_or(kit::UserInterfaceIdiom::Phone) ==
                    kit::UserInterfaceIdiom::Phone),
      isJailbroken_(isJailbroken()) {}

std::string ZEBIdentifierUtilities::deviceIdentifierOrSimulator() {
    return kit::Device::current().uniqueIdentifier();
}

ZEBIdentifierUtilities::OSVersion ZEBIdentifierUtilities::parseOSVersion(std::string_view version) {
    int parts[3] = {0, 0, 0};
    for (int& part : parts) {
        size_t dot = version.find('.');
        std::string_view piece = version.substr(0, dot);
        // As a C integer reading does: leading digits count, anything else gives 0.
        std::from_chars(piece.data(), piece.data() + piece.size(), part);
        if (dot == std::string_view::npos) break;
        version.remove_prefix(dot + 1);
    }
    return {parts[0], parts[1], parts[2]};
}

ZEBIdentifierUtilities::OSVersion ZEBIdentifierUtilities::getOSMajorMinorBugFix() {
    return parseOSVersion(kit::Device::current().systemVersion());
}

bool ZEBIdentifierUtilities::isOSAtLeastMajorMinorBug(int major, int minor, int bug) {
    OSVersion v = getOSMajorMinorBugFix();
    if (v.major != major) return v.major > major;
    if (v.minor != minor) return v.minor > minor;
    return v.bugFix >= bug;
}

bool ZEBIdentifierUtilities::isJailbroken() {
    return kit::Device::current().isSuperuser();
}

kit::Value::Map ZEBIdentifierUtilities::readITunesMetadataFileAt(const std::filesystem::path& path) {
    std::optional<kit::Value> list = kit::PropertyList::readFile(path);
    if (!list || !list->isMap()) return {};
    return std::move(*list->map());
}

std::string ZEBIdentifierUtilities::deviceModel() const {
    return kit::Device::current().model();
}

std::string ZEBIdentifierUtilities::osVersion() const {
    return kit::Device::current().systemVersion();
}

const std::string& ZEBIdentifierUtilities::deviceSubmodel() {
    if (!deviceSubmodel_) deviceSubmodel_ = kit::Device::current().machine();
    return *deviceSubmodel_;
}

const std::string& ZEBIdentifierUtilities::deviceIdentifier() {
    if (!deviceIdentifier_) {
        kit::Crypto::Md5Digest digest = kit::Crypto::md5(deviceIdentifierOrSimulator());
        std::string hex;
        for (uint8_t byte : digest) hex += fmt::format("{:02X}", byte);
        deviceIdentifier_ = hex;
    }
    return *deviceIdentifier_;
}

const std::string& ZEBIdentifierUtilities::locale() {
    if (!locale_) {
        const auto& languages = kit::Device::current().preferredLanguages();
        std::string first = languages.empty() ? std::string() : languages.front();
        std::transform(first.begin(), first.end(), first.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        locale_ = first;
    }
    return *locale_;
}

kit::Size ZEBIdentifierUtilities::screenSize() const {
    return kit::Screen::main().bounds().size;
}

double ZEBIdentifierUtilities::screenDensity() const {
    return kit::Screen::main().scale();
}

bool ZEBIdentifierUtilities::isOrientationLandscape() const {
    return kit::InterfaceOrientation::isLandscape(kit::Application::shared().statusBarOrientation());
}

int ZEBIdentifierUtilities::audioRoute() const {
    std::optional<std::string> route = kit::AudioSession::shared().currentRoute();
    if (!route || *route == "Speaker") return 1;
    if (*route == "Headphone" || *route == "Headset") return 2;
    if (route->empty()) return 3;
    return 5;
}

kit::Value::Map ZEBIdentifierUtilities::canOpenURLs(const std::vector<std::string>& urls) const {
    kit::Value::Map answers;
    for (const std::string& text : urls) {
        std::optional<kit::Url> url = kit::Url::parse(text);
        answers.set(text, url.has_value() && kit::Application::shared().canOpenUrl(*url));
    }
    return answers;
}

const std::optional<std::string>& ZEBIdentifierUtilities::baseSdkVersion() {
    if (!baseSdkVersion_) {
        std::optional<std::string> sdk = infoString("DTSDKName");
        std::optional<std::string> platform = infoString("DTPlatformName");
        if (sdk && platform && !platform->empty()) {
            for (size_t at; (at = sdk->find(*platform)) != std::string::npos;)
                sdk->erase(at, platform->size());
        }
        baseSdkVersion_ = sdk;
    }
    return *baseSdkVersion_;
}

const kit::Value::Map& ZEBIdentifierUtilities::iTunesMetadata() {
    if (!iTunesMetadata_) {
        const std::filesystem::path& documents = kit::FileManager::defaultManager().documentsFolder();
        iTunesMetadata_ =
            documents.empty()
                ? kit::Value::Map{}
                : readITunesMetadataFileAt((documents / ".." / "iTunesMetadata.plist").lexically_normal());
    }
    return *iTunesMetadata_;
}

kit::Value::Map ZEBIdentifierUtilities::parameters() {
    kit::Value::Map p;
    if (deviceModel() == "iPad" && isPhoneIdiom_) p.set(kZEBParameterIPadCompatibilityMode, "1");
    p.set(kZEBParameterITunesMetadata, iTunesMetadata());
    if (const auto& sdk = baseSdkVersion()) p.set(kZEBParameterBaseSdkVersion, *sdk);
    std::string appName;
    if (auto version = infoString("CFBundleVersion")) appName = *version + ".";
    appName += "iphone." + infoString("CFBundleIdentifier").value_or("");
    p.set(kZEBParameterApplicationName, appName);
    if (isJailbroken_) p.set(kZEBParameterJailbroken, "1");
    p.set(kZEBParameterDeviceID, deviceIdentifier());
    p.set(kZEBParameterDeviceModel, deviceModel());
    p.set(kZEBParameterDeviceSubmodel, deviceSubmodel());
    p.set(kZEBParameterLocale, locale());
    p.set(kZEBParameterAudioOutput, fmt::format("{}", audioRoute()));
    p.set(kZEBParameterScreenOrientation, isOrientationLandscape() ? "l" : "p");
    p.set(kZEBParameterScreenDensity,
          ZEBNumberUtilities::stringWithFloat(static_cast<float>(screenDensity())));
    kit::Size size = screenSize();
    p.set(kZEBParameterScreenWidth, ZEBNumberUtilities::stringWithFloat(static_cast<float>(size.width)));
    p.set(kZEBParameterScreenHeight, ZEBNumberUtilities::stringWithFloat(static_cast<float>(size.height)));
    static constexpr const char* kBooks = "itms-books://";
    static constexpr const char* kKindle = "kindle://home";
    kit::Value::Map opens = canOpenURLs({kBooks, kKindle});
    bool books = *opens.find(kBooks)->boolean(), kindle = *opens.find(kKindle)->boolean();
    if (books || kindle) p.set(kZEBParameterCapabilitiesBookstore, books && kindle ? 3 : kindle ? 2 : 1);
    return p;
}
