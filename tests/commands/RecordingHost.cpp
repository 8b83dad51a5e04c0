#include "RecordingHost.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "host/commands/CCmdEffect.h"
#include "host/core/RuntimeRandom.h"
#include "host/graphics/BumpMap2.h"
#include "host/graphics/CIoDeformation.h"
#include "host/graphics/CIoGaussianBlur.h"
#include "host/graphics/CIoSculptureEffect.h"
#include "host/graphics/CIoTilesEffect.h"
#include "host/graphics/ImageHelpers.h"

namespace recording {

std::vector<std::string> calls;
std::string failing;
bool reduced = false;

void Restart() {
    reduced = false;
    calls.clear();
    failing.clear();
}

}  // namespace recording

namespace {

// A picture as it is seen: its size, format code and channel access.
std::string Seen(const CRowIteratorBands& image) {
    if (!image.IsAttached()) return "none";
    const int channel = static_cast<int>(image.GetChannelAccess());
    return fmt::format("{}x{}:{}{}", image.GetWidth(), image.GetHeight(),
                       static_cast<int>(image.GetPixelFormat().Code()),
                       channel == -2 ? "" : fmt::format("[{}]", channel));
}

CErrorAutoThrow Record(const std::string& name, const std::string& arguments) {
    recording::calls.push_back(name + (arguments.empty() ? "" : " ") + arguments);
    return name == recording::failing ? TolmErrorCode{109} : TolmErrorCode::Success;
}

CErrorAutoThrow Make(CRowIteratorBands& output, const CRowIteratorBands& model,
                     CNPixelFormat format) {
    return output.Create(model.GetWidth(), model.GetHeight(), format);
}

std::string Relief(const SReliefSettings& s) {
    return fmt::format("{} {} {:06X} {} {} {} {} {}", s.angle, s.elevation, s.color, s.intensity,
                       s.ambience, s.depth, s.shininess, s.smoothness);
}

const char* Heard(const CStatusControl* status) { return status ? "heard" : "unheard"; }

}  // namespace

bool VCommandImplementation::IsIE() const { return recording::reduced; }

CErrorAutoThrow CIoTilesEffect::operator()(CRowIteratorBands& destination,
                                           const CRowIteratorBands& source) {
    const auto& s = settings_;
    CErrorAutoThrow error = Record(
        "Tiles", fmt::format("{} {} | {} | {} {} {} {}", Heard(Status()), Seen(source), Relief(s),
                             s.tileShape, s.tileAngularity, s.tileSize, s.borderSize));
    return error.Failed() ? error : Make(destination, source, source.GetAccessFormat());
}

void CIoDeformation::SetResampleMode(int mode) {
    Record("SetResampleMode", std::to_string(mode)).Ignore();
}
void CIoDeformation::SetEdgeMode(int mode) { Record("SetEdgeMode", std::to_string(mode)).Ignore(); }
bool CIoDeformation::MosaicAdvanced(int columns, int rows, double grout, double wander,
                                    double diffusion) {
    Record("MosaicAdvanced", fmt::format("{} {} {} {} {}", columns, rows, grout, wander, diffusion))
        .Ignore();
    return false;  // which nobody looks at
}
bool CIoDeformation::Glasses(int columns, int rows, double grout, double wander, double edge,
                             double glass) {
    Record("Glasses", fmt::format("{} {} {} {} {} {}", columns, rows, grout, wander, edge, glass))
        .Ignore();
    return false;
}
CErrorAutoThrow CIoDeformation::operator()(CRowIteratorBands& destination,
                                           const CRowIteratorBands& source) {
    CErrorAutoThrow error =
        Record("Deform", fmt::format("{} {} draws {}", Heard(Status()), Seen(source),
                                     CRuntimeRandom::OfThisThread().Next()));
    return error.Failed() ? error : Make(destination, source, source.GetPixelFormat());
}

void CIoSculptureEffect::SetSourceDib(const CRowIteratorBands& pattern, bool copy) {
    Record("SetSourceDib", fmt::format("{} {}", Seen(pattern), copy)).Ignore();
}
void CIoSculptureEffect::SetBumpDib(const CRowIteratorBands& bump, bool copy) {
    bump_ = bump;
    Record("SetBumpDib", fmt::format("{} {}", Seen(bump), copy)).Ignore();
}
void CIoSculptureEffect::SetMaskDib(const CRowIteratorBands& mask, bool copy) {
    Record("SetMaskDib", fmt::format("{} {}", Seen(mask), copy)).Ignore();
}
bool CIoSculptureEffect::UpdateSettings(const CSculptureSettings& settings) {
    Record("UpdateSettings", fmt::format("{} | {}", Relief(settings), settings.size)).Ignore();
    return false;
}
CErrorAutoThrow CIoSculptureEffect::ApplyEffect(CStatusControl* status,
                                                CRowIteratorBands& destination,
                                                const SColorSpecRGB& color_spec) {
    CErrorAutoThrow error =
        Record("Sculpture", fmt::format("{} {}", Heard(status), color_spec.red));
    return error.Failed() ? error : Make(destination, bump_, bump_.GetPixelFormat());
}

CIoGaussianBlur::CIoGaussianBlur(double sigma, int mode) : sigma_(sigma) {
    Record("GaussianBlur", fmt::format("{} {}", sigma, mode)).Ignore();
}
CErrorAutoThrow CIoGaussianBlur::operator()(CRowIteratorBands& destination,
                                            const CRowIteratorBands& source) {
    CErrorAutoThrow error = Record(
        "Blur", fmt::format("{} {} to {}", Heard(Status()), Seen(source), Seen(destination)));
    // Half of what is to be done, where the caller has announced two steps.
    if (Status() && !error.Failed()) {
        Status()->SetProgressRange(1);
        Status()->SetProgress(1);
    }
    return error;
}

CErrorAutoThrow BumpMap2(CStatusControl* status, const CBumpMapEffectSettings& settings,
                         const CRowIteratorBands& source, const CRowIteratorBands& bump,
                         const CRowIteratorBands& third, CRowIteratorBands& destination, int mode,
                         const CRect* area) {
    return Record("BumpMap2", fmt::format("{} | {} | {} {} {} {} {} {}", Heard(status),
                                          Relief(settings), Seen(source), Seen(bump), Seen(third),
                                          Seen(destination), mode, area != nullptr));
}

CErrorAutoThrow Resample(CStatusControl* status, const CRowIteratorBands& source,
                         CRowIteratorBands& output, ResampledSide width, ResampledSide height,
                         bool seamless, bool nearest) {
    CErrorAutoThrow error =
        Record("Resample", fmt::format("{} {} to {}x{} {} {}", Heard(status), Seen(source),
                                       int{width}, int{height}, seamless, nearest));
    return error.Failed() ? error : output.Create(width, height, source.GetPixelFormat());
}
CErrorAutoThrow RowIterator_Tile(CRowIteratorBands& output, const CRowIteratorBands& tile,
                                 const CRect* area) {
    return Record("Tile", fmt::format("{} into {} {}", Seen(tile), Seen(output), area != nullptr));
}
CErrorAutoThrow RowIterator_CopyAlpha(CRowIteratorBands& destination,
                                      const CRowIteratorBands& source) {
    return Record("CopyAlpha", fmt::format("{} into {}", Seen(source), Seen(destination)));
}
CErrorAutoThrow RowIterator_CopyColor(CRowIteratorBands& destination,
                                      const CRowIteratorBands& source) {
    return Record("CopyColor", fmt::format("{} into {}", Seen(source), Seen(destination)));
}
CErrorAutoThrow AddAlphaChannel(CStatusControl* status, const CRowIteratorBands& colour,
                                CRowIteratorBands& output, CNPixelFormat format,
                                const CRowIteratorBands& alpha, const CRowIteratorBands* mask,
                                bool replace, const CPoint* offset) {
    CErrorAutoThrow error =
        Record("AddAlpha", fmt::format("{} {} {} {} {} {} {}", Heard(status), Seen(colour),
                                       static_cast<int>(format.Code()), Seen(alpha),
                                       mask != nullptr, replace, offset != nullptr));
    return error.Failed() ? error : Make(output, alpha, format);
}
const std::uint8_t* GetMask64KLUT() {
    static const std::uint8_t table = 0;
    Record("GetMask64KLUT", "").Ignore();
    return &table;
}
namespace {
CErrorAutoThrow Flatten(const std::string& name, const CRowIteratorBands& source,
                        CRowIteratorBands& output, const std::uint8_t* table, CColorRef colour) {
    CErrorAutoThrow error =
        Record(name, fmt::format("{} {:06X} {}", Seen(source), colour.value, table != nullptr));
    const CNPixelFormat format = source.GetPixelFormat();
    return error.Failed()
               ? error
               : Make(output, source, CNPixelFormat::Of(format.ColourChannels(), format.Is16bit()));
}
}  // namespace
CErrorAutoThrow FlattenIteratorWithColor(const CRowIteratorBands& source, CRowIteratorBands& output,
                                         const std::uint8_t* table, CColorRef colour) {
    return Flatten("Flatten", source, output, table, colour);
}
CErrorAutoThrow DeleteAlphaChannel(const CRowIteratorBands& source, CRowIteratorBands& output,
                                   const std::uint8_t* table, CColorRef colour) {
    return Flatten("DeleteAlpha", source, output, table, colour);
}
CErrorAutoThrow GreyScaleDIB(CStatusControl* status, const CRowIteratorBands& source,
                             CRowIteratorBands& output, const SColorSpecRGB& color_spec) {
    CErrorAutoThrow error =
        Record("GreyScale", fmt::format("{} {} {}", Heard(status), Seen(source), color_spec.red));
    return error.Failed() ? error : Make(output, source, ENPixelFormat::Grey16);
}
