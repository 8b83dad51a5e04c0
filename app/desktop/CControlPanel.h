#pragma once

#include <QScrollArea>
#include <functional>
#include <map>
#include <vector>

#include "hostlib/windowing/IToolkit.h"

class QGridLayout;
class QKeyEvent;
class QLabel;
class QMenu;
class QToolButton;

// The controls of a dialog, laid out from its template: labels in one column, fields in the next,
// a button that resets the field at the right. It is as wide as its texts need and scrolls when the
// screen is not high enough. The widget of a control is named "control-ID".
class CControlPanel final : public QScrollArea {
  public:
    CControlPanel(IDialogModel& model, QWidget* parent);

    // Told when the user wants to pick a colour for a swatch from the picture (or no more: 0), and
    // when the pointer or the focus comes to a control.
    std::function<void(int swatch)> on_pick;
    std::function<void(int control)> on_entered;
    // Takes a photograph into the user's library (SDesktopOptions::add_picture); may be empty.
    std::function<std::string(bool pattern, const std::string& file, const std::string& category)>
        add_picture;

    void Show(const SControlState& control);
    void EnablePicking(bool enabled);
    void EndPicking();
    void FocusFirst();
    // The side, in pixels, of the square that a picked colour is the mean of.
    static int PickedSide();
    // What a control is called, for texts about it.
    QString NameOf(int control) const;
    // Brings the focus to a field that holds no valid number; false when there is none.
    bool GoToWrongField();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    using Shower = std::function<void(const SControlState&)>;
    void AddGroup(const STemplateGroup& group, QGridLayout& grid);
    void AddRow(const STemplateRow& row, QGridLayout& grid);
    QWidget* MakeControl(const SControlTemplate& control, const STemplateRow& row);
    QWidget* MakeNumber(int id, const QString& label, Shower& show);
    QWidget* MakeCheck(int id, Shower& show);
    QWidget* MakeSwatch(int id, const QString& label, Shower& show);
    QWidget* MakeDial(int id, const QString& label, Shower& show);
    QWidget* MakeList(int id, Shower& show);
    QWidget* MakeResource(int id, const QString& label, Shower& show);
    static QMenu* MakePickedSides(QWidget* parent);
    QToolButton* MakeReset(int id, const QString& label);
    void Watch(QWidget* widget, int id);
    bool KeyPressed(const QObject* watched, const QKeyEvent& event, int id);
    void LeaveNumber(int id, QLabel& note);

    IDialogModel& model_;
    QWidget* first_ = nullptr;  // takes the focus when the dialog opens
    std::map<int, Shower> showers_;
    std::map<int, QToolButton*> pickers_;
    std::map<QObject*, int> watched_;
    std::map<int, QString> names_;
};
