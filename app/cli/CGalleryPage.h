#pragma once

#include <string>
#include <vector>

#include "host/graphics/CRowIteratorBands.h"

// A web page of results, each wiped over the original, with its command line. The page is one file:
// the pictures are in it, reduced, as JPEG.
class CGalleryPage {
  public:
    // The title is for people; pictures are reduced to `longest` pixels on the longer side.
    CGalleryPage(std::string title, const CRowIteratorBands& original, int longest);

    // A result of the original's size. Those with the same group, which come one after another,
    // stand under its name as heading.
    void Add(const std::string& group, const std::string& title, const std::string& command,
             const CRowIteratorBands& picture);
    std::string Make(const std::string& language) const;

  private:
    std::string DataUrl(const CRowIteratorBands& picture) const;

    struct SCard {
        std::string group, title, command, url;
    };
    std::string title_;
    int longest_;
    CSize size_;
    std::string original_;
    std::vector<SCard> cards_;
};
