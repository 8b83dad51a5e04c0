#include "engine/CTransformParamList.h"

#include <algorithm>
#include <utility>

void CTransformParamList::Add(CString entry, int minimum, int maximum, int default_value,
                              int value) {
    entries_.push_back({value, minimum, maximum, default_value, std::move(entry)});
}

STransformParam CTransformParamList::Find(const CString& wanted) const {
    const auto found =
        std::find_if(entries_.begin(), entries_.end(),
                     [&](const STransformParam& entry) { return entry.name == wanted; });
    return found == entries_.end() ? STransformParam{} : *found;
}

CTransformParamList CTransformParamList::Extract(int first, int last) const {
    CTransformParamList part;
    const int end = std::min(last, Count());
    for (int i = std::max(first, 0); i < end; ++i) part.entries_.push_back((*this)[i]);
    return part;
}

CTransformParamList CTransformParamList::Concat(const CTransformParamList& a,
                                                const CTransformParamList& b) {
    CTransformParamList both;
    both.entries_ = a.entries_;
    both.entries_.insert(both.entries_.end(), b.entries_.begin(), b.entries_.end());
    return both;
}

void CTransformParamList::ClampValues() {
    for (STransformParam& entry : entries_) {
        entry.value = std::min(entry.value, entry.maximum);
        entry.value = std::max(entry.value, entry.minimum);
    }
}
