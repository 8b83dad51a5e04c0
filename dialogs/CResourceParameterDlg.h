#pragma once

#include "dialogs/CParameterDlg.h"
#include "host/dialogs/CResourceSelectDlg.h"

struct SResourceTable : SDialogTable {
    struct {
        const wchar_t* kind;       // "Pattern" or "Texture"
        int name, category, view;  // indices of parameters
        int shown_name = 0;        // the control that repeats the chosen name; 0 for none
    } use;
};

// What Sculpture and Texture share: one parameter names an image of the library, which a button
// shows and a list lets choose.
class CResourceParameterDlg : public CParameterDlg {
  public:
    void StoreParameters() override;
    CResourceSelectDlg* ResourceListOf(int control_id) override;

  protected:
    CResourceParameterDlg(const SResourceTable& table, ICommandExecutionContext* context,
                          VCommandImplementation* command, CWnd* parent)
        : CParameterDlg(table, context, command, parent), use_(table.use) {}

    void SetUpList(const SControlRow& row) override;
    void ShowList(const SControlRow& row) override;
    void OnListChosen(const SControlRow& row) override;

  private:
    void ShowChosen(const CRowIteratorBands& image);

    const decltype(SResourceTable::use)& use_;
    CResourceDropButton button_;
    CResourceSelectDlg list_;
};
