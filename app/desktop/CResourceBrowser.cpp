#include "app/desktop/CResourceBrowser.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "app/desktop/Texts.h"
#include "app/desktop/Thumbnails.h"
#include "app/desktop/Widgets.h"
#include "hostlib/windowing/IToolkit.h"

namespace {
constexpr QSize kThumbnail{96, 96};
constexpr QSize kListIcon{24, 24};
constexpr QSize kWindow{540, 520};
}  // namespace

CResourceBrowser::CResourceBrowser(IDialogModel& model, int control, const QString& title,
                                   QWidget* parent)
    : QDialog(parent),
      model_(model),
      control_(control),
      before_(model.Control(control).selected),
      category_before_(model.Control(control).category),
      search_(new QLineEdit),
      list_(new QListWidget),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)) {
    setWindowTitle(title);
    resize(kWindow);
    model_.OpenLibrary(control_);

    auto* view = new QComboBox;
    view->setObjectName("view");
    view->addItems({Text(EText::ListView), Text(EText::ThumbnailView)});
    view->setCurrentIndex(model_.Control(control_).view);
    connect(view, &QComboBox::activated, this, [this](int chosen) {
        model_.ChooseView(control_, chosen);
        ShowView(chosen);
    });
    buttons_->button(QDialogButtonBox::Ok)->setText(Text(EText::Ok));
    buttons_->button(QDialogButtonBox::Cancel)->setText(Text(EText::Cancel));
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);

    search_->setObjectName("search");
    search_->setPlaceholderText(Text(EText::SearchLibrary));
    search_->setAccessibleName(Text(EText::SearchLibrary));
    search_->setClearButtonEnabled(true);
    connect(search_, &QLineEdit::textChanged, this, [this] { Filter(); });

    auto* choosers = new QHBoxLayout;
    if (!model_.Control(control_).categories.empty()) choosers->addWidget(MakeCategories());
    choosers->addWidget(search_, 1);
    choosers->addWidget(view);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(choosers);
    layout->addWidget(list_);
    layout->addWidget(buttons_);

    list_->setAccessibleName(title);
    list_->setItemDelegate(new CFrameDelegate(list_));
    list_->setResizeMode(QListView::Adjust);
    list_->setMovement(QListView::Static);
    list_->setWordWrap(true);
    connect(&loading_, &QTimer::timeout, this, [this] { LoadNext(); });
    Fill();
    ShowView(view->currentIndex());
    connect(list_, &QListWidget::itemSelectionChanged, this, [this] {
        if (!list_->selectedItems().empty()) model_.Choose(control_, list_->currentRow());
    });
    connect(list_, &QListWidget::itemActivated, this, &QDialog::accept);
    connect(this, &QDialog::rejected, this, [this] {
        model_.ChooseCategory(control_, category_before_);
        model_.Choose(control_, before_);
    });
    list_->setFocus();
}

void CResourceBrowser::OfferAdding(const AddPicture& add) {
    auto* button = buttons_->addButton(Text(EText::AddPhoto), QDialogButtonBox::ActionRole);
    button->setObjectName("add-photo");
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, add] { AddPhotograph(add); });
}

void CResourceBrowser::AddPhotograph(const AddPicture& add) {
    const QString file = QFileDialog::getOpenFileName(
        this, Text(EText::AddPhotoTitle), {},
        Text(EText::Pictures) + " (*.png *.jpg *.jpeg *.tif *.tiff *.webp)");
    if (file.isEmpty()) return;
    const CString category = model_.Control(control_).category;
    const std::string own = category.IsEmpty() ? "own" : ToUtf8(category);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const std::string failure = add(model_.EffectName() == "Sculpture", file.toStdString(), own);
    QApplication::restoreOverrideCursor();
    if (!failure.empty()) {
        QMessageBox::warning(this, windowTitle(), QString::fromStdString(failure));
        return;
    }
    ShowAdded(QFileInfo(file).completeBaseName());
}

void CResourceBrowser::ShowAdded(const QString& name) {
    model_.OpenLibrary(control_);
    Fill();
    const auto found = list_->findItems(name, Qt::MatchFixedString);
    if (!found.empty()) list_->setCurrentItem(found.front());
}

QComboBox* CResourceBrowser::MakeCategories() {
    auto* categories = new QComboBox;
    categories->setObjectName("category");
    categories->setAccessibleName(Text(EText::Category));
    categories->addItem(Text(EText::AllCategories));
    const SControlState& state = model_.Control(control_);
    for (const CString& category : state.categories) {
        categories->addItem(ToQt(category));
        if (category == state.category) categories->setCurrentIndex(categories->count() - 1);
    }
    connect(categories, &QComboBox::activated, this, [this](int chosen) {
        const std::vector<CString>& all = model_.Control(control_).categories;
        const auto at = static_cast<std::size_t>(chosen - 1);
        model_.ChooseCategory(control_, chosen > 0 && at < all.size() ? all[at] : CString());
        Fill();
    });
    return categories;
}

// What is selected was so before: nothing is chosen by showing it.
void CResourceBrowser::Fill() {
    const QSignalBlocker quiet(list_);
    const SControlState& state = model_.Control(control_);
    list_->clear();
    loaded_ = 0;
    const QIcon room(PictureOf({}, kThumbnail));  // or the pictures to come would not be in line
    for (const SListEntry& entry : state.entries) {
        new QListWidgetItem(room, ToQt(entry.text), list_);
    }
    list_->setCurrentRow(state.selected);
    Filter();
    loading_.start();
}

void CResourceBrowser::Filter() {
    const QString wanted = search_->text().trimmed();
    for (int i = 0; i < list_->count(); ++i) {
        QListWidgetItem* item = list_->item(i);
        item->setHidden(!item->text().contains(wanted, Qt::CaseInsensitive));
    }
}

// One picture at a time, so that the window never waits for the disk.
void CResourceBrowser::LoadNext() {
    if (loaded_ >= list_->count()) return loading_.stop();
    list_->item(loaded_)->setIcon(
        QIcon(PictureOf(model_.EntryPicture(control_, loaded_), kThumbnail)));
    ++loaded_;
}

void CResourceBrowser::ShowView(int view) {
    list_->setViewMode(view == 0 ? QListView::ListMode : QListView::IconMode);
    list_->setMovement(QListView::Static);
    list_->setIconSize(view == 0 ? kListIcon : kThumbnail);
    list_->setGridSize(view == 0 ? QSize() : kThumbnail + QSize(24, 40));
    list_->scrollToItem(list_->currentItem());
}
