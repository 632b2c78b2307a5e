// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <deque>
#include <vector>

namespace tarvik
{

/** Makes an image of another size from a source's rows, which come one by one from the top, so that the source is never
    held as a whole. Shrinking gives each new pixel the exact mean of the area that it covers, with premultiplied alpha,
    which JUCE's renderer does not do: it picks single pixels, and print turns ragged. Enlarging interpolates. A strip of
    frames is resampled frame by frame, so that none bleeds into its neighbours. One thread at a time.
*/
class RowResampler
{
public:
    /** From a source of such pixels to frames of these sizes, all positive. */
    RowResampler (juce::Image::PixelFormat format, int fromWidth, int fromHeight, int frameWidth, int frameHeight,
                  int framesInStrip);

    /** The next row of the source, in the layout of JUCE's images in memory. */
    void addRow (const juce::uint8* row);

    /** The new image, whole after the source's last row. */
    juce::Image result() const { return target; }

private:
    /** The source pixels that make one new pixel along one axis, with shares that add up to 1. */
    struct Taps
    {
        int first = 0;
        std::vector<float> shares;
    };

    static Taps areaTaps (double start, double end);
    static Taps interpolationTaps (double centre, int length);
    static std::vector<Taps> tapsFor (int sourceLength, int length);

    void finishRow (const float* sums);

    int sourceWidth, sourceHeight, numFrames, bytesPerPixel;
    juce::Image target;
    std::vector<Taps> columns, rows;
    std::deque<std::vector<float>> open; ///< Sums of the new rows that have begun, the uppermost first.
    std::vector<float> spare;            ///< The last finished one's memory.
    int rowsDone = 0, rowsAdded = 0;
};

/** An image at another size; `width` is that of one frame. Null for a null image or for no area. */
juce::Image resampled (const juce::Image& source, int width, int height, int numFrames = 1);

} // namespace tarvik
