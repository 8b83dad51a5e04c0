#include "app/desktop/Texts.h"

#include "host/language/CConnectLanguage.h"

QString Text(EText id) {
    const HMODULE texts = CConnectLanguage::GetModuleResourceHandle(L"CmdTexture");
    const CString text = LoadStringW(texts, static_cast<int>(id));
    return text.IsEmpty() ? QString::number(static_cast<int>(id)) : ToQt(text);
}
