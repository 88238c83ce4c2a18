// Bridge latency on the real web engine: from loading a small HTML string whose script answers at
// once through a command URL, to that navigation reaching the web view's delegate.
//
// Cold is the first web view of the process: the engine, its helper processes and the first
// renderer start on the way. Warm repeats the load with the engine running, in a fresh web view each
// time (as each ad gets one) and reloading one web view. Prints the median and the spread.
#include "bench/Percentile.h"
#include "kit/RunLoop.h"
#include "kit/WebView.h"
#include "kit/qt/QtPlatform.h"
#include "kit/qt/QtWebPage.h"

#include <QApplication>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWarmLoads = 40;
// A guard against an engine that never answers, not part of any measurement.
constexpr double kGiveUpSeconds = 60;

const std::optional<kit::Url> kBaseUrl = kit::Url::parse("http://127.0.0.1:9/creative/");

// Each load answers with its own number, so a late answer of an earlier load is not taken for it.
std::string creative(int number) {
    return fmt::format("<html><body>ad<script>location = 'vmsg://x/ready?n={}';</script></body></html>",
                       number);
}

// Refuses command URLs and notes when the one awaited arrives.
class BridgeDelegate : public kit::WebViewDelegate {
public:
    bool webViewShouldStartLoadWithRequestNavigationType(kit::WebView&, const kit::Url& url,
                                                         kit::WebViewNavigationType) override {
        if (url.scheme() != "vmsg") return true;
        if (url.absoluteString() == awaited) {
            answeredAt = Clock::now();
            kit::RunLoop::main().quit(0);
        }
        return false;
    }
    std::string awaited;
    std::optional<Clock::time_point> answeredAt;
};

// Milliseconds from the load to the answer of load `number`; none when it never came.
std::optional<double> timeLoad(kit::WebView& view, BridgeDelegate& delegate, int number) {
    delegate.awaited = fmt::format("vmsg://x/ready?n={}", number);
    delegate.answeredAt.reset();
    auto giveUp = kit::RunLoop::main().postAfter(kGiveUpSeconds, [] { kit::RunLoop::main().quit(1); });
    Clock::time_point loadedAt = Clock::now();
    view.loadHtmlString(creative(number), kBaseUrl);
    kit::RunLoop::main().run();
    kit::RunLoop::main().cancel(giveUp);
    if (!delegate.answeredAt) return std::nullopt;
    return std::chrono::duration<double, std::milli>(*delegate.answeredAt - loadedAt).count();
}

void report(const char* what, const std::vector<double>& latencies) {
    std::printf("%s: median %.2f ms, 10th-90th percentile %.2f-%.2f ms (min %.2f, max %.2f, n %zu)\n", what,
                bench::percentile(latencies, 0.5), bench::percentile(latencies, 0.1),
                bench::percentile(latencies, 0.9), *std::min_element(latencies.begin(), latencies.end()),
                *std::max_element(latencies.begin(), latencies.end()), latencies.size());
}

}  // namespace

int main(int argc, char** argv) {
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    kit::qt::QtWebPage::prepareEngine();
    QApplication qt(argc, argv);
    kit::Platform::install(std::make_unique<kit::qt::QtPlatform>(kit::UserInterfaceIdiom::Phone));
    int status = 0;
    {
        auto delegate = std::make_shared<BridgeDelegate>();
        auto makeView = [&] {
            auto view = std::make_shared<kit::WebView>(kit::Rect{0, 0, 320, 50});
            view->setDelegate(delegate);
            return view;
        };
        int number = 0;

        Clock::time_point madeAt = Clock::now();
        auto first = makeView();
        double making = std::chrono::duration<double, std::milli>(Clock::now() - madeAt).count();
        std::optional<double> cold = timeLoad(*first, *delegate, number++);
        if (cold) {
            std::printf("cold (first web view of the process): %.2f ms; making that view took %.2f ms\n",
                        *cold, making);
        } else {
            std::printf("cold: no answer within %.0f s\n", kGiveUpSeconds);
            status = 1;
        }

        std::vector<double> fresh, reloaded;
        for (int i = 0; i < kWarmLoads && status == 0; ++i) {
            auto view = makeView();
            if (auto ms = timeLoad(*view, *delegate, number++)) fresh.push_back(*ms);
        }
        for (int i = 0; i < kWarmLoads && status == 0; ++i) {
            if (auto ms = timeLoad(*first, *delegate, number++)) reloaded.push_back(*ms);
        }
        if (status == 0 && fresh.size() == kWarmLoads && reloaded.size() == kWarmLoads) {
            report("warm, a fresh web view each time", fresh);
            report("warm, the same web view loaded again", reloaded);
        } else if (status == 0) {
            std::printf("warm: %zu and %zu of %d loads answered\n", fresh.size(), reloaded.size(),
                        kWarmLoads);
            status = 1;
        }
    }
    kit::Platform::uninstall();
    return status;
}
