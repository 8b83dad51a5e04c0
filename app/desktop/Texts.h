#pragma once

#include <QString>

#include "host/core/CString.h"

// The texts of the window around a dialog, by their ids in the language resources.
enum class EText {
    Ok = 60001,
    Cancel,
    Presets,
    ResetAll,
    Randomise,
    Undo,
    CopyCommandLine,
    Fit,
    OneToOne,
    Split,
    Original,
    SaveAs = 60020,
    Delete,
    SavePreset,
    PresetName,
    ReplacePreset,
    NoPresets,
    DeletePreset,
    ResetOne = 60030,
    PickColour,
    Preview,
    Scale,
    Larger,
    Smaller,
    RandomiseTip,
    UndoTip,
    OriginalTip,
    SplitTip,
    Progress,
    CopyCommandLineTip,
    WrongNumber = 60050,
    Stopped,
    PreviewFailed,
    CommandLineCopied,
    PictureFacts,
    Draft,
    Exact,
    Loading,
    ListView = 60060,
    ThumbnailView,
    ChooseOne,
    Category,
    AllCategories,
    AddPhoto,
    AddPhotoTitle,
    SaveResult = 60070,
    Pictures,
    Application,
};
QString Text(EText id);

inline QString ToQt(const CString& text) { return QString::fromStdWString(text.Text()); }
inline CString FromQt(const QString& text) { return text.toStdWString(); }
