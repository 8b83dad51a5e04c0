#pragma once

#include <QAbstractSpinBox>
#include <QDial>
#include <QIcon>
#include <QStyledItemDelegate>
#include <functional>

struct SControlState;

// The controls that the toolkit's own set lacks. Each tells of its user's actions only.

// An angle in degrees, clockwise from the top: dragged, or turned by keys and the wheel.
class CAngleDial final : public QDial {
  public:
    explicit CAngleDial(QWidget* parent = nullptr);
    std::function<void(int)> on_turned;
    void ShowAngle(int degrees);
    QSize sizeHint() const override { return {56, 56}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void TurnTo(QPointF pointer, Qt::KeyboardModifiers keys);
};

// A whole number: any text can be typed, one that is no number of the range is outlined in red.
class CNumberField final : public QAbstractSpinBox {
  public:
    explicit CNumberField(QWidget* parent = nullptr);
    std::function<void(const QString&)> on_typed;
    std::function<void(int)> on_stepped;
    std::function<void()> on_left;  // the focus has gone
    void ShowState(const SControlState& state);
    bool IsWrong() const { return wrong_; }

    void stepBy(int steps) override;
    QValidator::State validate(QString&, int&) const override { return QValidator::Acceptable; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    StepEnabled stepEnabled() const override;
    void paintEvent(QPaintEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    int value_ = 0, minimum_ = 0, maximum_ = 0;
    bool wrong_ = false;
};

// Shows what is selected in a list by a frame, so that pictures keep their colours.
class CFrameDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

// Lets a dialog open beside the preview of its window, not over it, as far as the screen allows.
void PlaceBesidePreview(QWidget& dialog);

// Small pictures for buttons, drawn in the palette's colours.
QIcon SwatchIcon(QRgb colour, QSize size);
QIcon ResetIcon(const QPalette& palette);
QIcon PipetteIcon(const QPalette& palette);
QIcon UndoIcon(const QPalette& palette);
QIcon RedoIcon(const QPalette& palette);
QIcon HistoryIcon(const QPalette& palette);
QIcon SplitIcon(const QPalette& palette);
QIcon EyeIcon(const QPalette& palette);
QIcon StarIcon(const QPalette& palette);
QIcon EffectsIcon(const QPalette& palette);
QIcon FullScreenIcon(const QPalette& palette);
QIcon HelpIcon(const QPalette& palette);
QIcon DiceIcon(const QPalette& palette);
QIcon SaveIcon(const QPalette& palette);
QIcon CommandLineIcon(const QPalette& palette);
