"""Whether a quantity of a process stays flat over a long run, or creeps."""

import statistics

# Below this no third has enough samples for a median that one outlier does not move.
FEWEST = 12


def growth(samples, warm_up=0.25):
    """By how much the last third of the samples behind the warm-up lies above the first third.

    Medians, so that single peaks do not count. REQUIRES: at least FEWEST samples.
    """
    settled = samples[int(len(samples) * warm_up):]
    third = len(settled) // 3
    return statistics.median(settled[-third:]) - statistics.median(settled[:third])


def complaints(name, samples, allowed):
    """What is wrong with a series that may grow by `allowed` at most; [] = nothing."""
    if len(samples) < FEWEST:
        return [f"{name}: only {len(samples)} samples, nothing can be said"]
    grown = growth(samples)
    if grown > allowed:
        return [f"{name} creeps: {grown:g} more at the end than behind the warm-up, "
                f"allowed are {allowed:g}"]
    return []
