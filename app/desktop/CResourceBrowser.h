#pragma once

#include <QDialog>
#include <QTimer>
#include <functional>
#include <string>

#include "host/core/CString.h"

class QComboBox;
class QDialogButtonBox;
class QLineEdit;
class QListWidget;
struct IDialogModel;

// Shows the library behind a resource control, as a list or as thumbnails, which come one after the
// other. What is chosen takes effect at once; Cancel brings back what was there before.
class CResourceBrowser final : public QDialog {
  public:
    using AddPicture = std::function<std::string(bool pattern, const std::string& file,
                                                 const std::string& category)>;

    CResourceBrowser(IDialogModel& model, int control, const QString& title, QWidget* parent);
    // Shows a button that asks for a photograph, has `add` take it into the user's library, and
    // chooses it.
    void OfferAdding(const AddPicture& add);

  private:
    QComboBox* MakeCategories();
    void Fill();
    void Filter();
    void ShowView(int view);
    void LoadNext();
    void AddPhotograph(const AddPicture& add);
    void ShowAdded(const QString& name);

    IDialogModel& model_;
    const int control_;
    const int before_;
    const CString category_before_;
    QLineEdit* search_;
    QListWidget* list_;
    QDialogButtonBox* buttons_;
    int loaded_ = 0;
    QTimer loading_;
};
