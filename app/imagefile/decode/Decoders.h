#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/imagefile/metadata/Metadata.h"
#include "host/core/Geometry.h"
#include "host/graphics/CNPixelFormat.h"

namespace imagefile {

// What a decoder complains of while it goes on.
struct SComplaint {
    std::string text;
    bool is_damage = true;  // else it concerns a value besides the pixels
};

// A picture on its way out of a file, row after row from the top, as it is stored there: red first,
// 16-bit samples in this machine's order. One object decodes one picture.
class IDecoder {
  public:
    virtual ~IDecoder() = default;

    virtual CSize Size() const = 0;
    // Unknown (code 0) when the colours or samples are not among the eight formats.
    virtual CNPixelFormat Format() const = 0;
    // What makes it unknown, such as "CMYK colour".
    virtual std::string Strangeness() const { return {}; }
    // Fills a row; false when it cannot be had, for the reason that Trouble tells.
    virtual bool NextRow(void* row) = 0;
    // Goes on to the end marker of the picture, behind its last row; false as above.
    virtual bool Finish() = 0;

    std::string Trouble() const { return trouble_; }
    std::vector<SComplaint> TakeComplaints() { return std::move(complaints_); }

  protected:
    void Complain(SComplaint complaint);
    void Fail(std::string trouble) { trouble_ = std::move(trouble); }

  private:
    std::string trouble_;
    std::vector<SComplaint> complaints_;
};
using CDecoder = std::unique_ptr<IDecoder>;

// A decoder that could be opened, else null and the reason.
template <class Decoder>
CDecoder Opened(std::unique_ptr<Decoder> decoder, bool is_open, std::string& trouble) {
    if (is_open) return decoder;
    trouble = decoder->Trouble();
    return nullptr;
}

// Begin to decode the file; null when it is not to be had at all, with the reason in `trouble`.
CDecoder OpenPngDecoder(int descriptor, std::string& trouble);
CDecoder OpenJpegDecoder(int descriptor, std::string& trouble);

struct SVipsOptions {
    int page = 1;             // of a TIFF file or an animation
    bool is_lenient = false;  // guesses where it would else give up
};
CDecoder OpenVipsDecoder(ENKind kind, int descriptor, const SVipsOptions& options,
                         std::string& trouble);

// A picture of an unknown format as one of the eight, with what was done to it.
struct SConversion {
    CBytes profile;                  // of the new colours; empty when the old one still holds
    std::vector<std::string> notes;  // one line each
};
CDecoder OpenConverted(ENKind kind, int descriptor, const SVipsOptions& options,
                       SConversion& conversion, std::string& trouble);

}  // namespace imagefile
