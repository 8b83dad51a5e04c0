#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "host/core/HostApi.h"

// Selects a language as languages::Select does, and what was selected before again when this object
// ends. Objects that live at the same time end in the reverse order of their beginning, or lie
// within one another under the service's resource lock.
class HOST_API CSelectedLanguage {
  public:
    CSelectedLanguage(const std::filesystem::path& data, const std::string& code);
    ~CSelectedLanguage();
    CSelectedLanguage(const CSelectedLanguage&) = delete;
    CSelectedLanguage& operator=(const CSelectedLanguage&) = delete;

  private:
    struct SBefore;
    std::unique_ptr<SBefore> before_;
};
