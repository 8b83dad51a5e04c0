#pragma once

#include <map>
#include <nlohmann/json.hpp>

#include "app/cli/CDesktopLibrary.h"
#include "app/cli/CPictureLoader.h"
#include "app/cli/Jobs.h"

// What the user said about effects that are set in a window.
struct SEditOptions {
    SSessionOptions session;
    SParameterOptions parameters;
    SDocumentOptions document;
    imagefile::SWriteOptions coding;
    std::string effect, output;  // may be empty: the windows ask
    bool overwrite = false, json = false;
};

// A picture and the effects that are set on it in windows, one after another, up to the file with
// the result.
class CEditSession final : public IEditHost {
  public:
    // Checks what can be checked without a window; reading the picture has begun.
    CEditSession(const CJobLibrary& library, SEditOptions options);

    // The file that the result is in, once the user has said OK; empty when the user cancelled.
    // A picture that cannot be read ends it with the error, which the user has seen in a window.
    std::string Run();
    // The effect that was set last; null before any was.
    const CEffectJob* Job() const { return current_.empty() ? nullptr : &Current(); }

    std::vector<SEffectEntry> Effects() const override;
    CRowIteratorBands Try(const std::string& effect, const CRowIteratorBands& picture,
                          IProgressSink& progress) const override;
    void GoOnWith(const std::string& effect) override { next_ = effect; }
    std::string Open(const std::string& file) override;
    bool PictureCame() override;
    CRowIteratorBands Picture() const override { return picture_; }
    SOutcome Apply(const SLayerMix& mix, IProgressSink& progress) override;
    std::vector<std::string> Applied() const override;
    void TakeBack() override;
    std::string Suggestion() const override;
    std::vector<SFileOption> FileOptions(const std::string& file) const override;
    void SetFileOptions(const std::vector<SFileOption>& options) override;
    std::string Check(const std::string& file, bool replace) const override;
    SOutcome Make(const std::string& file, bool replace, const SLayerMix& mix,
                  IProgressSink& progress) override;
    std::string CommandLine(const std::string& single, const std::string& output,
                            const SLayerMix& mix) const override;

  private:
    // An effect that was applied, and the picture before it.
    struct SApplied {
        std::string name;
        nlohmann::ordered_json step;
        CRowIteratorBands before;
    };

    void ReadHeader();
    void BeginReading();
    CEffectJob& Current() { return jobs_.at(current_); }
    const CEffectJob& Current() const { return jobs_.at(current_); }
    void MakeCurrent(const std::string& effect);
    void GivePicture();
    nlohmann::ordered_json Step(const SLayerMix& mix) const;
    CRowIteratorBands Result(const SLayerMix& mix, CProgress& progress);
    void TellWindows();
    bool EditAll();

    const CJobLibrary& library_;
    SEditOptions options_;
    std::map<std::string, CEffectJob> jobs_;  // of the effects that were shown, with their values
    std::string current_, next_;              // effects: of the dialog, and of the one after it
    imagefile::SImageHeader header_;
    CProgress reading_;
    std::optional<CPictureLoader> loader_;
    CRowIteratorBands picture_;  // what effects start from; unattached until it is read
    std::vector<SApplied> applied_;
    std::optional<CDesktopLibrary> desktop_;
    std::string written_;
};
