"""Whether the ledger of a grab's summary balances, and agrees with what else was counted."""


def _total(counts):
    return sum(counts.values())


def _lost_by_camera(ledger):
    """Failed retrievals count where the camera does not number its frames: nothing else tells."""
    causes = ledger["causes"]
    uncounted = not ledger["counted_by_camera"] and ledger["arrived"] != 0
    return (causes.get("camera_skipped", 0) + causes.get("retrieval_failed", 0) +
            (ledger["failed_retrievals_without_frame"] if uncounted else 0))


def _agreements(summary):
    """Pairs of counts that different parts keep of the same frames, by what they count."""
    ledger, lost, exported = summary["ledger"], summary["lost"], summary["exported"]
    cause = lambda name: ledger["causes"].get(name, 0)
    return {
        "arrived": (ledger["arrived"], summary["retrieved"]),
        "written": (ledger["delivered"], exported["written"]),
        "exported": (exported["frames"], exported["written"] + lost["export"]),
        "timing": (cause("timing"), summary["timing_only"]),
        "queue full": (cause("queue_full"), lost["queue_full"]),
        "unusable": (cause("unusable"), lost["refused"]),
        "not exported": (cause("export_failed"), lost["export"] + lost["after_export_error"]),
        "failed retrievals": (cause("retrieval_failed") + ledger["failed_retrievals_without_frame"],
                              summary["failed_retrievals"]),
        "lost": (lost["total"], _total(lost) - lost["total"]),
        "lost by the camera": (lost["camera"], _lost_by_camera(ledger)),
        "balance": (ledger["values"] + ledger["off_counter"],
                    ledger["delivered"] + _total(ledger["causes"])),
        "imbalance": (ledger["imbalance"], 0),
    }


def _is_sure(ledger):
    """Whether no value of the counter is doubtful."""
    return (ledger["counted_by_camera"] and ledger["off_counter"] == 0 and
            ledger["stand_ins"] == 0)


def _is_complete(ledger):
    """Whether its lists are."""
    return ledger["stretches_not_listed"] == 0 and ledger["ranges_not_listed"] == 0


def _partition(ledger, values):
    """Every value of every stretch is a frame's or lies in a range of losses, none is both."""
    accounted = set()
    found = []
    for value in values:
        if value in accounted:
            found.append(f"value {value} comes twice")
        accounted.add(value)
    for lost in ledger["ranges"]:
        for value in range(lost["first"], lost["last"] + 1):
            if (lost["stretch"], value) in accounted:
                found.append(f"value {value} of stretch {lost['stretch']} is lost and there")
            accounted.add((lost["stretch"], value))
    expected = {(each["stretch"], value) for each in ledger["stretches"]
                for value in range(each["first"], each["last"] + 1)}
    if accounted != expected:
        found.append(f"{len(expected - accounted)} values have no cause, "
                     f"{len(accounted - expected)} lie outside of all stretches")
    return found


def complaints(summary, records=None):
    """What is wrong with a summary, and with the metadata beside it; [] = nothing."""
    if summary is None:
        return ["there is no summary"]
    found = [f"ledger, {name}: {one} is not {other}"
             for name, (one, other) in _agreements(summary).items() if one != other]
    if records is None:
        return found
    if records.count != summary["exported"]["written"]:
        found.append(f"{records.count} lines of metadata of "
                     f"{summary['exported']['written']} frames written")
    if records.pictures != summary["exported"]["pictures"]:
        found.append(f"{records.pictures} pictures of {summary['exported']['pictures']}")
    ledger = summary["ledger"]
    if _is_sure(ledger) and "export_failed" not in ledger["causes"]:
        found += records.untold
        if any(one >= other for one, other in zip(records.values, records.values[1:])):
            found.append("frames are out of order")
        if _is_complete(ledger):
            found += _partition(ledger, records.values)
    return found
