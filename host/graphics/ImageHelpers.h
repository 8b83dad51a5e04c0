#pragma once

#include <cstdint>

#include "host/graphics/CRowIteratorBands.h"
#include "host/graphics/CStatusControl.h"
#include "host/graphics/SColorSpecRGB.h"
#include "host/graphics/TRange.h"

// Small operations on whole pictures, all channels whatever the channel access, where not said
// otherwise. All
// give error 101 for pictures that are not attached or do not fit together, and 102 without memory;
// those with a status control (may be null) also 100 when cancelled.

// A side that a picture can be scaled to.
using ResampledSide = TRange<int, 1, 32767, 1>;

// The picture scaled to a size; smooth in both directions (Lanczos, widened when it shrinks, so
// that fine patterns turn grey instead of flickering). `seamless` takes the source for one tile of
// an endless pattern, so that the scaled tiles fit together; otherwise its edge is repeated.
// `nearest` takes the nearest pixel instead of filtering.
HOST_API CErrorAutoThrow Resample(CStatusControl* status, const CRowIteratorBands& source,
                                  CRowIteratorBands& output, ResampledSide width,
                                  ResampledSide height, bool seamless, bool nearest);

// Fills an attached picture, or the part of it in `area` (pixels of the picture), with repeats of
// `tile`, one of which lies at the tile's own place on the canvas. Samples are converted to the
// output's format; without alpha of its own the tile is opaque.
HOST_API CErrorAutoThrow RowIterator_Tile(CRowIteratorBands& output, const CRowIteratorBands& tile,
                                          const CRect* area = nullptr);

// Copies the alpha, or the colour channels, between attached pictures of one size and depth.
HOST_API CErrorAutoThrow RowIterator_CopyAlpha(CRowIteratorBands& destination,
                                               const CRowIteratorBands& source);
HOST_API CErrorAutoThrow RowIterator_CopyColor(CRowIteratorBands& destination,
                                               const CRowIteratorBands& source);

// Makes `output`, of `format` (one with alpha), from the colour that `colour` shows and the alpha
// of `alpha` (its only channel, or its alpha channel). `replace` is true: alpha that `colour` may
// have is not looked at. A mask or an offset between the two is not offered (error 103).
HOST_API CErrorAutoThrow AddAlphaChannel(CStatusControl* status, const CRowIteratorBands& colour,
                                         CRowIteratorBands& output, CNPixelFormat format,
                                         const CRowIteratorBands& alpha,
                                         const CRowIteratorBands* mask, bool replace,
                                         const CPoint* offset);

// The blending table of 64K entries: entry alpha * 256 + v is v * alpha / 255, rounded to nearest.
HOST_API const std::uint8_t* GetMask64KLUT();

// The picture composited over a solid colour through its alpha, without alpha; results are rounded
// to nearest, and alpha 255 (65535) and 0 give exactly the picture and exactly the colour. A
// picture without alpha is copied. `table` is that of GetMask64KLUT.
HOST_API CErrorAutoThrow FlattenIteratorWithColor(const CRowIteratorBands& source,
                                                  CRowIteratorBands& output,
                                                  const std::uint8_t* table, CColorRef colour);
HOST_API CErrorAutoThrow DeleteAlphaChannel(const CRowIteratorBands& source,
                                            CRowIteratorBands& output, const std::uint8_t* table,
                                            CColorRef colour);

// A grey version with 16 bits, which hold the mean of three samples of 8 bits in full; with the
// same alpha if there is any.
HOST_API CErrorAutoThrow GreyScaleDIB(CStatusControl* status, const CRowIteratorBands& source,
                                      CRowIteratorBands& output, const SColorSpecRGB& color_spec);
