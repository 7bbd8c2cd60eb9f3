// Embedded image information: switching it on and off, and reading each frame's values.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_cycle_time.h"
#include "kx_pg_number.h"
#include "kx_pg_proc.h"
#include "kx_pg_shared.h"
#include "kx_scenario.h"

#include <array>

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::EmbeddedImageInfo;
using FlyCapture2::EmbeddedImageInfoProperty;
using FlyCapture2::Error;
using FlyCapture2::PGRERROR_OK;

namespace KxPGrey {

namespace {

/// The items that a session switches, in this order.
struct ChunkItem {
    EmbeddedImageInfoProperty EmbeddedImageInfo::*item;
    ChunkBit bit;
};

constexpr std::array<ChunkItem, 4> kChunkItems = {{
    {&EmbeddedImageInfo::gain, kChunkGain},
    {&EmbeddedImageInfo::shutter, kChunkExposure},
    {&EmbeddedImageInfo::timestamp, kChunkTimestamp},
    {&EmbeddedImageInfo::frameCounter, kChunkFrameCounter},
}};

void logEnabled(ChunkBit bit)
{
    switch (bit) {
    case kChunkGain:
        KX_LOG_I("  Enabled gain chunks sending\n");
        break;
    case kChunkExposure:
        KX_LOG_I("  Enabled exposure time chunks sending\n");
        break;
    case kChunkTimestamp:
        KX_LOG_I("  Enabled timestamp chunks sending\n");
        break;
    case kChunkFrameCounter:
        KX_LOG_I("  Enabled counter value chunks sending\n");
        break;
    }
}

void logDisabled(ChunkBit bit)
{
    switch (bit) {
    case kChunkGain:
        KX_LOG_I("  Disabled gain chunks sending\n");
        break;
    case kChunkExposure:
        KX_LOG_I("  Disabled exposure time chunks sending\n");
        break;
    case kChunkTimestamp:
        KX_LOG_I("  Disabled timestamp chunks sending\n");
        break;
    case kChunkFrameCounter:
        KX_LOG_I("  Disabled counter value chunks sending\n");
        break;
    }
}

} // namespace

void CCamProc::ProcSetCamConfigChunks(CExCam* cam)
{
    EmbeddedImageInfo embedded = {};
    Error error = cam->GetEmbeddedImageInfo(&embedded);
    if (error != PGRERROR_OK) {
        KX_LOG_W("Error during GetEmbeddedImageInfo: %s\n", error.GetDescription());
        return;
    }
    chunkMask = 0;
    for (const ChunkItem& chunk : kChunkItems) {
        if ((embedded.*chunk.item).available) {
            (embedded.*chunk.item).onOff = true;
            chunkMask |= chunk.bit;
            logEnabled(chunk.bit);
        }
    }
    // When this fails the bits stay: what reads them copes with a frame that lacks an item.
    error = cam->SetEmbeddedImageInfo(&embedded);
    if (error != PGRERROR_OK) {
        KX_LOG_W("Error during SetEmbeddedImageInfo: %s\n", error.GetDescription());
    } else {
        KX_LOG_I("Chunks enabling is finished (%u)\n", chunkMask);
    }
}

namespace {

/// Returns false after a warning.
bool switchChunksOff(CExCam& cam)
{
    constexpr const char* kCaller = "ProcSetCamConfigEnd";
    EmbeddedImageInfo embedded = {};
    Error error = cam.GetEmbeddedImageInfo(&embedded);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "Error during GetEmbeddedImageInfo: %s\n", error.GetDescription());
        return false;
    }
    for (const ChunkItem& chunk : kChunkItems) {
        if ((embedded.*chunk.item).available) {
            (embedded.*chunk.item).onOff = false;
            logDisabled(chunk.bit);
        }
    }
    error = cam.SetEmbeddedImageInfo(&embedded);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "Error during SetEmbeddedImageInfo: %s\n", error.GetDescription());
        return false;
    }
    return true;
}

} // namespace

void CCamProc::ProcSetCamConfigEnd(CExCam* cam)
{
    KX_LOG_I("Restore some changed camera values (%u)\n", chunkMask);
    if (chunkMask != 0) {
        if (!switchChunksOff(*cam)) {
            return;
        }
        chunkMask = 0;
    }
    KX_LOG_I("Camera config restore is done\n");
}

std::uint64_t CCamProc::ProcFrameChunks(CExCam* cam, FlyCapture2::Image* image)
{
    FlyCapture2::ImageMetadata metadata = {};
    if (chunkMask != 0) {
        metadata = image->GetMetadata();
    }
    // Gain and exposure come from the camera and not from the image: the embedded values are raw.
    curGainDb = cam->ExPropertyGetAbs(FlyCapture2::GAIN);
    KxSc__SetParamVal(kKxScGainDb, &curGainDb);
    curExpoUs = cam->ExPropertyGetAbs(FlyCapture2::SHUTTER) * 1000.0F;
    shared::set(cam->expoTimeUs, truncateToU32(static_cast<double>(curExpoUs)));
    exposureUs = truncateToI32(static_cast<double>(curExpoUs));
    KxSc__SetParamVal(kKxScExposureUs, &curExpoUs);

    const FlyCapture2::TimeStamp stamp = image->GetTimeStamp();
    camTimeUs = cycleTimeUs(stamp.cycleSeconds, stamp.cycleCount, stamp.cycleOffset);
    KxSc__SetParamVal(kKxScCameraTimeUs, &camTimeUs);
    if ((chunkMask & kChunkFrameCounter) != 0) {
        frameCounter = metadata.embeddedFrameCounter;
        KxSc__SetParamVal(kKxScFrameCounter, &frameCounter);
    }
    return camTimeUs;
}

} // namespace KxPGrey
