#pragma once

#include <memory>
#include <vector>

#include "host/commands/GeneralSettings.h"
#include "host/commands/IParameterRepository.h"
#include "host/core/TRef.h"
#include "host/core/TUnknownImpl.h"

// The parameters of one command. The typed access interfaces are parts of the object.
class CParameterRepository : public TUnknownCoreImpl<IParameterRepository> {
  public:
    CParameterRepository();
    // An independent repository with the same name and copies of all parameters.
    CParameterRepository(const CParameterRepository& other);
    ~CParameterRepository() override;

    HRESULT QueryInterface(const GUID& id, void** out) override;

    void SetName(const CString& name) override { name_ = name; }
    const CString& Name() const override { return name_; }
    CErrorAutoThrow Add(IParameter* parameter, int index) override;
    int Count() const override { return static_cast<int>(parameters_.size()); }
    IParameter* At(int index) const override;
    CErrorAutoThrow Complete(ICommandExecutionContext*) override { return {}; }

    void SetGeneral(const TRef<IGeneralSettings>& general) { general_ = general; }
    IGeneralSettings* General() const { return general_.Get(); }

  private:
    struct SAccess;

    CString name_;
    std::vector<TRef<IParameter>> parameters_;
    TRef<IGeneralSettings> general_;
    std::unique_ptr<SAccess> access_;
};
