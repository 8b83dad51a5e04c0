#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <memory>

#include "app/desktop/CPyramid.h"

// Shows the original and the result at any scale: 1 is one pixel of the picture on one of the
// screen. Scale and place stay when another result comes. Dragging or the arrow keys move the
// picture, the wheel and + and - scale it about the pointer or the middle; with the split view on,
// what is left of the line is the original, and the line is dragged.
class CPreviewPane final : public QWidget {
  public:
    static constexpr double kSmallest = 0.05, kLargest = 16.0;

    explicit CPreviewPane(QWidget* parent = nullptr);

    // Told when the scale is another one, and in picking mode of the pixel that was picked.
    std::function<void()> on_scale;
    std::function<void(QPoint)> on_pick;

    // The size is known before the pictures are. A result belongs to the same size.
    void SetPictureSize(CSize size);
    void SetOriginal(std::shared_ptr<const CPyramid> original);
    void SetResult(std::shared_ptr<const CPyramid> result);

    double Scale() const { return scale_; }
    // The level of a picture whose pixels are just not larger than the screen's.
    int ShownLevel() const;
    bool IsFitted() const { return fitted_; }
    void Fit();
    // Keeps the point of the picture that is under `anchor` (in the pane) where it is.
    void ScaleTo(double scale, QPointF anchor);
    void ScaleTo(double scale);
    void ScaleBy(double factor) { ScaleTo(scale_ * factor); }
    // The point of the picture in the middle of the pane, in its pixels.
    QPointF Centre() const { return centre_; }
    void MoveTo(QPointF centre);

    void SetSplit(bool on);
    // Where the line stands, 0 (left) to 1.
    void MoveSplit(double position);
    double SplitPosition() const { return split_position_; }
    void ShowOriginal(bool original);
    // While picking, the original is shown: the picture that is picked from.
    void SetPicking(bool on);
    bool IsPicking() const { return picking_; }

    // What the pane shows, in pixels of the screen, and where the picture lies in it.
    QImage Rendered() const;
    QRectF PictureRect() const;

    QSize sizeHint() const override { return {760, 560}; }
    QSize minimumSizeHint() const override { return {160, 160}; }

  protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    enum class EDrag { None, Picture, Split };
    QSizeF DeviceSize() const;
    QPointF ToPicture(QPointF pane) const;
    QImage Render(const CPyramid* picture) const;
    double SplitX() const { return split_position_ * width(); }
    void KeepInside();
    void ViewChanged();
    void PaintSplit(QPainter& painter);
    void UpdateCursor(QPointF at);

    CSize size_;
    std::shared_ptr<const CPyramid> original_, result_;
    double scale_ = 1;
    QPointF centre_;
    bool fitted_ = true;
    bool split_ = false;
    double split_position_ = 0.5;
    bool show_original_ = false;
    bool picking_ = false;
    EDrag drag_ = EDrag::None;
    QPointF drag_from_;
    mutable QImage original_image_, result_image_;  // rendered; null when out of date
};
