#include "host/commands/CCmdHelpers.h"

CErrorAutoThrow CCmdHelpers::GetGraphic(TRef<INGLGraphic>& graphic) const {
    graphic = context_ ? context_->Graphic() : nullptr;
    return graphic ? TolmErrorCode::Success : TolmErrorCode::UnusableInput;
}

CErrorAutoThrow CCmdHelpers::GetResourceLibrary(TRef<IResourceLibrary>& library) const {
    library = context_ ? context_->ResourceLibrary() : nullptr;
    return library ? TolmErrorCode::Success : TolmErrorCode::UnusableInput;
}
