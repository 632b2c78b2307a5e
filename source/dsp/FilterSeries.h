// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"

#include <array>
#include <functional>

namespace tarvik
{
/** Two filters in series (each a kind of CascadeBanks), on channels in parallel.

    While both are idle they run in one pass, with 64-bit samples in between; where one moves, each runs by itself, up to
    the sample at which the next move ends. All channels share passes, also those of several objects, which may move
    independently. prepare() while no audio runs, the rest on the audio thread. */
template <typename First, typename Second>
class FilterSeries
{
public:
    First first;
    Second second;

    /** Allocates. `sampleRate` in Hz. */
    void prepare (double sampleRate, int channels, int maxSamples)
    {
        first.prepare (sampleRate, channels, maxSamples);
        second.prepare (sampleRate, channels, maxSamples);
    }

    void reset() noexcept
    {
        first.reset();
        second.reset();
    }

    /** Instead of process() while nothing is heard of the filters, where both have a skip(). */
    void skip() noexcept
    {
        first.skip();
        second.skip();
    }

    /** Whether both are settled, with `level` as the input of each channel from now on. */
    bool isSettled (double level) noexcept { return first.isSettled (level) && second.isSettled (level); }

    /** Filters n samples of each channel, in place. */
    void process (float* const* channelRows, int n) noexcept
    {
        process (std::array { this }, std::identity(), channelRows, n);
    }

    /** The same for several objects: a row for each channel of the first one, then of the next. Same bits as one by one.
        `owners` are pointers to objects of which `seriesOf`, say a pointer to a member, is the series. */
    template <typename Owners, typename SeriesOf>
    static void process (const Owners& owners, SeriesOf seriesOf, float* const* channelRows, int n) noexcept
    {
        const auto forEach = [&] (auto function)
        {
            for (const auto& owner : owners)
                function (std::invoke (seriesOf, *owner));
        };

        forEach (
            [&] (FilterSeries& series)
            {
                series.rows = channelRows;
                channelRows += series.first.getActiveCascades().size();
            });

        for (int done = 0, length = 0; done < n; done += length)
        {
            length = n - done;
            forEach ([&] (FilterSeries& series) { length = series.begin (length); });

            CascadeBatch batch (length);
            forEach ([&] (FilterSeries& series) { series.feedFirst (done, batch); });
            batch.run();
            forEach ([&] (FilterSeries& series) { series.feedSecond (done, batch); });
            batch.run();
            forEach ([&] (FilterSeries& series) { series.finish (done, length); });
        }
    }

private:
    /** Of the next n samples, how many come before a move ends. */
    int begin (int n) noexcept
    {
        const auto isFirstIdle = first.beginSlice(), isSecondIdle = second.beginSlice();
        isIdle = isFirstIdle && isSecondIdle;
        return isIdle ? n : second.getPieceLength (first.getPieceLength (n));
    }

    void feedFirst (int done, CascadeBatch& batch) noexcept
    {
        if (! isIdle)
            return first.feed (rows, done, batch);

        const auto firsts = first.getActiveCascades(), seconds = second.getActiveCascades();

        for (std::size_t c = 0; c < firsts.size(); ++c)
            batch.add ({ rows[c] + done, firsts[c], seconds[c] });
    }

    void feedSecond (int done, CascadeBatch& batch) noexcept
    {
        if (isIdle)
            return;

        first.finish (rows, done, batch.n);
        second.feed (rows, done, batch);
    }

    void finish (int done, int n) noexcept
    {
        if (! isIdle)
            second.finish (rows, done, n);
    }

    float* const* rows = nullptr; ///< of the current call
    bool isIdle = false;          ///< both filters, in the current piece
};
} // namespace tarvik
