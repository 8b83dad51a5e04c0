#pragma once

#include <QDialog>
#include <QTimer>

#include "host/core/CString.h"
#include "host/graphics/CRowIteratorBands.h"

class QComboBox;
class QListWidget;
struct IDialogModel;

// A picture of the library, scaled into a square; one that cannot be had is an empty square.
QPixmap PictureOf(const CRowIteratorBands& picture, QSize size);

// Shows the library behind a resource control, as a list or as thumbnails, which come one after the
// other. What is chosen takes effect at once; Cancel brings back what was there before.
class CResourceBrowser final : public QDialog {
  public:
    CResourceBrowser(IDialogModel& model, int control, const QString& title, QWidget* parent);

  private:
    QComboBox* MakeCategories();
    void Fill();
    void ShowView(int view);
    void LoadNext();

    IDialogModel& model_;
    const int control_;
    const int before_;
    const CString category_before_;
    QListWidget* list_;
    int loaded_ = 0;
    QTimer loading_;
};
