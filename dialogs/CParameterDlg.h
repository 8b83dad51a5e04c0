#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "host/commands/IParameterRepository.h"
#include "host/dialogs/CColorDropper.h"
#include "host/dialogs/CMaterialWnd.h"
#include "host/dialogs/CNNumEdit.h"
#include "host/dialogs/CPreviewChild.h"
#include "host/dialogs/CRotationCtrl.h"
#include "host/windowing/Controls.h"

// How a control works and what its tool tip says.
enum class EBinding { Number, CanvasNumber, Check, Swatch, Dial, List, Resource };
enum class ETip { None, Range, Integer, Real, Boolean, Colour };
// What the framework's data exchange does with a control.
enum class EExchange { None, Control, Text, Check };

// One control of a dialog and the parameter that it shows.
struct SControlRow {
    EBinding binding;
    int id;
    int parameter;
    ETip tip = ETip::None;
    EExchange exchange = EExchange::None;

    constexpr SControlRow With(EExchange wanted) const {
        SControlRow row = *this;
        row.exchange = wanted;
        return row;
    }
};

// The rows that dialogs are made of.
namespace control {
constexpr SControlRow Number(int id, int parameter, ETip tip = ETip::Integer) {
    return {EBinding::Number, id, parameter, tip};
}
// A number whose maximum is the larger side of the canvas.
constexpr SControlRow CanvasNumber(int id, int parameter) {
    return {EBinding::CanvasNumber, id, parameter, ETip::Range};
}
constexpr SControlRow Check(int id, int parameter, ETip tip = ETip::None) {
    return {EBinding::Check, id, parameter, tip};
}
constexpr SControlRow Swatch(int id, int parameter, ETip tip = ETip::None) {
    return {EBinding::Swatch, id, parameter, tip};
}
constexpr SControlRow Dial(int id, int parameter) { return {EBinding::Dial, id, parameter}; }
constexpr SControlRow List(int id, int parameter) { return {EBinding::List, id, parameter}; }
constexpr SControlRow Resource(int id, int parameter) {
    return {EBinding::Resource, id, parameter};
}
}  // namespace control

// What makes one dialog differ from the others, as far as a table can say it. Types, ranges and
// texts of parameters are the repository's.
struct SDialogTable {
    int template_id;
    std::span<const SControlRow> controls;
    SNumEditSetUp numbers = {};
    bool dials_report_as_fields = false;  // a dial's EN_CHANGE counts, too
    bool exchanges_data = true;           // whether it does, with the framework
    // Messages that the framework handles.
    std::initializer_list<unsigned> framework_messages = {};
};

// The dialog of a command: controls bound to parameters by a table. A change of a control goes into
// the value member of its parameter, is stored in the repository, and asks for a new preview.
class CParameterDlg : public CPreviewChild, public CColorDropper {
  public:
    ~CParameterDlg() override;

    bool Create(CWnd* parent);
    void DoDataExchange(CDataExchange* exchange) override;
    bool OnInitDialog() override;
    void LoadParameters() override;
    void StoreParameters() override;
    int GetToolTipText(TOOLTIPTEXTW& info) override;
    int ParameterOf(int control_id) const override;
    void OnColorDropperLeft(COLORREF colour) override;

  protected:
    CParameterDlg(const SDialogTable& table, ICommandExecutionContext* context,
                  VCommandImplementation* command, CWnd* parent);

    // One parameter's value as the controls show it: which field counts depends on its type, which
    // an index that the repository leaves out does not have.
    struct SValue {
        std::optional<EParameterType> type;
        std::int32_t number = 0;  // integers, members, 0 or 1
        COLORREF colour = 0;
        CString text;
    };
    SValue& Value(int parameter) { return values_[static_cast<std::size_t>(parameter)]; }
    const SValue& Value(int parameter) const {
        return values_[static_cast<std::size_t>(parameter)];
    }
    bool Initialised() const { return initialised_; }
    void StoreAndPreview();
    // Puts a value member into every control that shows the parameter.
    void ShowParameter(int parameter);

    void EnableControl(int id, bool enable);

    // What single dialogs do beside the common way. The row's value member is up to date.
    virtual void OnNumberSet(const SControlRow& row);
    virtual void OnCheckClicked(const SControlRow& row, bool checked);
    // Whether a new colour takes effect now; if not, it only stays in the value member.
    virtual bool ColourTakesEffect(const SControlRow& row) const;
    // List and resource controls are the dialogs' own.
    virtual void ExchangeControl(CDataExchange* exchange, const SControlRow& row);
    virtual void SetUpList(const SControlRow& row);
    virtual void ShowList(const SControlRow& row);
    virtual void OnListChosen(const SControlRow& row);
    // After every LoadParameters with controls.
    virtual void OnParametersShown();

    const AFX_MSGMAP* GetMessageMap() const override;

  private:
    void ReadValue(int parameter);
    void WriteValue(int parameter) const;
    void CheckControls() const;
    const SControlRow* RowOf(int control_id) const;
    void SetUpControl(const SControlRow& row);
    void SetUpNumber(const SControlRow& row);
    void ShowRow(const SControlRow& row);
    void SetColour(const SControlRow& row, COLORREF colour);
    static SMessageEntry EntryOf(const SControlRow& row);
    bool HasSwatch() const;
    void MakeMessageMap();

    void OnNumberChanged(SMessage& message);
    void OnDialTurned(SMessage& message);
    void OnCheck(SMessage& message);
    void OnSwatch(SMessage& message);
    void OnList(SMessage& message);
    void OnToolTip(SMessage& message);
    void OnFramework(SMessage& message);
    void OnActivated(SMessage& message);

    const SDialogTable& table_;
    std::vector<SValue> values_;
    bool initialised_ = false;
    std::vector<SMessageEntry> messages_;
    AFX_MSGMAP map_{};
    std::map<int, CNNumEdit> numbers_;  // by control id, as the others
    std::map<int, CButton> checks_;
    std::map<int, CMaterialWnd> swatches_;
    std::map<int, CRotationCtrl> dials_;
};

// The dialog that a table describes; Base holds the rules that a table cannot say.
template <const auto& kTable, class Base = CParameterDlg>
class TDialog : public Base {
  public:
    TDialog(ICommandExecutionContext* context, VCommandImplementation* command, CWnd* parent)
        : Base(kTable, context, command, parent) {}
};
