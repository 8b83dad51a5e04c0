#include "app/desktop/Widgets.h"

#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "app/desktop/Texts.h"
#include "hostlib/windowing/IToolkit.h"

namespace {

constexpr int kFullTurn = 360;
constexpr int kQuarterTurn = 90;
constexpr int kSnap = 15;  // degrees, with the shift key held
constexpr int kIconSide = 16;

double Radians(int degrees) { return degrees * std::numbers::pi / 180; }

// A picture for a button, drawn by `draw` in a square of kIconSide.
template <class Draw>
QIcon DrawnIcon(const QPalette& palette, Draw&& draw) {
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
        const auto group = mode == QIcon::Normal ? QPalette::Active : QPalette::Disabled;
        for (const int factor : {1, 2}) {
            QPixmap pixmap(kIconSide * factor, kIconSide * factor);
            pixmap.setDevicePixelRatio(factor);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(palette.color(group, QPalette::ButtonText), 1.6, Qt::SolidLine,
                                Qt::RoundCap, Qt::RoundJoin));
            draw(painter);
            icon.addPixmap(pixmap, mode);
        }
    }
    return icon;
}

}  // namespace

CAngleDial::CAngleDial(QWidget* parent) : QDial(parent) {
    setRange(0, kFullTurn - 1);
    setWrapping(true);
    setPageStep(kSnap);
    connect(this, &QDial::valueChanged, this, [this](int degrees) {
        if (on_turned) on_turned(degrees);
    });
}

void CAngleDial::ShowAngle(int degrees) {
    const QSignalBlocker quiet(this);
    setValue((degrees % kFullTurn + kFullTurn) % kFullTurn);
    update();
}

void CAngleDial::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const double side = std::min(width(), height()) - 4;
    const QPointF middle(width() / 2.0, height() / 2.0);
    painter.setPen(QPen(palette().color(group, hasFocus() ? QPalette::Highlight : QPalette::Mid),
                        hasFocus() ? 2 : 1.2));
    painter.setBrush(palette().color(group, QPalette::Base));
    painter.drawEllipse(middle, side / 2, side / 2);
    painter.setPen(QPen(palette().color(group, QPalette::Mid), 1));
    for (int mark = 0; mark < kFullTurn; mark += 3 * kSnap) {
        const QPointF outward(std::cos(Radians(mark)), -std::sin(Radians(mark)));
        painter.drawLine(middle + outward * (side / 2 - 4), middle + outward * (side / 2 - 1));
    }
    const double direction = Radians(kQuarterTurn - value());
    const QPointF hand(std::cos(direction), -std::sin(direction));
    painter.setPen(QPen(palette().color(group, QPalette::Text), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(middle, middle + hand * (side / 2 - 8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(group, QPalette::Highlight));
    painter.drawEllipse(middle + hand * (side / 2 - 8), 4, 4);
}

void CAngleDial::TurnTo(QPointF pointer, Qt::KeyboardModifiers keys) {
    const QPointF from = pointer - QPointF(width() / 2.0, height() / 2.0);
    const double direction = std::atan2(-from.y(), from.x()) * 180 / std::numbers::pi;
    const double degrees = kQuarterTurn - direction;
    int angle = static_cast<int>(std::lround(degrees));
    if (keys & Qt::ShiftModifier) angle = static_cast<int>(std::lround(degrees / kSnap)) * kSnap;
    setValue((angle + kFullTurn) % kFullTurn);
}

void CAngleDial::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    emit sliderPressed();
    TurnTo(event->position(), event->modifiers());
}
void CAngleDial::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) TurnTo(event->position(), event->modifiers());
}
void CAngleDial::mouseReleaseEvent(QMouseEvent* event) { event->accept(); }

CNumberField::CNumberField(QWidget* parent) : QAbstractSpinBox(parent) {
    setKeyboardTracking(true);
    setAlignment(Qt::AlignRight);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
        if (on_typed) on_typed(text);
    });
}

void CNumberField::ShowState(const SControlState& state) {
    value_ = state.value;
    minimum_ = state.minimum;
    maximum_ = state.maximum;
    wrong_ = state.wrong;
    const QString text = ToQt(state.text);
    if (lineEdit()->text() != text) lineEdit()->setText(text);
    setAccessibleDescription(wrong_ ? Text(EText::WrongNumber).arg(minimum_).arg(maximum_)
                                    : QString());
    updateGeometry();
    update();
}

void CNumberField::stepBy(int steps) {
    if (on_stepped) on_stepped(steps);
    selectAll();
}

QAbstractSpinBox::StepEnabled CNumberField::stepEnabled() const {
    return (value_ < maximum_ ? StepUpEnabled : StepNone) |
           (value_ > minimum_ ? StepDownEnabled : StepNone);
}

QSize CNumberField::sizeHint() const {
    constexpr int kDigits = 6, kFrameAndButtons = 34;
    ensurePolished();
    return {fontMetrics().horizontalAdvance(QString(kDigits, u'0')) + kFrameAndButtons,
            QAbstractSpinBox::sizeHint().height()};
}

void CNumberField::paintEvent(QPaintEvent* event) {
    QAbstractSpinBox::paintEvent(event);
    if (!wrong_) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0xd0, 0x20, 0x20), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
}

void CNumberField::focusOutEvent(QFocusEvent* event) {
    QAbstractSpinBox::focusOutEvent(event);
    if (on_left) on_left();
}

void CFrameDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    QStyleOptionViewItem plain = option;
    const bool selected = plain.state.testFlag(QStyle::State_Selected);
    plain.state.setFlag(QStyle::State_Selected, false);
    QStyledItemDelegate::paint(painter, plain, index);
    if (!selected) return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(option.palette.color(QPalette::Highlight), 3));
    painter->drawRoundedRect(QRectF(option.rect).adjusted(2, 2, -2, -2), 4, 4);
    painter->restore();
}

void PlaceBesidePreview(QWidget& dialog) {
    constexpr int kNarrowest = 320, kFrame = 8;
    const QWidget* window = dialog.parentWidget();
    const auto* preview = window ? window->findChild<const QWidget*>("preview") : nullptr;
    if (!preview || !window->screen()) return;
    const QRect screen = window->screen()->availableGeometry();
    const QRect pane(preview->mapToGlobal(QPoint()), preview->size());
    const QSize wanted = dialog.size().expandedTo(dialog.sizeHint()).boundedTo(screen.size());
    const int right = screen.right() - pane.right() - 2 * kFrame;
    const int left = pane.left() - screen.left() - 2 * kFrame;
    const bool at_right = right >= wanted.width() || right >= left;
    const int width = std::min(wanted.width(), std::max(at_right ? right : left, kNarrowest));
    dialog.resize(width, wanted.height());
    const int x = at_right ? pane.right() + kFrame : pane.left() - kFrame - width;
    const int lowest = screen.bottom() - wanted.height() - 4 * kFrame;
    dialog.move(std::clamp(x, screen.left(), std::max(screen.left(), screen.right() - width)),
                std::max(screen.top(), std::min(pane.top(), lowest)));
}

QIcon SwatchIcon(QRgb colour, QSize size) {
    QPixmap pixmap(size);
    pixmap.fill(QColor(colour));
    QPainter painter(&pixmap);
    painter.setPen(QColor(0x80, 0x80, 0x80));
    painter.drawRect(0, 0, size.width() - 1, size.height() - 1);
    painter.end();
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected);
    return icon;
}

QIcon ResetIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawArc(QRectF(3, 3, 10, 10), 150 * 16, 280 * 16);
        painter.drawPolyline(QPolygonF({{2.2, 3.2}, {3.4, 6.6}, {6.8, 5.6}}));
    });
}

QIcon PipetteIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawPolyline(QPolygonF({{9, 5}, {3.5, 10.5}, {2.5, 13.5}, {5.5, 12.5}, {11, 7}}));
        painter.drawLine(QPointF(7.8, 3.8), QPointF(12.2, 8.2));
        painter.setBrush(painter.pen().color());
        painter.drawEllipse(QPointF(12, 4), 2, 2);
    });
}

namespace {

void DrawArrowBack(QPainter& painter) {
    painter.drawPolyline(QPolygonF({{5.5, 2.5}, {2, 6}, {5.5, 9.5}}));
    QPainterPath back(QPointF(2, 6));
    back.lineTo(9.5, 6);
    back.arcTo(QRectF(6, 6, 7.5, 7.5), 90, -180);
    back.lineTo(6, 13.5);
    painter.drawPath(back);
}

}  // namespace

QIcon UndoIcon(const QPalette& palette) { return DrawnIcon(palette, &DrawArrowBack); }

QIcon RedoIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.translate(kIconSide, 0);
        painter.scale(-1, 1);
        DrawArrowBack(painter);
    });
}

QIcon HistoryIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawEllipse(QRectF(2, 2, 12, 12));
        painter.drawPolyline(QPolygonF({{8, 4.5}, {8, 8}, {10.5, 9.5}}));
    });
}

QIcon SplitIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawRect(QRectF(1.5, 2.5, 13, 11));
        painter.fillRect(QRectF(2, 3, 6, 10), painter.pen().color());
    });
}

QIcon EyeIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        QPainterPath eye(QPointF(1, 8));
        eye.quadTo(8, 0, 15, 8);
        eye.quadTo(8, 16, 1, 8);
        painter.drawPath(eye);
        painter.setBrush(painter.pen().color());
        painter.drawEllipse(QPointF(8, 8), 2, 2);
    });
}

QIcon StarIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        QPolygonF star;
        for (int i = 0; i < 10; ++i) {
            const double direction = Radians(kQuarterTurn + 36 * i);
            const double radius = i % 2 == 0 ? 7 : 3;
            star << QPointF(8 + radius * std::cos(direction), 8.5 - radius * std::sin(direction));
        }
        painter.drawPolygon(star);
    });
}

QIcon EffectsIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        for (const double x : {2.0, 9.0}) {
            for (const double y : {2.0, 9.0}) painter.drawRect(QRectF(x, y, 5, 5));
        }
    });
}

QIcon FullScreenIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawPolyline(QPolygonF({{1.5, 5.5}, {1.5, 2}, {5.5, 2}}));
        painter.drawPolyline(QPolygonF({{10.5, 2}, {14.5, 2}, {14.5, 5.5}}));
        painter.drawPolyline(QPolygonF({{14.5, 10.5}, {14.5, 14}, {10.5, 14}}));
        painter.drawPolyline(QPolygonF({{5.5, 14}, {1.5, 14}, {1.5, 10.5}}));
    });
}

QIcon HelpIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        QPainterPath mark(QPointF(4.5, 5.5));
        mark.cubicTo(4.5, 0, 12, 0.5, 11.5, 5);
        mark.cubicTo(11, 7.5, 8, 7.5, 8, 10.5);
        painter.drawPath(mark);
        painter.drawPoint(QPointF(8, 13.8));
    });
}

QIcon DiceIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 3, 3);
        painter.setBrush(painter.pen().color());
        painter.setPen(Qt::NoPen);
        for (const QPointF dot : {QPointF(5, 5), QPointF(8, 8), QPointF(11, 11)}) {
            painter.drawEllipse(dot, 1.4, 1.4);
        }
    });
}

QIcon SaveIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawLine(QPointF(8, 1.5), QPointF(8, 9.5));
        painter.drawPolyline(QPolygonF({{4.5, 6.5}, {8, 10}, {11.5, 6.5}}));
        painter.drawPolyline(QPolygonF({{1.5, 10}, {1.5, 14}, {14.5, 14}, {14.5, 10}}));
    });
}

QIcon CommandLineIcon(const QPalette& palette) {
    return DrawnIcon(palette, [](QPainter& painter) {
        painter.drawRoundedRect(QRectF(1, 2, 14, 12), 2, 2);
        painter.drawPolyline(QPolygonF({{4, 5.5}, {6.5, 8}, {4, 10.5}}));
        painter.drawLine(QPointF(8, 10.5), QPointF(11.5, 10.5));
    });
}
