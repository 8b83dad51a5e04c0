#pragma once

#include <map>

#include "host/commands/ICmdResourceData.h"
#include "host/core/TUnknownImpl.h"
#include "module/CommandDescription.h"

// The resource data that all commands share: names, ids, texts and attributes, filled from a
// command's description. Texts are fixed at construction but for those with a setter.
template <class Interface>
class TComponentResourceData : public TUnknownCoreImpl<Interface> {
  public:
    HRESULT QueryInterface(const GUID& id, void** out) override;
    CString GetComponentName() const override { return component_name_; }
    CString GetReservedText() const override { return {}; }
    CString GetTextA() const override { return textA_; }
    GUID GetComponentGuid() const override { return component_guid_; }
    const GUID* GetComponentGuidPtr() const override { return &component_guid_; }
    std::int32_t GetVersion() const override { return 1; }
    CString GetModuleName() const override { return module_name_; }
    std::int32_t GetImageId() const override { return image_id_; }
    std::int32_t GetCommandId() const override { return command_id_; }
    HMODULE GetImageModule() const override;
    CString GetPart0() const override;
    CString GetPart2() const override;
    CString GetPart1() const override;
    CString GetTextById() const override;
    CString GetDisplayName() const override { return display_name_; }
    CString GetEnglishDisplayName() const override { return english_display_name_; }
    CString GetTextB() const override { return textB_; }
    void SetPart0(const CString& text) override;
    void SetPart2(const CString& text) override;
    void SetPart1(const CString& text) override;
    void SetDisplayName(const CString& text) override { display_name_ = text; }
    void SetTextB(const CString& text) override { textB_ = text; }
    CErrorAutoThrow SetAttribute(std::int32_t id, std::int32_t value) override;
    std::int32_t GetAttribute(std::int32_t id) const override;
    void SetAttributeObserver(IAttributeObserver* observer, std::uint8_t tag) override;
    CErrorAutoThrow Reserved31() override { return {}; }
    CErrorAutoThrow Reserved32() override { return {}; }
    CErrorAutoThrow Edit(ICommandExecutionContext* context,
                         VCommandImplementation* command) override;

    // Shows the command's dialog modally; error 100 when it was cancelled.
    virtual CErrorAutoThrow ShowDialog(ICommandExecutionContext* context,
                                       VCommandImplementation* command) = 0;

  protected:
    // Loads the texts from the current resource module: construct inside a resource switch.
    explicit TComponentResourceData(const SCommandDescription& description);

  private:
    void SetParts(const CString& part0, const CString& part1, const CString& part2);

    CString component_name_, textA_, display_name_, english_display_name_, three_part_text_,
        module_name_, textB_;
    GUID component_guid_;
    std::int32_t image_id_, command_id_;
    int text_id_;
    std::map<std::int32_t, std::int32_t> attributes_;
    IAttributeObserver* observer_ = nullptr;
    std::uint8_t observer_tag_ = 0;
};

// What commands add: the long description, the general settings and the parameters.
template <class Interface>
class TCommandResourceData : public TComponentResourceData<Interface> {
  public:
    CString GetTextC() const override { return textC_; }
    void SetTextC(const CString& text) override { textC_ = text; }
    CErrorAutoThrow PrepareRepository(ICommandExecutionContext* context, bool finish,
                                      VCommandImplementation* command) override;

    // Defines the command's own parameters; the repository may be null.
    virtual CErrorAutoThrow DefineParameters(ICommandExecutionContext* context,
                                             IParameterRepository* repository) = 0;
    virtual CErrorAutoThrow DefineParametersFor(ICommandExecutionContext* context,
                                                IParameterRepository* repository,
                                                VCommandImplementation* /*command*/) {
        return DefineParameters(context, repository);
    }

  protected:
    explicit TCommandResourceData(const SCommandDescription& description);

  private:
    void DefineGeneralSettings(ICommandExecutionContext* context, IParameterRepository* repository,
                               VCommandImplementation* command);

    CString textC_;
};

extern template class TComponentResourceData<ICmdResourceData>;
extern template class TCommandResourceData<ICmdResourceData>;
