# SPDX-License-Identifier: GPL-3.0-or-later
"""Compressor and limiter: level out over level in, and gain over time."""
import numpy as np

from host import Host, Strip
from measure import gain_over_time, last_time_far, report, tone, transfer_curve
from style import INK, frame, level_frame, linear, panels, shades, times

LOWEST_DBFS = -50
THRESHOLDS = ["0", "-10", "-20"]
TONE_HZ = 2000
QUIET_DBFS, LOUD_DBFS = -40, -4
SECONDS_BEFORE, SECONDS_AFTER = 0.2, 20.0
FIRST_TIME = 0.0005  # s; the oversampling's filters ring for that long around a step
FIRM = ["compIn=on", "compThreshold=-10", "compRatio=5:1"]


def transfer(strip: Strip, positions):
    ratios = positions["compRatio"]
    figure, axes = panels(2, 2, 108, gap=10, row_gap=13)
    for panel, threshold in zip(axes, THRESHOLDS):
        for ratio, colour in zip(ratios, shades(len(ratios))):
            levels, output = transfer_curve(strip, LOWEST_DBFS, "compIn=on", f"compThreshold={threshold}",
                                            f"compRatio={ratio}", "compRelease=100 ms")
            report(f"threshold {threshold} dB, {ratio}: out at 0 dBFS in", output[-1], "dBFS")
            panel.plot(levels, output, color=colour, label=ratio)

    for state, colour in zip(("off", "on"), shades(2)):
        levels, output = transfer_curve(strip, LOWEST_DBFS, "compIn=on", "compRatio=1:1", f"compLimit={state}")
        report(f"limiter {state}: out at 0 dBFS in", output[-1], "dBFS")
        axes[3].plot(levels, output, color=colour, label=f"limiter {state}")

    for panel, title in zip(axes, [*(f"Threshold {db} dB" for db in THRESHOLDS), "Limiter, ratio 1:1"]):
        level_frame(panel, title, LOWEST_DBFS, LOWEST_DBFS, 10)
        panel.legend(loc="upper left")
    for panel in axes[:2]:
        panel.set_xlabel("")
    for panel in axes[1::2]:
        panel.set_ylabel("")
    return figure


def jump(strip: Strip, seconds: float, *settings: str, back: bool = False):
    """Gain in dB over the seconds since a tone has become loud or, after so many seconds, quiet again."""
    steps = [(QUIET_DBFS, SECONDS_BEFORE), (LOUD_DBFS, seconds), *([(QUIET_DBFS, SECONDS_AFTER)] if back else [])]
    time, gain = gain_over_time(strip, tone(TONE_HZ, strip.rate, *steps), TONE_HZ,
                                SECONDS_BEFORE + (seconds if back else 0), *FIRM, *settings)
    return time[time >= FIRST_TIME], gain[time >= FIRST_TIME]


def attack(strip: Strip, panel, positions):
    for name, colour in zip(positions["compAttack"], shades(3)):
        time, gain = jump(strip, 1.0, f"compAttack={name}", "compRelease=400 ms")
        report(f"attack {name}: within a tenth of {gain[-1]:.1f} dB after",
               1000 * last_time_far(time, gain, gain[-1], 0.1 * abs(gain[-1])), "ms")
        panel.plot(time, gain, color=colour, label=name)


def release(strip: Strip, panel, positions):
    *fixed, automatic = positions["compRelease"]
    for name, colour in zip([*fixed, automatic], [*shades(len(fixed)), "black"]):
        time, gain = jump(strip, 1.0, "compAttack=Medium", f"compRelease={name}", back=True)
        way = gain[-1] - gain[0]
        report(f"release {name}: nine tenths of {way:.1f} dB back after",
               1000 * last_time_far(time, gain, gain[-1], 0.1 * way), "ms", ".7g")
        panel.plot(time, gain, "--" if name == automatic else "-", color=colour, label=name)


def automatic_release(strip: Strip, panel):
    lengths = [0.005, 0.05, 0.5, 5.0]
    for name, dashes in (("AUTO", "-"), ("200 ms", "--")):
        for seconds, colour in zip(lengths, shades(len(lengths))):
            time, gain = jump(strip, seconds, "compAttack=Fast", f"compRelease={name}", back=True)
            left = 100 * (gain - gain[-1]) / (gain[0] - gain[-1])
            report(f"{name} after a peak of {1000 * seconds:.0f} ms: nine tenths back after",
                   1000 * last_time_far(time, left, 0, 10), "ms", ".7g")
            panel.plot(time, left, dashes, color=colour, label=f"{1000 * seconds:.0f} ms" if dashes == "-" else "")
    panel.plot([], [], "--", color=INK, label="at 200 ms")


def limiter(strip: Strip, panel):
    signal = tone(TONE_HZ, strip.rate, (-20, SECONDS_BEFORE), (0, 0.1), (-20, 0.2))
    time, gain = gain_over_time(strip, signal, TONE_HZ, SECONDS_BEFORE, "compIn=on", "compRatio=1:1", "compLimit=on")
    report("limiter at 0 dBFS: lowest gain", np.min(gain), "dB")
    report("limiter at 0 dBFS: half of that after", 1000 * time[np.argmax(gain < np.min(gain) / 2)], "ms")
    panel.plot(1000 * time, gain, color=shades(1)[0])


def over_time(strip: Strip, positions):
    figure, axes = panels(2, 2, 112, gap=14)
    frame(axes[0], "Attack", "Time since the tone became loud", "Gain / dB", (-14, 0), 2)
    frame(axes[1], "Release, after a second", "Time since the tone became quiet", "Gain / dB", (-14, 0), 2)
    frame(axes[2], "AUTO and 200 ms after peaks of four lengths", "Time since the peak ended", "Reduction left / %",
          (0, 100), 20)
    frame(axes[3], "Limiter, 0 dBFS for 100 ms, ratio 1:1", "Time / ms", "Gain / dB", (-8, 2), 2)
    for panel, end in zip(axes, (1, 10, 10)):
        times(panel, 0.001, end)
    linear(axes[3], -50, 250, 50)
    attack(strip, axes[0], positions)
    release(strip, axes[1], positions)
    automatic_release(strip, axes[2])
    limiter(strip, axes[3])
    axes[0].legend(loc="upper right")
    axes[1].legend(loc="lower right", ncol=3)
    axes[2].legend(loc="upper right")
    return figure


def plot(host: Host):
    with Strip(host, 48000, 2) as strip:
        positions = host.positions()
        return {"compressor-transfer": transfer(strip, positions), "compressor-times": over_time(strip, positions)}
