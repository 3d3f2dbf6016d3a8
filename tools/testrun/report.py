"""What is told at the end of a run."""

from testrun.results import FAILED, PASSED, SKIPPED

SLOWEST = 10
OUTPUT_LINES = 40  # of a failed test


def counts(results):
    found = {PASSED: 0, FAILED: 0, SKIPPED: 0}
    for result in results:
        found[result.outcome] += 1
    return found


def total_line(found):
    text = f"{found[PASSED]} passed, {found[FAILED]} failed"
    return text + (f", {found[SKIPPED]} skipped" if found[SKIPPED] else "")


def slowest_lines(outcomes):
    durations = sorted(((seconds, stage, name) for stage, outcome in outcomes.items()
                        for seconds, name in outcome.durations), reverse=True)
    if not durations:
        return []
    return ["", "slowest:"] + [f"  {seconds:6.1f} s  {stage}: {name}"
                               for seconds, stage, name in durations[:SLOWEST]]


def skipped_lines(results):
    """Equal reasons of one stage's tests stand together."""
    groups = {}
    for result in results:
        if result.outcome == SKIPPED:
            groups.setdefault((result.stage, result.reason), []).append(result.name)
    return [f"skipped in {stage}: {', '.join(names)}: {reason}"
            for (stage, reason), names in groups.items()]


def failure_lines(result):
    printed = result.printed.strip("\n").splitlines()
    lines = ["", f"failed in {result.stage}: {result.name}"]
    if len(printed) > OUTPUT_LINES:
        printed = ["... (more in the log)", *printed[-OUTPUT_LINES:]]
    lines += ["    " + line for line in printed]
    return lines + ([f"  again: {result.again}"] if result.again else [])


def report(outcomes):
    """The lines of a report, the last of them the total, and the exit status."""
    results = [result for outcome in outcomes.values() for result in outcome.results]
    lines = slowest_lines(outcomes) + [""]
    for stage, outcome in outcomes.items():
        lines += outcome.notes
        lines += [f"passed in {stage} when tried alone: {name}" for name in outcome.retried]
    lines += skipped_lines(results)
    for result in results:
        if result.outcome == FAILED:
            lines += failure_lines(result)
    if len(outcomes) > 1:
        lines += [""] + [f"stage {stage}: {total_line(counts(outcome.results))}"
                         for stage, outcome in outcomes.items()]
    found = counts(results)
    return [*lines, total_line(found)], 1 if found[FAILED] or not found[PASSED] else 0
