#pragma once

#include <string>

#include "host/commands/ICommandExecutionContext.h"
#include "host/commands/IParameterRepository.h"
#include "host/core/TRef.h"
#include "host/core/TUnknownImpl.h"
#include "job/CFileResourceLibrary.h"

// The patterns and textures of one run: what the effect's values name is loaded before it starts,
// so that a name without a picture ends the run instead of giving a plain material.
class CRunResources final : public TUnknownImpl<CRunResources, IResourceLibrary> {
  public:
    // The type of pictures that a parameter names; 0 for one that names none.
    static int TypeOf(const IParameter& parameter);
    // What values a parameter takes, for people, in the language of messages; where they are names,
    // who lists them, and what an empty one means.
    static std::string Accepts(const IParameter& parameter);
    // Throws CJobError, UnknownResource, for a name that the library does not have.
    static void Check(const IParameterRepository& repository, const CFileResourceLibrary& library);
    // Gives an empty name the one that it means where the values give a category, so that a dialog
    // shows it, and previews it.
    static void Settle(IParameterRepository& repository, const CFileResourceLibrary& library);
    // Loads what the values name. Throws CJobError: UnknownResource, Unreadable.
    CRunResources(const IParameterRepository& repository, CFileResourceLibrary& library);

    CErrorAutoThrow LoadImage(int type, const CString& name, CRowIteratorBands& image) override;
    std::vector<SResourceEntry> Entries(int type) override { return library_->Entries(type); }

  private:
    TRef<CFileResourceLibrary> library_;
    int type_ = 0;  // 0: the effect has none
    CString name_;
    CRowIteratorBands loaded_;
};
