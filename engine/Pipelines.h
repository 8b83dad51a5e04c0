#pragma once

#include "engine/CTransformParamList.h"
#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"

// The seven chains of transforms that the materials are made with. Each has
// - a definition: its flat list of parameters, values 0, named after it. Entries 0 to 3 are the
//   borders, which every stage shares; then come each stage's own entries, stage after stage;
// - a runner: runs the stages from `source` through one temporary image into `destination` with
//   the values of `list`, which has the definition's entries in their order. The result is the
//   first failing stage's: error 100 when cancelled, the destination then as the stages so far
//   left it. While a stage reads an image, the image's channel access is set to all channels;
//   afterwards it is what the source's was.
//
// The stages are listed in one table in Pipelines.cpp.
CTransformParamList DefineTransfo1T2();  // Sandstone
CTransformParamList DefineTransfo1T4();  // Soft Plastic
CTransformParamList DefineTransfo1T5();  // Polished Stone
CTransformParamList DefineTransfo1T7();  // Rough Leather
CTransformParamList DefineTransfo1T9();  // Fine Leather
CTransformParamList DefineTransfo2T5();  // Fur
CTransformParamList DefineTransfo2T8();  // Straw Wall

using PipelineRunner = CErrorAutoThrow(CRowIteratorBands& source, CRowIteratorBands& destination,
                                       const CTransformParamList& list, CStatusControl& status);
PipelineRunner RunTransfo1T2;
PipelineRunner RunTransfo1T4;
PipelineRunner RunTransfo1T5;
PipelineRunner RunTransfo1T7;
PipelineRunner RunTransfo1T9;
PipelineRunner RunTransfo2T5;
PipelineRunner RunTransfo2T8;
