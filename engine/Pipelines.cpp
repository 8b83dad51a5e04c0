#include "engine/Pipelines.h"

#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

#include "engine/CContour1.h"
#include "engine/CCotangentLines.h"
#include "engine/CGaps.h"
#include "engine/CGaussBlur.h"
#include "engine/CGlass.h"
#include "engine/CLuminance.h"
#include "engine/CPeriodic.h"
#include "engine/CTangentPipes.h"
#include "engine/CTerrasseRelief.h"

namespace {

using TransformPtr = std::unique_ptr<CAbstractTransform>;

template <class Transform>
TransformPtr Make() {
    return std::make_unique<Transform>();
}

// A stage: what makes its transform, and where that reports progress.
struct SStage {
    TransformPtr (*make)() = nullptr;
    bool owns_status = false;  // the pipeline's status control itself, not a child of it
    bool pairs = false;        // can be made band by band for a stage of neighbourhoods
};

template <class Transform>
constexpr SStage kStage = {Make<Transform>, false, std::is_base_of_v<IBandStage, Transform>};
constexpr SStage kBlur = {Make<CGaussBlur>, true, false};

struct SPipeline {
    static constexpr int kMostStages = 5;
    const wchar_t* name;
    SStage stages[kMostStages];

    constexpr int Count() const {
        int count = 0;
        while (count < kMostStages && stages[count].make) ++count;
        return count;
    }
};

// What the materials are made of. In a pipeline's flat list each stage has the entries it declares
// after the borders, in the order of the stages.
constexpr SStage kRelief = kStage<CTerrasseRelief>;
constexpr SPipeline kTransfo1T2 = {L"Transfo1T2", {kBlur, kStage<CPeriodic3>, kRelief}};
constexpr SPipeline kTransfo1T4 = {L"Transfo1T4", {kBlur, kStage<CPeriodic5>, kRelief}};
constexpr SPipeline kTransfo1T5 = {L"Transfo1T5", {kBlur, kStage<CPeriodic6>, kRelief}};
constexpr SPipeline kTransfo1T7 = {
    L"Transfo1T7", {kStage<CLuminance>, kStage<CContour1>, kBlur, kStage<CGlass>, kRelief}};
constexpr SPipeline kTransfo1T9 = {L"Transfo1T9", {kBlur, kStage<CGaps>, kRelief}};
constexpr SPipeline kTransfo2T5 = {L"Transfo2T5", {kBlur, kStage<CCotangentLines>}};
constexpr SPipeline kTransfo2T8 = {L"Transfo2T8", {kBlur, kStage<CTangentPipes>, kRelief}};

constexpr int kBorders = 4;  // the first entries of every transform's list

std::vector<TransformPtr> MakeTransforms(const SPipeline& pipeline) {
    std::vector<TransformPtr> transforms;
    transforms.reserve(static_cast<std::size_t>(pipeline.Count()));
    for (int i = 0; i < pipeline.Count(); ++i) transforms.push_back(pipeline.stages[i].make());
    return transforms;
}

CTransformParamList Define(const SPipeline& pipeline) {
    const std::vector<TransformPtr> transforms = MakeTransforms(pipeline);
    CTransformParamList list = transforms.front()->params.Extract(0, kBorders);
    for (const TransformPtr& transform : transforms) {
        const CTransformParamList& own = transform->params;
        list = CTransformParamList::Concat(list, own.Extract(kBorders, own.Count()));
    }
    list.name = pipeline.name;
    return list;
}

// A run of a pipeline: which image each stage reads and writes, and what the stages share.
class CPipelineRun {
  public:
    CPipelineRun(const SPipeline& pipeline, CRowIteratorBands& source,
                 CRowIteratorBands& destination, const CTransformParamList& list,
                 CStatusControl& status)
        : pipeline_(pipeline),
          source_(source),
          destination_(destination),
          status_(status),
          access_(source.GetChannelAccess()),
          modify_mode_(source.GetImageModifyMode()) {
        status.SetNumberOfSteps(pipeline.Count());
        transforms_ = MakeTransforms(pipeline);
        int first = kBorders;
        for (const TransformPtr& transform : transforms_) {
            const int last = first + transform->params.Count() - kBorders;
            transform->params =
                CTransformParamList::Concat(list.Extract(0, kBorders), list.Extract(first, last));
            first = last;
        }
    }

    CErrorAutoThrow Run() {
        const int count = pipeline_.Count();
        CRowIteratorBands* from = &source_;
        for (int i = 0; i < count; ++i) {
            // The stages write the two images by turns, so that the last one writes the
            // destination.
            CRowIteratorBands* to = (count - i) % 2 == 1 ? &destination_ : &temporary_;
            CErrorAutoThrow result;
            if (PairsWithNext(i, *from)) {
                result = RunPair(i++, *from);
                to = from;
            } else if (NextDrawsOver(i)) {
                result = RunStage(i, *from, temporary_);
                if (!result.Failed()) destination_.Consume(temporary_);
                to = &destination_;
                if (!result.Failed()) result = RunStage(++i, *to, *to);
            } else {
                result = RunStage(i, *from, *to);
            }
            if (result.Failed()) return result;
            from = to;
        }
        return {};
    }

  private:
    CAbstractTransform& Transform(int stage) {
        return *transforms_[static_cast<std::size_t>(stage)];
    }

    // Runs `run(status)` with the status control of a stage that reads `from`.
    template <class Work>
    CErrorAutoThrow InStage(int stage, CRowIteratorBands& from, Work&& work) {
        const bool owns_status = pipeline_.stages[stage].owns_status;
        std::optional<CStatusControl> child;
        if (!owns_status) child.emplace(&status_);
        Transform(stage).SetStatus(owns_status ? &status_ : &*child);
        from.SetChannelAccess(ENChannel::All, 0).Ignore();
        CErrorAutoThrow result = work();
        if (stage + 1 < pipeline_.Count()) from.SetChannelAccess(access_, modify_mode_).Ignore();
        return result;
    }

    CErrorAutoThrow RunStage(int stage, CRowIteratorBands& from, CRowIteratorBands& to) {
        return InStage(stage, from, [&] {
            Transform(stage).SetImages(&from, &to);
            return Transform(stage).Run();
        });
    }

    // Whether a stage can be made band by band for the next, which then writes over `image`, the
    // destination: needs threads, and an image that is the pipeline's own to write.
    bool PairsWithNext(int stage, const CRowIteratorBands& image) const {
        return status_.Workers() && &image == &destination_ && pipeline_.stages[stage].pairs &&
               stage + 1 < pipeline_.Count();
    }

    // Whether a blur makes the very image that the last stage draws its strokes over: all strokes
    // are made before the first is drawn, and the destination holds nothing that is to be kept.
    bool NextDrawsOver(int stage) const {
        const bool kept =
            destination_.IsAttached() && destination_.GetPixelFormat() == source_.GetPixelFormat();
        return status_.Workers() && pipeline_.stages[stage].owns_status &&
               stage + 2 == pipeline_.Count() && pipeline_.stages[stage + 1].pairs && !kept;
    }

    CErrorAutoThrow RunPair(int stage, CRowIteratorBands& image) {
        auto& before = dynamic_cast<IBandStage&>(Transform(stage));
        auto& after = dynamic_cast<CTemplateB&>(Transform(stage + 1));
        CErrorAutoThrow result = InStage(stage, image, [&] {
            Transform(stage).SetImages(&image, &image);
            CErrorAutoThrow prepared = Transform(stage).Prepare();
            return prepared.Failed() ? prepared : before.Announce();
        });
        if (result.Failed()) return result;
        return InStage(stage + 1, temporary_, [&] {
            after.SetImages(&image, &image);
            CErrorAutoThrow prepared = after.Prepare();
            return prepared.Failed() ? prepared : after.RunOver(before);
        });
    }

    const SPipeline& pipeline_;
    CRowIteratorBands& source_;
    CRowIteratorBands& destination_;
    CStatusControl& status_;
    const ENChannel access_;
    const int modify_mode_;
    std::vector<TransformPtr> transforms_;
    CRowIteratorBands temporary_;
};

CErrorAutoThrow Run(const SPipeline& pipeline, CRowIteratorBands& source,
                    CRowIteratorBands& destination, const CTransformParamList& list,
                    CStatusControl& status) {
    return CatchErrors(
        [&] { return CPipelineRun(pipeline, source, destination, list, status).Run(); });
}

}  // namespace

#define DEFINE_PIPELINE(suffix)                                                            \
    CTransformParamList Define##suffix() { return Define(k##suffix); }                     \
    CErrorAutoThrow Run##suffix(CRowIteratorBands& source, CRowIteratorBands& destination, \
                                const CTransformParamList& list, CStatusControl& status) { \
        return Run(k##suffix, source, destination, list, status);                          \
    }
DEFINE_PIPELINE(Transfo1T2)
DEFINE_PIPELINE(Transfo1T4)
DEFINE_PIPELINE(Transfo1T5)
DEFINE_PIPELINE(Transfo1T7)
DEFINE_PIPELINE(Transfo1T9)
DEFINE_PIPELINE(Transfo2T5)
DEFINE_PIPELINE(Transfo2T8)
#undef DEFINE_PIPELINE
