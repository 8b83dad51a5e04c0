#pragma once

#include <mutex>

#include "app/cli/CDesktopLibrary.h"
#include "app/cli/CPictureLoader.h"
#include "app/cli/Jobs.h"

// What the user said about an effect that is set in a window.
struct SEditOptions {
    SSessionOptions session;
    SParameterOptions parameters;
    SDocumentOptions document;
    imagefile::SWriteOptions coding;
    std::string effect, output;
    bool overwrite = false;
};

// A picture and an effect that is set on it in a window, up to the file with the result.
class CEditSession final : public IResultMaker {
  public:
    // Checks what can be checked without a window; reading the picture has begun.
    CEditSession(const CJobLibrary& library, const SEditOptions& options);

    // The file that the result is in, once the user has said OK; empty when the user cancelled.
    // A picture that cannot be read ends it with the error, which the user has seen in a window.
    std::string Run();

    std::string Suggestion() const override;
    std::string Check(const std::string& file, bool replace) const override;
    SOutcome Make(const std::string& file, bool replace, IProgressSink& progress) override;

  private:
    bool PictureCame();

    const CJobLibrary& library_;
    const SEditOptions& options_;
    CEffectJob job_;
    imagefile::SImageHeader header_;
    CProgress reading_;
    std::optional<CPictureLoader> loader_;
    std::string written_;
};
