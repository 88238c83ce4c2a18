#include "kit/qt/QtViewPeer.h"

#include "kit/Button.h"
#include "kit/Image.h"
#include "kit/ImageView.h"
#include "kit/View.h"
#include "kit/port/PortKey.h"

#include <QPainter>
#include <QPainterPath>

#include <map>

namespace kit::qt {

namespace {
// Decoded images by the image they come from; entries go when the image does.
std::map<const Image*, std::pair<std::weak_ptr<const Object>, QImage>>& imageCache() {
    static std::map<const Image*, std::pair<std::weak_ptr<const Object>, QImage>> cache;
    return cache;
}
}  // namespace

QtViewPeer::QtViewPeer(View& view, QWidget* parent) : QWidget(parent), view_(view) {
    setAttribute(Qt::WA_TransparentForMouseEvents, parent != nullptr);
    if (parent) {
        placeWidget();
        restack();
        setVisible(!view_.isHidden());
    }
}

QtViewPeer::~QtViewPeer() = default;

void QtViewPeer::placeWidget() {
    Rect frame = view_.frame();
    Point origin{0, 0};
    if (auto superview = view_.superview()) origin = superview->bounds().origin;
    setGeometry(
        QRectF(frame.minX() - origin.x, frame.minY() - origin.y, frame.width(), frame.height()).toRect());
}

void QtViewPeer::restack() {
    auto superview = view_.superview();
    if (!superview) return;
    for (const auto& sibling : superview->subviews())
        if (auto* peer = dynamic_cast<QtViewPeer*>(sibling->peer(PortKey{}))) peer->raise();
}

void QtViewPeer::viewDidChange(Change change) {
    switch (change) {
        case Change::Frame:
            placeWidget();
            for (const auto& subview : view_.subviews())
                if (auto* peer = dynamic_cast<QtViewPeer*>(subview->peer(PortKey{}))) peer->placeWidget();
            break;
        case Change::Hidden:
            setVisible(!view_.isHidden());
            break;
        case Change::Stacking:
            restack();
            break;
        case Change::Alpha:
            // Opacity multiplies down the tree: the whole subtree repaints.
            for (QWidget* w : findChildren<QWidget*>()) w->update();
            update();
            break;
        case Change::Layer:
        case Change::BackgroundColor:
        case Change::Content:
        case Change::Transition:
            update();
            break;
    }
}

double QtViewPeer::effectiveAlpha() const {
    double alpha = 1;
    for (const View* v = &view_; v; v = v->superview().get()) alpha *= v->alpha();
    return alpha;
}

QColor QtViewPeer::toQColor(Color c) {
    return QColor::fromRgbF(float(c.red), float(c.green), float(c.blue), float(c.alpha));
}

QImage QtViewPeer::toQImage(const Image& image) {
    auto& cache = imageCache();
    for (auto it = cache.begin(); it != cache.end();)
        it = it->second.first.expired() ? cache.erase(it) : std::next(it);
    if (auto it = cache.find(&image); it != cache.end()) return it->second.second;
    QImage decoded;
    if (image.format() == Image::Format::Png) {
        decoded = QImage::fromData(image.bytes().data(), static_cast<int>(image.bytes().size()), "PNG");
    } else {
        decoded = QImage(image.bytes().data(), image.pixelWidth(), image.pixelHeight(),
                         image.pixelWidth() * 4, QImage::Format_RGBA8888)
                      .copy();
    }
    decoded.setDevicePixelRatio(image.scale());
    cache[&image] = {image.weak_from_this(), decoded};
    return decoded;
}

void QtViewPeer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(effectiveAlpha());
    const Layer& layer = view_.layer();
    QRectF rect(0, 0, width(), height());
    QPainterPath shape;
    double radius = layer.cornerRadius();
    shape.addRoundedRect(rect, radius, radius);
    painter.fillPath(shape, toQColor(view_.backgroundColor()));
    if (layer.masksToBounds()) painter.setClipPath(shape);
    paintContent(painter, rect);
    if (layer.borderWidth() > 0) {
        double w = layer.borderWidth();
        QPainterPath border;
        border.addRoundedRect(rect.adjusted(w / 2, w / 2, -w / 2, -w / 2), radius, radius);
        painter.setClipping(false);
        painter.strokePath(border, QPen(toQColor(layer.borderColor()), w));
    }
}

void QtViewPeer::paintContent(QPainter& painter, const QRectF& rect) {
    if (auto* imageView = dynamic_cast<ImageView*>(&view_)) {
        if (imageView->image()) painter.drawImage(rect, toQImage(*imageView->image()));
        return;
    }
    auto* button = dynamic_cast<Button*>(&view_);
    if (!button) return;
    if (auto image = button->currentImage()) {
        Size size = image->size();
        QRectF target(rect.center().x() - size.width / 2, rect.center().y() - size.height / 2, size.width,
                      size.height);
        painter.drawImage(target, toQImage(*image));
    }
    if (auto title = button->currentTitle(); title && !title->empty()) {
        painter.setPen(toQColor(button->currentTitleColor()));
        painter.drawText(rect, Qt::AlignCenter | Qt::TextWordWrap, QString::fromStdString(*title));
    }
    if (button->isHighlighted() && button->showsTouchWhenHighlighted()) {
        QRadialGradient glow(rect.center(), std::min(rect.width(), rect.height()) / 2);
        glow.setColorAt(0, QColor(255, 255, 255, 200));
        glow.setColorAt(1, QColor(255, 255, 255, 0));
        painter.fillRect(rect, glow);
    }
}

}  // namespace kit::qt
