#include "app/desktop/Texts.h"

#include "host/language/CConnectLanguage.h"

QString Text(EText id) {
    // Within the lock the language is the windows' own, whatever other threads load meanwhile.
    CConnectLanguage::GetResLock();
    const HMODULE texts = CConnectLanguage::GetModuleResourceHandle(L"CmdTexture");
    CConnectLanguage::FreeResLock();
    const CString text = LoadStringW(texts, static_cast<int>(id));
    return text.IsEmpty() ? QString::number(static_cast<int>(id)) : ToQt(text);
}
