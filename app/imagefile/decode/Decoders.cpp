#include "app/imagefile/decode/Decoders.h"

namespace imagefile {

// A damaged file may give one complaint for every row.
void IDecoder::Complain(SComplaint complaint) {
    constexpr std::size_t kEnough = 8;
    if (complaints_.size() < kEnough) complaints_.push_back(std::move(complaint));
}

}  // namespace imagefile
