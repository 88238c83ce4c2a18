#pragma once

#include "kit/CallGroup.h"
#include "kit/port/UrlLoader.h"

#include <QPointer>

#include <deque>
#include <functional>

class QNetworkAccessManager;
class QNetworkReply;

namespace kit::qt {

// One exchange on QNetworkAccessManager. Qt's own redirect following and cache are off, so a 3xx
// comes back as it is and nothing is answered from or kept in a Qt cache. What the reply signals
// is queued and reported one event per run-loop turn.
class QtUrlLoader : public UrlLoader {
public:
    QtUrlLoader(QNetworkAccessManager& manager, const UrlRequest& request, UrlLoader::Client& client);
    ~QtUrlLoader() override;

    void start() override;
    void cancel() override;

private:
    void headArrived();
    void bodyArrived();
    void replyFinished();
    void queue(std::function<void()> report);
    void deliverNext();
    std::shared_ptr<const Error> errorOf(QNetworkReply& reply) const;
    void releaseReply();

    QNetworkAccessManager& manager_;
    UrlRequest request_;
    UrlLoader::Client& client_;
    QPointer<QNetworkReply> reply_;
    bool headSent_ = false;
    bool ended_ = false;
    std::deque<std::function<void()>> reports_;
    CallGroup deliveries_;
};

}  // namespace kit::qt
