#pragma once

#include "host/commands/ICommandExecutionContext.h"
#include "host/graphics/ColorRef.h"
#include "host/windowing/CDialog.h"

// A colour swatch. It reports BN_CLICKED when its user gave it a colour.
class HOST_API CMaterialWnd : public CWnd {
  public:
    CMaterialWnd();
    ~CMaterialWnd() override;
    // The material services are the context's; of them a solid colour (mode 0) needs none.
    bool Create(CDialog& dialog, int id, ICommandExecutionContext* services, bool show,
                int colour_mode, const wchar_t* name, bool allow_none);
    COLORREF GetSolidColor() const;
    // Reports nothing.
    void SetSolidColor(COLORREF colour);
};
