#pragma once

#include "kit/Color.h"
#include "kit/port/ViewPeer.h"

#include <QColor>
#include <QImage>
#include <QWidget>

#include <memory>

namespace kit {
class Image;
class View;
}  // namespace kit

namespace kit::qt {

// One widget per model view. It draws what the model says: background colour, rounded corners,
// border, and for buttons and image views their title and image. Widgets let every mouse event
// through to the window peer, which turns them into model touches, so hit testing stays the
// model's.
class QtViewPeer : public QWidget, public ViewPeer {
public:
    QtViewPeer(View& view, QWidget* parent);
    ~QtViewPeer() override;

    void viewDidChange(Change change) override;
    View& view() const { return view_; }

    // Decoded once per image and kept while the image lives.
    static QImage toQImage(const Image& image);
    static QColor toQColor(Color color);

protected:
    void paintEvent(QPaintEvent* event) override;
    // Puts the widget where the model's frame says, inside the superview's bounds.
    void placeWidget();
    void restack();

private:
    double effectiveAlpha() const;
    void paintContent(class QPainter& painter, const QRectF& rect);

    View& view_;
};

}  // namespace kit::qt
