#include "app/desktop/Thumbnails.h"

#include <QListWidget>
#include <QPainter>

#include "app/desktop/CPyramid.h"
#include "app/desktop/Widgets.h"

QPixmap PictureOf(const CRowIteratorBands& picture, QSize size) {
    if (!picture.IsAttached()) return InTheMiddle({}, size);
    const CSize full{picture.GetWidth(), picture.GetHeight()};
    const auto levels = CPyramid::Make(picture, 0, full);
    if (!levels) return InTheMiddle({}, size);
    int level = 0;
    while (level < levels->Last() && levels->Level(level + 1).GetWidth() >= 2 * size.width()) {
        ++level;
    }
    const CRowIteratorBands& pixels = levels->Level(level);
    return InTheMiddle(levels->Image(level, {0, 0, pixels.GetWidth(), pixels.GetHeight()})
                           .scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation),
                       size);
}

QPixmap InTheMiddle(const QImage& image, QSize size) {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    if (image.isNull()) return pixmap;
    QPainter(&pixmap).drawImage((size.width() - image.width()) / 2,
                                (size.height() - image.height()) / 2, image);
    return pixmap;
}

QSize ShowAsThumbnails(QListWidget& list, QSize thumbnail) {
    constexpr QSize kRoom{20, 44};  // around a thumbnail, for its name
    list.setViewMode(QListView::IconMode);
    list.setMovement(QListView::Static);
    list.setResizeMode(QListView::Adjust);
    list.setWordWrap(true);
    list.setIconSize(thumbnail);
    list.setGridSize(thumbnail + kRoom);
    list.setItemDelegate(new CFrameDelegate(&list));
    return list.gridSize();
}
