#pragma once

#include <QListWidget>
#include <memory>
#include <thread>

#include "app/desktop/CPyramid.h"
#include "hostlib/windowing/IToolkit.h"

// The presets of an effect with what each makes of the user's picture. The thumbnails come one
// after the other from a thread of the list's own, which ends with it.
class CPresetList final : public QListWidget {
  public:
    static constexpr QSize kThumbnail{96, 72};

    // `original` may be empty: there are no thumbnails then.
    CPresetList(const IDialogModel& model, const std::shared_ptr<const CPyramid>& original,
                QWidget* parent);

    // What the preset of an item is called when it is loaded.
    static std::string IdOf(const QListWidgetItem& item);

  private:
    void ShowThumbnail(int row, const QImage& image);

    std::jthread thread_;
};
