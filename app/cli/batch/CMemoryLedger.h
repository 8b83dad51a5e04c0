#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

// Bytes that several threads share. They are handed out in the order in which they were asked for,
// so that large requests are not passed over for ever.
class CMemoryLedger {
  public:
    explicit CMemoryLedger(std::uint64_t bytes) : bytes_(bytes) {}

    // Bytes that go back when it is destroyed.
    class CShare {
      public:
        CShare(CMemoryLedger& ledger, std::uint64_t bytes) : ledger_(ledger), bytes_(bytes) {}
        ~CShare() { ledger_.Return(bytes_); }
        CShare(const CShare&) = delete;
        CShare& operator=(const CShare&) = delete;

      private:
        CMemoryLedger& ledger_;
        std::uint64_t bytes_;
    };

    // Waits until the bytes are free, or all are: what is more than all is had alone.
    [[nodiscard]] CShare Take(std::uint64_t bytes) {
        std::unique_lock lock(mutex_);
        const std::uint64_t turn = next_++;
        changed_.wait(lock, [&] {
            return turn == serving_ && (used_ == 0 || (bytes <= bytes_ && used_ <= bytes_ - bytes));
        });
        used_ += bytes;
        ++serving_;
        changed_.notify_all();
        return {*this, bytes};
    }

  private:
    void Return(std::uint64_t bytes) {
        const std::lock_guard lock(mutex_);
        used_ -= bytes;
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint64_t bytes_;
    std::uint64_t used_ = 0;
    std::uint64_t next_ = 0, serving_ = 0;
};
