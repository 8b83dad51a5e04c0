#include "dialogs/CParameterDlg.h"

#include <algorithm>

#include "dialogs/ToolTipText.h"
#include "host/commands/CCmdHelpers.h"
#include "host/core/TRef.h"

namespace {

constexpr const char* kNoParameters = "there are no parameters";

// The value of a parameter through its typed interface, one way or the other. Throws CNException
// for what the repository does not have.
template <class Interface, class Value>
void Read(IParameterRepository* repository, int index, Value& value) {
    const auto access = QueryFor<Interface>(repository);
    if (!access) throw CNException(TolmErrorCode::UnusableInput, kNoParameters);
    access->GetValue(index, value).ThrowIfFailed();
}

template <class Interface, class Value>
void Write(IParameterRepository* repository, int index, const Value& value) {
    const auto access = QueryFor<Interface>(repository);
    if (!access) throw CNException(TolmErrorCode::UnusableInput, kNoParameters);
    access->SetValue(index, value).ThrowIfFailed();
}

// The type of the parameters that a kind of control can show.
EParameterType ShownType(EBinding binding) {
    switch (binding) {
        case EBinding::Number:
        case EBinding::CanvasNumber:
        case EBinding::Dial:
            break;
        case EBinding::Check:
            return EParameterType::Boolean;
        case EBinding::Swatch:
            return EParameterType::Colour;
        case EBinding::List:
            return EParameterType::Enumeration;
        case EBinding::Resource:
            return EParameterType::String;
    }
    return EParameterType::Integer;
}

// How many values the controls show: their largest index, and one.
std::size_t ValuesShown(std::span<const SControlRow> controls) {
    int last = -1;
    for (const SControlRow& row : controls) last = std::max(last, row.parameter);
    return static_cast<std::size_t>(last + 1);
}

}  // namespace

CParameterDlg::CParameterDlg(const SDialogTable& table, ICommandExecutionContext* context,
                             VCommandImplementation* command, CWnd* parent)
    : CPreviewChild(table.template_id, context, command, parent, 0, false),
      table_(table),
      values_(ValuesShown(table.controls)) {}
CParameterDlg::~CParameterDlg() = default;

bool CParameterDlg::Create(CWnd* parent) { return CDialog::Create(table_.template_id, parent); }

bool CParameterDlg::OnInitDialog() {
    MakeMessageMap();
    CPreviewChild::OnInitDialog();
    LoadParameters();
    for (const SControlRow& row : table_.controls) SetUpControl(row);
    initialised_ = true;
    for (const SControlRow& row : table_.controls) ShowRow(row);
    OnParametersShown();
    if (HasSwatch() && !CColorDropper::IsActive()) EnableColorDropper(true);
    return true;
}

void CParameterDlg::DoDataExchange(CDataExchange* exchange) {
    if (!table_.exchanges_data) return;
    CPreviewChild::DoDataExchange(exchange);
    for (const SControlRow& row : table_.controls) {
        switch (row.exchange) {
            case EExchange::Control:
                ExchangeControl(exchange, row);
                break;
            case EExchange::Text:
                DDX_Text(exchange, row.id, Value(row.parameter).number);
                break;
            case EExchange::Check:
                DDX_Check(exchange, row.id, Value(row.parameter).number);
                break;
            case EExchange::None:
                break;
        }
    }
}

void CParameterDlg::SetUpControl(const SControlRow& row) {
    switch (row.binding) {
        case EBinding::Number:
        case EBinding::CanvasNumber:
            SetUpNumber(row);
            break;
        case EBinding::Check:
            if (row.exchange != EExchange::Control) checks_[row.id].Attach(*this, row.id);
            break;
        case EBinding::Swatch:
            swatches_[row.id].Create(*this, row.id, ExecutionContext(), true, 0, nullptr, false);
            break;
        case EBinding::Dial:
            dials_[row.id].Create(*this, row.id);
            break;
        case EBinding::List:
        case EBinding::Resource:
            SetUpList(row);
            break;
    }
}

void CParameterDlg::SetUpNumber(const SControlRow& row) {
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    QueryFor<IIntegerParameters>(Repository())
        ->GetRange(row.parameter, minimum, maximum)
        .ThrowIfFailed();
    if (row.binding == EBinding::CanvasNumber) {
        maximum = CCmdHelpers(ExecutionContext()).CanvasSize().LargerSide();
    }
    numbers_[row.id].SetUp(*this, row.id, minimum, maximum, Value(row.parameter).number,
                           table_.numbers);
}

void CParameterDlg::ReadValue(int parameter) {
    IParameterRepository* repository = Repository();
    const IParameter* definition = repository->At(parameter);
    SValue& value = Value(parameter);
    value.type.reset();
    if (!definition) return;
    value.type = definition->Type();
    bool truth = false;
    switch (*value.type) {
        case EParameterType::Integer:
            Read<IIntegerParameters>(repository, parameter, value.number);
            break;
        case EParameterType::Boolean:
            Read<IBooleanParameters>(repository, parameter, truth);
            value.number = truth ? 1 : 0;
            break;
        case EParameterType::Enumeration:
            Read<IEnumParameters>(repository, parameter, value.number);
            break;
        case EParameterType::Colour:
            Read<IColorParameters>(repository, parameter, value.colour);
            break;
        case EParameterType::String:
            Read<IStringParameters>(repository, parameter, value.text);
            break;
    }
}

void CParameterDlg::WriteValue(int parameter) const {
    IParameterRepository* repository = Repository();
    const SValue& value = Value(parameter);
    if (!value.type) return;
    switch (*value.type) {
        case EParameterType::Integer:
            Write<IIntegerParameters>(repository, parameter, value.number);
            break;
        case EParameterType::Boolean:
            Write<IBooleanParameters>(repository, parameter, value.number != 0);
            break;
        case EParameterType::Enumeration:
            Write<IEnumParameters>(repository, parameter, value.number);
            break;
        case EParameterType::Colour:
            Write<IColorParameters>(repository, parameter, value.colour);
            break;
        case EParameterType::String:
            Write<IStringParameters>(repository, parameter, value.text);
            break;
    }
}

void CParameterDlg::CheckControls() const {
    for (const SControlRow& row : table_.controls) {
        if (Value(row.parameter).type == ShownType(row.binding)) continue;
        throw CNException(TolmErrorCode::UnusableInput,
                          "parameter " + std::to_string(row.parameter) + " is not what control " +
                              std::to_string(row.id) + " shows");
    }
}

void CParameterDlg::LoadParameters() {
    if (!Repository()) throw CNException(TolmErrorCode::UnusableInput, kNoParameters);
    values_.resize(std::max(values_.size(), static_cast<std::size_t>(Repository()->Count())));
    for (int i = 0; i < static_cast<int>(values_.size()); ++i) ReadValue(i);
    CheckControls();
    if (!initialised_) return;
    for (const SControlRow& row : table_.controls) ShowRow(row);
    OnParametersShown();
}

void CParameterDlg::StoreParameters() {
    for (int i = 0; i < static_cast<int>(values_.size()); ++i) WriteValue(i);
}

void CParameterDlg::StoreAndPreview() {
    StoreParameters();
    PreviewDataUpdated(true);
}

void CParameterDlg::ShowParameter(int parameter) {
    for (const SControlRow& row : table_.controls) {
        if (row.parameter == parameter) ShowRow(row);
    }
}

void CParameterDlg::ShowRow(const SControlRow& row) {
    const SValue& value = Value(row.parameter);
    switch (row.binding) {
        case EBinding::Number:
        case EBinding::CanvasNumber:
            numbers_[row.id].SetValue(value.number);
            break;
        case EBinding::Check:
            checks_[row.id].SetCheck(value.number != 0);
            break;
        case EBinding::Swatch:
            swatches_[row.id].SetSolidColor(value.colour);
            break;
        case EBinding::Dial:
            dials_[row.id].SetAngle(value.number);
            break;
        case EBinding::List:
        case EBinding::Resource:
            ShowList(row);
            break;
    }
}

const SControlRow* CParameterDlg::RowOf(int control_id) const {
    const auto found = std::find_if(table_.controls.begin(), table_.controls.end(),
                                    [&](const SControlRow& row) { return row.id == control_id; });
    return found == table_.controls.end() ? nullptr : &*found;
}

int CParameterDlg::ParameterOf(int control_id) const {
    const SControlRow* row = RowOf(control_id);
    return row ? row->parameter : -1;
}

// The handlers. A message comes only for an id that the map has an entry for, so its row is there.

void CParameterDlg::OnNumberChanged(SMessage& message) {
    const SControlRow& row = *RowOf(message.id);
    Value(row.parameter).number = numbers_[row.id].GetValue();
    ShowParameter(row.parameter);
    OnNumberSet(row);
    StoreAndPreview();
}

void CParameterDlg::OnDialTurned(SMessage& message) {
    const SControlRow& row = *RowOf(message.id);
    if (Value(row.parameter).number == dials_[row.id].GetAngle()) return;  // reported both ways
    Value(row.parameter).number = dials_[row.id].GetAngle();
    ShowParameter(row.parameter);
    StoreAndPreview();
}

void CParameterDlg::OnCheck(SMessage& message) {
    const SControlRow& row = *RowOf(message.id);
    OnCheckClicked(row, checks_[row.id].GetCheck());
}

void CParameterDlg::OnCheckClicked(const SControlRow& row, bool checked) {
    Value(row.parameter).number = checked ? 1 : 0;
    StoreAndPreview();
}

void CParameterDlg::OnSwatch(SMessage& message) {
    const SControlRow& row = *RowOf(message.id);
    SetColour(row, swatches_[row.id].GetSolidColor());
}

void CParameterDlg::SetColour(const SControlRow& row, COLORREF colour) {
    if (Value(row.parameter).colour == colour) return;
    Value(row.parameter).colour = colour;
    swatches_[row.id].SetSolidColor(colour);
    if (ColourTakesEffect(row)) StoreAndPreview();
}

// A picked colour is for the swatch that the dropper aims at, or the first one.
void CParameterDlg::OnColorDropperLeft(COLORREF colour) {
    const SControlRow* aimed = RowOf(Target());
    if (!aimed || aimed->binding != EBinding::Swatch) {
        const auto first =
            std::find_if(table_.controls.begin(), table_.controls.end(),
                         [](const SControlRow& row) { return row.binding == EBinding::Swatch; });
        aimed = first == table_.controls.end() ? nullptr : &*first;
    }
    if (aimed) SetColour(*aimed, colour);
}

void CParameterDlg::OnList(SMessage& message) { OnListChosen(*RowOf(message.id)); }

// A dialog that leaves its dropper behind for one of its own windows gives it up; in every other
// case it takes the dropper when that is free.
void CParameterDlg::OnActivated(SMessage& message) {
    const auto& activation = *static_cast<const SActivation*>(message.data);
    const bool active = CColorDropper::IsActive();
    if (!activation.active && active && activation.other == this) {
        EnableColorDropper(false);
    } else if (!active) {
        EnableColorDropper(true);
    }
    CDialogEx::OnActivate(message);
}

// Scrolling and erasing are what the framework makes of them.
void CParameterDlg::OnFramework(SMessage& message) {
    if (message.message == WM_HSCROLL) CDialogEx::OnHScroll(message);
    if (message.message == WM_ERASEBKGND) CDialogEx::OnEraseBkgnd(message);
}

void CParameterDlg::OnToolTip(SMessage& message) {
    GetToolTipText(*static_cast<TOOLTIPTEXTW*>(message.data));
}

int CParameterDlg::GetToolTipText(TOOLTIPTEXTW& info) {
    const bool control = (info.flags & TOOLTIPTEXTW::TTF_IDISHWND) != 0 && info.id != 0;
    const SControlRow* row = control ? RowOf(info.id) : nullptr;
    if (!row || row->tip == ETip::None) return 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    if (row->tip == ETip::Range) numbers_[row->id].GetRange(minimum, maximum);
    CopyToolTip(TipOf(*row, Repository(), minimum, maximum), info);
    return 1;
}

void CParameterDlg::ExchangeControl(CDataExchange* exchange, const SControlRow& row) {
    DDX_Control(exchange, row.id, checks_[row.id]);
}

void CParameterDlg::EnableControl(int id, bool enable) {
    CButton window;
    window.Attach(*this, id);
    window.EnableWindow(enable);
}

void CParameterDlg::OnNumberSet(const SControlRow&) {}
bool CParameterDlg::ColourTakesEffect(const SControlRow&) const { return true; }
void CParameterDlg::SetUpList(const SControlRow&) {}
void CParameterDlg::ShowList(const SControlRow&) {}
void CParameterDlg::OnListChosen(const SControlRow&) {}
void CParameterDlg::OnParametersShown() {}

SMessageEntry CParameterDlg::EntryOf(const SControlRow& row) {
    const auto entry = [&](int code, void (CParameterDlg::*handler)(SMessage&)) {
        return SMessageEntry{WM_COMMAND, code, row.id, static_cast<MessageHandler>(handler)};
    };
    switch (row.binding) {
        case EBinding::Number:
        case EBinding::CanvasNumber:
            return entry(EN_CHANGE, &CParameterDlg::OnNumberChanged);
        case EBinding::Check:
            return entry(BN_CLICKED, &CParameterDlg::OnCheck);
        case EBinding::Swatch:
            return entry(BN_CLICKED, &CParameterDlg::OnSwatch);
        case EBinding::Dial:
            return entry(RN_ROTATED, &CParameterDlg::OnDialTurned);
        case EBinding::List:
        case EBinding::Resource:
            break;
    }
    return entry(CBN_SELENDOK, &CParameterDlg::OnList);
}

bool CParameterDlg::HasSwatch() const {
    return std::any_of(table_.controls.begin(), table_.controls.end(),
                       [](const SControlRow& row) { return row.binding == EBinding::Swatch; });
}

void CParameterDlg::MakeMessageMap() {
    messages_.clear();
    for (const SControlRow& row : table_.controls) {
        messages_.push_back(EntryOf(row));
        if (row.binding == EBinding::Dial && table_.dials_report_as_fields) {
            messages_.push_back(messages_.back());
            messages_.back().code = EN_CHANGE;
        }
    }
    messages_.push_back({WM_NOTIFY, TTN_GETDISPINFOW, SMessageEntry::kAnyId,
                         static_cast<MessageHandler>(&CParameterDlg::OnToolTip)});
    // Without a colour there is nothing to pick one for.
    if (HasSwatch()) {
        messages_.push_back({WM_ACTIVATE, 0, SMessageEntry::kAnyId,
                             static_cast<MessageHandler>(&CParameterDlg::OnActivated)});
    }
    for (const unsigned message : table_.framework_messages) {
        messages_.push_back({message, 0, SMessageEntry::kAnyId,
                             static_cast<MessageHandler>(&CParameterDlg::OnFramework)});
    }
    map_ = {CPreviewChild::GetMessageMap(), messages_};
}

const AFX_MSGMAP* CParameterDlg::GetMessageMap() const { return &map_; }
