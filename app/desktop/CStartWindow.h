#pragma once

#include <QDialog>
#include <QTimer>

#include "app/desktop/IDesktop.h"

class CEffectList;
class QLabel;
class QMimeData;
class QPushButton;

// Where the user chooses an effect, and a picture if there is none: by a dialog, or by dropping a
// file.
class CStartWindow final : public QDialog {
  public:
    CStartWindow(IEditHost& host, const SDesktopOptions& options);
    // The effect; empty: the user thought better of it.
    std::string Choose();

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void AskPicture();
    void Open(const QString& file);
    void CheckPicture();
    void ShowState();
    void Take(const std::string& effect);

    IEditHost& host_;
    const SDesktopOptions& options_;
    QLabel* picture_;
    QPushButton* go_;
    CEffectList* effects_;
    QTimer tick_;
    std::string chosen_;
    bool shown_ = false;  // the thumbnails are of the picture
};

// The files of pictures that can be opened, for a file dialog; and the one file that was dragged
// along, empty for anything else.
QString PictureFilter();
QString DraggedFile(const QMimeData* data);
