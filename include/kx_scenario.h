// The scenario parameters: the values that the plug-in publishes with every exported frame.
#ifndef KX_SCENARIO_H
#define KX_SCENARIO_H

/// Number of a scenario parameter, as given to `KxSc__SetParamVal`. The comment behind each number
/// is the type of the value that the published pointer leads to. A published pointer stays valid
/// for the life of the session; the host reads through it at `KxSc__ProcExport`.
enum KxScParam : int {
    kKxScWidth = 1,      ///< u32: image width in pixels
    kKxScHeight = 2,     ///< u32: image height in pixels
    kKxScCodec = 4,      ///< text: codec name of the output format (the pointer is the string)
    kKxScGainDb = 6,     ///< float: gain of the frame in dB
    kKxScExposureUs = 7, ///< float: exposure time of the frame in microseconds
    kKxScUnit = 8,       ///< u32: the constant 1000
    kKxScCameraTimeUs =
        9, ///< u64: frame start on the camera's clock in microseconds (wraps at 128 s)
    kKxScFrameCounter = 10, ///< u32: frame counter embedded by the camera, when it offers one
    kKxScTimestampUs = 12,  ///< u64: frame start on the host's clock in microseconds
    kKxScRxData = 13,       ///< u32: data word received on a GPIO line
    kKxScRxBits = 14,       ///< u32: number of bits of that word, 0 = none
};

#endif
