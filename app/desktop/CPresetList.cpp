#include "app/desktop/CPresetList.h"

#include "app/desktop/Texts.h"
#include "app/desktop/Thumbnails.h"

namespace {

constexpr int kColumns = 4;
constexpr int kMostRows = 4;
// Thumbnails are made of a picture at least this much larger, so that threads and strokes, which
// have a least width, do not fill them.
constexpr int kOversampling = 3;

const CRowIteratorBands& ThumbnailSource(const CPyramid& original) {
    int level = original.First();
    const auto wide = [&](int l) {
        return original.Level(l).GetWidth() >= kOversampling * CPresetList::kThumbnail.width();
    };
    while (level < original.Last() && wide(level + 1)) ++level;
    return original.Level(level);
}

QImage MakeThumbnail(const SPreviewSnapshot& snapshot, const std::stop_token& stop) {
    CThumbnailStop sink(stop);
    CStatusControl status(&sink);
    CRowIteratorBands result;
    CRowIterator selection;
    const CErrorAutoThrow error = snapshot.command->Preview(&status, snapshot.source, result,
                                                            &selection, snapshot.context.Get());
    if (error.Failed()) return {};
    const auto levels = CPyramid::Make(result, 0, {result.GetWidth(), result.GetHeight()});
    if (!levels) return {};
    return levels->Image(0, {0, 0, result.GetWidth(), result.GetHeight()})
        .scaled(CPresetList::kThumbnail, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

CPresetList::CPresetList(const IDialogModel& model, EPlace place, QWidget* parent)
    : QListWidget(parent), model_(model), place_(place) {
    setObjectName(place == EPlace::Menu ? "preset-list" : "presets-shown");
    setAccessibleName(Text(EText::Presets).remove('&'));
    ShowAsThumbnails(*this, kThumbnail);
    setFrameShape(QFrame::NoFrame);
    if (place == EPlace::Panel) setMinimumSize(1, 1);
    connect(this, &QListWidget::itemClicked, this, &CPresetList::Choose);
    connect(this, &QListWidget::itemActivated, this, &CPresetList::Choose);
    if (place == EPlace::Panel) Fill({});
}

// A click may be reported as an activation, too.
void CPresetList::Choose(const QListWidgetItem* item) {
    const std::string id = item->data(Qt::UserRole).toString().toStdString();
    if (on_chosen) on_chosen(id);
}

void CPresetList::Fill(const std::shared_ptr<const CPyramid>& original) {
    thread_ = {};  // the one before has ended
    clear();
    has_picture_ = original != nullptr;
    const QIcon room(PictureOf({}, kThumbnail));  // or the pictures to come would not be in line
    std::vector<SPreviewSnapshot> snapshots;
    for (const SPresetEntry& preset : model_.Presets()) {
        auto* item = new QListWidgetItem(room, ToQt(preset.name), this);
        item->setData(Qt::UserRole, QString::fromStdString(preset.id));
        item->setToolTip(ToQt(preset.description));
        if (original) {
            snapshots.push_back(model_.PresetSnapshot(preset.id, ThumbnailSource(*original)));
        }
    }
    if (place_ == EPlace::Menu) {
        const int rows = std::clamp((count() + kColumns - 1) / kColumns, 1, kMostRows);
        setFixedSize(kColumns * gridSize().width() + 24, rows * gridSize().height() + 6);
    }
    thread_ = std::jthread([this, all = std::move(snapshots)](const std::stop_token& stop) {
        for (std::size_t row = 0; row < all.size() && !stop.stop_requested(); ++row) {
            if (!all[row].command) continue;
            const QImage image = MakeThumbnail(all[row], stop);
            if (image.isNull()) continue;
            QMetaObject::invokeMethod(
                this, [this, row, image] { ShowThumbnail(static_cast<int>(row), image); });
        }
    });
}

void CPresetList::ShowThumbnail(int row, const QImage& image) {
    if (row < count()) item(row)->setIcon(QIcon(InTheMiddle(image, kThumbnail)));
}
