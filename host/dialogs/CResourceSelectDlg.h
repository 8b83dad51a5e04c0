#pragma once

#include "host/commands/ICommandExecutionContext.h"
#include "host/core/TRef.h"
#include "host/windowing/CDialog.h"

// A button that shows the picture of a resource and opens the list to choose another one from.
class HOST_API CTolmDropButton : public CWnd {
  public:
    ~CTolmDropButton() override;
    // An unattached image shows none.
    void SetPreviewImage(const CRowIteratorBands& image);

  protected:
    CTolmDropButton();
};
class HOST_API CResourceDropButton : public CTolmDropButton {
  public:
    CResourceDropButton();
    ~CResourceDropButton() override;
};

// The names that the library shows of a kind, and where one stands among them.
class HOST_API CCacheMgr {
  public:
    // -1 when it is not there (any more).
    static int FindIndex(IResourceLibrary* library, int type, const CString& category,
                         const CString& name);
};

// The list of the library's entries that a drop button opens. It reports CBN_SELENDOK when its
// user chose one.
class HOST_API CResourceSelectDlg : public CWnd {
  public:
    CResourceSelectDlg();
    ~CResourceSelectDlg() override;

    void SetExecutionContext(ICommandExecutionContext* context);
    // "Pattern" or "Texture"; false for another kind, or when the dialog has no such control.
    bool Create(CDialog& dialog, int id, const wchar_t* kind);
    // An empty category holds every entry.
    void SetCategory(const CString& category);
    CString GetCategory() const { return category_; }
    void BuildResourceList();
    // Shows the entry of a name, if there is one; an empty name stands for the first.
    void SelectItem(const CString& name);
    // 0 a list of names, 1 thumbnails. Without thumbnail views it is always a list.
    void SetThumbnailViews(bool available);
    void SetCurView(int view);
    int GetCurView() const;

    // The shown entry: its name, empty for none, and its image in small, error 104 for none, 105
    // when it cannot be read.
    CString GetCurItem() const;
    CErrorAutoThrow LoadCurImage(CRowIteratorBands& image) const;
    // The image of any entry, with the same errors.
    CErrorAutoThrow LoadItemImage(int entry, CRowIteratorBands& image) const;

  private:
    IResourceLibrary* Library() const;

    TRef<ICommandExecutionContext> context_;
    int type_ = 0;
    CString category_;
    bool thumbnails_ = false;
};
