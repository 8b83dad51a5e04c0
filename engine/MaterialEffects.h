#pragma once
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#define S(n) template<class...A> CErrorAutoThrow n(CStatusControl*, A&&...){ return TolmErrorCode::NotAvailable; }
S(ApplySandstone) S(ApplyPolishedStone) S(ApplySoftPlastic) S(ApplyRoughLeather) S(ApplyFineLeather) S(ApplyFur) S(ApplyStrawWall) 
