#include "host/dialogs/CColorDropper.h"

#include <atomic>

namespace {
std::atomic<const CColorDropper*> g_active = nullptr;
}

CColorDropper::CColorDropper() = default;
CColorDropper::~CColorDropper() { EnableColorDropper(false); }

bool CColorDropper::IsActive() { return g_active != nullptr; }
bool CColorDropper::IsEnabled() const { return g_active == this; }

void CColorDropper::EnableColorDropper(bool enable) {
    const CColorDropper* expected = enable ? nullptr : this;
    g_active.compare_exchange_strong(expected, enable ? this : nullptr);
}

void CColorDropper::OnColorDropperLeft(COLORREF /*colour*/) {}
void CColorDropper::OnColorDropperRight(COLORREF /*colour*/) {}
void CColorDropper::OnColorDropperMouseMove(COLORREF /*colour*/) {}
bool CColorDropper::WantColorDropperMouseMove() const { return false; }
int CColorDropper::SampleSize() const { return 1; }
