"""How long each test takes: as CTest remembers it in the build folder, or as
its COST property says before a first run. CTest starts with the longest by the
same figures; here they serve estimates."""


def memory(build):
    return build / "Testing" / "Temporary" / "CTestCostData.txt"


def read_memory(build):
    """CTest's own notes: lines of a test's name, the number of its runs and its
    mean seconds."""
    costs = {}
    try:
        text = memory(build).read_text(encoding="utf-8")
    except OSError:
        return costs
    for line in text.partition("---\n")[0].splitlines():
        words = line.rsplit(" ", 2)
        if len(words) == 3:
            costs[words[0]] = float(words[2])
    return costs


def known(build, tests):
    """Seconds by test name, of those tests that have a figure."""
    said = {name: test.cost for name, test in tests.items() if test.cost}
    return {**said, **read_memory(build)}
