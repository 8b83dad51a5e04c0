#pragma once

#include <QImage>
#include <QPixmap>
#include <stop_token>

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

class QListWidget;

// What lists of small pictures share.

// A picture scaled into a square; one that cannot be had is an empty square.
QPixmap PictureOf(const CRowIteratorBands& picture, QSize size);
// An image of at most this size, in the middle of it.
QPixmap InTheMiddle(const QImage& image, QSize size);

// Lays the entries of a list out as thumbnails of this size with their names below, the selected
// one in a frame, and answers the room that one takes.
QSize ShowAsThumbnails(QListWidget& list, QSize thumbnail);

// Stops an effect that makes a thumbnail when that is not wanted any more.
class CThumbnailStop final : public IProgressSink {
  public:
    explicit CThumbnailStop(std::stop_token stop) : stop_(std::move(stop)) {}
    bool OnProgress(double /*fraction*/) override { return stop_.stop_requested(); }

  private:
    std::stop_token stop_;
};
