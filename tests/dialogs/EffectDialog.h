#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "hostlib/parameters/ParameterValues.h"
#include "hostlib/windowing/CHeadlessToolkit.h"
#include "support/LoadedModule.h"

// An effect whose dialog a test runs, on a canvas of a size. The user's configuration is an empty
// folder of the test's own.
class EffectDialog {
  public:
    explicit EffectDialog(const std::string& effect, CSize canvas = {300, 200},
                          const TRef<IResourceLibrary>& library = {})
        : command_(Module().CreateCommand(effect)), document_(new CDocument(canvas)) {
        CRowIteratorBands image;
        image.Create(canvas.cx, canvas.cy, ENPixelFormat::Colour8).ThrowIfFailed();
        for (int y = 0; y < canvas.cy; ++y) {
            std::fill_n(image.Row<std::uint8_t>(y), 3 * canvas.cx, std::uint8_t{128});
        }
        document_->SetActiveImage(image);
        context_ = new CExecutionContext(document_, library, nullptr);
        PrepareCommand(*command_, context_.Get());
    }
    ~EffectDialog() { InstallToolkit(nullptr); }
    EffectDialog(const EffectDialog&) = delete;
    EffectDialog& operator=(const EffectDialog&) = delete;

    // Opens the dialog and lets the script be its user.
    CErrorAutoThrow Run(CHeadlessToolkit::Script script) {
        toolkit_ = CHeadlessToolkit(std::move(script));
        InstallToolkit(&toolkit_);
        return command_->GetResourceData()->Edit(context_.Get(), command_.Get());
    }
    // The same, for a dialog that has to open.
    void Play(const CHeadlessToolkit::Script& script) {
        bool opened = false;
        Run([&](IDialogModel& dialog) {
            opened = true;
            script(dialog);
        }).Ignore();
        EXPECT_TRUE(opened);
    }
    const CHeadlessToolkit& Toolkit() const { return toolkit_; }
    // How many previews an action asks for.
    template <class Action>
    int PreviewsOf(Action&& action) const {
        const int before = toolkit_.Previews();
        action();
        return toolkit_.Previews() - before;
    }

    CCmdEffect& Command() const { return *command_; }
    IParameterRepository& Repository() const { return *command_->BoundRepository(); }
    IParameter& Parameter(const std::string& name) const {
        return parameters::Find(Repository(), name);
    }
    std::int64_t Number(const std::string& name) const { return Parameter(name).Number(); }
    nlohmann::ordered_json Values() const { return parameters::ToJson(Repository()); }

    static const CEffectModule& Module() {
        static const LoadedModule module("EN");
        return *module.operator->();
    }

  private:
    TRef<CCmdEffect> command_;
    TRef<CDocument> document_;
    TRef<ICommandExecutionContext> context_;
    CHeadlessToolkit toolkit_{nullptr};
};

// Presets and last values go to a folder that lives for one test.
class DialogTest : public testing::Test {
  protected:
    DialogTest()
        : folder_(std::filesystem::temp_directory_path() /
                  ("cmdtexture-dialogs-" + std::to_string(getpid()))) {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
    }
    ~DialogTest() override { std::filesystem::remove_all(folder_); }
    const std::filesystem::path& Folder() const { return folder_; }

  private:
    std::filesystem::path folder_;
};
