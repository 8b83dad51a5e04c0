#include "app/cli/CGalleryPage.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "GalleryPageTemplate.h"
#include "app/cli/CContactSheet.h"
#include "app/imagefile/CImageFile.h"
#include "host/core/CDescriptor.h"
#include "hostlib/language/Texts.h"

namespace {

std::string Base64(std::string_view bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto byte = [&](std::size_t k) {
            return i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U;
        };
        const unsigned group = byte(0) << 16 | byte(1) << 8 | byte(2);
        const std::size_t digits = std::min<std::size_t>(bytes.size() - i, 3) + 1;
        for (std::size_t k = 0; k < 4; ++k) {
            text += k < digits ? kDigits[group >> (18 - 6 * k) & 63] : '=';
        }
    }
    return text;
}

// The bytes of the picture as JPEG.
std::string Jpeg(const CRowIteratorBands& picture) {
    const CDescriptor file(memfd_create("picture", MFD_CLOEXEC));
    const imagefile::SOutputRules rules{.overwrite = true, .input = {}, .stream = file.Get()};
    imagefile::SWriteOptions coding;
    coding.format = "jpeg";
    coding.quality = 85;
    imagefile::WriteImage("picture.jpg", picture, nullptr, rules, nullptr, coding);
    std::string bytes(static_cast<std::size_t>(lseek(file.Get(), 0, SEEK_END)), '\0');
    const ssize_t got = pread(file.Get(), bytes.data(), bytes.size(), 0);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

std::string Html(std::string_view text) {
    std::string html;
    for (const char c : text) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

// The template with "@NAME@" filled in, each once or more.
std::string Filled(std::string_view page,
                   const std::vector<std::pair<std::string_view, std::string>>& values) {
    std::string filled;
    while (!page.empty()) {
        const std::size_t at = std::min(page.find('@'), page.size());
        filled += page.substr(0, at);
        page.remove_prefix(at);
        bool is_name = false;
        for (const auto& [name, value] : values) {
            if (!page.starts_with(name)) continue;
            filled += value;
            page.remove_prefix(name.size());
            is_name = true;
            break;
        }
        if (!is_name && !page.empty()) {
            filled += page.front();
            page.remove_prefix(1);
        }
    }
    return filled;
}

}  // namespace

CGalleryPage::CGalleryPage(std::string title, const CRowIteratorBands& original, int longest)
    : title_(std::move(title)),
      longest_(longest),
      size_{original.GetWidth(), original.GetHeight()},
      original_(DataUrl(original)) {}

std::string CGalleryPage::DataUrl(const CRowIteratorBands& picture) const {
    return "data:image/jpeg;base64," + Base64(Jpeg(Reduced(picture, {longest_, longest_})));
}

void CGalleryPage::Add(const std::string& group, const std::string& title,
                       const std::string& command, const CRowIteratorBands& picture) {
    cards_.push_back({group, title, command, DataUrl(picture)});
}

std::string CGalleryPage::Make(const std::string& language) const {
    std::string cards;
    const auto same_group = [](const SCard& a, const SCard& b) { return a.group == b.group; };
    // Headings over single pictures would say nothing.
    const bool has_groups =
        std::adjacent_find(cards_.begin(), cards_.end(), same_group) != cards_.end();
    for (std::size_t i = 0; i < cards_.size(); ++i) {
        const SCard& card = cards_[i];
        const bool is_new = i == 0 || (has_groups && !same_group(cards_[i - 1], card));
        if (is_new && i > 0) cards += "</div></section>\n";
        if (is_new) {
            cards += "<section>" + (has_groups ? "<h2>" + Html(card.group) + "</h2>" : "") +
                     "\n<div class=\"cards\">\n";
        }
        cards +=
            "<article class=\"card\" data-names=\"" + Html(card.group + ' ' + card.title) +
            "\"><h3>" + Html(card.title) +
            "</h3><div class=\"wipe\"><div class=\"before\"></div><img class=\"after\" alt=\"" +
            Html(card.title) + "\" src=\"" + card.url + "\"><span class=\"name left\">" +
            Html(Tr("Before")) + "</span><span class=\"name right\">" + Html(Tr("After")) +
            "</span><span class=\"line\"></span><input type=\"range\" min=\"0\" max=\"100\" "
            "step=\"0.5\" value=\"50\" aria-label=\"" +
            Html(Tr("{}: line between before and after", card.title)) +
            "\"></div><div class=\"command\"><code>" + Html(card.command) +
            "</code><button type=\"button\" aria-label=\"" +
            Html(Tr("Copy the command line of {}", card.title)) + "\">" + Html(Tr("Copy")) +
            "</button></div></article>\n";
    }
    if (!cards_.empty()) cards += "</div></section>\n";
    return Filled(
        kGalleryPageTemplate,
        {{"@TITLE@", Html(title_)},
         {"@LANGUAGE@", Html(language)},
         {"@RATIO@", std::to_string(size_.cx) + " / " + std::to_string(size_.cy)},
         {"@FILTER@", Html(Tr("Find"))},
         {"@THEME@", Html(Tr("Light or dark"))},
         {"@COPIED@", Html(Tr("Copied"))},
         {"@HELP@", Html(Tr("Drag the line of a picture, or move it with the arrow keys."))},
         {"@ORIGINAL@", original_},
         {"@CARDS@", cards}});
}
