"""What a soak measured, by protocol, clock and pondering."""

import dataclasses

COLUMNS = ["protocol", "clock", "ponder", "games", "lost", "plies", "99 %", "most", "past clock"]


def share(values, part):
    """The value that `part` of the values do not exceed; 0 without any."""
    return sorted(values)[min(int(part * len(values)), len(values) - 1)] if values else 0.0


@dataclasses.dataclass
class Control:
    """Games under one protocol and clock. Times are milliseconds."""

    games: int = 0
    lost: int = 0  # games in which a clock ran out by more than the margin
    plies: int = 0
    oversteps: list = dataclasses.field(default_factory=list)  # past the allotted time
    walls: list = dataclasses.field(default_factory=list)  # the same by the wall's clock
    overdrawn: int = 0  # moves past the player's clock, within the margin or not
    past_clock: float = 0.0  # the most of it

    def add(self, turn, left):
        self.plies += 1
        if turn.allotted is not None:
            self.oversteps.append(turn.own - turn.allotted)
            self.walls.append(turn.wall - turn.allotted)
        self.overdrawn += turn.own > left
        self.past_clock = max(self.past_clock, turn.own - left)

    def merge(self, other):
        self.games += other.games
        self.lost += other.lost
        self.plies += other.plies
        self.oversteps += other.oversteps
        self.walls += other.walls
        self.overdrawn += other.overdrawn
        self.past_clock = max(self.past_clock, other.past_clock)

    def row(self):
        return [str(self.games), str(self.lost), str(self.plies), f"{share(self.oversteps, 0.99):.1f}",
                f"{share(self.oversteps, 1):.1f}", f"{self.past_clock:.1f}"]


def printed_table(controls):
    """Prints a row for every control; the whole of them."""
    whole = Control()
    print(" | ".join(COLUMNS))
    for (protocol, clock, ponders), control in sorted(controls.items()):
        whole.merge(control)
        print(" | ".join([protocol, str(clock), "on" if ponders else "off", *control.row()]))
    return whole
