#pragma once

#include <cstdint>
#include <vector>

#include "host/core/CString.h"

// One named integer parameter of a transform.
struct STransformParam {
    std::int32_t value = 0;         // what a run uses, once clamped into the range
    std::int32_t minimum = 0;       // lowest value allowed
    std::int32_t maximum = 0;       // highest value allowed
    std::int32_t defaultValue = 0;  // declared for whoever shows the list; no run reads it
    CString name;                   // told apart exactly, letter case included
};

// An ordered list of parameters. A transform owns one; a pipeline's list is those of its stages,
// the shared borders given once.
class CTransformParamList {
  public:
    void Add(CString name, int minimum, int maximum, int default_value, int value);
    // The first entry of that name; when there is none, an entry of zeros without a name.
    STransformParam Find(const CString& name) const;
    // A new list of the entries `first` to `last` - 1, as far as they exist.
    CTransformParamList Extract(int first, int last) const;
    // A new list: the entries of `a`, then those of `b`.
    static CTransformParamList Concat(const CTransformParamList& a, const CTransformParamList& b);
    // Pulls every value into its range.
    void ClampValues();

    int Count() const { return static_cast<int>(entries_.size()); }
    STransformParam& operator[](int index) { return entries_[static_cast<std::size_t>(index)]; }
    const STransformParam& operator[](int index) const {
        return entries_[static_cast<std::size_t>(index)];
    }

    CString name;  // of a pipeline's list, e.g. "Transfo1T2"; empty otherwise

  private:
    std::vector<STransformParam> entries_;
};
