#pragma once

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <utility>

// Error codes that cross the border between module and host.
enum class TolmErrorCode : int {
    Success = 0,
    Cancelled = 100,      // the status control or a dialog's Cancel
    UnusableInput = 101,  // no image attached, an unsupported format, a value out of range
    NotCreated = 102,     // an object or its memory could not be had
    NotAvailable = 103,   // the operation does not exist here
    NotFound = 104,       // a name that nothing is stored under
    ReadFailed = 105,     // a file or store could not be read
    ScratchFailed = 106,  // the folder for what memory does not hold has no room, or is none
};

// An error on its way: thrown inside an operation, returned inside a CErrorAutoThrow. `what()` is
// a short text in English, UTF-8; it may be empty.
class CNException : public std::exception {
  public:
    explicit CNException(TolmErrorCode code, std::string text = {})
        : code_(code), text_(std::move(text)) {}
    TolmErrorCode Code() const noexcept { return code_; }
    const char* what() const noexcept override { return text_.c_str(); }

  private:
    TolmErrorCode code_;
    std::string text_;
};

// The result of nearly every operation between module and host: success, or a counted
// CNException. Results whose outcome does not matter are dropped visibly with Ignore().
class [[nodiscard]] CErrorAutoThrow {
  public:
    CErrorAutoThrow() = default;
    CErrorAutoThrow(TolmErrorCode code, std::string text = {}) {  // NOLINT: codes are results
        if (code != TolmErrorCode::Success) {
            error_ = std::make_shared<const CNException>(code, std::move(text));
        }
    }
    CErrorAutoThrow(const CNException& error)  // NOLINT: a caught exception is a result
        : error_(std::make_shared<const CNException>(error)) {}

    bool Failed() const noexcept { return error_ != nullptr; }
    TolmErrorCode Code() const noexcept { return error_ ? error_->Code() : TolmErrorCode::Success; }
    const char* Text() const noexcept { return error_ ? error_->what() : ""; }
    void ThrowIfFailed() const {
        if (error_) throw CNException(*error_);
    }
    void Ignore() const noexcept {}

  private:
    std::shared_ptr<const CNException> error_;
};

// Runs `operation` and turns a CNException, memory that cannot be had (102) or any other standard
// exception (101) into a result: the boundary that no exception passes.
template <class Operation>
CErrorAutoThrow CatchErrors(Operation&& operation) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const CNException& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return TolmErrorCode::NotCreated;
    } catch (const std::exception& error) {
        return {TolmErrorCode::UnusableInput, error.what()};
    }
}
