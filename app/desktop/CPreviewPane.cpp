#include "app/desktop/CPreviewPane.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {

constexpr double kWheelStep = 1.25;
constexpr double kWheelNotch = 120;
constexpr double kKeyStep = 48;   // the arrow keys, in pixels of the pane
constexpr double kSplitGrip = 6;  // how near the line it can be taken
constexpr int kCheckerSquare = 8;

// Grey squares below transparent pictures.
void PaintChecker(QPainter& painter, const QRectF& where) {
    QImage tile(2 * kCheckerSquare, 2 * kCheckerSquare, QImage::Format_RGB32);
    tile.fill(QColor(0xcc, 0xcc, 0xcc));
    QPainter squares(&tile);
    squares.fillRect(0, 0, kCheckerSquare, kCheckerSquare, Qt::white);
    squares.fillRect(kCheckerSquare, kCheckerSquare, kCheckerSquare, kCheckerSquare, Qt::white);
    squares.end();
    painter.fillRect(where, QBrush(tile));
}

}  // namespace

CPreviewPane::CPreviewPane(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CPreviewPane::SetPictureSize(CSize size) {
    size_ = size;
    if (fitted_) Fit();
}

void CPreviewPane::SetOriginal(std::shared_ptr<const CPyramid> original) {
    if (original == original_) return;
    original_ = std::move(original);
    original_image_ = {};
    update();
}

void CPreviewPane::SetResult(std::shared_ptr<const CPyramid> result) {
    if (result == result_) return;
    result_ = std::move(result);
    result_image_ = {};
    update();
}

int CPreviewPane::ShownLevel() const {
    return scale_ >= 1 ? 0 : static_cast<int>(std::floor(std::log2(1 / scale_) + 1e-9));
}

QSizeF CPreviewPane::DeviceSize() const { return QSizeF(size()) * devicePixelRatioF(); }

// Where the whole picture lies, in pixels of the screen. From scale 1 its pixels are the screen's,
// or whole squares of them.
QRectF CPreviewPane::PictureRect() const {
    const QSizeF pane = DeviceSize();
    QPointF corner(pane.width() / 2 - centre_.x() * scale_,
                   pane.height() / 2 - centre_.y() * scale_);
    corner = QPointF(std::round(corner.x()), std::round(corner.y()));
    return {corner, QSizeF(size_.cx * scale_, size_.cy * scale_)};
}

QPointF CPreviewPane::ToPicture(QPointF pane) const {
    return (pane * devicePixelRatioF() - PictureRect().topLeft()) / scale_;
}

void CPreviewPane::Fit() {
    fitted_ = true;
    if (size_.cx < 1 || size_.cy < 1) return;
    const QSizeF pane = DeviceSize();
    const double fit = std::min(pane.width() / size_.cx, pane.height() / size_.cy);
    scale_ = std::clamp(fit, kSmallest, 1.0);
    centre_ = QPointF(size_.cx / 2.0, size_.cy / 2.0);
    ViewChanged();
}

void CPreviewPane::ScaleTo(double scale, QPointF anchor) {
    const double wanted = std::clamp(scale, kSmallest, kLargest);
    fitted_ = false;
    const QPointF fixed = ToPicture(anchor);
    const QPointF from_middle =
        anchor * devicePixelRatioF() - QPointF(DeviceSize().width() / 2, DeviceSize().height() / 2);
    scale_ = wanted;
    centre_ = fixed - from_middle / scale_;
    KeepInside();
    ViewChanged();
}

void CPreviewPane::ScaleTo(double scale) { ScaleTo(scale, QPointF(width() / 2.0, height() / 2.0)); }

void CPreviewPane::MoveTo(QPointF centre) {
    centre_ = centre;
    fitted_ = false;
    KeepInside();
    ViewChanged();
}

// The middle of the pane always shows something of the picture.
void CPreviewPane::KeepInside() {
    centre_.setX(std::clamp(centre_.x(), 0.0, static_cast<double>(size_.cx)));
    centre_.setY(std::clamp(centre_.y(), 0.0, static_cast<double>(size_.cy)));
}

void CPreviewPane::ViewChanged() {
    original_image_ = {};
    result_image_ = {};
    update();
    if (on_scale) on_scale();
}

void CPreviewPane::SetSplit(bool on) {
    split_ = on;
    update();
}

void CPreviewPane::MoveSplit(double position) {
    split_position_ = std::clamp(position, 0.0, 1.0);
    update();
}

void CPreviewPane::ShowOriginal(bool original) {
    show_original_ = original;
    update();
}

void CPreviewPane::SetPicking(bool on) {
    picking_ = on;
    setCursor(on ? Qt::CrossCursor : Qt::ArrowCursor);
    update();
}

QImage CPreviewPane::Render(const CPyramid* picture) const {
    QImage image(DeviceSize().toSize(), QImage::Format_RGB32);
    image.fill(palette().color(QPalette::Window).darker(115));
    const QRectF whole = PictureRect();
    if (!picture || size_.cx < 1) return image;
    const int level = picture->Nearest(ShownLevel());
    const CRowIteratorBands& pixels = picture->Level(level);
    const double step = std::ldexp(1.0, level) * scale_;  // of a level's pixel on the screen
    const QRectF seen = whole.intersected(QRectF(image.rect())).translated(-whole.topLeft());
    const QRect part = QRectF(seen.topLeft() / step, seen.bottomRight() / step)
                           .toAlignedRect()
                           .adjusted(-1, -1, 1, 1)
                           .intersected(QRect(0, 0, pixels.GetWidth(), pixels.GetHeight()));
    if (part.isEmpty()) return image;
    QPainter painter(&image);
    painter.setClipRect(whole);
    if (pixels.GetPixelFormat().IsAlphaChannelPresent()) PaintChecker(painter, whole);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, level > 0 || scale_ < 1);
    painter.drawImage(
        QRectF(whole.topLeft() + QPointF(part.topLeft()) * step, QSizeF(part.size()) * step),
        picture->Image(level, part));
    return image;
}

QImage CPreviewPane::Rendered() const {
    const bool original = show_original_ || picking_ || !result_;
    QImage& image = original ? original_image_ : result_image_;
    if (image.isNull()) image = Render(original ? original_.get() : result_.get());
    image.setDevicePixelRatio(devicePixelRatioF());
    return image;
}

void CPreviewPane::PaintSplit(QPainter& painter) {
    if (original_image_.isNull()) original_image_ = Render(original_.get());
    original_image_.setDevicePixelRatio(devicePixelRatioF());
    painter.save();
    painter.setClipRect(QRectF(0, 0, SplitX(), height()));
    painter.drawImage(QPointF(), original_image_);
    painter.restore();
    const QLineF line(SplitX(), 0, SplitX(), height());
    painter.setPen(QPen(palette().color(QPalette::Shadow), 3));
    painter.drawLine(line);
    painter.setPen(QPen(palette().color(QPalette::HighlightedText), 1));
    painter.drawLine(line);
}

void CPreviewPane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawImage(QPointF(), Rendered());
    if (split_ && original_ && result_ && !show_original_ && !picking_) PaintSplit(painter);
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
}

void CPreviewPane::resizeEvent(QResizeEvent*) { fitted_ ? Fit() : ViewChanged(); }

void CPreviewPane::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) ViewChanged();
    QWidget::changeEvent(event);
}

void CPreviewPane::wheelEvent(QWheelEvent* event) {
    ScaleTo(scale_ * std::pow(kWheelStep, event->angleDelta().y() / kWheelNotch),
            event->position());
    event->accept();
}

void CPreviewPane::UpdateCursor(QPointF at) {
    if (picking_) return;
    const bool on_line = split_ && std::abs(at.x() - SplitX()) <= kSplitGrip;
    setCursor(drag_ == EDrag::Picture ? Qt::ClosedHandCursor
              : on_line               ? Qt::SplitHCursor
                                      : Qt::ArrowCursor);
}

void CPreviewPane::mousePressEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (picking_ && event->button() == Qt::LeftButton) {
        const QPointF pixel = ToPicture(at);
        const QPoint found(static_cast<int>(std::floor(pixel.x())),
                           static_cast<int>(std::floor(pixel.y())));
        if (QRect(0, 0, size_.cx, size_.cy).contains(found) && on_pick) on_pick(found);
        return;
    }
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return;
    const bool on_line = split_ && std::abs(at.x() - SplitX()) <= kSplitGrip;
    drag_ = on_line && event->button() == Qt::LeftButton ? EDrag::Split : EDrag::Picture;
    drag_from_ = at;
    UpdateCursor(at);
}

void CPreviewPane::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (drag_ == EDrag::Split) MoveSplit(at.x() / width());
    if (drag_ == EDrag::Picture) {
        MoveTo(centre_ - (at - drag_from_) * devicePixelRatioF() / scale_);
        drag_from_ = at;
    }
    UpdateCursor(at);
}

void CPreviewPane::mouseReleaseEvent(QMouseEvent* event) {
    drag_ = EDrag::None;
    UpdateCursor(event->position());
}

void CPreviewPane::mouseDoubleClickEvent(QMouseEvent* event) {
    fitted_ ? ScaleTo(1, event->position()) : Fit();
}

void CPreviewPane::keyPressEvent(QKeyEvent* event) {
    const double step = kKeyStep / scale_;
    switch (event->key()) {
        case Qt::Key_Left:
            return MoveTo(centre_ - QPointF(step, 0));
        case Qt::Key_Right:
            return MoveTo(centre_ + QPointF(step, 0));
        case Qt::Key_Up:
            return MoveTo(centre_ - QPointF(0, step));
        case Qt::Key_Down:
            return MoveTo(centre_ + QPointF(0, step));
        case Qt::Key_Plus:
            return ScaleBy(kWheelStep);
        case Qt::Key_Minus:
            return ScaleBy(1 / kWheelStep);
        default:
            return QWidget::keyPressEvent(event);
    }
}
