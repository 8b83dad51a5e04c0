#pragma once

#include <vips/vips.h>

#include <memory>
#include <string>
#include <vector>

#include "app/imagefile/FileKinds.h"

namespace imagefile {

struct SUnref {
    void operator()(void* object) const { g_object_unref(object); }
};
template <class Object>
using TVips = std::unique_ptr<Object, SUnref>;

// Starts the library once in a process: its untrusted decoders blocked, nothing cached.
void StartVips();

// The library's account of what just failed, as one line without the name of its part. There is one
// account for the whole process: what has failed beside others is done again alone to get its own.
std::string TakeVipsError();

// Held while the library is used, by several threads at once.
class CVipsUse {
  public:
    CVipsUse();
    ~CVipsUse();
    CVipsUse(const CVipsUse&) = delete;
    CVipsUse& operator=(const CVipsUse&) = delete;
};
// Waits until nobody uses the library, and keeps others from it; the account is empty then.
class CVipsAlone {
  public:
    CVipsAlone();
    ~CVipsAlone();
    CVipsAlone(const CVipsAlone&) = delete;
    CVipsAlone& operator=(const CVipsAlone&) = delete;
};

// Opens an image file of a known kind, to be decoded from top to bottom; pages count from 1. A
// `strict` decoder fails where it would else warn and guess. Null on failure.
TVips<VipsImage> OpenVips(ENKind kind, int descriptor, int page, bool strict);

// Collects what the library warns of on this thread; without a collector it is dropped. One at a
// time in a thread.
class CVipsWarnings {
  public:
    CVipsWarnings();
    ~CVipsWarnings();
    CVipsWarnings(const CVipsWarnings&) = delete;
    CVipsWarnings& operator=(const CVipsWarnings&) = delete;

    // Those that came since the last call, repetitions left out.
    std::vector<std::string> TakeNew();

  private:
    static void Receive(const char* domain, GLogLevelFlags level, const char* text, void* data);
    friend void StartVips();

    std::vector<std::string> texts_;
    std::size_t taken_ = 0;
};

}  // namespace imagefile
