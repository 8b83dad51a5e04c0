#include "engine/Pipelines.h"

#include <memory>
#include <optional>
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
};

template <class Transform>
constexpr SStage kStage = {Make<Transform>, false};
constexpr SStage kBlur = {Make<CGaussBlur>, true};

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

CErrorAutoThrow RunStage(CAbstractTransform& transform, bool owns_status, CRowIteratorBands& from,
                         CRowIteratorBands& to, CStatusControl& status) {
    std::optional<CStatusControl> child;
    if (!owns_status) child.emplace(&status);
    transform.SetStatus(owns_status ? &status : &*child);
    from.SetChannelAccess(ENChannel::All, 0).Ignore();
    transform.SetImages(&from, &to);
    return transform.Run();
}

CErrorAutoThrow RunStages(const SPipeline& pipeline, CRowIteratorBands& source,
                          CRowIteratorBands& destination, const CTransformParamList& list,
                          CStatusControl& status) {
    CRowIteratorBands temporary;
    const ENChannel access = source.GetChannelAccess();
    const int modify_mode = source.GetImageModifyMode();
    const int count = pipeline.Count();
    status.SetNumberOfSteps(count);
    const std::vector<TransformPtr> transforms = MakeTransforms(pipeline);

    CRowIteratorBands* from = &source;
    int first = kBorders;
    for (int i = 0; i < count; ++i) {
        CAbstractTransform& transform = *transforms[static_cast<std::size_t>(i)];
        const int last = first + transform.params.Count() - kBorders;
        transform.params =
            CTransformParamList::Concat(list.Extract(0, kBorders), list.Extract(first, last));
        first = last;
        // The stages write the two images by turns, so that the last one writes the destination.
        CRowIteratorBands* to = (count - i) % 2 == 1 ? &destination : &temporary;
        CErrorAutoThrow result =
            RunStage(transform, pipeline.stages[i].owns_status, *from, *to, status);
        if (i + 1 < count) from->SetChannelAccess(access, modify_mode).Ignore();
        if (result.Failed()) return result;
        from = to;
    }
    return {};
}

CErrorAutoThrow Run(const SPipeline& pipeline, CRowIteratorBands& source,
                    CRowIteratorBands& destination, const CTransformParamList& list,
                    CStatusControl& status) {
    return CatchErrors([&] { return RunStages(pipeline, source, destination, list, status); });
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
