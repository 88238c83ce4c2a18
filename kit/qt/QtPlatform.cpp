#include "kit/qt/QtPlatform.h"

#include "kit/port/PortKey.h"
#include "kit/qt/NetworkMonitorReachability.h"
#include "kit/qt/QtRunLoop.h"
#include "kit/qt/QtUrlLoader.h"
#include "kit/qt/QtWebPage.h"
#include "kit/qt/SystemDevice.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QScreen>
#include <QStandardPaths>

#include <fmt/format.h>

#include <random>

namespace kit::qt {

namespace {
std::filesystem::path standardFolder(QStandardPaths::StandardLocation location) {
    return QStandardPaths::writableLocation(location).toStdString();
}
}  // namespace

QtPlatform::QtPlatform(UserInterfaceIdiom idiom)
    : runLoop_(std::make_unique<RunLoop>(PortKey{}, std::make_unique<QtRunLoop>())),
      notificationCenter_(std::make_shared<NotificationCenter>()),
      sound_(std::make_unique<SdlSoundService>()),
      application_(std::make_shared<QtApplication>()) {
    PortKey key;
    auto resources =
        std::filesystem::path(QCoreApplication::applicationDirPath().toStdString()) / "Resources";
    // The information map is written beside the resources when the application is built.
    bundle_.loadInfoDictionary(key, resources / "Info.plist");
    // Folders are named after the application's executable: $XDG_CACHE_HOME/quiblo and so on.
    if (!bundle_.executableName().empty())
        QCoreApplication::setApplicationName(QString::fromStdString(bundle_.executableName()));
    auto caches = standardFolder(QStandardPaths::CacheLocation);
    auto data = standardFolder(QStandardPaths::AppDataLocation);
    auto config = standardFolder(QStandardPaths::AppConfigLocation);
    fileManager_ = std::make_unique<FileManager>(FileManager::Folders{caches, data / "Documents", resources});
    fileManager_->createFolder(caches);
    fileManager_->createFolder(data / "Documents");
    userDefaults_ = std::make_unique<UserDefaults>(config / "settings.bin");

    SystemDevice::fill(device_, idiom);
    bool tablet = idiom == UserInterfaceIdiom::Pad;
    screen_.setBounds(key, tablet ? Rect{0, 0, 1024, 768} : Rect{0, 0, 480, 320});
    if (QScreen* display = QGuiApplication::primaryScreen())
        screen_.setScale(key, display->devicePixelRatio());
    // Without a machine identifier, one made up once and kept in the settings stands in for it.
    if (device_.uniqueIdentifier().empty()) {
        static constexpr const char* kKey = "DeviceIdentifier";
        std::optional<std::string> kept = userDefaults_->string(kKey);
        if (!kept || kept->empty()) {
            std::random_device random;
            kept = fmt::format("{:08x}{:08x}{:08x}{:08x}", random(), random(), random(), random());
            userDefaults_->set(kKey, *kept);
            userDefaults_->synchronize();
        }
        device_.setUniqueIdentifier(key, *kept);
    }
}

std::shared_ptr<Reachability> QtPlatform::createReachability(const std::string& hostName) {
    return std::make_shared<NetworkMonitorReachability>(hostName);
}

QtPlatform::~QtPlatform() = default;

std::unique_ptr<UrlLoader> QtPlatform::createUrlLoader(const UrlRequest& request, UrlLoader::Client& client) {
    if (!network_) {
        network_ = std::make_unique<QNetworkAccessManager>();
        network_->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
        network_->setCache(nullptr);
    }
    return std::make_unique<QtUrlLoader>(*network_, request, client);
}

std::unique_ptr<WebPage> QtPlatform::createWebPage(WebView& view) {
    QtWebPage::prepareEngine();
    return std::make_unique<QtWebPage>(view);
}

}  // namespace kit::qt
