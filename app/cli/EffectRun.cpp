#include "app/cli/EffectRun.h"

#include <fmt/format.h>

#include "app/cli/CliError.h"
#include "app/cli/Interruption.h"

CRowIteratorBands RunEffect(CCmdEffect& command, CExecutionContext& context,
                            const CFileResourceLibrary& library) {
    const CErrorAutoThrow error = RunCommand(command, &context);
    if (error.Code() == TolmErrorCode::Cancelled || interruption::Requested()) {
        throw CInterrupted();
    }
    const std::string unreadable = library.LastFailure();
    if (!unreadable.empty()) throw CCliError(EExit::Unreadable, unreadable);
    if (!error.Failed()) return context.Graphic()->GetActiveImage();
    const std::string name = ToUtf8(command.GetResourceData()->GetComponentName());
    const std::string reason = *error.Text() ? fmt::format(": {}", error.Text()) : "";
    throw CCliError(EExit::Effect, fmt::format("{} failed with error {}{}", name,
                                               static_cast<int>(error.Code()), reason));
}

void WarnOfPrecision(const CCmdEffect& command, CNPixelFormat format) {
    if (!format.Is16bit() || command.WorksAt16Bits()) return;
    fmt::print(stderr,
               "cmdtexture: warning: {} works with 8-bit precision; what it changes of a 16-bit "
               "image has no finer steps\n",
               ToUtf8(command.GetResourceData()->GetComponentName()));
}
