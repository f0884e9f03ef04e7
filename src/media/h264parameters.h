#pragma once

#include <QtGlobal>

extern "C" {
#include <libavutil/rational.h>
}

// What an H.264 configuration packet (Annex B: SPS and PPS behind start codes) says of the stream,
// read from the sequence parameter set alone, before any picture.
namespace H264Parameters {

// The frame rate the SPS's timing information declares, as FFmpeg's decoder derives it (two
// ticks a frame); {0, 1} when there is no SPS, no timing, or the SPS ends early.
AVRational frameRate(const uchar *data, int size);

} // namespace H264Parameters
