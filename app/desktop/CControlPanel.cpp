#include "app/desktop/CControlPanel.h"

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>
#include <algorithm>
#include <array>
#include <cmath>

#include "app/desktop/CResourceBrowser.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Thumbnails.h"
#include "app/desktop/Widgets.h"
#include "app/desktop/WindowSettings.h"

namespace {

constexpr QSize kSwatchIcon{44, 20};
constexpr QSize kResourceIcon{40, 40};
constexpr int kSliderWidth = 50;  // at least
constexpr int kRoom = 60;         // for sliders beyond what they need
constexpr int kSliderSteps = 1000;
constexpr int kPages = 10;  // of a range, for the keys of a slider
constexpr int kNoteMilliseconds = 5000;
constexpr QKeyCombination kResetKey = Qt::ControlModifier | Qt::Key_Backspace;
// From this range on a slider gives small values more room.
constexpr int kLongRange = 400;
constexpr const char* kPickedSide = "picker/side";
constexpr std::array kPickedSides = {1, 3, 5, 11, 31};

// Between a slider's position, 0 to kSliderSteps, and a value of the range.
int ValueAt(int position, int minimum, int maximum) {
    double share = static_cast<double>(position) / kSliderSteps;
    if (maximum - minimum >= kLongRange && minimum >= 0) share *= share;
    return minimum + static_cast<int>(std::lround(share * (maximum - minimum)));
}
int PositionOf(int value, int minimum, int maximum) {
    if (maximum <= minimum) return 0;
    double share = static_cast<double>(value - minimum) / (maximum - minimum);
    if (maximum - minimum >= kLongRange && minimum >= 0) share = std::sqrt(std::max(share, 0.0));
    return static_cast<int>(std::lround(share * kSliderSteps));
}

QRgb ToRgb(COLORREF colour) {
    const CColorRef c{colour};
    return qRgb(c.Red(), c.Green(), c.Blue());
}
COLORREF ToColorRef(const QColor& colour) {
    return CColorRef::FromRgb(colour.red(), colour.green(), colour.blue()).value;
}

QWidget* InOneLine(const std::vector<QWidget*>& widgets) {
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets) layout->addWidget(widget);
    return line;
}

// The first control that holds a value of its own; a dial shows that of the field beside it.
int MainControl(const STemplateRow& row) {
    const auto is_value = [](const SControlTemplate& c) {
        return c.kind != EControlKind::Label && c.kind != EControlKind::Button;
    };
    const auto found = std::find_if(row.controls.begin(), row.controls.end(), is_value);
    return found == row.controls.end() ? 0 : found->id;
}

}  // namespace

CControlPanel::CControlPanel(IDialogModel& model, QWidget* parent)
    : QScrollArea(parent), model_(model) {
    auto* inside = new QWidget;
    auto* grid = new QGridLayout(inside);
    grid->setContentsMargins(8, 4, 8, 4);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(1, 1);
    for (const STemplateGroup& group : model.Template().groups) AddGroup(group, *grid);
    grid->setRowStretch(grid->rowCount(), 1);
    setWidget(inside);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    for (const STemplateGroup& group : model.Template().groups) {
        for (const STemplateRow& row : group.rows) {
            if (row.label_id) Show(model.Control(row.label_id));
            for (const SControlTemplate& control : row.controls) Show(model.Control(control.id));
        }
    }
}

QSize CControlPanel::sizeHint() const {
    const QSize inside = widget()->minimumSizeHint().expandedTo(widget()->sizeHint());
    return inside + QSize(kRoom + verticalScrollBar()->sizeHint().width(), 2);
}

// It scrolls up and down only, so nothing may be cut off at its side.
QSize CControlPanel::minimumSizeHint() const {
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(),
            QScrollArea::minimumSizeHint().height()};
}

void CControlPanel::Show(const SControlState& control) {
    const auto shower = showers_.find(control.id);
    if (shower != showers_.end()) shower->second(control);
}

void CControlPanel::AddGroup(const STemplateGroup& group, QGridLayout& grid) {
    if (!group.title.IsEmpty()) {
        auto* title = new QLabel(ToQt(group.title));
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
        const int row = grid.rowCount();
        if (row > 1) grid.setRowMinimumHeight(row, 8);
        grid.addWidget(title, row + 1, 0, 1, 3);
    }
    for (const STemplateRow& row : group.rows) AddRow(row, grid);
}

void CControlPanel::AddRow(const STemplateRow& row, QGridLayout& grid) {
    const int line = grid.rowCount();
    QWidget* first = nullptr;
    std::vector<QWidget*> controls;
    for (const SControlTemplate& control : row.controls) {
        QWidget* made = MakeControl(control, row);
        if (!first) first = made->focusProxy() ? made->focusProxy() : made;
        // Fields stand below each other at the right, a dial before its field.
        const bool dial = control.kind == EControlKind::Dial;
        controls.insert(dial ? controls.begin() : controls.end(), made);
    }
    if (!first_) first_ = first;
    QWidget* all = controls.size() == 1 ? controls.front() : InOneLine(controls);
    const bool own_text = row.label.IsEmpty();
    if (!own_text) {
        auto* label = new QLabel(ToQt(row.label));
        label->setBuddy(first);
        if (row.label_id) {
            label->setObjectName(QString("control-%1").arg(row.label_id));
            showers_[row.label_id] = [label](const SControlState& state) {
                label->setText(ToQt(state.text));
                label->setEnabled(state.enabled);
            };
        }
        grid.addWidget(label, line, 0);
    }
    const int main = MainControl(row);
    const bool across = own_text && main != 0;
    grid.addWidget(all, line, across ? 0 : 1, 1, across ? 2 : 1);
    if (main == 0) return;
    const QString name = ToQt(own_text ? model_.Control(main).text : row.label);
    grid.addWidget(MakeReset(main, name), line, 2);
}

QWidget* CControlPanel::MakeControl(const SControlTemplate& control, const STemplateRow& row) {
    const QString label = ToQt(row.label);
    names_[control.id] = label.isEmpty() ? ToQt(control.text) : label;
    names_[control.id].remove('&');
    Shower& show = showers_[control.id];
    QWidget* made = nullptr;
    switch (control.kind) {
        case EControlKind::Number:
            made = MakeNumber(control.id, label, show);
            break;
        case EControlKind::Check:
            made = MakeCheck(control.id, show);
            break;
        case EControlKind::Swatch:
            made = MakeSwatch(control.id, label, show);
            break;
        case EControlKind::Dial:
            made = MakeDial(control.id, label, show);
            break;
        case EControlKind::List:
            made = MakeList(control.id, show);
            break;
        case EControlKind::Resource:
            made = MakeResource(control.id, label, show);
            break;
        case EControlKind::Button: {
            auto* button = new QPushButton(ToQt(control.text));
            button->setAutoDefault(false);
            connect(button, &QPushButton::clicked, this,
                    [this, id = control.id] { model_.Click(id); });
            show = [button](const SControlState& state) { button->setEnabled(state.enabled); };
            made = button;
            break;
        }
        case EControlKind::Label: {
            auto* text = new QLabel(ToQt(control.text));
            show = [text](const SControlState& state) { text->setText(ToQt(state.text)); };
            made = text;
            break;
        }
    }
    QWidget* named = made->focusProxy() ? made->focusProxy() : made;
    named->setObjectName(QString("control-%1").arg(control.id));
    if (named->accessibleName().isEmpty()) {
        named->setAccessibleName(label.isEmpty() ? ToQt(control.text) : label);
    }
    Watch(made, control.id);
    for (QWidget* part : made->findChildren<QWidget*>()) Watch(part, control.id);
    return made;
}

// A field and a slider for the same number, and below them what is wrong with a text. Tab goes from
// field to field; a slider is worked by keys once it was clicked.
QWidget* CControlPanel::MakeNumber(int id, const QString& label, Shower& show) {
    auto* field = new CNumberField;
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setRange(0, kSliderSteps);
    slider->setPageStep(kSliderSteps / 10);
    slider->setMinimumWidth(kSliderWidth);
    slider->setFocusPolicy(Qt::ClickFocus);
    slider->setAccessibleName(label);
    slider->setObjectName(QString("slider-%1").arg(id));
    field->on_typed = [this, id](const QString& text) { model_.Type(id, FromQt(text)); };
    field->on_stepped = [this, id](int by) { model_.Step(id, by); };
    auto* note = new QLabel;
    note->setObjectName(QString("note-%1").arg(id));
    note->setWordWrap(true);
    note->setStyleSheet("color: #d03030");
    note->hide();
    field->on_left = [this, id, note] { LeaveNumber(id, *note); };
    connect(slider, &QSlider::sliderPressed, this, [this] { model_.EndChange(); });
    connect(slider, &QSlider::sliderReleased, this, [this] { model_.EndChange(); });
    connect(slider, &QSlider::valueChanged, this, [this, id](int position) {
        const SControlState& state = model_.Control(id);
        model_.Step(id, ValueAt(position, state.minimum, state.maximum) - state.value);
    });
    show = [field, slider, note](const SControlState& state) {
        field->ShowState(state);
        if (state.wrong) {
            note->setText(Text(EText::WrongNumber).arg(state.minimum).arg(state.maximum));
        }
        note->setVisible(state.wrong);
        field->setEnabled(state.enabled);
        slider->setEnabled(state.enabled);
        const int at = slider->value();
        if (slider->isSliderDown() && ValueAt(at, state.minimum, state.maximum) == state.value) {
            return;
        }
        const QSignalBlocker quiet(slider);
        slider->setValue(PositionOf(state.value, state.minimum, state.maximum));
    };
    auto* all = new QWidget;
    auto* layout = new QVBoxLayout(all);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(InOneLine({slider, field}));
    layout->addWidget(note);
    all->setFocusProxy(field);
    return all;
}

// A field is put right when its user goes elsewhere, but not under a click on the default button:
// that one goes back to the field.
void CControlPanel::LeaveNumber(int id, QLabel& note) {
    const SControlState& state = model_.Control(id);
    const auto* button = qobject_cast<QPushButton*>(QApplication::focusWidget());
    if (state.wrong && button && button->isDefault()) return;
    const QString typed = ToQt(state.text);
    const bool wrong = state.wrong;
    model_.Leave(id);
    if (!wrong || state.wrong) return;
    note.setText(Text(EText::Corrected).arg(typed).arg(state.value));
    note.show();
    QTimer::singleShot(kNoteMilliseconds, &note, [this, id, &note] {
        if (!model_.Control(id).wrong) note.hide();
    });
}

QWidget* CControlPanel::MakeCheck(int id, Shower& show) {
    auto* box = new QCheckBox(ToQt(model_.Control(id).text));
    connect(box, &QCheckBox::clicked, this, [this, id] { model_.Click(id); });
    show = [box](const SControlState& state) {
        box->setChecked(state.value != 0);
        box->setEnabled(state.enabled);
    };
    return box;
}

// The colour button and the pipette that takes a colour from the picture.
QWidget* CControlPanel::MakeSwatch(int id, const QString& label, Shower& show) {
    auto* swatch = new QPushButton;
    swatch->setIconSize(kSwatchIcon);
    swatch->setAutoDefault(false);
    auto* picker = new QToolButton;
    picker->setIcon(PipetteIcon(palette()));
    picker->setCheckable(true);
    picker->setAutoRaise(true);
    picker->setAccessibleName(Text(EText::PickColour).arg(label));
    picker->setToolTip(picker->accessibleName());
    picker->setObjectName(QString("picker-%1").arg(id));
    picker->setPopupMode(QToolButton::MenuButtonPopup);
    picker->setMenu(MakePickedSides(picker));
    pickers_[id] = picker;
    connect(swatch, &QPushButton::clicked, this, [this, id, swatch, label] {
        const COLORREF before = model_.Control(id).colour;
        QColorDialog dialog(QColor(ToRgb(before)), swatch->window());
        dialog.setWindowTitle(label);
        PlaceBesidePreview(dialog);
        connect(&dialog, &QColorDialog::currentColorChanged, this,
                [&](const QColor& colour) { model_.PickColour(id, ToColorRef(colour)); });
        model_.EndChange();
        if (dialog.exec() != QDialog::Accepted) model_.PickColour(id, before);
        model_.EndChange();
    });
    connect(picker, &QToolButton::toggled, this, [this, id](bool on) {
        for (const auto& [other, button] : pickers_) {
            const QSignalBlocker quiet(button);
            if (on && other != id) button->setChecked(false);
        }
        if (on) model_.AimDropper(id);
        if (on_pick) on_pick(on ? id : 0);
    });
    show = [this, swatch, picker, label](const SControlState& state) {
        const QRgb colour = ToRgb(state.colour);
        swatch->setIcon(SwatchIcon(colour, kSwatchIcon));
        swatch->setText(QColor(colour).name().toUpper());
        swatch->setAccessibleName(label + ", " + swatch->text());
        swatch->setEnabled(state.enabled);
        picker->setEnabled(state.enabled && model_.DropperEnabled());
    };
    QWidget* line = InOneLine({swatch, picker});
    static_cast<QHBoxLayout*>(line->layout())->addStretch(1);
    line->setFocusProxy(swatch);
    return line;
}

int CControlPanel::PickedSide() {
    return std::clamp(WindowSettings()->value(kPickedSide, 1).toInt(), 1, kPickedSides.back());
}

QMenu* CControlPanel::MakePickedSides(QWidget* parent) {
    auto* menu = new QMenu(parent);
    connect(menu, &QMenu::aboutToShow, menu, [menu] {
        menu->clear();
        for (const int side : kPickedSides) {
            QAction* action = menu->addAction(Text(EText::Average).arg(side), menu, [side] {
                WindowSettings()->setValue(kPickedSide, side);
            });
            action->setCheckable(true);
            action->setChecked(side == PickedSide());
        }
    });
    return menu;
}

QWidget* CControlPanel::MakeDial(int id, const QString& label, Shower& show) {
    auto* dial = new CAngleDial;
    dial->setAccessibleName(label);
    connect(dial, &QDial::sliderPressed, this, [this] { model_.EndChange(); });
    dial->on_turned = [this, id](int degrees) { model_.Turn(id, degrees); };
    show = [dial](const SControlState& state) {
        dial->ShowAngle(state.value);
        dial->setEnabled(state.enabled);
    };
    return dial;
}

QWidget* CControlPanel::MakeList(int id, Shower& show) {
    auto* list = new QComboBox;
    connect(list, &QComboBox::activated, this, [this, id](int entry) { model_.Choose(id, entry); });
    show = [list](const SControlState& state) {
        const QSignalBlocker quiet(list);
        if (list->count() != static_cast<int>(state.entries.size())) {
            list->clear();
            for (const SListEntry& entry : state.entries) list->addItem(ToQt(entry.text));
        }
        list->setCurrentIndex(state.selected);
        list->setEnabled(state.enabled);
    };
    return list;
}

QWidget* CControlPanel::MakeResource(int id, const QString& label, Shower& show) {
    auto* button = new QPushButton;
    button->setIconSize(kResourceIcon);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, id, button, label] {
        CResourceBrowser browser(model_, id, Text(EText::ChooseOne).arg(label), button->window());
        if (add_picture) browser.OfferAdding(add_picture);
        PlaceBesidePreview(browser);
        model_.EndChange();
        browser.exec();
        model_.EndChange();
    });
    const bool named_elsewhere = !model_.Template().ControlsOf(EControlKind::Label).empty();
    show = [button, label, named_elsewhere](const SControlState& state) {
        const bool chosen =
            state.selected >= 0 && state.selected < static_cast<int>(state.entries.size());
        const auto entry = static_cast<std::size_t>(chosen ? state.selected : 0);
        const QString name = chosen ? ToQt(state.entries[entry].text) : QString("…");
        if (!named_elsewhere) button->setText(name);
        button->setIcon(QIcon(PictureOf(state.picture, kResourceIcon)));
        button->setAccessibleName(label + ", " + name);
        button->setEnabled(state.enabled);
    };
    return button;
}

QToolButton* CControlPanel::MakeReset(int id, const QString& label) {
    auto* button = new QToolButton;
    button->setIcon(ResetIcon(palette()));
    button->setAutoRaise(true);
    button->setObjectName(QString("reset-%1").arg(id));
    button->setAccessibleName(Text(EText::ResetOne).arg(label));
    button->setToolTip(button->accessibleName() + " (" +
                       QKeySequence(kResetKey).toString(QKeySequence::NativeText) + ")");
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, this, [this, id] { model_.Reset(id); });
    return button;
}

void CControlPanel::Watch(QWidget* widget, int id) {
    if (widget->focusPolicy() == Qt::WheelFocus) widget->setFocusPolicy(Qt::StrongFocus);
    if (widget->toolTip().isEmpty()) watched_[widget] = id;
    widget->installEventFilter(this);
}

bool CControlPanel::eventFilter(QObject* watched, QEvent* event) {
    const auto found = watched_.find(watched);
    if (found == watched_.end()) return QScrollArea::eventFilter(watched, event);
    const int id = found->second;
    if (event->type() == QEvent::ToolTip) {
        const SControlState& state = model_.Control(id);
        QString tip = state.wrong ? Text(EText::WrongNumber).arg(state.minimum).arg(state.maximum)
                                  : ToQt(model_.ToolTip(id));
        if (tip.isEmpty()) tip = ToQt(model_.Description(id));
        if (tip.isEmpty()) tip = NameOf(id);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip);
        return true;
    }
    if (event->type() == QEvent::KeyPress &&
        KeyPressed(watched, *static_cast<QKeyEvent*>(event), id)) {
        return true;
    }
    const bool entered = event->type() == QEvent::Enter || event->type() == QEvent::FocusIn;
    if (entered && on_entered) on_entered(id);
    // The wheel scrolls the panel and changes a field only when that has the focus.
    if (event->type() == QEvent::Wheel && !static_cast<QWidget*>(watched)->hasFocus()) {
        event->ignore();
        return true;
    }
    return QScrollArea::eventFilter(watched, event);
}

// A control's row is reset by a key, and a slider goes by values of its range.
bool CControlPanel::KeyPressed(const QObject* watched, const QKeyEvent& event, int id) {
    if (event.keyCombination() == kResetKey) {
        model_.Reset(id);
        return true;
    }
    if (!qobject_cast<const QSlider*>(watched)) return false;
    const SControlState& state = model_.Control(id);
    const int range = state.maximum - state.minimum;
    const std::map<int, int> steps = {{Qt::Key_Left, -1},
                                      {Qt::Key_Down, -1},
                                      {Qt::Key_Right, 1},
                                      {Qt::Key_Up, 1},
                                      {Qt::Key_PageDown, -std::max(range / kPages, 1)},
                                      {Qt::Key_PageUp, std::max(range / kPages, 1)},
                                      {Qt::Key_Home, -range},
                                      {Qt::Key_End, range}};
    const auto step = steps.find(event.key());
    if (step == steps.end()) return false;
    model_.Step(id, step->second);
    return true;
}

QString CControlPanel::NameOf(int control) const {
    const auto found = names_.find(control);
    return found == names_.end() ? QString() : found->second;
}

void CControlPanel::EnablePicking(bool enabled) {
    for (const auto& [id, button] : pickers_) {
        if (!enabled) button->setChecked(false);
        button->setEnabled(enabled && model_.Control(id).enabled);
    }
}

void CControlPanel::FocusFirst() {
    if (first_) first_->setFocus();
}

void CControlPanel::EndPicking() {
    for (const auto& [id, button] : pickers_) button->setChecked(false);
}

bool CControlPanel::GoToWrongField() {
    for (auto* field : findChildren<CNumberField*>()) {
        if (!field->IsWrong()) continue;
        field->setFocus();
        field->selectAll();
        return true;
    }
    return false;
}
