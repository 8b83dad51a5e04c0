#include "app/imagefile/encode/EncoderOutput.h"

#include <algorithm>
#include <atomic>

#include "hostlib/system/AllCores.h"

namespace imagefile {

namespace {

using CPiece = std::vector<std::uint8_t>;

// Pieces that any number of threads make, each taking the next until none is left.
class CBatch {
  public:
    CBatch(int first, std::vector<CPiece>& pieces, const std::function<void(int, CPiece&)>& make)
        : first_(first), pieces_(pieces), make_(make) {}

    void Drain() {
        for (int i = next_++; i < static_cast<int>(pieces_.size()); i = next_++) {
            CPiece& piece = pieces_[static_cast<std::size_t>(i)];
            piece.clear();  // its memory serves again
            make_(first_ + i, piece);
        }
    }
    void Stop() { next_ = static_cast<int>(pieces_.size()); }

  private:
    const int first_;
    std::vector<CPiece>& pieces_;
    const std::function<void(int, CPiece&)>& make_;
    std::atomic<int> next_{0};
};

}  // namespace

// While the calling thread takes one batch of pieces, the others make the next; then it helps them.
void MakeInOrder(int count, const std::function<void(int, CPiece&)>& make,
                 const std::function<void(int, std::span<const std::uint8_t>)>& take) {
    const int size = CoreCount();
    std::vector<CPiece> made, next;
    for (int first = 0; first < count + size; first += size) {
        next.resize(static_cast<std::size_t>(std::clamp(count - first, 0, size)));
        CBatch batch(first, next, make);
        const auto take_made = [&] {
            for (std::size_t i = 0; i < made.size(); ++i) {
                take(first - size + static_cast<int>(i), made[i]);
            }
        };
        OnAllCores(size, [&](int slot) {
            try {
                if (slot == 0) take_made();
                batch.Drain();
            } catch (...) {
                batch.Stop();
                throw;
            }
        });
        std::swap(made, next);
    }
}

}  // namespace imagefile
