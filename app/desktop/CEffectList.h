#pragma once

#include <QWidget>
#include <memory>
#include <thread>

#include "app/desktop/IDesktop.h"
#include "host/graphics/CRowIteratorBands.h"

class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QToolButton;

// The effects with what each makes of the user's picture, favourites first, and a field to search
// names and descriptions. The thumbnails come from a thread of the list's own.
class CEffectList final : public QWidget {
  public:
    CEffectList(IEditHost& host, QWidget* parent);

    // The user wants an effect: one click, Return, or a double click as the owner likes it.
    std::function<void(const std::string&effect)> on_clicked, on_activated;

    // Thumbnails of this picture, which is made smaller first; unattached: none.
    void ShowPicture(const CRowIteratorBands& picture);
    void SetCurrent(const std::string& effect);
    std::string Current() const;

  private:
    void Fill();
    void Filter();
    void ToggleFavourite(bool favourite);
    void ShowThumbnail(const std::string& effect, const CRowIteratorBands& picture);
    static std::string IdOf(const QListWidgetItem& item);

    IEditHost& host_;
    QLineEdit* search_;
    QListWidget* list_;
    QToolButton* star_;
    std::map<std::string, QIcon> thumbnails_;
    std::jthread thread_;
};
