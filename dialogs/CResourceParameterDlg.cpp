#include "dialogs/CResourceParameterDlg.h"

#include "host/core/TRef.h"

void CResourceParameterDlg::SetUpList(const SControlRow& row) {
    button_.Attach(*this, row.id);
    list_.SetExecutionContext(ExecutionContext());
    list_.Create(*this, row.id, use_.kind);
    list_.SetThumbnailViews(true);
}

// The library may hold other entries than it did, so the list is built anew.
void CResourceParameterDlg::ShowList(const SControlRow& /*row*/) {
    list_.SetCategory(Value(use_.category).text);
    list_.BuildResourceList();
    list_.SelectItem(Value(use_.name).text);
    list_.SetCurView(Value(use_.view).number);
    CRowIteratorBands image;
    list_.LoadCurImage(image).Ignore();
    ShowChosen(image);
}

void CResourceParameterDlg::ShowChosen(const CRowIteratorBands& image) {
    button_.SetPreviewImage(image);
    if (!use_.shown_name) return;
    CButton line;
    line.Attach(*this, use_.shown_name);
    line.SetWindowText(list_.GetCurItem());
}

// An entry whose image is gone is not taken: the effect could not use it either.
void CResourceParameterDlg::OnListChosen(const SControlRow& row) {
    const CString name = list_.GetCurItem();
    CRowIteratorBands image;
    const CErrorAutoThrow error = list_.LoadCurImage(image);
    if (error.Failed()) {
        ShowMessage(name + L": " + FromUtf8(error.Text()));
        ShowList(row);
        return;
    }
    Value(use_.name).text = name;
    QueryFor<IStringParameters>(Repository())->SetValue(use_.name, name).ThrowIfFailed();
    ShowChosen(image);
    StoreAndPreview();
}

void CResourceParameterDlg::StoreParameters() {
    if (Initialised()) {
        Value(use_.view).number = list_.GetCurView();
        Value(use_.category).text = list_.GetCategory();
    }
    CParameterDlg::StoreParameters();
}

CResourceSelectDlg* CResourceParameterDlg::ResourceListOf(int control_id) {
    return ParameterOf(control_id) == use_.name ? &list_ : nullptr;
}
