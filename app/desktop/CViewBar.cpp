#include "app/desktop/CViewBar.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

#include "app/desktop/CPreviewPane.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Widgets.h"

namespace {
constexpr double kButtonScale = 1.25;
constexpr int kRoom = 10;  // beside a button's text
}  // namespace

QPushButton* AddButton(QWidget& bar, const SButton& wanted) {
    auto* button = new QPushButton(wanted.text);
    button->setObjectName(wanted.name);
    button->setAutoDefault(false);
    button->setMinimumWidth(button->sizeHint().width() + kRoom);
    const QString keys = wanted.key.toString(QKeySequence::NativeText);
    QString tip = wanted.tip;
    if (!keys.isEmpty()) tip = tip.isEmpty() ? keys : tip + " (" + keys + ")";
    button->setToolTip(tip.isEmpty() ? QString(wanted.text).remove('&') : tip);
    if (wanted.action) QObject::connect(button, &QPushButton::clicked, button, wanted.action);
    if (!wanted.key.isEmpty()) {
        QObject::connect(new QShortcut(wanted.key, &bar), &QShortcut::activated, button, [button] {
            if (button->isEnabled()) button->click();
        });
    }
    bar.layout()->addWidget(button);
    return button;
}

QPushButton* AddButton(QWidget& bar, const SButton& wanted, const QIcon& picture) {
    QPushButton* button = AddButton(bar, wanted);
    const QString name = QString(wanted.text).remove('&');
    button->setAccessibleName(name);
    if (!wanted.tip.isEmpty()) button->setToolTip(name + ": " + button->toolTip());
    button->setText({});
    button->setIcon(picture);
    button->setMinimumWidth(0);
    return button;
}

CViewBar::CViewBar(CPreviewPane& pane, QWidget* parent)
    : QWidget(parent), pane_(pane), scale_(new QLineEdit) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    QPushButton* fit = AddButton(
        *this, {"fit", Text(EText::Fit), {}, QKeySequence("Ctrl+0"), [this] { pane_.Fit(); }});
    QPushButton* one_to_one =
        AddButton(*this, {"one-to-one", Text(EText::OneToOne), {}, QKeySequence("Ctrl+1"), [this] {
                              pane_.ScaleTo(1);
                          }});
    for (QPushButton* button : {fit, one_to_one}) {
        button->setFixedWidth(fontMetrics().horizontalAdvance(button->text()) + 2 * kRoom);
    }
    const auto step = [&](const char* name, const QString& sign, EText tip, const QKeySequence& key,
                          double factor) {
        QPushButton* button = AddButton(
            *this, {name, sign, Text(tip), key, [this, factor] { pane_.ScaleBy(factor); }});
        button->setAccessibleName(Text(tip));
        button->setFixedWidth(button->sizeHint().height() + 8);
        optional_.push_back(button);
    };
    step("smaller", "−", EText::Smaller, QKeySequence::ZoomOut, 1 / kButtonScale);
    scale_->setObjectName("scale");
    scale_->setAccessibleName(Text(EText::Scale));
    scale_->setToolTip(Text(EText::ScaleTip));
    scale_->setAlignment(Qt::AlignCenter);
    scale_->setFixedWidth(fontMetrics().horizontalAdvance("1600 %") + 16);
    layout->addWidget(scale_);
    step("larger", "+", EText::Larger, QKeySequence::ZoomIn, kButtonScale);
    QPushButton* split = AddButton(*this, {"split", Text(EText::Split), Text(EText::SplitTip)},
                                   SplitIcon(palette()));
    split->setCheckable(true);
    connect(split, &QPushButton::toggled, this, [this](bool on) { pane_.SetSplit(on); });
    QPushButton* original = AddButton(
        *this, {"original", Text(EText::Original), Text(EText::OriginalTip)}, EyeIcon(palette()));
    connect(original, &QPushButton::pressed, this, [this] { pane_.ShowOriginal(true); });
    connect(original, &QPushButton::released, this, [this] { pane_.ShowOriginal(false); });
    layout->addStretch(1);
    optional_.insert(optional_.end(), {one_to_one, fit});
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    // Not before the key is done with: as the preview's it would be OK's.
    connect(
        scale_, &QLineEdit::returnPressed, this, [this] { TakeScale(); }, Qt::QueuedConnection);
    connect(scale_, &QLineEdit::editingFinished, this, [this] { ShowScale(); });
    pane_.on_scale = [this] { ShowScale(); };
}

QPushButton* CViewBar::Add(const SButton& button, const QIcon& picture) {
    return AddButton(*this, button, picture);
}

void CViewBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    int room = width();
    for (int i = 0; i < layout()->count(); ++i) {
        const QWidget* widget = layout()->itemAt(i)->widget();
        if (widget) room -= std::max(widget->minimumWidth(), widget->minimumSizeHint().width());
        room -= layout()->spacing();
    }
    for (QPushButton* button : optional_) {
        button->setVisible(room >= 0);
        if (room < 0) room += button->width() + layout()->spacing();
    }
}

void CViewBar::ShowScale() {
    const double percent = pane_.Scale() * 100;
    scale_->setText(QString("%1 %").arg(percent, 0, 'f', percent < 10 ? 1 : 0));
}

// What is no number changes nothing.
void CViewBar::TakeScale() {
    bool is_number = false;
    const double percent =
        scale_->text().remove('%').replace(',', '.').trimmed().toDouble(&is_number);
    if (is_number && percent > 0) pane_.ScaleTo(percent / 100);
    pane_.setFocus();
}
