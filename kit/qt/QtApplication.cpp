#include "kit/qt/QtApplication.h"

#include "kit/Bundle.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDesktopServices>
#include <QUrl>

#include <gio/gio.h>

namespace kit::qt {

QtApplication::~QtApplication() {
    if (inhibitCookie_ != 0) setIdleTimerDisabled(false);
}

bool QtApplication::openUrl(const Url& url) {
    if (!canOpenUrl(url)) return false;
    return QDesktopServices::openUrl(QUrl(QString::fromStdString(url.absoluteString())));
}

bool QtApplication::canOpenUrl(const Url& url) const {
    std::string scheme = url.scheme();
    if (scheme.empty()) return false;
    GAppInfo* handler = g_app_info_get_default_for_uri_scheme(scheme.c_str());
    if (!handler) return false;
    g_object_unref(handler);
    return true;
}

void QtApplication::idleTimerDidChange() {
    // Without a session bus or a screensaver service there is nothing to inhibit.
    if (!QDBusConnection::sessionBus().isConnected()) return;
    QDBusInterface saver("org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                         "org.freedesktop.ScreenSaver", QDBusConnection::sessionBus());
    if (!saver.isValid()) return;
    if (isIdleTimerDisabled() && inhibitCookie_ == 0) {
        QDBusReply<uint32_t> reply = saver.call("Inhibit", QString::fromStdString(Bundle::main().name()),
                                                QStringLiteral("Keeping the screen awake"));
        if (reply.isValid()) inhibitCookie_ = reply.value();
    } else if (!isIdleTimerDisabled() && inhibitCookie_ != 0) {
        saver.call("UnInhibit", inhibitCookie_);
        inhibitCookie_ = 0;
    }
}

}  // namespace kit::qt
