#include "app/desktop/CEffectList.h"

#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/desktop/CPyramid.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Thumbnails.h"
#include "app/desktop/Widgets.h"
#include "app/desktop/WindowSettings.h"

namespace {

constexpr QSize kThumbnail{96, 72};
// Of the picture that the effects are tried on; strokes and threads have a least width.
constexpr int kTriedSide = 360;
constexpr const char* kFavourites = "effects/favourites";

CRowIteratorBands Smaller(const CRowIteratorBands& picture, const std::stop_token& stop) {
    const CSize size{picture.GetWidth(), picture.GetHeight()};
    const auto levels = CPyramid::Make(picture, 0, size, [&] { return stop.stop_requested(); });
    if (!levels) return {};
    int level = levels->First();
    const auto side = [&](int l) {
        return std::max(levels->Level(l).GetWidth(), levels->Level(l).GetHeight());
    };
    while (level < levels->Last() && side(level + 1) >= kTriedSide) ++level;
    CRowIteratorBands small = levels->Level(level);
    small.SetOrigin({0, 0});
    return small;
}

}  // namespace

CEffectList::CEffectList(IEditHost& host, QWidget* parent)
    : QWidget(parent),
      host_(host),
      search_(new QLineEdit),
      list_(new QListWidget),
      star_(new QToolButton) {
    search_->setObjectName("search-effects");
    search_->setPlaceholderText(Text(EText::Search));
    search_->setAccessibleName(Text(EText::Search));
    search_->setClearButtonEnabled(true);
    star_->setObjectName("favourite");
    star_->setCheckable(true);
    star_->setAutoRaise(true);
    star_->setIcon(StarIcon(palette()));
    star_->setAccessibleName(Text(EText::Favourite));
    star_->setToolTip(Text(EText::Favourite));
    list_->setObjectName("effects");
    list_->setAccessibleName(Text(EText::Effects).remove('&'));
    setMinimumWidth(ShowAsThumbnails(*list_, kThumbnail).width() + 30);
    auto* line = new QHBoxLayout;
    line->addWidget(search_, 1);
    line->addWidget(star_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(line);
    layout->addWidget(list_, 1);
    Fill();
    connect(search_, &QLineEdit::textChanged, this, [this] { Filter(); });
    connect(search_, &QLineEdit::returnPressed, this, [this] {
        if (list_->currentItem() && on_activated) on_activated(Current());
    });
    connect(list_, &QListWidget::itemClicked, this, [this](const QListWidgetItem* item) {
        if (on_clicked) on_clicked(IdOf(*item));
    });
    connect(list_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        if (on_activated) on_activated(IdOf(*item));
    });
    connect(list_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        const QSignalBlocker quiet(star_);
        const QStringList all = WindowSettings()->value(kFavourites).toStringList();
        star_->setChecked(item && all.contains(QString::fromStdString(IdOf(*item))));
    });
    connect(star_, &QToolButton::toggled, this, [this](bool on) { ToggleFavourite(on); });
}

std::string CEffectList::IdOf(const QListWidgetItem& item) {
    return item.data(Qt::UserRole).toString().toStdString();
}

void CEffectList::Fill() {
    const QStringList favourites = WindowSettings()->value(kFavourites).toStringList();
    std::vector<SEffectEntry> effects = host_.Effects();
    const auto is_favourite = [&](const SEffectEntry& effect) {
        return favourites.contains(QString::fromStdString(effect.id));
    };
    std::stable_partition(effects.begin(), effects.end(), is_favourite);
    const QIcon room(PictureOf({}, kThumbnail));  // or the pictures to come would not be in line
    list_->clear();
    for (const SEffectEntry& effect : effects) {
        const QString name = QString::fromStdString(effect.name);
        const auto made = thumbnails_.find(effect.id);
        auto* item = new QListWidgetItem(made == thumbnails_.end() ? room : made->second,
                                         is_favourite(effect) ? "★ " + name : name, list_);
        item->setData(Qt::UserRole, QString::fromStdString(effect.id));
        item->setToolTip(QString::fromStdString(effect.description));
    }
    Filter();
}

void CEffectList::Filter() {
    const QString wanted = search_->text().trimmed();
    QListWidgetItem* first = nullptr;
    for (int i = 0; i < list_->count(); ++i) {
        QListWidgetItem* item = list_->item(i);
        const bool found = item->text().contains(wanted, Qt::CaseInsensitive) ||
                           item->toolTip().contains(wanted, Qt::CaseInsensitive);
        item->setHidden(!found);
        if (found && !first) first = item;
    }
    if (!wanted.isEmpty()) list_->setCurrentItem(first);
}

void CEffectList::ToggleFavourite(bool favourite) {
    const std::string current = Current();
    if (current.empty()) return;
    const auto settings = WindowSettings();
    QStringList all = settings->value(kFavourites).toStringList();
    all.removeAll(QString::fromStdString(current));
    if (favourite) all << QString::fromStdString(current);
    settings->setValue(kFavourites, all);
    settings->sync();
    Fill();
    SetCurrent(current);
}

void CEffectList::SetCurrent(const std::string& effect) {
    for (int i = 0; i < list_->count(); ++i) {
        if (IdOf(*list_->item(i)) == effect) list_->setCurrentRow(i);
    }
}

std::string CEffectList::Current() const {
    return list_->currentItem() ? IdOf(*list_->currentItem()) : std::string();
}

void CEffectList::ShowPicture(const CRowIteratorBands& picture) {
    thread_ = {};  // the one before has ended
    if (!picture.IsAttached()) return;
    std::vector<std::string> effects;
    effects.reserve(list_->count());
    for (int i = 0; i < list_->count(); ++i) effects.push_back(IdOf(*list_->item(i)));
    thread_ = std::jthread([this, picture, effects](const std::stop_token& stop) {
        const CRowIteratorBands small = Smaller(picture, stop);
        CThumbnailStop sink(stop);
        for (const std::string& effect : effects) {
            if (stop.stop_requested() || !small.IsAttached()) return;
            const CRowIteratorBands made = host_.Try(effect, small, sink);
            if (!made.IsAttached()) continue;
            QMetaObject::invokeMethod(this, [this, effect, made] { ShowThumbnail(effect, made); });
        }
    });
}

void CEffectList::ShowThumbnail(const std::string& effect, const CRowIteratorBands& picture) {
    thumbnails_[effect] = QIcon(PictureOf(picture, kThumbnail));
    for (int i = 0; i < list_->count(); ++i) {
        if (IdOf(*list_->item(i)) == effect) list_->item(i)->setIcon(thumbnails_[effect]);
    }
}
