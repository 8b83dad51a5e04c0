#pragma once

#include <QListWidget>
#include <functional>
#include <memory>
#include <thread>

#include "app/desktop/CPyramid.h"
#include "hostlib/windowing/IToolkit.h"

// The presets of an effect with what each makes of the user's picture. The thumbnails come one
// after the other from a thread of the list's own, which ends with it.
class CPresetList final : public QListWidget {
  public:
    static constexpr QSize kThumbnail{96, 72};

    enum class EPlace { Menu, Panel };
    CPresetList(const IDialogModel& model, EPlace place, QWidget* parent);

    // The user wants a preset, by what it is called when it is loaded.
    std::function<void(const std::string& id)> on_chosen;
    // Reads the presets; `original` may be empty: there are no thumbnails then.
    void Fill(const std::shared_ptr<const CPyramid>& original);
    QSize sizeHint() const override { return {0, kThumbnail.height() + 44}; }
    QSize minimumSizeHint() const override { return {0, 0}; }
    bool HasPicture() const { return has_picture_; }

  private:
    void ShowThumbnail(int row, const QImage& image);
    void Choose(const QListWidgetItem* item);

    const IDialogModel& model_;
    const EPlace place_;
    bool has_picture_ = false;
    std::jthread thread_;
};
