#include "app/imagefile/encode/EncoderOutput.h"

#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <atomic>

#include "hostlib/graphics/ParallelRows.h"

namespace imagefile {

namespace {

using CPiece = std::vector<std::uint8_t>;
constexpr int kPiecesAThread = 1;

}  // namespace

// While one batch of pieces is taken, the next is made.
void MakeInOrder(int count, const std::function<void(int, CPiece&)>& make,
                 const std::function<void(int, std::span<const std::uint8_t>)>& take) {
    const int size = kPiecesAThread * tbb::this_task_arena::max_concurrency();
    const auto make_batch = [&](int first, std::vector<CPiece>& pieces) {
        pieces.resize(static_cast<std::size_t>(std::min(size, count - first)));
        HostRowWorkers().ForEachBlock(static_cast<int>(pieces.size()), 1,
                                      [&](int i, int /*last*/, int /*slot*/) {
                                          CPiece& piece = pieces[static_cast<std::size_t>(i)];
                                          piece.clear();  // its memory serves again
                                          make(first + i, piece);
                                      });
    };
    tbb::this_task_arena::isolate([&] {
        std::vector<CPiece> made, next;
        std::atomic<int> handed = 0, returned = 0;  // what a task is made of, and what it made
        make_batch(0, made);
        for (int first = 0; first < count; first += size) {
            tbb::task_group group;
            if (first + size < count) {
                handed = first + size;
                group.run([&] {
                    make_batch(handed, next);
                    returned = handed.load();
                });
            }
            try {
                for (std::size_t i = 0; i < made.size(); ++i) {
                    take(first + static_cast<int>(i), made[i]);
                }
            } catch (...) {
                group.cancel();
                group.wait();
                throw;
            }
            group.wait();
            if (returned == first + size) std::swap(made, next);
        }
    });
}

}  // namespace imagefile
