#pragma once

#include "dialogs/CParameterDlg.h"

// The gap colour counts only while gaps are filled.
class CWeaveDlg final : public CParameterDlg {
  public:
    CWeaveDlg(ICommandExecutionContext* context, VCommandImplementation* command, CWnd* parent);

  protected:
    void OnCheckClicked(const SControlRow& row, bool checked) override;
    bool ColourTakesEffect(const SControlRow& row) const override;
    void OnParametersShown() override;

  private:
    void EnableGapColour();
};
