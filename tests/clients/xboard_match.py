"""Plays games of Mirvo against fairymax under XBoard, without a screen.

XBoard keeps the clocks and judges the moves. Mirvo runs as a UCI engine behind
the polyglot adapter (--protocol uci) or speaks to XBoard itself (--protocol
xboard). The test fails when XBoard or the adapter complains about Mirvo, when a
game is missing, or when a recorded move is not legal.
"""

import argparse
import os
import re
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "arbiter"))

import client
import pgn

# What XBoard writes after a game that ended by an engine's fault.
FAULT_WORDS = re.compile(r"forfeit|illegal|invalid|exited|crash|disconnect|false|unexpected", re.I)


def adapter_command(log):
    return f'polyglot -noini -ec "%fcp" -ed "%fd" -pg ShowTbHits=true -log true -lf {log}'


def xboard_command(options, folder):
    """XBoard's command line for the match, under a virtual X server."""
    command = ["xvfb-run", "-a", "xboard", "-fcp", options.engine, "-fd", folder, "-scp",
               "fairymax", "-mode", "TwoMachines", "-matchGames", str(options.games),
               "-tc", options.clock, "-inc", options.increment, "-sgf", "games.pgn", "-xexit",
               "-soundProgram", "true", "-saveSettingsOnExit", "false", "-debug",
               "-nameOfDebugFile", "debug.txt",
               "-adjudicateDrawMoves", str(options.moves), "-ponder" if options.ponder else "-xponder"]
    if options.protocol == "uci":
        command += ["-fUCI", "-adapterCommand", adapter_command("adapter.log")]
    return command


def judge_game(game):
    """What is wrong with one recorded game, or None. The opponent's faults do not
    count."""
    illegal = pgn.first_illegal_move(game)
    if illegal:
        return f"the move {illegal} is not legal"
    lost = "0-1" if "Mirvo" in game.tags["White"] else "1-0"
    closing = game.comments[-1] if game.comments else ""
    if FAULT_WORDS.search(closing) and game.result in (lost, "*"):
        return f"result {game.result}: {closing}"
    if game.result == "*" or not game.moves:
        return f"the game was not finished: {closing}"
    return None


def write_settings(folder):
    """XBoard reads "not found" in an engine's output as a failed start, so the engine
    must find its settings file, which also makes it save its games."""
    with open(os.path.join(folder, "config.txt"), "w", encoding="utf-8") as file:
        file.write("LoggingMode=1\n")


def judge_saved_games(options, folder, played):
    """Each finished game must be saved by the engine, with XBoard's result."""
    complaints = []
    for number, game in enumerate(played):
        path = os.path.join(folder, f"game{number:06}.pgn")
        saved = client.read(path) if os.path.exists(path) else ""
        for tag in ("Result", "White", "Black"):
            if f'[{tag} "{game.tags[tag]}"]' not in saved:
                complaints.append(f"{path} lacks {tag} {game.tags[tag]}: {saved!r}")
    if options.ponder and "PONDER HIT" not in client.read(os.path.join(folder, "debug.txt")):
        complaints.append("no ponder hit in the whole match")
    return complaints


def judge_logs(options, folder):
    """Complaints of XBoard or of the adapter about Mirvo."""
    complaints = re.findall(r"^.*first.*(?:Illegal move|Error \().*$",
                            client.read(os.path.join(folder, "debug.txt")), re.MULTILINE)
    if options.protocol == "uci":
        log = client.read(os.path.join(folder, "adapter.log"))
        complaints += re.findall(r"^.*POLYGLOT \*\*\* ERROR.*$", log, re.MULTILINE)
        asked = len(re.findall(r"Adapter->Engine: go", log))
        answered = len(re.findall(r"Engine->Adapter: bestmove", log))
        # The search that the end of the match interrupts may have no answer.
        if not asked or not asked - 1 <= answered <= asked:
            complaints.append(f"{asked} searches asked for, {answered} answered")
    return complaints


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("engine", help="the Mirvo program")
    parser.add_argument("--protocol", choices=["uci", "xboard"], required=True)
    parser.add_argument("--games", type=int, default=1, help="colours change every game")
    parser.add_argument("--clock", default="0:05", help="minutes:seconds a side")
    parser.add_argument("--increment", default="0", help="seconds a move")
    parser.add_argument("--moves", type=int, default=0, help="a longer game is a draw")
    parser.add_argument("--ponder", action="store_true")
    parser.add_argument("--limit", type=int, default=200, help="seconds for the whole match")
    return parser.parse_args()


def main():
    options = parse_arguments()
    options.engine = os.path.abspath(options.engine)
    client.need("xboard", "xvfb-run", "fairymax", *["polyglot"] * (options.protocol == "uci"))
    with tempfile.TemporaryDirectory(prefix="mirvo-match-") as folder:
        write_settings(folder)
        printed = client.run(xboard_command(options, folder), folder, options.limit)
        path = os.path.join(folder, "games.pgn")
        played = pgn.games(client.read(path)) if os.path.exists(path) else []
        complaints = judge_logs(options, folder)
        complaints += filter(None, map(judge_game, played))
        if options.protocol == "xboard":
            complaints += judge_saved_games(options, folder, played)
        if len(played) != options.games:
            complaints.append(f"{len(played)} games of {options.games} were recorded")
        for game in played:
            print(game.tags["White"], "-", game.tags["Black"], game.result,
                  f"{len(game.moves)} plies:", *game.comments[-1:])
        if complaints:
            debug = client.read(os.path.join(folder, "debug.txt"))
            client.fail(*complaints, printed, debug[-4000:])


if __name__ == "__main__":
    main()
