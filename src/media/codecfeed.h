#pragma once

#include <functional>

struct AVCodecContext;
struct AVFrame;
struct AVPacket;

// Feeds one packet to a decoder and hands on every frame it gives back, valid only during the
// call. A decoder that is full is drained first and given the packet again; a packet it refuses
// is dropped.
namespace CodecFeed {
void decode(AVCodecContext *context, const AVPacket *packet, AVFrame *frame, const std::function<void(AVFrame *)> &take);
}
